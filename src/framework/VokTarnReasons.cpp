#include "framework/VokTarnReasons.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>

#include "framework/VokTarnPast.h"

namespace {

using Relation = VokTarnAtom::Relation;
using Kind = VokTarnCause::Kind;

// A filtering may have been several: repeating it so often is enough to see the same.
constexpr unsigned kMostRounds = 4;
// More holes than these are not listed one by one.
constexpr std::size_t kMostHoles = 4096;

bool IsSame(const VokTarnSummary& a, const VokTarnSummary& b) {
  return a.fSize == b.fSize && a.fLower == b.fLower && a.fUpper == b.fUpper;
}

}  // namespace

bool VokTarnReasons::ExplainQuickly(Position position, const VokTarnAtom& atom, std::vector<VokTarnAtom>& because) {
  const VokTarnCause cause = History().Get(position).fCause;
  if (cause.fKind == Kind::Constraint) {
    const VokTarnConstraint& constraint = fNetwork.GetConstraint(cause.fIndex);
    return ExplainByRule(constraint, position, &atom, because) ||
           ExplainByOtherRule(constraint, position, atom, because);
  }
  if (cause.fKind != Kind::Clause && cause.fKind != Kind::Given) {
    return false;
  }
  Explain(position, atom, because);
  return true;
}

void VokTarnReasons::Explain(Position position, const VokTarnAtom& atom, std::vector<VokTarnAtom>& because) {
  const VokTarnCause cause = History().Get(position).fCause;
  const std::size_t size = because.size();
  switch (cause.fKind) {
    case Kind::Constraint:
      ExplainByConstraint(cause.fIndex, position, &atom, because);
      return;
    case Kind::Clause:
      for (const VokTarnAtom& other : fNetwork.GetClauses().GetAtoms(cause.fIndex)) {
        if (other.fValue != cause.fAtom.fValue || other.fRelation != cause.fAtom.fRelation ||
            other.fNumber != cause.fAtom.fNumber) {
          because.push_back(other.Negate());
        }
      }
      [[fallthrough]];
    case Kind::Given:
      if (Derive(position, cause.fAtom, atom, because)) {
        return;
      }
      because.resize(size);
      ++fStatistics.fByChoices;
      break;
    case Kind::Choice:
    case Kind::Choices:
      break;
  }
  AppendChoices(position, because);
}

void VokTarnReasons::ExplainFailure(std::vector<VokTarnAtom>& because) {
  const VokTarnCause& cause = fNetwork.GetFailedCause();
  switch (cause.fKind) {
    case Kind::Constraint:
      ExplainByConstraint(cause.fIndex, fNetwork.GetFailedAt(), nullptr, because);
      return;
    case Kind::Clause:
      for (const VokTarnAtom& atom : fNetwork.GetClauses().GetAtoms(cause.fIndex)) {
        because.push_back(atom.Negate());
      }
      return;
    case Kind::Given:
      because.push_back(cause.fAtom.Negate());
      return;
    case Kind::Choice:
    case Kind::Choices:
      break;
  }
  AppendChoices(fNetwork.GetFailedAt(), because);
}

// All choices before the position.
void VokTarnReasons::AppendChoices(Position position, std::vector<VokTarnAtom>& because) {
  for (unsigned level = fNetwork.FindLevel(position); level > 0; --level) {
    const Position begin = fNetwork.GetLevelBegin(level);
    if (begin < position && History().Get(begin).fCause.fKind == Kind::Choice) {
      because.push_back(History().Get(begin).fCause.fAtom);
    }
  }
}

// What was known of the value that with `made`, which the change at the position has made true, implies `atom`.
bool VokTarnReasons::Derive(Position position, const VokTarnAtom& made, const VokTarnAtom& atom,
                            std::vector<VokTarnAtom>& because) {
  if (made.Implies(atom)) {
    return true;
  }
  if (atom.fRelation == Relation::Unequal) {
    return false;
  }
  if (atom.fRelation != Relation::Equal) {
    return DeriveBound(position, made, atom, because);
  }
  const VokTarnSummary& before = History().Get(position).fBefore;
  const VokTarnAtom least{atom.fValue, Relation::AtLeast, atom.fNumber};
  const VokTarnAtom most{atom.fValue, Relation::AtMost, atom.fNumber};
  const auto derive = [&](const VokTarnAtom& bound, bool heldBefore) {
    if (heldBefore) {
      because.push_back(bound);
    }
    return heldBefore || made.Implies(bound) || DeriveBound(position, made, bound, because);
  };
  return derive(least, before.fLower >= atom.fNumber) && derive(most, before.fUpper <= atom.fNumber);
}

