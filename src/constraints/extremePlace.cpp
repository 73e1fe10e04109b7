#include <limits>

#include "constraints/VokTarnExtremePlaceConstraint.h"
#include "constraints/domains.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnExtremePlaceConstraint)

namespace {

constexpr unsigned kResult = 0;
constexpr unsigned kFirst = 1;
constexpr std::int64_t kNothing = std::numeric_limits<std::int64_t>::min() / 2;

}  // namespace

bool VokTarnExtremePlaceConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return environment.Size() >= kFirst && AreIntegers(environment, 0, environment.Size()) && GetConstants().size() == 2;
}

bool VokTarnExtremePlaceConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const std::int64_t sign = GetConstants()[1] != 0 ? 1 : -1;
  unsigned best = kFirst;
  for (unsigned i = kFirst; i < environment.Size(); ++i) {
    best = sign * ExactValue(environment, i) > sign * ExactValue(environment, best) ? i : best;
  }
  return environment.Size() > kFirst &&
         ExactValue(environment, kResult) == std::int64_t{GetConstants()[0]} + best - kFirst;
}

// The least values are the greatest of the negative ones.
int VokTarnExtremePlaceConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const unsigned size = environment.Size();
  const bool greatest = GetConstants()[1] != 0;
  const std::int64_t base = std::int64_t{GetConstants()[0]} - kFirst;
  const auto lower = [&](unsigned i) { return std::int64_t{greatest ? environment.Lower(i) : -environment.Upper(i)}; };
  const auto upper = [&](unsigned i) { return std::int64_t{greatest ? environment.Upper(i) : -environment.Lower(i)}; };
  const auto keepAtMost = [&](unsigned i, std::int64_t limit) {
    return greatest ? environment.KeepBetween(i, environment.Lower(i), limit)
                    : environment.KeepBetween(i, -limit, environment.Upper(i));
  };
  const auto keepAtLeast = [&](unsigned i, std::int64_t limit) {
    return greatest ? environment.KeepBetween(i, limit, environment.Upper(i))
                    : environment.KeepBetween(i, environment.Lower(i), -limit);
  };
  if (size == kFirst) {
    return environment.Fail();
  }
  // By place, what its value has to reach so that it is the first greatest.
  thread_local std::vector<std::int64_t> needed;
  needed.assign(size, kNothing);
  std::int64_t before = kNothing;
  for (unsigned i = kFirst; i < size; ++i) {
    needed[i] = before;
    before = std::max(before, lower(i) + 1);
  }
  std::int64_t after = kNothing;
  for (unsigned i = size; i-- > kFirst;) {
    needed[i] = std::max(needed[i], after);
    after = std::max(after, lower(i));
  }
  int changed = KeepWhere(environment, kResult, base + kFirst, base + size - 1, [&](VokLong v) {
    const auto i = static_cast<unsigned>(v - base);
    return upper(i) >= needed[i];
  });
  if (environment.IsFailed()) {
    return changed;
  }
  // What the value of a place may be at most: the best of the earlier candidates, and less than the best of the later.
  const auto isCandidate = [&](unsigned i) { return environment.MayBe(kResult, base + i) && upper(i) >= needed[i]; };
  thread_local std::vector<std::int64_t> limits;
  limits.assign(size, kNothing);
  std::int64_t best = kNothing;
  for (unsigned i = kFirst; i < size; ++i) {
    best = isCandidate(i) ? std::max(best, upper(i)) : best;
    limits[i] = best;
  }
  best = kNothing;
  for (unsigned i = size; i-- > kFirst;) {
    limits[i] = std::max(limits[i], best);
    best = isCandidate(i) ? std::max(best, upper(i) - 1) : best;
  }
  for (unsigned i = kFirst; i < size && !environment.IsFailed(); ++i) {
    if (upper(i) > limits[i]) {
      changed |= keepAtMost(i, limits[i]);
    }
  }
  if (!environment.IsFailed() && environment.IsSingle(kResult)) {
    const auto place = static_cast<unsigned>(environment.Lower(kResult) - base);
    if (lower(place) < needed[place]) {
      changed |= keepAtLeast(place, needed[place]);
    }
  }
  return changed;
}
