// A balanced tree of tasks for scheduling on one resource, after P. Vilím, "O(n log n) filtering algorithms for unary
// resource constraint", CPAIOR 2004: tasks stand in the order of their earliest starts; the tree knows how early the
// tasks that are in it can all have ended.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <vector>

class ThetaTree {
 public:
  static constexpr std::int64_t sNone = std::numeric_limits<std::int64_t>::min() / 4;

  // An empty tree with `size` places.
  void Reset(std::size_t size) {
    fLeaves = std::bit_ceil(std::max<std::size_t>(size, 1));
    fNodes.assign(2 * fLeaves, {0, sNone});
  }
  // The task at a place takes `length` and ends at `end` at the earliest where it is alone; O(log n).
  void Insert(std::size_t place, std::int64_t length, std::int64_t end) { Set(place, {length, end}); }
  void Remove(std::size_t place) { Set(place, {0, sNone}); }
  // The earliest end of all; sNone of an empty tree.
  std::int64_t GetEnd() const { return fNodes[1].fEnd; }

 private:
  struct Node {
    std::int64_t fLength;
    std::int64_t fEnd;
  };

  void Set(std::size_t place, Node node) {
    std::size_t i = fLeaves + place;
    fNodes[i] = node;
    while ((i /= 2) != 0) {
      const Node& left = fNodes[2 * i];
      const Node& right = fNodes[2 * i + 1];
      fNodes[i] = {left.fLength + right.fLength, std::max(right.fEnd, left.fEnd + right.fLength)};
    }
  }

  std::size_t fLeaves = 0;
  std::vector<Node> fNodes;
};
