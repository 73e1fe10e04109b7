#pragma once

#include "constraints/VokTarnConstraintOf.h"

// No two tasks run at once: task i runs from si up to, not including, si + di, for the arguments (s1, .., sn, d1, ..,
// dn), integers of any types. Durations are not negative. The constant is 1 where a task without duration may not lie
// inside another either, 0 where it may be anywhere.
//
// Strength  Overload checking, detectable precedences and not-last (and its mirror) over the least durations, and two
//           tasks at a time for tasks without duration. No edge finding.
// Cost      O(n log n), and O(n) for each task whose duration is open or may be 0.
// Source    P. Vilím, "O(n log n) filtering algorithms for unary resource constraint", CPAIOR 2004: the trees of tasks.
class VOKTARN_EXPORT VokTarnDisjunctiveConstraint final : public VokTarnConstraintOf<VokTarnDisjunctiveConstraint> {
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

 private:
  struct Task;
  struct Room;

  unsigned CountTasks() const noexcept { return static_cast<unsigned>(GetArguments().size() / 2); }
  bool IsStrict() const noexcept { return GetConstants()[0] != 0; }
  int NarrowStarts(const VokTarnObjectEnvironment& environment, bool isMirrored) const;
  int SeparatePairs(const VokTarnObjectEnvironment& environment) const;
  int Precede(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j) const;
};
