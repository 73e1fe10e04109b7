#include "flatzinc/sets.h"

#include <algorithm>

namespace fzn {

Set MakeSet(std::vector<std::int64_t> numbers) {
  std::ranges::sort(numbers);
  Set set;
  for (const std::int64_t number : numbers) {
    if (set.empty() || (number > set.back().fUpper && number - 1 > set.back().fUpper)) {
      set.push_back({number, number});
    } else {
      set.back().fUpper = number;
    }
  }
  return set;
}

Set Intersect(const Set& a, const Set& b) {
  Set result;
  for (auto x = a.begin(), y = b.begin(); x != a.end() && y != b.end();) {
    const std::int64_t lower = std::max(x->fLower, y->fLower);
    const std::int64_t upper = std::min(x->fUpper, y->fUpper);
    if (lower <= upper) {
      result.push_back({lower, upper});
    }
    ++(x->fUpper < y->fUpper ? x : y);
  }
  return result;
}

bool Contains(const Set& set, std::int64_t number) {
  const auto range = std::ranges::lower_bound(set, number, {}, &Range::fUpper);
  return range != set.end() && range->fLower <= number;
}

std::string ToText(const Set& set) {
  const auto show = [](const Range& range) {
    return std::to_string(range.fLower) + ".." + std::to_string(range.fUpper);
  };
  if (set.size() < 2) {
    return set.empty() ? "1..0" : show(set[0]);
  }
  std::string text;
  for (const Range& range : set) {
    for (std::int64_t number = range.fLower;; ++number) {
      text += (text.empty() ? "{" : ",") + std::to_string(number);
      if (number == range.fUpper) {
        break;
      }
    }
  }
  return text + "}";
}

}  // namespace fzn
