// z = a + b: the sums of every pair of members. The inverses take the pairs z - y as sums z + (-y).
//
// The pairs need not be formed one by one. With na and nb members, of hull W, D distinct sums:
//
//   clamped        a pair may leave the integer range, or an end of it absorbs: the pairs, in the element arithmetic
//   D > limit      known at once from D >= na + nb - 1, for a1 + b1 < .. < a1 + bn < a2 + bn < ..: nothing is inferred
//   one is single  the narrowed set is intersected with the shifted other operand
//   W small        a bit per sum: the bits of one operand shifted by each member of the other. A few rows often prove
//                  D > limit. O(na * W / 512)
//   few pairs      each member is looked for among the sums, without a branch. O(n * na * nb / 16)
//   one stride     the common divisor of all distances makes a wide hull small
//   else           the residues of the pairs, which are quick to count; then the pairs in a hash table
//
// D = limit counts as an overflow unless the last pair is the first to give its value (candidateSet.h). The last sum is
// the greatest, which no other pair gives; the last difference may have been there.

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <span>

#include "domain/VokFenEnumInteger.h"
#include "domain/intersectInto.h"
#include "domain/kernels/kernels.h"
#include "narrowing/candidateSet.h"
#include "narrowing/dispatchFrame.h"
#include "narrowing/pairs.h"

using namespace VokFenNarrowing;

namespace {

using Values = std::span<const VokLong>;
using VokFenKernels::GetKernels;
using VokFenKernels::kSlack;

constexpr unsigned kAny = std::numeric_limits<unsigned>::max();
constexpr unsigned kWords = 512;
constexpr unsigned kMaxWidth = 64 * kWords;

unsigned Count(Values values) {
  return static_cast<unsigned>(values.size());
}

unsigned Distance(VokLong from, VokLong to) {
  return VokToUnsigned(to) - VokToUnsigned(from);
}

// Two operands whose sums stay in the integer range. fA gives the outer loop; the inner one takes fB from its end where
// it holds the negatives of an operand.
struct Sums {
  Values fA;
  Values fB;
  bool fIsBReversed;

  VokLong GetLower() const { return fA.front() + fB.front(); }
  VokLong GetUpper() const { return fA.back() + fB.back(); }
  VokULong GetDistance() const { return Distance(GetLower(), GetUpper()); }  // W - 1
  std::size_t CountPairs() const { return fA.size() * fB.size(); }

  // Whether another pair has the sum of the last one.
  bool IsLastRepeated() const {
    const VokLong last = fA.back() + (fIsBReversed ? fB.front() : fB.back());
    unsigned found = 0;
    std::size_t j = fB.size();
    for (const VokLong a : fA) {
      while (j > 0 && fB[j - 1] + a > last) {
        --j;
      }
      found += j > 0 && fB[j - 1] + a == last ? 1U : 0U;
    }
    return found > 1;
  }

  // Whether more distinct values than usable came. Requires: no pair was left out.
  bool IsTooMany(unsigned distinct) const {
    return distinct > LimitOfCandidates() ||
           (distinct == LimitOfCandidates() && CountPairs() > distinct && IsLastRepeated());
  }
};

// Bits with zero bytes around them, as the kernels read them.
class Bits {
 public:
  // A bit for the distance of each value to the first.
  explicit Bits(Values values) : fWidth(Distance(values.front(), values.back()) + 1) {
    constexpr std::size_t kPadding = VokFenKernels::kBitPadding / sizeof(std::uint64_t);
    fWords = fStorage.data() + kPadding;
    std::fill(fStorage.data(), fWords + GetWordCount() + kPadding, 0);
    // The word in hand is written at every bit, so that no bit waits for the one before it.
    std::uint64_t word = 0;
    unsigned at = 0;
    for (const VokLong v : values) {
      const unsigned bit = Distance(values.front(), v);
      word = (word & (0 - std::uint64_t{bit / 64 == at})) | std::uint64_t{1} << bit % 64;
      at = bit / 64;
      fWords[at] = word;
    }
  }
  Bits(const Bits&) = delete;
  Bits& operator=(const Bits&) = delete;

  const std::uint64_t* GetWords() const { return fWords; }
  unsigned GetWidth() const { return fWidth; }
  unsigned GetWordCount() const { return (fWidth + 63) / 64; }

