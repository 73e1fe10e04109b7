#pragma once

#include "constraints/VokTarnConstraintOf.h"
#include "constraints/VokTarnFunctionConstraint.h"

// r = a ^ b, where x ^ 0 is 1 and a negative exponent needs a base of 1 or -1.
//
// The base is not narrowed while 0 is a possible exponent and 1 a possible result: then every base may have
// a partner, and the roots alone do not list them.
// Cost      In proportion to the product of the cardinalities, times the cost of a root.
class VOKTARN_EXPORT VokTarnPowerConstraint final
    : public VokTarnConstraintOf<VokTarnPowerConstraint, VokTarnFunctionConstraint> {
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
