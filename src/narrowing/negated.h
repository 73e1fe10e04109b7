// The negatives of the members of a set, in ascending order.
//
// Internal to the module.
#pragma once

#include <algorithm>
#include <limits>
#include <span>

#include "domain/scratch.h"

namespace VokFenNarrowing {

// Negation wraps: the smallest 32-bit number is its own negative and stays in front. Empty when memory is short, which
// takes more members than the limit allows. O(n).
class Negated {
 public:
  explicit Negated(std::span<const VokLong> values) : fScratch(values.size()) {
    VokLong* const to = fScratch.GetNumbers();
    if (values.empty() || to == nullptr) {
      return;
    }
    const std::size_t fixed = values.front() == std::numeric_limits<VokLong>::min() ? 1 : 0;
    to[0] = values.front();
    std::transform(values.rbegin(), values.rend() - static_cast<std::ptrdiff_t>(fixed), to + fixed, VokWrapNegate);
    fValues = {to, values.size()};
  }

  std::span<const VokLong> Get() const noexcept { return fValues; }

 private:
  VokFenDomain::Scratch fScratch;
  std::span<const VokLong> fValues;
};

}  // namespace VokFenNarrowing
