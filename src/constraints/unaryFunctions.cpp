// Functions of one integer, and the minimum and maximum of two.
#include <algorithm>

#include "constraints/VokTarnAbsoluteConstraint.h"
#include "constraints/VokTarnMaximumConstraint.h"
#include "constraints/VokTarnMinimumConstraint.h"
#include "constraints/VokTarnNextConstraint.h"
#include "constraints/VokTarnNumberNegationConstraint.h"
#include "constraints/VokTarnSignumConstraint.h"
#include "constraints/narrowing.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnNumberNegationConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnAbsoluteConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnNextConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnSignumConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnMinimumConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnMaximumConstraint)

namespace {

constexpr unsigned kA = 0;
constexpr unsigned kB = 1;
constexpr unsigned kResult = 2;

// The result of a function of one operand, its second argument.
constexpr unsigned kR = 1;

// A function of one operand: `forward` narrows the result, `inverse` the operand.
template <class Forward, class Inverse>
int PropagateUnary(const VokTarnObjectEnvironment& environment, Forward forward, Inverse inverse) {
  const int changed = environment.Note(kR, forward(environment.NarrowInteger(kR), environment.Integer(kA)));
  if (environment.IsFailed()) {
    return changed;
  }
  return changed | environment.Note(kA, inverse(environment.Integer(kR), environment.NarrowInteger(kA)));
}

// Minimum or maximum: the inverse looks at one operand and the result alone, so it serves for both operands.
template <class Forward, class Inverse>
int PropagateExtremum(const VokTarnObjectEnvironment& environment, Forward forward, Inverse inverse) {
  int changed = environment.Note(
      kResult, forward(environment.NarrowInteger(kResult), environment.Integer(kA), environment.Integer(kB)));
  for (const auto& [narrowed, other] : {std::pair(kA, kB), std::pair(kB, kA)}) {
    if (!environment.IsFailed()) {
      changed |= environment.Note(narrowed, inverse(environment.Integer(kResult), environment.NarrowInteger(narrowed),
                                                    environment.Integer(other)));
    }
  }
  return changed;
}

}  // namespace

std::optional<std::int64_t> VokTarnNumberNegationConstraint::Compute(std::int64_t a, std::int64_t) const {
  return -a;
}
int VokTarnNumberNegationConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return PropagateUnary(
      environment, [](VokTarnInteger& r, const VokTarnInteger& a) { return r.CalcNegativeValue(a); },
      [](const VokTarnInteger& r, VokTarnInteger& a) { return r.CalcInverseNegativeValue(a); });
}

std::optional<std::int64_t> VokTarnAbsoluteConstraint::Compute(std::int64_t a, std::int64_t) const {
  return a < 0 ? -a : a;
}
int VokTarnAbsoluteConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return PropagateUnary(
      environment, [](VokTarnInteger& r, const VokTarnInteger& a) { return r.CalcAbsoluteValue(a); },
      [](const VokTarnInteger& r, VokTarnInteger& a) { return r.CalcInverseAbsoluteValue(a); });
}

std::optional<std::int64_t> VokTarnNextConstraint::Compute(std::int64_t a, std::int64_t) const {
  return a + 1;
}
int VokTarnNextConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return PropagateUnary(
      environment, [](VokTarnInteger& r, const VokTarnInteger& a) { return r.CalcNextValue(a); },
      [](const VokTarnInteger& r, VokTarnInteger& a) { return r.CalcInverseNextValue(a); });
}

std::optional<std::int64_t> VokTarnMinimumConstraint::Compute(std::int64_t a, std::int64_t b) const {
  return std::min(a, b);
}
int VokTarnMinimumConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return PropagateExtremum(
      environment,
      [](VokTarnInteger& r, const VokTarnInteger& a, const VokTarnInteger& b) { return r.CalcMinValue(a, b); },
      [](const VokTarnInteger& r, VokTarnInteger& a, const VokTarnInteger& b) {
        return r.CalcFirstInverseMinValue(a, b);
      });
}

std::optional<std::int64_t> VokTarnMaximumConstraint::Compute(std::int64_t a, std::int64_t b) const {
  return std::max(a, b);
}
int VokTarnMaximumConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return PropagateExtremum(
      environment,
      [](VokTarnInteger& r, const VokTarnInteger& a, const VokTarnInteger& b) { return r.CalcMaxValue(a, b); },
      [](const VokTarnInteger& r, VokTarnInteger& a, const VokTarnInteger& b) {
        return r.CalcFirstInverseMaxValue(a, b);
      });
}

// The arguments are (s, a).
bool VokTarnSignumConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return environment.Size() == 2 && AreIntegers(environment, 0, 2);
}
bool VokTarnSignumConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const std::int64_t a = ExactValue(environment, 1);
  return ExactValue(environment, 0) == (a > 0) - (a < 0);
}
int VokTarnSignumConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  int changed = environment.Note(0, environment.Integer(1).CalcSignumValue(environment.NarrowInteger(0)));
  if (environment.IsFailed()) {
    return changed;
  }
  // One possible sign is a bound. The types' own inverse may lose values there, elsewhere it is exact.
  const VokTarnInteger& sign = environment.Integer(0);
  const bool negative = sign.IsPossible(-1);
  const bool positive = sign.IsPossible(1);
  if (sign.IsPossible(0) || negative == positive) {
    return changed | environment.Note(1, environment.NarrowInteger(1).CalcInverseSignumValue(sign));
  }
  return changed | (negative ? environment.KeepAtMost(1, -1) : environment.KeepAtLeast(1, 1));
}
