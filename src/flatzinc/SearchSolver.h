#pragma once

#include "flatzinc/SearchAnnotations.h"
#include "flatzinc/Solver.h"

namespace fzn {

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
  // The objective of a problem; nothing when any solution will do.
  static std::optional<VokTarnSearch::Objective> FindObjective(Builder& builder);

 private:
  Builder& fBuilder;
  const Options fOptions;
  const SearchAnnotations fAnnotations;
  VokTarnChoices fChoices;
  Statistics fBefore;  // of the searches before this one
  std::optional<VokTarnSearch> fSearch;
  std::vector<std::int64_t> fSolution;
};

}  // namespace fzn
