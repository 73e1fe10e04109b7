#include <algorithm>
#include <vector>

#include "constraints/VokTarnMembershipConstraint.h"
#include "constraints/narrowing.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnMembershipConstraint)

namespace {

constexpr unsigned kX = 0;
constexpr unsigned kTruth = 1;

}  // namespace

// Bounds tell all of a single range that one of them lies in or beside.
VokTarnEvent VokTarnMembershipConstraint::GetEvent(unsigned argument,
                                                   const VokTarnObjectEnvironment& environment) const {
  if (argument == kTruth) {
    return VokTarnEvent::Single;
  }
  const bool isByBounds =
      GetRanges() == 1 && (GetLower(0) <= environment.Lower(kX) || GetUpper(0) >= environment.Upper(kX));
  return environment.IsListed(kX) && !isByBounds ? VokTarnEvent::Domain : VokTarnEvent::Bounds;
}

bool VokTarnMembershipConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  const std::span<const VokLong> c = GetConstants();
  return c.size() % 2 == 1 && c[0] >= 0 && c[0] <= 2 &&
         environment.Size() == (GetMode() == VokTarnMode::Plain ? 1 : 2) &&
         AreIntegers(environment, 0, environment.Size()) && std::ranges::is_sorted(c.subspan(1));
}

std::size_t VokTarnMembershipConstraint::FindRange(VokLong v) const noexcept {
  std::size_t low = 0;
  std::size_t high = GetRanges();
  while (low < high) {
    const std::size_t middle = (low + high) / 2;
    if (GetUpper(middle) < v) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low;
}

bool VokTarnMembershipConstraint::Has(VokLong v) const noexcept {
  const std::size_t range = FindRange(v);
  return range != GetRanges() && GetLower(range) <= v;
}

bool VokTarnMembershipConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const bool holds = Has(environment.Lower(kX));
  if (GetMode() == VokTarnMode::Plain) {
    return holds;
  }
  const std::int64_t truth = ExactValue(environment, kTruth);
  return (truth == 1 && holds) || (truth == 0 && (!holds || GetMode() == VokTarnMode::HalfReified));
}

int VokTarnMembershipConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const VokTarnMode mode = GetMode();
  if (mode == VokTarnMode::Plain) {
    return KeepInside(environment);
  }
  if (environment.IsSingle(kTruth)) {
    const VokLong truth = environment.Lower(kTruth);
    if (truth == 0) {
      if (mode == VokTarnMode::HalfReified) {
        environment.NoteEntailed();
        return 0;
      }
      return KeepOutside(environment);
    }
    return truth == 1 ? KeepInside(environment) : environment.Fail();
  }
  // The bounds lie in one range, beside all ranges, or the members must tell.
  const VokLong lower = environment.Lower(kX);
  const VokLong upper = environment.Upper(kX);
  const std::size_t range = FindRange(lower);
  bool canHold = range != GetRanges() && GetLower(range) <= upper;
  bool canFail = !canHold || GetLower(range) > lower || GetUpper(range) < upper;
  const std::span<const VokLong> members = environment.Members(kX);
  if (canHold && canFail && !members.empty() && !environment.HasNoHoles(kX)) {
    const auto has = [this](VokLong v) { return Has(v); };
    canHold = GetRanges() == 1 && GetLower(0) == GetUpper(0) ? std::ranges::binary_search(members, GetLower(0))
                                                             : std::ranges::any_of(members, has);
    canFail = !canHold || (members.size() > 1 && !std::ranges::all_of(members, has));
  }
  if (!canHold || (!canFail && mode == VokTarnMode::Reified)) {
    environment.NoteEntailed();
    return environment.KeepExactly(kTruth, canHold ? 1 : 0);
  }
  return environment.KeepBetween(kTruth, 0, 1);
}

int VokTarnMembershipConstraint::KeepInside(const VokTarnObjectEnvironment& environment) const {
  if (GetRanges() == 0) {
    return environment.Fail();
  }
  int changed = 0;
  // Cutting may bring a bound of a set further in, to another range.
  for (int narrowed = 1; narrowed != 0;) {
    const std::size_t first = FindRange(environment.Lower(kX));
    if (first == GetRanges()) {
      return environment.Fail();
    }
    const VokLong upper = environment.Upper(kX);
    std::size_t last = FindRange(upper);
    if (last == GetRanges() || GetLower(last) > upper) {
      if (last == 0) {
        return environment.Fail();
      }
      --last;
    }
    narrowed = environment.KeepAtLeast(kX, GetLower(first));
    narrowed |= environment.IsFailed() ? 0 : environment.KeepAtMost(kX, GetUpper(last));
    changed |= narrowed;
    if (environment.IsFailed() || environment.Cardinality(kX) < 0) {
      return changed;
    }
    if (narrowed == 0 && first == last) {
      environment.NoteEntailed();
      return changed;
    }
  }
  const std::span<const VokLong> members = environment.Members(kX);
  if (!members.empty()) {
    static thread_local std::vector<VokLong> kept;  // room that is kept
    kept.clear();
    std::ranges::copy_if(members, std::back_inserter(kept), [this](VokLong v) { return Has(v); });
    environment.NoteEntailed();
    return changed | environment.KeepSubset(kX, kept);
  }
  environment.NoteFixpoint();
  return changed;
}

int VokTarnMembershipConstraint::KeepOutside(const VokTarnObjectEnvironment& environment) const {
  int changed = 0;
  const std::span<const VokLong> members = environment.Members(kX);
  if (!members.empty() || GetRanges() == 0 || GetUpper(GetRanges() - 1) < environment.Lower(kX) ||
      GetLower(0) > environment.Upper(kX)) {
    environment.NoteEntailed();
  }
  if (GetRanges() == 1 && GetLower(0) == GetUpper(0)) {
    return environment.Remove(kX, GetLower(0));
  }
  if (!members.empty()) {
    static thread_local std::vector<VokLong> kept;
    kept.clear();
    std::ranges::copy_if(members, std::back_inserter(kept), [this](VokLong v) { return !Has(v); });
    return environment.KeepSubset(kX, kept);
  }
  // Ranges that the bounds of an interval stand in; those behind have a gap before them.
  for (int narrowed = 1; narrowed != 0 && !environment.IsFailed(); changed |= narrowed) {
    narrowed = 0;
    const std::size_t first = FindRange(environment.Lower(kX));
    if (first != GetRanges() && GetLower(first) <= environment.Lower(kX)) {
      narrowed = environment.KeepAtLeast(kX, std::int64_t{GetUpper(first)} + 1);
    }
    if (environment.IsFailed()) {
      return 1;
    }
    const std::size_t last = FindRange(environment.Upper(kX));
    if (last != GetRanges() && GetLower(last) <= environment.Upper(kX)) {
      narrowed |= environment.KeepAtMost(kX, std::int64_t{GetLower(last)} - 1);
    }
  }
  return changed;
}
