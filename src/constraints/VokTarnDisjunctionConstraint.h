#pragma once

#include "constraints/VokTarnConstraintOf.h"

// r holds exactly when some of p1 .. pn, q1 .. qm does, where p holds as 1 and q as 0, for the arguments
// (p1, .., pn, q1, .., qm, r): integers that are 0 or 1, of any types. A conjunction is one of the opposites.
//
// Constants  n; then what r is when some p or q holds: 1, or 0 for the opposite.
// Strength   Domain consistent while no argument stands twice.
// Cost       O(1) for a change: the members that are not lost are counted; once O(n) when all of them are settled.
class VOKTARN_EXPORT VokTarnDisjunctionConstraint final : public VokTarnConstraintOf<VokTarnDisjunctionConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Unary; }
  VokTarnEvent GetEvent(unsigned, const VokTarnObjectEnvironment&) const override { return VokTarnEvent::Single; }
  unsigned CountState(const VokTarnObjectEnvironment&) const override { return sStateSize; }
  void InitState(const VokTarnObjectEnvironment& environment) const override;
  bool Advise(unsigned argument, const VokTarnSummary& before,
              const VokTarnObjectEnvironment& environment) const override;
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;
  bool Explain(const VokTarnPast& past, const VokTarnAtom* atom, std::vector<VokTarnAtom>& because) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  // The numbers that the network keeps: how many members are not lost, and the sum of their places, which is the place
  // of the last one; whether a member holds; whether all arguments have been brought to 0 and 1.
  enum StateNumber : unsigned { sLeft, sPlaces, sHolds, sAreTruths, sStateSize };

  bool NoteMember(unsigned i, const VokTarnObjectEnvironment& environment) const;
  unsigned GetResult() const noexcept { return static_cast<unsigned>(GetArguments().size()) - 1; }
  VokLong GetAim(unsigned i) const noexcept { return static_cast<VokLong>(i) < GetConstants()[0] ? 1 : 0; }
  VokLong GetAimOfResult() const noexcept { return GetConstants()[1]; }
};
