// The meaning of each constraint, as a function of numbers. Sums and products are of 128 bits, where those of 64-bit
// numbers do not wrap. A position that is none, a division by zero and the like make a constraint false.
#include "flatzinc/Checker.h"

#include <algorithm>
#include <set>
#include <unordered_map>

#include "flatzinc/sets.h"

namespace fzn {
namespace {

__extension__ using Wide = __int128;
using Numbers = std::vector<std::int64_t>;
using Kind = Argument::Kind;

// The arguments of a constraint, as numbers.
class Given {
 public:
  Given(const Model& model, std::span<const Argument> arguments, std::span<const std::int64_t> values)
      : fModel(model), fArguments(arguments), fValues(values) {}

  std::int64_t Get(unsigned argument) const {
    const Argument& given = fArguments[argument];
    return given.fKind == Kind::Variable ? fValues[static_cast<std::size_t>(given.fNumber)] : given.fNumber;
  }
  std::size_t GetSize(unsigned argument) const { return fArguments[argument].fCount; }
  std::int64_t Get(unsigned argument, std::size_t place) const {
    const Term& term = fModel.GetTerms(fArguments[argument])[place];
    return term.fIsVariable ? fValues[static_cast<std::size_t>(term.fNumber)] : term.fNumber;
  }
  // What the place, counted from `first`, holds.
  std::optional<std::int64_t> Find(unsigned argument, std::int64_t place, std::int64_t first) const {
    const Wide index = static_cast<Wide>(place) - first;
    return index < 0 || index >= static_cast<Wide>(GetSize(argument))
               ? std::nullopt
               : std::optional(Get(argument, static_cast<std::size_t>(index)));
  }
  Numbers GetAll(unsigned argument) const {
    Numbers numbers(GetSize(argument));
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      numbers[i] = Get(argument, i);
    }
    return numbers;
  }
  const Set& GetSet(unsigned argument) const {
    return fModel.fSets[static_cast<std::size_t>(fArguments[argument].fNumber)];
  }

 private:
  const Model& fModel;
  std::span<const Argument> fArguments;
  std::span<const std::int64_t> fValues;
};

}  // namespace

// A kind of constraint: a letter per argument (i an integer, b a truth value, a and B arrays of them, s a set), and its
// meaning.
struct CheckerRow {
  std::string_view fName;
  std::string_view fArguments;
  bool (*fHolds)(const Given& c);
};

