#include <algorithm>

#include "constraints/VokTarnSortConstraint.h"
#include "constraints/domains.h"
#include "numbers/SubIntBase.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnSortConstraint)

bool VokTarnSortConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return environment.Size() % 2 == 0 && AreIntegers(environment, 0, environment.Size()) && GetConstants().empty();
}

bool VokTarnSortConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const unsigned n = environment.Size() / 2;
  std::vector<std::int64_t> values(n);
  for (unsigned i = 0; i < n; ++i) {
    values[i] = ExactValue(environment, i);
  }
  std::sort(values.begin(), values.end());
  for (unsigned k = 0; k < n; ++k) {
    if (values[k] != ExactValue(environment, n + k)) {
      return false;
    }
  }
  return true;
}

int VokTarnSortConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const unsigned n = environment.Size() / 2;
  thread_local std::vector<VokLong> lowers;
  thread_local std::vector<VokLong> uppers;
  lowers.resize(n);
  uppers.resize(n);
  for (unsigned i = 0; i < n; ++i) {
    lowers[i] = environment.Lower(i);
    uppers[i] = environment.Upper(i);
  }
  std::sort(lowers.begin(), lowers.end());
  std::sort(uppers.begin(), uppers.end());
  int changed = 0;
  for (unsigned k = 0; k < n && !environment.IsFailed(); ++k) {
    const VokLong least = k == 0 ? lowers[k] : std::max(lowers[k], environment.Lower(n + k - 1));
    changed |= environment.KeepBetween(n + k, least, uppers[k]);
  }
  for (unsigned k = n; k-- > 1 && !environment.IsFailed();) {
    changed |= environment.KeepBetween(n + k - 1, environment.Lower(n + k - 1), environment.Upper(n + k));
  }
  for (unsigned i = 0; i < n && !environment.IsFailed(); ++i) {
    VokLong least = SubIntBase::sMax;
    VokLong greatest = SubIntBase::sMin;
    for (unsigned k = 0; k < n; ++k) {
      if (environment.Lower(n + k) <= environment.Upper(i) && environment.Upper(n + k) >= environment.Lower(i)) {
        least = std::min(least, environment.Lower(n + k));
        greatest = std::max(greatest, environment.Upper(n + k));
      }
    }
    changed |= environment.KeepBetween(i, least, greatest);
  }
  return changed;
}
