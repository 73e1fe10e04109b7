#pragma once

#include "constraints/VokTarnConstraintOf.h"

// r is the greatest of x1 .. xn, or the least, for the arguments (r, x1, .., xn), n at least 1: integers of any types.
//
// Constants  1 for the greatest, 0 for the least.
// Strength   Bounds consistent while no argument stands twice.
// Cost       O(n).
class VOKTARN_EXPORT VokTarnExtremumConstraint final : public VokTarnConstraintOf<VokTarnExtremumConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return GetArguments().size() <= 3 ? Ternary : Many; }
  VokTarnEvent GetEvent(unsigned, const VokTarnObjectEnvironment&) const override { return VokTarnEvent::Bounds; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;
  bool Explain(const VokTarnPast& past, const VokTarnAtom* atom, std::vector<VokTarnAtom>& because) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  bool IsGreatest() const noexcept { return GetConstants()[0] == 1; }
};