namespace {

// ---- Arithmetic

// Products of 64-bit numbers may have 127 bits, so their halves are added apart. What 128 bits do not hold is cut off,
// far beyond whatever a sum is compared with.
Wide SumProducts(const Given& c) {
  constexpr unsigned kHalf = 64;
  Wide high = 0;
  Wide low = 0;
  for (std::size_t i = 0; i < c.GetSize(0); ++i) {
    const Wide product = static_cast<Wide>(c.Get(0, i)) * c.Get(1, i);
    high += product >> kHalf;
    low += static_cast<std::uint64_t>(product);
  }
  high += low >> kHalf;
  constexpr Wide kMost = static_cast<Wide>(1) << (kHalf - 2);
  return std::clamp(high, -kMost, kMost) * (static_cast<Wide>(1) << kHalf) + static_cast<std::uint64_t>(low);
}

// Arrays that go together.
bool HaveOneSize(const Given& c, std::initializer_list<unsigned> arguments) {
  return std::ranges::all_of(arguments, [&](unsigned a) { return c.GetSize(a) == c.GetSize(*arguments.begin()); });
}

template <class Relation>
bool RelatesSum(const Given& c, Relation relation) {
  return HaveOneSize(c, {0, 1}) && relation(SumProducts(c), static_cast<Wide>(c.Get(2)));
}

bool IsQuotient(const Given& c) {
  return c.Get(1) != 0 && static_cast<Wide>(c.Get(0)) / c.Get(1) == c.Get(2);
}

bool IsRemainder(const Given& c) {
  return c.Get(1) != 0 && static_cast<Wide>(c.Get(0)) % c.Get(1) == c.Get(2);
}

bool IsPower(const Given& c) {
  const std::int64_t base = c.Get(0);
  const std::int64_t exponent = c.Get(1);
  const std::int64_t result = c.Get(2);
  if (base >= -1 && base <= 1) {
    const bool isEven = exponent % 2 == 0;
    return base == 0 ? exponent >= 0 && result == (exponent == 0 ? 1 : 0) : result == (isEven ? 1 : base);
  }
  if (exponent < 0) {
    return result == 0;
  }
  // Ends after 64 steps: the base is at least 2 in size.
  constexpr Wide sLimit = static_cast<Wide>(1) << 63U;
  Wide power = 1;
  for (std::int64_t i = 0; i < exponent && power <= sLimit && power >= -sLimit; ++i) {
    power *= base;
  }
  return power == result;
}

bool IsElement(const Given& c) {
  return c.Find(1, c.Get(0), 1) == c.Get(2);
}

template <class Better>
bool IsExtreme(const Given& c, Better better) {
  const Numbers numbers = c.GetAll(1);
  return !numbers.empty() && *std::ranges::min_element(numbers, better) == c.Get(0);
}

// ---- Truth values

bool HasMember(const Given& c, unsigned argument, std::int64_t number) {
  for (std::size_t i = 0; i < c.GetSize(argument); ++i) {
    if (c.Get(argument, i) == number) {
      return true;
    }
  }
  return false;
}

bool AreAll(const Given& c) {
  return !HasMember(c, 0, 0);
}

bool IsAny(const Given& c) {
  return HasMember(c, 0, 1);
}

bool IsClause(const Given& c) {
  return HasMember(c, 0, 1) || HasMember(c, 1, 0);
}

bool IsOdd(const Given& c) {
  return std::ranges::count(c.GetAll(0), 1) % 2 == 1;
}

// ---- Values of arrays

std::int64_t CountMembers(const Given& c, unsigned argument, std::int64_t number) {
  std::int64_t count = 0;
  for (std::size_t i = 0; i < c.GetSize(argument); ++i) {
    count += c.Get(argument, i) == number ? 1 : 0;
  }
  return count;
}

std::int64_t CountDistinct(const Given& c, unsigned argument) {
  const Numbers numbers = c.GetAll(argument);
  return static_cast<std::int64_t>(std::set(numbers.begin(), numbers.end()).size());
}

bool AreAllDifferent(const Given& c) {
  return CountDistinct(c, 0) == static_cast<std::int64_t>(c.GetSize(0));
}

bool AreAllEqual(const Given& c) {
  return CountDistinct(c, 0) <= 1;
}

bool IsRowOfTable(const Given& c) {
  const Numbers row = c.GetAll(0);
  const Numbers table = c.GetAll(1);
  for (std::size_t at = 0; !row.empty() && at + row.size() <= table.size(); at += row.size()) {
    if (std::equal(row.begin(), row.end(), table.begin() + static_cast<std::ptrdiff_t>(at))) {
      return true;
    }
  }
  return row.empty();
}

bool AreInCover(const Given& c) {
  for (const std::int64_t number : c.GetAll(0)) {
    if (!HasMember(c, 1, number)) {
      return false;
    }
  }
  return true;
}

bool AreCounts(const Given& c) {
  for (std::size_t i = 0; i < c.GetSize(1); ++i) {
    if (CountMembers(c, 0, c.Get(1, i)) != c.Get(2, i)) {
      return false;
    }
  }
  return true;
}

bool IsCardinality(const Given& c) {
  return HaveOneSize(c, {1, 2}) && AreCounts(c) && (c.Get(3) == 0 || AreInCover(c));
}

bool IsBoundedCardinality(const Given& c) {
  if (!HaveOneSize(c, {1, 2, 3})) {
    return false;
  }
  for (std::size_t i = 0; i < c.GetSize(1); ++i) {
    const std::int64_t count = CountMembers(c, 0, c.Get(1, i));
    if (count < c.Get(2, i) || count > c.Get(3, i)) {
      return false;
    }
  }
  return c.Get(4) == 0 || AreInCover(c);
}

bool IsAmong(const Given& c) {
  const Numbers numbers = c.GetAll(1);
  return c.Get(0) == std::ranges::count_if(numbers, [&](std::int64_t n) { return Contains(c.GetSet(2), n); });
}

bool IsSorted(const Given& c) {
  Numbers numbers = c.GetAll(0);
  std::ranges::sort(numbers);
  return numbers == c.GetAll(1);
}

bool AreIncreasing(const Given& c) {
  return std::ranges::is_sorted(c.GetAll(0));
}

bool AreDecreasing(const Given& c) {
  return std::ranges::is_sorted(c.GetAll(0), std::greater());
}

bool IsDistribution(const Given& c) {
  if (!HaveOneSize(c, {0, 1})) {
    return false;
  }
  for (std::size_t i = 0; i < c.GetSize(0); ++i) {
    if (CountMembers(c, 2, c.Get(1, i)) != c.Get(0, i)) {
      return false;
    }
  }
  return true;
}

bool IsBefore(const Given& c, unsigned left, unsigned right) {
  return std::ranges::lexicographical_compare(c.GetAll(left), c.GetAll(right));
}

// The first place of the second number is behind one of the first.
bool Precedes(const Given& c) {
  for (std::size_t i = 0; i < c.GetSize(2) && c.Get(2, i) != c.Get(1); ++i) {
    if (c.Get(2, i) == c.Get(0)) {
      return true;
    }
  }
  return !HasMember(c, 2, c.Get(1));
}

template <class Better>
bool IsFirstExtreme(const Given& c, Better better) {
  const Numbers numbers = c.GetAll(0);
  const auto place = std::ranges::min_element(numbers, better) - numbers.begin();
  return !numbers.empty() && static_cast<Wide>(c.Get(1)) - c.Get(2) == place;
}

// ---- Graphs and automata

bool IsAccepted(const Given& c) {
  const std::int64_t states = c.Get(1);
  const std::int64_t symbols = c.Get(2);
  std::int64_t state = c.Get(4);
  for (std::size_t i = 0; i < c.GetSize(0); ++i) {
    const std::int64_t symbol = c.Get(0, i);
    if (state < 1 || state > states || symbol < 1 || symbol > symbols) {
      return false;
    }
    const Wide place = static_cast<Wide>(state - 1) * symbols + symbol;
    const Wide size = static_cast<Wide>(c.GetSize(3));
    state = place <= size ? c.Get(3, static_cast<std::size_t>(place - 1)) : 0;
  }
  return state >= 1 && state <= states && Contains(c.GetSet(5), state);
}

// Whether the successors, counted from the second argument, are a permutation; then the length of its longest cycle and
// the number of those that are their own successors.
struct Cycles {
  bool fIsPermutation = true;
  std::size_t fLongest = 0;
  std::size_t fFixed = 0;
};

Cycles FindCycles(const Given& c) {
  Cycles cycles;
  const std::size_t size = c.GetSize(0);
  std::vector<std::size_t> next(size);
  std::vector<bool> isReached(size);
  for (std::size_t i = 0; i < size; ++i) {
    const Wide place = static_cast<Wide>(c.Get(0, i)) - c.Get(1);
    if (place < 0 || place >= static_cast<Wide>(size) || isReached[static_cast<std::size_t>(place)]) {
      cycles.fIsPermutation = false;
      return cycles;
    }
    next[i] = static_cast<std::size_t>(place);
    isReached[next[i]] = true;
    cycles.fFixed += next[i] == i ? 1U : 0U;
  }
  for (std::size_t i = 0; i < size; ++i) {
    std::size_t length = 0;
    for (std::size_t at = i; isReached[at]; at = next[at]) {
      isReached[at] = false;
      ++length;
    }
    cycles.fLongest = std::max(cycles.fLongest, length);
  }
  return cycles;
}

// A node alone is one.
bool IsCircuit(const Given& c) {
  const Cycles cycles = FindCycles(c);
  return cycles.fIsPermutation && cycles.fLongest == c.GetSize(0);
}

bool IsSubcircuit(const Given& c) {
  const Cycles cycles = FindCycles(c);
  return cycles.fIsPermutation && (cycles.fFixed == c.GetSize(0) || cycles.fFixed + cycles.fLongest == c.GetSize(0));
}

bool LeadsBack(const Given& c, unsigned from, unsigned to) {
  for (std::size_t i = 0; i < c.GetSize(from); ++i) {
    const std::optional<std::int64_t> back = c.Find(to, c.Get(from, i), c.Get(to + 1));
    if (!back || static_cast<Wide>(*back) - c.Get(from + 1) != static_cast<Wide>(i)) {
      return false;
    }
  }
  return true;
}

bool AreInverse(const Given& c) {
  return LeadsBack(c, 0, 2) && LeadsBack(c, 2, 0);
}

// ---- Resources

// Lengths and demands are no such then.
bool HasNegative(const Given& c, unsigned argument) {
  return std::ranges::any_of(c.GetAll(argument), [](std::int64_t number) { return number < 0; });
}

bool IsCumulative(const Given& c) {
  if (!HaveOneSize(c, {0, 1, 2}) || (c.GetSize(0) > 0 && c.Get(3) < 0) || HasNegative(c, 1) || HasNegative(c, 2)) {
    return false;
  }
  // The most is in use where some task begins.
  for (std::size_t at = 0; at < c.GetSize(0); ++at) {
    Wide used = 0;
    for (std::size_t i = 0; i < c.GetSize(0); ++i) {
      const Wide end = static_cast<Wide>(c.Get(0, i)) + c.Get(1, i);
      used += c.Get(0, i) <= c.Get(0, at) && c.Get(0, at) < end ? c.Get(2, i) : 0;
    }
    if (used > c.Get(3)) {
      return false;
    }
  }
  return true;
}

bool IsClear(const Given& c, unsigned start, unsigned length, std::size_t i, std::size_t j) {
  return static_cast<Wide>(c.Get(start, i)) + c.Get(length, i) <= c.Get(start, j) ||
         static_cast<Wide>(c.Get(start, j)) + c.Get(length, j) <= c.Get(start, i);
}

bool AreDisjunctive(const Given& c, bool isStrict) {
  if (!HaveOneSize(c, {0, 1}) || HasNegative(c, 1)) {
    return false;
  }
  for (std::size_t i = 0; i < c.GetSize(0); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const bool isEmpty = c.Get(1, i) == 0 || c.Get(1, j) == 0;
      if ((isStrict || !isEmpty) && !IsClear(c, 0, 1, i, j)) {
        return false;
      }
    }
  }
  return true;
}

