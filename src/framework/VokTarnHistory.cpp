#include "framework/VokTarnHistory.h"

#include <algorithm>

#include "base/bits.h"
#include "framework/VokTarnNetwork.h"

namespace {

using Relation = VokTarnAtom::Relation;

// Sets of a type that does not list them are asked for their members up to this size. Of greater ones bounds alone are
// known.
constexpr int kMostAsked = 4096;

bool IsOutside(const VokTarnSummary& summary, VokLong v) {
  return v < summary.fLower || v > summary.fUpper;
}

// Appends what a summary tells: a set within a word, or all numbers between the bounds.
void AppendTold(const VokTarnSummary& summary, std::vector<VokLong>& members) {
  if (summary.fBits != 0) {
    ForEachBit(summary.fBits, [&](unsigned bit) { members.push_back(summary.fLower + static_cast<VokLong>(bit)); });
    return;
  }
  for (std::int64_t v = summary.fLower; v <= summary.fUpper; ++v) {
    members.push_back(static_cast<VokLong>(v));
  }
}

}  // namespace

VokTarnHistory::VokTarnHistory(const VokTarnNetwork& network)
    : fNetwork(network),
      fRoots(network.GetValueCount()),
      fRootMembers(network.GetValueCount()),
      fChanges(network.GetValueCount()) {
  for (VokTarnValueId id = 0; id < fRoots.size(); ++id) {
    network.GetBits(id);  // now they are in the summary, where they fit
    fRoots[id] = network.GetSlot(id).fSummary;
    // A type that is neither a range nor lists its members is given them one by one.
    const VokTarnSlot& slot = network.GetSlot(id);
    if (slot.fKind == VokTarnSlot::Kind::Integer &&
        (slot.fShape == VokTarnSlot::Shape::Other || !IsTold(slot, fRoots[id]))) {
      AppendNow(id, fRootMembers[id]);
    }
  }
}

bool VokTarnHistory::CanTell(const VokTarnNetwork& network, VokTarnValueId other) {
  for (VokTarnValueId id = 0; id < network.GetValueCount(); ++id) {
    const VokTarnSlot& slot = network.GetSlot(id);
    if (slot.fDegree == 0 || id == other) {
      continue;
    }
    if (slot.fKind == VokTarnSlot::Kind::Other ||
        (slot.fShape == VokTarnSlot::Shape::Other && slot.fSummary.fSize != 1 &&
         (slot.fSummary.fSize < 0 || slot.fSummary.fSize > kMostAsked))) {
      return false;
    }
  }
  return true;
}

// Whether the summary holds all possible values; also those of a value that is undefined, which may be anything.
bool VokTarnHistory::IsTold(const VokTarnSlot& slot, const VokTarnSummary& summary) {
  return summary.fSize <= 1 || summary.fBits != 0 || summary.HasNoHoles() || slot.fShape == VokTarnSlot::Shape::Range ||
         slot.fKind == VokTarnSlot::Kind::Truth;
}

// Appends the members that an object holds now, of a type that does not list them as far as they can be asked for.
void VokTarnHistory::AppendNow(VokTarnValueId id, std::vector<VokLong>& members) const {
  const VokTarnSlot& slot = fNetwork.GetSlot(id);
  if (IsTold(slot, slot.fSummary)) {
    if (slot.fSummary.fSize > 0) {
      AppendTold(slot.fSummary, members);
    }
    return;
  }
  const VokTarnAny& object = fNetwork.GetValue(id);
  if (slot.fLister != nullptr) {
    const std::span<const VokLong> listed = slot.fLister(object);
    members.insert(members.end(), listed.begin(), listed.end());
  } else if (slot.fSummary.fSize <= kMostAsked) {
    const auto& integer = static_cast<const VokTarnInteger&>(object);
    VokLong v = slot.fSummary.fLower;
    for (int i = 0; i < slot.fSummary.fSize; ++i, v = integer.GetNextExactValue(v)) {
      members.push_back(v);
    }
  }
}

bool VokTarnHistory::WasPossibleAtRoot(VokTarnValueId id, VokLong v) const {
  const VokTarnSummary& root = fRoots[id];
  if (IsOutside(root, v)) {
    return false;
  }
  if (root.fBits != 0) {
    return (root.fBits >> static_cast<unsigned>(v - root.fLower) & 1) != 0;
  }
  const std::vector<VokLong>& members = fRootMembers[id];
  return members.empty() || std::ranges::binary_search(members, v);
}

void VokTarnHistory::NoteTouch(VokTarnValueId id) {
  const VokTarnSlot& slot = fNetwork.GetSlot(id);
  const auto used = std::span(fTouched).first(fTouchedCount);
  if (slot.fKind != VokTarnSlot::Kind::Integer || IsTold(slot, slot.fSummary) ||
      std::ranges::find(used, id, &Touched::fValue) != used.end()) {
    return;
  }
  if (fTouchedCount == fTouched.size()) {
    fTouched.emplace_back();
  }
  Touched& touched = fTouched[fTouchedCount++];
  touched.fValue = id;
  touched.fMembers.clear();
  AppendNow(id, touched.fMembers);
}

void VokTarnHistory::NoteChange(VokTarnValueId id, const VokTarnSummary& before, const VokTarnCause& cause) {
  if (IsFull()) {
    return;
  }
  fChanges[id].push_back(GetSize());
  fEntries.push_back({before, id, static_cast<std::uint32_t>(fGone.size()), cause});
  const auto used = std::span(fTouched).first(fTouchedCount);
  const auto touched = std::ranges::find(used, id, &Touched::fValue);
  if (touched == used.end()) {
    return;
  }
  const VokTarnSlot& slot = fNetwork.GetSlot(id);
  for (const VokLong v : touched->fMembers) {
    if (slot.fSummary.fSize == 0 || !fNetwork.IsPossible(id, v)) {
      fGone.push_back(v);
    }
  }
  std::swap(*touched, fTouched[--fTouchedCount]);
}

