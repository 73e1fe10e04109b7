#pragma once

#include "framework/VokTarnObject.h"

class VokTarnBoolean;

// A subdefinite value: the set of values that a variable can still take.
//
// States   Nil: no value is possible. Undefined (Any): nothing is known yet. Otherwise the value holds one
//          or more possible values.
// Status   Every narrowing operation returns 1 when the narrowed value changed (becoming Nil counts), 0 when
//          it did not. None throws. An impossible value is Nil; it is never an error.
// Naming   CalcXValue(a) narrows *this*, the left side of X. CalcInverseXValue(r) leaves *this* alone and
//          narrows r, the right side. For a function z = X(a, b): CalcXValue(a, b) narrows *this* as z;
//          CalcFirstInverseXValue and CalcSecondInverseXValue narrow a and b, given *this* as z.
class VOKTARN_EXPORT VokTarnAny : public VokTarnObject {
 public:
  static const char* const sIdent;

  // Which part of a value Bisect moves out: by position among its possible values.
  enum ValueSelection : int { LowerHalf = 0, UpperHalf = 1, Smallest = 2, Largest = 3 };

  using VokTarnObject::VokTarnObject;

  int IsDerivedFrom(const char* ident) const override;

  // Makes this value a copy of `a`, in this value's own type; Nil when `a` cannot be represented.
  virtual int Assign(const VokTarnAny& a) = 0;
  virtual int SetNilValue() = 0;
  virtual int SetUndefinedValue() = 0;
  virtual int IsNil() const = 0;
  virtual int IsUndefined() const = 0;
  // 1 when this value and `a` have a possible value in common.
  virtual int IsIntersected(const VokTarnAny& a) const = 0;
  // Narrows to the values that `a` has too; widens by the values of `a`.
  virtual int Intersect(const VokTarnAny& a) = 0;
  virtual int Unite(const VokTarnAny& a) = 0;
  // The number of possible values: 0 for Nil, -1 when it cannot be told (Undefined); a count beyond the
  // range of int is given as the largest int.
  virtual int GetCardinality() const = 0;
  // The size of the domain on a continuous scale: 0 for Nil, infinity for Undefined; relative to
  // `reference`, which must be positive.
  virtual double GetWidth() const;
  virtual double GetRelativeWidth(double reference) const;
  // Moves the selected part of this value into `other`, which must be of the same type, and keeps the rest.
  virtual int Bisect(VokTarnObject& other, ValueSelection selection) = 0;
  // Narrow to the least and to the greatest value of the type.
  virtual int CalcMinValue() = 0;
  virtual int CalcMaxValue() = 0;

  virtual int CalcEqualValue(const VokTarnAny& a) = 0;
  virtual int CalcInverseEqualValue(VokTarnAny& r) const = 0;
  virtual int CalcUnequalValue(const VokTarnAny& a) = 0;
  virtual int CalcInverseUnequalValue(VokTarnAny& r) const = 0;
  // Narrows the truth value of *this* = a.
  virtual int CalcIsEqual(const VokTarnAny& a, VokTarnBoolean& truth) const = 0;
  virtual int CalcLessOrEqualValue(const VokTarnAny& a) = 0;
  virtual int CalcInverseLessOrEqualValue(VokTarnAny& r) const = 0;
  virtual int CalcNotLessAndUnequalValue(const VokTarnAny& a) = 0;
  virtual int CalcInverseNotLessAndUnequalValue(VokTarnAny& r) const = 0;
  virtual int CalcIsLessOrEqual(const VokTarnAny& a, VokTarnBoolean& truth) const = 0;
  virtual int CalcMinValue(const VokTarnAny& a, const VokTarnAny& b) = 0;
  virtual int CalcFirstInverseMinValue(VokTarnAny& a, const VokTarnAny& b) const = 0;
  virtual int CalcMaxValue(const VokTarnAny& a, const VokTarnAny& b) = 0;
  virtual int CalcFirstInverseMaxValue(VokTarnAny& a, const VokTarnAny& b) const = 0;
};
