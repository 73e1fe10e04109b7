#pragma once

#include "framework/VokTarnNumber.h"

// The abstract integer type: the domain of an integer variable, whatever its representation.
//
// A concrete type must supply the identity and stream operations, the state operations from Assign to
// IsUndefined, GetCardinality, Bisect, PrintOn, InputValue and the nine operations on bounds and single values at the
// end. Everything else has a working default here: equality and order narrow by bounds and by removing single values,
// arithmetic narrows nothing (which loses no solution; the constraints check assigned values themselves). A type
// overrides a default to narrow more, or faster.
//
// Cost of the defaults: order relations O(values removed), equality O(values of the narrowed side), each
// step one virtual call.
class VOKTARN_EXPORT VokTarnInteger : public VokTarnNumber {
 public:
  static const char* const sIdent;
  static VokTarnObjectDescriptor* sDescriptor;      // published by VokFenAbstractTypes; null before that
  static constexpr VokLong sGreatest = 2147483645;  // the end of the integer range; its negative is the other end

  using VokTarnNumber::VokTarnNumber;

  int IsDerivedFrom(const char* ident) const override;

  int IsIntersected(const VokTarnAny& a) const override;
  int Intersect(const VokTarnAny& a) override;
  int Unite(const VokTarnAny& a) override;
  int CalcMinValue() override;
  int CalcMaxValue() override;
  int CalcEqualValue(const VokTarnAny& a) override;
  int CalcInverseEqualValue(VokTarnAny& r) const override;
  // Removes the value of `a` when `a` has exactly one. Removing the last value leaves Nil.
  int CalcUnequalValue(const VokTarnAny& a) override;
  int CalcInverseUnequalValue(VokTarnAny& r) const override;
  int CalcIsEqual(const VokTarnAny& a, VokTarnBoolean& truth) const override;
  int CalcLessOrEqualValue(const VokTarnAny& a) override;
  int CalcInverseLessOrEqualValue(VokTarnAny& r) const override;
  int CalcNotLessAndUnequalValue(const VokTarnAny& a) override;
  int CalcInverseNotLessAndUnequalValue(VokTarnAny& r) const override;
  int CalcIsLessOrEqual(const VokTarnAny& a, VokTarnBoolean& truth) const override;
  int CalcMinValue(const VokTarnAny& a, const VokTarnAny& b) override;
  int CalcFirstInverseMinValue(VokTarnAny& a, const VokTarnAny& b) const override;
  int CalcMaxValue(const VokTarnAny& a, const VokTarnAny& b) override;
  int CalcFirstInverseMaxValue(VokTarnAny& a, const VokTarnAny& b) const override;
  int CalcLessValue(const VokTarnScalar& a) override;
  int CalcInverseLessValue(VokTarnScalar& r) const override;
  int CalcNotLessValue(const VokTarnScalar& a) override;
  int CalcInverseNotLessValue(VokTarnScalar& r) const override;
  int CalcIsLess(const VokTarnScalar& a, VokTarnBoolean& truth) const override;
  int CalcNextValue(const VokTarnScalar& a) override;
  int CalcInverseNextValue(VokTarnScalar& r) const override;
  int CalcZeroValue() override;
  int CalcOneValue() override;
  int CalcAbsoluteValue(const VokTarnNumber& a) override;
  int CalcInverseAbsoluteValue(VokTarnNumber& r) const override;
  int CalcNegativeValue(const VokTarnNumber& a) override;
  int CalcInverseNegativeValue(VokTarnNumber& r) const override;
  int CalcSignumValue(VokTarnInteger& s) const override;
  int CalcInverseSignumValue(const VokTarnInteger& s) override;
  int CalcSumValue(const VokTarnNumber& a, const VokTarnNumber& b) override;
  int CalcFirstInverseSumValue(VokTarnNumber& a, const VokTarnNumber& b) const override;
  int CalcProdValue(const VokTarnNumber& a, const VokTarnNumber& b) override;
  int CalcFirstInverseProdValue(VokTarnNumber& a, const VokTarnNumber& b) const override;
  int CalcModValue(const VokTarnNumber& a, const VokTarnNumber& b) override;
  int CalcFirstInverseModValue(VokTarnNumber& a, const VokTarnNumber& b) const override;
  int CalcSecondInverseModValue(const VokTarnNumber& a, VokTarnNumber& b) const override;
  int CalcPowerValue(const VokTarnNumber& a, const VokTarnNumber& b) override;
  int CalcFirstInversePowerValue(VokTarnNumber& a, const VokTarnNumber& b) const override;
  int CalcSecondInversePowerValue(const VokTarnNumber& a, VokTarnNumber& b) const override;

  // Makes the value exactly v; adds v to, removes v from the possible values. 1 when done.
  virtual int SetExactValue(VokLong v) = 0;
  virtual int SetLowerBound(VokLong v) = 0;
  virtual int SetUpperBound(VokLong v) = 0;
  virtual int AddExactValue(VokLong v) = 0;
  virtual int RemoveExactValue(VokLong v) = 0;
  // The least and the greatest possible value. Undefined gives the ends of the integer range in order,
  // Nil gives them exchanged.
  virtual VokLong GetLowerBound() const = 0;
  virtual VokLong GetUpperBound() const = 0;
  // The nearest possible value above (below) v. Where there is none the answer is v, or v + 1 (v - 1)
  // when v itself is possible: the caller compares with the bounds first.
  virtual VokLong GetNextExactValue(VokLong v) const = 0;
  virtual VokLong GetPrevExactValue(VokLong v) const = 0;

  // Whether v is possible. Undefined says yes.
  bool IsPossible(VokLong v) const;
};
