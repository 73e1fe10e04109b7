// Why tasks and rectangles were kept apart.
#include <algorithm>

#include "constraints/VokTarnCumulativeConstraint.h"
#include "constraints/VokTarnNonOverlapConstraint.h"
#include "constraints/because.h"

namespace {

using Relation = VokTarnAtom::Relation;

// Where one rectangle begins and how far it reaches, in one direction: places of the arguments.
struct Side {
  unsigned fStart;
  unsigned fSize;
};

// That a cannot end before b begins.
bool ExplainNotBefore(const VokTarnPast& past, Side a, Side b, Because& reason) {
  const std::int64_t end = std::int64_t{past.Lower(a.fStart)} + past.Lower(a.fSize);
  const std::int64_t spare = end - 1 - past.Upper(b.fStart);
  return spare >= 0 && reason.AtLeast(a.fStart, past.Lower(a.fStart)) && reason.AtLeast(a.fSize, past.Lower(a.fSize)) &&
         reason.AtMost(b.fStart, past.Upper(b.fStart) + spare);
}

// That a ends before b begins makes the atom true.
bool ExplainBefore(const VokTarnPast& past, Side a, Side b, const VokTarnAtom& atom, Because& reason) {
  const std::int64_t v = atom.fNumber;
  if (atom.fValue == past.Id(b.fStart) && atom.fRelation == Relation::AtLeast) {
    const std::int64_t size = past.Lower(a.fSize);
    return reason.AtLeast(a.fSize, size) && reason.AtLeast(a.fStart, v - size);
  }
  if (atom.fValue == past.Id(a.fStart) && atom.fRelation == Relation::AtMost) {
    const std::int64_t size = past.Lower(a.fSize);
    return reason.AtLeast(a.fSize, size) && reason.AtMost(b.fStart, v + size);
  }
  if (atom.fValue == past.Id(a.fSize) && atom.fRelation == Relation::AtMost) {
    const std::int64_t start = past.Lower(a.fStart);
    return reason.AtLeast(a.fStart, start) && reason.AtMost(b.fStart, v + start);
  }
  return false;
}

// The start of a is beyond the atom's bound: on the one side a cannot precede b, on the other it cannot follow it.
bool ExplainApart(const VokTarnPast& past, Side a, Side b, const VokTarnAtom& atom, Because& reason) {
  const std::int64_t v = atom.fNumber;
  if (atom.fValue != past.Id(a.fStart)) {
    return false;
  }
  const std::int64_t size = past.Lower(a.fSize);
  if (atom.fRelation == Relation::AtLeast) {
    // From its lower bound on it cannot end before b begins, so it begins after b has ended.
    const std::int64_t start = past.Lower(a.fStart);
    const std::int64_t spare = start + size - 1 - past.Upper(b.fStart);
    return spare >= 0 && reason.AtLeast(a.fStart, start) && reason.AtLeast(a.fSize, size) &&
           reason.AtMost(b.fStart, past.Upper(b.fStart) + spare) && reason.AtLeast(b.fSize, past.Lower(b.fSize)) &&
           reason.AtLeast(b.fStart, v - past.Lower(b.fSize));
  }
  if (atom.fRelation == Relation::AtMost) {
    // Up to its upper bound it cannot begin after b has ended, so it ends before b begins.
    const std::int64_t start = past.Upper(a.fStart);
    return start < std::int64_t{past.Lower(b.fStart)} + past.Lower(b.fSize) && reason.AtMost(a.fStart, start) &&
           reason.AtLeast(b.fSize, past.Lower(b.fSize)) && reason.AtLeast(b.fStart, start + 1 - past.Lower(b.fSize)) &&
           reason.AtLeast(a.fSize, size) && reason.AtMost(b.fStart, v + size);
  }
  return false;
}

}  // namespace

