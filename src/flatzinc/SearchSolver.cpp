#include "flatzinc/SearchSolver.h"

#include <algorithm>

#include "flatzinc/ParallelSolver.h"

namespace fzn {

std::unique_ptr<Solver> MakeSolver(Builder& builder, const Solver::Options& options, std::function<bool()> interrupt,
                                   std::vector<std::string>& unknown) {
  builder.GetNetwork().SetInterrupt(interrupt);
  if (options.fProcesses > 1) {
    return std::make_unique<ParallelSolver>(builder, options, std::move(interrupt), unknown);
  }
  return std::make_unique<SearchSolver>(builder, options, unknown);
}

std::optional<VokTarnSearch::Objective> SearchSolver::FindObjective(Builder& builder) {
  const Solve& solve = builder.GetModel().fSolve;
  if (solve.fGoal == Solve::Goal::Satisfy) {
    return std::nullopt;
  }
  return VokTarnSearch::Objective{
      builder.GetValue(solve.fObjective), vokNoValue,
      solve.fGoal == Solve::Goal::Minimize ? VokTarnSearch::Sense::Minimize : VokTarnSearch::Sense::Maximize};
}

// Free choices of a search that learns. The objective follows from the others: to choose it would be to walk its bound
// step by step.
VokTarnChoices::Group SearchSolver::MakeActive(Builder& builder, const SearchAnnotations& annotations) {
  VokTarnChoices::Group group{
      annotations.GetAll(), VokTarnVariableOrder::Activity, VokTarnValueOrder::Min, {}, true, true};
  if (const auto objective = FindObjective(builder)) {
    std::erase(group.fVariables, objective->fValue);
  }
  return group;
}

SearchSolver::SearchSolver(Builder& builder, const Options& options, std::vector<std::string>& unknown)
    : fBuilder(builder),
      fOptions(options),
      fAnnotations(builder.GetModel(), builder.GetNetwork().GetValueCount(),
                   [&builder](std::size_t i) { return builder.GetValue(i); }),
      fChoices(builder.GetNetwork(), fAnnotations.GetGroups(), options.fSeed),
      fActive(builder.GetNetwork(), {MakeActive(builder, fAnnotations)}, options.fSeed) {
  unknown.insert(unknown.end(), fAnnotations.GetUnknown().begin(), fAnnotations.GetUnknown().end());
  Begin();
}

void SearchSolver::End() {
  fBefore = GetStatistics();
  fSearch.reset();
}

void SearchSolver::Begin() {
  if (fSearch) {
    End();
  }
  fChoices.Forget();
  fActive.Forget();
  fAlternating.Begin();
  VokTarnSearch::Options options;
  options.fSeed = fOptions.fSeed;
  options.fUntaught = fOptions.fUntaught;
  // A free search begins to learn at once: its choices are by activity.
  options.fLearning = fOptions.fIsFree && fOptions.fLearning == VokTarnSearch::Learning::Auto
                          ? VokTarnSearch::Learning::On
                          : fOptions.fLearning;
  options.fVerifies = fOptions.fVerifies;
  options.fNodeLimit = fOptions.fNodeLimit - std::min(fOptions.fNodeLimit, fBefore.fNodes);
  options.fFailLimit = fOptions.fFailLimit - std::min(fOptions.fFailLimit, fBefore.fFailures);
  options.fRestart = fOptions.fRestart.value_or(
      fOptions.fIsFree || fAnnotations.Restarts() ? VokTarnSearch::Restart::Luby : VokTarnSearch::Restart::None);
  if (fOptions.fIsFree) {
    options.fVariable = VokTarnSearch::VariableChoice::Weighted;
    options.fValue = VokTarnSearch::ValueChoice::Min;
    options.fRemembers = true;
  }
  fSearch.emplace(fBuilder.GetNetwork(), fAnnotations.GetAll(), FindObjective(fBuilder), options);
  if (!fOptions.fIsFree) {
    fSearch->SetBrancher(&fChoices);
  } else if (fOptions.fLearning != VokTarnSearch::Learning::Off) {
    fSearch->SetBrancher(&fAlternating);
  }
}

Solver::Status SearchSolver::Next() {
  const Status status = fSearch->Next();
  if (status == Status::Solution) {
    fSolution.resize(fBuilder.GetModel().fVariables.size());
    for (std::size_t i = 0; i < fSolution.size(); ++i) {
      fSolution[i] = fBuilder.GetNetwork().GetLower(fBuilder.GetValue(i));
    }
  }
  return status;
}

Solver::Statistics SearchSolver::GetStatistics() const {
  const VokTarnSearch::Statistics now = fSearch ? fSearch->GetStatistics() : VokTarnSearch::Statistics();
  return {fBefore.fNodes + now.fDecisions,
          fBefore.fFailures + now.fFailures,
          fBefore.fRestarts + now.fRestarts,
          fBuilder.GetNetwork().GetPropagations(),
          std::max<std::uint64_t>(fBefore.fDepth, now.fDepth),
          fBefore.fLearned + now.fLearned,
          fBefore.fForgotten + now.fForgotten,
          fBefore.fAtoms + now.fAtoms,
          fBefore.fLevels + now.fLevels,
          {fBefore.fReasons.fByRule + now.fReasons.fByRule, fBefore.fReasons.fByReplay + now.fReasons.fByReplay,
           fBefore.fReasons.fReplays + now.fReasons.fReplays, fBefore.fReasons.fByChoices + now.fReasons.fByChoices}};
}

}  // namespace fzn