// Where `takesNoRoom`, a rectangle without width or height may lie anywhere.
bool AreApart(const Given& c, bool takesNoRoom) {
  if (!HaveOneSize(c, {0, 1, 2, 3})) {
    return false;
  }
  for (std::size_t i = 0; i < c.GetSize(0); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const bool isEmpty = c.Get(2, i) == 0 || c.Get(2, j) == 0 || c.Get(3, i) == 0 || c.Get(3, j) == 0;
      if (!(takesNoRoom && isEmpty) && !IsClear(c, 0, 2, i, j) && !IsClear(c, 1, 3, i, j)) {
        return false;
      }
    }
  }
  return true;
}

Wide WeighBin(const Given& c, unsigned bins, std::int64_t bin) {
  Wide weight = 0;
  for (std::size_t i = 0; i < c.GetSize(bins); ++i) {
    weight += c.Get(bins, i) == bin ? c.Get(bins + 1, i) : 0;
  }
  return weight;
}

bool IsPacking(const Given& c) {
  const Numbers bins = c.GetAll(1);
  return HaveOneSize(c, {1, 2}) &&
         std::ranges::all_of(bins, [&](std::int64_t b) { return WeighBin(c, 1, b) <= c.Get(0); });
}

template <class Relation>
bool RelatesLoads(const Given& c, Relation relation) {
  if (!HaveOneSize(c, {2, 3})) {
    return false;
  }
  for (const std::int64_t bin : c.GetAll(2)) {
    if (!c.Find(0, bin, c.Get(1))) {
      return false;
    }
  }
  for (std::size_t i = 0; i < c.GetSize(0); ++i) {
    const auto bin = static_cast<std::int64_t>(static_cast<Wide>(c.Get(1)) + static_cast<Wide>(i));
    if (!relation(WeighBin(c, 2, bin), static_cast<Wide>(c.Get(0, i)))) {
      return false;
    }
  }
  return true;
}

