#pragma once

#include "framework/VokTarnAny.h"

// A value of a type with a strict order and successors.
class VOKTARN_EXPORT VokTarnScalar : public VokTarnAny {
 public:
  static const char* const sIdent;

  using VokTarnAny::VokTarnAny;

  int IsDerivedFrom(const char* ident) const override;

  virtual int CalcLessValue(const VokTarnScalar& a) = 0;
  virtual int CalcInverseLessValue(VokTarnScalar& r) const = 0;
  virtual int CalcNotLessValue(const VokTarnScalar& a) = 0;
  virtual int CalcInverseNotLessValue(VokTarnScalar& r) const = 0;
  virtual int CalcIsLess(const VokTarnScalar& a, VokTarnBoolean& truth) const = 0;
  // *this* = next(a), the successor of a.
  virtual int CalcNextValue(const VokTarnScalar& a) = 0;
  virtual int CalcInverseNextValue(VokTarnScalar& r) const = 0;
};
