// Sets of small numbers as bits of words, in ordinary instructions: not every processor has one that counts.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

using VokTarnBits = std::uint64_t;
inline constexpr std::size_t kWordBits = 64;

// ---- One word
constexpr VokTarnBits Bit(unsigned place) {
  return VokTarnBits{1} << place;
}
// The bits from `first` to `last`.
constexpr VokTarnBits BitRange(unsigned first, unsigned last) {
  return (~VokTarnBits{0} >> (63U - (last - first))) << first;
}
// Requires, as for the last one: some bit is set.
constexpr unsigned FirstBit(VokTarnBits bits) {
  return static_cast<unsigned>(std::countr_zero(bits));
}
constexpr unsigned LastBit(VokTarnBits bits) {
  return 63U - static_cast<unsigned>(std::countl_zero(bits));
}
constexpr unsigned CountBits(VokTarnBits bits) {
  bits -= (bits >> 1U) & 0x5555555555555555U;
  bits = (bits & 0x3333333333333333U) + ((bits >> 2U) & 0x3333333333333333U);
  bits = (bits + (bits >> 4U)) & 0x0F0F0F0F0F0F0F0FU;
  return static_cast<unsigned>((bits * 0x0101010101010101U) >> 56U);
}
// Bits moved up by `distance` places, down by its opposite; what leaves the word is lost.
constexpr VokTarnBits ShiftBits(VokTarnBits bits, std::int64_t distance) {
  if (distance <= -64 || distance >= 64) {
    return 0;
  }
  return distance < 0 ? bits >> -distance : bits << distance;
}
// Calls visit(place) for each bit that is set, from the lowest.
template <class Visit>
void ForEachBit(VokTarnBits bits, Visit visit) {
  for (; bits != 0; bits &= bits - 1) {
    visit(FirstBit(bits));
  }
}

// ---- Several words
inline std::size_t CountWords(std::size_t bits) {
  return (bits + kWordBits - 1) / kWordBits;
}
inline bool HasBit(const VokTarnBits* bits, std::size_t place) {
  return ((bits[place / kWordBits] >> (place % kWordBits)) & 1) != 0;
}
inline void SetBit(VokTarnBits* bits, std::size_t place) {
  bits[place / kWordBits] |= VokTarnBits{1} << (place % kWordBits);
}