// ---- The table

constexpr CheckerRow sRows[] = {
    {"array_bool_and", "Bb", [](const Given& c) { return AreAll(c) == (c.Get(1) != 0); }},
    {"array_bool_element", "iBb", IsElement},
    {"array_bool_or", "Bb", [](const Given& c) { return IsAny(c) == (c.Get(1) != 0); }},
    {"array_bool_xor", "B", IsOdd},
    {"array_int_element", "iai", IsElement},
    {"array_int_maximum", "ia", [](const Given& c) { return IsExtreme(c, std::greater()); }},
    {"array_int_minimum", "ia", [](const Given& c) { return IsExtreme(c, std::less()); }},
    {"array_var_bool_element", "iBb", IsElement},
    {"array_var_int_element", "iai", IsElement},
    {"bool2int", "bi", [](const Given& c) { return c.Get(0) == c.Get(1); }},
    {"bool_and", "bbb", [](const Given& c) { return (c.Get(0) & c.Get(1)) == c.Get(2); }},
    {"bool_clause", "BB", IsClause},
    {"bool_eq", "bb", [](const Given& c) { return c.Get(0) == c.Get(1); }},
    {"bool_le", "bb", [](const Given& c) { return c.Get(0) <= c.Get(1); }},
    {"bool_lin_eq", "aBi", [](const Given& c) { return RelatesSum(c, std::equal_to()); }},
    {"bool_lin_le", "aBi", [](const Given& c) { return RelatesSum(c, std::less_equal()); }},
    {"bool_lt", "bb", [](const Given& c) { return c.Get(0) < c.Get(1); }},
    {"bool_not", "bb", [](const Given& c) { return c.Get(0) != c.Get(1); }},
    {"bool_or", "bbb", [](const Given& c) { return (c.Get(0) | c.Get(1)) == c.Get(2); }},
    {"bool_xor", "bb", [](const Given& c) { return c.Get(0) != c.Get(1); }},
    {"bool_xor", "bbb", [](const Given& c) { return (c.Get(0) ^ c.Get(1)) == c.Get(2); }},
    {"fzn_all_different_int", "a", AreAllDifferent},
    {"fzn_all_equal_int", "a", AreAllEqual},
    {"fzn_among", "ias", IsAmong},
    {"fzn_at_least_int", "iai", [](const Given& c) { return CountMembers(c, 1, c.Get(2)) >= c.Get(0); }},
    {"fzn_at_most_int", "iai", [](const Given& c) { return CountMembers(c, 1, c.Get(2)) <= c.Get(0); }},
    {"fzn_bin_packing", "iaa", IsPacking},
    {"fzn_count_eq", "aii", [](const Given& c) { return CountMembers(c, 0, c.Get(1)) == c.Get(2); }},
    {"fzn_cumulative", "aaai", IsCumulative},
    {"fzn_decreasing_bool", "B", AreDecreasing},
    {"fzn_decreasing_int", "a", AreDecreasing},
    {"fzn_diffn", "aaaa", [](const Given& c) { return AreApart(c, false); }},
    {"fzn_diffn_nonstrict", "aaaa", [](const Given& c) { return AreApart(c, true); }},
    {"fzn_disjunctive", "aa", [](const Given& c) { return AreDisjunctive(c, false); }},
    {"fzn_disjunctive_strict", "aa", [](const Given& c) { return AreDisjunctive(c, true); }},
    {"fzn_distribute", "aaa", IsDistribution},
    {"fzn_exactly_int", "iai", [](const Given& c) { return CountMembers(c, 1, c.Get(2)) == c.Get(0); }},
    {"fzn_increasing_bool", "B", AreIncreasing},
    {"fzn_increasing_int", "a", AreIncreasing},
    {"fzn_lex_less_bool", "BB", [](const Given& c) { return IsBefore(c, 0, 1); }},
    {"fzn_lex_less_int", "aa", [](const Given& c) { return IsBefore(c, 0, 1); }},
    {"fzn_lex_lesseq_bool", "BB", [](const Given& c) { return !IsBefore(c, 1, 0); }},
    {"fzn_lex_lesseq_int", "aa", [](const Given& c) { return !IsBefore(c, 1, 0); }},
    {"fzn_member_int", "ai", [](const Given& c) { return HasMember(c, 0, c.Get(1)); }},
    {"fzn_nvalue", "ia", [](const Given& c) { return CountDistinct(c, 1) == c.Get(0); }},
    {"fzn_sort", "aa", IsSorted},
    {"fzn_value_precede_int", "iia", Precedes},
    {"int_abs", "ii",
     [](const Given& c) { return std::max(static_cast<Wide>(c.Get(0)), -static_cast<Wide>(c.Get(0))) == c.Get(1); }},
    {"int_div", "iii", IsQuotient},
    {"int_eq", "ii", [](const Given& c) { return c.Get(0) == c.Get(1); }},
    {"int_le", "ii", [](const Given& c) { return c.Get(0) <= c.Get(1); }},
    {"int_lin_eq", "aai", [](const Given& c) { return RelatesSum(c, std::equal_to()); }},
    {"int_lin_le", "aai", [](const Given& c) { return RelatesSum(c, std::less_equal()); }},
    {"int_lin_ne", "aai", [](const Given& c) { return RelatesSum(c, std::not_equal_to()); }},
    {"int_lt", "ii", [](const Given& c) { return c.Get(0) < c.Get(1); }},
    {"int_max", "iii", [](const Given& c) { return std::max(c.Get(0), c.Get(1)) == c.Get(2); }},
    {"int_min", "iii", [](const Given& c) { return std::min(c.Get(0), c.Get(1)) == c.Get(2); }},
    {"int_mod", "iii", IsRemainder},
    {"int_ne", "ii", [](const Given& c) { return c.Get(0) != c.Get(1); }},
    {"int_plus", "iii", [](const Given& c) { return static_cast<Wide>(c.Get(0)) + c.Get(1) == c.Get(2); }},
    {"int_pow", "iii", IsPower},
    {"int_pow_fixed", "iii", IsPower},
    {"int_times", "iii", [](const Given& c) { return static_cast<Wide>(c.Get(0)) * c.Get(1) == c.Get(2); }},
    {"set_in", "is", [](const Given& c) { return Contains(c.GetSet(1), c.Get(0)); }},
    {"tarn_bin_packing_capa", "aiaa", [](const Given& c) { return RelatesLoads(c, std::less_equal()); }},
    {"tarn_bin_packing_load", "aiaa", [](const Given& c) { return RelatesLoads(c, std::equal_to()); }},
    {"tarn_circuit", "ai", IsCircuit},
    {"tarn_global_cardinality", "aaai", IsCardinality},
    {"tarn_global_cardinality_low_up", "aaaai", IsBoundedCardinality},
    {"tarn_inverse", "aiai", AreInverse},
    {"tarn_maximum_arg", "aii", [](const Given& c) { return IsFirstExtreme(c, std::greater()); }},
    {"tarn_minimum_arg", "aii", [](const Given& c) { return IsFirstExtreme(c, std::less()); }},
    {"tarn_regular", "aiiais", IsAccepted},
    {"tarn_subcircuit", "ai", IsSubcircuit},
    {"tarn_table_int", "aa", IsRowOfTable},
};

