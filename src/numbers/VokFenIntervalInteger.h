#pragma once

#include "framework/VokTarnInteger.h"
#include "framework/VokTarnObjectDescriptor.h"
#include "numbers/SubdefInt.h"
#include "numbers/VokFenSingleInteger.h"

// An interval of integers: every value from its lower to its upper bound is possible.
//
// States     Nil: lower above upper (kept as [MAX, MIN]). Any: [MIN, MAX], no restriction.
// Strength   Bounds: results and operands are narrowed to the hull of what the other operands' bounds
//            allow. A hole in another operand shows only when it lies at a bound.
//            Operands may be of every integer type; only bounds, single values and overlap are read.
// Text       "Nil", "Any", a number, or "[lower, upper]". Type name "interval int".
class VOKTARN_EXPORT VokFenIntervalInteger : public VokTarnInteger, public SubdefInt {
 public:
  class Descriptor;

  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnObjectDescriptor* sDescriptor;

  VokFenIntervalInteger() noexcept;  // unrestricted
  VokFenIntervalInteger(VokLong lower, VokLong upper) noexcept;
  explicit VokFenIntervalInteger(VokStreamableInit init) noexcept;
  VokFenIntervalInteger(const VokFenIntervalInteger&) = default;
  VokFenIntervalInteger& operator=(const VokFenIntervalInteger&) = default;

  static VokTarnObjectDescriptor* MakeDescriptor();

  // Given *this* as z in z = x ^ e: narrows x to the hull of those of its values whose power lies in z. Sound:
  // no base that has a partner is lost; empty when none has. Returns 1 when x changed.
  int CalcFirstInversePowerValue(VokFenIntervalInteger& x, const VokFenSingleInteger& e) const;
  // The same for the exponents b of z = a ^ b.
  int CalcSecondInversePowerValue(const VokFenIntervalInteger& a, VokFenIntervalInteger& b) const;

  const char* CastableID() const override;
  void Write(Vokopstream& os) const override;
  void Read(Vokipstream& is) override;
  int IsDerivedFrom(const char* ident) const override;
  const VokTarnObjectDescriptor* GetDescriptor() const override;
  std::ostream& PrintOn(std::ostream& os) const override;
  void InputValue(std::istream& is) override;
  int Assign(const VokTarnAny& a) override;
  int SetNilValue() override;
  int SetUndefinedValue() override;
  int IsNil() const override;
  int IsUndefined() const override;
  int IsIntersected(const VokTarnAny& a) const override;
  int Unite(const VokTarnAny& a) override;
  int GetCardinality() const override;
  // By value: LowerHalf moves [lower, middle] out, the middle rounded down; Nil and Any change nothing.
  int Bisect(VokTarnObject& other, ValueSelection selection) override;
  int CalcEqualValue(const VokTarnAny& a) override;
  int CalcLessOrEqualValue(const VokTarnAny& a) override;
  int CalcInverseLessOrEqualValue(VokTarnAny& r) const override;
  int CalcNotLessAndUnequalValue(const VokTarnAny& a) override;
  int CalcInverseNotLessAndUnequalValue(VokTarnAny& r) const override;
  int CalcMinValue() override;
  int CalcMaxValue() override;
  int CalcMinValue(const VokTarnAny& a, const VokTarnAny& b) override;
  int CalcFirstInverseMinValue(VokTarnAny& a, const VokTarnAny& b) const override;
  int CalcMaxValue(const VokTarnAny& a, const VokTarnAny& b) override;
  int CalcFirstInverseMaxValue(VokTarnAny& a, const VokTarnAny& b) const override;
  int CalcLessValue(const VokTarnScalar& a) override;
  int CalcInverseLessValue(VokTarnScalar& r) const override;
  int CalcNotLessValue(const VokTarnScalar& a) override;
  int CalcInverseNotLessValue(VokTarnScalar& r) const override;
  int CalcNextValue(const VokTarnScalar& a) override;
  int CalcInverseNextValue(VokTarnScalar& r) const override;
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
  int SetExactValue(VokLong v) override;
  int SetLowerBound(VokLong v) override;
  int SetUpperBound(VokLong v) override;
  int AddExactValue(VokLong v) override;
  int RemoveExactValue(VokLong v) override;
  VokLong GetLowerBound() const override;
  VokLong GetUpperBound() const override;
  VokLong GetNextExactValue(VokLong v) const override;
  VokLong GetPrevExactValue(VokLong v) const override;

  static Vokipstream& readRef(Vokipstream& is, VokFenIntervalInteger& value);
  static Vokipstream& readPtr(Vokipstream& is, VokFenIntervalInteger*& value);
  static Vokopstream& writeRef(Vokopstream& os, const VokFenIntervalInteger& value);
  static Vokopstream& writePtr(Vokopstream& os, const VokFenIntervalInteger* value);

 private:
  int NarrowTo(VokLong lower, VokLong upper);  // intersects with [lower, upper]; 1 when changed
};
