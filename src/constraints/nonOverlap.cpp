#include "constraints/VokTarnNonOverlapConstraint.h"
#include "constraints/domains.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnNonOverlapConstraint)

namespace {

// Where one rectangle begins and how far it reaches, in one direction: places of the arguments.
struct Side {
  unsigned fStart;
  unsigned fSize;
};

std::int64_t Lower(const VokTarnObjectEnvironment& environment, unsigned i) {
  return environment.Lower(i);
}

std::int64_t Upper(const VokTarnObjectEnvironment& environment, unsigned i) {
  return environment.Upper(i);
}

// a ends before b begins: whether that may be; to see to it.
bool MayPrecede(const VokTarnObjectEnvironment& environment, Side a, Side b) {
  return Lower(environment, a.fStart) + Lower(environment, a.fSize) <= Upper(environment, b.fStart);
}

int Precede(const VokTarnObjectEnvironment& environment, Side a, Side b) {
  int changed = 0;
  const auto keep = [&](unsigned i, std::int64_t lower, std::int64_t upper) {
    if (!environment.IsFailed()) {
      changed |= environment.KeepBetween(i, lower, upper);
    }
  };
  keep(b.fStart, Lower(environment, a.fStart) + Lower(environment, a.fSize), Upper(environment, b.fStart));
  keep(a.fStart, Lower(environment, a.fStart), Upper(environment, b.fStart) - Lower(environment, a.fSize));
  keep(a.fSize, Lower(environment, a.fSize), Upper(environment, b.fStart) - Lower(environment, a.fStart));
  return changed;
}

// One of the two ends before the other begins: a does not begin where it neither ends before b has to begin nor begins
// after b has ended at the earliest.
int LeaveOverlap(const VokTarnObjectEnvironment& environment, Side a, Side b) {
  const std::int64_t lower = Lower(environment, a.fStart);
  const std::int64_t upper = Upper(environment, a.fStart);
  const std::int64_t before = Upper(environment, b.fStart) - Lower(environment, a.fSize);  // up to here a may precede
  const std::int64_t after = Lower(environment, b.fStart) + Lower(environment, b.fSize);   // from here on it may follow
  return environment.KeepBetween(a.fStart, lower > before ? std::max(lower, after) : lower,
                                 upper < after ? std::min(upper, before) : upper);
}

}  // namespace

bool VokTarnNonOverlapConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return environment.Size() % 4 == 0 && AreIntegers(environment, 0, environment.Size()) && GetConstants().size() == 1;
}

bool VokTarnNonOverlapConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const unsigned n = environment.Size() / 4;
  const auto value = [&](unsigned kind, unsigned i) { return ExactValue(environment, kind * n + i); };
  const auto isApart = [&](unsigned direction, unsigned i, unsigned j) {
    return value(direction, i) + value(direction + 2, i) <= value(direction, j);
  };
  const auto takesNoRoom = [&](unsigned i) { return !IsStrict() && (value(2, i) == 0 || value(3, i) == 0); };
  for (unsigned i = 0; i < n; ++i) {
    for (unsigned j = 0; j < i; ++j) {
      if (!isApart(0, i, j) && !isApart(0, j, i) && !isApart(1, i, j) && !isApart(1, j, i) && !takesNoRoom(i) &&
          !takesNoRoom(j)) {
        return false;
      }
    }
  }
  return true;
}

// Two rectangles: when one way to be apart is left it is taken; when two are left in one direction, they leave the
// overlap there.
int VokTarnNonOverlapConstraint::Separate(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j) const {
  const unsigned n = environment.Size() / 4;
  const Side sides[2][2] = {{{i, 2 * n + i}, {j, 2 * n + j}}, {{n + i, 3 * n + i}, {n + j, 3 * n + j}}};
  bool may[2][2];
  unsigned ways = 0;
  for (unsigned direction = 0; direction < 2; ++direction) {
    const auto& [a, b] = sides[direction];
    may[direction][0] = MayPrecede(environment, a, b);
    may[direction][1] = MayPrecede(environment, b, a);
    ways += (may[direction][0] ? 1U : 0U) + (may[direction][1] ? 1U : 0U);
  }
  if (ways > 2) {
    return 0;
  }
  if (!IsStrict()) {
    for (const unsigned size : {2 * n + i, 2 * n + j, 3 * n + i, 3 * n + j}) {
      if (environment.MayBe(size, 0)) {
        return 0;
      }
    }
  }
  if (ways == 0) {
    return environment.Fail();
  }
  for (unsigned direction = 0; direction < 2; ++direction) {
    const auto& [a, b] = sides[direction];
    if (ways == 1 && may[direction][0]) {
      return Precede(environment, a, b);
    }
    if (ways == 1 && may[direction][1]) {
      return Precede(environment, b, a);
    }
    if (ways == 2 && may[direction][0] && may[direction][1]) {
      const int changed = LeaveOverlap(environment, a, b);
      return environment.IsFailed() ? changed : changed | LeaveOverlap(environment, b, a);
    }
  }
  return 0;
}

int VokTarnNonOverlapConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const unsigned n = environment.Size() / 4;
  int changed = 0;
  for (unsigned i = 0; i < n; ++i) {
    for (unsigned j = 0; j < i && !environment.IsFailed(); ++j) {
      changed |= Separate(environment, i, j);
    }
  }
  return changed;
}
