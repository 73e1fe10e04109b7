// Bounds of variables that have none of their own, or none that the network's integers can hold.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "flatzinc/Model.h"

namespace fzn {

// The integers of the network lie strictly between the ends of its range.
inline constexpr std::int64_t kGreatest = 2147483644;
inline constexpr std::int64_t kLeast = -kGreatest;

// What a variable without a domain has.
Set MakeUnbounded();
inline bool Fits(const Set& domain) {
  return domain.empty() || (domain.front().fLower >= kLeast && domain.back().fUpper <= kGreatest);
}

// Narrows the domains that do not fit by what the constraints over them say of their bounds, until nothing follows any
// more. Every value that a solution has stays, however large. `find` gives the place of a variable's domain among the
// domains.
//
// Cost  Linear in the size of the constraints over such variables for each round; two rounds are enough for a chain of
//       definitions, and there is a limit.
void InferBounds(const Model& model, const std::function<std::size_t(std::size_t)>& find, std::vector<Set>& domains);

}  // namespace fzn
