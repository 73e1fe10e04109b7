// z = min(a, b) and z = max(a, b).
//
// The result keeps its members that are in a or in b and within the bound that both operands allow. The
// inverses infer only a >= min(z) and a <= max(z) and never look at b: z = {3}, a = {3, 4}, b = {5} leaves 4 in
// a, although no minimum is 3 then.

#include "domain/VokFenEnumInteger.h"
#include "domain/elementPredicates.h"
#include "narrowing/dispatchFrame.h"

using namespace VokFenNarrowing;

int VokFenEnumInteger::CalcMinValue(const VokTarnAny& a, const VokTarnAny& b) {
  return NarrowResult(*this, a, b, &VokFenEnumInteger::CalcMinValue);
}

int VokFenEnumInteger::CalcMinValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b) {
  if (a.IsUndefined() != 0) {
    return CalcLessOrEqualValue(b);
  }
  if (b.IsUndefined() != 0) {
    return CalcLessOrEqualValue(a);
  }
  if (a.GetCount() == 0 || b.GetCount() == 0) {
    return MakeNil(*this);
  }
  SubIntBase bound = a.fValues[a.GetCount() - 1];
  if (b.fValues[b.GetCount() - 1] < bound) {
    bound = b.fValues[b.GetCount() - 1];
  }
  return Intersect(a, b, NotAboveBound, &bound);
}

int VokFenEnumInteger::CalcFirstInverseMinValue(VokTarnAny& a, const VokTarnAny& b) const {
  return NarrowFirst(*this, a, b, &VokFenEnumInteger::CalcFirstInverseMinValue,
                     &VokFenEnumInteger::CalcFirstInverseMinValue);
}

int VokFenEnumInteger::CalcFirstInverseMinValue(VokFenEnumInteger& a, const VokFenEnumInteger&) const {
  return CalcInverseLessOrEqualValue(a);
}

int VokFenEnumInteger::CalcFirstInverseMinValue(VokFenSingleInteger& a, const VokFenEnumInteger&) const {
  return CalcInverseLessOrEqualValue(a);
}

int VokFenEnumInteger::CalcMaxValue(const VokTarnAny& a, const VokTarnAny& b) {
  return NarrowResult(*this, a, b, &VokFenEnumInteger::CalcMaxValue);
}

int VokFenEnumInteger::CalcMaxValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b) {
  if (a.IsUndefined() != 0) {
    return b.CalcInverseLessOrEqualValue(*this);
  }
  if (b.IsUndefined() != 0) {
    return a.CalcInverseLessOrEqualValue(*this);
  }
  if (a.GetCount() == 0 || b.GetCount() == 0) {
    return MakeNil(*this);
  }
  SubIntBase bound = a.fValues[0];
  if (bound < b.fValues[0]) {
    bound = b.fValues[0];
  }
  return Intersect(a, b, NotBelowBound, &bound);
}

int VokFenEnumInteger::CalcFirstInverseMaxValue(VokTarnAny& a, const VokTarnAny& b) const {
  return NarrowFirst(*this, a, b, &VokFenEnumInteger::CalcFirstInverseMaxValue,
                     &VokFenEnumInteger::CalcFirstInverseMaxValue);
}

int VokFenEnumInteger::CalcFirstInverseMaxValue(VokFenEnumInteger& a, const VokFenEnumInteger&) const {
  return a.CalcLessOrEqualValue(*this);
}

int VokFenEnumInteger::CalcFirstInverseMaxValue(VokFenSingleInteger& a, const VokFenEnumInteger&) const {
  return CalcInverseNotLessValue(a);
}
