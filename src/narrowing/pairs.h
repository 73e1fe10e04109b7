// Narrowing to the values of all pairs of two operands, row by row: a row is one member of the outer operand with every
// member of the inner one.
//
// Three ways, the cheapest that decides:
//
//   no overflow  When there are not more pairs than the limit on members, or fewer values between the ends, the
//                candidates never turn Any and their order is of no matter. The members that have a pair are marked,
//                and once all are, nothing is removed: the commonest outcome.
//   residues     Values far apart: more than sMAX_CARD distinct residues are more than sMAX_CARD distinct values, so
//                nothing is removed.
//   candidates   The general way, in the order of the pairs.
//
// Internal to the module.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>

#include "narrowing/candidateSet.h"

namespace VokFenNarrowing {

// The least limit of members and of candidates: a set of more distinct values is Any.
inline unsigned LimitOfCandidates() noexcept {
  return std::min<unsigned>(kMaxCandidates, VokFenEnumInteger::sMAX_CARD);
}

// Marks on the members of a set with close ends: a byte for each value between them, so that marking has no branch.
class NarrowMarks {
 public:
  static bool Serve(std::span<const VokLong> members) noexcept {
    return std::int64_t{members.back()} - members.front() < kWidth;
  }
  explicit NarrowMarks(std::span<const VokLong> members) noexcept
      : fLower(VokToUnsigned(members.front())), fWidth(VokToUnsigned(members.back()) - fLower + 1) {
    std::memset(fMarks.data(), 0, fWidth);
  }

  // Any number; those that are no members do no harm.
  void Mark(VokLong v) noexcept { fMarks[std::min(VokToUnsigned(v) - fLower, fWidth)] = 1; }
  // Requires: the i-th member is v.
  bool IsMarked(std::size_t, VokLong v) const noexcept { return fMarks[VokToUnsigned(v) - fLower] != 0; }

 private:
  static constexpr unsigned kWidth = 8192;

  const VokULong fLower;
  const VokULong fWidth;
  std::array<unsigned char, kWidth + 1> fMarks;  // the last one that is used is for all other numbers
};

// The same for members that lie anywhere: most numbers that are none fail at an empty slot of a hash table. Of members
// that share a slot the last one stands there, and the others are searched.
class WideMarks {
 public:
  static bool Serve(std::span<const VokLong> members) noexcept { return members.size() <= kMaxCandidates; }
  explicit WideMarks(std::span<const VokLong> members) noexcept
      : fMembers(members), fShift(std::max(20, 27 - static_cast<int>(std::bit_width(members.size())))) {
    std::fill_n(fSlots.begin(), std::size_t{1} << (32 - fShift), std::uint16_t{0});
    std::memset(fMarks.data(), 0, members.size());
    for (std::size_t i = 0; i < members.size(); ++i) {
      fSlots[SlotOf(members[i])] = static_cast<std::uint16_t>(i + 1);
    }
  }

  void Mark(VokLong v) noexcept {
    if (const unsigned position = fSlots[SlotOf(v)]; position != 0) {
      MarkNear(v, position - 1);
    }
  }
  bool IsMarked(std::size_t i, VokLong) const noexcept { return fMarks[i] != 0; }

 private:
  unsigned SlotOf(VokLong v) const noexcept { return VokToUnsigned(v) * 0x9E3779B1U >> fShift; }
  void MarkNear(VokLong v, std::size_t i) noexcept {
    if (fMembers[i] != v) {
      i = static_cast<std::size_t>(std::lower_bound(fMembers.begin(), fMembers.end(), v) - fMembers.begin());
    }
    if (i < fMembers.size() && fMembers[i] == v) {
      fMarks[i] = 1;
    }
  }

  const std::span<const VokLong> fMembers;
  const int fShift;
  std::array<std::uint16_t, 4096> fSlots;  // 32 to 64 for each member, as far as they go
  std::array<unsigned char, kMaxCandidates> fMarks;
};

// Keeps the members that a pair gives. Whether all are marked is looked at after 1, 2, 4, .. rows.
template <class Marks, class Row>
int KeepMarked(VokFenEnumInteger& narrowed, std::span<const VokLong> outer, Row row) {
  const std::span<const VokLong> members = narrowed.GetMembers();
  Marks marks(members);
  std::size_t leading = 0;
  const auto areAllMarked = [&] {
    while (leading < members.size() && marks.IsMarked(leading, members[leading])) {
      ++leading;
    }
    return leading == members.size();
  };
  for (std::size_t r = 0; r < outer.size(); ++r) {
    row(outer[r], [&marks](VokLong v) { marks.Mark(v); });
    if ((r & (r + 1)) == 0 && areAllMarked()) {
      return 0;
    }
  }
  return narrowed.KeepMembers([&marks, i = std::size_t{0}](VokLong v) mutable { return marks.IsMarked(i++, v); });
}

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

// Numbers by which many are divided. A quotient comes from a multiplication by the reciprocal, with the dividend moved
// half a unit away from 0: that lies at least 0.5 / |divisor| from the next integer, while the rounding errors of two
// operations on doubles, at most 2^31 / |divisor| * 2^-52, do not reach it. So truncation is exact.
class Divisors {
 public:
  explicit Divisors(std::span<const VokLong> divisors) noexcept : fDivisors(divisors) {
    for (std::size_t i = 0; i < std::min(divisors.size(), fReciprocals.size()); ++i) {
      fReciprocals[i] = ReciprocalOf(divisors[i]);
    }
  }

  // Division by 0 is left to the caller, who does not ask for it.
  static double ReciprocalOf(VokLong divisor) noexcept { return divisor == 0 ? 0.0 : 1.0 / divisor; }
  static double Moved(VokLong dividend) noexcept { return dividend + (dividend < 0 ? -0.5 : 0.5); }
  static std::int64_t Quotient(double movedDividend, double reciprocal) noexcept {
    return static_cast<std::int64_t>(movedDividend * reciprocal);
  }
  // The remainder that truncation leaves, with the sign of the dividend. The smallest number by -1 leaves 0.
  static VokLong Remainder(VokLong dividend, VokLong divisor, double reciprocal) noexcept {
    return static_cast<VokLong>(dividend - Quotient(Moved(dividend), reciprocal) * divisor);
  }

  std::size_t GetCount() const noexcept { return fDivisors.size(); }
  VokLong Remainder(VokLong dividend, std::size_t i) const noexcept {
    return Remainder(dividend, fDivisors[i], i < fReciprocals.size() ? fReciprocals[i] : ReciprocalOf(fDivisors[i]));
  }

 private:
  const std::span<const VokLong> fDivisors;
  std::array<double, kMaxCandidates> fReciprocals;  // of more divisors than a set usually has, the first ones
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
    if (!canOverflow && narrowed.GetCount() > 0 && NarrowMarks::Serve(narrowed.GetMembers())) {
      return KeepMarked<NarrowMarks>(narrowed, outer, row);
    }
    if (!canOverflow && narrowed.GetCount() > 0 && WideMarks::Serve(narrowed.GetMembers())) {
      return KeepMarked<WideMarks>(narrowed, outer, row);
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
