// Narrowing to the values of all pairs of two operands, row by row: a row is one member of the outer operand with every
// member of the inner one.
//
// Three ways, the cheapest that decides:
//
//   no overflow  When there are not more pairs than the limit on members, or fewer values between the ends, the
//                candidates never turn Any and their order is of no matter. The members of the narrowed set are ticked
//                off, and once none is left, nothing is removed: the commonest outcome.
//   residues     Values far apart: more than sMAX_CARD distinct residues are more than sMAX_CARD distinct values, so
//                nothing is removed.
//   candidates   The general way, in the order of the pairs.
//
// Internal to the module.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <span>

#include "narrowing/candidateSet.h"

namespace VokFenNarrowing {

// The least limit of members and of candidates: a set of more distinct values is Any.
inline unsigned LimitOfCandidates() noexcept {
  return std::min<unsigned>(kMaxCandidates, VokFenEnumInteger::sMAX_CARD);
}

// Members that still wait for a pair; a byte each, so that ticking off has no branch.
class WaitingMembers {
 public:
  static bool IsNarrow(std::span<const VokLong> members) noexcept {
    return std::int64_t{members.back()} - members.front() < kWidth;
  }
  // Requires: IsNarrow, no repetitions.
  explicit WaitingMembers(std::span<const VokLong> members) noexcept
      : fLower(VokToUnsigned(members.front())),
        fWidth(VokToUnsigned(members.back()) - fLower + 1),
        fCount(static_cast<unsigned>(members.size())) {
    std::memset(fWaits.data(), 0, std::size_t{fWidth} + 1);
    for (const VokLong v : members) {
      fWaits[VokToUnsigned(v) - fLower] = 1;
    }
  }

  void TickOff(VokLong v) noexcept {
    unsigned char& waits = fWaits[std::min(VokToUnsigned(v) - fLower, fWidth)];  // the last one is for all others
    fCount -= waits;
    waits = 0;
  }
  bool Waits(VokLong v) const noexcept { return fWaits[VokToUnsigned(v) - fLower] != 0; }
  unsigned GetCount() const noexcept { return fCount; }

 private:
  static constexpr unsigned kWidth = 8192;

  VokULong fLower;
  VokULong fWidth;
  unsigned fCount;
  std::array<unsigned char, kWidth + 1> fWaits;  // only what is used is set
};

// The residues of numbers, as bits. Numbers less than kModulus apart are told apart.
class Residues {
 public:
  static constexpr unsigned kModulus = 65536;

  Residues() noexcept { fBits.fill(0); }

  void Add(VokLong v) noexcept {
    std::uint64_t& word = fBits[VokToUnsigned(v) % kModulus / 64];
    const std::uint64_t bit = std::uint64_t{1} << (VokToUnsigned(v) % 64);
    fCount += (word & bit) == 0 ? 1U : 0U;
    word |= bit;
  }
  bool Has(VokLong v) const noexcept {
    return (fBits[VokToUnsigned(v) % kModulus / 64] >> (VokToUnsigned(v) % 64) & 1) != 0;
  }
  unsigned GetCount() const noexcept { return fCount; }

 private:
  unsigned fCount = 0;
  std::array<std::uint64_t, kModulus / 64> fBits;
};

// The members of a set for many questions that are mostly answered with no.
class MemberTest {
 public:
  explicit MemberTest(const VokFenEnumInteger& set) noexcept : fSet(set) {
    for (const VokLong v : set.GetMembers()) {
      fResidues.Add(v);
    }
    if (set.GetCount() > 0) {
      fLower = set.GetMembers().front();
      fUpper = set.GetMembers().back();
    }
    fIsExact = std::int64_t{fUpper} - fLower < std::int64_t{Residues::kModulus};
  }

  bool Has(VokLong v) const {
    return fResidues.Has(v) && v >= fLower && v <= fUpper && (fIsExact || fSet.Contains(v) != 0);
  }

 private:
  const VokFenEnumInteger& fSet;
  Residues fResidues;
  VokLong fLower = 0;
  VokLong fUpper = -1;
  bool fIsExact = false;
};

// Intersects `narrowed` with the values of all pairs. `row(member, sink)` gives those of one outer member to
// sink(value); every value lies in [lower, upper]. Operands may be the narrowed set: it is written last.
template <class Narrowed, class Row>
int NarrowToPairs(Narrowed& narrowed, std::span<const VokLong> outer, std::size_t innerCount, std::int64_t lower,
                  std::int64_t upper, Row row) {
  const unsigned limit = LimitOfCandidates();
  const std::int64_t width = upper - lower + 1;
  const bool canOverflow = outer.size() * innerCount > limit && width >= std::int64_t{limit};
  if constexpr (std::is_same_v<Narrowed, VokFenEnumInteger>) {
    if (!canOverflow && narrowed.GetCount() > 0 && WaitingMembers::IsNarrow(narrowed.GetMembers())) {
      WaitingMembers waiting(narrowed.GetMembers());
      for (const VokLong member : outer) {
        row(member, [&waiting](VokLong v) { waiting.TickOff(v); });
        if (waiting.GetCount() == 0) {
          return 0;
        }
      }
      return narrowed.KeepMembers([&waiting](VokLong v) { return !waiting.Waits(v); });
    }
  }
  if (canOverflow && width > std::int64_t{Residues::kModulus}) {
    Residues residues;
    for (const VokLong member : outer) {
      row(member, [&residues](VokLong v) { residues.Add(v); });
      if (residues.GetCount() > limit) {
        return 0;
      }
    }
  }
  CandidateValues candidates(lower, upper);
  for (const VokLong member : outer) {
    row(member, [&candidates](VokLong v) { candidates.Insert(v); });
    if (candidates.IsAny()) {
      return 0;
    }
  }
  return candidates.Narrow(narrowed);
}

}  // namespace VokFenNarrowing
