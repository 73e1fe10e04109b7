// Equality and order as truth values, with the arguments (a, t, b).
#include "constraints/VokTarnBooleanEqualConstraint.h"
#include "constraints/VokTarnBooleanLessConstraint.h"
#include "constraints/VokTarnBooleanLessOrEqualConstraint.h"
#include "constraints/narrowing.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnBooleanEqualConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnBooleanLessConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnBooleanLessOrEqualConstraint)

namespace {

constexpr unsigned kLeft = 0;
constexpr unsigned kTruth = 1;
constexpr unsigned kRight = 2;

enum class Verdict { Open, False, True };

Verdict KnownTruth(const VokTarnObjectEnvironment& environment) {
  const VokTarnBoolean& truth = environment.Truth(kTruth);
  if (truth.IsPossible(0) != 0 && truth.IsPossible(1) != 0) {
    return Verdict::Open;
  }
  return truth.IsPossible(1) != 0 ? Verdict::True : Verdict::False;
}

// Undefined values have the ends of the integer range as bounds, so they never decide an order.
Verdict DecideOrder(const VokTarnObjectEnvironment& environment, int gap) {
  if (environment.AreSame(kLeft, kRight)) {
    return gap == 0 ? Verdict::True : Verdict::False;
  }
  const VokTarnInteger& a = environment.Integer(kLeft);
  const VokTarnInteger& b = environment.Integer(kRight);
  if (a.IsUndefined() != 0 || b.IsUndefined() != 0) {
    return Verdict::Open;
  }
  if (std::int64_t{a.GetUpperBound()} + gap <= b.GetLowerBound()) {
    return Verdict::True;
  }
  return std::int64_t{a.GetLowerBound()} + gap > b.GetUpperBound() ? Verdict::False : Verdict::Open;
}

// t tells whether a + gap <= b.
int PropagateOrder(const VokTarnObjectEnvironment& environment, int gap) {
  switch (KnownTruth(environment)) {
    case Verdict::True:
      return KeepOrdered(environment, kLeft, kRight, gap);
    case Verdict::False:
      return KeepOrdered(environment, kRight, kLeft, 1 - gap);
    case Verdict::Open:
      break;
  }
  const Verdict verdict = DecideOrder(environment, gap);
  return verdict == Verdict::Open ? 0 : environment.KeepTruth(kTruth, verdict == Verdict::True);
}

bool AreOrderArguments(const VokTarnObjectEnvironment& environment) {
  return environment.Size() == 3 && AreIntegers(environment, kLeft, kLeft + 1) &&
         AreTruthValues(environment, kTruth, kTruth + 1) && AreIntegers(environment, kRight, kRight + 1);
}

}  // namespace

bool VokTarnBooleanEqualConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreOrderArguments(environment) || (environment.Size() == 3 && AreTruthValues(environment, 0, 3));
}
bool VokTarnBooleanEqualConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  return (ExactValue(environment, kTruth) != 0) == (ExactValue(environment, kLeft) == ExactValue(environment, kRight));
}
int VokTarnBooleanEqualConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  switch (KnownTruth(environment)) {
    case Verdict::True:
      return KeepEqual(environment, kLeft, kRight);
    case Verdict::False:
      return KeepUnequal(environment, kLeft, kRight);
    case Verdict::Open:
      break;
  }
  const VokTarnAny& a = environment.Value(kLeft);
  const VokTarnAny& b = environment.Value(kRight);
  if (environment.AreSame(kLeft, kRight)) {
    return environment.KeepTruth(kTruth, true);
  }
  if (a.GetCardinality() == 1 && b.GetCardinality() == 1) {
    return environment.KeepTruth(kTruth, ExactValue(environment, kLeft) == ExactValue(environment, kRight));
  }
  // The common kind's own test, because a type's own may know nothing of the other's type.
  const bool overlap = AreTruthValues(environment, kLeft, kLeft + 1)
                           ? a.IsIntersected(b) != 0
                           : environment.Integer(kLeft).VokTarnInteger::IsIntersected(b) != 0;
  return overlap ? 0 : environment.KeepTruth(kTruth, false);
}

bool VokTarnBooleanLessConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreOrderArguments(environment);
}
bool VokTarnBooleanLessConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  return (ExactValue(environment, kTruth) != 0) == (ExactValue(environment, kLeft) < ExactValue(environment, kRight));
}
int VokTarnBooleanLessConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return PropagateOrder(environment, 1);
}

bool VokTarnBooleanLessOrEqualConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreOrderArguments(environment);
}
bool VokTarnBooleanLessOrEqualConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  return (ExactValue(environment, kTruth) != 0) == (ExactValue(environment, kLeft) <= ExactValue(environment, kRight));
}
int VokTarnBooleanLessOrEqualConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return PropagateOrder(environment, 0);
}
