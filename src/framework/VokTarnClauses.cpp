#include "framework/VokTarnClauses.h"

#include <algorithm>

#include "base/bits.h"
#include "framework/VokTarnNetwork.h"

namespace {

using Relation = VokTarnAtom::Relation;

constexpr unsigned char BitOf(Relation relation) {
  return static_cast<unsigned char>(1U << static_cast<unsigned>(relation));
}

}  // namespace

void VokTarnClauses::Add(std::span<const VokTarnAtom> atoms) {
  if (std::ranges::any_of(atoms, [this](const VokTarnAtom& atom) { return fNetwork.IsTrue(atom); })) {
    return;
  }
  const std::size_t begin = fAtoms.size();
  std::ranges::copy_if(atoms, std::back_inserter(fAtoms),
                       [this](const VokTarnAtom& atom) { return !fNetwork.IsTrue(atom.Negate()); });
  const std::size_t count = fAtoms.size() - begin;
  if (count < 2) {
    const VokTarnAtom unit = count == 1 ? fAtoms.back() : VokTarnAtom{};
    fAtoms.resize(begin);
    if (count == 0) {
      fNetwork.Fail();
    } else {
      fNetwork.Keep(unit);
    }
    return;
  }
  fWatches.resize(fNetwork.GetValueCount());
  for (std::uint32_t place = 0; place < 2; ++place) {
    GetList(fAtoms[begin + place]).push_back({static_cast<std::uint32_t>(fClauses.size()), place});
  }
  fClauses.push_back({static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(count)});
}

void VokTarnClauses::Clear() noexcept {
  fAtoms.clear();
  fClauses.clear();
  fWatches.clear();
  fEvents.clear();
}

// A raised lower bound can make [x <= v] false, a lowered upper one [x >= v], any change [x = v], the last value [x <>
// v].
void VokTarnClauses::NoteChange(VokTarnValueId value, const VokTarnSummary& before, const VokTarnSummary& now) {
  if (value >= fWatches.size()) {
    return;
  }
  Watches& watches = fWatches[value];
  const auto add = [&](Relation relation, bool hasHappened) {
    return hasHappened && !watches.fLists[static_cast<unsigned>(relation)].empty() ? BitOf(relation) : 0;
  };
  const int events = add(Relation::Equal, true) | add(Relation::Unequal, now.fSize == 1) |
                     add(Relation::AtMost, now.fLower != before.fLower) |
                     add(Relation::AtLeast, now.fUpper != before.fUpper);
  if (events != 0 && watches.fEvents == 0) {
    fEvents.push_back(value);
  }
  watches.fEvents = static_cast<unsigned char>(watches.fEvents | events);
}

void VokTarnClauses::Propagate() {
  for (std::size_t next = 0; next < fEvents.size() && !fNetwork.IsFailed(); ++next) {
    Watches& watches = fWatches[fEvents[next]];
    while (watches.fEvents != 0 && !fNetwork.IsFailed()) {
      const unsigned relation = FirstBit(watches.fEvents);
      watches.fEvents = static_cast<unsigned char>(watches.fEvents & ~(1U << relation));
      Visit(watches.fLists[relation]);
    }
  }
  DropWork();
}

void VokTarnClauses::DropWork() noexcept {
  for (const VokTarnValueId value : fEvents) {
    fWatches[value].fEvents = 0;
  }
  fEvents.clear();
}

void VokTarnClauses::Visit(std::vector<Watch>& watches) {
  for (std::size_t i = 0; i < watches.size() && !fNetwork.IsFailed();) {
    if (const Watch watch = watches[i]; MoveWatch(watch)) {
      watches[i] = watches.back();
      watches.pop_back();
    } else {
      ++i;
    }
  }
}

// Watches another atom when this one is false. Not when it is watched still: there is nothing else to watch, or the
// clause holds anyway.
bool VokTarnClauses::MoveWatch(const Watch& watch) {
  const Clause& clause = fClauses[watch.fClause];
  VokTarnAtom* const atoms = &fAtoms[clause.fBegin];
  const VokTarnAtom other = atoms[1 - watch.fPlace];
  if (!fNetwork.IsTrue(atoms[watch.fPlace].Negate()) || fNetwork.IsTrue(other)) {
    return false;
  }
  for (std::uint32_t i = 2; i < clause.fCount; ++i) {
    if (!fNetwork.IsTrue(atoms[i].Negate())) {
      std::swap(atoms[watch.fPlace], atoms[i]);
      GetList(atoms[watch.fPlace]).push_back(watch);
      return true;
    }
  }
  fNetwork.Keep(other);
  return false;
}
