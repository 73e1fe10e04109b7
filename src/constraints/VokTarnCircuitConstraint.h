#pragma once

#include "constraints/VokTarnConstraintOf.h"

// Arguments x1 to xn, integers of any types, as successors of the places 1 to n make one circuit. The constants are
// (first, partial): the number of the first place, so that place i has the number first + i - 1; where `partial` is not
// 0 the circuit may leave places out, each its own successor (none at all: every place is).
//
// Strength  A known chain does not return to its start too early; places that the circuit cannot leave out reach each
//           other along possible successors; those that are not reached are left out. That no two places have one
//           successor is checked at the end only: pose `all different` beside it.
// Cost      O(n + e) for e possible values.
// Source    Y. Caseau, F. Laburthe, "Solving small TSPs with constraints", ICLP 1997, for the chains; strong
//           connection as in L. G. Kaya, J. N. Hooker, "A filter for the circuit constraint", CP 2006, by two searches
//           from one place.
class VOKTARN_EXPORT VokTarnCircuitConstraint final : public VokTarnConstraintOf<VokTarnCircuitConstraint> {
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

 private:
  bool IsPartial() const noexcept { return GetConstants()[1] != 0; }
  int CutChains(const VokTarnObjectEnvironment& environment) const;
  int KeepConnected(const VokTarnObjectEnvironment& environment) const;
};
