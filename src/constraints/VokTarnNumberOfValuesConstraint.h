#pragma once

#include "constraints/VokTarnConstraintOf.h"

// n is the number of different values of x1, .., xk, for the arguments (n, x1, .., xk), integers of any types.
//
// Strength  n lies between the greatest number of x whose bounds do not overlap and the number of values that are known
//           with one more for each open x, and not above the number of possible values where these lie within a window
//           of 4096; when only the known values are left for n, the open x take these; when each open x has to add one,
//           they lose the known ones. Weaker than bounds consistent.
// Cost      O(k log k) and O(e) for e possible values; O(k) removals for each open x in the two last cases.
// Source    N. Beldiceanu, "Pruning for the minimum constraint family and for the number of distinct values constraint
//           family", CP 2001, for the number of disjoint ranges.
class VOKTARN_EXPORT VokTarnNumberOfValuesConstraint final
    : public VokTarnConstraintOf<VokTarnNumberOfValuesConstraint> {
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
