#pragma once

#include "constraints/VokTarnConstraintOf.h"

// Some of the first arguments is 1 or some of the others is 0: integers that are 0 or 1, of any types.
//
// Constants  How many of the first arguments are to be 1.
// Strength   Domain consistent while no argument stands twice.
// Cost       Two arguments are watched: O(1) for most changes of these, O(n) for others; none for the arguments that
//            are not watched.
// Source     Watched literals: M. Moskewicz, C. Madigan, Y. Zhao, L. Zhang, S. Malik, "Chaff: engineering an efficient
//            SAT solver", DAC 2001.
class VOKTARN_EXPORT VokTarnClauseConstraint final : public VokTarnConstraintOf<VokTarnClauseConstraint> {
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
  bool Explain(const VokTarnPast& past, const VokTarnAtom* atom, std::vector<VokTarnAtom>& because) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  // What the argument is to be.
  VokLong GetAim(unsigned i) const noexcept { return static_cast<VokLong>(i) < GetConstants()[0] ? 1 : 0; }

  mutable unsigned fWatched[2] = {0, 1};
  mutable unsigned fNext = 0;  // where the last search for an open argument ended
};
