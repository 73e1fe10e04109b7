#pragma once

#include "constraints/VokTarnConstraintOf.h"

// r = (a implies b), for truth values (a, b, r). Domain consistent, at constant cost.
class VOKTARN_EXPORT VokTarnBooleanImpliesConstraint final
    : public VokTarnConstraintOf<VokTarnBooleanImpliesConstraint> {
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
