#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "framework/VokTarnBrancher.h"
#include "framework/VokTarnOrders.h"

// Choices by orders of variables and of values: group after group of variables, each with orders of its own.
//
// Both languages compose their choices of such groups: the options of a search are one group, annotations a sequence.
// A variable may be in several groups.
//
// Weights    The weight of a value is one, its constraints, and the failures that these have seen; all groups share it.
// Cost       In input order O(variables that became single since the choice above) for a choice. Else a group is
//            gone through; one that compares more than sMostScanned variables keeps a heap instead, O(log n) for each
//            of its variables that has changed since the last choice.
class VOKTARN_EXPORT VokTarnChoices final : public VokTarnBrancher {
 public:
  static constexpr std::size_t sMostScanned = 1000;

  struct Group {
    std::vector<VokTarnValueId> fVariables;
    VokTarnVariableOrder fVariable = VokTarnVariableOrder::FirstFail;
    VokTarnValueOrder fValue = VokTarnValueOrder::Split;
    // A value for each variable: it is all that the group chooses, where it is possible, whatever the orders say.
    std::vector<VokLong> fGiven;
    // Equally ranked variables stand in a random order, a new one after each restart. Input order knows no equals.
    bool fIsShuffled = false;
    // Open variables get the value first that they had last in this search, a value that propagation or a choice gave
    // them, before `fValue` is asked; after a solution those of the last one, which is the best (E. Demirovic, G. Chu,
    // P. Stuckey, "Solution-based phase saving for CP", CP 2018) (K. Pipatsrisawat, A. Darwiche, "A lightweight
    // component caching scheme for satisfiability solvers", 2007). The variable of the last choice that failed is
    // chosen again before others (C. Lecoutre, L. Sais, S. Tabary, V. Vidal, "Reasoning from last conflict(s) in
    // constraint programming", 2009).
    bool fRemembers = false;
    // So many variables from the first open one on are compared: for great groups that seldom have open ones.
    std::size_t fMostCompared = std::numeric_limits<std::size_t>::max();
  };

  // Variables that are no integers are for others to choose.
  VokTarnChoices(const VokTarnNetwork& network, std::vector<Group> groups, std::uint64_t seed);

  bool Choose(const VokTarnNetwork& network, unsigned depth, VokTarnAtom& choice) override;
  bool WantsChanges() const noexcept override { return fWantsChanges; }
  void NoteChanges(const VokTarnNetwork& network, std::span<const VokTarnValueId> changed) override;
  void OnFailure(const VokTarnNetwork& network, VokTarnValueId last) override;
  void NoteInvolved(const VokTarnNetwork& network, std::span<const VokTarnValueId> values) override;
  void OnSolution(const VokTarnNetwork& network) override;
  void OnRestart(const VokTarnNetwork& network) override;
  // The next choice is on a network that need not be as far as at the last one.
  void Forget() noexcept;

 private:
  // A variable by its place in a group, with the rank that it had when it was entered; the order is that of choice.
  struct Candidate {
    VokTarnRank fRank;
    std::uint32_t fPlace;
    bool operator>(const Candidate& other) const noexcept {
      return other.fRank < fRank || (!(fRank < other.fRank) && fPlace > other.fPlace);
    }
  };
  // Open variables of a group, best first on top. Each has an entry with its present rank; entries that a change has
  // made stale are dropped when they come up.
  struct Heap {
    std::vector<Candidate> fCandidates;
    bool fIsComplete = false;
  };
  // Groups before fGroup, and variables of it before fPlace, are single.
  struct Position {
    std::size_t fGroup;
    std::size_t fPlace;
  };
  // One place of a variable in a group with a heap.
  struct Membership {
    VokTarnValueId fValue;
    std::uint32_t fGroup;
    std::uint32_t fPlace;
  };

  static constexpr std::size_t sNoPlace = SIZE_MAX;

  bool HasHeap(const Group& group) const noexcept;
  void Enter(const VokTarnNetwork& network, std::size_t group, std::size_t place);
  void Complete(const VokTarnNetwork& network, std::size_t group);
  void Shuffle(Group& group);
  void List();
  void EnterAll(const VokTarnNetwork& network, VokTarnValueId id, std::optional<VokTarnVariableOrder> order);
  std::size_t FindGiven(const VokTarnNetwork& network, const Group& group, std::size_t from) const;
  std::size_t Scan(const VokTarnNetwork& network, const Group& group, std::size_t from) const;
  std::size_t TakeBest(const VokTarnNetwork& network, std::size_t group);
  VokTarnRank Rank(const VokTarnNetwork& network, const Group& group, std::size_t place) const;
  VokTarnAtom Decide(const VokTarnNetwork& network, const Group& group, VokTarnValueId id);
  void NotePhases(const VokTarnNetwork& network, std::span<const VokTarnValueId> changed);

  std::vector<Group> fGroups;
  std::vector<Heap> fHeaps;                     // by group
  std::vector<Membership> fMemberships;         // in the order of the values
  std::vector<std::uint32_t> fFirst;            // by value, its first membership; one more for the end
  std::vector<Position> fPositions;             // by depth, up to that of the last choice
  std::vector<VokTarnMerit> fMerits;            // by value
  std::uint64_t fBump = 1;                      // what being involved adds now; it grows
  std::vector<std::optional<VokLong>> fPhases;  // by value, when a group remembers
  bool fHasSolution = false;                    // the phases are those of a solution
  VokTarnValueId fLastConflict = vokNoValue;
  bool fWantsChanges = false;
  bool fRemembers = false;
  VokTarnRandom fRandom;
};
