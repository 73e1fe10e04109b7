#include "framework/VokTarnChoices.h"

#include <algorithm>
#include <functional>
#include <limits>

namespace {

// Activities beyond this are halved many times, all of them.
constexpr std::uint64_t kMostActivity = std::uint64_t{1} << 62;
constexpr unsigned kActivityShift = 44;
// What being involved adds grows by one part in so many with each failure.
constexpr std::uint64_t kGrowth = 20;

}  // namespace

VokTarnChoices::VokTarnChoices(const VokTarnNetwork& network, std::vector<Group> groups, std::uint64_t seed)
    : fGroups(std::move(groups)), fHeaps(fGroups.size()), fMerits(network.GetValueCount()), fRandom(seed) {
  for (VokTarnValueId id = 0; id < fMerits.size(); ++id) {
    fMerits[id].fWeight = static_cast<std::uint32_t>(network.GetDegree(id)) + 1;
  }
  for (Group& group : fGroups) {
    if (group.fGiven.empty()) {
      std::erase_if(group.fVariables, [&network](VokTarnValueId id) { return !network.IsNumber(id); });
    }
    if (group.fIsShuffled && seed != 0) {
      Shuffle(group);
    }
    fRemembers = fRemembers || group.fRemembers;
    fWantsChanges = fWantsChanges || group.fRemembers || HasHeap(group);
  }
  if (fRemembers) {
    fPhases.resize(network.GetValueCount());
  }
  List();
}

bool VokTarnChoices::HasHeap(const Group& group) const noexcept {
  return group.fGiven.empty() && group.fVariable != VokTarnVariableOrder::InputOrder &&
         std::min(group.fVariables.size(), group.fMostCompared) > sMostScanned;
}

// Lists where the variables stand in groups with heaps.
void VokTarnChoices::List() {
  fMemberships.clear();
  for (std::uint32_t i = 0; i < fGroups.size(); ++i) {
    for (std::uint32_t place = 0; HasHeap(fGroups[i]) && place < fGroups[i].fVariables.size(); ++place) {
      fMemberships.push_back({fGroups[i].fVariables[place], i, place});
    }
  }
  std::ranges::stable_sort(fMemberships, {}, &Membership::fValue);
  fFirst.clear();
  for (std::uint32_t i = 0; i < fMemberships.size(); ++i) {
    fFirst.resize(std::max<std::size_t>(fFirst.size(), fMemberships[i].fValue + std::size_t{1}), i);
  }
  fFirst.resize(fMerits.size() + 1, static_cast<std::uint32_t>(fMemberships.size()));
}

// Enters a variable in every heap that it stands in; of those of one order, when it is given.
void VokTarnChoices::EnterAll(const VokTarnNetwork& network, VokTarnValueId id,
                              std::optional<VokTarnVariableOrder> order) {
  for (std::uint32_t i = fFirst[id]; i < fFirst[id + 1]; ++i) {
    const Membership& at = fMemberships[i];
    if (fHeaps[at.fGroup].fIsComplete && (!order || fGroups[at.fGroup].fVariable == *order)) {
      Enter(network, at.fGroup, at.fPlace);
    }
  }
}

// Puts the variables in a random order, which is that of choice among equals.
void VokTarnChoices::Shuffle(Group& group) {
  if (group.fVariable == VokTarnVariableOrder::InputOrder) {
    return;
  }
  for (std::size_t i = group.fVariables.size(); i > 1; --i) {
    std::swap(group.fVariables[i - 1], group.fVariables[fRandom.Next() % i]);
  }
}

void VokTarnChoices::Forget() noexcept {
  fPositions.clear();
  for (Heap& heap : fHeaps) {
    heap.fIsComplete = false;
  }
}

void VokTarnChoices::OnRestart(const VokTarnNetwork& /*network*/) {
  bool isShuffled = false;
  for (Group& group : fGroups) {
    if (group.fIsShuffled) {
      Shuffle(group);
      isShuffled = true;
    }
  }
  if (isShuffled) {
    List();
    Forget();
  }
}

void VokTarnChoices::OnFailure(const VokTarnNetwork& network, VokTarnValueId last) {
  if (last != vokNoValue) {
    fLastConflict = last;
  }
  const VokTarnConstraint* failed = network.GetFailedConstraint();
  if (failed == nullptr) {
    return;
  }
  for (const VokTarnValueId id : failed->GetArguments()) {
    if (id < fMerits.size() && fMerits[id].fWeight < std::numeric_limits<std::uint32_t>::max()) {
      ++fMerits[id].fWeight;
      EnterAll(network, id, VokTarnVariableOrder::Weighted);  // its rank is better now than its entries tell
    }
  }
}

void VokTarnChoices::NoteInvolved(const VokTarnNetwork& network, std::span<const VokTarnValueId> values) {
  for (const VokTarnValueId id : values) {
    fMerits[id].fActivity += fBump;
    EnterAll(network, id, VokTarnVariableOrder::Activity);
  }
  fBump += fBump / kGrowth + 1;
  if (fBump > kMostActivity >> 16U) {
    for (VokTarnMerit& merit : fMerits) {
      merit.fActivity >>= kActivityShift;
    }
    fBump = (fBump >> kActivityShift) + 1;
    for (Heap& heap : fHeaps) {
      heap.fIsComplete = false;
    }
  }
}

// The values that variables have now are those to try first later.
void VokTarnChoices::NotePhases(const VokTarnNetwork& network, std::span<const VokTarnValueId> changed) {
  for (const VokTarnValueId id : changed) {
    if (id < fPhases.size() && network.GetCardinality(id) == 1) {
      fPhases[id] = network.GetLower(id);
    }
  }
}

