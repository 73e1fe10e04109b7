#include <algorithm>

#include "constraints/VokTarnGlobalCardinalityConstraint.h"
#include "constraints/domains.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnGlobalCardinalityConstraint)

// A value of the cover: how many arguments are it and may be it, and how many are to be.
struct VokTarnGlobalCardinalityConstraint::Slot {
  std::int64_t fCertain = 0;
  std::int64_t fPossible = 0;
  std::int64_t fLower = 0;
  std::int64_t fUpper = 0;
};

bool VokTarnGlobalCardinalityConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return !GetConstants().empty() && environment.Size() >= CountArguments() &&
         AreIntegers(environment, 0, environment.Size());
}

bool VokTarnGlobalCardinalityConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const std::span<const VokLong> cover = GetConstants().subspan(1);
  std::vector<std::int64_t> counts(cover.size());
  for (unsigned i = CountArguments(); i < environment.Size(); ++i) {
    bool isCovered = false;
    for (std::size_t j = 0; j < cover.size(); ++j) {
      const bool isEqual = cover[j] == ExactValue(environment, i);
      counts[j] += isEqual ? 1 : 0;
      isCovered = isCovered || isEqual;
    }
    if (IsClosed() && !isCovered) {
      return false;
    }
  }
  for (unsigned j = 0; j < CountArguments(); ++j) {
    if (counts[j] != ExactValue(environment, j)) {
      return false;
    }
  }
  return true;
}

void VokTarnGlobalCardinalityConstraint::IndexCover() const {
  const std::span<const VokLong> cover = GetConstants().subspan(1);
  fCover.assign(cover.begin(), cover.end());
  std::sort(fCover.begin(), fCover.end());
  fCover.erase(std::unique(fCover.begin(), fCover.end()), fCover.end());
  fSlots.clear();
  for (const VokLong v : cover) {
    fSlots.push_back(static_cast<unsigned>(std::lower_bound(fCover.begin(), fCover.end(), v) - fCover.begin()));
  }
  fRanges.clear();
  for (const VokLong v : fCover) {
    if (fRanges.empty() || fRanges.back().fUpper + 1 < v) {
      fRanges.push_back({v, v});
    }
    fRanges.back().fUpper = v;
  }
  if (fCover.empty()) {
    return;
  }
  const std::int64_t width = std::int64_t{fCover.back()} - fCover.front() + 1;
  if (width <= 8 * static_cast<std::int64_t>(fCover.size()) + 64) {
    fPlaces.assign(static_cast<std::size_t>(width), 0);
    for (std::size_t place = 0; place < fCover.size(); ++place) {
      fPlaces[static_cast<std::size_t>(fCover[place] - fCover.front())] = static_cast<unsigned>(place) + 1;
    }
  }
}

// The place of v in the cover; -1 when it is not there.
int VokTarnGlobalCardinalityConstraint::FindPlace(VokLong v) const {
  if (fCover.empty() || v < fCover.front() || v > fCover.back()) {
    return -1;
  }
  if (!fPlaces.empty()) {
    return static_cast<int>(fPlaces[static_cast<std::size_t>(std::int64_t{v} - fCover.front())]) - 1;
  }
  const auto found = std::lower_bound(fCover.begin(), fCover.end(), v);
  return *found == v ? static_cast<int>(found - fCover.begin()) : -1;
}

// Calls visit(place) for each place of the cover whose value argument i may have.
template <class Visit>
void VokTarnGlobalCardinalityConstraint::ForEachPlace(const VokTarnObjectEnvironment& environment, unsigned i,
                                                      Visit visit) const {
  if (environment.IsListed(i)) {
    for (const VokLong v : environment.Members(i)) {
      if (const int place = FindPlace(v); place >= 0) {
        visit(static_cast<std::size_t>(place));
      }
    }
    return;
  }
  const auto first = std::lower_bound(fCover.begin(), fCover.end(), environment.Lower(i));
  for (auto v = first; v != fCover.end() && *v <= environment.Upper(i); ++v) {
    if (environment.MayBe(i, *v)) {
      visit(static_cast<std::size_t>(v - fCover.begin()));
    }
  }
}

