// Differences between pairs of variables, x - y <> d, as all different constraints: a clique of them tells more and
// costs less than its pairs.
#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "flatzinc/Posting.h"

namespace fzn {

// fFirst - fSecond <> fGap.
struct Difference {
  VokTarnValueId fFirst;
  VokTarnValueId fSecond;
  VokLong fGap;
};

// A value of the network and what is to be added to it.
struct ShiftedValue {
  VokTarnValueId fValue;
  VokLong fShift;
};

// What the constraint is, when it is a difference between two variables.
std::optional<Difference> ReadDifference(const Posting& posting);

class Differences {
 public:
  void Add(const Difference& difference);
  // Shifted values that are all different when the differences hold; together they cover what cliques can cover.
  // Greedy: each one is grown from a difference that is not covered yet, by values that are in such first.
  //
  // Cost  O(d s) look-ups for a clique of s values grown from one with d differences; there is a limit for all.
  std::vector<std::vector<ShiftedValue>> FindCliques();
  // Takes note that a clique is seen to. Whether that is so for the k-th difference that was added.
  void SetCovered(const std::vector<ShiftedValue>& clique);
  bool IsCovered(std::size_t k) const { return fIsCovered[fPlaces[k]]; }

 private:
  struct Key {
    VokTarnValueId fFirst;
    VokTarnValueId fSecond;
    VokLong fGap;
    bool operator==(const Key&) const = default;
  };
  struct Hash {
    std::size_t operator()(const Key& key) const noexcept;
  };
  struct Neighbour {
    VokTarnValueId fValue;
    VokLong fShift;  // relative to the one whose neighbour it is
    std::size_t fEdge;
  };
  static constexpr std::size_t sNone = static_cast<std::size_t>(-1);

  static Key MakeKey(VokTarnValueId first, VokTarnValueId second, std::int64_t gap) noexcept;
  // The place of first - second <> gap; sNone when it is not there.
  std::size_t Find(VokTarnValueId first, VokTarnValueId second, std::int64_t gap) const;
  std::vector<ShiftedValue> Grow(std::size_t edge);

  std::vector<Key> fEdges;
  std::vector<bool> fIsCovered;      // by edge
  std::vector<std::size_t> fPlaces;  // of the differences, among the edges
  std::unordered_map<Key, std::size_t, Hash> fIndex;
  std::unordered_map<VokTarnValueId, std::vector<Neighbour>> fNeighbours;
  std::vector<bool> fIsSeen;  // by edge: in a clique that has been found
  std::size_t fLookUps = 0;
};

}  // namespace fzn
