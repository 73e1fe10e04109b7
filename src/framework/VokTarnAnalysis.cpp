#include "framework/VokTarnAnalysis.h"

#include <algorithm>

#include "framework/VokTarnObjectDescriptor.h"

namespace {

using Relation = VokTarnAtom::Relation;
using Shape = VokTarnObjectDescriptor::Shape;

// How many reasons deep it is looked whether an atom can be left out.
constexpr unsigned kDeepest = 8;
// Of more atoms nothing is learned.
constexpr std::size_t kMostItems = 4000;

}  // namespace

const VokTarnAnalysis::Lesson* VokTarnAnalysis::Run() {
  Clear();
  if (fNetwork.GetHistory()->IsFull()) {
    return nullptr;
  }
  fBecause.clear();
  fReasons.ExplainFailure(fBecause);
  // The level is known when all atoms are.
  const std::vector<VokTarnAtom> contradiction = fBecause;
  for (const VokTarnAtom& atom : contradiction) {
    Add(atom);
  }
  fLesson.fLevel = fRoot;
  for (const Item& item : fItems) {
    fLesson.fLevel = std::max(fLesson.fLevel, item.fIsOut ? fRoot : item.fLevel);
  }
  if (fLesson.fLevel > fRoot) {
    fAtLevel = static_cast<std::size_t>(std::ranges::count_if(
        fItems, [this](const Item& item) { return !item.fIsOut && item.fLevel == fLesson.fLevel; }));
    if (!Resolve()) {
      return nullptr;
    }
    Shorten();
  }
  Conclude();
  return &fLesson;
}

void VokTarnAnalysis::Clear() {
  for (const Item& item : fItems) {
    fFirst[item.fAtom.fValue] = sNone;
  }
  fItems.clear();
  fLatest.clear();
  fInvolved.clear();
  fLesson.fClause.clear();
  fLesson.fLevel = fRoot;
}

// One form for what can be said in several ways: bounds where they say it, and of what is no list nothing else.
void VokTarnAnalysis::Add(const VokTarnAtom& atom) {
  const VokTarnSummary& root = fNetwork.GetHistory()->GetRoot(atom.fValue);
  const VokTarnAtom atLeast{atom.fValue, Relation::AtLeast, atom.fNumber};
  const VokTarnAtom atMost{atom.fValue, Relation::AtMost, atom.fNumber};
  const bool isListed = fNetwork.GetType(atom.fValue)->GetShape() == Shape::Listed;
  switch (atom.fRelation) {
    case Relation::AtMost:
    case Relation::AtLeast:
      AddCanonical(atom);
      return;
    case Relation::Equal:
      if (isListed && atom.fNumber != root.fLower && atom.fNumber != root.fUpper) {
        AddCanonical(atom);
        return;
      }
      AddCanonical(atMost);
      AddCanonical(atLeast);
      return;
    case Relation::Unequal:
      break;
  }
  const bool isRange = fNetwork.GetType(atom.fValue)->GetShape() == Shape::Range;
  if (atom.fNumber == root.fLower || (isRange && atom.fNumber < fNetwork.GetLower(atom.fValue))) {
    AddCanonical(atMost.Negate());
  } else if (atom.fNumber == root.fUpper || (isRange && atom.fNumber > fNetwork.GetUpper(atom.fValue))) {
    AddCanonical(atLeast.Negate());
  } else {
    AddCanonical(atom);
  }
}

void VokTarnAnalysis::AddCanonical(const VokTarnAtom& atom) {
  const Position position = fNetwork.GetHistory()->FindChange(atom);
  if (position == VokTarnHistory::sNone) {
    return;
  }
  const unsigned level = fNetwork.FindLevel(position);
  if (level <= fRoot) {
    return;
  }
  fInvolved.push_back(atom.fValue);
  for (std::uint32_t i = fFirst[atom.fValue]; i != sNone; i = fItems[i].fNext) {
    Item& item = fItems[i];
    if (!item.fIsOut && item.fAtom.Implies(atom)) {
      return;
    }
    if (!item.fIsOut && atom.Implies(item.fAtom)) {
      Leave(item);
    }
  }
  const auto place = static_cast<std::uint32_t>(fItems.size());
  fItems.push_back({atom, position, fFirst[atom.fValue], level, false});
  fFirst[atom.fValue] = place;
  fLatest.emplace_back(position, place);
  std::ranges::push_heap(fLatest);
  fAtLevel += level == fLesson.fLevel ? 1U : 0U;
}

