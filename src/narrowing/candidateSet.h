// Candidate sets: the values that an operation can give, collected pair by pair.
//
// The limit  A set that holds sMAX_CARD values turns Any at the next insertion, even of a value that it holds. So a set
//            of exactly sMAX_CARD distinct values is usable only when the last pair is the first to give its value,
//            and the order of the loops is part of the result. An Any candidate set narrows nothing.
//
// Internal to the module.
#pragma once

#include <array>
#include <cstdint>

#include "domain/VokFenEnumInteger.h"

namespace VokFenNarrowing {

// The largest number of candidates, in a form that the compiler knows to be small.
inline constexpr unsigned kMaxCandidates = 1024;

// Distinct values in the order in which the pairs give them, on the caller's stack; takes no memory.
//
// Cost  Insert and Contains O(1). Values between close ends are bits; others stand in a hash table with open
//       addressing (Knuth, The Art of Computer Programming 3, 6.4) that is at most half full. Sorting is left to the
//       rare case in which a set takes the candidates over.
class CandidateValues {
 public:
  // Every value to come lies in [lower, upper].
  CandidateValues(std::int64_t lower, std::int64_t upper) noexcept;

  // False when the set has turned Any: it stays so whatever comes.
  bool Insert(VokLong v) noexcept;
  bool IsAny() const noexcept { return fIsAny; }
  unsigned GetCount() const noexcept { return fCount; }
  bool Contains(VokLong v) const noexcept;
  // Writes the GetCount() values in ascending order.
  void GetSorted(VokLong* values) const noexcept;

  // Intersect the operand with these values; the status.
  int Narrow(VokFenEnumInteger& set) const;
  int Narrow(VokFenSingleInteger& single) const;

 private:
  static constexpr unsigned kSlots = 2 * kMaxCandidates;
  static constexpr unsigned kBits = 32 * kSlots;

  static unsigned FirstSlot(VokLong v) noexcept { return (VokToUnsigned(v) * 0x9E3779B1U) >> 21; }
  // Where v is, or the free slot where it belongs.
  unsigned FindSlot(VokLong v) const noexcept;

  const std::int64_t fLower;
  const std::uint64_t fWidth;
  const bool fAreBits;
  bool fIsAny = false;
  bool fHasZero = false;  // a slot that is 0 is free, so the value 0 stands here
  unsigned fCount = 0;
  std::array<VokULong, kSlots> fCells;  // bits or slots; only what is used is cleared
};

inline unsigned CandidateValues::FindSlot(VokLong v) const noexcept {
  unsigned slot = FirstSlot(v);
  while (fCells[slot] != 0 && fCells[slot] != VokToUnsigned(v)) {
    slot = (slot + 1) % kSlots;
  }
  return slot;
}

inline bool CandidateValues::Insert(VokLong v) noexcept {
  if (fIsAny || fCount >= kMaxCandidates || fCount >= VokFenEnumInteger::sMAX_CARD) {
    fIsAny = true;
    return false;
  }
  if (fAreBits) {
    const auto at = static_cast<unsigned>(v - fLower);
    const VokULong word = fCells[at / 32];
    fCells[at / 32] = word | 1U << at % 32;
    fCount += (~word >> at % 32) & 1U;
  } else if (v == 0) {
    fCount += fHasZero ? 0U : 1U;
    fHasZero = true;
  } else {
    const unsigned slot = FindSlot(v);
    fCount += fCells[slot] == 0 ? 1U : 0U;
    fCells[slot] = VokToUnsigned(v);
  }
  return true;
}

inline bool CandidateValues::Contains(VokLong v) const noexcept {
  if (fAreBits) {
    const std::uint64_t at = static_cast<std::uint64_t>(v - fLower);
    return at < fWidth && (fCells[at / 32] >> at % 32 & 1U) != 0;
  }
  return v == 0 ? fHasZero : fCells[FindSlot(v)] != 0;
}

}  // namespace VokFenNarrowing
