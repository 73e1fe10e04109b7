#include <algorithm>
#include <cstdlib>

#include "base/division.h"
#include "constraints/VokTarnLinearConstraint.h"
#include "constraints/narrowing.h"
#include "numbers/SubIntBase.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnLinearConstraint)

namespace {

constexpr unsigned kResult = 0;
constexpr unsigned kFirst = 1;

// The greatest operand and result of arithmetic; its negative is the least.
constexpr std::int64_t kLargest = SubIntBase::sMax - 1;
// Stands for no limit; divided by any coefficient it is still beyond the integer range.
constexpr std::int64_t kNoLimit = std::int64_t{1} << 62;

bool IsInside(std::int64_t v) {
  return v >= -kLargest && v <= kLargest;
}

}  // namespace

// c x, with r as the term -r, so that all terms together are 0. Terms are clipped to what a product may be, 31 bits: a
// sum of as many as there can be arguments stays within 64. The same holds for sums of terms, their `open` counts.
struct VokTarnLinearConstraint::Term {
  std::int64_t lower = 0;
  std::int64_t upper = 0;
  // 1 where x reaches the end of the integer range: it may not be the end, but how far it goes is not known.
  std::int64_t openBelow = 0;
  std::int64_t openAbove = 0;

  bool IsEmpty() const { return lower > upper; }
  void Add(const Term& t) {
    lower += t.lower;
    upper += t.upper;
    openBelow += t.openBelow;
    openAbove += t.openAbove;
  }
  void Subtract(const Term& t) {
    lower -= t.lower;
    upper -= t.upper;
    openBelow -= t.openBelow;
    openAbove -= t.openAbove;
  }
};

VokTarnLinearConstraint::Term VokTarnLinearConstraint::MakeTerm(const VokTarnObjectEnvironment& environment,
                                                                unsigned i) const {
  const std::int64_t c = GetCoefficient(i);
  const std::int64_t least = environment.Lower(i);
  const std::int64_t greatest = environment.Upper(i);
  if (least > kLargest || greatest < -kLargest) {
    return {1, 0};
  }
  const std::int64_t first = c * std::max(least, -kLargest);
  const std::int64_t last = c * std::min(greatest, kLargest);
  const bool openAtFirst = c != 0 && least < -kLargest;
  const bool openAtLast = c != 0 && greatest > kLargest;
  return {std::max(std::min(first, last), -kLargest), std::min(std::max(first, last), kLargest),
          c > 0 ? openAtFirst : openAtLast, c > 0 ? openAtLast : openAtFirst};
}

bool VokTarnLinearConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  const std::size_t coefficients = GetConstants().size();
  return environment.Size() >= kFirst && AreIntegers(environment, 0, environment.Size()) &&
         (coefficients == 0 || coefficients == environment.Size() - kFirst);
}

bool VokTarnLinearConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  std::int64_t sum = 0;
  for (unsigned i = kFirst; i < environment.Size(); ++i) {
    const std::int64_t c = GetCoefficient(i);
    const std::int64_t x = ExactValue(environment, i);
    if (!IsInside(c) || !IsInside(x) || !IsInside(c * x) || !IsInside(sum += c * x)) {
      return false;
    }
  }
  return sum == ExactValue(environment, kResult);
}

// With all terms together 0, a term keeps its values when it is no wider than the least of what the sum can exceed 0 by
// and fall short of it.
bool VokTarnLinearConstraint::IsNarrowed(const VokTarnObjectEnvironment& environment) const {
  const std::span<const VokLong> coefficients = GetConstants();
  std::int64_t lower = -std::int64_t{environment.Upper(kResult)};
  std::int64_t upper = -std::int64_t{environment.Lower(kResult)};
  std::int64_t widest = upper - lower;
  std::int64_t farthest = std::max(std::abs(lower), std::abs(upper));
  for (unsigned i = kFirst; i < environment.Size(); ++i) {
    const std::int64_t c = coefficients.empty() ? 1 : coefficients[i - kFirst];
    const std::int64_t first = c * environment.Lower(i);
    const std::int64_t last = c * environment.Upper(i);
    farthest = std::max({farthest, std::abs(first), std::abs(last)});
    if (farthest > kLargest) {
      return false;  // it takes more care
    }
    lower += std::min(first, last);
    upper += std::max(first, last);
    widest = std::max(widest, std::abs(last - first));
  }
  return farthest <= kLargest && widest <= upper && widest <= -lower;
}

// The terms are read again when their turn comes. One that an earlier step has narrowed, being there twice, is then
// smaller than its part of the sum: what is left for the others is too wide, and the next pass makes up for it.
int VokTarnLinearConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  if (IsNarrowed(environment)) {
    return 0;
  }
  Term sum;
  for (unsigned i = 0; i < environment.Size(); ++i) {
    const Term t = MakeTerm(environment, i);
    if (t.IsEmpty()) {
      return environment.Fail();
    }
    sum.Add(t);
  }
  int changed = 0;
  for (unsigned i = 0; i < environment.Size(); ++i) {
    const Term own = MakeTerm(environment, i);
    Term others = sum;
    others.Subtract(own);
    if (NarrowTerm(environment, i, own, others) == 0) {
      continue;
    }
    changed = 1;
    const Term narrowed = MakeTerm(environment, i);
    if (environment.IsFailed() || narrowed.IsEmpty()) {
      return environment.Fail();
    }
    sum = others;
    sum.Add(narrowed);
  }
  return changed;
}

// Keeps of the argument's values those whose terms are a product that may be, and make up for what the others can be.
int VokTarnLinearConstraint::NarrowTerm(const VokTarnObjectEnvironment& environment, unsigned i, const Term& own,
                                        const Term& others) const {
  const std::int64_t lower =
      std::max(own.openBelow != 0 ? -kNoLimit : -kLargest, others.openAbove != 0 ? -kNoLimit : -others.upper);
  const std::int64_t upper =
      std::min(own.openAbove != 0 ? kNoLimit : kLargest, others.openBelow != 0 ? kNoLimit : -others.lower);
  const bool isClipped = own.lower == -kLargest || own.upper == kLargest;
  if (!isClipped && lower <= own.lower && own.upper <= upper) {
    return 0;
  }
  const std::int64_t c = GetCoefficient(i);
  if (c == 0) {
    return environment.Fail();
  }
  return environment.KeepBetween(i, DivideUp(c > 0 ? lower : upper, c), DivideDown(c > 0 ? upper : lower, c));
}