const CheckerRow* FindRow(std::string_view name, std::size_t arguments) {
  static const auto sByName = [] {
    std::unordered_multimap<std::string_view, const CheckerRow*> rows;
    for (const CheckerRow& row : sRows) {
      rows.emplace(row.fName, &row);
    }
    return rows;
  }();
  const auto [first, last] = sByName.equal_range(name);
  const auto found =
      std::find_if(first, last, [=](const auto& row) { return row.second->fArguments.size() == arguments; });
  return found == last ? nullptr : found->second;
}

bool IsOfKind(const Argument& argument, char letter) {
  switch (argument.fKind) {
    case Kind::Truth:
    case Kind::Integer:
    case Kind::Variable:
      return letter == (argument.fIsTruth ? 'b' : 'i');
    case Kind::Array:
      return argument.fCount == 0 ? letter == 'a' || letter == 'B' : letter == (argument.fIsTruth ? 'B' : 'a');
    case Kind::OneSet:
      return letter == 's';
    default:
      return false;
  }
}

const char* DescribeKind(char letter) {
  switch (letter) {
    case 'i':
      return "an integer";
    case 'b':
      return "a truth value";
    case 'a':
      return "an array of integers";
    case 'B':
      return "an array of truth values";
    default:
      return "a set";
  }
}

}  // namespace

