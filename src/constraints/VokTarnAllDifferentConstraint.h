#pragma once

#include "constraints/VokTarnConstraintOf.h"

// All arguments, integers of any types, have different values.
//
// Strength  Value elimination to its fixpoint, and failure when fewer values than arguments lie between the least and
//           the greatest bound.
// Cost      n arguments: O(n) per filtering plus O(n) removals for each value that has become known.
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
