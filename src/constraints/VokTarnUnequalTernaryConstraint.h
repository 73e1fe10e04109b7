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
  // As a statement; its value could be told more. What is not listed yet may have to lose a value only when it reaches
  // it.
  VokTarnEvent GetEvent(unsigned, const VokTarnObjectEnvironment& environment) const override {
    return HasValue()                                           ? VokTarnEvent::Domain
           : environment.IsListed(0) && environment.IsListed(1) ? VokTarnEvent::Single
                                                                : VokTarnEvent::Bounds;
  }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  bool HasValue() const noexcept { return GetArguments().size() > 2 && GetArguments()[2] != vokNoValue; }
};