// The numbers between what `made` says and a bound were gone before.
bool VokTarnReasons::DeriveBound(Position position, const VokTarnAtom& made, const VokTarnAtom& atom,
                                 std::vector<VokTarnAtom>& because) {
  const VokTarnSummary& before = History().Get(position).fBefore;
  const bool isLower = atom.fRelation == Relation::AtLeast;
  if (made.fRelation == Relation::Unequal) {
    if (made.fNumber != (isLower ? before.fLower : before.fUpper)) {
      return false;
    }
    because.push_back({atom.fValue, atom.fRelation, made.fNumber});
  } else if (made.fRelation != atom.fRelation) {
    return false;
  }
  const std::int64_t next = made.fRelation == Relation::Unequal ? 1 : 0;
  return isLower ? AppendHoles(atom.fValue, made.fNumber + next, std::int64_t{atom.fNumber} - 1, because)
                 : AppendHoles(atom.fValue, std::int64_t{atom.fNumber} + 1, made.fNumber - next, because);
}

// That the value has none of the numbers; as far as it had them at the beginning. False when that is too much to say.
bool VokTarnReasons::AppendHoles(VokTarnValueId id, std::int64_t from, std::int64_t to,
                                 std::vector<VokTarnAtom>& because) const {
  const VokTarnSummary& root = History().GetRoot(id);
  from = std::max<std::int64_t>(from, root.fLower);
  to = std::min<std::int64_t>(to, root.fUpper);
  const std::span<const VokLong> members = History().GetRootMembers(id);
  if (!members.empty()) {
    for (auto v = std::ranges::lower_bound(members, from); v != members.end() && *v <= to; ++v) {
      because.push_back({id, Relation::Unequal, *v});
    }
    return true;
  }
  if (to - from >= static_cast<std::int64_t>(kMostHoles)) {
    return false;
  }
  for (std::int64_t v = from; v <= to; ++v) {
    if (History().WasPossibleAtRoot(id, static_cast<VokLong>(v))) {
      because.push_back({id, Relation::Unequal, static_cast<VokLong>(v)});
    }
  }
  return true;
}

// Leaves `because` as it was where there is no rule.
bool VokTarnReasons::ExplainByRule(const VokTarnConstraint& constraint, Position position, const VokTarnAtom* atom,
                                   std::vector<VokTarnAtom>& because) {
  const std::size_t size = because.size();
  const bool isExplained =
      constraint.Explain(VokTarnPast(History(), constraint.GetArguments(), position), atom, because);
  if (!isExplained) {
    because.resize(size);
  }
  return isExplained;
}

// By a rule for what makes the atom true together with what was known of its value.
bool VokTarnReasons::ExplainByOtherRule(const VokTarnConstraint& constraint, Position position, const VokTarnAtom& atom,
                                        std::vector<VokTarnAtom>& because) {
  const VokTarnAtom atLeast{atom.fValue, Relation::AtLeast, atom.fNumber};
  const VokTarnAtom atMost{atom.fValue, Relation::AtMost, atom.fNumber};
  if (atom.fRelation == Relation::AtLeast || atom.fRelation == Relation::AtMost) {
    return ExplainBoundByRule(constraint, position, atom, because);
  }
  if (atom.fRelation == Relation::Unequal) {
    const VokTarnSummary& after = History().GetSummary(atom.fValue, position + 1);
    const VokTarnAtom bound = atom.fNumber < after.fLower ? atMost.Negate() : atLeast.Negate();
    return after.fSize > 0 && (atom.fNumber < after.fLower || atom.fNumber > after.fUpper) &&
           ExplainByRule(constraint, position, &bound, because);
  }
  const VokTarnSummary& before = History().Get(position).fBefore;
  const std::size_t size = because.size();
  const auto explain = [&](const VokTarnAtom& bound, bool heldBefore) {
    if (heldBefore) {
      because.push_back(bound);
      return true;
    }
    return ExplainByRule(constraint, position, &bound, because) ||
           ExplainBoundByRule(constraint, position, bound, because);
  };
  if (explain(atLeast, before.fLower >= atom.fNumber) && explain(atMost, before.fUpper <= atom.fNumber)) {
    return true;
  }
  because.resize(size);
  return false;
}

