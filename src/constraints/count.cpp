#include <algorithm>
#include <vector>

#include "constraints/VokTarnCountConstraint.h"
#include "constraints/domains.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnCountConstraint)

namespace {

constexpr unsigned kResult = 0;
constexpr unsigned kValue = 1;
constexpr unsigned kFirst = 2;

// With more values v is narrowed by the members that must equal it alone.
constexpr int kMostCandidates = 1024;

struct Numbers {
  std::int64_t certain = 0;   // members that are v
  std::int64_t possible = 0;  // members that may be v
};

// The numbers where v is w.
Numbers CountFor(const VokTarnObjectEnvironment& environment, VokLong w) {
  Numbers numbers;
  for (unsigned i = kFirst; i < environment.Size(); ++i) {
    if (environment.AreSame(i, kValue) || environment.MayBe(i, w)) {
      ++numbers.possible;
      numbers.certain += environment.AreSame(i, kValue) || environment.IsSingle(i) ? 1 : 0;
    }
  }
  return numbers;
}

// Takes the values of v whose numbers miss the bounds of the result, and brings the result between the numbers of the
// others.
int NarrowValue(const VokTarnObjectEnvironment& environment) {
  const VokTarnInteger& result = environment.Integer(kResult);
  Numbers extremes = {environment.Size(), 0};
  std::vector<VokLong> kept;
  for (const VokLong w : ListValues(environment.Integer(kValue))) {
    const Numbers numbers = CountFor(environment, w);
    if (numbers.certain <= result.GetUpperBound() && numbers.possible >= result.GetLowerBound()) {
      extremes.certain = std::min(extremes.certain, numbers.certain);
      extremes.possible = std::max(extremes.possible, numbers.possible);
      kept.push_back(w);
    }
  }
  const int changed = environment.KeepListed(kValue, kept);
  return environment.IsFailed() ? changed
                                : changed | environment.KeepBetween(kResult, extremes.certain, extremes.possible);
}

bool IsCertain(const VokTarnObjectEnvironment& environment, unsigned i) {
  return environment.AreSame(i, kValue) ||
         (environment.IsSingle(kValue) && IsKnown(environment, i, environment.Lower(kValue)));
}

bool IsOpen(const VokTarnObjectEnvironment& environment, unsigned i) {
  return !IsCertain(environment, i) &&
         (environment.IsSingle(kValue) ? environment.MayBe(i, environment.Lower(kValue))
                                       : HaveCommonValue(environment.Integer(i), environment.Integer(kValue)));
}

// Brings the result between the number of members that are v, whatever v is, and of those that may be; where it reaches
// one of the two, the members that are open are settled.
int NarrowMembers(const VokTarnObjectEnvironment& environment) {
  Numbers numbers;
  for (unsigned i = kFirst; i < environment.Size(); ++i) {
    const bool isCertain = IsCertain(environment, i);
    numbers.certain += isCertain ? 1 : 0;
    numbers.possible += isCertain || IsOpen(environment, i) ? 1 : 0;
  }
  int changed = environment.KeepBetween(kResult, numbers.certain, numbers.possible);
  const bool all = environment.Lower(kResult) == numbers.possible;
  if (environment.IsFailed() || numbers.certain == numbers.possible ||
      (!all && environment.Upper(kResult) != numbers.certain)) {
    return changed;
  }
  for (unsigned i = kFirst; i < environment.Size() && !environment.IsFailed(); ++i) {
    if (IsOpen(environment, i)) {
      changed |= all ? KeepEqual(environment, kValue, i) : KeepUnequal(environment, kValue, i);
    }
  }
  return changed;
}

}  // namespace

bool VokTarnCountConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return environment.Size() >= kFirst && AreIntegers(environment, 0, environment.Size()) && GetConstants().empty();
}

bool VokTarnCountConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  std::int64_t count = 0;
  for (unsigned i = kFirst; i < environment.Size(); ++i) {
    count += ExactValue(environment, i) == ExactValue(environment, kValue) ? 1 : 0;
  }
  return count == ExactValue(environment, kResult);
}

int VokTarnCountConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const int candidates = environment.Value(kValue).GetCardinality();
  const int changed = candidates > 1 && candidates <= kMostCandidates ? NarrowValue(environment) : 0;
  return environment.IsFailed() ? changed : changed | NarrowMembers(environment);
}
