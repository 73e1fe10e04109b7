#pragma once

#include "constraints/VokTarnConstraintOf.h"
#include "constraints/VokTarnFunctionConstraint.h"

// r = a mod b: the remainder of the division that truncates toward zero; it has the sign of a. b is not 0.
//
// The divisor is narrowed only while something is known of the dividend.
// Cost      In proportion to the product of two cardinalities.
class VOKTARN_EXPORT VokTarnRemainderConstraint final
    : public VokTarnConstraintOf<VokTarnRemainderConstraint, VokTarnFunctionConstraint> {
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
