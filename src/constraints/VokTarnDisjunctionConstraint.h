#pragma once

#include "constraints/VokTarnConstraintOf.h"

// r holds exactly when some of p1 .. pn, q1 .. qm does, where p holds as 1 and q as 0, for the arguments
// (p1, .., pn, q1, .., qm, r): integers that are 0 or 1, of any types. A conjunction is one of the opposites.
//
// Constants  n; then what r is when some p or q holds: 1, or 0 for the opposite.
// Strength   Domain consistent while no argument stands twice.
// Cost       O(1) for most changes: two of the members are looked at as in a clause; O(n) when one of them has to be
//            replaced, or when a member holds.
class VOKTARN_EXPORT VokTarnDisjunctionConstraint final : public VokTarnConstraintOf<VokTarnDisjunctionConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Unary; }
  VokTarnEvent GetEvent(unsigned, const VokTarnObjectEnvironment&) const override { return VokTarnEvent::Single; }
  std::vector<unsigned> GetWatched(const VokTarnObjectEnvironment& environment) const override;
  unsigned MoveWatch(unsigned argument, const VokTarnObjectEnvironment& environment) const override;
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  unsigned GetResult() const noexcept { return static_cast<unsigned>(GetArguments().size()) - 1; }
  VokLong GetAim(unsigned i) const noexcept { return static_cast<VokLong>(i) < GetConstants()[0] ? 1 : 0; }
  VokLong GetAimOfResult() const noexcept { return GetConstants()[1]; }

  mutable unsigned fLookedAt[2] = {0, 1};
};