Checker::Checker(const Model& model, ErrorList& errors) : fModel(model) {
  fChecks.reserve(model.fConstraints.size());
  for (const Constraint& constraint : model.fConstraints) {
    const std::optional<Check> check = FindCheck(model.GetName(constraint), constraint.fCount);
    if (check) {
      CheckArguments(constraint, *check, errors);
    } else {
      errors.AddUnsupported(constraint.fLine, model.GetName(constraint), constraint.fCount);
    }
    fChecks.push_back(check.value_or(Check{}));
  }
}

std::optional<Checker::Check> Checker::FindCheck(std::string_view name, std::size_t arguments) {
  if (const CheckerRow* row = FindRow(name, arguments)) {
    return Check{row, Use::Plain};
  }
  for (const auto& [suffix, use] : {std::pair("_reif", Use::Reified), std::pair("_imp", Use::Implied)}) {
    if (name.ends_with(suffix) && arguments > 0) {
      if (const CheckerRow* row = FindRow(name.substr(0, name.rfind('_')), arguments - 1)) {
        return Check{row, use};
      }
    }
  }
  return std::nullopt;
}

void Checker::CheckArguments(const Constraint& constraint, const Check& check, ErrorList& errors) const {
  const std::span<const Argument> arguments = fModel.GetArguments(constraint);
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const char letter = i < check.fRow->fArguments.size() ? check.fRow->fArguments[i] : 'b';
    if (!IsOfKind(arguments[i], letter)) {
      errors.Add(constraint.fLine, "expected " + std::string(DescribeKind(letter)) + " as argument " +
                                       std::to_string(i + 1) + " of " + std::string(fModel.GetName(constraint)));
    }
  }
}

