#pragma once

#include "constraints/VokTarnConstraintOf.h"

// s = sign(a), with the arguments (s, a): -1, 0 or 1 as a is negative, zero or positive.
//
// Cost  Bounds and the value 0 only: a few searches.
class VOKTARN_EXPORT VokTarnSignumConstraint final : public VokTarnConstraintOf<VokTarnSignumConstraint> {
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
