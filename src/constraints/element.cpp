#include <algorithm>
#include <vector>

#include "constraints/VokTarnElementConstraint.h"
#include "constraints/domains.h"
#include "numbers/SubIntBase.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnElementConstraint)

namespace {

constexpr unsigned kResult = 0;
constexpr unsigned kIndex = 1;
constexpr unsigned kBeforeFirst = 1;  // place p stands at argument kBeforeFirst + p

// Domains beyond this size are narrowed by their bounds.
constexpr int kMostListed = 16384;

unsigned Place(VokLong place) {
  return kBeforeFirst + static_cast<unsigned>(place);
}

bool CanBeEqual(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j) {
  if (!MayBeEqual(environment, i, j)) {
    return false;
  }
  // Types that have holes but list nothing are asked value by value.
  const auto isClear = [&](unsigned k) { return environment.IsListed(k) || environment.HasNoHoles(k); };
  return (isClear(i) && isClear(j)) || HaveCommonValue(environment.Integer(i), environment.Integer(j));
}

// The places that the index may be, and whose value the result may have.
void FindPlaces(const VokTarnObjectEnvironment& environment, std::vector<VokLong>& places) {
  places.clear();
  const auto see = [&](VokLong place) {
    if (CanBeEqual(environment, Place(place), kResult)) {
      places.push_back(place);
    }
  };
  ForEachValue(environment, kIndex, 1, std::int64_t{environment.Size()} - kBeforeFirst - 1, see);
}

int KeepBoundsOfMembers(const VokTarnObjectEnvironment& environment, const std::vector<VokLong>& places) {
  VokLong lower = SubIntBase::sMax;
  VokLong upper = SubIntBase::sMin;
  for (const VokLong place : places) {
    const unsigned i = Place(place);
    // The result may be the index too, and have changed since the places were found.
    if (environment.Upper(i) >= environment.Lower(kResult) && environment.Lower(i) <= environment.Upper(kResult)) {
      lower = std::min(lower, environment.FindFrom(i, environment.Lower(kResult)));
      upper = std::max(upper, environment.FindUpTo(i, environment.Upper(kResult)));
    }
  }
  return environment.KeepBetween(kResult, lower, upper);
}

// The result, which is undefined, takes the values of all members over.
int TakeValuesOfMembers(const VokTarnObjectEnvironment& environment, const std::vector<VokLong>& places) {
  std::vector<VokLong> values;
  for (const VokLong place : places) {
    const int cardinality = environment.Cardinality(Place(place));
    if (cardinality < 0 || cardinality > kMostListed - static_cast<int>(values.size())) {
      return 0;
    }
    const std::vector<VokLong> more = ListValues(environment.Integer(Place(place)));
    values.insert(values.end(), more.begin(), more.end());
  }
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  return environment.KeepListed(kResult, values);
}

int RemoveValuesOfNoMember(const VokTarnObjectEnvironment& environment, const std::vector<VokLong>& places) {
  // A member that has every value between the bounds of the result, as most have, leaves nothing to be done.
  for (const VokLong place : places) {
    const unsigned i = Place(place);
    if (environment.HasNoHoles(i) && environment.Lower(i) <= environment.Lower(kResult) &&
        environment.Upper(i) >= environment.Upper(kResult)) {
      return 0;
    }
  }
  if (const VokTarnBits bits = environment.Bits(kResult); bits != 0) {
    VokTarnBits missing = bits;
    for (auto place = places.begin(); place != places.end() && missing != 0; ++place) {
      missing &= ~BitsFrom(environment, Place(*place), environment.Lower(kResult));
    }
    return missing == 0 ? 0 : environment.KeepBits(kResult, environment.Lower(kResult), bits & ~missing);
  }
  std::vector<VokLong> missing = ListValues(environment.Integer(kResult));
  for (auto place = places.begin(); place != places.end() && !missing.empty(); ++place) {
    std::erase_if(missing, [&](VokLong v) { return environment.MayBe(Place(*place), v); });
  }
  int changed = 0;
  for (const VokLong v : missing) {
    changed |= environment.Remove(kResult, v);
  }
  return changed;
}

int NarrowResult(const VokTarnObjectEnvironment& environment, const std::vector<VokLong>& places) {
  const int changed = KeepBoundsOfMembers(environment, places);
  if (environment.IsFailed() || environment.IsRange(kResult) || environment.Cardinality(kResult) > kMostListed) {
    return changed;
  }
  return changed | (environment.Cardinality(kResult) < 0 ? TakeValuesOfMembers(environment, places)
                                                         : RemoveValuesOfNoMember(environment, places));
}

}  // namespace

bool VokTarnElementConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return environment.Size() > kIndex && AreIntegers(environment, 0, environment.Size()) && GetConstants().empty();
}

bool VokTarnElementConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const std::int64_t i = ExactValue(environment, kIndex);
  return i >= 1 && i < std::int64_t{environment.Size()} - kBeforeFirst &&
         ExactValue(environment, kBeforeFirst + static_cast<unsigned>(i)) == ExactValue(environment, kResult);
}

int VokTarnElementConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  std::vector<VokLong>& places = fPlaces;
  FindPlaces(environment, places);
  const int changed =
      environment.IsListed(kIndex) ? environment.KeepSubset(kIndex, places) : environment.KeepListed(kIndex, places);
  if (environment.IsFailed()) {
    return changed;
  }
  return changed |
         (places.size() == 1 ? KeepEqual(environment, kResult, kBeforeFirst + static_cast<unsigned>(places.front()))
                             : NarrowResult(environment, places));
}
