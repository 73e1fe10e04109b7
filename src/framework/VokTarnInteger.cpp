// Narrowing that every integer type has from the start: equality and order by bounds and by removing single
// values. Arithmetic is in the second half: it narrows nothing.
#include "framework/VokTarnInteger.h"

#include "framework/VokTarnBoolean.h"

namespace {

// `a` as an integer; null when it is of another kind.
const VokTarnInteger* ToInteger(const VokTarnAny& a) {
  return a.IsDerivedFrom(VokTarnInteger::sIdent) != 0 ? static_cast<const VokTarnInteger*>(&a) : nullptr;
}

VokTarnInteger* ToInteger(VokTarnAny& a) {
  return a.IsDerivedFrom(VokTarnInteger::sIdent) != 0 ? static_cast<VokTarnInteger*>(&a) : nullptr;
}

int MakeNil(VokTarnAny& x) {
  if (x.IsNil() != 0) {
    return 0;
  }
  x.SetNilValue();
  return 1;
}

bool HasOneValue(const VokTarnInteger& x) {
  return x.GetCardinality() == 1;
}

// Removes v from x, where v may be the last value: that leaves Nil, whatever the type makes of it.
int Remove(VokTarnInteger& x, VokLong v) {
  if (HasOneValue(x)) {
    return x.GetLowerBound() == v ? MakeNil(x) : 0;
  }
  return x.IsNil() != 0 || x.IsUndefined() != 0 ? 0 : x.RemoveExactValue(v);
}

// Removes the values of x above `limit` (below it).
int CutAbove(VokTarnInteger& x, std::int64_t limit) {
  int changed = 0;
  while (x.IsNil() == 0 && x.IsUndefined() == 0 && x.GetUpperBound() > limit) {
    const VokLong v = x.GetUpperBound();
    if (Remove(x, v) == 0) {
      break;  // a type that cannot take single values away keeps them
    }
    changed = 1;
  }
  return changed;
}

int CutBelow(VokTarnInteger& x, std::int64_t limit) {
  int changed = 0;
  while (x.IsNil() == 0 && x.IsUndefined() == 0 && x.GetLowerBound() < limit) {
    const VokLong v = x.GetLowerBound();
    if (Remove(x, v) == 0) {
      break;
    }
    changed = 1;
  }
  return changed;
}

// How many values an undefined value takes over one by one; more are left to the bounds.
constexpr int kMostTaken = 1023;

// Makes x, which is undefined, hold the values of y. A type that cannot hold them stays undefined.
int TakeValues(VokTarnInteger& x, const VokTarnInteger& y) {
  const int count = y.GetCardinality();
  if (count < 1 || count > kMostTaken) {
    return 0;
  }
  x.SetExactValue(y.GetLowerBound());
  for (VokLong v = y.GetLowerBound(); v != y.GetUpperBound() && x.IsUndefined() == 0;) {
    v = y.GetNextExactValue(v);
    if (x.AddExactValue(v) == 0) {
      x.SetUndefinedValue();
    }
  }
  return x.IsUndefined() != 0 ? 0 : 1;
}

// The frame of an order relation: cuts x by what is known of y. `strict` is 1 where equal values are ruled out.
int NarrowBelow(VokTarnInteger& x, const VokTarnAny& other, int strict) {
  const VokTarnInteger* y = ToInteger(other);
  if (y == nullptr || y->IsNil() != 0) {
    return MakeNil(x);
  }
  return y->IsUndefined() != 0 ? 0 : CutAbove(x, std::int64_t{y->GetUpperBound()} - strict);
}

int NarrowAbove(VokTarnInteger& x, const VokTarnAny& other, int strict) {
  const VokTarnInteger* y = ToInteger(other);
  if (y == nullptr || y->IsNil() != 0) {
    return MakeNil(x);
  }
  return y->IsUndefined() != 0 ? 0 : CutBelow(x, std::int64_t{y->GetLowerBound()} + strict);
}

// Truth of x < y (strict 1) or x <= y (strict 0), decided by bounds.
int NarrowOrderTruth(const VokTarnInteger& x, const VokTarnAny& other, int strict, VokTarnBoolean& truth) {
  const VokTarnInteger* y = ToInteger(other);
  if (y == nullptr || x.IsNil() != 0 || y->IsNil() != 0) {
    return MakeNil(truth);
  }
  if (x.IsUndefined() != 0 || y->IsUndefined() != 0) {
    return 0;
  }
  if (std::int64_t{x.GetUpperBound()} + strict <= y->GetLowerBound()) {
    return truth.CalcTruthValue(1);
  }
  if (std::int64_t{x.GetLowerBound()} + strict > y->GetUpperBound()) {
    return truth.CalcTruthValue(0);
  }
  return 0;
}

}  // namespace

