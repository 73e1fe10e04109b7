#include <algorithm>
#include <numeric>
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

unsigned VokTarnCountConstraint::CountState(const VokTarnObjectEnvironment& environment) const {
  return environment.IsSingle(kValue) && environment.Size() > kFirst ? unsigned{sStateSize} : 0U;
}

void VokTarnCountConstraint::InitState(const VokTarnObjectEnvironment& environment) const {
  if (CountState(environment) == 0) {
    return;
  }
  fOrder.resize(environment.Size() - kFirst);
  std::iota(fOrder.begin(), fOrder.end(), kFirst);
  const auto settled = std::partition(fOrder.begin(), fOrder.end(), [&](unsigned i) { return IsOpen(environment, i); });
  fPlaces.resize(environment.Size());
  for (unsigned place = 0; place < fOrder.size(); ++place) {
    fPlaces[fOrder[place]] = place;
  }
  environment.SetState(State(sOpen), settled - fOrder.begin());
  environment.SetState(State(sCertain),
                       std::count_if(settled, fOrder.end(), [&](unsigned i) { return IsCertain(environment, i); }));
}

bool VokTarnCountConstraint::Advise(unsigned argument, const VokTarnSummary&,
                                    const VokTarnObjectEnvironment& environment) const {
  if (argument < kFirst) {
    return true;
  }
  const auto open = static_cast<unsigned>(environment.State(State(sOpen)));
  const unsigned place = fPlaces[argument];
  if (place >= open || IsOpen(environment, argument)) {
    return false;
  }
  std::swap(fOrder[place], fOrder[open - 1]);
  fPlaces[fOrder[place]] = place;
  fPlaces[argument] = open - 1;
  environment.SetState(State(sOpen), open - 1);
  if (IsCertain(environment, argument)) {
    environment.SetState(State(sCertain), environment.State(State(sCertain)) + 1);
  }
  return true;
}

// As NarrowMembers. A member that is settled meanwhile leaves its place to one behind it, which has had its turn.
int VokTarnCountConstraint::NarrowOpenMembers(const VokTarnObjectEnvironment& environment) const {
  const std::int64_t certain = environment.State(State(sCertain));
  const std::int64_t open = environment.State(State(sOpen));
  int changed = environment.KeepBetween(kResult, certain, certain + open);
  if (environment.IsFailed() || open == 0) {
    return changed;
  }
  const bool all = environment.Lower(kResult) == certain + open;
  if (!all && environment.Upper(kResult) != certain) {
    if (changed == 0) {
      environment.NoteFixpoint();  // else the result may be a member, too
    }
    return changed;
  }
  for (auto place = static_cast<std::size_t>(open); place-- > 0 && !environment.IsFailed();) {
    changed |= all ? environment.KeepExactly(fOrder[place], environment.Lower(kValue))
                   : environment.Remove(fOrder[place], environment.Lower(kValue));
  }
  return changed;
}

int VokTarnCountConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  if (HasState()) {
    return NarrowOpenMembers(environment);
  }
  const int candidates = environment.Cardinality(kValue);
  const int changed = candidates > 1 && candidates <= kMostCandidates ? NarrowValue(environment) : 0;
  return environment.IsFailed() ? changed : changed | NarrowMembers(environment);
}
