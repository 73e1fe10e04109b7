#pragma once

#include <cstdint>
#include <utility>

#include "framework/VokLong.h"

// What constraint classes have among their constants that stand for several relations.

// Between a left and a right side.
enum class VokTarnRelation : VokLong { Equal = 0, AtMost = 1, Different = 2 };

// How a relation is stated; but for the first, a last argument tells its truth: an integer that is 1 or 0.
enum class VokTarnMode : VokLong {
  Plain = 0,       // it holds
  Reified = 1,     // it holds exactly when the truth is 1
  HalfReified = 2  // it holds when the truth is 1
};

// Functions of integers with the meaning that FlatZinc gives them; where one is not defined the relation does not hold.
enum class VokTarnFunction : VokLong {
  Product = 0,
  Quotient = 1,   // truncated towards 0
  Remainder = 2,  // of that quotient: it has the sign of the dividend
  Power = 3,      // of a negative exponent: the quotient of 1 and the power of its opposite
  Magnitude = 4   // of one operand
};

// A number of 64 bits as two constants, the lower half first.
constexpr std::pair<VokLong, VokLong> VokSplitWide(std::int64_t v) noexcept {
  const auto bits = static_cast<std::uint64_t>(v);
  return {VokToSigned(static_cast<VokULong>(bits)), VokToSigned(static_cast<VokULong>(bits >> 32U))};
}
constexpr std::int64_t VokJoinWide(VokLong low, VokLong high) noexcept {
  return static_cast<std::int64_t>(VokToUnsigned(low) | std::uint64_t{VokToUnsigned(high)} << 32U);
}
