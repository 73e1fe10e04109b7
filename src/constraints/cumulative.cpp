#include <numeric>

#include "constraints/VokTarnCumulativeConstraint.h"
#include "constraints/domains.h"
#include "constraints/thetaTree.h"
#include "numbers/SubIntBase.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnCumulativeConstraint)

namespace {

constexpr unsigned kCapacity = 0;
constexpr unsigned kFirst = 1;

// Energies up to here are added without overflow.
constexpr double kMostEnergy = 1e18;

// A time from which on the sure demand changes.
struct Event {
  std::int64_t fTime;
  std::int64_t fChange;
};

// A time in which tasks that surely run demand the same.
struct Segment {
  std::int64_t fBegin;
  std::int64_t fEnd;
  std::int64_t fDemand;
};

// A task with its least duration and demand.
struct Work {
  std::int64_t fStart;
  std::int64_t fEnd;  // at the latest
  std::int64_t fDuration;
  std::int64_t fDemand;
};

}  // namespace

// A call works on these; kept for the next one.
struct VokTarnCumulativeConstraint::Room {
  std::vector<Event> fEvents;
  std::vector<Segment> fProfile;  // where the sure demand is more than 0, ascending
  std::int64_t fPeak = 0;
  std::vector<Work> fWork;
  std::vector<std::size_t> fByEnd;
  ThetaTree fTree;
};

bool VokTarnCumulativeConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return environment.Size() % 3 == kFirst && AreIntegers(environment, 0, environment.Size()) && GetConstants().empty();
}

bool VokTarnCumulativeConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const unsigned n = CountTasks();
  const auto start = [&](unsigned i) { return ExactValue(environment, kFirst + i); };
  const auto duration = [&](unsigned i) { return ExactValue(environment, kFirst + n + i); };
  const auto demand = [&](unsigned i) { return ExactValue(environment, kFirst + 2 * n + i); };
  for (unsigned i = 0; i < n; ++i) {
    if (duration(i) < 0 || demand(i) < 0 || ExactValue(environment, kCapacity) < 0) {
      return false;
    }
    std::int64_t sum = 0;  // of the demands when i starts
    for (unsigned j = 0; j < n; ++j) {
      sum += start(j) <= start(i) && start(i) < start(j) + duration(j) ? demand(j) : 0;
    }
    if (sum > ExactValue(environment, kCapacity)) {
      return false;
    }
  }
  return true;
}

// The demand of the tasks that surely run at each time: between the latest start and the earliest end of each.
int VokTarnCumulativeConstraint::BuildProfile(const VokTarnObjectEnvironment& environment, Room& room) const {
  const unsigned n = CountTasks();
  room.fEvents.clear();
  room.fProfile.clear();
  room.fPeak = 0;
  for (unsigned i = kFirst; i < kFirst + n; ++i) {
    const std::int64_t demand = environment.Lower(i + 2 * n);
    const std::int64_t begin = environment.Upper(i);
    const std::int64_t end = std::int64_t{environment.Lower(i)} + environment.Lower(i + n);
    if (demand > 0 && begin < end) {
      room.fEvents.push_back({begin, demand});
      room.fEvents.push_back({end, -demand});
    }
  }
  std::sort(room.fEvents.begin(), room.fEvents.end(), [](const Event& a, const Event& b) { return a.fTime < b.fTime; });
  std::int64_t demand = 0;
  for (std::size_t e = 0; e < room.fEvents.size(); ++e) {
    demand += room.fEvents[e].fChange;
    if (demand > 0 && room.fEvents[e].fTime < room.fEvents[e + 1].fTime) {
      room.fProfile.push_back({room.fEvents[e].fTime, room.fEvents[e + 1].fTime, demand});
      room.fPeak = std::max(room.fPeak, demand);
    }
  }
  return environment.KeepBetween(kCapacity, room.fPeak, SubIntBase::sMax);
}

