#pragma once

#include "constraints/VokTarnConstraintOf.h"
#include "constraints/VokTarnFunctionConstraint.h"

// r = a + b.
//
// Strength  That of the type of r: domain consistent for enumerated sets until more than sMAX_CARD sums differ,
//           bounds for intervals.
// Cost      O(least cardinality of an operand) where the values of each lie within 64 numbers. Else three narrowing
// calls
//           of the type, each in proportion to the product of two cardinalities at most.
class VOKTARN_EXPORT VokTarnAdditionConstraint final
    : public VokTarnConstraintOf<VokTarnAdditionConstraint, VokTarnFunctionConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

 protected:
  unsigned GetOperandCount() const noexcept override { return 2; }
  std::optional<std::int64_t> Compute(std::int64_t a, std::int64_t b) const override;
  int Propagate(const VokTarnObjectEnvironment& environment) const override;
};
