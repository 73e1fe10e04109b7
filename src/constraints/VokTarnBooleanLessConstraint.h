#pragma once

#include "constraints/VokTarnConstraintOf.h"

// t tells whether a < b, for the arguments (a, t, b): integers of any types. By bounds: two comparisons, and
// one cut of each side once t is known.
class VOKTARN_EXPORT VokTarnBooleanLessConstraint final : public VokTarnConstraintOf<VokTarnBooleanLessConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Binary; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;
};
