// What global constraints tell of the bounds of their arguments.
#include "flatzinc/BoundsInference.h"

namespace fzn {

const std::unordered_map<std::string_view, BoundsInference::Rule>& BoundsInference::GetGlobalRules() {
  static const std::unordered_map<std::string_view, Rule> rules = {
      {"fzn_all_equal_int", &BoundsInference::InferAllEqual},
      {"fzn_among", &BoundsInference::InferCountFirst},
      {"fzn_count_eq", &BoundsInference::InferCount},
      {"fzn_decreasing_int", &BoundsInference::InferDecreasing},
      {"fzn_distribute", &BoundsInference::InferDistribute},
      {"fzn_increasing_int", &BoundsInference::InferIncreasing},
      {"fzn_member_int", &BoundsInference::InferMember},
      {"fzn_nvalue", &BoundsInference::InferCountFirst},
      {"fzn_sort", &BoundsInference::InferSort},
      {"tarn_bin_packing_capa", &BoundsInference::InferBins},
      {"tarn_bin_packing_load", &BoundsInference::InferLoad},
      {"tarn_circuit", &BoundsInference::InferCircuit},
      {"tarn_global_cardinality", &BoundsInference::InferCardinality},
      {"tarn_global_cardinality_low_up", &BoundsInference::InferCardinality},
      {"tarn_inverse", &BoundsInference::InferInverse},
      {"tarn_maximum_arg", &BoundsInference::InferPlace},
      {"tarn_minimum_arg", &BoundsInference::InferPlace},
      {"tarn_regular", &BoundsInference::InferRegular},
      {"tarn_subcircuit", &BoundsInference::InferCircuit},
      {"tarn_table_int", &BoundsInference::InferTable}};
  return rules;
}

void BoundsInference::InferAllEqual(const Constraint& c) {
  Hull common = kEverything;
  for (const Term& term : GetTerms(c, 0)) {
    const Hull hull = GetHull(term);
    common = {std::max(common.fLower, hull.fLower), std::min(common.fUpper, hull.fUpper)};
  }
  NarrowAll(GetTerms(c, 0), common);
}

void BoundsInference::InferOrdered(std::span<const Term> x, bool isUp) {
  const auto at = [&](std::size_t i) { return isUp ? x[i] : x[x.size() - 1 - i]; };
  for (std::size_t i = 1; i < x.size(); ++i) {
    Narrow(at(i), {GetHull(at(i - 1)).fLower, kInfinite});
  }
  for (std::size_t i = x.size(); i > 1; --i) {
    Narrow(at(i - 2), {-kInfinite, GetHull(at(i - 1)).fUpper});
  }
}

// The number of those in an array that have some property.
void BoundsInference::InferCount(const Constraint& c) {
  Narrow(GetTerm(c, 2), {0, static_cast<std::int64_t>(GetTerms(c, 0).size())});
}

void BoundsInference::InferCountFirst(const Constraint& c) {
  Narrow(GetTerm(c, 0), {0, static_cast<std::int64_t>(GetTerms(c, 1).size())});
}

void BoundsInference::InferDistribute(const Constraint& c) {
  NarrowAll(GetTerms(c, 0), {0, static_cast<std::int64_t>(GetTerms(c, 2).size())});
}

// The counts of an array's values; where the cover is closed, it holds them all.
void BoundsInference::InferCardinality(const Constraint& c) {
  const std::span<const Term> x = GetTerms(c, 0);
  const bool hasCounts = fModel.GetName(c) == "tarn_global_cardinality";
  if (hasCounts) {
    NarrowAll(GetTerms(c, 2), {0, static_cast<std::int64_t>(x.size())});
  }
  if (const Hull isClosed = GetHull(GetTerm(c, hasCounts ? 3 : 4)); isClosed.fLower == 1) {
    NarrowAll(x, Unite(GetTerms(c, 1)));
  }
}

void BoundsInference::InferLoad(const Constraint& c) {
  SumEnd most;
  for (const Term& weight : GetTerms(c, 3)) {
    const Hull hull = GetHull(weight);
    if (hull.fLower < 0) {
      return;
    }
    most.Add(hull.fUpper);
  }
  NarrowAll(GetTerms(c, 0), {0, most.GetWithout(0).value_or(kInfinite)});
  NarrowAll(GetTerms(c, 2), GetPlaces(c, GetTerms(c, 0), 1));
}

void BoundsInference::InferBins(const Constraint& c) {
  NarrowAll(GetTerms(c, 2), GetPlaces(c, GetTerms(c, 0), 1));
}

void BoundsInference::InferTable(const Constraint& c) {
  const std::span<const Term> x = GetTerms(c, 0);
  const std::span<const Term> rows = GetTerms(c, 1);
  for (std::size_t i = 0; i < x.size() && i < rows.size(); ++i) {
    Hull column = GetHull(rows[i]);
    for (std::size_t at = i; at < rows.size(); at += x.size()) {
      const Hull cell = GetHull(rows[at]);
      column = {std::min(column.fLower, cell.fLower), std::max(column.fUpper, cell.fUpper)};
    }
    Narrow(x[i], column);
  }
}

void BoundsInference::InferRegular(const Constraint& c) {
  NarrowAll(GetTerms(c, 0), {1, GetHull(GetTerm(c, 2)).fUpper});
}

void BoundsInference::InferMember(const Constraint& c) {
  Narrow(GetTerm(c, 1), Unite(GetTerms(c, 0)));
}

void BoundsInference::InferInverse(const Constraint& c) {
  NarrowAll(GetTerms(c, 0), GetPlaces(c, GetTerms(c, 2), 3));
  NarrowAll(GetTerms(c, 2), GetPlaces(c, GetTerms(c, 0), 1));
}

void BoundsInference::InferCircuit(const Constraint& c) {
  NarrowAll(GetTerms(c, 0), GetPlaces(c, GetTerms(c, 0), 1));
}

void BoundsInference::InferSort(const Constraint& c) {
  NarrowAll(GetTerms(c, 1), Unite(GetTerms(c, 0)));
  NarrowAll(GetTerms(c, 0), Unite(GetTerms(c, 1)));
}

void BoundsInference::InferPlace(const Constraint& c) {
  Narrow(GetTerm(c, 1), GetPlaces(c, GetTerms(c, 0), 2));
}

}  // namespace fzn
