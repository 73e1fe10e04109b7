// The choice between the ways to intersect two ascending lists of numbers.
//
// Internal to the module.
#pragma once

#include <span>

#include "framework/VokLong.h"

namespace VokFenDomain {

// Writes the values x for which x - shift is in `others` and returns their number. `kept` has VokFenKernels::kSlack
// numbers more than `values` and overlaps neither list.
// Cost  O(1) for lists that do not overlap; O(m log (n / m)) where the longer one, of n, has many times the m of the
//       shorter one, by galloping (Bentley, Yao, "An almost optimal algorithm for unbounded searching", 1976); else
//       O(n + m).
unsigned IntersectInto(std::span<const VokLong> values, std::span<const VokLong> others, VokLong shift, VokLong* kept);

}  // namespace VokFenDomain
