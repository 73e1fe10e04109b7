#pragma once

#include "constraints/VokTarnConstraintOf.h"
#include "constraints/VokTarnFunctionConstraint.h"

// r = the greater of a and b; the mirror image of the minimum.
class VOKTARN_EXPORT VokTarnMaximumConstraint final
    : public VokTarnConstraintOf<VokTarnMaximumConstraint, VokTarnFunctionConstraint> {
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
