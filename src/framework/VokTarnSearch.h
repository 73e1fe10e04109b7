#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "framework/VokTarnAnalysis.h"
#include "framework/VokTarnChoices.h"
#include "framework/VokTarnNetwork.h"
#include "framework/VokTarnReasons.h"
#include "framework/VokTarnRestartSequences.h"

// Sees the steps of a search as they are made, for example to draw its tree.
class VOKTARN_EXPORT VokTarnSearchObserver {
 public:
  virtual ~VokTarnSearchObserver() = default;

  // One more choice: `variable` is to have one of the values of `part`, a part of those that it has.
  virtual void OnDecision(VokTarnValueId variable, const VokTarnAny& part) = 0;
  // Back to the choice that was made after `depth` others: its variable is to have one of the values of `rest`, what
  // remained of it. The choice and those after it are no longer open.
  virtual void OnBacktrack(unsigned depth, VokTarnValueId variable, const VokTarnAny& rest) = 0;
  // All choices are left: the search begins again at its root.
  virtual void OnRestart() = 0;
  // What has become of the branch that the last choice or the rest of one led to.
  virtual void OnFailure() = 0;
  virtual void OnSolution() = 0;
  virtual void OnUndecided() = 0;
};

// Depth-first search for the assignments of some values of a network that satisfy all its constraints.
//
// Cost  A choice as VokTarnChoices tells, or the brancher.
//
// Each step chooses an undecided variable and a part of its domain, as the options or a brancher say: first that part
// is searched, then the rest. A variable that no atom can split is split by its type's Bisect. Every assignment of the
// variables is found once, in a deterministic order; intermediate values that propagation leaves open are searched for
// one completion. A variable that is still undefined when nothing else can be split leaves its branch undecided: no
// solution is claimed or denied there. A brancher only says what comes first: the search splits by itself whatever
// variable it leaves open.
//
// Errors  Throws std::bad_alloc rather than to answer when memory has been short, see VokTarnNetwork.
//
// With an objective, every solution found must be better than the one before: the last one is optimal
// when the search ends Exhausted.
class VOKTARN_EXPORT VokTarnSearch {
 public:
  enum class Status {
    Solution,   // the network holds a solution, every variable single-valued
    Exhausted,  // there is no further solution: a completed search
    Stopped,    // by the network's interrupt (Next() goes on) or by a limit
    Undecided   // the search ended, but a branch could not be decided (GetUndecided)
  };
  enum class Sense { Minimize, Maximize };

  struct Objective {
    VokTarnValueId fValue;  // an integer
    // An integer that `fValue` is constrained by, not above it (below it): undefined at first. vokNoValue: none, then
    // the search narrows `fValue` itself.
    VokTarnValueId fBound;
    Sense fSense;
  };
  using VariableChoice = VokTarnVariableOrder;
  using ValueChoice = VokTarnValueOrder;
  enum class Restart {
    None,
    Luby  // after 100 failures times the terms 1, 1, 2, 1, 1, 2, 4, ... (M. Luby, A. Sinclair, D. Zuckerman, "Optimal
          // speedup of Las Vegas algorithms", 1993)
  };
  // Whether the search learns a clause from each failure (VokTarnAnalysis), and goes back to where the clause first
  // narrows. Without effect on networks of which atoms cannot tell all (VokTarnHistory::CanTell). The objective is
  // narrowed itself then.
  enum class Learning {
    Off,
    On,
    // Once there have been `fUntaught` failures, where the search can begin again for it, and until its replays of
    // constraints are many beside the search's own filterings.
    Auto
  };
  struct Options {
    VariableChoice fVariable = VariableChoice::FirstFail;
    ValueChoice fValue = ValueChoice::Split;
    // A search begins again from the root, the weights kept, while that loses nothing: until the first solution, with
    // an objective also after it. The terms grow without bound, so the search still ends.
    Restart fRestart = Restart::None;
    // With a seed other than 0, or with restarts, equally ranked variables stand in a random order, a new one after
    // each restart. InputOrder knows no equals.
    std::uint64_t fSeed = 0;
    // The search is stopped for good once it has made this many decisions, or has failed this often.
    std::uint64_t fNodeLimit = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t fFailLimit = std::numeric_limits<std::uint64_t>::max();
    // Values and conflicts are remembered, see VokTarnChoices::Group.
    bool fRemembers = false;
    Learning fLearning = Learning::Off;
    std::uint64_t fUntaught = 10000;
    // Each reason is checked by replay; std::logic_error when one is none. For tests.
    bool fVerifies = false;
  };
  struct Statistics {
    std::uint64_t fDecisions = 0;
    std::uint64_t fFailures = 0;
    std::uint64_t fSolutions = 0;
    std::uint64_t fRestarts = 0;
    unsigned fDepth = 0;  // the deepest level reached
    // What the search has learned, clauses of at least two atoms.
    std::uint64_t fLearned = 0;
    std::uint64_t fForgotten = 0;
    std::uint64_t fAtoms = 0;   // of all learned ones
    std::uint64_t fLevels = 0;  // that they span, the sum
    VokTarnReasons::Statistics fReasons;
  };

