// z = a mod b, the remainder of the division that truncates toward zero: it has the sign of the dividend
// (-7 mod 2 is -1, 7 mod -2 is 1). Computed on the plain numbers; the special values are numbers here.
//
// A divisor 0 is treated in two ways on purpose. The result and the dividend are not narrowed at all while 0
// is a possible divisor; when the divisor itself is narrowed, 0 always stays and the others are tested. There,
// a dividend without members lets no divisor stay, 0 included, even when the dividend is Any.
//
// Cost  O(pairs) at most. The result is narrowed as in pairs.h, between the ends that the largest divisor sets. The
//       inverses keep or drop members, so that no limit on candidates matters: one partner that fits settles a member,
//       and the one that has fitted last is tried first.

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "domain/VokFenEnumInteger.h"
#include "narrowing/dispatchFrame.h"
#include "narrowing/pairs.h"

using namespace VokFenNarrowing;

namespace {

// Requires: b is not 0. The quotient of the smallest number by -1 does not exist, the remainder does.
VokLong Remainder(VokLong a, VokLong b) {
  return b == -1 ? 0 : a % b;
}

bool MayDivideByZero(const VokFenEnumInteger& divisors) {
  return divisors.ReadsAny() || divisors.Contains(0) != 0;
}

// Narrows `narrowed` to the members that fit(member, partner) accepts with one of the partners. A member kept by
// several partners counts once: even a set of sMAX_CARD members that are all kept is left alone.
template <class Fits>
int KeepFitting(VokFenEnumInteger& narrowed, std::span<const VokLong> partners, Fits fits) {
  const std::span<const VokLong> members = narrowed.GetMembers();
  if (members.empty()) {
    return 0;
  }
  // Operands may be the narrowed set, so no member moves before all are settled.
  CandidateValues kept(members.front(), members.back());
  std::size_t last = 0;
  for (const VokLong member : members) {
    for (std::size_t i = 0; i <= partners.size() && !partners.empty(); ++i) {
      const std::size_t partner = i == 0 ? last : i - 1;
      if (fits(member, partners[partner])) {
        last = partner;
        kept.Insert(member);
        break;
      }
    }
  }
  return kept.GetCount() == members.size() ? 0 : kept.Narrow(narrowed);
}

}  // namespace

int VokFenEnumInteger::CalcModValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowResult(*this, a, b, &VokFenEnumInteger::CalcModValue);
}

int VokFenEnumInteger::CalcModValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b) {
  if (a.ReadsAny() || ReadsNil() || MayDivideByZero(b)) {
    return 0;
  }
  if (a.GetCount() == 0 || b.GetCount() == 0) {
    return SetNilValue();
  }
  const std::span<const VokLong> dividends = a.GetMembers();
  const std::span<const VokLong> divisors = b.GetMembers();
  const std::int64_t largest =
      std::max(std::abs(std::int64_t{divisors.front()}), std::abs(std::int64_t{divisors.back()}));
  const std::int64_t lower = std::max<std::int64_t>(std::min(dividends.front(), 0), 1 - largest);
  const std::int64_t upper = std::min<std::int64_t>(std::max(dividends.back(), 0), largest - 1);
  return NarrowToPairs(*this, dividends, divisors.size(), lower, upper, [divisors](VokLong dividend, auto sink) {
    for (const VokLong divisor : divisors) {
      sink(Remainder(dividend, divisor));
    }
  });
}

int VokFenEnumInteger::CalcFirstInverseModValue(VokTarnNumber& x, const VokTarnNumber& y) const {
  return NarrowFirst(*this, x, y, &VokFenEnumInteger::CalcFirstInverseModValue,
                     &VokFenEnumInteger::CalcFirstInverseModValue);
}

int VokFenEnumInteger::CalcFirstInverseModValue(VokFenEnumInteger& x, const VokFenEnumInteger& y) const {
  if (x.IsUndefined() != 0 || MayDivideByZero(y)) {
    return 0;
  }
  const MemberTest results(*this);
  return KeepFitting(x, y.GetMembers(), [&results](VokLong dividend, VokLong divisor) {
    return results.Has(Remainder(dividend, divisor));
  });
}

int VokFenEnumInteger::CalcFirstInverseModValue(VokFenSingleInteger& x, const VokFenEnumInteger& y) const {
  if (x.IsUndefined() != 0 || MayDivideByZero(y)) {
    return 0;
  }
  for (unsigned j = 0; j < y.GetCount(); ++j) {
    if (Contains(Remainder(x.GetExactValue(), y.GetValue(j))) != 0) {
      return 0;
    }
  }
  return MakeNil(x);
}

int VokFenEnumInteger::CalcSecondInverseModValue(const VokTarnNumber& a, VokTarnNumber& b) const {
  return NarrowSecond(*this, a, b, &VokFenEnumInteger::CalcSecondInverseModValue);
}

int VokFenEnumInteger::CalcSecondInverseModValue(const VokFenEnumInteger& a, VokFenEnumInteger& b) const {
  if (IsUndefined() != 0 || b.IsUndefined() != 0) {
    return 0;
  }
  const MemberTest results(*this);
  return KeepFitting(b, a.GetMembers(), [&results](VokLong divisor, VokLong dividend) {
    return divisor == 0 || results.Has(Remainder(dividend, divisor));
  });
}
