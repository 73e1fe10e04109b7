#pragma once

#include <optional>
#include <vector>

#include "framework/VokLong.h"
#include "tarn/Model.h"

namespace tarn {

// A sum as it is written: two or more terms with + and - between them, from the left, or the members of a list, each an
// expression times a number.
struct Sum {
  struct Term {
    NodeIndex fNode;
    VokLong fCoefficient;
  };

  std::vector<Term> fTerms;
  // The nodes that the terms do not show: the signs, the last of them the sum itself, and the products with numbers,
  // these numbers. Ascending.
  std::vector<NodeIndex> fInner;

  bool fIsList = false;

  NodeIndex GetTop() const { return fInner.back(); }
};

// The number that the node is, if it is one that may stand before a term.
std::optional<VokLong> ReadCoefficient(const Node& node);

// The sums of a formula, none of them part of another's terms' signs. Linear in the formula.
std::vector<Sum> FindSums(const Formula& formula);

}  // namespace tarn
