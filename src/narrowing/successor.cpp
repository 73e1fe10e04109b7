// y = next(x), that is y = x + 1: one set is intersected with the other, shifted by one.
//
// The ends of the integer range are treated differently on purpose. The forward routine keeps sNC_INT_MAX in
// x and shifts it like every member; the element addition absorbs there, so x = {MAX} allows y = {MAX}. The
// inverse takes sNC_INT_MIN out of y first, for it is nobody's successor.

#include <algorithm>

#include "domain/VokFenEnumInteger.h"
#include "domain/scratch.h"
#include "narrowing/dispatchFrame.h"

using namespace VokFenNarrowing;

namespace {

// Intersects the set with the members of `from` plus step, whose flag an Any set takes over. Members that meet at an
// end of the range become one.
int NarrowToShifted(VokFenEnumInteger& set, std::span<const VokLong> from, VokLong step, int emptyMeansAny) {
  if (from.front() > SubIntBase::sMin && from.back() < SubIntBase::sMax) {
    return set.IntersectValues(from, step, emptyMeansAny);
  }
  VokFenDomain::Scratch scratch(from.size());
  VokLong* const shifted = scratch.GetNumbers();
  if (shifted == nullptr) {
    return 0;
  }
  std::transform(from.begin(), from.end(), shifted, [step](VokLong v) { return SubIntBase::base_plus(v, step); });
  return set.IntersectValues({shifted, std::unique(shifted, shifted + from.size())}, 0, emptyMeansAny);
}

}  // namespace

int VokFenEnumInteger::CalcNextValue(const VokTarnScalar& x) {
  return NarrowLeft(*this, x, &VokFenEnumInteger::CalcNextValue);
}

int VokFenEnumInteger::CalcNextValue(const VokFenEnumInteger& x) {
  if (x.ReadsAny()) {
    return 0;
  }
  return x.GetMembers().empty() ? MakeNil(*this) : NarrowToShifted(*this, x.GetMembers(), 1, x.fEmptyMeansAny);
}

int VokFenEnumInteger::CalcInverseNextValue(VokTarnScalar& x) const {
  return NarrowRight(*this, x, &VokFenEnumInteger::CalcInverseNextValue, &VokFenEnumInteger::CalcInverseNextValue);
}

int VokFenEnumInteger::CalcInverseNextValue(VokFenEnumInteger& x) const {
  if (ReadsAny()) {
    // The greatest integer has no successor, whatever y is.
    const unsigned n = x.GetCount();
    if (n == 0 || x.GetValue(n - 1) != VokFenSingleInteger::sNC_INT_MAX) {
      return 0;
    }
    x.fValues.DetachAt(n - 1, 1);
    return x.GetCount() == 0 ? x.SetNilValue() : 1;
  }
  auto from = GetMembers();
  if (!from.empty() && from.front() == VokFenSingleInteger::sNC_INT_MIN) {
    from = from.subspan(1);
  }
  return from.empty() ? MakeNil(x) : NarrowToShifted(x, from, -1, fEmptyMeansAny);
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