bool VokTarnInteger::IsPossible(VokLong v) const {
  if (IsUndefined() != 0) {
    return true;
  }
  if (IsNil() != 0 || v < GetLowerBound() || v > GetUpperBound()) {
    return false;
  }
  return v == GetLowerBound() || v == GetUpperBound() || GetNextExactValue(v - 1) == v;
}

int VokTarnInteger::IsIntersected(const VokTarnAny& a) const {
  const VokTarnInteger* y = ToInteger(a);
  if (y == nullptr || IsNil() != 0 || y->IsNil() != 0) {
    return 0;
  }
  if (IsUndefined() != 0 || y->IsUndefined() != 0) {
    return 1;
  }
  // Two fingers: each side in turn jumps to its first value that is not below the other's.
  VokLong v = GetLowerBound();
  const VokLong last = GetUpperBound();
  const VokLong otherLast = y->GetUpperBound();
  while (true) {
    if (y->IsPossible(v)) {
      return 1;
    }
    if (v >= otherLast) {
      return 0;
    }
    const VokLong w = y->GetNextExactValue(v);
    if (IsPossible(w)) {
      return 1;
    }
    if (w >= last) {
      return 0;
    }
    v = GetNextExactValue(w);
  }
}

int VokTarnInteger::Intersect(const VokTarnAny& a) {
  return CalcEqualValue(a);
}

int VokTarnInteger::Unite(const VokTarnAny& a) {
  const VokTarnInteger* y = ToInteger(a);
  if (y == nullptr) {
    return MakeNil(*this);
  }
  if (IsUndefined() != 0 || y->IsNil() != 0 || y == this) {
    return 0;
  }
  if (y->IsUndefined() != 0) {
    SetUndefinedValue();
    return 1;
  }
  int changed = 0;
  for (VokLong v = y->GetLowerBound();; v = y->GetNextExactValue(v)) {
    if (!IsPossible(v)) {
      changed |= IsNil() != 0 ? SetExactValue(v) : AddExactValue(v);
    }
    if (v == y->GetUpperBound()) {
      return changed;
    }
  }
}

int VokTarnInteger::CalcEqualValue(const VokTarnAny& a) {
  const VokTarnInteger* y = ToInteger(a);
  if (y == nullptr || y->IsNil() != 0) {
    return MakeNil(*this);
  }
  if (IsNil() != 0 || y->IsUndefined() != 0 || y == this) {
    return 0;
  }
  if (IsUndefined() != 0) {
    return TakeValues(*this, *y);
  }
  int changed = CutAbove(*this, y->GetUpperBound()) | CutBelow(*this, y->GetLowerBound());
  if (IsNil() != 0) {
    return changed;
  }
  for (VokLong v = GetLowerBound();;) {
    const VokLong last = GetUpperBound();
    const VokLong next = v == last ? v : GetNextExactValue(v);
    if (!y->IsPossible(v)) {
      changed |= Remove(*this, v);
    }
    if (v == last) {
      return changed;
    }
    v = next;
  }
}

int VokTarnInteger::CalcInverseEqualValue(VokTarnAny& r) const {
  return r.CalcEqualValue(*this);
}

int VokTarnInteger::CalcUnequalValue(const VokTarnAny& a) {
  const VokTarnInteger* y = ToInteger(a);
  if (y == nullptr || y->IsNil() != 0) {
    return MakeNil(*this);
  }
  return HasOneValue(*y) ? Remove(*this, y->GetLowerBound()) : 0;
}

int VokTarnInteger::CalcInverseUnequalValue(VokTarnAny& r) const {
  return r.CalcUnequalValue(*this);
}

int VokTarnInteger::CalcIsEqual(const VokTarnAny& a, VokTarnBoolean& truth) const {
  const VokTarnInteger* y = ToInteger(a);
  if (y == nullptr || IsNil() != 0 || y->IsNil() != 0) {
    return MakeNil(truth);
  }
  if (IsUndefined() != 0 || y->IsUndefined() != 0) {
    return 0;
  }
  if (VokTarnInteger::IsIntersected(*y) == 0) {
    return truth.CalcTruthValue(0);
  }
  return HasOneValue(*this) && HasOneValue(*y) ? truth.CalcTruthValue(1) : 0;
}

int VokTarnInteger::CalcLessOrEqualValue(const VokTarnAny& a) {
  return NarrowBelow(*this, a, 0);
}

int VokTarnInteger::CalcInverseLessOrEqualValue(VokTarnAny& r) const {
  VokTarnInteger* y = ToInteger(r);
  return y == nullptr ? MakeNil(r) : NarrowAbove(*y, *this, 0);
}

int VokTarnInteger::CalcNotLessAndUnequalValue(const VokTarnAny& a) {
  return NarrowAbove(*this, a, 1);
}

