#pragma once

#include <vector>

#include "constraints/VokTarnConstraintOf.h"

// r = a_i for the arguments (r, i, a1, .., an), integers of any types. Places count from 1; where i is none of 1 .. n
// the constraint does not hold.
//
// Strength  Domain consistent on i and r, and on a_i when i is known, while the arguments are distinct: i keeps the
//           places whose value may equal r, r keeps the values that such a place may have. An undefined r takes at most
//           1023 values over; where r is undefined beside undefined or very large members it keeps their bounds.
// Cost      O(k) tests of overlap for k places that i may be, and O(k d) look-ups for d values of r, most of which end
//           with the first members; these only where no single member has them all.
// Source    The element constraint of P. Van Hentenryck, J.-P. Carillon, "Generality versus specificity: an experience
//           with AI and OR techniques", AAAI 1988.
class VOKTARN_EXPORT VokTarnElementConstraint final : public VokTarnConstraintOf<VokTarnElementConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Many; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;
  bool Explain(const VokTarnPast& past, const VokTarnAtom* atom, std::vector<VokTarnAtom>& because) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  mutable std::vector<VokLong> fPlaces;  // room for the list of one call
};
