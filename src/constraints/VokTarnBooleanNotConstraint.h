#pragma once

#include "constraints/VokTarnConstraintOf.h"

// r = not a, for truth values (a, r), at constant cost.
class VOKTARN_EXPORT VokTarnBooleanNotConstraint final : public VokTarnConstraintOf<VokTarnBooleanNotConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Unary; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;
};
