// The global constraints that the product's own library of MiniZinc predicates passes on, see share/minizinc/tarn.
#include <algorithm>

#include "flatzinc/Posting.h"
#include "framework/VokTarnRelation.h"

namespace fzn {

namespace {

using Values = std::vector<VokTarnValueId>;

// Bins beyond this number are not counted one by one.
constexpr std::uint64_t kMostBins = 4096;

// The terms of these arguments, one after the other.
Values Join(const Posting& posting, std::initializer_list<unsigned> arguments) {
  Values values;
  for (const unsigned argument : arguments) {
    const Values more = posting.GetValues(posting.GetTerms(argument));
    values.insert(values.end(), more.begin(), more.end());
  }
  return values;
}

// First the term, then those of the array.
Values Join(const Posting& posting, const Term& first, unsigned array) {
  Values values = Join(posting, {array});
  values.insert(values.begin(), posting.GetValue(first));
  return values;
}

VokLong CountOf(const Posting& posting, unsigned array) {
  return ToConstant(static_cast<std::int64_t>(posting.GetTerms(array).size()));
}

void AppendConstants(const Posting& posting, unsigned array, std::vector<VokLong>& constants) {
  const std::vector<VokLong> more = ToConstants(posting.GetConstants(array));
  constants.insert(constants.end(), more.begin(), more.end());
}

void RequireSameSize(const Posting& posting, std::initializer_list<unsigned> arrays) {
  for (const unsigned array : arrays) {
    if (posting.GetTerms(array).size() != posting.GetTerms(*arrays.begin()).size()) {
      throw PostingError("the arrays differ in size");
    }
  }
}

void PostAllDifferent(const Posting& posting) {
  posting.Post("VokTarnAllDifferentConstraint", Join(posting, {0}));
}

void PostAllEqual(const Posting& posting) {
  const Values x = Join(posting, {0});
  for (std::size_t i = 1; i < x.size(); ++i) {
    posting.Post("VokTarnEqualConstraint", Values{x[0], x[i]});
  }
}

// Increasing, or decreasing.
template <bool isUp>
void PostMonotonic(const Posting& posting) {
  const Values x = Join(posting, {0});
  for (std::size_t i = 1; i < x.size(); ++i) {
    posting.Post("VokTarnLessOrEqualTernaryConstraint", isUp ? Values{x[i], x[i - 1]} : Values{x[i - 1], x[i]});
  }
}

void PostTable(const Posting& posting) {
  const Values x = Join(posting, {0});
  if (!x.empty()) {
    posting.Post("VokTarnTableConstraint", x, ToConstants(posting.GetConstants(1)));
  }
}

// The number of those in the array 0 that are the term 1.
void PostCount(const Posting& posting, VokTarnValueId count) {
  Values values = {count, posting.GetValue(posting.GetTerm(1))};
  const Values x = Join(posting, {0});
  values.insert(values.end(), x.begin(), x.end());
  posting.Post("VokTarnCountConstraint", values);
}

void PostCountEq(const Posting& posting) {
  PostCount(posting, posting.GetValue(posting.GetTerm(2)));
}

// That the count is c is true as often as c is among the count alone.
void PostCountEqReif(const Posting& posting) {
  const VokTarnValueId count = posting.AddValue(0, CountOf(posting, 0));
  PostCount(posting, count);
  posting.Post("VokTarnCountConstraint",
               Values{posting.GetValue(posting.GetTerm(3)), posting.GetValue(posting.GetTerm(2)), count});
}

// At least, at most, exactly as many of the array 1 as the constant 0 says are the constant 2.
template <bool isAtLeast, bool isAtMost>
void PostCountBetween(const Posting& posting) {
  const std::int64_t number = posting.GetConstant(0);
  const std::int64_t least = isAtLeast ? std::max<std::int64_t>(number, 0) : 0;
  const std::int64_t most = isAtMost ? std::min<std::int64_t>(number, CountOf(posting, 1)) : CountOf(posting, 1);
  if (least > most || (isAtMost && number < 0)) {
    posting.Fail();
    return;
  }
  Values values = {posting.AddValue(least, most), posting.GetValue(posting.GetTerm(2))};
  const Values x = Join(posting, {1});
  values.insert(values.end(), x.begin(), x.end());
  posting.Post("VokTarnCountConstraint", values);
}

// Each of the array 0 is the number of those in the array 2 that are what the array 1 says.
void PostDistribute(const Posting& posting) {
  RequireSameSize(posting, {0, 1});
  const Values counts = Join(posting, {0});
  const Values numbers = Join(posting, {1});
  const Values x = Join(posting, {2});
  for (std::size_t i = 0; i < counts.size(); ++i) {
    Values values = {counts[i], numbers[i]};
    values.insert(values.end(), x.begin(), x.end());
    posting.Post("VokTarnCountConstraint", values);
  }
}

void PostMember(const Posting& posting) {
  if (posting.GetTerms(0).empty()) {
    posting.Fail();
    return;
  }
  PostCount(posting, posting.AddValue(1, CountOf(posting, 0)));
}

void PostMemberReif(const Posting& posting) {
  const VokLong size = CountOf(posting, 0);
  if (size == 0) {
    posting.Fix(posting.GetTerm(2), 0);
    return;
  }
  const VokTarnValueId count = posting.AddValue(0, size);
  PostCount(posting, count);
  posting.Post("VokTarnMembershipConstraint", Values{count, posting.GetValue(posting.GetTerm(2))},
               std::vector<VokLong>{static_cast<VokLong>(VokTarnMode::Reified), 1, size});
}

void PostAmong(const Posting& posting) {
  std::vector<VokLong> ranges;
  for (const Range& range : posting.GetSet(2)) {
    ranges.push_back(ToConstant(range.fLower));
    ranges.push_back(ToConstant(range.fUpper));
  }
  posting.Post("VokTarnAmongConstraint", Join(posting, posting.GetTerm(0), 1), ranges);
}

void PostNumberOfValues(const Posting& posting) {
  posting.Post("VokTarnNumberOfValuesConstraint", Join(posting, posting.GetTerm(0), 1));
}

// The numbers are values of the network already; the array 0 and the cover in 1.
void PostCardinality(const Posting& posting, Values counts, bool isClosed) {
  std::vector<VokLong> constants = {isClosed ? 1 : 0};
  AppendConstants(posting, 1, constants);
  const Values x = Join(posting, {0});
  counts.insert(counts.end(), x.begin(), x.end());
  posting.Post("VokTarnGlobalCardinalityConstraint", counts, constants);
}

void PostGlobalCardinality(const Posting& posting) {
  RequireSameSize(posting, {1, 2});
  PostCardinality(posting, Join(posting, {2}), posting.GetConstant(3) != 0);
}

void PostGlobalCardinalityLowUp(const Posting& posting) {
  RequireSameSize(posting, {1, 2, 3});
  const std::vector<std::int64_t> lower = posting.GetConstants(2);
  const std::vector<std::int64_t> upper = posting.GetConstants(3);
  Values counts;
  for (std::size_t i = 0; i < lower.size(); ++i) {
    const std::int64_t least = std::max<std::int64_t>(lower[i], 0);
    const std::int64_t greatest = std::min<std::int64_t>(upper[i], CountOf(posting, 0));
    if (least > greatest) {
      posting.Fail();
      return;
    }
    counts.push_back(posting.AddValue(least, greatest));
  }
  PostCardinality(posting, counts, posting.GetConstant(4) != 0);
}

void PostRegular(const Posting& posting) {
  const std::int64_t states = posting.GetConstant(1);
  if (states < 0 || static_cast<std::uint64_t>(states) > posting.GetTerms(3).size()) {
    throw PostingError("argument 4 should have a row for each state");
  }
  std::vector<VokLong> finals;
  for (const Range& range : posting.GetSet(5)) {
    for (std::int64_t q = std::max<std::int64_t>(range.fLower, 1); q <= std::min(range.fUpper, states); ++q) {
      finals.push_back(ToConstant(q));
    }
  }
  std::vector<VokLong> constants = ToConstants(std::vector<std::int64_t>{
      states, posting.GetConstant(2), posting.GetConstant(4), static_cast<std::int64_t>(finals.size())});
  constants.insert(constants.end(), finals.begin(), finals.end());
  AppendConstants(posting, 3, constants);
  posting.Post("VokTarnRegularConstraint", Join(posting, {0}), constants);
}

void PostCumulative(const Posting& posting) {
  RequireSameSize(posting, {0, 1, 2});
  Values values = Join(posting, {0, 1, 2});
  values.insert(values.begin(), posting.GetValue(posting.GetTerm(3)));
  posting.Post("VokTarnCumulativeConstraint", values);
}

// The constant tells what ends in `strict` from what does not.
template <VokLong IsStrict>
void PostDisjunctive(const Posting& posting) {
  RequireSameSize(posting, {0, 1});
  posting.Post("VokTarnDisjunctiveConstraint", Join(posting, {0, 1}), std::vector<VokLong>{IsStrict});
}

template <VokLong IsStrict>
void PostNonOverlap(const Posting& posting) {
  RequireSameSize(posting, {0, 1, 2, 3});
  posting.Post("VokTarnNonOverlapConstraint", Join(posting, {0, 1, 2, 3}), std::vector<VokLong>{IsStrict});
}

template <VokLong IsPartial>
void PostCircuit(const Posting& posting) {
  PostAllDifferent(posting);
  posting.Post("VokTarnCircuitConstraint", Join(posting, {0}),
               std::vector<VokLong>{ToConstant(posting.GetConstant(1)), IsPartial});
}

void PostInverse(const Posting& posting) {
  PostAllDifferent(posting);
  posting.Post("VokTarnInverseConstraint", Join(posting, {0, 2}),
               std::vector<VokLong>{ToConstant(posting.GetConstant(1)), ToConstant(posting.GetConstant(3)),
                                    CountOf(posting, 0)});
}

template <VokLong IsStrict>
void PostLexicographicOrder(const Posting& posting) {
  posting.Post("VokTarnLexicographicOrderConstraint", Join(posting, {0, 1}),
               std::vector<VokLong>{IsStrict, CountOf(posting, 0)});
}

void PostValuePrecedence(const Posting& posting) {
  posting.Post("VokTarnValuePrecedenceConstraint", Join(posting, {2}),
               std::vector<VokLong>{ToConstant(posting.GetConstant(0)), ToConstant(posting.GetConstant(1))});
}

// Items in the array `items`, of the weights in the next one, in the bins from `first` on.
void PostPacking(const Posting& posting, Values loads, std::int64_t first, unsigned items) {
  RequireSameSize(posting, {items, items + 1});
  std::vector<VokLong> constants = {ToConstant(first), ToConstant(static_cast<std::int64_t>(loads.size()))};
  AppendConstants(posting, items + 1, constants);
  const Values bins = Join(posting, {items});
  loads.insert(loads.end(), bins.begin(), bins.end());
  posting.Post("VokTarnBinPackingConstraint", loads, constants);
}

void PostBinPackingLoad(const Posting& posting) {
  PostPacking(posting, Join(posting, {0}), posting.GetConstant(1), 2);
}

void PostBinPackingCapacity(const Posting& posting) {
  Values loads;
  for (const std::int64_t capacity : posting.GetConstants(0)) {
    loads.push_back(posting.AddValue(0, capacity));
  }
  PostPacking(posting, loads, posting.GetConstant(1), 2);
}

// Every bin that an item may lie in has the same capacity. Where bins are too many to be counted, items are tasks of
// one unit of time each.
void PostBinPacking(const Posting& posting) {
  RequireSameSize(posting, {1, 2});
  const std::span<const Term> items = posting.GetTerms(1);
  if (items.empty()) {
    return;
  }
  std::int64_t first = posting.GetLower(items.front());
  std::int64_t last = posting.GetUpper(items.front());
  for (const Term& item : items) {
    first = std::min(first, posting.GetLower(item));
    last = std::max(last, posting.GetUpper(item));
  }
  const std::int64_t capacity = posting.GetConstant(0);
  const std::uint64_t count = static_cast<std::uint64_t>(last) - static_cast<std::uint64_t>(first) + 1;
  if (count > kMostBins || count == 0) {
    Values values = Join(posting, {1});
    values.insert(values.begin(), posting.GetValue(Term{false, capacity}));
    values.insert(values.end(), items.size(), posting.GetValue(Term{false, 1}));
    const Values weights = Join(posting, {2});
    values.insert(values.end(), weights.begin(), weights.end());
    posting.Post("VokTarnCumulativeConstraint", values);
    return;
  }
  Values loads;
  for (std::uint64_t bin = 0; bin < count; ++bin) {
    loads.push_back(posting.AddValue(0, capacity));
  }
  PostPacking(posting, loads, first, 1);
}

void PostSort(const Posting& posting) {
  RequireSameSize(posting, {0, 1});
  posting.Post("VokTarnSortConstraint", Join(posting, {0, 1}));
}

template <VokLong IsGreatest>
void PostExtremePlace(const Posting& posting) {
  posting.Post("VokTarnExtremePlaceConstraint", Join(posting, posting.GetTerm(1), 0),
               std::vector<VokLong>{ToConstant(posting.GetConstant(2)), IsGreatest});
}

constexpr PostingRow kRows[] = {
    {"fzn_all_different_int", 1, PostAllDifferent},
    {"fzn_all_equal_int", 1, PostAllEqual},
    {"fzn_among", 3, PostAmong},
    {"fzn_at_least_int", 3, PostCountBetween<true, false>},
    {"fzn_at_most_int", 3, PostCountBetween<false, true>},
    {"fzn_bin_packing", 3, PostBinPacking},
    {"fzn_count_eq", 3, PostCountEq},
    {"fzn_count_eq_reif", 4, PostCountEqReif},
    {"fzn_cumulative", 4, PostCumulative},
    {"fzn_decreasing_bool", 1, PostMonotonic<false>},
    {"fzn_decreasing_int", 1, PostMonotonic<false>},
    {"fzn_diffn", 4, PostNonOverlap<1>},
    {"fzn_diffn_nonstrict", 4, PostNonOverlap<0>},
    {"fzn_disjunctive", 2, PostDisjunctive<0>},
    {"fzn_disjunctive_strict", 2, PostDisjunctive<1>},
    {"fzn_distribute", 3, PostDistribute},
    {"fzn_exactly_int", 3, PostCountBetween<true, true>},
    {"fzn_increasing_bool", 1, PostMonotonic<true>},
    {"fzn_increasing_int", 1, PostMonotonic<true>},
    {"fzn_lex_less_bool", 2, PostLexicographicOrder<1>},
    {"fzn_lex_less_int", 2, PostLexicographicOrder<1>},
    {"fzn_lex_lesseq_bool", 2, PostLexicographicOrder<0>},
    {"fzn_lex_lesseq_int", 2, PostLexicographicOrder<0>},
    {"fzn_member_int", 2, PostMember},
    {"fzn_member_int_reif", 3, PostMemberReif},
    {"fzn_nvalue", 2, PostNumberOfValues},
    {"fzn_sort", 2, PostSort},
    {"fzn_value_precede_int", 3, PostValuePrecedence},
    {"tarn_bin_packing_capa", 4, PostBinPackingCapacity},
    {"tarn_bin_packing_load", 4, PostBinPackingLoad},
    {"tarn_circuit", 2, PostCircuit<0>},
    {"tarn_global_cardinality", 4, PostGlobalCardinality},
    {"tarn_global_cardinality_low_up", 5, PostGlobalCardinalityLowUp},
    {"tarn_inverse", 4, PostInverse},
    {"tarn_maximum_arg", 3, PostExtremePlace<1>},
    {"tarn_minimum_arg", 3, PostExtremePlace<0>},
    {"tarn_regular", 6, PostRegular},
    {"tarn_subcircuit", 2, PostCircuit<1>},
    {"tarn_table_int", 2, PostTable},
};

}  // namespace

std::span<const PostingRow> GetGlobalRows() {
  return kRows;
}

}  // namespace fzn
