#include <algorithm>

#include "constraints/VokTarnConstantElementConstraint.h"
#include "constraints/narrowing.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnConstantElementConstraint)

namespace {

constexpr unsigned kResult = 0;
constexpr unsigned kIndex = 1;

}  // namespace

bool VokTarnConstantElementConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return environment.Size() == 2 && AreIntegers(environment, 0, 2);
}

bool VokTarnConstantElementConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const std::int64_t i = ExactValue(environment, kIndex);
  return i >= 1 && i <= static_cast<std::int64_t>(GetConstants().size()) &&
         GetConstants()[static_cast<std::size_t>(i - 1)] == ExactValue(environment, kResult);
}

void VokTarnConstantElementConstraint::ReadConstants() const {
  if (fRanks.size() == GetConstants().size()) {
    return;
  }
  fValues.assign(GetConstants().begin(), GetConstants().end());
  std::ranges::sort(fValues);
  fValues.erase(std::unique(fValues.begin(), fValues.end()), fValues.end());
  for (const VokLong v : GetConstants()) {
    fRanks.push_back(static_cast<unsigned>(std::ranges::lower_bound(fValues, v) - fValues.begin()));
  }
}

// Whether the constant at the place, one of 1 .. n, is a possible result.
bool VokTarnConstantElementConstraint::IsPlace(const VokTarnObjectEnvironment& environment, std::int64_t place) const {
  return environment.MayBe(kResult, GetConstants()[static_cast<std::size_t>(place - 1)]);
}

int VokTarnConstantElementConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  ReadConstants();
  int changed = environment.KeepBetween(kIndex, 1, static_cast<std::int64_t>(GetConstants().size()));
  if (environment.IsFailed() || environment.Cardinality(kIndex) < 0) {
    return changed;
  }
  changed |= NarrowIndex(environment);
  if (environment.IsFailed()) {
    return changed;
  }
  changed |= NarrowResult(environment);
  if (!environment.AreSame(kResult, kIndex) && environment.IsListed(kResult) && environment.IsListed(kIndex)) {
    environment.NoteFixpoint();
  }
  return changed;
}

int VokTarnConstantElementConstraint::NarrowIndex(const VokTarnObjectEnvironment& environment) const {
  const std::span<const VokLong> places = environment.Members(kIndex);
  if (!places.empty()) {
    fKept.clear();
    std::ranges::copy_if(places, std::back_inserter(fKept), [&](VokLong place) { return IsPlace(environment, place); });
    return environment.KeepSubset(kIndex, fKept);
  }
  std::int64_t lower = environment.Lower(kIndex);
  std::int64_t upper = environment.Upper(kIndex);
  while (lower <= upper && !IsPlace(environment, lower)) {
    ++lower;
  }
  while (upper > lower && !IsPlace(environment, upper)) {
    --upper;
  }
  return environment.KeepBetween(kIndex, lower, upper);
}

int VokTarnConstantElementConstraint::NarrowResult(const VokTarnObjectEnvironment& environment) const {
  const bool isByValue = environment.IsListed(kResult);
  unsigned least = static_cast<unsigned>(fValues.size());
  unsigned greatest = 0;
  if (isByValue) {
    fMarks.assign(fValues.size(), 0);
  }
  const auto see = [&](std::int64_t place) {
    const unsigned rank = fRanks[static_cast<std::size_t>(place - 1)];
    if (isByValue) {
      fMarks[rank] = 1;
    } else if (IsPlace(environment, place)) {
      least = std::min(least, rank);
      greatest = std::max(greatest, rank);
    }
  };
  const std::span<const VokLong> places = environment.Members(kIndex);
  for (const VokLong place : places) {
    see(place);
  }
  for (std::int64_t place = environment.Lower(kIndex); places.empty() && place <= environment.Upper(kIndex); ++place) {
    see(place);
  }
  if (!isByValue) {
    return least > greatest ? environment.Fail() : environment.KeepBetween(kResult, fValues[least], fValues[greatest]);
  }
  fKept.clear();
  auto rank = fValues.begin();
  for (const VokLong v : environment.Members(kResult)) {
    rank = std::lower_bound(rank, fValues.end(), v);
    if (rank != fValues.end() && *rank == v && fMarks[static_cast<std::size_t>(rank - fValues.begin())] != 0) {
      fKept.push_back(v);
    }
  }
  return environment.KeepSubset(kResult, fKept);
}
