#pragma once

#include "constraints/VokTarnConstraintOf.h"
#include "framework/VokTarnRelation.h"

// x = s y + d, x <= s y + d or x <> s y + d with s = 1 or -1 for the arguments (x, y), and with the truth as the third
// where the mode asks for one: integers of any types.
//
// Constants  The relation and the mode (VokTarnRelation.h), s and d.
// Strength   Domain consistent where both types list their values, else bounds; the truth of = and <> by all listed
//            values. An argument that stands twice counts as two.
// Cost       O(n) for n listed values with =, when only one bound moves none of the others; O(1) else.
class VOKTARN_EXPORT VokTarnOffsetRelationConstraint final
    : public VokTarnConstraintOf<VokTarnOffsetRelationConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Binary; }
  VokTarnEvent GetEvent(unsigned argument, const VokTarnObjectEnvironment& environment) const override;
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;
  bool Explain(const VokTarnPast& past, const VokTarnAtom* atom, std::vector<VokTarnAtom>& because) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  class Sides;

  VokTarnRelation GetRelation() const noexcept { return static_cast<VokTarnRelation>(GetConstants()[0]); }
  VokTarnMode GetMode() const noexcept { return static_cast<VokTarnMode>(GetConstants()[1]); }
  // The other side's value for a value of y; the value of y for one of x.
  std::int64_t FromSecond(std::int64_t y) const noexcept { return GetConstants()[2] * y + GetConstants()[3]; }
  std::int64_t FromFirst(std::int64_t x) const noexcept { return GetConstants()[2] * (x - GetConstants()[3]); }
  bool IsMirrored() const noexcept { return GetConstants()[2] < 0; }
  bool Holds(std::int64_t x, std::int64_t y) const noexcept;

  int Enforce(const VokTarnObjectEnvironment& environment, bool isNegated) const;
  int KeepEqualSides(const VokTarnObjectEnvironment& environment) const;
  int KeepEqualBounds(const VokTarnObjectEnvironment& environment) const;
  int KeepCommonValues(const VokTarnObjectEnvironment& environment) const;
  int KeepDifferent(const VokTarnObjectEnvironment& environment) const;
  int KeepAtMostSecond(const VokTarnObjectEnvironment& environment, bool isNegated) const;
  // Whether some values of both make the sides equal, as far as bounds and lists tell.
  bool CanBeEqual(const VokTarnObjectEnvironment& environment) const;
};
