// Order and arithmetic of intervals: every operation is a projection of bounds.
#include "numbers/VokFenIntervalInteger.h"
#include "numbers/narrowByBounds.h"

int VokFenIntervalInteger::CalcLessOrEqualValue(const VokTarnAny& a) {
  return NarrowByBounds(*this, a, BoundsOfLessOrEqual);
}

int VokFenIntervalInteger::CalcInverseLessOrEqualValue(VokTarnAny& r) const {
  return NarrowByBounds(r, *this, BoundsOfNotLess);
}

int VokFenIntervalInteger::CalcNotLessAndUnequalValue(const VokTarnAny& a) {
  return NarrowByBounds(*this, a, BoundsOfNotLessAndUnequal);
}

int VokFenIntervalInteger::CalcInverseNotLessAndUnequalValue(VokTarnAny& r) const {
  return NarrowByBounds(r, *this, BoundsOfLess);
}

int VokFenIntervalInteger::CalcMinValue(const VokTarnAny& a, const VokTarnAny& b) {
  return NarrowByBounds(*this, a, b, BoundsOfMinimum);
}

int VokFenIntervalInteger::CalcFirstInverseMinValue(VokTarnAny& a, const VokTarnAny& b) const {
  return NarrowByBounds(a, *this, b, BoundsOfMinimumArgument);
}

int VokFenIntervalInteger::CalcMaxValue(const VokTarnAny& a, const VokTarnAny& b) {
  return NarrowByBounds(*this, a, b, BoundsOfMaximum);
}

int VokFenIntervalInteger::CalcFirstInverseMaxValue(VokTarnAny& a, const VokTarnAny& b) const {
  return NarrowByBounds(a, *this, b, BoundsOfMaximumArgument);
}

int VokFenIntervalInteger::CalcLessValue(const VokTarnScalar& a) {
  return NarrowByBounds(*this, a, BoundsOfLess);
}

int VokFenIntervalInteger::CalcInverseLessValue(VokTarnScalar& r) const {
  return NarrowByBounds(r, *this, BoundsOfNotLessAndUnequal);
}

int VokFenIntervalInteger::CalcNotLessValue(const VokTarnScalar& a) {
  return NarrowByBounds(*this, a, BoundsOfNotLess);
}

int VokFenIntervalInteger::CalcInverseNotLessValue(VokTarnScalar& r) const {
  return NarrowByBounds(r, *this, BoundsOfLessOrEqual);
}

int VokFenIntervalInteger::CalcNextValue(const VokTarnScalar& a) {
  return NarrowByBounds(*this, a, BoundsOfNext);
}

int VokFenIntervalInteger::CalcInverseNextValue(VokTarnScalar& r) const {
  return NarrowByBounds(r, *this, BoundsOfPrev);
}

int VokFenIntervalInteger::CalcAbsoluteValue(const VokTarnNumber& a) {
  return NarrowByBounds(*this, a, BoundsOfAbsolute);
}

int VokFenIntervalInteger::CalcInverseAbsoluteValue(VokTarnNumber& r) const {
  return NarrowByBounds(r, *this, BoundsOfAbsoluteArgument);
}

int VokFenIntervalInteger::CalcNegativeValue(const VokTarnNumber& a) {
  return NarrowByBounds(*this, a, BoundsOfNegative);
}

int VokFenIntervalInteger::CalcInverseNegativeValue(VokTarnNumber& r) const {
  return NarrowByBounds(r, *this, BoundsOfNegative);
}

int VokFenIntervalInteger::CalcSignumValue(VokTarnInteger& s) const {
  return NarrowByBounds(s, *this, BoundsOfSignum);
}

int VokFenIntervalInteger::CalcInverseSignumValue(const VokTarnInteger& s) {
  return NarrowByBounds(*this, s, BoundsOfSignumArgument);
}

int VokFenIntervalInteger::CalcSumValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowByBounds(*this, a, b, BoundsOfSum);
}

int VokFenIntervalInteger::CalcFirstInverseSumValue(VokTarnNumber& a, const VokTarnNumber& b) const {
  return NarrowByBounds(a, *this, b, BoundsOfDifference);
}

int VokFenIntervalInteger::CalcProdValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowByBounds(*this, a, b, BoundsOfProduct);
}

int VokFenIntervalInteger::CalcFirstInverseProdValue(VokTarnNumber& a, const VokTarnNumber& b) const {
  return NarrowByBounds(a, *this, b, BoundsOfFactor);
}

int VokFenIntervalInteger::CalcModValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowByBounds(*this, a, b, BoundsOfRemainder);
}

int VokFenIntervalInteger::CalcFirstInverseModValue(VokTarnNumber& a, const VokTarnNumber& b) const {
  return NarrowByBounds(a, *this, b, BoundsOfDividend);
}

int VokFenIntervalInteger::CalcSecondInverseModValue(const VokTarnNumber& a, VokTarnNumber& b) const {
  return NarrowByBounds(b, *this, a, BoundsOfDivisor);
}

int VokFenIntervalInteger::CalcPowerValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowByBounds(*this, a, b, BoundsOfPower);
}

int VokFenIntervalInteger::CalcFirstInversePowerValue(VokTarnNumber& a, const VokTarnNumber& b) const {
  return NarrowByBounds(a, *this, b, BoundsOfBase);
}

int VokFenIntervalInteger::CalcSecondInversePowerValue(const VokTarnNumber& a, VokTarnNumber& b) const {
  return NarrowByBounds(b, *this, a, BoundsOfExponent);
}

int VokFenIntervalInteger::CalcFirstInversePowerValue(VokFenIntervalInteger& x, const VokFenSingleInteger& e) const {
  return NarrowByBounds(x, *this, e, BoundsOfBase);
}

int VokFenIntervalInteger::CalcSecondInversePowerValue(const VokFenIntervalInteger& a, VokFenIntervalInteger& b) const {
  return NarrowByBounds(b, *this, a, BoundsOfExponent);
}
