#include "framework/VokTarnSearch.h"

#include <algorithm>
#include <new>

namespace {

const VokTarnInteger& AsInteger(const VokTarnAny& value) {
  return static_cast<const VokTarnInteger&>(value);
}

// The failures of the shortest run between restarts.
constexpr std::uint64_t kRunLength = 100;

// Clauses are forgotten when there are more than this, one part in ten more each time, or more atoms.
constexpr std::size_t kMostClauses = 4000;
constexpr std::size_t kMostAtoms = std::size_t{1} << 22;

}  // namespace

VokTarnSearch::VokTarnSearch(VokTarnNetwork& network, const std::vector<VokTarnValueId>& variables,
                             std::optional<Objective> objective, Options options)
    : fNetwork(network),
      fBaseLevel(network.GetLevel()),
      fVariables(variables),
      fIsVariable(network.GetValueCount()),
      fObjective(objective),
      fOptions(options),
      fRandom(options.fSeed),
      fFailuresToRestart(kRunLength * fRestartSequence.Next()),
      fChoiceOrder(network, {{variables, options.fVariable, options.fValue, {}, true, options.fRemembers}},
                   options.fSeed),
      fMostClauses(kMostClauses) {
  for (const VokTarnValueId id : variables) {
    fIsVariable[id] = true;
  }
  SetBrancher(nullptr);
}

VokTarnSearch::~VokTarnSearch() {
  fNetwork.SetChangeLog(nullptr);
  while (fNetwork.GetLevel() > fBaseLevel) {
    fNetwork.PopLevel();
  }
  if (fReasons) {
    EndLearning();
    fNetwork.GetClauses().Clear();
  }
}

// The clauses stay.
void VokTarnSearch::EndLearning() {
  fAnalysis.reset();
  fNetwork.EndHistory();
}

// A replayed filtering costs several of the search's own, most of which have little to do.
bool VokTarnSearch::IsReplayingMuch() const {
  constexpr std::uint64_t kCost = 5;
  return fOptions.fLearning == Learning::Auto && fAnalysis &&
         kCost * fReasons->GetStatistics().fReplays > fNetwork.GetPropagations();
}

// What is narrowed from here on is recorded with its cause.
void VokTarnSearch::BeginLearning() {
  if (VokTarnHistory::CanTell(fNetwork, fObjective ? fObjective->fBound : vokNoValue)) {
    fNetwork.BeginHistory();
    fReasons.emplace(fNetwork);
    fReasons->SetVerified(fOptions.fVerifies);
    fAnalysis.emplace(fNetwork, *fReasons, fNetwork.GetLevel());
  }
}

VokTarnSearch::Statistics VokTarnSearch::GetStatistics() const noexcept {
  Statistics statistics = fStatistics;
  if (fReasons) {
    statistics.fReasons = fReasons->GetStatistics();
  }
  return statistics;
}

void VokTarnSearch::SetBrancher(VokTarnBrancher* brancher) noexcept {
  fBrancher = brancher != nullptr ? brancher : &fChoiceOrder;
  fNetwork.SetChangeLog(fBrancher->WantsChanges() ? &fChanged : nullptr);
}

VokTarnSearch::Status VokTarnSearch::Next() {
  const Status status = Run();
  if (fNetwork.IsMemoryShort()) {
    throw std::bad_alloc();
  }
  return status;
}

