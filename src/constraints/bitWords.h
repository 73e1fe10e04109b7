// Sets of small numbers as bits of words.
#pragma once

#include <cstddef>
#include <cstdint>

using VokTarnBits = std::uint64_t;
inline constexpr std::size_t kWordBits = 64;

inline std::size_t CountWords(std::size_t bits) {
  return (bits + kWordBits - 1) / kWordBits;
}
inline bool HasBit(const VokTarnBits* bits, std::size_t place) {
  return ((bits[place / kWordBits] >> (place % kWordBits)) & 1) != 0;
}
inline void SetBit(VokTarnBits* bits, std::size_t place) {
  bits[place / kWordBits] |= VokTarnBits{1} << (place % kWordBits);
}
