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

bool MayDivideByZero(const VokFenEnumInteger& divisors) {
  return divisors.ReadsAny() || divisors.Contains(0) != 0;
}

// Keeps the members that fits(member, partner) accepts with one of the partners, given by position. A member kept by
// several partners counts once: even a set of sMAX_CARD members that are all kept is left alone.
template <class Fits>
int KeepFitting(VokFenEnumInteger& narrowed, std::size_t partners, Fits fits) {
  const std::span<const VokLong> members = narrowed.GetMembers();
  std::size_t last = 0;
  const auto isKept = [&](VokLong member) {
    if (partners > 0 && fits(member, last)) {
      return true;
    }
    for (std::size_t i = 0; i < partners; ++i) {
      if (fits(member, i)) {
        last = i;
        return true;
      }
    }
    return false;
  };
  const auto dropped = std::find_if_not(members.begin(), members.end(), isKept);
  if (dropped == members.end()) {
    return 0;
  }
  // Operands may be the narrowed set, so no member moves before all are settled.
  CandidateValues kept(members.front(), members.back());
  std::for_each(members.begin(), dropped, [&kept](VokLong member) { kept.Insert(member); });
  std::for_each(dropped + 1, members.end(), [&](VokLong member) {
    if (isKept(member)) {
      kept.Insert(member);
    }
  });
  return kept.Narrow(narrowed);
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
  const Divisors list(divisors);
  return NarrowToPairs(*this, dividends, divisors.size(), lower, upper, [&list](VokLong dividend, auto sink) {
    for (std::size_t i = 0; i < list.GetCount(); ++i) {
      sink(list.Remainder(dividend, i));
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
  const Divisors divisors(y.GetMembers());
  return KeepFitting(x, divisors.GetCount(), [&](VokLong dividend, std::size_t divisor) {
    return results.Has(divisors.Remainder(dividend, divisor));
  });
}

int VokFenEnumInteger::CalcFirstInverseModValue(VokFenSingleInteger& x, const VokFenEnumInteger& y) const {
  if (x.IsUndefined() != 0 || MayDivideByZero(y)) {
    return 0;
  }
  for (unsigned j = 0; j < y.GetCount(); ++j) {
    if (Contains(Divisors::Remainder(x.GetExactValue(), y.GetValue(j), Divisors::ReciprocalOf(y.GetValue(j)))) != 0) {
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
  const std::span<const VokLong> dividends = a.GetMembers();
  return KeepFitting(b, dividends.size(), [&](VokLong divisor, std::size_t dividend) {
    return divisor == 0 ||
           results.Has(Divisors::Remainder(dividends[dividend], divisor, Divisors::ReciprocalOf(divisor)));
  });
}
