#pragma once

#include <vector>

#include "base/range.h"
#include "constraints/VokTarnConstraintOf.h"

// Each ci is the number of those among x1, .., xn that equal vi, for the arguments (c1, .., cm, x1, .., xn), integers
// of any types. The constants are (closed, v1, .., vm); where closed is not 0 no x has a value beside these.
//
// Strength  Each ci lies between the number of x that are vi and of those that may be, and makes up for what the others
//           leave of the x; when it reaches one of the two, the other x lose vi or become vi. No flow is looked for.
// Cost      O(m + e) look-ups for e possible values of all x together.
// Source    The counting part of J.-C. Régin, "Generalized arc consistency for global cardinality constraint", AAAI
//           1996, with the sums of C.-G. Quimper, A. López-Ortiz, P. van Beek, A. Golynski, "Improved algorithms for
//           the global cardinality constraint", CP 2004.
class VOKTARN_EXPORT VokTarnGlobalCardinalityConstraint final
    : public VokTarnConstraintOf<VokTarnGlobalCardinalityConstraint> {
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
  struct Slot;

  void IndexCover() const;
  int FindPlace(VokLong v) const;
  bool IsClosed() const noexcept { return GetConstants()[0] != 0; }
  unsigned CountArguments() const noexcept { return static_cast<unsigned>(GetConstants().size() - 1); }
  template <class Visit>
  void ForEachPlace(const VokTarnObjectEnvironment& environment, unsigned i, Visit visit) const;
  void CountValues(const VokTarnObjectEnvironment& environment, std::vector<Slot>& slots) const;
  int NarrowMembers(const VokTarnObjectEnvironment& environment, const std::vector<Slot>& slots) const;

  // The different values of the cover, ascending, and the place among them of each count's value; made when they are
  // needed first.
  mutable std::vector<VokLong> fCover;
  mutable std::vector<unsigned> fSlots;
  mutable std::vector<VokTarnRange> fRanges;  // the same values
  // Where the values are near to each other: by value, from the least, one more than its place, or 0.
  mutable std::vector<unsigned> fPlaces;
};
