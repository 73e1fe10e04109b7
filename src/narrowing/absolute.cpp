// z = |a|, by splitting a set at 0 and negating one part.
//
// The parts keep the flag of the set that they are cut from, and an intersection with a part that reads Any
// removes nothing. So a set whose flag says Any narrows only where both parts have members: z = |{3}| with such
// a flag leaves z alone.

#include "domain/VokFenEnumInteger.h"
#include "domain/elementPredicates.h"
#include "narrowing/dispatchFrame.h"

using namespace VokFenNarrowing;

int VokFenEnumInteger::CalcAbsoluteValue(const VokTarnNumber& a) {
  return NarrowLeft(*this, a, &VokFenEnumInteger::CalcAbsoluteValue);
}

int VokFenEnumInteger::CalcAbsoluteValue(const VokFenEnumInteger& a) {
  if (a.IsUndefined() != 0 && IsUndefined() != 0) {
    return 0;
  }
  // z stands in for an argument of which nothing is known: that leaves its members from 0 on.
  const VokFenEnumInteger& arguments = a.IsUndefined() != 0 ? *this : a;
  VokFenEnumInteger below(arguments);
  VokFenEnumInteger above(arguments);
  const unsigned k = below.fValues.FindUpperBound(SubIntBase(), 0);
  below.fValues.DetachAt(k, below.GetCount());
  above.fValues.DetachAt(0, k);
  below.Minus();
  return Intersect(below, above, AlwaysTrue, nullptr);
}

int VokFenEnumInteger::CalcInverseAbsoluteValue(VokTarnNumber& x) const {
  return NarrowRight(*this, x, &VokFenEnumInteger::CalcInverseAbsoluteValue,
                     &VokFenEnumInteger::CalcInverseAbsoluteValue);
}

int VokFenEnumInteger::CalcInverseAbsoluteValue(VokFenEnumInteger& x) const {
  if (IsUndefined() != 0) {
    return 0;
  }
  const unsigned k = fValues.FindUpperBound(SubIntBase(), 0);
  if (k >= GetCount()) {
    return MakeNil(x);
  }
  VokFenEnumInteger above(*this);
  above.fValues.DetachAt(0, k);
  VokFenEnumInteger below(above);
  below.Minus();
  return x.Intersect(above, below, AlwaysTrue, nullptr);
}

int VokFenEnumInteger::CalcInverseAbsoluteValue(VokFenSingleInteger& x) const {
  if (x.IsUndefined() != 0) {
    // z = {3} leaves two values to choose from.
    if (GetCount() != 1 || GetValue(0) != 0) {
      return 0;
    }
    x.SetExactValue(0);
    return 1;
  }
  const VokLong v = x.GetExactValue();
  return Contains(v < 0 ? VokWrapNegate(v) : v) != 0 ? 0 : MakeNil(x);
}
