#pragma once

#include "constraints/VokTarnConstraintOf.h"

// (y1, .., yn) are the values of (x1, .., xn) in ascending order, for the arguments (x1, .., xn, y1, .., yn), integers
// of any types.
//
// Strength  Weaker than bounds consistent: yk lies between the k-th of the least and the k-th of the greatest values of
//           the x, and the y ascend; each x keeps within the bounds of those y that overlap it.
// Cost      O(n^2).
// Source    The first steps of N. Bleuzen-Guernalec, A. Colmerauer, "Narrowing a 2n-block of sortings in O(n log n)",
//           CP 1997.
class VOKTARN_EXPORT VokTarnSortConstraint final : public VokTarnConstraintOf<VokTarnSortConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Many; }
  VokTarnEvent GetEvent(unsigned, const VokTarnObjectEnvironment&) const override { return VokTarnEvent::Bounds; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;
};
