// z = -a. Negation wraps: the smallest 32-bit number is its own negative.

#include "domain/VokFenEnumInteger.h"
#include "narrowing/dispatchFrame.h"
#include "narrowing/negated.h"

using namespace VokFenNarrowing;

int VokFenEnumInteger::CalcNegativeValue(const VokTarnNumber& a) {
  return NarrowLeft(*this, a, &VokFenEnumInteger::CalcNegativeValue);
}

int VokFenEnumInteger::CalcNegativeValue(const VokFenEnumInteger& a) {
  return a.ReadsAny() ? 0 : IntersectValues(Negated(a.GetMembers()).Get(), 0, a.fEmptyMeansAny);
}

int VokFenEnumInteger::CalcInverseNegativeValue(VokTarnNumber& x) const {
  return NarrowRight(*this, x, &VokFenEnumInteger::CalcInverseNegativeValue,
                     &VokFenEnumInteger::CalcInverseNegativeValue);
}

int VokFenEnumInteger::CalcInverseNegativeValue(VokFenEnumInteger& x) const {
  return x.CalcNegativeValue(*this);
}

int VokFenEnumInteger::CalcInverseNegativeValue(VokFenSingleInteger& x) const {
  if (x.IsUndefined() == 0) {
    return Contains(VokWrapNegate(x.GetExactValue())) != 0 ? 0 : MakeNil(x);
  }
  if (GetCount() != 1) {
    return 0;
  }
  x.SetExactValue(VokWrapNegate(GetValue(0)));
  return 1;
}
