#include <algorithm>

#include "constraints/VokTarnNumberOfValuesConstraint.h"
#include "constraints/domains.h"
#include "numbers/SubIntBase.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnNumberOfValuesConstraint)

namespace {

constexpr unsigned kResult = 0;
constexpr unsigned kFirst = 1;

// A wider window of values is not looked through.
constexpr std::int64_t kWidestWindow = 4096;

// The greatest number of ranges that do not overlap: in the order of their ends, each that begins after the one taken
// last. `ranges` is sorted.
std::int64_t CountDisjoint(std::vector<VokTarnRange>& ranges) {
  std::sort(ranges.begin(), ranges.end(),
            [](const VokTarnRange& a, const VokTarnRange& b) { return a.fUpper < b.fUpper; });
  std::int64_t count = 0;
  std::int64_t last = std::int64_t{SubIntBase::sMin} - 1;
  for (const VokTarnRange& range : ranges) {
    if (range.fLower > last) {
      ++count;
      last = range.fUpper;
    }
  }
  return count;
}

// The number of values that some argument has, if they lie near to each other; else `limit`.
std::int64_t CountPossible(const VokTarnObjectEnvironment& environment, std::int64_t limit) {
  std::int64_t lower = SubIntBase::sMax;
  std::int64_t upper = SubIntBase::sMin;
  for (unsigned i = kFirst; i < environment.Size(); ++i) {
    lower = std::min<std::int64_t>(lower, environment.Lower(i));
    upper = std::max<std::int64_t>(upper, environment.Upper(i));
  }
  if (upper < lower || upper - lower >= kWidestWindow) {
    return limit;
  }
  thread_local std::vector<char> isPossible;
  isPossible.assign(static_cast<std::size_t>(upper - lower + 1), 0);
  for (unsigned i = kFirst; i < environment.Size(); ++i) {
    ForEachValue(environment, i, lower, upper, [&](VokLong v) { isPossible[static_cast<std::size_t>(v - lower)] = 1; });
  }
  return std::min<std::int64_t>(limit, std::count(isPossible.begin(), isPossible.end(), 1));
}

}  // namespace

bool VokTarnNumberOfValuesConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return environment.Size() >= kFirst && AreIntegers(environment, 0, environment.Size()) && GetConstants().empty();
}

bool VokTarnNumberOfValuesConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  std::vector<std::int64_t> values;
  for (unsigned i = kFirst; i < environment.Size(); ++i) {
    values.push_back(ExactValue(environment, i));
  }
  std::sort(values.begin(), values.end());
  return std::unique(values.begin(), values.end()) - values.begin() == ExactValue(environment, kResult);
}

int VokTarnNumberOfValuesConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  thread_local std::vector<VokTarnRange> ranges;
  thread_local std::vector<VokTarnRange> known;
  ranges.clear();
  known.clear();
  for (unsigned i = kFirst; i < environment.Size(); ++i) {
    ranges.push_back({environment.Lower(i), environment.Upper(i)});
    if (environment.IsSingle(i)) {
      known.push_back(ranges.back());
    }
  }
  const std::int64_t open = static_cast<std::int64_t>(ranges.size() - known.size());
  const std::int64_t least = CountDisjoint(ranges);
  const auto isEqual = [](const VokTarnRange& a, const VokTarnRange& b) { return a.fLower == b.fLower; };
  std::sort(known.begin(), known.end(),
            [](const VokTarnRange& a, const VokTarnRange& b) { return a.fLower < b.fLower; });
  known.erase(std::unique(known.begin(), known.end(), isEqual), known.end());
  const auto certain = static_cast<std::int64_t>(known.size());
  int changed = environment.KeepBetween(kResult, least, CountPossible(environment, certain + open));
  const bool onlyKnown = environment.Upper(kResult) == certain;
  if (environment.IsFailed() || open == 0 || (!onlyKnown && environment.Lower(kResult) != certain + open)) {
    return changed;
  }
  for (unsigned i = kFirst; i < environment.Size() && !environment.IsFailed(); ++i) {
    if (environment.IsSingle(i)) {
      continue;
    }
    if (onlyKnown) {
      changed |= KeepRanges(environment, i, known);
      continue;
    }
    for (const VokTarnRange& value : known) {
      changed |= environment.Remove(i, static_cast<VokLong>(value.fLower));
    }
  }
  return changed;
}