// Whether some tasks up to a latest end need more energy, duration times demand, than there is from their earliest
// start to that end: with the capacity as the pace of time, the earliest end of work that is their energy.
bool VokTarnCumulativeConstraint::IsOverloaded(const VokTarnObjectEnvironment& environment, Room& room) const {
  const unsigned n = CountTasks();
  const std::int64_t capacity = environment.Upper(kCapacity);
  room.fWork.clear();
  double energy = 0;
  for (unsigned i = kFirst; i < kFirst + n; ++i) {
    const std::int64_t duration = environment.Lower(i + n);
    const std::int64_t demand = environment.Lower(i + 2 * n);
    if (duration > 0 && demand > 0) {
      room.fWork.push_back({environment.Lower(i), environment.Upper(i) + duration, duration, demand});
      energy += static_cast<double>(duration) * static_cast<double>(demand);
    }
  }
  if (room.fWork.empty()) {
    return false;
  }
  std::sort(room.fWork.begin(), room.fWork.end(), [](const Work& a, const Work& b) { return a.fStart < b.fStart; });
  room.fByEnd.resize(room.fWork.size());
  std::iota(room.fByEnd.begin(), room.fByEnd.end(), std::size_t{0});
  std::sort(room.fByEnd.begin(), room.fByEnd.end(),
            [&](std::size_t a, std::size_t b) { return room.fWork[a].fEnd < room.fWork[b].fEnd; });
  const std::int64_t origin = room.fWork.front().fStart;
  const std::int64_t span = room.fWork[room.fByEnd.back()].fEnd - origin;
  if (energy + static_cast<double>(capacity) * static_cast<double>(span) > kMostEnergy) {
    return false;
  }
  room.fTree.Reset(room.fWork.size());
  for (const std::size_t i : room.fByEnd) {
    const Work& work = room.fWork[i];
    const std::int64_t needed = work.fDuration * work.fDemand;
    room.fTree.Insert(i, needed, capacity * (work.fStart - origin) + needed);
    if (room.fTree.GetEnd() > capacity * (work.fEnd - origin)) {
      return true;
    }
  }
  return false;
}

// Keeps the task clear of the times in which the others leave too little.
int VokTarnCumulativeConstraint::NarrowTask(const VokTarnObjectEnvironment& environment, const Room& room,
                                            unsigned i) const {
  const unsigned n = CountTasks();
  const unsigned s = kFirst + i;
  const unsigned d = s + n;
  const unsigned r = d + n;
  const std::int64_t duration = environment.Lower(d);
  const std::int64_t demand = environment.Lower(r);
  const std::int64_t capacity = environment.Upper(kCapacity);
  const bool isOpen = !environment.IsSingle(s) || !environment.IsSingle(d);
  const bool mayConflict = isOpen && demand > 0 && room.fPeak + demand > capacity;
  if (!mayConflict && (environment.IsSingle(r) || duration <= 0)) {
    return 0;
  }
  std::int64_t first = environment.Lower(s);
  std::int64_t last = environment.Upper(s);
  // From `last` up to here the task surely runs: what it demands then is part of the profile.
  const std::int64_t sure = first + duration;
  const auto others = [&](const Segment& segment) {
    return segment.fDemand - (demand > 0 && segment.fBegin >= last && segment.fBegin < sure ? demand : 0);
  };
  const auto begin = room.fProfile.begin();
  const auto end = room.fProfile.end();
  const auto firstBehind = [&](std::int64_t time) {
    return std::partition_point(begin, end, [time](const Segment& segment) { return segment.fEnd <= time; });
  };
  int changed = 0;
  if (duration > 0 && !environment.IsSingle(r)) {
    std::int64_t most = capacity;
    for (auto segment = firstBehind(last); segment != end && segment->fBegin < sure; ++segment) {
      most = std::min(most, capacity - others(*segment));
    }
    changed |= environment.KeepBetween(r, 0, most);
  }
  if (!mayConflict || environment.IsFailed()) {
    return changed;
  }
  const auto conflicts = [&](const Segment& segment) { return others(segment) + demand > capacity; };
  if (!environment.IsSingle(d)) {
    auto segment = firstBehind(last);
    while (segment != end && !conflicts(*segment)) {
      ++segment;
    }
    if (segment != end) {
      changed |= environment.KeepBetween(d, 0, std::max(segment->fBegin, last) - first);
    }
  }
  if (duration <= 0 || environment.IsSingle(s) || environment.IsFailed()) {
    return changed;
  }
  std::int64_t earliest = first;
  for (auto segment = firstBehind(first); segment != end && segment->fBegin < earliest + duration; ++segment) {
    earliest = conflicts(*segment) ? segment->fEnd : earliest;
  }
  std::int64_t latest = last;
  for (auto segment = firstBehind(last + duration - 1);; --segment) {
    if (segment != end && segment->fBegin < latest + duration && segment->fEnd > latest && conflicts(*segment)) {
      latest = segment->fBegin - duration;
    }
    if (segment == begin || (segment != end && segment->fEnd <= latest)) {
      break;
    }
  }
  return changed | environment.KeepBetween(s, earliest, latest);
}

int VokTarnCumulativeConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  thread_local Room room;
  const unsigned n = CountTasks();
  int changed = 0;
  for (unsigned i = kFirst + n; i < kFirst + 3 * n; ++i) {
    changed |= environment.KeepBetween(i, 0, SubIntBase::sMax);
    if (environment.IsFailed()) {
      return changed;
    }
  }
  changed |= n != 0 ? BuildProfile(environment, room) : 0;
  if (environment.IsFailed()) {
    return changed;
  }
  if (IsOverloaded(environment, room)) {
    return changed | environment.Fail();
  }
  for (unsigned i = 0; i < n && !environment.IsFailed(); ++i) {
    changed |= NarrowTask(environment, room, i);
  }
  return changed;
}
