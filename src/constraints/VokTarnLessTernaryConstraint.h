#pragma once

#include "constraints/VokTarnConstraintOf.h"

// b < a for the arguments (a, b); otherwise like VokTarnLessOrEqualTernaryConstraint.
class VOKTARN_EXPORT VokTarnLessTernaryConstraint final : public VokTarnConstraintOf<VokTarnLessTernaryConstraint> {
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
