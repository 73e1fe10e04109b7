#pragma once

#include "constraints/VokTarnConstraintOf.h"

// t tells whether a = b, for the arguments (a, t, b): integers of any types, or truth values.
//
// t is decided when a and b have no value in common or are single-valued; once it is known, the relation or its
// negation narrows both sides. Cost  Linear in the cardinalities.
class VOKTARN_EXPORT VokTarnBooleanEqualConstraint final : public VokTarnConstraintOf<VokTarnBooleanEqualConstraint> {
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
