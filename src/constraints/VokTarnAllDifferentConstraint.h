#pragma once

#include "constraints/VokTarnConstraintOf.h"

// All arguments, integers of any types, have different values.
//
// Strength  Domain consistent while at most 256 arguments with 16384 possible values in all are open: a value stays
//           when some assignment with all values different has it. Beyond that, and beside undefined
//           arguments, values that have become known leave the others.
// Cost      Of n arguments, k known and e possible values in all: O(k (n - k)) removals, and O(n e) for the matching at
//           worst, see valueMatching.h.
class VOKTARN_EXPORT VokTarnAllDifferentConstraint final : public VokTarnConstraintOf<VokTarnAllDifferentConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Many; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;
};