  // The network must outlive the search, which leaves it at the level at which it began when it is destroyed.
  VokTarnSearch(VokTarnNetwork& network, const std::vector<VokTarnValueId>& variables,
                std::optional<Objective> objective = std::nullopt)
      : VokTarnSearch(network, variables, objective, Options()) {}
  VokTarnSearch(VokTarnNetwork& network, const std::vector<VokTarnValueId>& variables,
                std::optional<Objective> objective, Options options);
  VokTarnSearch(const VokTarnSearch&) = delete;
  VokTarnSearch& operator=(const VokTarnSearch&) = delete;
  ~VokTarnSearch();

  Status Next();

  // From now on `observer` (null: none) sees each step; borrowed.
  void SetObserver(VokTarnSearchObserver* observer) noexcept { fObserver = observer; }

  // `brancher` (null: none) chooses in place of the options; what variables it leaves open are split in their order.
  // Before the search begins. Borrowed.
  void SetBrancher(VokTarnBrancher* brancher) noexcept;
  // A solution with this objective is known from elsewhere: those to come must be better. At any time.
  void NoteKnown(VokLong objective) noexcept;

  Statistics GetStatistics() const noexcept;
  // Whether it learns from its failures.
  bool IsLearning() const noexcept { return fAnalysis.has_value(); }
  // How many choices the search is in.
  unsigned GetDepth() const noexcept { return static_cast<unsigned>(fChoices.size()); }
  // The objective's value in the last solution.
  std::optional<VokLong> GetBest() const noexcept { return fBest; }
  // What no solution's objective is better than, as far as propagation at the root knows. Nothing before the root has
  // been propagated, and without an objective.
  std::optional<VokLong> GetBound() const noexcept { return fBound; }
  // A variable that kept a branch undecided, or vokNoValue.
  VokTarnValueId GetUndecided() const noexcept { return fUndecided; }

 private:
  struct Choice {
    VokTarnValueId fVariable;
    VokTarnNetwork::Spare fRest;  // what remains of the variable's domain when the first part has been searched; null:
    VokTarnAtom fAtom;            // what was assumed first, its negation remains
    bool fIsAuxiliary;            // an intermediate value: one completion is enough
  };

  Status Run();
  bool Backtrack();
  bool LearnFromFailure();
  void BeginLearning();
  void EndLearning();
  bool IsReplayingMuch() const;
  void Assert(const VokTarnAtom& atom, const VokTarnCause& cause);
  void Forget();
  bool IsImproved() const;
  bool TakesAtoms(VokTarnValueId id) const;
  void Split(VokTarnValueId id);
  void Bisect(VokTarnValueId id);
  void Take(const VokTarnAtom& branch, bool isAuxiliary);
  void Open(Choice choice);
  bool Choose();
  bool IsRestartDue() const noexcept;
  void BeginAgain();
  void NoteBound();
  void NoteFailure();
  VokTarnValueId FindUndecided() const;
  bool IsBound(VokTarnValueId id) const;
  bool TightenBound();
  bool TightenObjective(VokLong wanted);
  void LeaveLevel();
  void SkipAuxiliaryChoices();

  VokTarnNetwork& fNetwork;
  const unsigned fBaseLevel;
  const std::vector<VokTarnValueId> fVariables;
  std::vector<bool> fIsVariable;  // by value
  std::vector<VokTarnValueId> fChanged;
  std::optional<Objective> fObjective;
  Options fOptions;
  VokTarnRandom fRandom;
  VokTarnLubySequence fRestartSequence;
  std::uint64_t fFailuresToRestart = 0;  // the count of failures that ends this run
  std::vector<Choice> fChoices;
  Statistics fStatistics;
  VokTarnSearchObserver* fObserver = nullptr;
  VokTarnChoices fChoiceOrder;
  VokTarnBrancher* fBrancher = &fChoiceOrder;
  std::optional<VokTarnReasons> fReasons;
  std::optional<VokTarnAnalysis> fAnalysis;
  // Choices below this depth are not left but to take what remains of the last of them: there are solutions below it
  // already. (M. Gebser, B. Kaufmann, A. Neumann, T. Schaub, "Conflict-driven answer set enumeration", 2007.)
  unsigned fFloor = 0;
  std::size_t fMostClauses;
  std::optional<VokLong> fBest;
  std::optional<VokLong> fBound;
  VokTarnValueId fUndecided = vokNoValue;
  bool fStarted = false;
  bool fAtSolution = false;
  bool fExhausted = false;
};
