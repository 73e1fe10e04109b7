#pragma once

#include <vector>

#include "base/range.h"
#include "constraints/VokTarnConstraintOf.h"

// n is the number of those among x1, .., xk that lie in a set, for the arguments (n, x1, .., xk), integers of any
// types. The constants are the set's ranges (lower1, upper1, lower2, ..), which ascend with gaps between them.
//
// Strength  Domain consistent for distinct arguments of types that list their values and an n without holes: n lies
//           between the number of x that are inside and of those that may be; when it reaches one of the two, the
//           others leave the set or stay in it.
// Cost      O(k r) searches for r ranges.
// Source    Counting as in C. Bessiere, E. Hebrard, B. Hnich, Z. Kiziltan, T. Walsh, "Among, common and disjoint
//           constraints", CSCLP 2005.
class VOKTARN_EXPORT VokTarnAmongConstraint final : public VokTarnConstraintOf<VokTarnAmongConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Many; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  void IndexRanges() const;

  // The ranges of the set and those of its complement; made when they are needed first.
  mutable std::vector<VokTarnRange> fInside;
  mutable std::vector<VokTarnRange> fOutside;
};
