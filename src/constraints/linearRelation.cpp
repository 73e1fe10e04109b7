#include <algorithm>
#include <cstdlib>
#include <limits>
#include <numeric>

#include "base/division.h"
#include "constraints/VokTarnLinearRelationConstraint.h"
#include "constraints/narrowing.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnLinearRelationConstraint)

namespace {

__extension__ using Int128 = __int128;

constexpr unsigned kNumber = 2;  // place of the number among the constants; a coefficient takes two each behind it
constexpr unsigned kMostPasses = 8;

// Clamped to 64 bits: beyond every integer of the network all the same.
template <class Wide>
std::int64_t Clamp(Wide v) {
  constexpr Wide most = std::numeric_limits<std::int64_t>::max() / 2;
  return static_cast<std::int64_t>(std::clamp<Wide>(v, -most, most));
}

enum class Decision { Unknown, Holds, Fails };

}  // namespace

// One filtering: the sum of all terms minus the number, by its bounds.
template <class Wide>
class VokTarnLinearRelationConstraint::Pass {
 public:
  Pass(const VokTarnObjectEnvironment& environment, const VokTarnLinearRelationConstraint& constraint)
      : fEnvironment(environment),
        fConstraint(constraint),
        fStatement(constraint.GetStatement()),
        fHasState(fStatement.fHasState) {
    Read();
  }

  Decision Decide(VokTarnRelation relation);
  // Narrows the terms to what the relation, or its negation, leaves.
  int Enforce(VokTarnRelation relation, bool isNegated);

 private:
  unsigned Size() const { return static_cast<unsigned>(fStatement.fCoefficients.size()); }
  Wide GetCoefficient(unsigned i) const { return fStatement.fCoefficients[i]; }
  Wide GetWidth(unsigned i) const {
    const Wide c = GetCoefficient(i);
    return (c < 0 ? -c : c) * (Wide{fEnvironment.Upper(i)} - fEnvironment.Lower(i));
  }
  void Read();
  // Calls narrow(i) for each term that may be open, until the network fails, and finds the widest of them.
  template <class Narrow>
  int NarrowOpenTerms(Narrow narrow);
  int KeepAtMostZero();
  int KeepAtLeastZero();
  int KeepZero();
  int KeepNonZero();
  // Term i is to lie at most `above` over its least value, at most `below` under its greatest.
  int NarrowTerm(unsigned i, Wide above, Wide below);
  bool IsLast(unsigned& open);
  // The value of the only open argument that makes the sum zero; false when there is none.
  bool Solve(unsigned open, Wide& value) const;

  const VokTarnObjectEnvironment& fEnvironment;
  const VokTarnLinearRelationConstraint& fConstraint;
  const Statement& fStatement;
  const bool fHasState;
  Wide fLower;
  Wide fUpper;
  Wide fWidest;  // no term is wider
};

template <class Wide>
void VokTarnLinearRelationConstraint::Pass<Wide>::Read() {
  if (fHasState) {
    fLower = fEnvironment.State(fConstraint.State(sLower));
    fUpper = fEnvironment.State(fConstraint.State(sUpper));
    fWidest = fEnvironment.State(fConstraint.State(sWidest));
    return;
  }
  fLower = fUpper = -Wide{fStatement.fNumber};
  fWidest = 0;
  for (unsigned i = 0; i < Size(); ++i) {
    const Wide c = GetCoefficient(i);
    const Wide first = c * fEnvironment.Lower(i);
    const Wide last = c * fEnvironment.Upper(i);
    const Wide lower = c > 0 ? first : last;
    const Wide upper = c > 0 ? last : first;
    fLower += lower;
    fUpper += upper;
    fWidest = std::max(fWidest, upper - lower);
  }
}

