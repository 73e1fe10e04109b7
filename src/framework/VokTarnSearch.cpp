#include "framework/VokTarnSearch.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <new>

namespace {

const VokTarnInteger& AsInteger(const VokTarnAny& value) {
  return static_cast<const VokTarnInteger&>(value);
}

constexpr unsigned kNoPlace = std::numeric_limits<unsigned>::max();

// The failures of the shortest run between restarts.
constexpr std::uint64_t kRunLength = 100;

// More than one value, and they can be counted: the domain can be split.
bool CanSplit(const VokTarnAny& value) {
  return value.GetCardinality() > 1;
}

}  // namespace

VokTarnSearch::VokTarnSearch(VokTarnNetwork& network, const std::vector<VokTarnValueId>& variables,
                             std::optional<Objective> objective, Options options)
    : fNetwork(network),
      fBaseLevel(network.GetLevel()),
      fPlaces(network.GetValueCount(), kNoPlace),
      fObjective(objective),
      fOptions(options),
      fRandom(options.fSeed),
      fFailuresToRestart(kRunLength * fRestartSequence.Next()),
      fNoGoods(network) {
  fVariables.reserve(variables.size());
  for (const VokTarnValueId id : variables) {
    fVariables.push_back({id, 1});
  }
  if (options.fSeed != 0) {
    Shuffle();
  }
  if (options.fLearns) {
    fPhases.resize(variables.size());
  }
  EnterAll();
  if (!variables.empty()) {
    network.SetChangeLog(&fChanged);
  }
}

VokTarnSearch::~VokTarnSearch() {
  fNetwork.SetChangeLog(nullptr);
  while (fNetwork.GetLevel() > fBaseLevel) {
    fNetwork.PopLevel();
  }
}