VokTarnSearch::Status VokTarnSearch::Run() {
  if (!fStarted) {
    const VokTarnNetwork::Outcome root = fNetwork.Propagate();
    if (root == VokTarnNetwork::Outcome::Interrupted) {
      return Status::Stopped;
    }
    fExhausted = root == VokTarnNetwork::Outcome::Failed;
    if (fExhausted) {
      NoteFailure();
    } else {
      fNetwork.PushLevel();  // what the search does to the values ends with the search
      if (fOptions.fLearning == Learning::On) {
        BeginLearning();
      }
    }
    fStarted = true;
  }
  if (fAtSolution) {
    fAtSolution = false;
    if (!fAnalysis || !fObjective) {  // else the bound fails, and the search learns from that
      SkipAuxiliaryChoices();
      fExhausted = !Backtrack();
      fFloor = GetDepth();
    }
  }
  while (!fExhausted) {
    if (fNetwork.PollInterrupt() || fStatistics.fDecisions >= fOptions.fNodeLimit ||
        fStatistics.fFailures >= fOptions.fFailLimit) {
      return Status::Stopped;
    }
    const VokTarnNetwork::Outcome outcome = TightenBound() ? fNetwork.Propagate() : VokTarnNetwork::Outcome::Failed;
    if (outcome == VokTarnNetwork::Outcome::Interrupted) {
      return Status::Stopped;
    }
    if (outcome == VokTarnNetwork::Outcome::Failed) {
      NoteFailure();
      fExhausted = !(fAnalysis ? LearnFromFailure() : Backtrack());
      if (!fExhausted && IsRestartDue()) {
        BeginAgain();
      }
      continue;
    }
    if (fChoices.empty()) {
      NoteBound();
    }
    if (fAnalysis) {
      Forget();
    }
    if (Choose()) {
      continue;
    }
    const VokTarnValueId open = FindUndecided();
    if (open == vokNoValue) {
      if (fAnalysis && !IsImproved()) {
        continue;  // the objective was undefined when the bound was set
      }
      fAtSolution = true;
      ++fStatistics.fSolutions;
      if (fObjective) {
        fBrancher->OnSolution(fNetwork);
        fBest = AsInteger(fNetwork.GetValue(fObjective->fValue)).GetLowerBound();
      }
      if (fObserver != nullptr) {
        fObserver->OnSolution();
      }
      return Status::Solution;
    }
    if (fNetwork.GetCardinality(open) > 1) {
      Split(open);
      continue;
    }
    fUndecided = open;
    if (fObserver != nullptr) {
      fObserver->OnUndecided();
    }
    fExhausted = !Backtrack();
    fFloor = GetDepth();
  }
  return fUndecided != vokNoValue ? Status::Undecided : Status::Exhausted;
}

// Makes the next choice. False when the brancher has none.
bool VokTarnSearch::Choose() {
  if (fBrancher->WantsChanges()) {
    fBrancher->NoteChanges(fNetwork, fChanged);
    fNetwork.ClearChangeLog();
  }
  VokTarnAtom branch{};
  if (!fBrancher->Choose(fNetwork, GetDepth(), branch)) {
    return false;
  }
  if (TakesAtoms(branch.fValue)) {
    Take(branch, false);
  } else {
    Bisect(branch.fValue);
  }
  return true;
}

void VokTarnSearch::NoteFailure() {
  ++fStatistics.fFailures;
  if (fObserver != nullptr) {
    fObserver->OnFailure();
  }
  const bool isOwn = !fChoices.empty() && !fChoices.back().fIsAuxiliary;
  fBrancher->OnFailure(fNetwork, isOwn ? fChoices.back().fVariable : vokNoValue);
}

// A second run would find what an enumeration has found already. With an objective it cannot: it has to be better.
bool VokTarnSearch::IsRestartDue() const noexcept {
  const bool isRunOver = fOptions.fRestart == Restart::Luby && fStatistics.fFailures >= fFailuresToRestart;
  const bool isToLearn = fOptions.fLearning == Learning::Auto && fStatistics.fFailures == fOptions.fUntaught;
  return (isRunOver || isToLearn || IsReplayingMuch()) && !fChoices.empty() &&
         (fObjective || fStatistics.fSolutions == 0);
}

// Leaves every choice. What was refuted at the root stays refuted.
void VokTarnSearch::BeginAgain() {
  while (!fChoices.empty()) {
    LeaveLevel();
  }
  if (IsReplayingMuch()) {
    EndLearning();
    fOptions.fLearning = Learning::Off;
  } else if (fOptions.fLearning == Learning::Auto && !fAnalysis && fStatistics.fFailures >= fOptions.fUntaught) {
    BeginLearning();
  }
  fFloor = 0;
  ++fStatistics.fRestarts;
  if (fObserver != nullptr) {
    fObserver->OnRestart();
  }
  fFailuresToRestart = fStatistics.fFailures + kRunLength * fRestartSequence.Next();
  fBrancher->OnRestart(fNetwork);
}

void VokTarnSearch::NoteBound() {
  if (fObjective && fNetwork.GetCardinality(fObjective->fValue) > 0) {
    const VokTarnInteger& value = AsInteger(fNetwork.GetValue(fObjective->fValue));
    fBound = fObjective->fSense == Sense::Minimize ? value.GetLowerBound() : value.GetUpperBound();
  }
}

// A value that is not single: a variable before an intermediate value, and of those one that can be split before one
// that cannot.
VokTarnValueId VokTarnSearch::FindUndecided() const {
  VokTarnValueId open = vokNoValue;
  for (const VokTarnValueId id : fVariables) {
    const int size = fNetwork.GetCardinality(id);
    if (size > 1) {
      return id;
    }
    open = open == vokNoValue && size != 1 ? id : open;
  }
  if (open != vokNoValue) {
    return open;
  }
  for (VokTarnValueId id = 0; id < fNetwork.GetValueCount(); ++id) {
    const int size = fNetwork.GetCardinality(id);
    if (size > 1) {
      return id;
    }
    if (size != 1 && fNetwork.GetDegree(id) != 0 && !IsBound(id)) {
      open = id;
    }
  }
  return open;
}

