#pragma once

#include "constraints/VokTarnConstraintOf.h"
#include "constraints/VokTarnFunctionConstraint.h"

// r = the smaller of a and b.
//
// Strength  r keeps values of a or b up to the smaller maximum; a and b keep what is not below r's minimum.
// Cost      Linear in the cardinalities.
class VOKTARN_EXPORT VokTarnMinimumConstraint final
    : public VokTarnConstraintOf<VokTarnMinimumConstraint, VokTarnFunctionConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

 protected:
  unsigned GetOperandCount() const noexcept override { return 2; }
  std::optional<std::int64_t> Compute(std::int64_t a, std::int64_t b) const override;
  int Propagate(const VokTarnObjectEnvironment& environment) const override;
  bool IsStrict() const noexcept override { return false; }
};
