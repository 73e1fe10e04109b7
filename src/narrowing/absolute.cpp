// z = |a|, by splitting a set at 0 and negating one part.
//
// The parts keep the flag of the set that they are cut from, and an intersection with a part that reads Any
// removes nothing. So a set whose flag says Any narrows only where both parts have members: z = |{3}| with such
// a flag leaves z alone.

#include "domain/VokFenEnumInteger.h"
#include "narrowing/dispatchFrame.h"
#include "narrowing/negated.h"
#include "narrowing/unionOf.h"

using namespace VokFenNarrowing;

namespace {

struct Parts {
  explicit Parts(std::span<const VokLong> values) {
    const auto first = std::lower_bound(values.begin(), values.end(), 0);
    fBelow = {values.begin(), first};
    fFromZero = {first, values.end()};
  }

  std::span<const VokLong> fBelow;
  std::span<const VokLong> fFromZero;
};

int NarrowToUnion(VokFenEnumInteger& set, const UnionOf& values) {
  return values.IsAny() ? 0 : set.IntersectValues(values.Get());
}

}  // namespace

int VokFenEnumInteger::CalcAbsoluteValue(const VokTarnNumber& a) {
  return NarrowLeft(*this, a, &VokFenEnumInteger::CalcAbsoluteValue);
}

int VokFenEnumInteger::CalcAbsoluteValue(const VokFenEnumInteger& a) {
  // z stands in for an argument of which nothing is known: that leaves its members from 0 on.
  const VokFenEnumInteger& arguments = a.ReadsAny() ? *this : a;
  const Parts parts(arguments.GetMembers());
  const int flag = arguments.fEmptyMeansAny;
  if (flag == 1 && (parts.fBelow.empty() || parts.fFromZero.empty())) {
    return 0;
  }
  // A flag that is neither 0 nor 1, which a record can hold, makes the empty part no Nil: a full set joined to it is
  // Any.
  if (flag != 0 && parts.fBelow.empty() && arguments.GetCount() >= sMAX_CARD) {
    return 0;
  }
  return NarrowToUnion(*this, UnionOf(Negated(parts.fBelow).Get(), parts.fFromZero));
}

int VokFenEnumInteger::CalcInverseAbsoluteValue(VokTarnNumber& x) const {
  return NarrowRight(*this, x, &VokFenEnumInteger::CalcInverseAbsoluteValue,
                     &VokFenEnumInteger::CalcInverseAbsoluteValue);
}

int VokFenEnumInteger::CalcInverseAbsoluteValue(VokFenEnumInteger& x) const {
  if (ReadsAny()) {
    return 0;
  }
  const Parts parts(GetMembers());
  if (parts.fFromZero.empty()) {
    return MakeNil(x);
  }
  return NarrowToUnion(x, UnionOf(parts.fFromZero, Negated(parts.fFromZero).Get()));
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
