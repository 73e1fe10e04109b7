#pragma once

#include "constraints/VokTarnConstraintOf.h"

// An odd number of the arguments is 1, or an even number: integers that are 0 or 1, of any types.
//
// Constants  1 for odd, 0 for even.
// Strength   Domain consistent while no argument stands twice: the last open argument gets its value.
// Cost       Two arguments are watched: O(n) for a change of these, none for others.
class VOKTARN_EXPORT VokTarnParityConstraint final : public VokTarnConstraintOf<VokTarnParityConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Binary; }
  VokTarnEvent GetEvent(unsigned, const VokTarnObjectEnvironment&) const override { return VokTarnEvent::Single; }
  std::vector<unsigned> GetWatched(const VokTarnObjectEnvironment& environment) const override;
  unsigned MoveWatch(unsigned argument, const VokTarnObjectEnvironment& environment) const override;
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  mutable unsigned fWatched[2] = {0, 1};
};
