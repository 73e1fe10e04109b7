#include "framework/VokTarnSearch.h"

#include <algorithm>
#include <new>

namespace {

const VokTarnInteger& AsInteger(const VokTarnAny& value) {
  return static_cast<const VokTarnInteger&>(value);
}

// The failures of the shortest run between restarts.
constexpr std::uint64_t kRunLength = 100;

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
      fChoiceOrder(network, {{variables, options.fVariable, options.fValue, {}, true, options.fLearns}}, options.fSeed),
      fNoGoods(network) {
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
    }
    fStarted = true;
  }
  if (fAtSolution) {
    fAtSolution = false;
    SkipAuxiliaryChoices();
    fExhausted = !Backtrack();
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
      fExhausted = !Backtrack();
      if (!fExhausted && IsRestartDue()) {
        BeginAgain();
      }
      continue;
    }
    if (fChoices.empty()) {
      NoteBound();
    }
    if (Choose()) {
      continue;
    }
    const VokTarnValueId open = FindUndecided();
    if (open == vokNoValue) {
      fAtSolution = true;
      ++fStatistics.fSolutions;
      if (fObjective) {
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
  return fOptions.fRestart == Restart::Luby && fStatistics.fFailures >= fFailuresToRestart && !fChoices.empty() &&
         (fObjective || fStatistics.fSolutions == 0);
}

// Leaves every choice. What was refuted at the root stays refuted.
void VokTarnSearch::BeginAgain() {
  std::vector<VokTarnAtom> path;
  for (const Choice& choice : fChoices) {
    path.push_back(choice.fAtom);
  }
  while (!fChoices.empty()) {
    LeaveLevel();
  }
  // What going back has restored is seen below; what the no-goods narrow now is for their next turn to see.
  fNetwork.ClearChangeLog();
  if (fOptions.fLearns && fUndecided == vokNoValue) {
    fNoGoods.Learn(path);
  } else {
    fNoGoods.Drop();
  }
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
  Open({id, std::move(rest), {}, !fIsVariable[id]});
  fNetwork.Copy(fNetwork.Touch(id), *part);
  fNetwork.NoteChange(id);
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

// Goes on with the part of a value's domain; the rest is for later.
void VokTarnSearch::Take(const VokTarnAtom& branch, bool isAuxiliary) {
  Open({branch.fValue, {nullptr, {&fNetwork, 0}}, branch, isAuxiliary});
  fNetwork.Keep(branch);
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
    if (fOptions.fLearns) {
      fNoGoods.NoteRefuted(GetDepth(), choice.fAtom);
    }
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
  if (fObjective->fBound == vokNoValue) {
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
  const VokTarnInteger& value = AsInteger(fNetwork.GetValue(id));
  const bool isMinimized = fObjective->fSense == Sense::Minimize;
  if (isMinimized ? value.GetLowerBound() > wanted : value.GetUpperBound() < wanted) {
    fNetwork.Fail();
  } else if (isMinimized ? value.GetUpperBound() > wanted : value.GetLowerBound() < wanted) {
    fNetwork.Keep({id, isMinimized ? VokTarnAtom::Relation::AtMost : VokTarnAtom::Relation::AtLeast, wanted});
  }
  return !fNetwork.IsFailed();
}

void VokTarnSearch::NoteKnown(VokLong objective) noexcept {
  if (fObjective && (!fBest || (fObjective->fSense == Sense::Minimize ? objective < *fBest : objective > *fBest))) {
    fBest = objective;
  }
}
