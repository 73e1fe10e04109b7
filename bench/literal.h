// The narrowing operations in the plainest way, as a reference: insert the value of every pair, with a binary search
// and element moves; then merge with a temporary vector. A candidate set that is full and is given one more value knows
// nothing.
#pragma once

#include <algorithm>
#include <optional>
#include <vector>

namespace literal {

using Values = std::vector<int>;

constexpr std::size_t sMaxMembers = 1024;

// Null: the candidates are too many to be listed.
template <class Combine>
std::optional<Values> CollectPairs(const Values& a, const Values& b, Combine combine) {
  Values candidates;
  for (const int x : a) {
    for (const int y : b) {
      const std::optional<int> value = combine(x, y);
      if (!value) {
        continue;
      }
      if (candidates.size() == sMaxMembers) {
        return std::nullopt;
      }
      const auto place = std::lower_bound(candidates.begin(), candidates.end(), *value);
      if (place == candidates.end() || *place != *value) {
        candidates.insert(place, *value);
      }
    }
  }
  return candidates;
}

// The other common way: all values, sorted, duplicates removed; the limit is looked at in the end.
template <class Combine>
std::optional<Values> SortPairs(const Values& a, const Values& b, Combine combine) {
  Values candidates;
  candidates.reserve(a.size() * b.size());
  for (const int x : a) {
    for (const int y : b) {
      if (const std::optional<int> value = combine(x, y)) {
        candidates.push_back(*value);
      }
    }
  }
  std::sort(candidates.begin(), candidates.end());
  candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
  if (candidates.size() > sMaxMembers) {
    return std::nullopt;
  }
  return candidates;
}

inline bool Intersect(Values& z, const std::optional<Values>& candidates) {
  if (!candidates) {
    return false;
  }
  Values common;
  for (const int v : z) {
    if (std::binary_search(candidates->begin(), candidates->end(), v)) {
      common.push_back(v);
    }
  }
  const bool changed = common.size() != z.size();
  z.swap(common);
  return changed;
}

inline std::optional<int> Add(int x, int y) {
  return x + y;
}
inline std::optional<int> Subtract(int x, int y) {
  return x - y;
}
inline std::optional<int> Multiply(int x, int y) {
  return x * y;
}
// Truncated, as the inverse of a product takes it: the product finds out which quotients were exact.
inline std::optional<int> Divide(int divisor, int dividend) {
  return divisor != 0 ? std::optional<int>(dividend / divisor) : std::nullopt;
}
inline std::optional<int> Remainder(int x, int y) {
  return y != 0 ? std::optional<int>(x % y) : std::nullopt;
}

}  // namespace literal
