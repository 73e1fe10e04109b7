#pragma once

#include "constraints/VokTarnConstraintOf.h"

// a = b, two integers of any types or two truth values. The third argument may be absent: it is the value of the
// relation, its right operand in the text, so that chains can be built.
// Cost  Linear in the cardinalities.
class VOKTARN_EXPORT VokTarnEqualTernaryConstraint final : public VokTarnConstraintOf<VokTarnEqualTernaryConstraint> {
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
