// Narrowing steps that constraints share. Each is sound for arguments of every integer type, because only
// single integers cross from one argument to the other. Each returns 1 when the argument changed.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "framework/VokTarnObjectEnvironment.h"

// Argument i keeps its values up to (from) the limit. Limits beyond the integer range remove nothing.
int KeepAtMost(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t limit);
int KeepAtLeast(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t limit);
// Argument i keeps its values from `lower` to `upper`, whatever 64-bit numbers these are. An undefined set takes the
// values between them where it can list them.
int KeepBetween(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t lower, std::int64_t upper);
// The same with one end, and for one value; quick. An undefined argument may stay so.
int KeepUpTo(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t limit);
int KeepFrom(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t limit);
int KeepValue(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t v);
// Argument i keeps `kept`, some of its values in ascending order. Requires: it is listed.
int KeepListed(const VokTarnObjectEnvironment& environment, unsigned i, std::span<const VokLong> kept);
// Argument i keeps those of its values that are among `values`, which ascend within the integer range; an undefined
// set takes them over where it can list them.
int KeepValues(const VokTarnObjectEnvironment& environment, unsigned i, std::span<const VokLong> values);
// Argument i loses the value v.
int RemoveValue(const VokTarnObjectEnvironment& environment, unsigned i, VokLong v);
// Truth value i keeps `truth` alone.
int KeepTruth(const VokTarnObjectEnvironment& environment, unsigned i, bool truth);

// Arguments i and j, two integers or two truth values, keep what both have; lose the value of the other when that is
// known.
int KeepEqual(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j);
int KeepUnequal(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j);
// Arguments i and j keep what i + gap <= j allows; gap is 0 or 1.
int KeepOrdered(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j, int gap);

// Whether argument i, not undefined, has every value between its bounds; whether it can be v.
inline bool HasNoHoles(const VokTarnObjectEnvironment& environment, unsigned i) {
  return environment.Cardinality(i) == std::int64_t{environment.Upper(i)} - environment.Lower(i) + 1;
}
bool MayBe(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t v);
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
// Whether the type of x keeps every value between its bounds, so that listing them tells nothing.
bool IsInterval(const VokTarnInteger& x);