bool Checker::Holds(std::size_t constraint, std::span<const std::int64_t> values) const {
  const std::span<const Argument> arguments = fModel.GetArguments(fModel.fConstraints[constraint]);
  const Given given(fModel, arguments, values);
  const Check& check = fChecks[constraint];
  if (check.fUse == Use::Plain) {
    return check.fRow->fHolds(given);
  }
  const bool isWanted = given.Get(static_cast<unsigned>(arguments.size() - 1)) != 0;
  if (check.fUse == Use::Implied && !isWanted) {
    return true;
  }
  return check.fRow->fHolds(given) == isWanted;
}

std::optional<std::string> Checker::FindViolation(std::span<const std::int64_t> values) const {
  for (std::size_t i = 0; i < fModel.fVariables.size(); ++i) {
    const Variable& variable = fModel.fVariables[i];
    if (variable.fIsBounded && !Contains(variable.fDomain, values[i])) {
      return "the domain of '" + variable.fName + "', line " + std::to_string(variable.fLine);
    }
  }
  for (std::size_t i = 0; i < fChecks.size(); ++i) {
    if (!Holds(i, values)) {
      const Constraint& constraint = fModel.fConstraints[i];
      return std::string(fModel.GetName(constraint)) + " of line " + std::to_string(constraint.fLine);
    }
  }
  return std::nullopt;
}

}  // namespace fzn
