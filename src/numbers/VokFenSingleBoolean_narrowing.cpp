// Relations of truth values. There are only two of them, so that every operation tries all: a value stays when the
// relation holds for it beside some values that are possible for the other operands.
#include <algorithm>

#include "numbers/VokFenSingleBoolean.h"

namespace {

bool IsBoolean(const VokTarnAny& v) {
  return v.IsDerivedFrom(VokTarnBoolean::sIdent) != 0;
}

// The possible truth values of v, as the mask of VokFenSingleBoolean; none when v is not a boolean.
unsigned MaskOf(const VokTarnAny& v) {
  if (!IsBoolean(v)) {
    return 0;
  }
  const auto& b = static_cast<const VokTarnBoolean&>(v);
  return (b.IsPossible(0) != 0 ? 1U : 0U) | (b.IsPossible(1) != 0 ? 2U : 0U);
}

bool Has(unsigned mask, int truth) {
  return ((mask >> static_cast<unsigned>(truth)) & 1U) != 0;
}

// The truth values t for which holds(t, u) is true for some u of `other`.
template <class Relation>
unsigned PartnersOf(unsigned other, Relation holds) {
  unsigned mask = 0;
  for (int t = 0; t <= 1; ++t) {
    for (int u = 0; u <= 1; ++u) {
      if (Has(other, u) && holds(t, u)) {
        mask |= 1U << static_cast<unsigned>(t);
      }
    }
  }
  return mask;
}

// The same for holds(t, u, v), u of a and v of b.
template <class Relation>
unsigned PartnersOf(unsigned a, unsigned b, Relation holds) {
  return PartnersOf(a, [&](int t, int u) { return (Has(b, 0) && holds(t, u, 0)) || (Has(b, 1) && holds(t, u, 1)); });
}

int NarrowOther(VokTarnAny& r, unsigned mask) {
  if (r.IsNil() != 0) {
    return 0;
  }
  if (mask == 0 || !IsBoolean(r)) {
    r.SetNilValue();
    return 1;
  }
  return mask == 3 ? 0 : static_cast<VokTarnBoolean&>(r).CalcTruthValue(Has(mask, 1) ? 1 : 0);
}

constexpr auto sEqual = [](int x, int y) { return x == y; };
constexpr auto sUnequal = [](int x, int y) { return x != y; };
constexpr auto sLessOrEqual = [](int x, int y) { return x <= y; };
constexpr auto sNotLess = [](int x, int y) { return x >= y; };
constexpr auto sLess = [](int x, int y) { return x < y; };
constexpr auto sGreater = [](int x, int y) { return x > y; };

}  // namespace

int VokFenSingleBoolean::Assign(const VokTarnAny& a) {
  fMask = MaskOf(a);
  return 1;
}

int VokFenSingleBoolean::IsIntersected(const VokTarnAny& a) const {
  return (fMask & MaskOf(a)) != 0;
}

int VokFenSingleBoolean::Intersect(const VokTarnAny& a) {
  return CalcEqualValue(a);
}

int VokFenSingleBoolean::Unite(const VokTarnAny& a) {
  const unsigned old = fMask;
  fMask = IsBoolean(a) ? fMask | MaskOf(a) : 0;
  return fMask != old;
}

int VokFenSingleBoolean::CalcMinValue() {
  return CalcTruthValue(0);
}

int VokFenSingleBoolean::CalcMaxValue() {
  return CalcTruthValue(1);
}

int VokFenSingleBoolean::CalcEqualValue(const VokTarnAny& a) {
  return NarrowTo(PartnersOf(MaskOf(a), sEqual));
}

int VokFenSingleBoolean::CalcInverseEqualValue(VokTarnAny& r) const {
  return NarrowOther(r, PartnersOf(fMask, sEqual));
}

int VokFenSingleBoolean::CalcUnequalValue(const VokTarnAny& a) {
  return NarrowTo(PartnersOf(MaskOf(a), sUnequal));
}

int VokFenSingleBoolean::CalcInverseUnequalValue(VokTarnAny& r) const {
  return NarrowOther(r, PartnersOf(fMask, sUnequal));
}

int VokFenSingleBoolean::CalcIsEqual(const VokTarnAny& a, VokTarnBoolean& truth) const {
  return NarrowOther(truth, PartnersOf(fMask, MaskOf(a), [](int t, int x, int y) { return (t != 0) == (x == y); }));
}

int VokFenSingleBoolean::CalcLessOrEqualValue(const VokTarnAny& a) {
  return NarrowTo(PartnersOf(MaskOf(a), sLessOrEqual));
}

int VokFenSingleBoolean::CalcInverseLessOrEqualValue(VokTarnAny& r) const {
  return NarrowOther(r, PartnersOf(fMask, sNotLess));
}

int VokFenSingleBoolean::CalcNotLessAndUnequalValue(const VokTarnAny& a) {
  return NarrowTo(PartnersOf(MaskOf(a), sGreater));
}

int VokFenSingleBoolean::CalcInverseNotLessAndUnequalValue(VokTarnAny& r) const {
  return NarrowOther(r, PartnersOf(fMask, sLess));
}

int VokFenSingleBoolean::CalcIsLessOrEqual(const VokTarnAny& a, VokTarnBoolean& truth) const {
  return NarrowOther(truth, PartnersOf(fMask, MaskOf(a), [](int t, int x, int y) { return (t != 0) == (x <= y); }));
}

int VokFenSingleBoolean::CalcMinValue(const VokTarnAny& a, const VokTarnAny& b) {
  return NarrowTo(PartnersOf(MaskOf(a), MaskOf(b), [](int z, int x, int y) { return z == std::min(x, y); }));
}

int VokFenSingleBoolean::CalcFirstInverseMinValue(VokTarnAny& a, const VokTarnAny& b) const {
  return NarrowOther(a, PartnersOf(fMask, MaskOf(b), [](int x, int z, int y) { return z == std::min(x, y); }));
}

int VokFenSingleBoolean::CalcMaxValue(const VokTarnAny& a, const VokTarnAny& b) {
  return NarrowTo(PartnersOf(MaskOf(a), MaskOf(b), [](int z, int x, int y) { return z == std::max(x, y); }));
}

int VokFenSingleBoolean::CalcFirstInverseMaxValue(VokTarnAny& a, const VokTarnAny& b) const {
  return NarrowOther(a, PartnersOf(fMask, MaskOf(b), [](int x, int z, int y) { return z == std::max(x, y); }));
}
