// Equality and order as statements. The optional third argument is the value of the relation.
#include "constraints/VokTarnEqualConstraint.h"
#include "constraints/VokTarnEqualTernaryConstraint.h"
#include "constraints/VokTarnLessOrEqualTernaryConstraint.h"
#include "constraints/VokTarnLessTernaryConstraint.h"
#include "constraints/VokTarnUnequalTernaryConstraint.h"
#include "constraints/narrowing.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnEqualConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnEqualTernaryConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnUnequalTernaryConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnLessOrEqualTernaryConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnLessTernaryConstraint)

namespace {

constexpr unsigned kResult = 2;

// The argument that is the relation's right operand in the text.
unsigned RightOperand(const VokTarnConstraint& relation) {
  return relation.GetForm() == VokTarnForm::Symmetric ? 0 : 1;
}

// Narrows the two sides with `narrowSides`, and keeps the relation's value, if there is one, equal to the
// right operand.
template <class NarrowSides>
int PropagateRelation(const VokTarnConstraint& relation, const VokTarnObjectEnvironment& environment,
                      NarrowSides narrowSides) {
  int changed = narrowSides(environment);
  if (environment.Has(kResult) && !environment.IsFailed()) {
    changed |= KeepEqual(environment, RightOperand(relation), kResult);
  }
  return changed;
}

template <class Relation>
bool HoldsWithResult(const VokTarnConstraint& relation, const VokTarnObjectEnvironment& environment, Relation holds) {
  return holds(ExactValue(environment, 0), ExactValue(environment, 1)) &&
         (!environment.Has(kResult) ||
          ExactValue(environment, kResult) == ExactValue(environment, RightOperand(relation)));
}

bool AreComparable(const VokTarnObjectEnvironment& environment) {
  const unsigned size = environment.Has(kResult) ? 3 : 2;
  return environment.Size() >= 2 && environment.Size() <= 3 &&
         (AreIntegers(environment, 0, size) || AreTruthValues(environment, 0, size));
}

bool AreOrdered(const VokTarnObjectEnvironment& environment) {
  return AreComparable(environment) && AreIntegers(environment, 0, 2);
}

}  // namespace

bool VokTarnEqualConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return environment.Size() == 2 && (AreIntegers(environment, 0, 2) || AreTruthValues(environment, 0, 2));
}
bool VokTarnEqualConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  return ExactValue(environment, 0) == ExactValue(environment, 1);
}
int VokTarnEqualConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return KeepEqual(environment, 0, 1);
}

bool VokTarnEqualTernaryConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreComparable(environment);
}
bool VokTarnEqualTernaryConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  return HoldsWithResult(*this, environment, [](std::int64_t a, std::int64_t b) { return a == b; });
}
int VokTarnEqualTernaryConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return PropagateRelation(*this, environment, [](const auto& sides) { return KeepEqual(sides, 0, 1); });
}

bool VokTarnUnequalTernaryConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreComparable(environment);
}
bool VokTarnUnequalTernaryConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  return HoldsWithResult(*this, environment, [](std::int64_t a, std::int64_t b) { return a != b; });
}
int VokTarnUnequalTernaryConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return PropagateRelation(*this, environment, [](const auto& sides) { return KeepUnequal(sides, 0, 1); });
}

bool VokTarnLessOrEqualTernaryConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreOrdered(environment);
}
bool VokTarnLessOrEqualTernaryConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  return HoldsWithResult(*this, environment, [](std::int64_t a, std::int64_t b) { return b <= a; });
}
int VokTarnLessOrEqualTernaryConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return PropagateRelation(*this, environment, [](const auto& sides) { return KeepOrdered(sides, 1, 0, 0); });
}

bool VokTarnLessTernaryConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreOrdered(environment);
}
bool VokTarnLessTernaryConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  return HoldsWithResult(*this, environment, [](std::int64_t a, std::int64_t b) { return b < a; });
}
int VokTarnLessTernaryConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return PropagateRelation(*this, environment, [](const auto& sides) { return KeepOrdered(sides, 1, 0, 1); });
}
