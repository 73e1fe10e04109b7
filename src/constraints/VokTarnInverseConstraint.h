#pragma once

#include "constraints/VokTarnConstraintOf.h"

// fi = j exactly when gj = i, for the arguments (f1, .., fn, g1, .., gm), integers of any types. The constants are
// (first f, first g, n): the numbers of the places f1 and g1. Holds for no values where n is not m.
//
// Strength  A value of f stays when the other side may answer it, and the other way round; pose `all different` over f
//           for more.
// Cost      O(e + n^2 / 64) for e possible values.
class VOKTARN_EXPORT VokTarnInverseConstraint final : public VokTarnConstraintOf<VokTarnInverseConstraint> {
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
