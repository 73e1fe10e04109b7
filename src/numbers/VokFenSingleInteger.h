#pragma once

#include "framework/VokTarnInteger.h"
#include "framework/VokTarnObjectDescriptor.h"
#include "numbers/SubIntBase.h"

// A single integer: one known value, no value (Nil), or any value (nothing is known).
//
// Equality, order, minimum, maximum and arithmetic accept operands of every integer type and see of them
// only bounds, single values and overlap, so they are sound beside types this library does not know.
// Strength  A single can only stay, become known or become Nil: it becomes known when the other operands
//           leave exactly one value.
// Text      "Nil", "Any", "Min", "Max" or a number. Type name "int".
class VOKTARN_EXPORT VokFenSingleInteger : public VokTarnInteger {
 public:
  class Descriptor;

  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnObjectDescriptor* sDescriptor;

  static const VokLong sNC_INT_NIL;  // -2147483648: no value
  static const VokLong sNC_INT_ANY;  //  2147483647: any value
  static const VokLong sNC_INT_MIN;  // -2147483645
  static const VokLong sNC_INT_MAX;  //  2147483645

  // Implicit: a number may stand wherever a single integer is read.
  VokFenSingleInteger(VokLong value = 2147483647) noexcept;  // NOLINT(google-explicit-constructor)
  explicit VokFenSingleInteger(VokStreamableInit init) noexcept;
  VokFenSingleInteger(const VokFenSingleInteger&) = default;
  VokFenSingleInteger& operator=(const VokFenSingleInteger&) = default;

  static VokTarnObjectDescriptor* MakeDescriptor();

  // The value, or one of the two special values.
  VokLong GetExactValue() const noexcept { return fValue; }

  // *this = a ^ b. Overwrites: the old value plays no part. Exact; 0 ^ 0 is 1; a negative exponent has a
  // value only for the bases 1 and -1. No value, or one outside (MIN, MAX): Nil. An operand that is Any
  // gives Any. Returns 1 when the value differs from the old one.
  int CalcPowerValue(const VokFenSingleInteger& a, const VokFenSingleInteger& b);

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
  // One value has no halves: LowerHalf, Smallest and Largest move it out and leave Nil, UpperHalf leaves
  // it and makes `other` Nil. Nil and Any change nothing.
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

  static Vokipstream& readRef(Vokipstream& is, VokFenSingleInteger& value);
  static Vokipstream& readPtr(Vokipstream& is, VokFenSingleInteger*& value);
  static Vokopstream& writeRef(Vokopstream& os, const VokFenSingleInteger& value);
  static Vokopstream& writePtr(Vokopstream& os, const VokFenSingleInteger* value);

 private:
  VokLong fValue;
};