template <class Wide>
template <class Narrow>
int VokTarnLinearRelationConstraint::Pass<Wide>::NarrowOpenTerms(Narrow narrow) {
  int changed = 0;
  if (!fHasState) {
    for (unsigned i = 0; i < Size() && !fEnvironment.IsFailed(); ++i) {
      changed |= narrow(i);
    }
    return changed;
  }
  std::vector<unsigned>& order = fConstraint.fOrder;
  auto count = static_cast<std::size_t>(fEnvironment.State(fConstraint.State(sOpen)));
  const std::size_t before = count;
  Wide widest = 0;
  for (std::size_t k = 0; k < count;) {
    const unsigned i = order[k];
    changed |= narrow(i);
    if (fEnvironment.IsFailed()) {
      return changed;
    }
    if (fEnvironment.IsSingle(i)) {
      std::swap(order[k], order[--count]);
      continue;
    }
    widest = std::max(widest, GetWidth(i));
    ++k;
  }
  if (count != before) {
    fEnvironment.SetState(fConstraint.State(sOpen), static_cast<std::int64_t>(count));
  }
  if (widest != fWidest) {
    fEnvironment.SetState(fConstraint.State(sWidest), static_cast<std::int64_t>(widest));
  }
  return changed;
}

template <class Wide>
bool VokTarnLinearRelationConstraint::Pass<Wide>::IsLast(unsigned& open) {
  if (fHasState) {
    const auto count = static_cast<std::size_t>(fEnvironment.State(fConstraint.State(sOpen)));
    unsigned found = 0;
    for (std::size_t k = 0; k < count && found < 2; ++k) {
      if (!fEnvironment.IsSingle(fConstraint.fOrder[k])) {
        open = fConstraint.fOrder[k];
        std::swap(fConstraint.fOrder[found++], fConstraint.fOrder[k]);  // found at once the next time
      }
    }
    return found == 1;
  }
  unsigned count = 0;
  for (unsigned i = 0; i < Size() && count < 2; ++i) {
    if (!fEnvironment.IsSingle(i)) {
      open = i;
      ++count;
    }
  }
  return count == 1;
}

template <class Wide>
bool VokTarnLinearRelationConstraint::Pass<Wide>::Solve(unsigned open, Wide& value) const {
  const Wide c = GetCoefficient(open);
  // fLower holds the least value of the open term.
  const Wide rest = c * (c > 0 ? fEnvironment.Lower(open) : fEnvironment.Upper(open)) - fLower;
  if (c == 0 || rest % c != 0) {
    return false;
  }
  value = rest / c;
  return value >= fEnvironment.Lower(open) && value <= fEnvironment.Upper(open);
}

template <class Wide>
Decision VokTarnLinearRelationConstraint::Pass<Wide>::Decide(VokTarnRelation relation) {
  if (relation == VokTarnRelation::AtMost) {
    return fUpper <= 0 ? Decision::Holds : fLower > 0 ? Decision::Fails : Decision::Unknown;
  }
  const bool isEqual = relation == VokTarnRelation::Equal;
  const Decision differs = isEqual ? Decision::Fails : Decision::Holds;
  if (fLower > 0 || fUpper < 0) {
    return differs;
  }
  if (fLower == fUpper) {
    return isEqual ? Decision::Holds : Decision::Fails;
  }
  unsigned open = 0;
  Wide value = 0;
  if (IsLast(open) && !(Solve(open, value) && fEnvironment.MayBe(open, static_cast<std::int64_t>(value)))) {
    return differs;
  }
  return Decision::Unknown;
}

