#pragma once

#include "framework/VokTarnScalar.h"

class VokTarnInteger;

// A value of a type with arithmetic. The operations come without a second inverse where the function is
// commutative: the first inverse with the operands exchanged serves.
class VOKTARN_EXPORT VokTarnNumber : public VokTarnScalar {
 public:
  static const char* const sIdent;

  using VokTarnScalar::VokTarnScalar;

  int IsDerivedFrom(const char* ident) const override;

  virtual int CalcZeroValue() = 0;
  virtual int CalcOneValue() = 0;
  virtual int CalcAbsoluteValue(const VokTarnNumber& a) = 0;
  virtual int CalcInverseAbsoluteValue(VokTarnNumber& r) const = 0;
  virtual int CalcNegativeValue(const VokTarnNumber& a) = 0;
  virtual int CalcInverseNegativeValue(VokTarnNumber& r) const = 0;
  // s = sign(*this*): the first narrows s, the second narrows *this*.
  virtual int CalcSignumValue(VokTarnInteger& s) const = 0;
  virtual int CalcInverseSignumValue(const VokTarnInteger& s) = 0;
  virtual int CalcSumValue(const VokTarnNumber& a, const VokTarnNumber& b) = 0;
  virtual int CalcFirstInverseSumValue(VokTarnNumber& a, const VokTarnNumber& b) const = 0;
  virtual int CalcProdValue(const VokTarnNumber& a, const VokTarnNumber& b) = 0;
  virtual int CalcFirstInverseProdValue(VokTarnNumber& a, const VokTarnNumber& b) const = 0;
  virtual int CalcModValue(const VokTarnNumber& a, const VokTarnNumber& b) = 0;
  virtual int CalcFirstInverseModValue(VokTarnNumber& a, const VokTarnNumber& b) const = 0;
  virtual int CalcSecondInverseModValue(const VokTarnNumber& a, VokTarnNumber& b) const = 0;
  virtual int CalcPowerValue(const VokTarnNumber& a, const VokTarnNumber& b) = 0;
  virtual int CalcFirstInversePowerValue(VokTarnNumber& a, const VokTarnNumber& b) const = 0;
  virtual int CalcSecondInversePowerValue(const VokTarnNumber& a, VokTarnNumber& b) const = 0;
};