int VokTarnInteger::CalcInverseNotLessAndUnequalValue(VokTarnAny& r) const {
  VokTarnInteger* y = ToInteger(r);
  return y == nullptr ? MakeNil(r) : NarrowBelow(*y, *this, 1);
}

int VokTarnInteger::CalcIsLessOrEqual(const VokTarnAny& a, VokTarnBoolean& truth) const {
  return NarrowOrderTruth(*this, a, 0, truth);
}

int VokTarnInteger::CalcLessValue(const VokTarnScalar& a) {
  return NarrowBelow(*this, a, 1);
}

int VokTarnInteger::CalcInverseLessValue(VokTarnScalar& r) const {
  VokTarnInteger* y = ToInteger(r);
  return y == nullptr ? MakeNil(r) : NarrowAbove(*y, *this, 1);
}

int VokTarnInteger::CalcNotLessValue(const VokTarnScalar& a) {
  return NarrowAbove(*this, a, 0);
}

int VokTarnInteger::CalcInverseNotLessValue(VokTarnScalar& r) const {
  VokTarnInteger* y = ToInteger(r);
  return y == nullptr ? MakeNil(r) : NarrowBelow(*y, *this, 0);
}

int VokTarnInteger::CalcIsLess(const VokTarnScalar& a, VokTarnBoolean& truth) const {
  return NarrowOrderTruth(*this, a, 1, truth);
}

// ---- Arithmetic, minimum and maximum: nothing is inferred. Pinning to a constant goes through the bounds.

namespace {

int NarrowToConstant(VokTarnInteger& x, VokLong v) {
  if (x.IsNil() != 0 || (HasOneValue(x) && x.GetLowerBound() == v)) {
    return 0;
  }
  return x.IsPossible(v) ? x.SetExactValue(v) : MakeNil(x);
}

}  // namespace

int VokTarnInteger::CalcMinValue() {
  return NarrowToConstant(*this, -sGreatest);
}
int VokTarnInteger::CalcMaxValue() {
  return NarrowToConstant(*this, sGreatest);
}
int VokTarnInteger::CalcZeroValue() {
  return NarrowToConstant(*this, 0);
}
int VokTarnInteger::CalcOneValue() {
  return NarrowToConstant(*this, 1);
}

int VokTarnInteger::CalcMinValue(const VokTarnAny&, const VokTarnAny&) {
  return 0;
}
int VokTarnInteger::CalcFirstInverseMinValue(VokTarnAny&, const VokTarnAny&) const {
  return 0;
}
int VokTarnInteger::CalcMaxValue(const VokTarnAny&, const VokTarnAny&) {
  return 0;
}
int VokTarnInteger::CalcFirstInverseMaxValue(VokTarnAny&, const VokTarnAny&) const {
  return 0;
}
int VokTarnInteger::CalcNextValue(const VokTarnScalar&) {
  return 0;
}
int VokTarnInteger::CalcInverseNextValue(VokTarnScalar&) const {
  return 0;
}
int VokTarnInteger::CalcAbsoluteValue(const VokTarnNumber&) {
  return 0;
}
int VokTarnInteger::CalcInverseAbsoluteValue(VokTarnNumber&) const {
  return 0;
}
int VokTarnInteger::CalcNegativeValue(const VokTarnNumber&) {
  return 0;
}
int VokTarnInteger::CalcInverseNegativeValue(VokTarnNumber&) const {
  return 0;
}
int VokTarnInteger::CalcSignumValue(VokTarnInteger&) const {
  return 0;
}
int VokTarnInteger::CalcInverseSignumValue(const VokTarnInteger&) {
  return 0;
}
int VokTarnInteger::CalcSumValue(const VokTarnNumber&, const VokTarnNumber&) {
  return 0;
}
int VokTarnInteger::CalcFirstInverseSumValue(VokTarnNumber&, const VokTarnNumber&) const {
  return 0;
}
int VokTarnInteger::CalcProdValue(const VokTarnNumber&, const VokTarnNumber&) {
  return 0;
}
int VokTarnInteger::CalcFirstInverseProdValue(VokTarnNumber&, const VokTarnNumber&) const {
  return 0;
}
int VokTarnInteger::CalcModValue(const VokTarnNumber&, const VokTarnNumber&) {
  return 0;
}
int VokTarnInteger::CalcFirstInverseModValue(VokTarnNumber&, const VokTarnNumber&) const {
  return 0;
}
int VokTarnInteger::CalcSecondInverseModValue(const VokTarnNumber&, VokTarnNumber&) const {
  return 0;
}
int VokTarnInteger::CalcPowerValue(const VokTarnNumber&, const VokTarnNumber&) {
  return 0;
}
int VokTarnInteger::CalcFirstInversePowerValue(VokTarnNumber&, const VokTarnNumber&) const {
  return 0;
}
int VokTarnInteger::CalcSecondInversePowerValue(const VokTarnNumber&, VokTarnNumber&) const {
  return 0;
}
