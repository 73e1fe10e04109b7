// Narrowing steps between two arguments that constraints share, and questions about them. Each step is sound for
// arguments of every integer type and returns 1 when an argument changed.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "framework/VokTarnObjectEnvironment.h"

// Arguments i and j, two integers or two truth values, keep what both have; lose the value of the other when that is
// known.
int KeepEqual(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j);
int KeepUnequal(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j);
// Arguments i and j keep what i + gap <= j allows; gap is 0 or 1.
int KeepOrdered(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j, int gap);

// Whether arguments i and j may be equal, as far as their bounds and lists tell.
bool MayBeEqual(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j);

// Whether all arguments from `from` up to `to` are there and of this kind.
bool AreIntegers(const VokTarnObjectEnvironment& environment, unsigned from, unsigned to);
bool AreTruthValues(const VokTarnObjectEnvironment& environment, unsigned from, unsigned to);
// Requires: the argument, an integer or a truth value, is single-valued.
std::int64_t ExactValue(const VokTarnObjectEnvironment& environment, unsigned i);

// The possible values, ascending. Requires: x is neither Nil nor undefined.
std::vector<VokLong> ListValues(const VokTarnInteger& x);
// Whether x and y have a value in common. Reads the values of both one by one: a type's own test need not know the
// other type.
bool HaveCommonValue(const VokTarnInteger& x, const VokTarnInteger& y);
