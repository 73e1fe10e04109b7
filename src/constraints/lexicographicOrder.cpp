#include "constraints/VokTarnLexicographicOrderConstraint.h"
#include "constraints/domains.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnLexicographicOrderConstraint)

bool VokTarnLexicographicOrderConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreIntegers(environment, 0, environment.Size()) && GetConstants().size() == 2 && GetConstants()[1] >= 0 &&
         static_cast<unsigned>(GetConstants()[1]) <= environment.Size();
}

bool VokTarnLexicographicOrderConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const auto n = static_cast<unsigned>(GetConstants()[1]);
  for (unsigned i = 0; i < CountCommon(); ++i) {
    if (ExactValue(environment, i) != ExactValue(environment, n + i)) {
      return ExactValue(environment, i) < ExactValue(environment, n + i);
    }
  }
  return !IsStrictAtEnd();
}

// Whether the lists may hold from place i on, where all places before are equal: the first place that cannot be equal
// decides, and any before it that may be less.
bool VokTarnLexicographicOrderConstraint::MayHoldFrom(const VokTarnObjectEnvironment& environment, unsigned i) const {
  const auto n = static_cast<unsigned>(GetConstants()[1]);
  for (; i < CountCommon(); ++i) {
    if (environment.AreSame(i, n + i)) {
      continue;
    }
    if (environment.Lower(i) != environment.Upper(n + i)) {
      return environment.Lower(i) < environment.Upper(n + i);
    }
  }
  return !IsStrictAtEnd();
}

// Only the first place that is not equal for sure is narrowed: if it may be less, every later value has a support.
int VokTarnLexicographicOrderConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const auto n = static_cast<unsigned>(GetConstants()[1]);
  int changed = 0;
  for (unsigned i = 0; i < CountCommon(); ++i) {
    if (environment.AreSame(i, n + i)) {
      continue;
    }
    if (environment.Upper(i) < environment.Lower(n + i)) {
      return changed;
    }
    changed |= KeepOrdered(environment, i, n + i, MayHoldFrom(environment, i + 1) ? 0 : 1);
    if (environment.IsFailed() || !environment.IsSingle(i) || !IsKnown(environment, n + i, environment.Lower(i))) {
      return changed;
    }
  }
  return IsStrictAtEnd() ? changed | environment.Fail() : changed;
}
