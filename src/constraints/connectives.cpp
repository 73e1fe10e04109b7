// The connectives of truth values. Each is narrowed from its truth table: an argument keeps a truth value when
// some combination of the others' possible values makes the connective hold with it.
#include "constraints/VokTarnBooleanAndConstraint.h"
#include "constraints/VokTarnBooleanImpliesConstraint.h"
#include "constraints/VokTarnBooleanNotConstraint.h"
#include "constraints/VokTarnBooleanOrConstraint.h"
#include "constraints/narrowing.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnBooleanNotConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnBooleanAndConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnBooleanOrConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnBooleanImpliesConstraint)

namespace {

// A connective of two operands, as the function r = f(a, b) of truth values.
using Connective = bool (*)(bool a, bool b);

int PropagateConnective(const VokTarnObjectEnvironment& environment, Connective connective) {
  unsigned supported[3] = {0, 0, 0};  // per argument, bit t: the truth value t has a support
  for (const unsigned a : {0U, 1U}) {
    for (const unsigned b : {0U, 1U}) {
      const unsigned r = connective(a != 0, b != 0) ? 1 : 0;
      // An argument that stands twice takes the same truth value in both places; that is left to the check.
      if (environment.Truth(0).IsPossible(static_cast<int>(a)) != 0 &&
          environment.Truth(1).IsPossible(static_cast<int>(b)) != 0 &&
          environment.Truth(2).IsPossible(static_cast<int>(r)) != 0) {
        supported[0] |= 1U << a;
        supported[1] |= 1U << b;
        supported[2] |= 1U << r;
      }
    }
  }
  if (supported[2] == 0) {
    return environment.Fail();
  }
  int changed = 0;
  for (unsigned i = 0; i < 3; ++i) {
    for (const bool truth : {false, true}) {
      if ((supported[i] & (truth ? 2U : 1U)) == 0) {
        changed |= environment.KeepTruth(i, !truth);
      }
    }
  }
  return changed;
}

bool HoldsConnective(const VokTarnObjectEnvironment& environment, Connective connective) {
  return connective(ExactValue(environment, 0) != 0, ExactValue(environment, 1) != 0) ==
         (ExactValue(environment, 2) != 0);
}

bool And(bool a, bool b) {
  return a && b;
}
bool Or(bool a, bool b) {
  return a || b;
}
bool Implies(bool a, bool b) {
  return !a || b;
}

bool AreConnectiveArguments(const VokTarnObjectEnvironment& environment, unsigned count) {
  return environment.Size() == count && AreTruthValues(environment, 0, count);
}

}  // namespace

bool VokTarnBooleanNotConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreConnectiveArguments(environment, 2);
}
bool VokTarnBooleanNotConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  return ExactValue(environment, 0) != ExactValue(environment, 1);
}
int VokTarnBooleanNotConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return KeepUnequal(environment, 0, 1);
}

bool VokTarnBooleanAndConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreConnectiveArguments(environment, 3);
}
bool VokTarnBooleanAndConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  return HoldsConnective(environment, And);
}
int VokTarnBooleanAndConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return PropagateConnective(environment, And);
}

bool VokTarnBooleanOrConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreConnectiveArguments(environment, 3);
}
bool VokTarnBooleanOrConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  return HoldsConnective(environment, Or);
}
int VokTarnBooleanOrConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return PropagateConnective(environment, Or);
}

bool VokTarnBooleanImpliesConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreConnectiveArguments(environment, 3);
}
bool VokTarnBooleanImpliesConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  return HoldsConnective(environment, Implies);
}
int VokTarnBooleanImpliesConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return PropagateConnective(environment, Implies);
}