// The bound of an objective is undefined until the first solution; what it bounds needs no check by then.
bool VokTarnSearch::IsBound(VokTarnValueId id) const {
  return fObjective && fObjective->fBound == id;
}

// Whether what an atom says of it, and the opposite, can be made true by the network itself.
bool VokTarnSearch::TakesAtoms(VokTarnValueId id) const {
  return fNetwork.GetType(id)->GetShape() != VokTarnObjectDescriptor::Shape::Other;
}

void VokTarnSearch::Split(VokTarnValueId id) {
  if (TakesAtoms(id)) {
    Take(ChooseValues(fOptions.fValue, fNetwork, id, fRandom), !fIsVariable[id]);
  } else {
    Bisect(id);
  }
}

void VokTarnSearch::Bisect(VokTarnValueId id) {
  const VokTarnObjectDescriptor* type = fNetwork.GetType(id);
  VokTarnNetwork::Spare rest = fNetwork.TakeSpare(type);
  const VokTarnNetwork::Spare part = fNetwork.TakeSpare(type);
  fNetwork.Copy(*rest, fNetwork.GetValue(id));
  constexpr VokTarnAny::ValueSelection kParts[] = {VokTarnAny::Smallest, VokTarnAny::Largest, VokTarnAny::LowerHalf,
                                                   VokTarnAny::UpperHalf};  // by ValueChoice
  const auto order = static_cast<std::size_t>(fOptions.fValue);
  rest->Bisect(*part, order < std::size(kParts) ? kParts[order] : VokTarnAny::LowerHalf);
  // The part is at one end of the domain. What says so of a value that is no number nobody reads.
  VokTarnAtom atom{id, VokTarnAtom::Relation::AtMost, 0};
  if (fNetwork.IsNumber(id)) {
    const bool isUpper = AsInteger(*part).GetLowerBound() > fNetwork.GetLower(id);
    atom = isUpper ? VokTarnAtom{id, VokTarnAtom::Relation::AtLeast, AsInteger(*part).GetLowerBound()}
                   : VokTarnAtom{id, VokTarnAtom::Relation::AtMost, AsInteger(*part).GetUpperBound()};
  }
  Open({id, std::move(rest), atom, !fIsVariable[id]});
  fNetwork.SetCause({VokTarnCause::Kind::Choice, 0, atom});
  fNetwork.Copy(fNetwork.Touch(id), *part);
  fNetwork.NoteChange(id);
  fNetwork.SetCause({});
  if (fObserver != nullptr) {
    fObserver->OnDecision(id, *part);
  }
}

void VokTarnSearch::Open(Choice choice) {
  fNetwork.PushLevel();
  fChoices.push_back(std::move(choice));
  ++fStatistics.fDecisions;
  fStatistics.fDepth = std::max(fStatistics.fDepth, static_cast<unsigned>(fChoices.size()));
}

// Makes an atom true, and says why.
void VokTarnSearch::Assert(const VokTarnAtom& atom, const VokTarnCause& cause) {
  fNetwork.SetCause(cause);
  fNetwork.Keep(atom);
  fNetwork.SetCause({});
}

// Goes on with the part of a value's domain; the rest is for later.
void VokTarnSearch::Take(const VokTarnAtom& branch, bool isAuxiliary) {
  Open({branch.fValue, {nullptr, {&fNetwork, 0}}, branch, isAuxiliary});
  Assert(branch, {VokTarnCause::Kind::Choice, 0, branch});
  if (fObserver != nullptr) {
    fObserver->OnDecision(branch.fValue, fNetwork.GetValue(branch.fValue));
  }
}

void VokTarnSearch::LeaveLevel() {
  fChoices.pop_back();
  fNetwork.PopLevel();
}

// Goes back to the last choice and takes what remains of it. False when there is none: the search is over.
// The rest is taken on the level below, which already holds what the choice was made on.
bool VokTarnSearch::Backtrack() {
  if (fChoices.empty()) {
    return false;
  }
  const Choice choice = std::move(fChoices.back());
  fChoices.pop_back();
  fNetwork.PopLevel();
  if (choice.fRest == nullptr) {
    fNetwork.Keep(choice.fAtom.Negate());
  } else {
    fNetwork.Copy(fNetwork.Touch(choice.fVariable), *choice.fRest);
    fNetwork.NoteChange(choice.fVariable);
  }
  if (fObserver != nullptr) {
    fObserver->OnBacktrack(static_cast<unsigned>(fChoices.size()), choice.fVariable,
                           fNetwork.GetValue(choice.fVariable));
  }
  return true;
}

