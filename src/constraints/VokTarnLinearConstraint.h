#pragma once

#include "constraints/VokTarnConstraintOf.h"

// r = c1 x1 + .. + cn xn for the arguments (r, x1, .., xn), integers of any types. The constants are the coefficients,
// one for each x; without constants all are 1. An empty sum is 0.
//
// Meaning   Strict, as the same expression written with products and sums of two: every x, coefficient and product, the
//           sums of the first k products and r lie strictly between the ends of the integer range, or the constraint
//           does not hold.
// Strength  Bounds: each term keeps what the bounds of the others leave it. A term that is open at one side, its x
//           reaching the end of the integer range there, tells the others nothing at that side; a last open term gets
//           its exact value. An argument that stands twice counts as two: its bounds may move one value at a time.
// Cost      O(n) for a pass; changes of its own bring the next, behind the cheaper constraints that they wake.
// Source    Bounds propagation of linear equations as in W. Harvey, P. J. Stuckey, "Improving linear constraint
//           propagation by changing constraint representation", Constraints 8, 2003.
class VOKTARN_EXPORT VokTarnLinearConstraint final : public VokTarnConstraintOf<VokTarnLinearConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override {
    return GetArguments().size() <= 2 ? Binary : GetArguments().size() == 3 ? Ternary : Many;
  }
  VokTarnEvent GetEvent(unsigned, const VokTarnObjectEnvironment&) const override { return VokTarnEvent::Bounds; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  struct Term;

  Term MakeTerm(const VokTarnObjectEnvironment& environment, unsigned i) const;
  int NarrowTerm(const VokTarnObjectEnvironment& environment, unsigned i, const Term& own, const Term& others) const;
  // Whether the bounds say at once that every value stays: the common case once a sum has been narrowed.
  bool IsNarrowed(const VokTarnObjectEnvironment& environment) const;
  // -1 for the result.
  std::int64_t GetCoefficient(unsigned i) const noexcept {
    return i == 0 ? -1 : GetConstants().empty() ? 1 : GetConstants()[i - 1];
  }
};
