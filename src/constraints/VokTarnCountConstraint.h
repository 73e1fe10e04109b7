#pragma once

#include <vector>

#include "constraints/VokTarnConstraintOf.h"

// r = the number of those among a1, .., an that equal v, for the arguments (r, v, a1, .., an), integers of any types.
//
// Strength  For a known v and distinct arguments domain consistent: r lies between the number of members that are v and
//           of those that may be; when it reaches one of the two, the other members lose v or become v. An open v
//           loses the values whose numbers miss the bounds of r, while it has at most 1024 values.
// Cost      Where v is known from the start the members that may be v follow their changes: O(1) for each that is
//           settled, and once O(n) when r settles them all. Else O(n d) look-ups for d values of v, O(n) tests of
//           overlap.
// Source    J.-C. Régin, "Generalized arc consistency for global cardinality constraint", AAAI 1996, for a single
//           value, where counting replaces the flow.
class VOKTARN_EXPORT VokTarnCountConstraint final : public VokTarnConstraintOf<VokTarnCountConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Many; }
  unsigned CountState(const VokTarnObjectEnvironment& environment) const override;
  void InitState(const VokTarnObjectEnvironment& environment) const override;
  bool Advise(unsigned argument, const VokTarnSummary& before,
              const VokTarnObjectEnvironment& environment) const override;
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;
  bool Explain(const VokTarnPast& past, const VokTarnAtom* atom, std::vector<VokTarnAtom>& because) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  // The numbers that the network keeps: how many members are v, and how many at the beginning of fOrder are open.
  enum StateNumber : unsigned { sCertain, sOpen, sStateSize };

  bool HasState() const noexcept { return !fOrder.empty(); }
  int NarrowOpenMembers(const VokTarnObjectEnvironment& environment) const;

  // The members, and the place of each among them; those behind the first sOpen are settled. The order may change, the
  // set of those behind only grows: going back takes it as it is.
  mutable std::vector<unsigned> fOrder;
  mutable std::vector<unsigned> fPlaces;  // by argument
};
