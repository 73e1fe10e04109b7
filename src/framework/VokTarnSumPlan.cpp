#include "framework/VokTarnSumPlan.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::size_t kMostTerms = 8;
// Partial sums of more values are not listed.
constexpr double kMostValues = 1023;
// Both ways are taken for so few terms of so few values each.
constexpr std::size_t kFewTerms = 4;
constexpr double kFewValues = 256;

// Whether a partial sum may take more values than a set lists. It has no more than the terms before it can make, and,
// where the result is known, no more than the terms behind it can take from that.
bool IsLong(std::span<const VokTarnSumTerm> terms, double results) {
  if (terms.size() > kMostTerms) {
    return true;
  }
  std::vector<double> behind(terms.size());  // per term, the number of values that the partial sum up to it can take
  for (std::size_t i = terms.size(); i-- > 0;) {
    behind[i] = results;
    results *= terms[i].fSize;
  }
  double before = 1;
  double width = 0;
  for (std::size_t i = 0; i < terms.size(); ++i) {
    width += terms[i].fWidth;
    before = std::min(before * terms[i].fSize, width + 1);
    if (i != 0 && std::min(before, behind[i]) > kMostValues) {
      return true;
    }
  }
  return false;
}

// Most of the numbers between its ends are missing.
bool HasGaps(const VokTarnSumTerm& term) {
  return 2 * term.fSize < term.fWidth;
}

}  // namespace

VokTarnSumPlan VokTarnPlanSum(std::span<const VokTarnSumTerm> terms, const VokTarnSumTerm& sum,
                              VokTarnConsistency wish) {
  const bool isDense = !HasGaps(sum) && std::ranges::none_of(terms, HasGaps);
  if (wish == VokTarnConsistency::Bounds || (wish == VokTarnConsistency::Default && isDense)) {
    return VokTarnSumPlan::Bounds;
  }
  if (!IsLong(terms, sum.fSize)) {
    return VokTarnSumPlan::Chain;
  }
  const bool hasFewSmall = terms.size() > 2 && terms.size() <= kFewTerms &&
                           std::ranges::all_of(terms, [](const auto& term) { return term.fSize <= kFewValues; });
  return hasFewSmall ? VokTarnSumPlan::Both : VokTarnSumPlan::Bounds;
}
