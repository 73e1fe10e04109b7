#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <vector>

#include "framework/VokTarnNetwork.h"

// Depth-first search for the assignments of some values of a network that satisfy all its constraints.
//
// Cost  A choice is O(log n) in the number of variables for each value that has changed since the last one.
//
// Each step chooses an undecided variable (fewest possible values first, declaration order among equals) and splits its
// domain with Bisect: first the part that holds the smaller values, then the rest. Every assignment of the variables is
// found once, in a deterministic order; intermediate values that propagation leaves open are searched for one
// completion. A variable that is still undefined when nothing else can be split leaves its branch undecided: no
// solution is claimed or denied there.
//
// With an objective, every solution found must be better than the one before: the last one is optimal
// when the search ends Exhausted.
class VOKTARN_EXPORT VokTarnSearch {
 public:
  enum class Status {
    Solution,   // the network holds a solution, every variable single-valued
    Exhausted,  // there is no further solution: a completed search
    Stopped,    // interrupted by the stop condition; Next() goes on
    Undecided   // the search ended, but a branch could not be decided (GetUndecided) or memory ran short
  };
  enum class Sense { Minimize, Maximize };

  struct Objective {
    VokTarnValueId fValue;  // an integer
    VokTarnValueId fBound;  // an integer that `fValue` is constrained by, not above it (below it): undefined at first
    Sense fSense;
  };
  struct Statistics {
    std::uint64_t fDecisions = 0;
    std::uint64_t fFailures = 0;
    std::uint64_t fSolutions = 0;
    unsigned fDepth = 0;  // the deepest level reached
  };

  // The network must be at its root level and outlive the search. The search leaves it at the root level
  // when it is destroyed.
  VokTarnSearch(VokTarnNetwork& network, std::vector<VokTarnValueId> variables,
                std::optional<Objective> objective = std::nullopt);
  VokTarnSearch(const VokTarnSearch&) = delete;
  VokTarnSearch& operator=(const VokTarnSearch&) = delete;
  ~VokTarnSearch();

  Status Next();

  const Statistics& GetStatistics() const noexcept { return fStatistics; }
  // The objective's value in the last solution.
  std::optional<VokLong> GetBest() const noexcept { return fBest; }
  // A variable that kept a branch undecided, or vokNoValue.
  VokTarnValueId GetUndecided() const noexcept { return fUndecided; }

 private:
  struct Choice {
    VokTarnValueId fVariable;
    VokTarnAny* fRest;  // what remains of the variable's domain when the first part has been searched
    bool fAuxiliary;    // an intermediate value: one completion is enough
  };

  // A variable by its place among the variables, with the number of possible values that it had when it was
  // entered; the order is that of choice.
  struct Candidate {
    int fCardinality;
    unsigned fPlace;
    friend auto operator<=>(const Candidate&, const Candidate&) = default;
  };

  bool Backtrack();
  void Split(VokTarnValueId variable, bool auxiliary);
  VokTarnValueId ChooseVariable();
  void Enter(unsigned place);
  VokTarnValueId FindUndecided() const;
  bool IsBound(VokTarnValueId id) const;
  bool TightenBound();
  void LeaveLevel();
  void SkipAuxiliaryChoices();

  VokTarnNetwork& fNetwork;
  std::vector<VokTarnValueId> fVariables;
  std::vector<unsigned> fPlaces;  // per value of the network, its place among the variables
  // Open variables, best first on top. Every open variable has an entry with its present cardinality; entries that a
  // change has made stale are dropped when they come up.
  std::vector<Candidate> fCandidates;
  std::vector<VokTarnValueId> fChanged;
  std::optional<Objective> fObjective;
  std::vector<Choice> fChoices;
  Statistics fStatistics;
  std::optional<VokLong> fBest;
  VokTarnValueId fUndecided = vokNoValue;
  bool fStarted = false;
  bool fAtSolution = false;
  bool fExhausted = false;
};
