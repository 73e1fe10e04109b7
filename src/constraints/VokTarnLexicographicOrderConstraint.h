#pragma once

#include <algorithm>

#include "constraints/VokTarnConstraintOf.h"

// The list (x1, .., xn) is lexicographically less than (y1, .., ym), or not greater, for the arguments (x1, .., xn, y1,
// .., ym), integers of any types. A list that begins another is less than it. The constants are (strict, n); where
// `strict` is 0 equal lists will do.
//
// Strength  Domain consistent for distinct arguments.
// Cost      O(n).
// Source    A. Frisch, B. Hnich, Z. Kiziltan, I. Miguel, T. Walsh, "Propagation algorithms for lexicographic ordering
//           constraints", Artificial Intelligence 170, 2006, without its pointers: both are found again.
class VOKTARN_EXPORT VokTarnLexicographicOrderConstraint final
    : public VokTarnConstraintOf<VokTarnLexicographicOrderConstraint> {
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
  // The places that both lists have; whether equal ones up to there are too little.
  unsigned CountCommon() const noexcept {
    const auto n = static_cast<unsigned>(GetConstants()[1]);
    return std::min(n, static_cast<unsigned>(GetArguments().size()) - n);
  }
  bool IsStrictAtEnd() const noexcept {
    const auto n = 2 * static_cast<std::size_t>(GetConstants()[1]);
    return n > GetArguments().size() || (n == GetArguments().size() && GetConstants()[0] != 0);
  }
  bool MayHoldFrom(const VokTarnObjectEnvironment& environment, unsigned i) const;
};