 private:
  unsigned fWidth;
  std::uint64_t* fWords;
  std::array<std::uint64_t, kWords + std::size_t{2} * VokFenKernels::kBitPadding / sizeof(std::uint64_t)> fStorage;
};

// Whether some rows, spread over all, give more distinct sums than usable. Looked at after a few: rows of many values
// far apart overflow at once.
bool DoSomeRowsOverflow(const Bits& bits, Values rows, std::size_t valuesOfRow, unsigned words) {
  constexpr std::size_t kFew = 4;
  const std::size_t limit = LimitOfCandidates();
  const std::size_t last = std::min(rows.size(), kFew + 2 * limit / valuesOfRow) - 1;
  std::array<std::uint64_t, kWords + 1> joined;
  std::fill_n(joined.begin(), words + 1, 0);
  for (std::size_t i = 0; i <= last; ++i) {
    const VokLong row = rows[i * (rows.size() - 1) / last];
    GetKernels().fOrShifted(joined.data(), bits.GetWords(), bits.GetWordCount(), Distance(rows.front(), row));
    const bool canBe = (i + 1) * valuesOfRow > limit;
    if (canBe && (i == kFew || i == last) && GetKernels().fCountBits(joined.data(), words) > limit) {
      return true;
    }
  }
  return false;
}

// The routines below write the values that are sums to `kept` and return their number, or kAny where the sums
// are too many to tell.

__extension__ using TwoWords = unsigned __int128;

// Requires: the hull of the sums is at most the bits of a Word, and below the limit.
template <class Word>
unsigned KeepByWord(const Sums& sums, Values values, VokLong* kept) {
  constexpr unsigned kBits = 8 * sizeof(Word);
  // One of the hulls is at most 64.
  const bool rowsAreA = Distance(sums.fA.front(), sums.fA.back()) > Distance(sums.fB.front(), sums.fB.back());
  const Values rows = rowsAreA ? sums.fA : sums.fB;
  const Values others = rowsAreA ? sums.fB : sums.fA;
  std::uint64_t bits = 0;
  for (const VokLong v : others) {
    bits |= std::uint64_t{1} << Distance(others.front(), v);
  }
  Word joined = 0;
  for (const VokLong row : rows) {
    joined |= Word{bits} << Distance(rows.front(), row);
  }
  const VokLong lower = sums.GetLower();
  unsigned count = 0;
  for (const VokLong v : values) {
    const unsigned at = Distance(lower, v);
    kept[count] = v;
    count += static_cast<unsigned>(joined >> at % kBits) & (at < kBits ? 1U : 0U);
  }
  return count;
}

// Requires: the hull of the sums is at most kMaxWidth.
unsigned KeepByBits(const Sums& sums, Values values, VokLong* kept) {
  // The operand that makes fewer steps gives the rows.
  const auto steps = [](Values rows, Values others) {
    return rows.size() * (Distance(others.front(), others.back()) / 512 + 1);
  };
  const bool rowsAreA = steps(sums.fA, sums.fB) < steps(sums.fB, sums.fA);
  const Values rows = rowsAreA ? sums.fA : sums.fB;
  const Values others = rowsAreA ? sums.fB : sums.fA;
  const Bits bits(others);
  const unsigned width = sums.GetDistance() + 1;
  const unsigned words = (width + 63) / 64;
  const bool mayOverflow = width >= LimitOfCandidates() && sums.CountPairs() > LimitOfCandidates();
  if (mayOverflow && DoSomeRowsOverflow(bits, rows, others.size(), words)) {
    return kAny;
  }
  std::array<std::uint64_t, kWords + 8> joined;
  GetKernels().fOrRows(joined.data(), (width + 511) / 512, reinterpret_cast<const unsigned char*>(bits.GetWords()),
                       bits.GetWidth(), rows.data(), Count(rows));
  if (mayOverflow && sums.IsTooMany(GetKernels().fCountBits(joined.data(), words))) {
    return kAny;
  }
  return GetKernels().fKeepBits(values.data(), Count(values), sums.GetLower(), width, joined.data(), kept);
}

// Requires: at most kMaxCandidates pairs.
unsigned KeepListed(const Sums& sums, Values values, VokLong* kept) {
  constexpr unsigned kGroup = 32;
  alignas(64) std::array<VokLong, kMaxCandidates + kGroup> listed;
  unsigned count = 0;
  for (const VokLong a : sums.fA) {
    VokLong* const row = listed.data() + count;
    const VokLong* const b = sums.fB.data();
    const unsigned nb = Count(sums.fB);
    for (unsigned j = 0; j < nb; ++j) {
      row[j] = a + b[j];
    }
    count += nb;
  }
  const unsigned end = (count + kGroup - 1) / kGroup * kGroup;
  std::fill(listed.begin() + count, listed.begin() + end, listed[0]);
  return GetKernels().fKeepListed(values.data(), Count(values), listed.data(), end, kept);
}

// More distinct residues than usable are more distinct sums. Counted without branches on what a residue is.
bool DoResiduesOverflow(const Sums& sums) {
  Residues residues;
  for (const VokLong a : sums.fA) {
    for (const VokLong b : sums.fB) {
      residues.Add(a + b);
    }
    if (residues.GetCount() > LimitOfCandidates()) {
      return true;
    }
  }
  return false;
}

unsigned KeepByTable(const Sums& sums, Values values, VokLong* kept) {
  CandidateValues candidates(sums.GetLower(), sums.GetUpper());
  const std::size_t nb = sums.fB.size();
  for (const VokLong a : sums.fA) {
    for (std::size_t j = 0; j < nb; ++j) {
      if (!candidates.Insert(a + sums.fB[sums.fIsBReversed ? nb - 1 - j : j])) {
        return kAny;
      }
    }
  }
  unsigned count = 0;
  for (const VokLong v : values) {
    kept[count] = v;
    count += candidates.Contains(v) ? 1U : 0U;
  }
  return count;
}

VokULong CommonDivisor(Values values, VokULong divisor) {
  for (std::size_t i = 1; i < values.size() && divisor != 1; ++i) {
    divisor = std::gcd(divisor, Distance(values[i - 1], values[i]));
  }
  return divisor;
}

// The values in steps of `stride` from `lower` on, those between left out.
class Strides {
 public:
  Strides(Values values, VokLong lower, VokLong upper, VokULong stride) {
    for (const VokLong v : values) {
      const VokULong distance = Distance(lower, v);
      fStrides[fCount] = VokToSigned(distance / stride);
      fCount += v >= lower && v <= upper && distance % stride == 0 ? 1U : 0U;
    }
  }
  Values Get() const { return {fStrides.data(), fCount}; }

