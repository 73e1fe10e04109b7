#pragma once

#include "constraints/VokTarnConstraintOf.h"

// b <= a for the arguments (a, b), integers of any types; the third argument is the value of the relation or absent,
// see VokTarnEqualTernaryConstraint.
//
// Strength  Bounds, which is all that an order relation can tell: a keeps its values from min(b) on, b its
//           values up to max(a).
// Cost      One search in each domain.
class VOKTARN_EXPORT VokTarnLessOrEqualTernaryConstraint final
    : public VokTarnConstraintOf<VokTarnLessOrEqualTernaryConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Unary; }
  // As a statement; its value could be told more.
  VokTarnEvent GetEvent(unsigned, const VokTarnObjectEnvironment&) const override {
    return HasValue() ? VokTarnEvent::Domain : VokTarnEvent::Bounds;
  }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  bool HasValue() const noexcept { return GetArguments().size() > 2 && GetArguments()[2] != vokNoValue; }
};
