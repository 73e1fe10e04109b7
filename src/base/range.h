#pragma once

#include <algorithm>
#include <cstdint>

// The integers from one to another; empty where the lower end is above the upper.
struct VokTarnRange {
  std::int64_t fLower;
  std::int64_t fUpper;

  constexpr bool IsEmpty() const noexcept { return fLower > fUpper; }
  constexpr bool Has(std::int64_t v) const noexcept { return fLower <= v && v <= fUpper; }
  constexpr VokTarnRange Negate() const noexcept { return {-fUpper, -fLower}; }
  constexpr VokTarnRange Intersect(VokTarnRange other) const noexcept {
    return {std::max(fLower, other.fLower), std::min(fUpper, other.fUpper)};
  }
  // The least range that holds both.
  constexpr VokTarnRange Unite(VokTarnRange other) const noexcept {
    return IsEmpty()         ? other
           : other.IsEmpty() ? *this
                             : VokTarnRange{std::min(fLower, other.fLower), std::max(fUpper, other.fUpper)};
  }
};
