// Sets of integers as lists of ranges.
#pragma once

#include <string>
#include <vector>

#include "flatzinc/Model.h"

namespace fzn {

// Of numbers in any order, with repetitions.
Set MakeSet(std::vector<std::int64_t> numbers);
inline Set MakeRange(std::int64_t lower, std::int64_t upper) {
  return lower <= upper ? Set{{lower, upper}} : Set{};
}
Set Intersect(const Set& a, const Set& b);
// O(log n).
bool Contains(const Set& set, std::int64_t number);
// "1..0" when it is empty.
std::string ToText(const Set& set);

}  // namespace fzn
