#include "framework/VokTarnClauses.h"

#include <algorithm>
#include <numeric>

#include "base/bits.h"
#include "framework/VokTarnNetwork.h"

namespace {

using Relation = VokTarnAtom::Relation;

// Activities beyond this are halved many times, all of them.
constexpr std::uint64_t kMostUse = std::uint64_t{1} << 60;
constexpr unsigned kUseShift = 40;
// What being of use adds grows by one part in so many with each use.
constexpr std::uint64_t kUseGrowth = 1000;
// Clauses of this span are kept.
constexpr std::uint32_t kKeptSpan = 2;

constexpr unsigned char BitOf(Relation relation) {
  return static_cast<unsigned char>(1U << static_cast<unsigned>(relation));
}

}  // namespace

VokULong VokTarnClauses::Add(std::span<const VokTarnAtom> atoms, std::uint32_t span) {
  const auto number = static_cast<VokULong>(fClauses.size());
  fClauses.push_back(
      {static_cast<std::uint32_t>(fAtoms.size()), static_cast<std::uint32_t>(atoms.size()), span, fBump});
  fAtoms.insert(fAtoms.end(), atoms.begin(), atoms.end());
  fWatches.resize(fNetwork.GetValueCount());
  WatchBoth(number);
  return number;
}

void VokTarnClauses::WatchBoth(VokULong clause) {
  for (std::uint32_t place = 0; place < 2; ++place) {
    const VokTarnAtom& atom = fAtoms[fClauses[clause].fBegin + place];
    GetList(atom).push_back({clause, place, atom.fNumber});
  }
}

void VokTarnClauses::Clear() noexcept {
  fAtoms.clear();
  fClauses.clear();
  fWatches.clear();
  fEvents.clear();
}

void VokTarnClauses::Bump(VokULong clause) {
  fClauses[clause].fActivity += fBump;
  fBump += fBump / kUseGrowth + 1;
  if (fClauses[clause].fActivity > kMostUse) {
    for (Clause& each : fClauses) {
      each.fActivity >>= kUseShift;
    }
    fBump = (fBump >> kUseShift) + 1;
  }
}

std::size_t VokTarnClauses::Reduce() {
  std::vector<bool> isKept(fClauses.size());
  if (const VokTarnHistory* history = fNetwork.GetHistory()) {
    for (VokTarnHistory::Position i = 0; i < history->GetSize(); ++i) {
      const VokTarnCause& cause = history->Get(i).fCause;
      if (cause.fKind == VokTarnCause::Kind::Clause) {
        isKept[cause.fIndex] = true;
      }
    }
  }
  std::vector<VokULong> order(fClauses.size());
  std::iota(order.begin(), order.end(), 0U);
  std::ranges::stable_sort(order, [this](VokULong a, VokULong b) {
    return fClauses[a].fSpan != fClauses[b].fSpan ? fClauses[a].fSpan < fClauses[b].fSpan
                                                  : fClauses[a].fActivity > fClauses[b].fActivity;
  });
  for (std::size_t i = 0; i < order.size(); ++i) {
    isKept[order[i]] = isKept[order[i]] || i < order.size() / 2 || fClauses[order[i]].fSpan <= kKeptSpan;
  }
  std::vector<VokULong> numbers(fClauses.size());
  std::vector<VokTarnAtom> atoms;
  std::vector<Clause> clauses;
  for (VokULong i = 0; i < fClauses.size(); ++i) {
    if (isKept[i]) {
      numbers[i] = static_cast<VokULong>(clauses.size());
      const std::span<const VokTarnAtom> own = GetAtoms(i);
      clauses.push_back(fClauses[i]);
      clauses.back().fBegin = static_cast<std::uint32_t>(atoms.size());
      atoms.insert(atoms.end(), own.begin(), own.end());
    }
  }
  const std::size_t forgotten = fClauses.size() - clauses.size();
  fAtoms = std::move(atoms);
  fClauses = std::move(clauses);
  for (Watches& watches : fWatches) {
    for (std::vector<Watch>& list : watches.fLists) {
      list.clear();
    }
  }
  for (VokULong i = 0; i < fClauses.size(); ++i) {
    WatchBoth(i);
  }
  fNetwork.RenumberClauses(numbers);
  return forgotten;
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
    const VokTarnValueId value = fEvents[next];
    Watches& watches = fWatches[value];
    while (watches.fEvents != 0 && !fNetwork.IsFailed()) {
      const unsigned relation = FirstBit(watches.fEvents);
      watches.fEvents = static_cast<unsigned char>(watches.fEvents & ~(1U << relation));
      Visit(value, relation);
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

void VokTarnClauses::Visit(VokTarnValueId value, unsigned relation) {
  std::vector<Watch>& watches = fWatches[value].fLists[relation];
  for (std::size_t i = 0; i < watches.size() && !fNetwork.IsFailed();) {
    const Watch watch = watches[i];
    const VokTarnAtom atom{value, static_cast<Relation>(relation), watch.fNumber};
    if (fNetwork.IsTrue(atom.Negate()) && MoveWatch(watch)) {
      watches[i] = watches.back();
      watches.pop_back();
    } else {
      ++i;
    }
  }
}

// Watches another atom in place of this one, which is false. Not when the clause holds anyway, or nothing else is to be
// watched: then the other watched atom is made true.
bool VokTarnClauses::MoveWatch(const Watch& watch) {
  const Clause& clause = fClauses[watch.fClause];
  VokTarnAtom* const atoms = &fAtoms[clause.fBegin];
  const VokTarnAtom other = atoms[1 - watch.fPlace];
  if (fNetwork.IsTrue(other)) {
    return false;
  }
  for (std::uint32_t i = 2; i < clause.fCount; ++i) {
    if (!fNetwork.IsTrue(atoms[i].Negate())) {
      std::swap(atoms[watch.fPlace], atoms[i]);
      GetList(atoms[watch.fPlace]).push_back({watch.fClause, watch.fPlace, atoms[watch.fPlace].fNumber});
      return true;
    }
  }
  fNetwork.SetCause({VokTarnCause::Kind::Clause, watch.fClause, other});
  fNetwork.Keep(other);
  return false;
}
