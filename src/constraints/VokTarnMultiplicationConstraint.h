#pragma once

#include "constraints/VokTarnConstraintOf.h"
#include "constraints/VokTarnFunctionConstraint.h"

// r = a * b. As the inverse of a division (a = r / b) its second operand is not 0.
//
// Strength  That of the type of r: domain consistent for enumerated sets until more than sMAX_CARD products
//           differ, bounds for intervals.
// Cost      As for the sum.
class VOKTARN_EXPORT VokTarnMultiplicationConstraint final
    : public VokTarnConstraintOf<VokTarnMultiplicationConstraint, VokTarnFunctionConstraint> {
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
