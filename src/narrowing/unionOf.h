// The union of two ascending lists of numbers, for operations that intersect a set with one.
//
// The limit  is that of VokFenEnumInteger::Unite: a union that is larger than its first operand and reaches sMAX_CARD
//            is Any.
//
// Internal to the module.
#pragma once

#include <array>
#include <span>

#include "domain/VokFenEnumInteger.h"

namespace VokFenNarrowing {

// On the caller's stack; takes no memory. O(n).
class UnionOf {
 public:
  UnionOf(std::span<const VokLong> first, std::span<const VokLong> second) noexcept;

  bool IsAny() const noexcept { return fIsAny; }
  std::span<const VokLong> Get() const noexcept { return fValues; }

 private:
  static constexpr unsigned kRoom = 2080;

  bool fIsAny = false;
  std::span<const VokLong> fValues;
  std::array<VokLong, kRoom> fNumbers;
};

}  // namespace VokFenNarrowing