// A bound that the constraint has moved up to values that were gone already, or by taking out the last one before them.
bool VokTarnReasons::ExplainBoundByRule(const VokTarnConstraint& constraint, Position position, const VokTarnAtom& atom,
                                        std::vector<VokTarnAtom>& because) {
  const VokTarnSummary& before = History().Get(position).fBefore;
  const bool isLower = atom.fRelation == Relation::AtLeast;
  const std::int64_t step = isLower ? -1 : 1;
  const VokLong end = isLower ? before.fLower : before.fUpper;
  std::int64_t last = atom.fNumber + step;  // the last value that was there still
  for (std::size_t count = 0; last != end && !History().WasPossible(atom.fValue, static_cast<VokLong>(last), position);
       last += step) {
    if (++count > kMostHoles) {
      return false;
    }
  }
  const std::size_t size = because.size();
  const bool isFar = last - step != atom.fNumber;
  if (isFar) {
    if (!(isLower ? AppendHoles(atom.fValue, last + 1, std::int64_t{atom.fNumber} - 1, because)
                  : AppendHoles(atom.fValue, std::int64_t{atom.fNumber} + 1, last - 1, because))) {
      because.resize(size);
      return false;
    }
    const VokTarnAtom bound{atom.fValue, atom.fRelation, static_cast<VokLong>(last - step)};
    if (ExplainByRule(constraint, position, &bound, because)) {
      return true;
    }
  }
  const VokTarnAtom removed{atom.fValue, Relation::Unequal, end};
  if (last == end && ExplainByRule(constraint, position, &removed, because)) {
    because.push_back({atom.fValue, atom.fRelation, end});
    return true;
  }
  because.resize(size);
  return false;
}

void VokTarnReasons::ExplainByConstraint(VokULong index, Position position, const VokTarnAtom* atom,
                                         std::vector<VokTarnAtom>& because) {
  const VokTarnConstraint& constraint = fNetwork.GetConstraint(index);
  const Goal goal{index, atom};
  const std::size_t size = because.size();
  if (ExplainByRule(constraint, position, atom, because) ||
      (atom != nullptr && ExplainByOtherRule(constraint, position, *atom, because))) {
    ++fStatistics.fByRule;
    if (fIsVerified) {
      Verify(goal, std::span(because).subspan(size));
    }
    return;
  }
  because.resize(size);
  fAtoms.clear();
  fReplays = 0;
  Describe(constraint, position, fAtoms);
  if (!Replay(goal, fAtoms)) {
    ++fStatistics.fByChoices;
    AppendChoices(position, because);
    return;
  }
  ++fStatistics.fByReplay;
  LeaveOut(goal, fAtoms, 0, fAtoms.size());
  Weaken(goal, fAtoms);
  because.insert(because.end(), fAtoms.begin(), fAtoms.end());
}

// What distinguishes the arguments at a position from what they were at the beginning, what changed last first.
void VokTarnReasons::Describe(const VokTarnConstraint& constraint, Position position,
                              std::vector<VokTarnAtom>& atoms) const {
  std::set<VokTarnValueId> seen;
  for (const VokTarnValueId id : constraint.GetArguments()) {
    if (id == vokNoValue || !seen.insert(id).second) {
      continue;
    }
    const VokTarnSummary& root = History().GetRoot(id);
    const VokTarnSummary& then = History().GetSummary(id, position);
    if (then.fSize <= 0 || IsSame(root, then)) {
      continue;
    }
    if (then.fLower > root.fLower) {
      atoms.push_back({id, Relation::AtLeast, then.fLower});
    }
    if (then.fUpper < root.fUpper) {
      atoms.push_back({id, Relation::AtMost, then.fUpper});
    }
    DescribeHoles(id, position, then, atoms);
  }
  std::vector<std::pair<Position, VokTarnAtom>> dated;
  dated.reserve(atoms.size());
  for (const VokTarnAtom& atom : atoms) {
    dated.emplace_back(History().FindChange(atom), atom);
  }
  std::ranges::stable_sort(dated, std::ranges::greater(), &std::pair<Position, VokTarnAtom>::first);
  std::ranges::transform(dated, atoms.begin(), &std::pair<Position, VokTarnAtom>::second);
}

void VokTarnReasons::DescribeHoles(VokTarnValueId id, Position position, const VokTarnSummary& summary,
                                   std::vector<VokTarnAtom>& atoms) const {
  if (summary.HasNoHoles() || fNetwork.GetType(id)->GetShape() == VokTarnObjectDescriptor::Shape::Range) {
    return;
  }
  std::vector<VokLong> members;
  History().ListMembers(id, position, members);
  for (std::size_t i = 0; i + 1 < members.size(); ++i) {
    AppendHoles(id, std::int64_t{members[i]} + 1, std::int64_t{members[i + 1]} - 1, atoms);
  }
}

VokTarnNetwork& VokTarnReasons::GetBench() {
  if (fBench == nullptr) {
    fBench = std::make_unique<VokTarnNetwork>();
    for (VokTarnValueId id = 0; id < fNetwork.GetValueCount(); ++id) {
      fBench->AddValue(fNetwork.GetType(id));
    }
  }
  return *fBench;
}

