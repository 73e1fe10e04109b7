// Which values of which variables belong to an assignment with all values different.
//
// Source  J.-C. Régin, "A filtering algorithm for constraints of difference in CSPs", AAAI 1994: a value may stay
//         when its edge lies in some maximum matching of variables and values, which is so for the edges of one
//         such matching, those on an alternating path that starts at a value without partner, and those on an
//         alternating cycle. We work on the graph of the variables alone: x points at y when y's partner is a
//         possible value of x; cycles are its strong components (R. Tarjan, "Depth-first search and linear
//         graph algorithms", 1972).
// Cost    n variables with e possible values in all: O(n e) for the matching at worst, O(e) for the rest.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

class VokTarnValueMatching {
 public:
  // The possible values of each variable, ascending.
  explicit VokTarnValueMatching(std::vector<std::vector<std::int64_t>> domains);

  // Whether some assignment gives every variable a value of its own.
  bool Exists() const noexcept { return fExists; }
  // The pairs of variable and value that no such assignment has. Requires: Exists().
  std::vector<std::pair<unsigned, std::int64_t>> FindUnsupported();

 private:
  static constexpr unsigned sNone = 0xFFFFFFFFU;

  bool Augment(unsigned variable, std::vector<unsigned>& visited, unsigned round);
  void Visit(unsigned variable);

  std::vector<std::int64_t> fValues;             // all values, ascending
  std::vector<std::vector<unsigned>> fPossible;  // per variable, positions in fValues
  std::vector<unsigned> fOwner;                  // per value, the variable it is matched with, or sNone
  std::vector<unsigned> fPartner;                // per variable, the value it is matched with
  bool fExists;

  // The search for strong components: order of visit, lowest order reached, component, and whether the
  // component leads to a value without owner.
  std::vector<unsigned> fOrder;
  std::vector<unsigned> fLowest;
  std::vector<unsigned> fComponent;
  std::vector<bool> fLeadsToFree;
  std::vector<unsigned> fStack;
  unsigned fVisited = 0;
};
