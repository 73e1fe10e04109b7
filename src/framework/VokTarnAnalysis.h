#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "framework/VokTarnNetwork.h"
#include "framework/VokTarnReasons.h"

// What a failure of a network teaches: a clause that would have prevented it.
//
// The atoms that cannot be true together are replaced by their reasons, the latest first, until only one of them became
// true at the level of the failure: the first unique implication point. Of two atoms of one value the stronger one
// stands for both. Atoms that the rest implies, as far as clauses and rules tell, are left out.
//
// Cost    The reasons of the atoms between the failure and the implication point.
// Source  J. Marques-Silva, K. Sakallah, "GRASP: a search algorithm for propositional satisfiability", 1999; leaving
//         out: N. Sorensson, A. Biere, "Minimizing learned clauses", 2009.
class VokTarnAnalysis {
 public:
  struct Lesson {
    // Of its atoms the first one is to be made true; the second one became false last of the others.
    std::vector<VokTarnAtom> fClause;
    unsigned fLevel;      // of the failure, in the network's count; the root's: there is no further solution
    unsigned fBackLevel;  // at which the first atom is the only one that is not false
    std::uint32_t fSpan;  // levels at which the atoms became false
  };

  // Both must outlive this. What is true at the level `root` is so whatever is chosen.
  VokTarnAnalysis(VokTarnNetwork& network, VokTarnReasons& reasons, unsigned root)
      : fNetwork(network), fReasons(reasons), fRoot(root), fFirst(network.GetValueCount(), sNone) {}

  // Of a network that has failed and whose history tells all changes since the root. Null when the lesson would be too
  // long, or the network's interrupt asks to stop.
  const Lesson* Run();
  // The values that the last analysis has met, some of them more than once.
  const std::vector<VokTarnValueId>& GetInvolved() const noexcept { return fInvolved; }

 private:
  using Position = VokTarnHistory::Position;
  static constexpr std::uint32_t sNone = 0xFFFFFFFFU;

  // One of the atoms that cannot be true together.
  struct Item {
    VokTarnAtom fAtom;
    Position fPosition;   // of the change that made it true
    std::uint32_t fNext;  // of the same value
    unsigned fLevel;
    bool fIsOut;  // replaced by its reasons, or by a stronger one
  };

  void Clear();
  void Add(const VokTarnAtom& atom);
  void AddCanonical(const VokTarnAtom& atom);
  void Leave(Item& item);
  std::uint32_t TakeLatest();
  bool Resolve();
  void Shorten();
  bool IsImplied(const VokTarnAtom& atom, Position before, unsigned depth);
  void Conclude();

  VokTarnNetwork& fNetwork;
  VokTarnReasons& fReasons;
  const unsigned fRoot;
  std::vector<Item> fItems;
  std::vector<std::uint32_t> fFirst;                        // by value, its first item
  std::vector<std::pair<Position, std::uint32_t>> fLatest;  // a heap of items
  std::size_t fAtLevel = 0;                                 // items at the level of the failure
  std::vector<VokTarnAtom> fBecause;
  std::vector<VokTarnValueId> fInvolved;
  Lesson fLesson{};
};
