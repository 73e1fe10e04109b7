// z = a mod b, the remainder of the division that truncates toward zero: it has the sign of the dividend
// (-7 mod 2 is -1, 7 mod -2 is 1). Computed on the plain numbers; the special values are numbers here.
//
// A divisor 0 is treated in two ways on purpose. The result and the dividend are not narrowed at all while 0
// is a possible divisor; when the divisor itself is narrowed, 0 always stays and the others are tested. There,
// a dividend without members lets no divisor stay, 0 included, even when the dividend is Any.

#include <cstdint>

#include "domain/VokFenEnumInteger.h"
#include "narrowing/candidateSet.h"
#include "narrowing/dispatchFrame.h"

using namespace VokFenNarrowing;

namespace {

// Requires: b is not 0. In 64 bits, so that the smallest number modulo -1 is 0.
VokLong Remainder(VokLong a, VokLong b) {
  return static_cast<VokLong>(std::int64_t{a} % std::int64_t{b});
}

bool MayDivideByZero(const VokFenEnumInteger& divisors) {
  return divisors.IsUndefined() != 0 || divisors.Contains(0) != 0;
}

}  // namespace

int VokFenEnumInteger::CalcModValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowResult(*this, a, b, &VokFenEnumInteger::CalcModValue);
}

int VokFenEnumInteger::CalcModValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b) {
  if (a.IsUndefined() != 0 || MayDivideByZero(b)) {
    return 0;
  }
  return Intersect(CollectPairs(a, b, Remainder));
}

int VokFenEnumInteger::CalcFirstInverseModValue(VokTarnNumber& x, const VokTarnNumber& y) const {
  return NarrowFirst(*this, x, y, &VokFenEnumInteger::CalcFirstInverseModValue,
                     &VokFenEnumInteger::CalcFirstInverseModValue);
}

int VokFenEnumInteger::CalcFirstInverseModValue(VokFenEnumInteger& x, const VokFenEnumInteger& y) const {
  if (x.IsUndefined() != 0 || MayDivideByZero(y)) {
    return 0;
  }
  VokFenEnumInteger kept = NoCandidates();
  for (unsigned i = 0; i < x.GetCount(); ++i) {
    for (unsigned j = 0; j < y.GetCount(); ++j) {
      if (Contains(Remainder(x.GetValue(i), y.GetValue(j))) != 0) {
        kept.Insert(x.GetValue(i));
      }
    }
  }
  return x.Intersect(kept);
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
  VokFenEnumInteger kept = NoCandidates();
  for (unsigned i = 0; i < a.GetCount(); ++i) {
    for (unsigned j = 0; j < b.GetCount(); ++j) {
      const VokLong divisor = b.GetValue(j);
      if (divisor == 0 || Contains(Remainder(a.GetValue(i), divisor)) != 0) {
        kept.Insert(divisor);
      }
    }
  }
  return b.Intersect(kept);
}