template <class Wide>
int VokTarnLinearRelationConstraint::Pass<Wide>::NarrowTerm(unsigned i, Wide above, Wide below) {
  const Wide c = GetCoefficient(i);
  const Wide magnitude = c < 0 ? -c : c;
  const Wide width = magnitude * (Wide{fEnvironment.Upper(i)} - fEnvironment.Lower(i));
  if (width == 0) {
    return 0;
  }
  int changed = 0;
  // The bounds of x from which its term takes its least and its greatest value.
  const Wide least = c > 0 ? fEnvironment.Lower(i) : fEnvironment.Upper(i);
  const Wide greatest = c > 0 ? fEnvironment.Upper(i) : fEnvironment.Lower(i);
  if (width > above) {
    const Wide steps = DivideDown(above, magnitude);
    changed |= c > 0 ? fEnvironment.KeepAtMost(i, Clamp<Wide>(least + steps))
                     : fEnvironment.KeepAtLeast(i, Clamp<Wide>(least - steps));
  }
  if (width > below && !fEnvironment.IsFailed()) {
    const Wide steps = DivideDown(below, magnitude);
    changed |= c > 0 ? fEnvironment.KeepAtLeast(i, Clamp<Wide>(greatest - steps))
                     : fEnvironment.KeepAtMost(i, Clamp<Wide>(greatest + steps));
  }
  return changed;
}

// What is cut is the far end of each term, which the least value of the sum does not know of.
template <class Wide>
int VokTarnLinearRelationConstraint::Pass<Wide>::KeepAtMostZero() {
  if (fUpper <= 0) {
    fEnvironment.NoteEntailed();
    return 0;
  }
  if (fLower > 0) {
    return fEnvironment.Fail();
  }
  if (fWidest <= -fLower) {
    fEnvironment.NoteFixpoint();
    return 0;
  }
  const int changed = NarrowOpenTerms([&](unsigned i) { return NarrowTerm(i, -fLower, fWidest); });
  if (!fStatement.fHasRepeats) {
    fEnvironment.NoteFixpoint();
  }
  return changed;
}

template <class Wide>
int VokTarnLinearRelationConstraint::Pass<Wide>::KeepAtLeastZero() {
  if (fLower >= 0) {
    fEnvironment.NoteEntailed();
    return 0;
  }
  if (fUpper < 0) {
    return fEnvironment.Fail();
  }
  if (fWidest <= fUpper) {
    fEnvironment.NoteFixpoint();
    return 0;
  }
  const int changed = NarrowOpenTerms([&](unsigned i) { return NarrowTerm(i, fWidest, fUpper); });
  if (!fStatement.fHasRepeats) {
    fEnvironment.NoteFixpoint();
  }
  return changed;
}

template <class Wide>
int VokTarnLinearRelationConstraint::Pass<Wide>::KeepZero() {
  int changed = 0;
  for (unsigned pass = 0; pass < kMostPasses; ++pass) {
    if (fLower > 0 || fUpper < 0) {
      return fEnvironment.Fail();
    }
    if (fWidest <= fUpper && fWidest <= -fLower) {
      fEnvironment.NoteFixpoint();
      return changed;
    }
    const int narrowed = NarrowOpenTerms([&](unsigned i) { return NarrowTerm(i, -fLower, fUpper); });
    if (fEnvironment.IsFailed()) {
      return 1;
    }
    if (narrowed == 0) {
      fEnvironment.NoteFixpoint();
      return changed;
    }
    changed = 1;
    Read();
  }
  return changed;
}

template <class Wide>
int VokTarnLinearRelationConstraint::Pass<Wide>::KeepNonZero() {
  if (fLower > 0 || fUpper < 0) {
    fEnvironment.NoteEntailed();
    return 0;
  }
  if (fLower == fUpper) {
    return fEnvironment.Fail();
  }
  unsigned open = 0;
  Wide value = 0;
  return IsLast(open) && Solve(open, value) ? fEnvironment.Remove(open, static_cast<VokLong>(value)) : 0;
}

template <class Wide>
int VokTarnLinearRelationConstraint::Pass<Wide>::Enforce(VokTarnRelation relation, bool isNegated) {
  if (relation != VokTarnRelation::AtMost) {
    return (relation == VokTarnRelation::Equal) != isNegated ? KeepZero() : KeepNonZero();
  }
  if (!isNegated) {
    return KeepAtMostZero();
  }
  // Above the number: from one more on.
  fLower -= 1;
  fUpper -= 1;
  return KeepAtLeastZero();
}

