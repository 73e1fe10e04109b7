#pragma once

#include "constraints/VokTarnConstraintOf.h"

// Where some of the arguments (x1, .., xn), integers of any types, is t, an earlier one is s. The constants are (s, t).
//
// Strength  Domain consistent for distinct arguments.
// Cost      O(n) look-ups.
// Source    Y. C. Law, J. H. M. Lee, "Global constraints for integer and set value precedence", CP 2004, without its
//           pointers.
class VOKTARN_EXPORT VokTarnValuePrecedenceConstraint final
    : public VokTarnConstraintOf<VokTarnValuePrecedenceConstraint> {
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
};