// Counts the arguments by value, and keeps the counts together within what all arguments can give them.
void VokTarnGlobalCardinalityConstraint::CountValues(const VokTarnObjectEnvironment& environment,
                                                     std::vector<Slot>& slots) const {
  std::int64_t certain = 0;   // arguments with a value of the cover for sure
  std::int64_t possible = 0;  // those that may have one
  for (unsigned i = CountArguments(); i < environment.Size(); ++i) {
    const bool isSingle = environment.IsSingle(i);
    int covered = 0;
    ForEachPlace(environment, i, [&](std::size_t place) {
      ++slots[place].fPossible;
      slots[place].fCertain += isSingle ? 1 : 0;
      ++covered;
    });
    possible += covered != 0 ? 1 : 0;
    certain += covered != 0 && (IsClosed() || covered == environment.Cardinality(i)) ? 1 : 0;
  }
  std::int64_t lower = 0;
  std::int64_t upper = 0;
  for (Slot& slot : slots) {
    slot.fLower = std::max(slot.fLower, slot.fCertain);
    slot.fUpper = std::min(slot.fUpper, slot.fPossible);
    lower += slot.fLower;
    upper += slot.fUpper;
  }
  for (Slot& slot : slots) {
    const Slot before = slot;
    slot.fLower = std::max(before.fLower, certain - (upper - before.fUpper));
    slot.fUpper = std::min(before.fUpper, possible - (lower - before.fLower));
  }
}

int VokTarnGlobalCardinalityConstraint::NarrowMembers(const VokTarnObjectEnvironment& environment,
                                                      const std::vector<Slot>& slots) const {
  const auto isOpen = [](const Slot& slot) { return slot.fCertain != slot.fPossible; };
  const auto isFull = [&](const Slot& slot) { return isOpen(slot) && slot.fUpper == slot.fCertain; };
  const auto isDue = [&](const Slot& slot) { return isOpen(slot) && slot.fLower == slot.fPossible; };
  const bool someFull = std::any_of(slots.begin(), slots.end(), isFull);
  const bool someDue = std::any_of(slots.begin(), slots.end(), isDue);
  if (!someFull && !someDue) {
    return 0;
  }
  int changed = 0;
  for (unsigned i = CountArguments(); i < environment.Size() && !environment.IsFailed(); ++i) {
    if (environment.IsSingle(i)) {
      continue;
    }
    for (std::size_t place = 0; someDue && place < slots.size(); ++place) {
      if (isDue(slots[place]) && environment.MayBe(i, fCover[place])) {
        changed |= environment.KeepBetween(i, fCover[place], fCover[place]);
        break;
      }
    }
    for (std::size_t place = 0; someFull && place < slots.size() && !environment.IsFailed(); ++place) {
      if (isFull(slots[place])) {
        changed |= environment.Remove(i, fCover[place]);
      }
    }
  }
  return changed;
}

int VokTarnGlobalCardinalityConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  thread_local std::vector<Slot> slots;
  if (fSlots.size() != CountArguments()) {
    IndexCover();
  }
  int changed = 0;
  if (fCover.empty()) {
    return IsClosed() && environment.Size() != 0 ? environment.Fail() : 0;
  }
  for (unsigned i = CountArguments(); IsClosed() && i < environment.Size(); ++i) {
    changed |= KeepRanges(environment, i, fRanges);
    if (environment.IsFailed()) {
      return changed;
    }
  }
  slots.assign(fCover.size(), {0, 0, 0, environment.Size()});
  for (unsigned j = 0; j < CountArguments(); ++j) {
    Slot& slot = slots[fSlots[j]];
    slot.fLower = std::max<std::int64_t>(slot.fLower, environment.Lower(j));
    slot.fUpper = std::min<std::int64_t>(slot.fUpper, environment.Upper(j));
  }
  CountValues(environment, slots);
  for (unsigned j = 0; j < CountArguments(); ++j) {
    changed |= environment.KeepBetween(j, slots[fSlots[j]].fLower, slots[fSlots[j]].fUpper);
    if (environment.IsFailed()) {
      return changed;
    }
  }
  return changed | NarrowMembers(environment, slots);
}
