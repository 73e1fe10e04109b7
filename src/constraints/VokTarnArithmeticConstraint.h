#pragma once

#include "constraints/VokTarnConstraintOf.h"
#include "framework/VokTarnRelation.h"

// z = f(x, y) for the arguments (x, y, z), or z = f(x) for (x, z): integers of any types.
//
// Constants  The function, a VokTarnFunction.
// Meaning    That of the integers; the arguments are taken as the numbers that they are.
// Strength   Bounds by the rules of each function, see the source. Beside, what no pair of x and y supports goes where
//            there are few pairs and no argument stands twice: domain consistent then where the types list their
//            values. The product relies on bounds alone; the magnitude is domain consistent on listed values, as long
//            as x has few of them or there are no holes.
// Cost       O(1) by bounds; O(p) for p pairs; of the magnitude see KeepMagnitude.
class VOKTARN_EXPORT VokTarnArithmeticConstraint final : public VokTarnConstraintOf<VokTarnArithmeticConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return GetArguments().size() == 2 ? Binary : Ternary; }
  VokTarnEvent GetEvent(unsigned argument, const VokTarnObjectEnvironment& environment) const override;
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  VokTarnFunction GetFunction() const noexcept { return static_cast<VokTarnFunction>(GetConstants()[0]); }
};