void VokTarnChoices::OnSolution(const VokTarnNetwork& network) {
  fHasSolution = true;
  for (VokTarnValueId id = 0; id < fPhases.size(); ++id) {
    fPhases[id] = network.GetLower(id);
  }
}

void VokTarnChoices::NoteChanges(const VokTarnNetwork& network, std::span<const VokTarnValueId> changed) {
  if (fRemembers && !fHasSolution) {
    NotePhases(network, changed);
  }
  if (fMemberships.empty()) {
    return;
  }
  for (const VokTarnValueId id : changed) {
    if (id < fMerits.size()) {
      EnterAll(network, id, std::nullopt);
    }
  }
}

VokTarnRank VokTarnChoices::Rank(const VokTarnNetwork& network, const Group& group, std::size_t place) const {
  const VokTarnValueId id = group.fVariables[place];
  return RankVariable(group.fVariable, network, id, fMerits[id]);
}

void VokTarnChoices::Enter(const VokTarnNetwork& network, std::size_t group, std::size_t place) {
  if (network.GetCardinality(fGroups[group].fVariables[place]) > 1) {
    std::vector<Candidate>& candidates = fHeaps[group].fCandidates;
    candidates.push_back({Rank(network, fGroups[group], place), static_cast<std::uint32_t>(place)});
    std::push_heap(candidates.begin(), candidates.end(), std::greater<>());
  }
}

void VokTarnChoices::Complete(const VokTarnNetwork& network, std::size_t group) {
  fHeaps[group].fCandidates.clear();
  for (std::size_t place = 0; place < fGroups[group].fVariables.size(); ++place) {
    Enter(network, group, place);
  }
  fHeaps[group].fIsComplete = true;
}

// The place of the best open variable of a group with a heap; its entry stays.
std::size_t VokTarnChoices::TakeBest(const VokTarnNetwork& network, std::size_t group) {
  Heap& heap = fHeaps[group];
  if (!heap.fIsComplete || heap.fCandidates.size() > 4 * fGroups[group].fVariables.size()) {  // mostly stale by now
    Complete(network, group);
  }
  std::vector<Candidate>& candidates = heap.fCandidates;
  while (!candidates.empty()) {
    const Candidate best = candidates.front();
    if (network.GetCardinality(fGroups[group].fVariables[best.fPlace]) > 1) {
      const VokTarnRank rank = Rank(network, fGroups[group], best.fPlace);
      if (!(rank < best.fRank) && !(best.fRank < rank)) {
        return best.fPlace;
      }
    }
    std::pop_heap(candidates.begin(), candidates.end(), std::greater<>());
    candidates.pop_back();
  }
  return sNoPlace;
}

std::size_t VokTarnChoices::Scan(const VokTarnNetwork& network, const Group& group, std::size_t from) const {
  if (group.fVariable == VokTarnVariableOrder::InputOrder) {
    return from;
  }
  std::size_t best = from;
  VokTarnRank bestRank = Rank(network, group, from);
  const std::size_t end = from + std::min(group.fMostCompared, group.fVariables.size() - from);
  for (std::size_t i = from + 1; i < end; ++i) {
    if (network.GetCardinality(group.fVariables[i]) > 1) {
      if (const VokTarnRank rank = Rank(network, group, i); rank < bestRank) {
        best = i;
        bestRank = rank;
      }
    }
  }
  return best;
}

std::size_t VokTarnChoices::FindGiven(const VokTarnNetwork& network, const Group& group, std::size_t from) const {
  for (std::size_t i = from; i < group.fVariables.size(); ++i) {
    if (network.GetCardinality(group.fVariables[i]) > 1 && network.IsPossible(group.fVariables[i], group.fGiven[i])) {
      return i;
    }
  }
  return sNoPlace;
}

// The value that an open variable had last, while the group remembers and it is possible; else as the order says.
VokTarnAtom VokTarnChoices::Decide(const VokTarnNetwork& network, const Group& group, VokTarnValueId id) {
  if (group.fRemembers && fPhases[id] && network.IsPossible(id, *fPhases[id])) {
    return ChooseValue(network, id, *fPhases[id]);
  }
  return ChooseValues(group.fValue, network, id, fRandom);
}

bool VokTarnChoices::Choose(const VokTarnNetwork& network, unsigned depth, VokTarnAtom& choice) {
  // What was known at this depth still is, unless the search has been above it since: then it has been cut off.
  if (fPositions.size() > depth + 1) {
    fPositions.resize(depth + 1);
  }
  while (fPositions.size() <= depth) {
    fPositions.push_back(fPositions.empty() ? Position{0, 0} : fPositions.back());
  }
  Position& position = fPositions[depth];
  for (; position.fGroup < fGroups.size(); ++position.fGroup, position.fPlace = 0) {
    const Group& group = fGroups[position.fGroup];
    const std::vector<VokTarnValueId>& variables = group.fVariables;
    while (position.fPlace < variables.size() && network.GetCardinality(variables[position.fPlace]) <= 1) {
      ++position.fPlace;
    }
    if (position.fPlace == variables.size()) {
      continue;
    }
    if (group.fRemembers && fLastConflict != vokNoValue) {
      if (network.GetCardinality(fLastConflict) > 1) {
        choice = Decide(network, group, fLastConflict);
        return true;
      }
      fLastConflict = vokNoValue;
    }
    const std::size_t place = !group.fGiven.empty() ? FindGiven(network, group, position.fPlace)
                              : HasHeap(group)      ? TakeBest(network, position.fGroup)
                                                    : Scan(network, group, position.fPlace);
    if (place != sNoPlace) {
      choice = group.fGiven.empty() ? Decide(network, group, variables[place])
                                    : ChooseValue(network, variables[place], group.fGiven[place]);
      return true;
    }
  }
  return false;
}