void VokTarnSearch::SetBrancher(VokTarnBrancher* brancher) noexcept {
  fBrancher = brancher;
  fNetwork.SetChangeLog(brancher == nullptr && !fVariables.empty() ? &fChanged : nullptr);
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
    if (VokTarnAtom branch{}; fBrancher != nullptr && fBrancher->Choose(fNetwork, GetDepth(), branch)) {
      Take(branch);
      continue;
    }
    if (const VokTarnValueId variable = ChooseVariable(); variable != vokNoValue) {
      if (fOptions.fLearns) {
        Take(RecallPhase(variable));
      } else {
        Split(variable);
      }
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
    if (CanSplit(fNetwork.GetValue(open))) {
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

// Less is better.
VokTarnSearch::Rank VokTarnSearch::GetRank(unsigned place, int cardinality) const {
  const auto size = static_cast<std::uint64_t>(cardinality);
  switch (fOptions.fVariable) {
    case VariableChoice::FirstFail:
      return {size, 1};
    case VariableChoice::InputOrder:
      return {0, 1};
    case VariableChoice::MostConstrained: {
      constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
      return {(size << 32U) + kMost - std::min<std::uint64_t>(fNetwork.GetDegree(fVariables[place].fId), kMost), 1};
    }
    case VariableChoice::Weighted:
      break;
  }
  return {size, fVariables[place].fWeight};
}

// Counts a failure, and lets the variables of the constraint that failed weigh more.
void VokTarnSearch::NoteFailure() {
  ++fStatistics.fFailures;
  if (fObserver != nullptr) {
    fObserver->OnFailure();
  }
  if (fBrancher != nullptr) {
    fBrancher->OnFailure(fNetwork);
  }
  if (!fChoices.empty()) {
    fLastConflict = fChoices.back().fVariable;
  }
  const VokTarnConstraint* failed = fNetwork.GetFailedConstraint();
  if (fBrancher != nullptr || fOptions.fVariable != VariableChoice::Weighted || failed == nullptr) {
    return;
  }
  for (const VokTarnValueId id : failed->GetArguments()) {
    if (IsVariable(id)) {
      std::uint32_t& weight = fVariables[fPlaces[id]].fWeight;
      weight += weight < std::numeric_limits<std::uint32_t>::max() ? 1U : 0U;
      fChanged.push_back(id);
    }
  }
}

void VokTarnSearch::Enter(unsigned place) {
  const int cardinality = fNetwork.GetCardinality(fVariables[place].fId);
  if (cardinality > 1) {
    fCandidates.push_back({GetRank(place, cardinality), place});
    std::push_heap(fCandidates.begin(), fCandidates.end(), std::greater<>());
  }
}

void VokTarnSearch::EnterAll() {
  fCandidates.clear();
  for (unsigned place = 0; place < fVariables.size(); ++place) {
    fPlaces[fVariables[place].fId] = place;
    Enter(place);
  }
}

// Puts the variables in a random order, which is that of choice among equals.
void VokTarnSearch::Shuffle() {
  if (fOptions.fVariable == VariableChoice::InputOrder) {
    return;
  }
  for (std::size_t i = fVariables.size(); i > 1; --i) {
    std::swap(fVariables[i - 1], fVariables[fRandom.Next() % i]);
  }
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
  Shuffle();
  EnterAll();
}

void VokTarnSearch::NoteBound() {
  if (fObjective && fNetwork.GetCardinality(fObjective->fValue) > 0) {
    const VokTarnInteger& value = AsInteger(fNetwork.GetValue(fObjective->fValue));
    fBound = fObjective->fSense == Sense::Minimize ? value.GetLowerBound() : value.GetUpperBound();
  }
}

// The values that variables have now are those to try first later.
void VokTarnSearch::NotePhases() {
  for (const VokTarnValueId id : fChanged) {
    if (IsVariable(id) && fNetwork.GetCardinality(id) == 1) {
      fPhases[fPlaces[id]] = AsInteger(fNetwork.GetValue(id)).GetLowerBound();
    }
  }
}

// The part of an open variable's values that it had last; the least at first, and where another value has gone.
VokTarnAtom VokTarnSearch::RecallPhase(VokTarnValueId variable) const {
  const VokTarnInteger& x = AsInteger(fNetwork.GetValue(variable));
  const std::optional<VokLong>& phase = fPhases[fPlaces[variable]];
  if (phase && x.IsPossible(*phase)) {
    if (fNetwork.GetType(variable)->IsListed() || *phase == x.GetLowerBound() || *phase == x.GetUpperBound()) {
      return {variable, VokTarnAtom::Relation::Equal, *phase};
    }
    return {variable, VokTarnAtom::Relation::AtMost, *phase};
  }
  return {variable, VokTarnAtom::Relation::Equal, x.GetLowerBound()};
}

VokTarnValueId VokTarnSearch::ChooseVariable() {
  if (fBrancher != nullptr) {
    return vokNoValue;  // its own order has ended: FindUndecided sees to what is left
  }
  if (fOptions.fLearns) {
    NotePhases();
  }
  for (const VokTarnValueId id : fChanged) {
    if (IsVariable(id)) {
      Enter(fPlaces[id]);
    }
  }
  fNetwork.ClearChangeLog();
  if (fOptions.fLearns && fLastConflict != vokNoValue) {
    const VokTarnValueId last = fLastConflict;
    if (IsVariable(last) && fNetwork.GetCardinality(last) > 1) {
      return last;
    }
    fLastConflict = vokNoValue;
  }
  if (fCandidates.size() > 4 * fVariables.size() + 64) {  // mostly stale by now
    EnterAll();
  }
  while (!fCandidates.empty()) {
    const Candidate best = fCandidates.front();
    const VokTarnValueId variable = fVariables[best.fPlace].fId;
    const int cardinality = fNetwork.GetCardinality(variable);
    if (cardinality > 1) {
      const Rank rank = GetRank(best.fPlace, cardinality);
      if (!(rank < best.fRank) && !(best.fRank < rank)) {
        return variable;
      }
    }
    std::pop_heap(fCandidates.begin(), fCandidates.end(), std::greater<>());
    fCandidates.pop_back();
  }
  return vokNoValue;
}

// A value that is not single: a variable before an intermediate value, and of those one that can be split before one
// that cannot.
VokTarnValueId VokTarnSearch::FindUndecided() const {
  VokTarnValueId open = vokNoValue;
  for (const Variable& variable : fVariables) {
    const VokTarnAny& value = fNetwork.GetValue(variable.fId);
    if (CanSplit(value)) {
      return variable.fId;
    }
    open = open == vokNoValue && value.GetCardinality() != 1 ? variable.fId : open;
  }
  if (open != vokNoValue) {
    return open;
  }
  for (VokTarnValueId id = 0; id < fNetwork.GetValueCount(); ++id) {
    const VokTarnAny& value = fNetwork.GetValue(id);
    if (CanSplit(value)) {
      return id;
    }
    if (value.GetCardinality() != 1 && fNetwork.GetDegree(id) != 0 && !IsBound(id)) {
      open = id;
    }
  }
  return open;
}

bool VokTarnSearch::IsVariable(VokTarnValueId id) const {
  return id < fPlaces.size() && fPlaces[id] != kNoPlace;
}

// The bound of an objective is undefined until the first solution; what it bounds needs no check by then.
bool VokTarnSearch::IsBound(VokTarnValueId id) const {
  return fObjective && fObjective->fBound == id;
}

void VokTarnSearch::Split(VokTarnValueId variable) {
  const VokTarnObjectDescriptor* type = fNetwork.GetType(variable);
  VokTarnNetwork::Spare rest = fNetwork.TakeSpare(type);
  const VokTarnNetwork::Spare part = fNetwork.TakeSpare(type);
  fNetwork.Copy(*rest, fNetwork.GetValue(variable));
  constexpr VokTarnAny::ValueSelection kParts[] = {VokTarnAny::Smallest, VokTarnAny::Largest, VokTarnAny::LowerHalf,
                                                   VokTarnAny::UpperHalf};  // by ValueChoice
  rest->Bisect(*part, kParts[static_cast<unsigned>(fOptions.fValue)]);
  Open({variable, std::move(rest), {}, !IsVariable(variable)});
  fNetwork.Copy(fNetwork.Touch(variable), *part);
  fNetwork.NoteChange(variable);
  if (fObserver != nullptr) {
    fObserver->OnDecision(variable, *part);
  }
}

void VokTarnSearch::Open(Choice choice) {
  fNetwork.PushLevel();
  fChoices.push_back(std::move(choice));
  ++fStatistics.fDecisions;
  fStatistics.fDepth = std::max(fStatistics.fDepth, static_cast<unsigned>(fChoices.size()));
}

// Goes on with the part of a value's domain; the rest is for later.
void VokTarnSearch::Take(const VokTarnAtom& branch) {
  Open({branch.fValue, {nullptr, {&fNetwork, 0}}, branch, false});
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