 private:
  unsigned fCount = 0;
  std::array<VokLong, kMaxCandidates + 1> fStrides;
};

// Requires: every distance between sums is a multiple of the stride, the hull in strides is at most kMaxWidth.
unsigned KeepByStrides(const Sums& sums, VokULong stride, Values values, VokLong* kept) {
  const VokLong lower = sums.GetLower();
  const Strides a(sums.fA, sums.fA.front(), sums.fA.back(), stride);
  const Strides b(sums.fB, sums.fB.front(), sums.fB.back(), stride);
  const Strides sought(values, lower, sums.GetUpper(), stride);
  const unsigned count = KeepByBits({a.Get(), b.Get(), sums.fIsBReversed}, sought.Get(), kept);
  for (unsigned i = 0; count != kAny && i < count; ++i) {
    kept[i] = VokToSigned(VokToUnsigned(lower) + VokToUnsigned(kept[i]) * stride);
  }
  return count;
}

// Requires: at most kMaxCandidates values, at least one; no more than the limit of distinct sums from an end on, which
// is the two sizes less one; `kept` has room for kSlack more.
unsigned KeepSums(const Sums& sums, Values values, VokLong* kept) {
  const std::size_t na = sums.fA.size();
  const std::size_t nb = sums.fB.size();
  if (nb == 1) {
    return VokFenDomain::IntersectInto(values, sums.fA, sums.fB[0], kept);
  }
  if (na == 1) {
    return VokFenDomain::IntersectInto(values, sums.fB, sums.fA[0], kept);
  }
  // Below the limit, that no sum can come again when there are as many as it allows.
  const VokULong unlimited = LimitOfCandidates() - 1;
  if (sums.GetDistance() < std::min(64U, unlimited)) {
    return KeepByWord<std::uint64_t>(sums, values, kept);
  }
  if (sums.GetDistance() < std::min(128U, unlimited)) {
    return KeepByWord<TwoWords>(sums, values, kept);
  }
  // Rough counts of cycles. The table's is that of its worst case.
  const VokULong distance = sums.GetDistance();
  const std::size_t pairs = sums.CountPairs();
  const std::size_t byTable = 4 * pairs + 1000;
  const std::size_t byList = pairs <= LimitOfCandidates() ? values.size() * pairs / 12 + pairs : byTable;
  const std::size_t byBits = 3 * std::min(na, nb) * (distance / 512 + 1) + distance / 16 + 4 * (na + nb);
  if (distance < kMaxWidth && byBits <= std::min(byList, byTable)) {
    return KeepByBits(sums, values, kept);
  }
  if (byList < byTable) {
    return KeepListed(sums, values, kept);
  }
  const VokULong stride = CommonDivisor(sums.fB, CommonDivisor(sums.fA, Distance(sums.fA[0], sums.fA[1])));
  if (distance / stride < kMaxWidth) {
    return KeepByStrides(sums, stride, values, kept);
  }
  return pairs > LimitOfCandidates() && DoResiduesOverflow(sums) ? kAny : KeepByTable(sums, values, kept);
}

// The operands as they come, to be added or subtracted.
struct Pairs {
  Values fA;
  Values fB;
  bool fAreSums;

  std::int64_t GetLower() const {
    return std::int64_t{fA.front()} + (fAreSums ? fB.front() : -std::int64_t{fB.back()});
  }
  std::int64_t GetUpper() const { return std::int64_t{fA.back()} + (fAreSums ? fB.back() : -std::int64_t{fB.front()}); }

