#pragma once

#include "constraints/VokTarnConstraintOf.h"

// a <> b; otherwise like VokTarnEqualTernaryConstraint. Narrows when one side is single-valued: one removal.
class VOKTARN_EXPORT VokTarnUnequalTernaryConstraint final
    : public VokTarnConstraintOf<VokTarnUnequalTernaryConstraint> {
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
