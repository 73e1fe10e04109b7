#include <numeric>

#include "constraints/VokTarnDisjunctiveConstraint.h"
#include "constraints/domains.h"
#include "constraints/thetaTree.h"
#include "numbers/SubIntBase.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnDisjunctiveConstraint)

// A task that takes fLength at least: where it begins at the earliest, ends at the latest, and the place of its start
// among the arguments. Mirrored in time: of the times the negative.
struct VokTarnDisjunctiveConstraint::Task {
  std::int64_t fStart;
  std::int64_t fEnd;
  std::int64_t fLength;
  unsigned fPlace;

  std::int64_t GetLatestStart() const { return fEnd - fLength; }
  std::int64_t GetEarliestEnd() const { return fStart + fLength; }
};

// A call works on these; kept for the next one.
struct VokTarnDisjunctiveConstraint::Room {
  std::vector<Task> fTasks;  // by earliest start
  std::vector<std::size_t> fByEnd;
  std::vector<std::size_t> fByLatestStart;
  std::vector<std::size_t> fByEarliestEnd;
  std::vector<std::int64_t> fStarts;  // by task, the new earliest start
  std::vector<std::int64_t> fEnds;    // by task, the new latest end
  ThetaTree fTree;

  template <class Key>
  void Order(std::vector<std::size_t>& order, Key key) const {
    order.resize(fTasks.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return key(fTasks[a]) < key(fTasks[b]); });
  }
  void Insert(std::size_t i) { fTree.Insert(i, fTasks[i].fLength, fTasks[i].GetEarliestEnd()); }
  // How early the tasks in the tree but i can have ended.
  std::int64_t GetEndWithout(std::size_t i, bool isInside) {
    if (!isInside) {
      return fTree.GetEnd();
    }
    fTree.Remove(i);
    const std::int64_t end = fTree.GetEnd();
    Insert(i);
    return end;
  }
  void Prepare();
  bool IsOverloaded();
  void DetectPrecedences();
  void ExcludeLast();
};

void VokTarnDisjunctiveConstraint::Room::Prepare() {
  std::sort(fTasks.begin(), fTasks.end(), [](const Task& a, const Task& b) { return a.fStart < b.fStart; });
  Order(fByEnd, [](const Task& t) { return t.fEnd; });
  Order(fByLatestStart, [](const Task& t) { return t.GetLatestStart(); });
  Order(fByEarliestEnd, [](const Task& t) { return t.GetEarliestEnd(); });
  fStarts.resize(fTasks.size());
  fEnds.resize(fTasks.size());
  for (std::size_t i = 0; i < fTasks.size(); ++i) {
    fStarts[i] = fTasks[i].fStart;
    fEnds[i] = fTasks[i].fEnd;
  }
}

// Whether the tasks up to some latest end cannot all end by then.
bool VokTarnDisjunctiveConstraint::Room::IsOverloaded() {
  fTree.Reset(fTasks.size());
  for (const std::size_t i : fByEnd) {
    Insert(i);
    if (fTree.GetEnd() > fTasks[i].fEnd) {
      return true;
    }
  }
  return false;
}

// Those that i cannot precede, having to start before i can end, precede i: it starts when they can have ended.
void VokTarnDisjunctiveConstraint::Room::DetectPrecedences() {
  fTree.Reset(fTasks.size());
  auto next = fByLatestStart.begin();
  for (const std::size_t i : fByEarliestEnd) {
    while (next != fByLatestStart.end() && fTasks[*next].GetLatestStart() < fTasks[i].GetEarliestEnd()) {
      Insert(*next++);
    }
    const bool isInside = fTasks[i].GetLatestStart() < fTasks[i].GetEarliestEnd();
    fStarts[i] = std::max(fStarts[i], GetEndWithout(i, isInside));
  }
}

// When those that have to start before i has to end cannot have ended when i has to start, i is not the last of them:
// it ends when the last of the others has to start.
void VokTarnDisjunctiveConstraint::Room::ExcludeLast() {
  fTree.Reset(fTasks.size());
  std::size_t inserted = 0;
  for (const std::size_t i : fByEnd) {
    while (inserted != fTasks.size() && fTasks[fByLatestStart[inserted]].GetLatestStart() < fTasks[i].fEnd) {
      Insert(fByLatestStart[inserted++]);
    }
    // Task i takes time, so it starts before it ends and is inside.
    if (inserted < 2 || GetEndWithout(i, true) <= fTasks[i].GetLatestStart()) {
      continue;
    }
    const std::size_t last =
        fByLatestStart[inserted - 1] != i ? fByLatestStart[inserted - 1] : fByLatestStart[inserted - 2];
    fEnds[i] = std::min(fEnds[i], fTasks[last].GetLatestStart());
  }
}

bool VokTarnDisjunctiveConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return environment.Size() % 2 == 0 && AreIntegers(environment, 0, environment.Size()) && GetConstants().size() == 1;
}

bool VokTarnDisjunctiveConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const unsigned n = CountTasks();
  for (unsigned i = 0; i < n; ++i) {
    const std::int64_t start = ExactValue(environment, i);
    const std::int64_t length = ExactValue(environment, n + i);
    if (length < 0) {
      return false;
    }
    for (unsigned j = 0; j < i; ++j) {
      const std::int64_t otherLength = ExactValue(environment, n + j);
      const bool takesNoTime = !IsStrict() && (length == 0 || otherLength == 0);
      if (!takesNoTime && start + length > ExactValue(environment, j) &&
          ExactValue(environment, j) + otherLength > start) {
        return false;
      }
    }
  }
  return true;
}

// Narrows the starts of the tasks that take time from below; mirrored in time from above.
int VokTarnDisjunctiveConstraint::NarrowStarts(const VokTarnObjectEnvironment& environment, bool isMirrored) const {
  thread_local Room room;
  room.fTasks.clear();
  const unsigned n = CountTasks();
  for (unsigned i = 0; i < n; ++i) {
    const std::int64_t length = environment.Lower(n + i);
    const std::int64_t start = environment.Lower(i);
    const std::int64_t end = environment.Upper(i) + length;
    if (length > 0) {
      room.fTasks.push_back(isMirrored ? Task{-end, -start, length, i} : Task{start, end, length, i});
    }
  }
  room.Prepare();
  if (!isMirrored && room.IsOverloaded()) {
    return environment.Fail();
  }
  room.DetectPrecedences();
  room.ExcludeLast();
  int changed = 0;
  for (std::size_t k = 0; k < room.fTasks.size() && !environment.IsFailed(); ++k) {
    const Task& task = room.fTasks[k];
    const std::int64_t first = isMirrored ? -room.fEnds[k] : room.fStarts[k];
    const std::int64_t last = (isMirrored ? -room.fStarts[k] : room.fEnds[k]) - task.fLength;
    changed |= environment.KeepBetween(task.fPlace, first, last);
  }
  return changed;
}

// Two tasks at a time, for what their least durations do not tell: how long a task may be at most, and the place of
// tasks that take no time.
int VokTarnDisjunctiveConstraint::SeparatePairs(const VokTarnObjectEnvironment& environment) const {
  const unsigned n = CountTasks();
  int changed = 0;
  for (unsigned i = 0; i < n; ++i) {
    if (environment.IsSingle(n + i) && environment.Lower(n + i) > 0) {
      continue;
    }
    for (unsigned j = 0; j < n && !environment.IsFailed(); ++j) {
      if (j == i || (!IsStrict() && (environment.MayBe(n + i, 0) || environment.MayBe(n + j, 0)))) {
        continue;
      }
      const auto mayPrecede = [&](unsigned a, unsigned b) {
        return std::int64_t{environment.Lower(a)} + environment.Lower(n + a) <= environment.Upper(b);
      };
      const bool first = mayPrecede(i, j);
      const bool second = mayPrecede(j, i);
      if (!first && !second) {
        return changed | environment.Fail();
      }
      if (first != second) {
        changed |= Precede(environment, first ? i : j, first ? j : i);
      }
    }
  }
  return changed;
}

int VokTarnDisjunctiveConstraint::Precede(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j) const {
  const unsigned n = CountTasks();
  const std::int64_t start = environment.Lower(i);
  const std::int64_t length = environment.Lower(n + i);
  const std::int64_t end = environment.Upper(j);
  int changed = environment.KeepBetween(j, start + length, end);
  if (!environment.IsFailed()) {
    changed |= environment.KeepBetween(i, start, end - length);
  }
  return environment.IsFailed() ? changed : changed | environment.KeepBetween(n + i, length, end - start);
}

int VokTarnDisjunctiveConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  int changed = 0;
  for (unsigned i = CountTasks(); i < environment.Size(); ++i) {
    changed |= environment.KeepBetween(i, 0, SubIntBase::sMax);
    if (environment.IsFailed()) {
      return changed;
    }
  }
  for (const bool isMirrored : {false, true}) {
    changed |= NarrowStarts(environment, isMirrored);
    if (environment.IsFailed()) {
      return changed;
    }
  }
  return changed | SeparatePairs(environment);
}
