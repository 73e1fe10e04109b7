// Constraints over truth values that are integers. Where an argument has other values than 0 and 1, these go first.
#include <algorithm>

#include "constraints/VokTarnClauseConstraint.h"
#include "constraints/VokTarnDisjunctionConstraint.h"
#include "constraints/VokTarnParityConstraint.h"
#include "constraints/narrowing.h"
#include "constraints/watching.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnClauseConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnDisjunctionConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnParityConstraint)

std::vector<unsigned> ChooseWatched(const VokTarnObjectEnvironment& environment, unsigned (&watched)[2]) {
  if (environment.Size() < 2) {
    return {};
  }
  unsigned count = 0;
  for (const bool isOpen : {true, false}) {
    for (unsigned i = 0; i < environment.Size() && count < 2; ++i) {
      if (environment.IsSingle(i) != isOpen) {
        watched[count++] = i;
      }
    }
  }
  return {watched[0], watched[1]};
}

unsigned ReplaceWatched(const VokTarnObjectEnvironment& environment, unsigned (&watched)[2], unsigned argument,
                        unsigned from) {
  const unsigned size = environment.Size();
  for (unsigned k = 0; k < size; ++k) {
    const unsigned i = from + k < size ? from + k : from + k - size;
    if (i != watched[0] && i != watched[1] && !environment.IsSingle(i)) {
      watched[watched[0] == argument ? 0 : 1] = i;
      return i;
    }
  }
  return VokTarnConstraint::sWake;
}

int KeepTruths(const VokTarnObjectEnvironment& environment) {
  int changed = 0;
  for (unsigned i = 0; i < environment.Size() && !environment.IsFailed(); ++i) {
    changed |= environment.KeepBetween(i, 0, 1);
  }
  return changed;
}

// ---- Clause

std::vector<unsigned> VokTarnClauseConstraint::GetWatched(const VokTarnObjectEnvironment& environment) const {
  return ChooseWatched(environment, fWatched);
}

unsigned VokTarnClauseConstraint::MoveWatch(unsigned argument, const VokTarnObjectEnvironment& environment) const {
  const auto holds = [&](unsigned i) { return environment.IsSingle(i) && environment.Lower(i) == GetAim(i); };
  // While one that holds is watched, the others do not matter, and it will be open again no earlier than they.
  if (holds(argument) || holds(fWatched[fWatched[0] == argument ? 1 : 0])) {
    return argument;
  }
  const unsigned next = ReplaceWatched(environment, fWatched, argument, fNext);
  if (next != sWake) {
    fNext = next;
    return next;
  }
  for (unsigned i = 0; i < environment.Size(); ++i) {
    if (holds(i)) {
      return argument;
    }
  }
  return sWake;
}

bool VokTarnClauseConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return GetConstants().size() == 1 && GetConstants()[0] >= 0 &&
         static_cast<VokULong>(GetConstants()[0]) <= environment.Size() &&
         AreIntegers(environment, 0, environment.Size());
}

bool VokTarnClauseConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  bool holds = false;
  for (unsigned i = 0; i < environment.Size(); ++i) {
    const VokLong v = environment.Lower(i);
    if (v != 0 && v != 1) {
      return false;
    }
    holds = holds || v == GetAim(i);
  }
  return holds;
}

int VokTarnClauseConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  int changed = KeepTruths(environment);
  if (environment.IsFailed()) {
    return changed;
  }
  unsigned last = environment.Size();
  for (unsigned i = 0; i < environment.Size(); ++i) {
    if (environment.IsSingle(i)) {
      if (environment.Lower(i) == GetAim(i)) {
        environment.NoteEntailed();
        return changed;
      }
    } else if (last != environment.Size()) {
      return changed;
    } else {
      last = i;
    }
  }
  return last == environment.Size() ? environment.Fail() : environment.KeepExactly(last, GetAim(last));
}

// ---- Disjunction

void VokTarnDisjunctionConstraint::InitState(const VokTarnObjectEnvironment& environment) const {
  const std::int64_t members = GetResult();
  environment.SetState(State(sLeft), members);
  environment.SetState(State(sPlaces), members * (members - 1) / 2);
  for (unsigned i = 0; i < GetResult(); ++i) {
    if (environment.IsSingle(i)) {
      NoteMember(i, environment);
    }
  }
}

