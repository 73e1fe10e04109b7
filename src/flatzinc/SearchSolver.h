#pragma once

#include "flatzinc/SearchAnnotations.h"
#include "flatzinc/Solver.h"

namespace fzn {

// Two ways to choose that take turns: from one restart to the next.
class AlternatingBrancher final : public VokTarnBrancher {
 public:
  AlternatingBrancher(VokTarnBrancher& first, VokTarnBrancher& second) noexcept : fBranchers{&first, &second} {}

  bool Choose(const VokTarnNetwork& network, unsigned depth, VokTarnAtom& choice) override {
    return fBranchers[fTurn]->Choose(network, depth, choice);
  }
  bool WantsChanges() const noexcept override { return fBranchers[0]->WantsChanges() || fBranchers[1]->WantsChanges(); }
  void NoteChanges(const VokTarnNetwork& network, std::span<const VokTarnValueId> changed) override {
    fBranchers[0]->NoteChanges(network, changed);
    fBranchers[1]->NoteChanges(network, changed);
  }
  void OnFailure(const VokTarnNetwork& network, VokTarnValueId last) override {
    fBranchers[0]->OnFailure(network, last);
    fBranchers[1]->OnFailure(network, last);
  }
  void NoteInvolved(const VokTarnNetwork& network, std::span<const VokTarnValueId> values) override {
    fBranchers[0]->NoteInvolved(network, values);
    fBranchers[1]->NoteInvolved(network, values);
  }
  void OnSolution(const VokTarnNetwork& network) override {
    fBranchers[0]->OnSolution(network);
    fBranchers[1]->OnSolution(network);
  }
  void OnRestart(const VokTarnNetwork& network) override {
    fBranchers[0]->OnRestart(network);
    fBranchers[1]->OnRestart(network);
    fTurn = ++fRestarts % sTurns == 0 ? 0 : 1;
  }
  void Begin() noexcept {
    fTurn = 0;
    fRestarts = 0;
  }

 private:
  VokTarnBrancher* fBranchers[2];
  static constexpr unsigned sTurns = 3;  // of which the first brancher has one
  std::size_t fTurn = 0;
  unsigned fRestarts = 0;
};

// One search in this process.
class SearchSolver final : public Solver {
 public:
  SearchSolver(Builder& builder, const Options& options, std::vector<std::string>& unknown);

  Status Next() override;
  std::span<const std::int64_t> GetSolution() const override { return fSolution; }
  Statistics GetStatistics() const override;
  std::optional<std::int64_t> GetBound() const override { return fSearch ? fSearch->GetBound() : std::nullopt; }

  // The search begins anew, in what the network is now, at any level; without an earlier solution's bound. The
  // statistics go on.
  void Begin();
  // Leaves the network as it was when the search began.
  void End();
  // As VokTarnSearch does, of the search that has begun.
  void NoteKnown(VokLong objective) noexcept {
    if (fSearch) {
      fSearch->NoteKnown(objective);
    }
  }
  VokTarnSearch& GetSearch() noexcept { return *fSearch; }
  VokTarnChoices& GetChoices() noexcept { return fChoices; }
  static VokTarnChoices::Group MakeActive(Builder& builder, const SearchAnnotations& annotations);
  // The objective of a problem; nothing when any solution will do.
  static std::optional<VokTarnSearch::Objective> FindObjective(Builder& builder);

 private:
  Builder& fBuilder;
  const Options fOptions;
  const SearchAnnotations fAnnotations;
  VokTarnChoices fChoices;  // as the annotations say
  VokTarnChoices fActive;   // by activity, of all variables but the objective
  AlternatingBrancher fAlternating{fChoices, fActive};
  Statistics fBefore;  // of the searches before this one
  std::optional<VokTarnSearch> fSearch;
  std::vector<std::int64_t> fSolution;
};

}  // namespace fzn
