#pragma once

#include "constraints/VokTarnConstraintOf.h"

// z is the number of the first place with the greatest value of x1, .., xn, or the least, for the arguments (z, x1, ..,
// xn), integers of any types. The constants are (first, greatest): the number of the place of x1; 1 for the greatest, 0
// for the least.
//
// Strength  Bounds of the x, domain of z: a place stays when its best value beats the worst of the earlier ones and
//           reaches those of the later ones.
// Cost      O(n).
class VOKTARN_EXPORT VokTarnExtremePlaceConstraint final : public VokTarnConstraintOf<VokTarnExtremePlaceConstraint> {
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
