// s = sign(a). The possible signs say which relation between a and 0 holds, and that relation narrows a, with
// its own rules: where only -1 is possible, {-3, 1} becomes Nil, for "less" cuts one member more than it must.

#include "domain/VokFenEnumInteger.h"
#include "narrowing/dispatchFrame.h"

using namespace VokFenNarrowing;

int VokFenEnumInteger::CalcSignumValue(VokTarnInteger& s) const {
  if (s.IsNil() != 0) {
    return 0;
  }
  if (IsUndefined() != 0) {
    return 0;
  }
  if (GetCount() == 0) {
    s.SetNilValue();
    return 1;
  }
  VokFenEnumInteger signs;
  signs.SetNilValue();
  if (GetValue(0) < 0) {
    signs.Insert(-1);
  }
  if (Contains(0) != 0) {
    signs.Insert(0);
  }
  if (GetValue(GetCount() - 1) > 0) {
    signs.Insert(1);
  }
  return signs.CalcInverseEqualValue(s);
}

int VokFenEnumInteger::CalcInverseSignumValue(const VokTarnInteger& s) {
  if (IsNil() != 0) {
    return 0;
  }
  if (s.IsNil() != 0) {
    return MakeNil(*this);
  }
  if (s.IsUndefined() != 0) {
    return 0;
  }
  const VokFenSingleInteger zero(0);
  const bool negative = s.IsIntersected(VokFenSingleInteger(-1)) != 0;
  const bool none = s.IsIntersected(zero) != 0;
  const bool positive = s.IsIntersected(VokFenSingleInteger(1)) != 0;
  switch ((negative ? 1 : 0) + (none ? 2 : 0) + (positive ? 4 : 0)) {
    case 0:
      return MakeNil(*this);
    case 1:
      return CalcLessValue(zero);
    case 2:
      return CalcEqualValue(zero);
    case 3:
      return CalcLessOrEqualValue(zero);
    case 4:
      return CalcNotLessAndUnequalValue(zero);
    case 5:
      return CalcUnequalValue(zero);
    case 6:
      return CalcNotLessValue(zero);
    default:
      return 0;
  }
}
