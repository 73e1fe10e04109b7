// x = y. The only relation that knows intervals; every state is settled by the intersections.

#include "domain/VokFenEnumInteger.h"
#include "domain/operandTypes.h"

int VokFenEnumInteger::CalcEqualValue(const VokTarnAny& y) {
  if (const VokFenEnumInteger* const set = CastToEnumInteger(&y)) {
    return Intersect(*set);
  }
  if (IsOperandOf(y, VokFenSingleInteger::sIdent) != 0) {
    return Intersect(static_cast<const VokFenSingleInteger&>(y));
  }
  if (IsOperandOf(y, VokFenIntervalInteger::sIdent) != 0) {
    return Intersect(static_cast<const VokFenIntervalInteger&>(y));
  }
  // The status is 1 also when the set has been Nil before.
  SetNilValue();
  return 1;
}

int VokFenEnumInteger::CalcInverseEqualValue(VokTarnAny& y) const {
  if (VokFenEnumInteger* const set = CastToEnumInteger(&y)) {
    return set->Intersect(*this);
  }
  if (y.IsDerivedFrom(VokFenSingleInteger::sIdent) != 0) {
    return IntersectInverse(static_cast<VokFenSingleInteger&>(y));
  }
  if (y.IsDerivedFrom(VokFenIntervalInteger::sIdent) != 0) {
    return IntersectInverse(static_cast<VokFenIntervalInteger&>(y));
  }
  y.SetNilValue();
  return 1;
}