void VokTarnLinearRelationConstraint::ReadStatement() const {
  Statement& s = fStatement;
  const std::span<const VokLong> constants = GetConstants();
  s.fNumber = VokJoinWide(constants[kNumber], constants[kNumber + 1]);
  Int128 most = s.fNumber < 0 ? -Int128{s.fNumber} : Int128{s.fNumber};
  for (std::size_t k = kNumber + 2; k < constants.size(); k += 2) {
    const std::int64_t c = VokJoinWide(constants[k], constants[k + 1]);
    s.fCoefficients.push_back(c);
    most += (c < 0 ? -Int128{c} : Int128{c}) << 32;  // twice what a term can be
  }
  s.fIsNarrow = most < Int128{1} << 62;
  std::vector<VokTarnValueId> sorted(GetArguments().begin(), GetArguments().end());
  std::ranges::sort(sorted);
  s.fHasRepeats = std::ranges::adjacent_find(sorted) != sorted.end();
  // A plain <> watches two terms in place of following all.
  s.fHasState = s.fIsNarrow && GetTerms() >= sLeastFollowed &&
                (GetRelation() != VokTarnRelation::Different || GetMode() != VokTarnMode::Plain);
  s.fIsRead = true;
}

void VokTarnLinearRelationConstraint::InitState(const VokTarnObjectEnvironment& environment) const {
  if (!HasState()) {
    return;
  }
  const Statement& statement = GetStatement();
  fOrder.resize(statement.fCoefficients.size());
  std::iota(fOrder.begin(), fOrder.end(), 0U);
  std::int64_t lower = -statement.fNumber;
  std::int64_t upper = lower;
  std::int64_t widest = 0;
  for (const unsigned i : fOrder) {
    const std::int64_t c = statement.fCoefficients[i];
    const std::int64_t first = c * environment.Lower(i);
    const std::int64_t last = c * environment.Upper(i);
    lower += std::min(first, last);
    upper += std::max(first, last);
    widest = std::max(widest, std::abs(last - first));
  }
  environment.SetState(State(sLower), lower);
  environment.SetState(State(sUpper), upper);
  environment.SetState(State(sWidest), widest);
  environment.SetState(State(sOpen), static_cast<std::int64_t>(fOrder.size()));
}

bool VokTarnLinearRelationConstraint::Advise(unsigned argument, const VokTarnSummary& before,
                                             const VokTarnObjectEnvironment& environment) const {
  if (argument == GetTerms()) {
    return true;
  }
  const std::int64_t c = fStatement.fCoefficients[argument];
  const std::int64_t raised = c * (std::int64_t{environment.Lower(argument)} - before.fLower);
  const std::int64_t lowered = c * (std::int64_t{environment.Upper(argument)} - before.fUpper);
  const std::int64_t lower = environment.State(State(sLower)) + (c > 0 ? raised : lowered);
  const std::int64_t upper = environment.State(State(sUpper)) + (c > 0 ? lowered : raised);
  if ((c > 0 ? raised : lowered) != 0) {
    environment.SetState(State(sLower), lower);
  }
  if ((c > 0 ? lowered : raised) != 0) {
    environment.SetState(State(sUpper), upper);
  }
  if (GetMode() != VokTarnMode::Plain) {
    return true;
  }
  const std::int64_t widest = environment.State(State(sWidest));
  const bool isNarrowed = widest <= -lower && (GetRelation() == VokTarnRelation::AtMost ? upper > 0 : widest <= upper);
  return !isNarrowed || lower == upper;
}

VokTarnEvent VokTarnLinearRelationConstraint::GetEvent(unsigned argument, const VokTarnObjectEnvironment&) const {
  return argument == GetTerms() ? VokTarnEvent::Single : VokTarnEvent::Bounds;
}

