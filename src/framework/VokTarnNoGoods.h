#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "framework/VokTarnBrancher.h"

// Choices that cannot all be made, as a search has found out before it began again at its root: without them it would
// look at the same part of the search space again.
//
// A no-good is a set of parts (VokTarnBranch); no solution that the search still looks for lies in all of them. Two of
// the parts that a value has not reached are watched: when all others are reached, the last one is left.
//
// Strength  Unit propagation over no-goods of up to 30 parts, less where a part inside an interval is to go.
// Cost      O(watches of the value) for a change, most of them O(1); at most 12 MB for parts and about as much for the
//           rest.
// Source    C. Lecoutre, L. Sais, S. Tabary, V. Vidal, "Recording and minimizing nogoods from restarts", JSAT 1, 2007:
//           one no-good for each part that was refuted, of it and the choices before it that stood.
class VOKTARN_EXPORT VokTarnNoGoods {
 public:
  // The network must outlive this.
  explicit VokTarnNoGoods(VokTarnNetwork& network) : fNetwork(network) {}

  // `branch` was refuted while `depth` choices stood; those that were refuted below it are no longer of use.
  void NoteRefuted(unsigned depth, const VokTarnBranch& branch);
  // Takes what was refuted after the choices of `path`, the last ones that stood, into the no-goods. The network is to
  // be back at the root; it fails when there is no further solution.
  void Learn(std::span<const VokTarnBranch> path);
  // Forgets what was refuted: a part of it was not searched to its end.
  void Drop() noexcept { fRefuted.clear(); }
  // Narrows by the no-goods after a change of some values, which may be a log of changes that grows meanwhile; true
  // when that has changed a value.
  bool Narrow(const std::vector<VokTarnValueId>& changed);

 private:
  struct Refuted {
    unsigned fDepth;
    VokTarnBranch fBranch;
  };
  // Parts of fParts; the first two are watched.
  struct NoGood {
    std::uint32_t fBegin;
    std::uint32_t fCount;
  };
  struct Watch {
    std::uint32_t fNoGood;
    std::uint32_t fPlace;  // 0 or 1
  };

  // Whether the value lies in the part, whether it lies outside; else it is open.
  bool IsReached(const VokTarnBranch& part) const;
  bool IsLost(const VokTarnBranch& part) const;
  void Add(std::span<const VokTarnBranch> path, const VokTarnBranch& last);
  bool MoveWatch(const Watch& watch);

  VokTarnNetwork& fNetwork;
  std::vector<Refuted> fRefuted;
  std::vector<VokTarnBranch> fParts;
  std::vector<NoGood> fNoGoods;
  std::vector<std::vector<Watch>> fWatches;  // by value, for the watched parts of it
  bool fHasNarrowed = false;                 // a value, since Narrow began
};