// Adds what the failure teaches to the network's clauses, and goes back to where it narrows. False when there is no
// further solution.
bool VokTarnSearch::LearnFromFailure() {
  const VokTarnAnalysis::Lesson* taught = fAnalysis->Run();
  if (taught == nullptr) {
    const bool isOpen = Backtrack();
    fFloor = std::min(fFloor, GetDepth());
    return isOpen;
  }
  const VokTarnAnalysis::Lesson& lesson = *taught;
  fBrancher->NoteInvolved(fNetwork, fAnalysis->GetInvolved());
  const unsigned root = fBaseLevel + 1;
  // Choices after the one whose level failed had no part in it.
  while (GetDepth() > lesson.fLevel - root) {
    LeaveLevel();
  }
  if (lesson.fLevel - root <= fFloor || !TakesAtoms(lesson.fClause[0].fValue)) {
    const bool isOpen = Backtrack();
    fFloor = std::min(fFloor, GetDepth());
    return isOpen;
  }
  const unsigned back = std::max(lesson.fBackLevel - root, fFloor);
  while (GetDepth() > back + 1) {
    LeaveLevel();
  }
  const VokTarnValueId left = fChoices.back().fVariable;
  LeaveLevel();
  const VokTarnAtom made = lesson.fClause[0];
  if (lesson.fClause.size() == 1) {
    Assert(made, {VokTarnCause::Kind::Given, 0, made});
  } else {
    const VokULong clause = fNetwork.GetClauses().Add(lesson.fClause, lesson.fSpan);
    ++fStatistics.fLearned;
    fStatistics.fAtoms += lesson.fClause.size();
    fStatistics.fLevels += lesson.fSpan;
    Assert(made, {VokTarnCause::Kind::Clause, clause, made});
  }
  if (fObserver != nullptr) {
    fObserver->OnBacktrack(GetDepth(), left, fNetwork.GetValue(left));
  }
  return true;
}

// Keeps the clauses within bounds.
void VokTarnSearch::Forget() {
  VokTarnClauses& clauses = fNetwork.GetClauses();
  if (clauses.GetCount() > fMostClauses || clauses.CountAtoms() > kMostAtoms) {
    fStatistics.fForgotten += clauses.Reduce();
    fMostClauses += fMostClauses / 10;
  }
}

// Whether the objective, which has one value, is better than the best one known.
bool VokTarnSearch::IsImproved() const {
  if (!fBest || !fObjective) {
    return true;
  }
  const VokLong now = fNetwork.GetLower(fObjective->fValue);
  return fObjective->fSense == Sense::Minimize ? now < *fBest : now > *fBest;
}

// One completion of the variables' values is enough: the choices among intermediate values are dropped.
void VokTarnSearch::SkipAuxiliaryChoices() {
  while (!fChoices.empty() && fChoices.back().fIsAuxiliary) {
    LeaveLevel();
  }
}

// Brings the bound up to the best solution, which backtracking has undone. False when nothing can be better.
bool VokTarnSearch::TightenBound() {
  if (!fBest || fNetwork.IsFailed()) {
    return !fNetwork.IsFailed();
  }
  const VokLong wanted = fObjective->fSense == Sense::Minimize ? *fBest - 1 : *fBest + 1;
  if (fObjective->fBound == vokNoValue || fAnalysis) {
    return TightenObjective(wanted);
  }
  const VokTarnInteger& bound = AsInteger(fNetwork.GetValue(fObjective->fBound));
  if (bound.GetCardinality() != 1 || bound.GetLowerBound() != wanted) {
    static_cast<VokTarnInteger&>(fNetwork.Touch(fObjective->fBound)).SetExactValue(wanted);
    fNetwork.NoteChange(fObjective->fBound);
  }
  return true;
}

bool VokTarnSearch::TightenObjective(VokLong wanted) {
  const VokTarnValueId id = fObjective->fValue;
  const bool isMinimized = fObjective->fSense == Sense::Minimize;
  if (isMinimized ? fNetwork.GetUpper(id) > wanted : fNetwork.GetLower(id) < wanted) {
    const VokTarnAtom atom{id, isMinimized ? VokTarnAtom::Relation::AtMost : VokTarnAtom::Relation::AtLeast, wanted};
    Assert(atom, {VokTarnCause::Kind::Given, 0, atom});
  }
  return !fNetwork.IsFailed();
}

void VokTarnSearch::NoteKnown(VokLong objective) noexcept {
  if (fObjective && (!fBest || (fObjective->fSense == Sense::Minimize ? objective < *fBest : objective > *fBest))) {
    fBest = objective;
  }
}
