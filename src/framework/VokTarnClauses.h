#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "framework/VokTarnAtom.h"
#include "framework/VokTarnSlot.h"

class VokTarnNetwork;

// Clauses over atoms: of each some atom is true. What a search has found out of its problem. The network propagates
// them before any constraint.
//
// Two atoms of a clause that are not false are watched, each by the kind of event that can make it false: once one is,
// another takes its place, or the last one is made true.
//
// Strength  Unit propagation, less where a number inside an interval is to go.
// Cost      O(watches of the value that wait for the event) for a change, most of them O(1). 12 bytes for an atom, 16
//           for a clause and 16 for its watches.
// Source    M. Moskewicz, C. Madigan, Y. Zhao, L. Zhang, S. Malik, "Chaff: engineering an efficient SAT solver", 2001.
class VOKTARN_EXPORT VokTarnClauses {
 public:
  explicit VokTarnClauses(VokTarnNetwork& network) : fNetwork(network) {}

  // At the root level, where what is true or false stays so: a clause with one atom left, or none, narrows the network
  // at once.
  void Add(std::span<const VokTarnAtom> atoms);
  void Clear() noexcept;
  bool IsEmpty() const noexcept { return fClauses.empty(); }
  // Atoms of all clauses together.
  std::size_t CountAtoms() const noexcept { return fAtoms.size(); }

  // ---- For the network
  // A value, `before` this, has changed.
  void NoteChange(VokTarnValueId value, const VokTarnSummary& before, const VokTarnSummary& now);
  bool HasWork() const noexcept { return !fEvents.empty(); }
  // Narrows by the clauses after the changes that have been noted, and those that come of it, or until the network
  // fails.
  void Propagate();
  // Forgets the changes.
  void DropWork() noexcept;

 private:
  static constexpr unsigned sRelations = 4;

  // Atoms of fAtoms; the first two are watched.
  struct Clause {
    std::uint32_t fBegin;
    std::uint32_t fCount;
  };
  struct Watch {
    std::uint32_t fClause;
    std::uint32_t fPlace;  // 0 or 1
  };
  // The clauses that watch an atom of one value, by its relation.
  struct Watches {
    std::array<std::vector<Watch>, sRelations> fLists;
    unsigned char fEvents = 0;  // a bit for each list that is to be gone through
  };

  void Visit(std::vector<Watch>& watches);
  bool MoveWatch(const Watch& watch);
  std::vector<Watch>& GetList(const VokTarnAtom& atom) {
    return fWatches[atom.fValue].fLists[static_cast<unsigned>(atom.fRelation)];
  }

  VokTarnNetwork& fNetwork;
  std::vector<VokTarnAtom> fAtoms;
  std::vector<Clause> fClauses;
  std::vector<Watches> fWatches;        // by value
  std::vector<VokTarnValueId> fEvents;  // values with lists to be gone through, each once
};