void VokTarnHistory::CutTo(Position size) {
  fTouchedCount = 0;
  for (Position i = GetSize(); i-- > size;) {
    fChanges[fEntries[i].fValue].pop_back();
  }
  if (size < GetSize()) {
    fGone.resize(fEntries[size].fGone);
    fEntries.resize(size);
  }
}

void VokTarnHistory::RenumberClauses(std::span<const VokULong> numbers) {
  for (Entry& entry : fEntries) {
    if (entry.fCause.fKind == VokTarnCause::Kind::Clause) {
      entry.fCause.fIndex = numbers[entry.fCause.fIndex];
    }
  }
}

std::span<const VokLong> VokTarnHistory::GetGone(Position position) const {
  const std::size_t end = position + 1 < GetSize() ? fEntries[position + 1].fGone : fGone.size();
  return std::span(fGone).subspan(fEntries[position].fGone, end - fEntries[position].fGone);
}

bool VokTarnHistory::HasGone(Position position, VokLong v) const {
  return std::ranges::binary_search(GetGone(position), v);
}

// Whether an atom that is true after a change was so before.
bool VokTarnHistory::HeldBefore(Position position, const VokTarnAtom& atom) const {
  const VokTarnSummary& before = fEntries[position].fBefore;
  switch (atom.fRelation) {
    case Relation::Equal:
      return before.fSize == 1 && before.fLower == atom.fNumber;
    case Relation::AtMost:
      return before.fUpper <= atom.fNumber;
    case Relation::AtLeast:
      return before.fLower >= atom.fNumber;
    case Relation::Unequal:
      break;
  }
  if (IsOutside(before, atom.fNumber)) {
    return true;
  }
  if (before.fBits != 0) {
    return (before.fBits >> static_cast<unsigned>(atom.fNumber - before.fLower) & 1) == 0;
  }
  return !IsTold(fNetwork.GetSlot(atom.fValue), before) && !HasGone(position, atom.fNumber);
}

VokTarnHistory::Position VokTarnHistory::FindChange(const VokTarnAtom& atom) const {
  const std::vector<Position>& changes = fChanges[atom.fValue];
  const auto held = [&](Position position) { return HeldBefore(position, atom); };
  // Where a summary tells all, the domain before a change says itself whether a number was possible.
  if (atom.fRelation != Relation::Unequal || fNetwork.GetSlot(atom.fValue).fShape == VokTarnSlot::Shape::Range) {
    const auto behind = std::ranges::partition_point(changes, [&](Position position) { return !held(position); });
    return behind == changes.begin() ? sNone : *(behind - 1);
  }
  for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
    if (!held(*change)) {
      return *change;
    }
  }
  return sNone;
}

VokTarnHistory::Position VokTarnHistory::FindNext(VokTarnValueId id, Position position) const {
  const auto next = std::ranges::lower_bound(fChanges[id], position);
  return next == fChanges[id].end() ? sNone : *next;
}

const VokTarnSummary& VokTarnHistory::GetSummary(VokTarnValueId id, Position position) const {
  const Position next = FindNext(id, position);
  return next == sNone ? fNetwork.GetSlot(id).fSummary : fEntries[next].fBefore;
}

bool VokTarnHistory::WasPossible(VokTarnValueId id, VokLong v, Position position) const {
  const Position next = FindNext(id, position);
  if (next == sNone) {
    return fNetwork.IsPossible(id, v);
  }
  const VokTarnSummary& before = fEntries[next].fBefore;
  if (IsOutside(before, v) || before.fSize == 0) {
    return false;
  }
  if (before.fBits != 0) {
    return (before.fBits >> static_cast<unsigned>(v - before.fLower) & 1) != 0;
  }
  if (IsTold(fNetwork.GetSlot(id), before)) {
    return true;
  }
  // It went later, or it is there still, or a summary tells of a later time.
  for (auto change = std::ranges::lower_bound(fChanges[id], next); change != fChanges[id].end(); ++change) {
    const VokTarnSummary& later = fEntries[*change].fBefore;
    if (IsTold(fNetwork.GetSlot(id), later)) {
      return later.fSize > 0 && !IsOutside(later, v) &&
             (later.fBits == 0 || (later.fBits >> static_cast<unsigned>(v - later.fLower) & 1) != 0);
    }
    if (HasGone(*change, v)) {
      return true;
    }
  }
  return fNetwork.GetSlot(id).fSummary.fSize != 0 && fNetwork.IsPossible(id, v);
}

void VokTarnHistory::ListMembers(VokTarnValueId id, Position position, std::vector<VokLong>& members) const {
  const VokTarnSlot& slot = fNetwork.GetSlot(id);
  // From then on, what went, up to a change before which a summary held all, or to what is left now.
  auto change = std::ranges::lower_bound(fChanges[id], position);
  for (; change != fChanges[id].end(); ++change) {
    const VokTarnSummary& before = fEntries[*change].fBefore;
    if (IsTold(slot, before)) {
      if (before.fSize > 0) {
        AppendTold(before, members);
      }
      break;
    }
    const std::span<const VokLong> gone = GetGone(*change);
    members.insert(members.end(), gone.begin(), gone.end());
  }
  if (change == fChanges[id].end()) {
    AppendNow(id, members);
  }
  std::ranges::sort(members);
}
