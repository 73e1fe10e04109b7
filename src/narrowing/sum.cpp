// z = a + b, by every pair of members. What happens beyond the ends of the integer range is the element
// arithmetic's business.

#include "domain/VokFenEnumInteger.h"
#include "narrowing/candidateSet.h"
#include "narrowing/dispatchFrame.h"

using namespace VokFenNarrowing;

int VokFenEnumInteger::CalcSumValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowResult(*this, a, b, &VokFenEnumInteger::CalcSumValue);
}

int VokFenEnumInteger::CalcSumValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b) {
  if (a.IsUndefined() != 0 || b.IsUndefined() != 0) {
    return 0;
  }
  return Intersect(CollectPairs(a, b, SubIntBase::base_plus));
}

int VokFenEnumInteger::CalcFirstInverseSumValue(VokTarnNumber& x, const VokTarnNumber& y) const {
  return NarrowFirst(*this, x, y, &VokFenEnumInteger::CalcFirstInverseSumValue,
                     &VokFenEnumInteger::CalcFirstInverseSumValue);
}

int VokFenEnumInteger::CalcFirstInverseSumValue(VokFenEnumInteger& x, const VokFenEnumInteger& y) const {
  return y.IsUndefined() != 0 ? 0 : x.Intersect(CollectPairs(*this, y, SubIntBase::base_minus));
}

int VokFenEnumInteger::CalcFirstInverseSumValue(VokFenSingleInteger& x, const VokFenEnumInteger& y) const {
  return y.IsUndefined() != 0 ? 0 : CollectPairs(*this, y, SubIntBase::base_minus).IntersectInverse(x);
}
