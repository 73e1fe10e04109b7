#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "flatzinc/Builder.h"
#include "framework/VokTarnSearch.h"

namespace fzn {

// Finds the solutions of a problem that has been built, one after the other. With an objective every solution is better
// than the one before, and the last one is optimal when the search ends Exhausted.
class Solver {
 public:
  using Status = VokTarnSearch::Status;

  struct Options {
    // The search annotations are left aside: variables by failures, values that they had before, restarts.
    bool fIsFree = false;
    // Nothing: as the search annotations say, or as a free search does.
    std::optional<VokTarnSearch::Restart> fRestart;
    std::uint64_t fSeed = 0;
    VokTarnSearch::Learning fLearning = VokTarnSearch::Learning::Off;
    std::uint64_t fUntaught = 1000;  // failures before a search that is not free begins to learn by itself
    bool fVerifies = false;          // each reason, see VokTarnSearch
    // More than one: so many processes search disjoint parts of the search space.
    unsigned fProcesses = 1;
    // Of each process.
    std::uint64_t fNodeLimit = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t fFailLimit = std::numeric_limits<std::uint64_t>::max();
  };
  struct Statistics {
    std::uint64_t fNodes = 0;
    std::uint64_t fFailures = 0;
    std::uint64_t fRestarts = 0;
    std::uint64_t fPropagations = 0;
    std::uint64_t fDepth = 0;
    std::uint64_t fLearned = 0;
    std::uint64_t fForgotten = 0;
    std::uint64_t fAtoms = 0;
    std::uint64_t fLevels = 0;
    VokTarnReasons::Statistics fReasons;
  };

  Solver() = default;
  Solver(const Solver&) = delete;
  Solver& operator=(const Solver&) = delete;
  virtual ~Solver() = default;

  // After Stopped it may be asked again, unless a limit of its own has stopped it.
  virtual Status Next() = 0;
  // The values of the model's variables in the last solution.
  virtual std::span<const std::int64_t> GetSolution() const = 0;
  virtual Statistics GetStatistics() const = 0;
  // What no solution's objective can be better than.
  virtual std::optional<std::int64_t> GetBound() const = 0;
};

// A solver for what the builder has built, which must outlive it. `interrupt` is asked often whether to stop. The names
// of search annotations that are not known are appended to `unknown`.
// Errors  Throws std::system_error when processes cannot be started.
std::unique_ptr<Solver> MakeSolver(Builder& builder, const Solver::Options& options, std::function<bool()> interrupt,
                                   std::vector<std::string>& unknown);

}  // namespace fzn
