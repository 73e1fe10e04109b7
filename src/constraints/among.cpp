#include <algorithm>
#include <limits>

#include "constraints/VokTarnAmongConstraint.h"
#include "constraints/domains.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnAmongConstraint)

namespace {

constexpr unsigned kResult = 0;
constexpr unsigned kFirst = 1;

}  // namespace

bool VokTarnAmongConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  const std::span<const VokLong> c = GetConstants();
  return environment.Size() >= kFirst && AreIntegers(environment, 0, environment.Size()) && c.size() % 2 == 0 &&
         std::is_sorted(c.begin(), c.end());
}

bool VokTarnAmongConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  std::int64_t count = 0;
  for (unsigned i = kFirst; i < environment.Size(); ++i) {
    bool isInside = false;
    for (std::size_t c = 0; c < GetConstants().size(); c += 2) {
      isInside = isInside || (GetConstants()[c] <= ExactValue(environment, i) &&
                              ExactValue(environment, i) <= GetConstants()[c + 1]);
    }
    count += isInside ? 1 : 0;
  }
  return count == ExactValue(environment, kResult);
}

void VokTarnAmongConstraint::IndexRanges() const {
  fInside.clear();
  std::int64_t next = std::numeric_limits<VokLong>::min();
  for (std::size_t c = 0; c < GetConstants().size(); c += 2) {
    const VokTarnRange range = {GetConstants()[c], GetConstants()[c + 1]};
    fInside.push_back(range);
    if (next < range.fLower) {
      fOutside.push_back({next, range.fLower - 1});
    }
    next = range.fUpper + 1;
  }
  fOutside.push_back({next, std::numeric_limits<VokLong>::max()});
}

int VokTarnAmongConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  if (fOutside.empty()) {
    IndexRanges();
  }
  thread_local std::vector<unsigned> open;
  open.clear();
  std::int64_t certain = 0;
  for (unsigned i = kFirst; i < environment.Size(); ++i) {
    if (HasValueIn(environment, i, fInside)) {
      if (HasValueIn(environment, i, fOutside)) {
        open.push_back(i);
      } else {
        ++certain;
      }
    }
  }
  const std::int64_t possible = certain + static_cast<std::int64_t>(open.size());
  int changed = environment.KeepBetween(kResult, certain, possible);
  if (environment.IsFailed() || open.empty()) {
    return changed;
  }
  const bool all = environment.Lower(kResult) == possible;
  if (!all && environment.Upper(kResult) != certain) {
    return changed;
  }
  for (const unsigned i : open) {
    changed |= KeepRanges(environment, i, all ? fInside : fOutside);
    if (environment.IsFailed()) {
      break;
    }
  }
  return changed;
}
