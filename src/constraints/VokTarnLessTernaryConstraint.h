#pragma once

#include "constraints/VokTarnConstraintOf.h"

// b < a for the arguments (a, b); otherwise like VokTarnLessOrEqualTernaryConstraint.
class VOKTARN_EXPORT VokTarnLessTernaryConstraint final : public VokTarnConstraintOf<VokTarnLessTernaryConstraint> {
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
