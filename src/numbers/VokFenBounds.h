// The arithmetic of bounds that singles and intervals share.
//
// The narrowing of an operand is a projection: from the bounds of the operand itself and of the two other ones it
// computes bounds that hold every value of the operand that has a partner. Single values and intervals are
// treated alike.
//
// Ends of the range  As a lower bound MIN means that there is none, as an upper bound MAX means the same.
// The arithmetic is done in 64 bits. [MAX, MAX] thus stands for everything from MAX on, which holds both
// readings of an element MAX: the number, and the infinity that sums and products are clamped to.
#pragma once

#include <cstdint>

#include "numbers/SubIntBase.h"

class VokTarnInteger;

// Empty when the lower bound is above the upper one.
struct VokFenBounds {
  VokLong lower;
  VokLong upper;

  // Below and above every element; infinite times infinite stays within 64 bits.
  static constexpr std::int64_t sInfinity = std::int64_t{1} << 31;

  static VokFenBounds Empty() { return {SubIntBase::sMax, SubIntBase::sMin}; }
  static VokFenBounds All() { return {SubIntBase::sMin, SubIntBase::sMax}; }
  // Clamps to the range.
  static VokFenBounds Clamped(std::int64_t lower, std::int64_t upper);
  static VokFenBounds Of(const VokTarnInteger& v);

  bool IsEmpty() const { return lower > upper; }
  bool IsPoint() const { return lower == upper; }
  bool Holds(VokLong v) const { return lower <= v && v <= upper; }
  VokFenBounds Intersection(VokFenBounds other) const;

  // The bounds with the open ends widened to infinity.
  std::int64_t Low() const { return lower == SubIntBase::sMin ? -sInfinity : lower; }
  std::int64_t High() const { return upper == SubIntBase::sMax ? sInfinity : upper; }
};

// Collects pieces of a domain and gives the bounds of what they cover of it.
class VokFenHull {
 public:
  explicit VokFenHull(VokFenBounds domain) : fDomain(domain) {}

  // Adds the part of [lower, upper] that lies in the domain; nothing when lower is above upper.
  void Add(std::int64_t lower, std::int64_t upper);
  // The same for the even or the odd numbers of [lower, upper]. An end that is open stays open.
  void AddEvery(bool odd, std::int64_t lower, std::int64_t upper);
  VokFenBounds Get() const { return VokFenBounds::Clamped(fLower, fUpper); }

 private:
  VokFenBounds fDomain;
  std::int64_t fLower = VokFenBounds::sInfinity;
  std::int64_t fUpper = -VokFenBounds::sInfinity;
};

// x is the narrowed operand, its own bounds given; no operand is empty.

// x = a, x <= a, x < a, x >= a, x > a. Next to an operand without an upper (lower) bound, < (>) says nothing.
VokFenBounds BoundsOfLessOrEqual(VokFenBounds x, VokFenBounds a);
VokFenBounds BoundsOfLess(VokFenBounds x, VokFenBounds a);
VokFenBounds BoundsOfNotLess(VokFenBounds x, VokFenBounds a);
VokFenBounds BoundsOfNotLessAndUnequal(VokFenBounds x, VokFenBounds a);

// x = a + 1, a = x + 1; x = -a; x = |a|, a = |x|; x = sign(a), a = sign(x).
VokFenBounds BoundsOfNext(VokFenBounds x, VokFenBounds a);
VokFenBounds BoundsOfPrev(VokFenBounds x, VokFenBounds a);
VokFenBounds BoundsOfNegative(VokFenBounds x, VokFenBounds a);
VokFenBounds BoundsOfAbsolute(VokFenBounds x, VokFenBounds a);
VokFenBounds BoundsOfAbsoluteArgument(VokFenBounds x, VokFenBounds a);
VokFenBounds BoundsOfSignum(VokFenBounds x, VokFenBounds a);
VokFenBounds BoundsOfSignumArgument(VokFenBounds x, VokFenBounds a);

// x = min(a, b), z = min(x, b); x = max(a, b), z = max(x, b).
VokFenBounds BoundsOfMinimum(VokFenBounds x, VokFenBounds a, VokFenBounds b);
VokFenBounds BoundsOfMinimumArgument(VokFenBounds x, VokFenBounds z, VokFenBounds b);
VokFenBounds BoundsOfMaximum(VokFenBounds x, VokFenBounds a, VokFenBounds b);
VokFenBounds BoundsOfMaximumArgument(VokFenBounds x, VokFenBounds z, VokFenBounds b);

// x = a + b, z = x + b; x = a * b, z = x * b.
VokFenBounds BoundsOfSum(VokFenBounds x, VokFenBounds a, VokFenBounds b);
VokFenBounds BoundsOfDifference(VokFenBounds x, VokFenBounds z, VokFenBounds b);
VokFenBounds BoundsOfProduct(VokFenBounds x, VokFenBounds a, VokFenBounds b);
VokFenBounds BoundsOfFactor(VokFenBounds x, VokFenBounds z, VokFenBounds b);

// x = a mod b, z = x mod b, z = a mod x, with the sign of the dividend; a divisor is never 0.
VokFenBounds BoundsOfRemainder(VokFenBounds x, VokFenBounds a, VokFenBounds b);
VokFenBounds BoundsOfDividend(VokFenBounds x, VokFenBounds z, VokFenBounds b);
VokFenBounds BoundsOfDivisor(VokFenBounds x, VokFenBounds z, VokFenBounds a);

// x = a ^ b, z = x ^ b, z = a ^ x.
VokFenBounds BoundsOfPower(VokFenBounds x, VokFenBounds a, VokFenBounds b);
VokFenBounds BoundsOfBase(VokFenBounds x, VokFenBounds z, VokFenBounds b);
VokFenBounds BoundsOfExponent(VokFenBounds x, VokFenBounds z, VokFenBounds a);

// a ^ e, or false when it has no value: 0 and bases beyond 1 and -1 to a negative power, and results that are not
// inside (MIN, MAX). 0 ^ 0 is 1.
bool FindPower(VokLong a, VokLong e, VokLong& power);