// A sum that is to differ from a number narrows nothing while two arguments are open.
std::vector<unsigned> VokTarnLinearRelationConstraint::GetWatched(const VokTarnObjectEnvironment& environment) const {
  std::vector<unsigned> watched;
  if (GetRelation() == VokTarnRelation::Different && GetMode() == VokTarnMode::Plain && environment.Size() > 1) {
    for (unsigned i = 0; i < environment.Size() && watched.size() < 2; ++i) {
      if (!environment.IsSingle(i)) {
        watched.push_back(i);
      }
    }
    for (unsigned i = 0; watched.size() < 2; ++i) {
      if (std::ranges::find(watched, i) == watched.end()) {
        watched.push_back(i);
      }
    }
    std::ranges::copy(watched, fWatched);
  }
  return watched;
}

unsigned VokTarnLinearRelationConstraint::MoveWatch(unsigned argument,
                                                    const VokTarnObjectEnvironment& environment) const {
  for (unsigned i = 0; i < environment.Size(); ++i) {
    if (i != fWatched[0] && i != fWatched[1] && !environment.IsSingle(i)) {
      fWatched[fWatched[0] == argument ? 0 : 1] = i;
      return i;
    }
  }
  return sWake;
}

bool VokTarnLinearRelationConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  const std::span<const VokLong> c = GetConstants();
  if (c.size() < kNumber + 2 || c[0] < 0 || c[0] > 2 || c[1] < 0 || c[1] > 2) {
    return false;
  }
  const std::size_t truths = GetMode() == VokTarnMode::Plain ? 0 : 1;
  return AreIntegers(environment, 0, environment.Size()) && environment.Size() >= truths &&
         c.size() == kNumber + 2 + 2 * (environment.Size() - truths);
}

bool VokTarnLinearRelationConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const Statement& statement = GetStatement();
  Int128 sum = -Int128{statement.fNumber};
  for (unsigned i = 0; i < GetTerms(); ++i) {
    sum += Int128{statement.fCoefficients[i]} * ExactValue(environment, i);
  }
  const bool holds = GetRelation() == VokTarnRelation::Equal    ? sum == 0
                     : GetRelation() == VokTarnRelation::AtMost ? sum <= 0
                                                                : sum != 0;
  if (GetMode() == VokTarnMode::Plain) {
    return holds;
  }
  const std::int64_t truth = ExactValue(environment, GetTerms());
  return (truth == 1 && holds) || (truth == 0 && (!holds || GetMode() == VokTarnMode::HalfReified));
}

int VokTarnLinearRelationConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  return GetStatement().fIsNarrow ? PropagateIn<std::int64_t>(environment) : PropagateIn<Int128>(environment);
}

template <class Wide>
int VokTarnLinearRelationConstraint::PropagateIn(const VokTarnObjectEnvironment& environment) const {
  const VokTarnMode mode = GetMode();
  const VokTarnRelation relation = GetRelation();
  if (mode == VokTarnMode::Plain) {
    return Pass<Wide>(environment, *this).Enforce(relation, false);
  }
  const unsigned truth = GetTerms();
  if (environment.IsSingle(truth)) {
    const VokLong value = environment.Lower(truth);
    if (value == 0 && mode == VokTarnMode::HalfReified) {
      environment.NoteEntailed();
      return 0;
    }
    return value == 0 || value == 1 ? Pass<Wide>(environment, *this).Enforce(relation, value == 0) : environment.Fail();
  }
  const Decision decision = Pass<Wide>(environment, *this).Decide(relation);
  if (decision == Decision::Fails || (decision == Decision::Holds && mode == VokTarnMode::Reified)) {
    environment.NoteEntailed();
    return environment.KeepExactly(truth, decision == Decision::Holds ? 1 : 0);
  }
  return environment.KeepBetween(truth, 0, 1);
}
