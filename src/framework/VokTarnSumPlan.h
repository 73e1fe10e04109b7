#pragma once

#include <span>

#include "framework/VokTarnExport.h"

// Which constraints a sum of integers becomes: ternary additions of sets, one relation over bounds, or both. One
// estimate for all languages, from the domains as they are when the sum is posted.
//
// A chain of additions r = a + b, each narrowed value by value, sees what bounds do not: the gaps of its terms. Its
// partial sums are to be listed for that, and each costs several times what a bound costs. So sums of dense terms,
// which have nothing but bounds to tell until few of them are open, are left to bounds, and so are those whose partial
// sums would have more values than a set lists; but of these a few small terms get the chain as well, for the time when
// some of them are known.

// A product of a variable and a coefficient, or the sum itself.
struct VokTarnSumTerm {
  double fSize;   // how many values it has; infinite: that is not known
  double fWidth;  // from its least to its greatest value, the same
};

enum class VokTarnSumPlan { Chain, Bounds, Both };

// What the model asks for.
enum class VokTarnConsistency : unsigned char { Default, Bounds, Domain };

// Linear in the number of terms.
VOKTARN_EXPORT VokTarnSumPlan VokTarnPlanSum(std::span<const VokTarnSumTerm> terms, const VokTarnSumTerm& sum,
                                             VokTarnConsistency wish);
