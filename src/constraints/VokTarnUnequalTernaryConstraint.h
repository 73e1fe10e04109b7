#pragma once

#include "constraints/VokTarnConstraintOf.h"

// a <> b; otherwise like VokTarnEqualTernaryConstraint. Narrows when one side is single-valued: one removal.
class VOKTARN_EXPORT VokTarnUnequalTernaryConstraint final
    : public VokTarnConstraintOf<VokTarnUnequalTernaryConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Binary; }
  // As a statement; its value could be told more.
  VokTarnEvent GetEvent(unsigned) const noexcept override {
    return HasValue() ? VokTarnEvent::Domain : VokTarnEvent::Single;
  }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  bool HasValue() const noexcept { return GetArguments().size() > 2 && GetArguments()[2] != vokNoValue; }
};
