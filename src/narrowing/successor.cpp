// y = next(x), that is y = x + 1: a copy of one set, shifted by one, is intersected with the other.
//
// The ends of the integer range are treated differently on purpose. The forward routine keeps sNC_INT_MAX in
// x and shifts it like every member; the element addition absorbs there, so x = {MAX} allows y = {MAX}. The
// inverse takes sNC_INT_MIN out of y first, for it is nobody's successor.

#include "domain/VokFenEnumInteger.h"
#include "narrowing/dispatchFrame.h"

using namespace VokFenNarrowing;

namespace {

void AddStep(SubIntBase& member, void* step) {
  member = SubIntBase::base_plus(member, *static_cast<const VokLong*>(step));
}

// Shifts every member. Members that meet at an end of the range become one.
void Shift(VokSVectorImp_SubIntBase& members, VokLong step) {
  members.ForEach(AddStep, &step);
  for (unsigned i = members.Size(); i > 1; --i) {
    if (members[i - 1] == members[i - 2]) {
      members.DetachAt(i - 1, 1);
    }
  }
}

}  // namespace

int VokFenEnumInteger::CalcNextValue(const VokTarnScalar& x) {
  return NarrowLeft(*this, x, &VokFenEnumInteger::CalcNextValue);
}

int VokFenEnumInteger::CalcNextValue(const VokFenEnumInteger& x) {
  if (x.IsUndefined() != 0) {
    return 0;
  }
  if (x.GetCount() == 0) {
    return MakeNil(*this);
  }
  VokFenEnumInteger successors(x);
  Shift(successors.fValues, 1);
  return Intersect(successors);
}

int VokFenEnumInteger::CalcInverseNextValue(VokTarnScalar& x) const {
  return NarrowRight(*this, x, &VokFenEnumInteger::CalcInverseNextValue, &VokFenEnumInteger::CalcInverseNextValue);
}

int VokFenEnumInteger::CalcInverseNextValue(VokFenEnumInteger& x) const {
  if (IsUndefined() != 0) {
    // The greatest integer has no successor, whatever y is.
    const unsigned n = x.GetCount();
    if (n == 0 || x.GetValue(n - 1) != VokFenSingleInteger::sNC_INT_MAX) {
      return 0;
    }
    x.fValues.DetachAt(n - 1, 1);
    return x.GetCount() == 0 ? x.SetNilValue() : 1;
  }
  VokFenEnumInteger predecessors(*this);
  if (predecessors.GetCount() > 0 && predecessors.GetValue(0) == VokFenSingleInteger::sNC_INT_MIN) {
    predecessors.fValues.DetachAt(0, 1);
  }
  if (predecessors.GetCount() == 0) {
    return MakeNil(x);
  }
  Shift(predecessors.fValues, -1);
  return x.Intersect(predecessors);
}

int VokFenEnumInteger::CalcInverseNextValue(VokFenSingleInteger& x) const {
  if (x.IsUndefined() == 0) {
    return Contains(VokWrapAdd(x.GetExactValue(), 1)) != 0 ? 0 : MakeNil(x);
  }
  if (GetCount() != 1) {
    return 0;
  }
  if (GetValue(0) == VokFenSingleInteger::sNC_INT_MIN) {
    return MakeNil(x);
  }
  x.SetExactValue(VokWrapAdd(GetValue(0), -1));
  return 1;
}