// Of two rectangles that leave but one way to be apart, or two in one direction.
bool VokTarnNonOverlapConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                          std::vector<VokTarnAtom>& because) const {
  const unsigned n = past.Size() / 4;
  const std::size_t first = because.size();
  Because reason(past, because);
  const auto takesRoom = [&](unsigned i) {
    return IsStrict() || (reason.AtLeast(2 * n + i, 1) && reason.AtLeast(3 * n + i, 1));
  };
  const auto explain = [&](unsigned i, unsigned j) {
    const Side sides[2][2] = {{{i, 2 * n + i}, {j, 2 * n + j}}, {{n + i, 3 * n + i}, {n + j, 3 * n + j}}};
    // The ways to be apart that are open, of each direction.
    bool may[2][2];
    for (unsigned direction = 0; direction < 2; ++direction) {
      for (unsigned k = 0; k < 2; ++k) {
        const Side a = sides[direction][k];
        may[direction][k] =
            std::int64_t{past.Lower(a.fStart)} + past.Lower(a.fSize) <= past.Upper(sides[direction][1 - k].fStart);
        if (!may[direction][k] && !ExplainNotBefore(past, a, sides[direction][1 - k], reason)) {
          return false;
        }
      }
    }
    const unsigned ways = static_cast<unsigned>(may[0][0] + may[0][1] + may[1][0] + may[1][1]);
    if (!takesRoom(i) || !takesRoom(j)) {
      return false;
    }
    if (atom == nullptr) {
      return ways == 0;
    }
    for (unsigned direction = 0; direction < 2; ++direction) {
      const auto& [a, b] = sides[direction];
      if (ways == 1 && (may[direction][0] || may[direction][1])) {
        return may[direction][0] ? ExplainBefore(past, a, b, *atom, reason) : ExplainBefore(past, b, a, *atom, reason);
      }
      if (ways == 2 && may[direction][0] && may[direction][1]) {
        return ExplainApart(past, a, b, *atom, reason) || ExplainApart(past, b, a, *atom, reason);
      }
    }
    return false;
  };
  for (unsigned i = 0; i < past.Size() && atom != nullptr; ++i) {
    for (unsigned j = 0; j < n && past.Id(i) == atom->fValue; ++j) {
      if (j != i % n && explain(i % n, j)) {
        return true;
      }
      because.resize(first);
    }
  }
  for (unsigned i = 0; i < n && atom == nullptr; ++i) {
    for (unsigned j = 0; j < i; ++j) {
      if (explain(i, j)) {
        return true;
      }
      because.resize(first);
    }
  }
  return false;
}

// Time table: at one time the tasks that surely run leave no room for the one that would run then. A start goes past
// them in steps, of which the last one is explained, from the start that the step before has left.
//
// Source  A. Schutt, T. Feydy, P. Stuckey, M. Wallace, "Explaining the cumulative propagator", Constraints 16, 2011.
bool VokTarnCumulativeConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                          std::vector<VokTarnAtom>& because) const {
  constexpr unsigned kCapacity = 0;
  constexpr unsigned kFirst = 1;
  const unsigned n = CountTasks();
  Because reason(past, because);
  const auto isRunning = [&](unsigned i, std::int64_t time) {
    return past.Upper(i) <= time && time < std::int64_t{past.Lower(i)} + past.Lower(i + n);
  };
  // That tasks but one demand more than `room` at the time; those with the greatest demand first.
  const auto explainDemand = [&](std::int64_t time, std::int64_t room, unsigned but) {
    std::vector<unsigned> running;
    for (unsigned i = kFirst; i < kFirst + n; ++i) {
      if (i != but && past.Lower(i + 2 * n) > 0 && isRunning(i, time)) {
        running.push_back(i);
      }
    }
    std::ranges::stable_sort(running,
                             [&](unsigned a, unsigned b) { return past.Lower(a + 2 * n) > past.Lower(b + 2 * n); });
    std::int64_t demand = 0;
    for (const unsigned i : running) {
      if (demand > room) {
        break;
      }
      demand += past.Lower(i + 2 * n);
      const std::int64_t duration = past.Lower(i + n);
      if (!(reason.AtLeast(i + 2 * n, past.Lower(i + 2 * n)) && reason.AtLeast(i + n, duration) &&
            reason.AtMost(i, time) && reason.AtLeast(i, time - duration + 1))) {
        return false;
      }
    }
    return demand > room;
  };
  const std::int64_t capacity = past.Upper(kCapacity);
  const std::size_t first = because.size();
  if (atom == nullptr) {
    for (unsigned i = kFirst; i < kFirst + n; ++i) {
      if (reason.AtMost(kCapacity, capacity) && explainDemand(past.Upper(i), capacity, 0)) {
        return true;
      }
      because.resize(first);
    }
    return false;
  }
  for (unsigned i = kFirst; i < kFirst + n; ++i) {
    if (past.Id(i) != atom->fValue) {
      continue;
    }
    const std::int64_t duration = past.Lower(i + n);
    const std::int64_t room = capacity - past.Lower(i + 2 * n);
    const bool isLower = atom->fRelation == Relation::AtLeast;
    if (duration == 0 || (!isLower && atom->fRelation != Relation::AtMost)) {
      return false;
    }
    // The task would run at the time if it began at any of the values between its bound and the atom's.
    const std::int64_t end = isLower ? past.Lower(i) : past.Upper(i);
    const std::int64_t time = isLower ? std::int64_t{atom->fNumber} - 1 : atom->fNumber + duration;
    const bool isAlways = isLower ? time < end + duration : end <= time;
    return isAlways && reason.AtMost(kCapacity, capacity) && reason.AtLeast(i + 2 * n, past.Lower(i + 2 * n)) &&
           reason.AtLeast(i + n, duration) &&
           (isLower ? reason.AtLeast(i, time - duration + 1) : reason.AtMost(i, time)) && explainDemand(time, room, i);
  }
  return false;
}
