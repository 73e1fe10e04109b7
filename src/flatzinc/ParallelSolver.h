#pragma once

#include <sys/types.h>

#include <atomic>
#include <deque>

#include "flatzinc/SearchSolver.h"

namespace fzn {

// Several processes, each with a search of its own, on disjoint parts of the search space.
//
// This process splits the problem into many more parts than there are processes, as choices from the root, and starts
// them: they take the parts one by one as they get free, tell each other the best objective through shared memory, and
// send their solutions through pipes (J.-C. Régin, M. Rezgui, A. Malapert, "Embarrassingly parallel search", 2013).
// Modules are never called from two threads: each process has its own copy of everything.
//
// Answers  Those of one process, in another order; with an objective another one of several optimal solutions may come.
// Errors   A process that ends before its work is done leaves the search Undecided.
class ParallelSolver : public Solver {
 public:
  ParallelSolver(Builder& builder, const Options& options, std::function<bool()> interrupt,
                 std::vector<std::string>& unknown);
  ~ParallelSolver() override;

  Status Next() override;
  std::span<const std::int64_t> GetSolution() const override { return fSolution; }
  Statistics GetStatistics() const override;
  std::optional<std::int64_t> GetBound() const override { return fBound; }

 private:
  using Part = std::vector<VokTarnAtom>;  // choices, each made where the ones before are

  struct Shared;
  struct Worker {
    pid_t fProcess;
    int fPipe;                  // to read from; -1 when it has ended
    std::vector<char> fBuffer;  // of a message that is not complete yet
  };

  void Split();
  void AddHalves(const Part& part, std::vector<Part>& halves);
  void Start();
  [[noreturn]] void Work(unsigned index, int pipe);
  void Report(unsigned index, const Statistics& before);
  void SearchPart(int pipe);
  bool Apply(const Part& part);
  void Receive(Worker& worker);
  bool TakeMessage(Worker& worker);
  bool IsWorse(std::int64_t objective) const;

  Builder& fBuilder;
  const Options fOptions;
  const std::function<bool()> fInterrupt;
  const std::optional<VokTarnSearch::Objective> fObjective;
  SearchSolver fSearch;  // of this process: splits, and what the others begin with
  std::vector<Part> fParts;
  Shared* fShared = nullptr;
  std::vector<Worker> fWorkers;
  std::deque<std::vector<std::int64_t>> fFound;
  std::vector<std::int64_t> fSolution;
  std::optional<std::int64_t> fBest;
  std::optional<std::int64_t> fBound;
  bool fIsStarted = false;
  bool fIsUndecided = false;
};

}  // namespace fzn
