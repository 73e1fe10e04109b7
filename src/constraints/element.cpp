#include <algorithm>
#include <vector>

#include "constraints/VokTarnElementConstraint.h"
#include "constraints/narrowing.h"
#include "numbers/SubIntBase.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnElementConstraint)

namespace {

constexpr unsigned kResult = 0;
constexpr unsigned kIndex = 1;
constexpr unsigned kBeforeFirst = 1;  // place p stands at argument kBeforeFirst + p

// Domains beyond this size are narrowed by their bounds.
constexpr int kMostListed = 16384;

const VokTarnInteger& Member(const VokTarnObjectEnvironment& environment, VokLong place) {
  return environment.Integer(kBeforeFirst + static_cast<unsigned>(place));
}

// The places that the index may be, and whose value the result may have.
std::vector<VokLong> FindPlaces(const VokTarnObjectEnvironment& environment) {
  std::vector<VokLong> places;
  const VokTarnInteger& index = environment.Integer(kIndex);
  const VokTarnInteger& result = environment.Integer(kResult);
  for (VokLong place = 1; kBeforeFirst + static_cast<unsigned>(place) < environment.Size(); ++place) {
    if (index.IsPossible(place) && HaveCommonValue(Member(environment, place), result)) {
      places.push_back(place);
    }
  }
  return places;
}

// The least possible value of x from v on, the greatest up to v. Require: there is one.
VokLong FirstFrom(const VokTarnInteger& x, VokLong v) {
  return v <= x.GetLowerBound() ? x.GetLowerBound() : x.IsPossible(v) ? v : x.GetNextExactValue(v);
}

VokLong LastUpTo(const VokTarnInteger& x, VokLong v) {
  return v >= x.GetUpperBound() ? x.GetUpperBound() : x.IsPossible(v) ? v : x.GetPrevExactValue(v);
}

int KeepBoundsOfMembers(const VokTarnObjectEnvironment& environment, const std::vector<VokLong>& places) {
  const VokTarnInteger& result = environment.Integer(kResult);
  VokLong lower = SubIntBase::sMax;
  VokLong upper = SubIntBase::sMin;
  for (const VokLong place : places) {
    lower = std::min(lower, FirstFrom(Member(environment, place), result.GetLowerBound()));
    upper = std::max(upper, LastUpTo(Member(environment, place), result.GetUpperBound()));
  }
  return KeepBetween(environment, kResult, lower, upper);
}

// The result, which is undefined, takes the values of all members over.
int TakeValuesOfMembers(const VokTarnObjectEnvironment& environment, const std::vector<VokLong>& places) {
  std::vector<VokLong> values;
  for (const VokLong place : places) {
    const int cardinality = Member(environment, place).GetCardinality();
    if (cardinality < 0 || cardinality > kMostListed - static_cast<int>(values.size())) {
      return 0;
    }
    const std::vector<VokLong> more = ListValues(Member(environment, place));
    values.insert(values.end(), more.begin(), more.end());
  }
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  return KeepValues(environment, kResult, values);
}

int RemoveValuesOfNoMember(const VokTarnObjectEnvironment& environment, const std::vector<VokLong>& places) {
  std::vector<VokLong> missing = ListValues(environment.Integer(kResult));
  for (auto place = places.begin(); place != places.end() && !missing.empty(); ++place) {
    const VokTarnInteger& member = Member(environment, *place);
    std::erase_if(missing, [&member](VokLong v) { return member.IsPossible(v); });
  }
  int changed = 0;
  for (const VokLong v : missing) {
    changed |= RemoveValue(environment, kResult, v);
  }
  return changed;
}

int NarrowResult(const VokTarnObjectEnvironment& environment, const std::vector<VokLong>& places) {
  const VokTarnInteger& result = environment.Integer(kResult);
  const int changed = KeepBoundsOfMembers(environment, places);
  if (environment.IsFailed() || IsInterval(result) || result.GetCardinality() > kMostListed) {
    return changed;
  }
  return changed | (result.IsUndefined() != 0 ? TakeValuesOfMembers(environment, places)
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
  const std::vector<VokLong> places = FindPlaces(environment);
  const int changed = KeepValues(environment, kIndex, places);
  if (environment.IsFailed()) {
    return changed;
  }
  return changed |
         (places.size() == 1 ? KeepEqual(environment, kResult, kBeforeFirst + static_cast<unsigned>(places.front()))
                             : NarrowResult(environment, places));
}