// Whether filtering, from the beginning's domains cut by the atoms, reaches the goal.
bool VokTarnReasons::Replay(const Goal& goal, std::span<const VokTarnAtom> atoms) {
  VokTarnNetwork& bench = GetBench();
  ++fReplays;
  ++fStatistics.fReplays;
  bench.ForgetFailure();
  const std::span<const VokTarnValueId> arguments = fNetwork.GetConstraint(goal.fConstraint).GetArguments();
  for (const VokTarnValueId id : arguments) {
    if (id != vokNoValue) {
      bench.Assume(id, History().GetRoot(id), History().GetRootMembers(id));
    }
  }
  if (goal.fAtom != nullptr && std::ranges::find(arguments, goal.fAtom->fValue) == arguments.end()) {
    return false;
  }
  for (const VokTarnAtom& atom : atoms) {
    bench.Keep(atom);
  }
  const auto isReached = [&] { return bench.IsFailed() || (goal.fAtom != nullptr && bench.IsTrue(*goal.fAtom)); };
  for (unsigned round = 0; round < kMostRounds && !isReached(); ++round) {
    if (bench.FilterFor(fNetwork, goal.fConstraint) == 0) {
      break;
    }
  }
  if (bench.IsMemoryShort()) {
    throw std::bad_alloc();
  }
  return isReached();
}

bool VokTarnReasons::ReplayWithout(const Goal& goal, std::vector<VokTarnAtom>& atoms, std::size_t begin,
                                   std::size_t end) {
  std::vector<VokTarnAtom> rest(atoms.begin(), atoms.begin() + static_cast<std::ptrdiff_t>(begin));
  rest.insert(rest.end(), atoms.begin() + static_cast<std::ptrdiff_t>(end), atoms.end());
  const bool isReached = Replay(goal, rest);
  if (isReached) {
    atoms = std::move(rest);
  }
  return isReached;
}

// Drops what is not needed of a stretch of the atoms: all of it, or else of its second half, then of the first.
void VokTarnReasons::LeaveOut(const Goal& goal, std::vector<VokTarnAtom>& atoms, std::size_t begin, std::size_t end) {
  if (begin == end || IsEnough() || ReplayWithout(goal, atoms, begin, end) || end - begin == 1) {
    return;
  }
  const std::size_t middle = begin + (end - begin) / 2;
  const std::size_t size = atoms.size();
  // What changed last comes first, and goes first: earlier changes let the search go back further.
  LeaveOut(goal, atoms, begin, middle);
  const std::size_t gone = size - atoms.size();
  LeaveOut(goal, atoms, middle - gone, end - gone);
}

// Moves each bound towards the one of the beginning, in steps that double, while the goal is reached.
void VokTarnReasons::Weaken(const Goal& goal, std::vector<VokTarnAtom>& atoms) {
  for (VokTarnAtom& atom : atoms) {
    const VokTarnSummary& root = History().GetRoot(atom.fValue);
    const bool isLower = atom.fRelation == Relation::AtLeast;
    if (atom.fRelation != Relation::AtMost && !isLower) {
      continue;
    }
    const std::int64_t most =
        isLower ? std::int64_t{atom.fNumber} - root.fLower - 1 : std::int64_t{root.fUpper} - atom.fNumber - 1;
    std::int64_t step = 1;
    for (std::int64_t moved = 0; step > 0 && !IsEnough();) {
      if (moved + step > most) {
        step = (most - moved) / 2;
        if (step == 0) {
          break;
        }
      }
      const VokLong before = atom.fNumber;
      atom.fNumber = static_cast<VokLong>(isLower ? before - step : before + step);
      if (Replay(goal, atoms)) {
        moved += step;
        step *= 2;
      } else {
        atom.fNumber = before;
        step = step / 4;
      }
    }
  }
}

void VokTarnReasons::Verify(const Goal& goal, std::span<const VokTarnAtom> atoms) {
  if (Replay(goal, atoms)) {
    return;
  }
  const VokTarnConstraint& constraint = fNetwork.GetConstraint(goal.fConstraint);
  std::string text = std::string(constraint.CastableID()) + ": a reason does not lead to what it explains:";
  const auto tell = [&text](const VokTarnAtom& atom) {
    const char* const kSigns[] = {" = ", " <> ", " <= ", " >= "};  // by Relation
    text += " #" + std::to_string(atom.fValue) + kSigns[static_cast<unsigned>(atom.fRelation)] +
            std::to_string(atom.fNumber) + ",";
  };
  std::ranges::for_each(atoms, tell);
  text += goal.fAtom == nullptr ? " so nothing is left" : " so";
  if (goal.fAtom != nullptr) {
    tell(*goal.fAtom);
  }
  text += " of";
  for (const VokTarnValueId id : constraint.GetArguments()) {
    text += " #" + std::to_string(id);
  }
  text += ", constants";
  for (const VokLong constant : constraint.GetConstants()) {
    text += " " + std::to_string(constant);
  }
  throw std::logic_error(text);
}
