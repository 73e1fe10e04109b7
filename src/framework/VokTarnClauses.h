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
// Cost      O(watches of the value that wait for the event) for a change, most of them O(1). 12 bytes for an atom, 20
//           for a clause and 24 for its watches.
// Source    M. Moskewicz, C. Madigan, Y. Zhao, L. Zhang, S. Malik, "Chaff: engineering an efficient SAT solver", 2001;
//           which clauses stay: N. Een, N. Sorensson, "An extensible SAT-solver", 2003, and G. Audemard, L. Simon,
//           "Predicting learnt clauses quality in modern SAT solvers", 2009.
class VOKTARN_EXPORT VokTarnClauses {
 public:
  explicit VokTarnClauses(VokTarnNetwork& network) : fNetwork(network) {}

  // A clause of at least two atoms, none of them true, of which no other than the first is not false; of the others the
  // second became false last. `span` is the number of levels at which they did: the fewer, the longer the clause is
  // kept. Returns its number.
  VokULong Add(std::span<const VokTarnAtom> atoms, std::uint32_t span);
  void Clear() noexcept;
  bool IsEmpty() const noexcept { return fClauses.empty(); }
  std::size_t GetCount() const noexcept { return fClauses.size(); }
  // Atoms of all clauses together.
  std::size_t CountAtoms() const noexcept { return fAtoms.size(); }
  std::span<const VokTarnAtom> GetAtoms(VokULong clause) const noexcept {
    return std::span(fAtoms).subspan(fClauses[clause].fBegin, fClauses[clause].fCount);
  }
  // The clause has been of use.
  void Bump(VokULong clause);
  // Forgets half of the clauses: those of great span first, of equal ones those that were least of use lately. What the
  // network's history needs stays, also those that span two levels or less. Clauses are numbered anew, in the history
  // as well. Returns how many were forgotten.
  std::size_t Reduce();

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
    std::uint32_t fSpan;
    std::uint64_t fActivity;
  };
  struct Watch {
    std::uint32_t fClause;
    std::uint32_t fPlace;  // 0 or 1
    VokLong fNumber;       // of the atom
  };
  // The clauses that watch an atom of one value, by its relation.
  struct Watches {
    std::array<std::vector<Watch>, sRelations> fLists;
    unsigned char fEvents = 0;  // a bit for each list that is to be gone through
  };

  void WatchBoth(VokULong clause);
  void Visit(VokTarnValueId value, unsigned relation);
  bool MoveWatch(const Watch& watch);
  std::vector<Watch>& GetList(const VokTarnAtom& atom) {
    return fWatches[atom.fValue].fLists[static_cast<unsigned>(atom.fRelation)];
  }

  VokTarnNetwork& fNetwork;
  std::vector<VokTarnAtom> fAtoms;
  std::vector<Clause> fClauses;
  std::vector<Watches> fWatches;        // by value
  std::vector<VokTarnValueId> fEvents;  // values with lists to be gone through, each once
  std::uint64_t fBump = 1;              // what being of use adds now; it grows, so that later use counts more
};
