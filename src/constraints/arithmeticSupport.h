// What single values, not bounds alone, tell of z = f(x, y).
#pragma once

#include "constraints/arithmeticBounds.h"
#include "framework/VokTarnObjectEnvironment.h"

// The arguments of z = f(x, y); z = |x| has x and z alone.
constexpr unsigned kX = 0;
constexpr unsigned kY = 1;
constexpr unsigned kZ = 2;

// So many values of an operand, or pairs of values of two operands, are tried one by one.
constexpr std::int64_t kMostTried = 256;

// Keeps the range; none of an empty one.
int KeepRange(const VokTarnObjectEnvironment& environment, unsigned i, VokTarnRange range);

// The arguments are (x, y, z), three different values of the network: each keeps the values that some values of the
// others support. Requires: x and y have at most kMostTried pairs of values, and list them or have no holes. Leaves the
// constraint at its fixpoint. O(p) for p pairs, mostly O(x + y + z): a divisor or an exponent that is not the first is
// done with once it has one support.
int KeepPairs(const VokTarnObjectEnvironment& environment, VokTarnFunction function);

// z = x / y, truncated, for so few divisors and arguments without holes, three different values of the network: each
// keeps what the others support. False, with nothing done, where that would have holes or the arguments are others.
// Leaves the constraint at its fixpoint. O(y).
constexpr int kMostDivisors = 16;
bool KeepWholeQuotients(const VokTarnObjectEnvironment& environment, int& changed);

// The arguments are (x, z), two different values of the network: z = |x|. Bounds that the other supports; the values
// between them where the lists have holes and x has at most kMostTried. O(log n) without holes, O(n) with them.
int KeepMagnitude(const VokTarnObjectEnvironment& environment);

// z = b x for a b, argument `truth`, of 0 and 1, all three different values of the network; argument `factor` is x and
// argument 2 z. By bounds, in constant time.
int KeepTruthProduct(const VokTarnObjectEnvironment& environment, unsigned truth, unsigned factor);