  // No pair is clamped, and no member is an end of the integer range, which absorbs.
  bool AreExact() const {
    const auto isFinite = [](Values values) {
      return values.front() > SubIntBase::sMin && values.back() < SubIntBase::sMax;
    };
    return isFinite(fA) && isFinite(fB) && GetLower() >= SubIntBase::sMin && GetUpper() <= SubIntBase::sMax;
  }

  // In the order of the loops and with the element arithmetic, whatever the operands are.
  CandidateValues Collect() const {
    const auto combine = fAreSums ? SubIntBase::base_plus : SubIntBase::base_minus;
    const bool isExact = AreExact();
    CandidateValues candidates(isExact ? GetLower() : SubIntBase::sMin, isExact ? GetUpper() : SubIntBase::sMax);
    for (const VokLong a : fA) {
      for (const VokLong b : fB) {
        if (!candidates.Insert(combine(a, b))) {
          return candidates;
        }
      }
    }
    return candidates;
  }

  // Calls keep(sums). Requires: AreExact(); at most kMaxCandidates members in b.
  template <class Keep>
  unsigned WithSums(Keep keep) const {
    if (fAreSums) {
      return keep(Sums{fA, fB, false});
    }
    std::array<VokLong, kMaxCandidates> negated;
    std::transform(fB.rbegin(), fB.rend(), negated.begin(), [](VokLong v) { return -v; });
    return keep(Sums{fA, {negated.data(), fB.size()}, true});
  }
};

int Narrow(VokFenEnumInteger& set, const Pairs& pairs) {
  if (set.ReadsNil()) {
    return 0;
  }
  if (pairs.fA.empty() || pairs.fB.empty()) {
    return set.SetNilValue();
  }
  const bool isExact = pairs.AreExact();
  if (isExact && pairs.fA.size() + pairs.fB.size() - 1 > LimitOfCandidates()) {
    return 0;
  }
  if (!isExact || set.GetMembers().empty() || set.GetMembers().size() > kMaxCandidates) {
    return pairs.Collect().Narrow(set);
  }
  std::array<VokLong, kMaxCandidates + kSlack> kept;
  const unsigned count =
      pairs.WithSums([&](const Sums& sums) { return KeepSums(sums, set.GetMembers(), kept.data()); });
  return count == kAny ? 0 : set.ReplaceMembers({kept.data(), count});
}

int Narrow(VokFenSingleInteger& single, const Pairs& pairs) {
  const VokLong v = single.GetExactValue();
  const bool isExact = !pairs.fA.empty() && !pairs.fB.empty() && pairs.AreExact();
  if (isExact && pairs.fA.size() + pairs.fB.size() - 1 > LimitOfCandidates()) {
    return 0;
  }
  if (pairs.fA.empty() || pairs.fB.empty()) {
    return CandidateValues(0, 0).Narrow(single);
  }
  if (!isExact || v == VokFenSingleInteger::sNC_INT_NIL) {
    return pairs.Collect().Narrow(single);
  }
  if (v == VokFenSingleInteger::sNC_INT_ANY) {
    // More than one candidate tells nothing, and with one pair there is one.
    return pairs.fA.size() + pairs.fB.size() > 2 ? 0 : pairs.Collect().Narrow(single);
  }
  std::array<VokLong, 1 + kSlack> kept;
  const unsigned count = pairs.WithSums([&](const Sums& sums) { return KeepSums(sums, {&v, 1}, kept.data()); });
  return count == 0 ? single.SetNilValue() : 0;
}

}  // namespace

int VokFenEnumInteger::CalcSumValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowResult(*this, a, b, &VokFenEnumInteger::CalcSumValue);
}

int VokFenEnumInteger::CalcSumValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b) {
  return a.ReadsAny() || b.ReadsAny() ? 0 : Narrow(*this, {a.GetMembers(), b.GetMembers(), true});
}

int VokFenEnumInteger::CalcFirstInverseSumValue(VokTarnNumber& x, const VokTarnNumber& y) const {
  return NarrowFirst(*this, x, y, &VokFenEnumInteger::CalcFirstInverseSumValue,
                     &VokFenEnumInteger::CalcFirstInverseSumValue);
}

int VokFenEnumInteger::CalcFirstInverseSumValue(VokFenEnumInteger& x, const VokFenEnumInteger& y) const {
  return y.ReadsAny() ? 0 : Narrow(x, {GetMembers(), y.GetMembers(), false});
}

int VokFenEnumInteger::CalcFirstInverseSumValue(VokFenSingleInteger& x, const VokFenEnumInteger& y) const {
  return y.ReadsAny() ? 0 : Narrow(x, {GetMembers(), y.GetMembers(), false});
}
