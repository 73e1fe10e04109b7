#include "constraints/VokTarnValuePrecedenceConstraint.h"
#include "constraints/domains.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnValuePrecedenceConstraint)

bool VokTarnValuePrecedenceConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreIntegers(environment, 0, environment.Size()) && GetConstants().size() == 2;
}

bool VokTarnValuePrecedenceConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  for (unsigned i = 0; i < environment.Size(); ++i) {
    if (ExactValue(environment, i) == GetConstants()[1]) {
      return false;
    }
    if (ExactValue(environment, i) == GetConstants()[0]) {
      return true;
    }
  }
  return true;
}

// Up to the first argument that may be s, this one included, none is t. It has to be s when some argument is t and none
// between the two may be s.
int VokTarnValuePrecedenceConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const VokLong s = GetConstants()[0];
  const VokLong t = GetConstants()[1];
  const unsigned n = environment.Size();
  int changed = 0;
  unsigned first = 0;
  for (bool found = false; !found; ++first) {
    if (first == n) {
      return changed;
    }
    changed |= environment.Remove(first, t);
    if (environment.IsFailed() || IsKnown(environment, first, s)) {
      return changed;
    }
    // A value does not precede itself: where s is t, none is.
    found = s != t && environment.MayBe(first, s);
  }
  for (unsigned i = first; i < n && !environment.MayBe(i, s); ++i) {
    if (IsKnown(environment, i, t)) {
      return changed | environment.KeepBetween(first - 1, s, s);
    }
  }
  return changed;
}
