// x <= y, x < y, x >= y and x > y, narrowed by bounds: x is cut at its high end, y at its low end, nothing in the
// middle goes. On sets, x >= y is y <= x and x > y is y < x with the operands exchanged.
//
// The cuts of x < y are one member wider than the mathematics where the bound is not itself a member:
// {1, 3, 7} < {2, 5} leaves {1}, though 3 < 5. So is the cut of y: {4} < {2, 5, 6} leaves y = {6}. A cut that
// takes every member leaves Nil, whatever the flag of the set says.

#include <optional>

#include "domain/VokFenEnumInteger.h"
#include "narrowing/dispatchFrame.h"

using namespace VokFenNarrowing;

namespace {

// The status where the states alone decide; none when both sets have members.
std::optional<int> SettleStates(VokFenEnumInteger& narrowed, const VokFenEnumInteger& given) {
  if (narrowed.ReadsAny() || given.ReadsAny() || narrowed.GetMembers().empty()) {
    return 0;
  }
  if (given.GetMembers().empty()) {
    return MakeNil(narrowed);
  }
  return std::nullopt;
}

int EndCut(VokFenEnumInteger& cut) {
  if (cut.GetMembers().empty()) {
    cut.SetNilValue();
  }
  return 1;
}

}  // namespace

int VokFenEnumInteger::CalcLessOrEqualValue(const VokTarnAny& y) {
  return NarrowLeft(*this, y, &VokFenEnumInteger::CalcLessOrEqualValue);
}

int VokFenEnumInteger::CalcLessOrEqualValue(const VokFenEnumInteger& y) {
  if (const auto status = SettleStates(*this, y)) {
    return *status;
  }
  const SubIntBase bound = y.fValues[y.GetCount() - 1];
  if (bound >= fValues[GetCount() - 1]) {
    return 0;
  }
  const unsigned i = fValues.FindUpperBound(bound, 0);
  fValues.DetachAt(fValues[i] == bound ? i + 1 : i, GetCount());
  return EndCut(*this);
}

int VokFenEnumInteger::CalcInverseLessOrEqualValue(VokTarnAny& y) const {
  return NarrowRight(*this, y, &VokFenEnumInteger::CalcInverseLessOrEqualValue,
                     &VokFenEnumInteger::CalcInverseLessOrEqualValue);
}

int VokFenEnumInteger::CalcInverseLessOrEqualValue(VokFenEnumInteger& y) const {
  if (const auto status = SettleStates(y, *this)) {
    return *status;
  }
  const SubIntBase bound = fValues[0];
  if (bound <= y.fValues[0]) {
    return 0;
  }
  const unsigned i = y.fValues.FindLowerBound(bound, 0);
  y.fValues.DetachAt(0, y.fValues[i] == bound ? i : i + 1);
  return EndCut(y);
}

// On singles: a known value stays or becomes Nil, an unknown one stays.

int VokFenEnumInteger::CalcInverseLessOrEqualValue(VokFenSingleInteger& y) const {
  return GetCount() == 0 || y.IsUndefined() != 0 || GetValue(0) <= y.GetExactValue() ? 0 : MakeNil(y);
}

int VokFenEnumInteger::CalcInverseLessValue(VokFenSingleInteger& y) const {
  return GetCount() == 0 || y.IsUndefined() != 0 || GetValue(0) < y.GetExactValue() ? 0 : MakeNil(y);
}

int VokFenEnumInteger::CalcInverseNotLessValue(VokFenSingleInteger& y) const {
  return GetCount() == 0 || y.IsUndefined() != 0 || GetValue(GetCount() - 1) >= y.GetExactValue() ? 0 : MakeNil(y);
}

int VokFenEnumInteger::CalcInverseNotLessAndUnequalValue(VokFenSingleInteger& y) const {
  return GetCount() == 0 || y.IsUndefined() != 0 || GetValue(GetCount() - 1) > y.GetExactValue() ? 0 : MakeNil(y);
}

int VokFenEnumInteger::CalcLessValue(const VokTarnScalar& y) {
  return NarrowLeft(*this, y, &VokFenEnumInteger::CalcLessValue);
}

int VokFenEnumInteger::CalcLessValue(const VokFenEnumInteger& y) {
  if (const auto status = SettleStates(*this, y)) {
    return *status;
  }
  const SubIntBase bound = y.fValues[y.GetCount() - 1];
  if (fValues[GetCount() - 1] < bound) {
    return 0;
  }
  // The member at i goes without a test whether it equals the bound.
  const unsigned i = fValues.FindLowerBound(bound, 0);
  if (i >= GetCount()) {
    return MakeNil(*this);
  }
  fValues.DetachAt(i, GetCount());
  return EndCut(*this);
}

int VokFenEnumInteger::CalcInverseLessValue(VokTarnScalar& y) const {
  return NarrowRight(*this, y, &VokFenEnumInteger::CalcInverseLessValue, &VokFenEnumInteger::CalcInverseLessValue);
}

int VokFenEnumInteger::CalcInverseLessValue(VokFenEnumInteger& y) const {
  if (IsUndefined() != 0) {
    // Nothing is below the smallest integer. One-sided: an Undefined y does not take sNC_INT_MAX from x.
    if (y.GetCount() == 0 || y.GetValue(0) != VokFenSingleInteger::sNC_INT_MIN) {
      return 0;
    }
    y.fValues.DetachAt(0, 1);
    return EndCut(y);
  }
  if (const auto status = SettleStates(y, *this)) {
    return *status;
  }
  const SubIntBase bound = fValues[0];
  if (bound < y.fValues[0]) {
    return 0;
  }
  const unsigned i = y.fValues.FindUpperBound(bound, 0);
  if (i >= y.GetCount()) {
    return MakeNil(y);
  }
  y.fValues.DetachAt(0, i + 1);
  return EndCut(y);
}

int VokFenEnumInteger::CalcNotLessValue(const VokTarnScalar& y) {
  return NarrowLeft(*this, y, &VokFenEnumInteger::CalcNotLessValue);
}

int VokFenEnumInteger::CalcNotLessValue(const VokFenEnumInteger& y) {
  return y.CalcInverseLessOrEqualValue(*this);
}

int VokFenEnumInteger::CalcInverseNotLessValue(VokTarnScalar& y) const {
  return NarrowRight(*this, y, &VokFenEnumInteger::CalcInverseNotLessValue,
                     &VokFenEnumInteger::CalcInverseNotLessValue);
}

int VokFenEnumInteger::CalcInverseNotLessValue(VokFenEnumInteger& y) const {
  return y.CalcLessOrEqualValue(*this);
}

int VokFenEnumInteger::CalcNotLessAndUnequalValue(const VokTarnAny& y) {
  return NarrowLeft(*this, y, &VokFenEnumInteger::CalcNotLessAndUnequalValue);
}

int VokFenEnumInteger::CalcNotLessAndUnequalValue(const VokFenEnumInteger& y) {
  return y.CalcInverseLessValue(*this);
}

int VokFenEnumInteger::CalcInverseNotLessAndUnequalValue(VokTarnAny& y) const {
  return NarrowRight(*this, y, &VokFenEnumInteger::CalcInverseNotLessAndUnequalValue,
                     &VokFenEnumInteger::CalcInverseNotLessAndUnequalValue);
}

int VokFenEnumInteger::CalcInverseNotLessAndUnequalValue(VokFenEnumInteger& y) const {
  return y.CalcLessValue(*this);
}