// The member has one value now. Whether that calls for a filtering.
bool VokTarnDisjunctionConstraint::NoteMember(unsigned i, const VokTarnObjectEnvironment& environment) const {
  if (environment.Lower(i) == GetAim(i)) {
    environment.SetState(State(sHolds), 1);
    return true;
  }
  const std::int64_t left = environment.State(State(sLeft)) - 1;
  environment.SetState(State(sLeft), left);
  environment.SetState(State(sPlaces), environment.State(State(sPlaces)) - i);
  return left <= 1;
}

bool VokTarnDisjunctionConstraint::Advise(unsigned argument, const VokTarnSummary&,
                                          const VokTarnObjectEnvironment& environment) const {
  return argument == GetResult() || NoteMember(argument, environment);
}

bool VokTarnDisjunctionConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  const std::span<const VokLong> c = GetConstants();
  return c.size() == 2 && environment.Size() >= 1 && c[0] >= 0 &&
         static_cast<VokULong>(c[0]) <= environment.Size() - 1 && (c[1] == 0 || c[1] == 1) &&
         AreIntegers(environment, 0, environment.Size());
}

bool VokTarnDisjunctionConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  bool holds = false;
  for (unsigned i = 0; i < environment.Size(); ++i) {
    const VokLong v = environment.Lower(i);
    if (v != 0 && v != 1) {
      return false;
    }
    holds = holds || (i != GetResult() && v == GetAim(i));
  }
  return holds == (environment.Lower(GetResult()) == GetAimOfResult());
}

int VokTarnDisjunctionConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  int changed = 0;
  if (environment.State(State(sAreTruths)) == 0) {
    changed = KeepTruths(environment);
    environment.SetState(State(sAreTruths), 1);
  }
  if (environment.IsFailed()) {
    return changed;
  }
  const unsigned result = GetResult();
  const std::int64_t left = environment.State(State(sLeft));
  if (environment.State(State(sHolds)) != 0) {
    environment.NoteEntailed();
    return changed | environment.KeepExactly(result, GetAimOfResult());
  }
  if (left == 0) {
    environment.NoteEntailed();
    return changed | environment.KeepExactly(result, 1 - GetAimOfResult());
  }
  if (!environment.IsSingle(result)) {
    return changed;
  }
  if (environment.Lower(result) != GetAimOfResult()) {
    environment.NoteEntailed();
    for (unsigned i = 0; i < result && !environment.IsFailed(); ++i) {
      changed |= environment.KeepExactly(i, 1 - GetAim(i));
    }
  } else if (left == 1) {
    environment.NoteEntailed();
    const auto last = static_cast<unsigned>(environment.State(State(sPlaces)));
    changed |= environment.KeepExactly(last, GetAim(last));
  }
  return changed;
}

// ---- Parity

std::vector<unsigned> VokTarnParityConstraint::GetWatched(const VokTarnObjectEnvironment& environment) const {
  return ChooseWatched(environment, fWatched);
}

unsigned VokTarnParityConstraint::MoveWatch(unsigned argument, const VokTarnObjectEnvironment& environment) const {
  return ReplaceWatched(environment, fWatched, argument, 0);
}

bool VokTarnParityConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return GetConstants().size() == 1 && (GetConstants()[0] == 0 || GetConstants()[0] == 1) &&
         AreIntegers(environment, 0, environment.Size());
}

bool VokTarnParityConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  VokLong sum = 0;
  for (unsigned i = 0; i < environment.Size(); ++i) {
    const VokLong v = environment.Lower(i);
    if (v != 0 && v != 1) {
      return false;
    }
    sum ^= v;
  }
  return sum == GetConstants()[0];
}

int VokTarnParityConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const int changed = KeepTruths(environment);
  if (environment.IsFailed()) {
    return changed;
  }
  VokLong missing = GetConstants()[0];
  unsigned open = environment.Size();
  for (unsigned i = 0; i < environment.Size(); ++i) {
    if (environment.IsSingle(i)) {
      missing ^= environment.Lower(i);
    } else if (open != environment.Size()) {
      return changed;
    } else {
      open = i;
    }
  }
  return open != environment.Size() ? changed | environment.KeepExactly(open, missing)
         : missing != 0             ? environment.Fail()
                                    : changed;
}
