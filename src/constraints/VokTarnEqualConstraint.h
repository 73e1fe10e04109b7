#pragma once

#include "constraints/VokTarnConstraintOf.h"

// a = b, two values of any integer types: a cast. Both lose what the other does not have.
//
// Values of the same type, and singles and intervals beside any type, narrow each other by their own equality; others
// value by value. Cost  Linear in the cardinalities.
class VOKTARN_EXPORT VokTarnEqualConstraint final : public VokTarnConstraintOf<VokTarnEqualConstraint> {
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
