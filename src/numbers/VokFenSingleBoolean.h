#pragma once

#include "framework/VokTarnBoolean.h"
#include "framework/VokTarnObjectDescriptor.h"

// A truth value: false (0), true (1), Any (both possible) or Nil. Ordered, false below true.
//
// Text  "Nil", "Any", "0", "1"; "false" and "true" are read too. Type name "bool".
class VOKTARN_EXPORT VokFenSingleBoolean : public VokTarnBoolean {
 public:
  class Descriptor;

  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnObjectDescriptor* sDescriptor;

  VokFenSingleBoolean() noexcept = default;  // Any
  explicit VokFenSingleBoolean(bool truth) noexcept;
  explicit VokFenSingleBoolean(VokStreamableInit init) noexcept;

  static VokTarnObjectDescriptor* MakeDescriptor();

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
  int Intersect(const VokTarnAny& a) override;
  int Unite(const VokTarnAny& a) override;
  // 2 for Any: both truth values can be listed.
  int GetCardinality() const override;
  int Bisect(VokTarnObject& other, ValueSelection selection) override;
  int CalcMinValue() override;
  int CalcMaxValue() override;
  int CalcEqualValue(const VokTarnAny& a) override;
  int CalcInverseEqualValue(VokTarnAny& r) const override;
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
  int CalcTruthValue(int truth) override;
  int IsPossible(int truth) const override;

  static Vokipstream& readRef(Vokipstream& is, VokFenSingleBoolean& value);
  static Vokipstream& readPtr(Vokipstream& is, VokFenSingleBoolean*& value);
  static Vokopstream& writeRef(Vokopstream& os, const VokFenSingleBoolean& value);
  static Vokopstream& writePtr(Vokopstream& os, const VokFenSingleBoolean* value);

 private:
  int NarrowTo(unsigned mask);

  unsigned fMask = 3;  // bit 0: false is possible, bit 1: true is possible
};
