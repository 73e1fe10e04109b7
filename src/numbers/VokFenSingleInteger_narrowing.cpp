// Order and arithmetic of singles: every operation is a projection of bounds.
#include "numbers/VokFenSingleInteger.h"
#include "numbers/narrowByBounds.h"

int VokFenSingleInteger::CalcLessOrEqualValue(const VokTarnAny& a) {
  return NarrowByBounds(*this, a, BoundsOfLessOrEqual);
}

int VokFenSingleInteger::CalcInverseLessOrEqualValue(VokTarnAny& r) const {
  return NarrowByBounds(r, *this, BoundsOfNotLess);
}

int VokFenSingleInteger::CalcNotLessAndUnequalValue(const VokTarnAny& a) {
  return NarrowByBounds(*this, a, BoundsOfNotLessAndUnequal);
}

int VokFenSingleInteger::CalcInverseNotLessAndUnequalValue(VokTarnAny& r) const {
  return NarrowByBounds(r, *this, BoundsOfLess);
}

int VokFenSingleInteger::CalcMinValue(const VokTarnAny& a, const VokTarnAny& b) {
  return NarrowByBounds(*this, a, b, BoundsOfMinimum);
}

int VokFenSingleInteger::CalcFirstInverseMinValue(VokTarnAny& a, const VokTarnAny& b) const {
  return NarrowByBounds(a, *this, b, BoundsOfMinimumArgument);
}

int VokFenSingleInteger::CalcMaxValue(const VokTarnAny& a, const VokTarnAny& b) {
  return NarrowByBounds(*this, a, b, BoundsOfMaximum);
}

int VokFenSingleInteger::CalcFirstInverseMaxValue(VokTarnAny& a, const VokTarnAny& b) const {
  return NarrowByBounds(a, *this, b, BoundsOfMaximumArgument);
}

int VokFenSingleInteger::CalcLessValue(const VokTarnScalar& a) {
  return NarrowByBounds(*this, a, BoundsOfLess);
}

int VokFenSingleInteger::CalcInverseLessValue(VokTarnScalar& r) const {
  return NarrowByBounds(r, *this, BoundsOfNotLessAndUnequal);
}

int VokFenSingleInteger::CalcNotLessValue(const VokTarnScalar& a) {
  return NarrowByBounds(*this, a, BoundsOfNotLess);
}

int VokFenSingleInteger::CalcInverseNotLessValue(VokTarnScalar& r) const {
  return NarrowByBounds(r, *this, BoundsOfLessOrEqual);
}

int VokFenSingleInteger::CalcNextValue(const VokTarnScalar& a) {
  return NarrowByBounds(*this, a, BoundsOfNext);
}

int VokFenSingleInteger::CalcInverseNextValue(VokTarnScalar& r) const {
  return NarrowByBounds(r, *this, BoundsOfPrev);
}

int VokFenSingleInteger::CalcAbsoluteValue(const VokTarnNumber& a) {
  return NarrowByBounds(*this, a, BoundsOfAbsolute);
}

int VokFenSingleInteger::CalcInverseAbsoluteValue(VokTarnNumber& r) const {
  return NarrowByBounds(r, *this, BoundsOfAbsoluteArgument);
}

int VokFenSingleInteger::CalcNegativeValue(const VokTarnNumber& a) {
  return NarrowByBounds(*this, a, BoundsOfNegative);
}

int VokFenSingleInteger::CalcInverseNegativeValue(VokTarnNumber& r) const {
  return NarrowByBounds(r, *this, BoundsOfNegative);
}

int VokFenSingleInteger::CalcSignumValue(VokTarnInteger& s) const {
  return NarrowByBounds(s, *this, BoundsOfSignum);
}

int VokFenSingleInteger::CalcInverseSignumValue(const VokTarnInteger& s) {
  return NarrowByBounds(*this, s, BoundsOfSignumArgument);
}

int VokFenSingleInteger::CalcSumValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowByBounds(*this, a, b, BoundsOfSum);
}

int VokFenSingleInteger::CalcFirstInverseSumValue(VokTarnNumber& a, const VokTarnNumber& b) const {
  return NarrowByBounds(a, *this, b, BoundsOfDifference);
}

int VokFenSingleInteger::CalcProdValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowByBounds(*this, a, b, BoundsOfProduct);
}

int VokFenSingleInteger::CalcFirstInverseProdValue(VokTarnNumber& a, const VokTarnNumber& b) const {
  return NarrowByBounds(a, *this, b, BoundsOfFactor);
}

int VokFenSingleInteger::CalcModValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowByBounds(*this, a, b, BoundsOfRemainder);
}

int VokFenSingleInteger::CalcFirstInverseModValue(VokTarnNumber& a, const VokTarnNumber& b) const {
  return NarrowByBounds(a, *this, b, BoundsOfDividend);
}

int VokFenSingleInteger::CalcSecondInverseModValue(const VokTarnNumber& a, VokTarnNumber& b) const {
  return NarrowByBounds(b, *this, a, BoundsOfDivisor);
}

int VokFenSingleInteger::CalcPowerValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowByBounds(*this, a, b, BoundsOfPower);
}

int VokFenSingleInteger::CalcFirstInversePowerValue(VokTarnNumber& a, const VokTarnNumber& b) const {
  return NarrowByBounds(a, *this, b, BoundsOfBase);
}

int VokFenSingleInteger::CalcSecondInversePowerValue(const VokTarnNumber& a, VokTarnNumber& b) const {
  return NarrowByBounds(b, *this, a, BoundsOfExponent);
}

int VokFenSingleInteger::CalcPowerValue(const VokFenSingleInteger& a, const VokFenSingleInteger& b) {
  const VokLong old = fValue;
  if (a.IsNil() != 0 || b.IsNil() != 0) {
    fValue = sNC_INT_NIL;
  } else if (a.IsUndefined() != 0 || b.IsUndefined() != 0) {
    fValue = sNC_INT_ANY;
  } else {
    VokLong power = 0;
    fValue = FindPower(a.fValue, b.fValue, power) ? power : sNC_INT_NIL;
  }
  return fValue != old;
}
