#pragma once

#include "constraints/VokTarnConstraintOf.h"

// Item i, of weight wi, lies in the bin with the number bi; lj is the weight of all items in bin j. The arguments are
// (l1,
// .., lm, b1, .., bn), integers of any types, the constants (first, m, w1, .., wn): the number of the first bin, how
// many there are, and the weights, which are not negative.
//
// Strength  A load lies between the weight of the items that are in the bin and of those that may be, and makes up for
//           what the others leave of all weight; an item leaves the bins that it would overfill and goes where it is
//           needed.
// Cost      O(m + e) for e possible values.
// Source    The basic rules of P. Shaw, "A constraint for bin packing", CP 2004; neither its subset sums nor its bound.
class VOKTARN_EXPORT VokTarnBinPackingConstraint final : public VokTarnConstraintOf<VokTarnBinPackingConstraint> {
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
