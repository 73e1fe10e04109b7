#pragma once

#include "constraints/VokTarnConstraintOf.h"

// At each time the tasks that run demand no more than the capacity b: task i runs from si up to, not including, si + di
// and demands ri. The arguments are (b, s1, .., sn, d1, .., dn, r1, .., rn), integers of any types. Durations and
// demands are not negative, nor is b, or the constraint does not hold.
//
// Strength  Time-table: starts, demands and durations keep clear of times that surely running tasks have filled, b
//           lies above their demand; beyond that some sets of tasks that need more energy than there is up to their
//           latest end fail. With its bounds an interval loses nothing inside.
// Cost      O(n log n + n p) for p changes of the profile.
// Source    N. Beldiceanu, M. Carlsson, "A new multi-resource cumulatives constraint with negative heights", CP 2002,
//           for the profile; A. Wolf, G. Schrader, "O(n log n) overload checking for the cumulative constraint and its
//           application", INAP 2005, in the form of P. Vilím, "Edge finding filtering algorithm for discrete
//           cumulative resources in O(kn log n)", CP 2009, for the energy.
class VOKTARN_EXPORT VokTarnCumulativeConstraint final : public VokTarnConstraintOf<VokTarnCumulativeConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Many; }
  VokTarnEvent GetEvent(unsigned, const VokTarnObjectEnvironment&) const override { return VokTarnEvent::Bounds; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;
  bool Explain(const VokTarnPast& past, const VokTarnAtom* atom, std::vector<VokTarnAtom>& because) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  struct Room;

  unsigned CountTasks() const noexcept { return static_cast<unsigned>((GetArguments().size() - 1) / 3); }
  int BuildProfile(const VokTarnObjectEnvironment& environment, Room& room) const;
  int NarrowTask(const VokTarnObjectEnvironment& environment, const Room& room, unsigned i) const;
  bool IsOverloaded(const VokTarnObjectEnvironment& environment, Room& room) const;
};
