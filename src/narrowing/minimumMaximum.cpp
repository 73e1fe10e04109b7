// z = min(a, b) and z = max(a, b).
//
// The result keeps its members that are in a or in b and within the bound that both operands allow. The
// inverses infer only a >= min(z) and a <= max(z) and never look at b: z = {3}, a = {3, 4}, b = {5} leaves 4 in
// a, although no minimum is 3 then.

#include "domain/VokFenEnumInteger.h"
#include "narrowing/dispatchFrame.h"
#include "narrowing/unionOf.h"

using namespace VokFenNarrowing;

namespace {

// Leaves z the members of `values`, the part of a union within the bound. An Any z takes no empty part.
int Keep(VokFenEnumInteger& z, std::span<const VokLong> values) {
  return values.empty() && z.ReadsAny() ? 0 : z.IntersectValues(values);
}

}  // namespace

int VokFenEnumInteger::CalcMinValue(const VokTarnAny& a, const VokTarnAny& b) {
  return NarrowResult(*this, a, b, &VokFenEnumInteger::CalcMinValue);
}

int VokFenEnumInteger::CalcMinValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b) {
  if (a.ReadsAny()) {
    return CalcLessOrEqualValue(b);
  }
  if (b.ReadsAny()) {
    return CalcLessOrEqualValue(a);
  }
  if (a.GetMembers().empty() || b.GetMembers().empty()) {
    return MakeNil(*this);
  }
  const UnionOf both(a.GetMembers(), b.GetMembers());
  if (both.IsAny()) {
    return 0;
  }
  const auto values = both.Get();
  const VokLong bound = std::min(a.GetMembers().back(), b.GetMembers().back());
  return Keep(*this, {values.begin(), std::upper_bound(values.begin(), values.end(), bound)});
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
  if (a.ReadsAny()) {
    return b.CalcInverseLessOrEqualValue(*this);
  }
  if (b.ReadsAny()) {
    return a.CalcInverseLessOrEqualValue(*this);
  }
  if (a.GetMembers().empty() || b.GetMembers().empty()) {
    return MakeNil(*this);
  }
  const UnionOf both(a.GetMembers(), b.GetMembers());
  if (both.IsAny()) {
    return 0;
  }
  const auto values = both.Get();
  const VokLong bound = std::max(a.GetMembers().front(), b.GetMembers().front());
  return Keep(*this, {std::lower_bound(values.begin(), values.end(), bound), values.end()});
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
