#include "numbers/narrowByBounds.h"

#include "numbers/VokFenIntervalInteger.h"
#include "numbers/VokFenSingleInteger.h"

namespace {

VokTarnInteger* CastToInteger(VokTarnAny& v) {
  return v.IsDerivedFrom(VokTarnInteger::sIdent) != 0 ? static_cast<VokTarnInteger*>(&v) : nullptr;
}

int BringWithin(VokFenSingleInteger& x, VokFenBounds bounds) {
  if (x.IsUndefined() != 0) {
    return bounds.IsPoint() ? x.SetExactValue(bounds.lower) : 0;
  }
  return bounds.Intersection(VokFenBounds::Of(x)).IsEmpty() ? MakeNil(x) : 0;
}

int BringWithin(VokFenIntervalInteger& x, VokFenBounds bounds) {
  return x.SetLowerBound(bounds.lower) | x.SetUpperBound(bounds.upper);
}

// A type that this library does not know is narrowed by its own operations, and these are given single values
// only: that is what every type narrows by without losing a value that has a partner.
int BringWithin(VokTarnInteger& x, VokFenBounds bounds) {
  if (bounds.IsPoint()) {
    return x.CalcEqualValue(VokFenSingleInteger(bounds.lower));
  }
  int changed = 0;
  if (bounds.upper < x.GetUpperBound()) {
    changed |= x.CalcLessOrEqualValue(VokFenSingleInteger(bounds.upper));
  }
  if (bounds.lower > x.GetLowerBound()) {
    changed |= x.CalcNotLessValue(VokFenSingleInteger(bounds.lower));
  }
  return changed;
}

// Requires: x is not Nil.
int BringWithinAny(VokTarnInteger& x, VokFenBounds bounds) {
  if (bounds.IsEmpty()) {
    return MakeNil(x);
  }
  if (x.IsDerivedFrom(VokFenIntervalInteger::sIdent) != 0) {
    return BringWithin(static_cast<VokFenIntervalInteger&>(x), bounds);
  }
  if (x.IsDerivedFrom(VokFenSingleInteger::sIdent) != 0) {
    return BringWithin(static_cast<VokFenSingleInteger&>(x), bounds);
  }
  return BringWithin(x, bounds);
}

}  // namespace

const VokTarnInteger* CastToInteger(const VokTarnAny& v) {
  return v.IsDerivedFrom(VokTarnInteger::sIdent) != 0 ? static_cast<const VokTarnInteger*>(&v) : nullptr;
}

int MakeNil(VokTarnAny& v) {
  if (v.IsNil() != 0) {
    return 0;
  }
  v.SetNilValue();
  return 1;
}

int NarrowByBounds(VokTarnAny& x, const VokTarnAny& a, VokFenProjection project) {
  VokTarnInteger* const narrowed = CastToInteger(x);
  const VokTarnInteger* const other = CastToInteger(a);
  if (narrowed == nullptr || other == nullptr) {
    return MakeNil(x);
  }
  const VokFenBounds own = VokFenBounds::Of(*narrowed);
  const VokFenBounds bounds = VokFenBounds::Of(*other);
  if (own.IsEmpty()) {
    return 0;
  }
  return bounds.IsEmpty() ? MakeNil(x) : BringWithinAny(*narrowed, project(own, bounds));
}

int NarrowByBounds(VokTarnAny& x, const VokTarnAny& a, const VokTarnAny& b, VokFenBinaryProjection project) {
  VokTarnInteger* const narrowed = CastToInteger(x);
  const VokTarnInteger* const first = CastToInteger(a);
  const VokTarnInteger* const second = CastToInteger(b);
  if (narrowed == nullptr || first == nullptr || second == nullptr) {
    return MakeNil(x);
  }
  const VokFenBounds own = VokFenBounds::Of(*narrowed);
  const VokFenBounds boundsA = VokFenBounds::Of(*first);
  const VokFenBounds boundsB = VokFenBounds::Of(*second);
  if (own.IsEmpty()) {
    return 0;
  }
  if (boundsA.IsEmpty() || boundsB.IsEmpty()) {
    return MakeNil(x);
  }
  return BringWithinAny(*narrowed, project(own, boundsA, boundsB));
}

VokFenBounds CommonBounds(VokFenBounds x, const VokTarnInteger& y) {
  const VokFenBounds other = VokFenBounds::Of(y);
  VokFenBounds common = x.Intersection(other);
  if (common.IsEmpty() || y.IsUndefined() != 0) {
    return common;
  }
  // y has a value at and beyond every bound inside it, so that there is a nearest one to find.
  if (common.lower > other.lower) {
    common.lower = y.GetNextExactValue(common.lower - 1);
  }
  if (common.upper < other.upper && !common.IsEmpty()) {
    common.upper = y.GetPrevExactValue(common.upper + 1);
  }
  return common;
}