void VokTarnAnalysis::Leave(Item& item) {
  item.fIsOut = true;
  fAtLevel -= item.fLevel == fLesson.fLevel ? 1U : 0U;
}

std::uint32_t VokTarnAnalysis::TakeLatest() {
  while (true) {
    const std::uint32_t place = fLatest.front().second;
    std::ranges::pop_heap(fLatest);
    fLatest.pop_back();
    if (!fItems[place].fIsOut) {
      return place;
    }
  }
}

// Until one atom of the level is left. False when that takes too long.
bool VokTarnAnalysis::Resolve() {
  while (true) {
    if (fItems.size() > kMostItems || fNetwork.PollInterrupt()) {
      return false;
    }
    const std::uint32_t place = TakeLatest();
    if (fAtLevel == 1) {
      fLesson.fClause.assign(1, fItems[place].fAtom.Negate());
      fItems[place].fIsOut = true;
      return true;
    }
    const Position position = fItems[place].fPosition;
    const VokTarnCause cause = fNetwork.GetHistory()->Get(position).fCause;
    if (cause.fKind == VokTarnCause::Kind::Choice) {
      // The first change of the level: it has made all atoms true that are left.
      for (Item& item : fItems) {
        item.fIsOut = item.fIsOut || item.fLevel == fLesson.fLevel;
      }
      fLesson.fClause.assign(1, cause.fAtom.Negate());
      return true;
    }
    const VokTarnAtom atom = fItems[place].fAtom;
    Leave(fItems[place]);
    fBecause.clear();
    fReasons.Explain(position, atom, fBecause);
    if (cause.fKind == VokTarnCause::Kind::Clause) {
      fNetwork.GetClauses().Bump(cause.fIndex);
    }
    for (const VokTarnAtom& reason : fBecause) {
      Add(reason);
    }
  }
}

// Leaves out what the rest implies.
void VokTarnAnalysis::Shorten() {
  for (std::uint32_t i = 0; i < fItems.size(); ++i) {
    const Item item = fItems[i];
    if (!item.fIsOut) {
      fItems[i].fIsOut = true;  // it cannot speak for itself
      fItems[i].fIsOut = IsImplied(item.fAtom, VokTarnHistory::sNone, 0);
    }
  }
}

// Whether an atom that became true before a position is so because of other items.
bool VokTarnAnalysis::IsImplied(const VokTarnAtom& atom, Position before, unsigned depth) {
  const Position position = fNetwork.GetHistory()->FindChange(atom);
  if (position == VokTarnHistory::sNone || fNetwork.FindLevel(position) <= fRoot) {
    return true;
  }
  for (std::uint32_t i = fFirst[atom.fValue]; i != sNone; i = fItems[i].fNext) {
    if (!fItems[i].fIsOut && fItems[i].fPosition < before && fItems[i].fAtom.Implies(atom)) {
      return true;
    }
  }
  std::vector<VokTarnAtom> because;
  if (depth == kDeepest || !fReasons.ExplainQuickly(position, atom, because)) {
    return false;
  }
  return std::ranges::all_of(because,
                             [&](const VokTarnAtom& reason) { return IsImplied(reason, position, depth + 1); });
}

// Makes the clause of what is left.
void VokTarnAnalysis::Conclude() {
  fLesson.fBackLevel = fRoot;
  std::vector<unsigned> levels;
  for (const Item& item : fItems) {
    if (item.fIsOut) {
      continue;
    }
    fLesson.fClause.push_back(item.fAtom.Negate());
    levels.push_back(item.fLevel);
    if (item.fLevel > fLesson.fBackLevel) {
      fLesson.fBackLevel = item.fLevel;
      std::swap(fLesson.fClause[1], fLesson.fClause.back());
    }
  }
  std::ranges::sort(levels);
  const auto end = std::unique(levels.begin(), levels.end());
  fLesson.fSpan = static_cast<std::uint32_t>(end - levels.begin()) + 1;
}
