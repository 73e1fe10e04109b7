// The standard builtins. A name that ends in _reif or _imp states the same with a truth value as its last argument.
#include <algorithm>
#include <cstdlib>
#include <limits>

#include "flatzinc/Posting.h"
#include "flatzinc/linear.h"
#include "flatzinc/sets.h"

namespace fzn {
namespace {

using Relation = VokTarnRelation;
using Function = VokTarnFunction;

Statement GetStatement(const Posting& p) {
  const std::string_view name = p.GetName();
  if (name.ends_with("_reif")) {
    return {VokTarnMode::Reified, p.GetTerm(p.Size() - 1)};
  }
  if (name.ends_with("_imp")) {
    return {VokTarnMode::HalfReified, p.GetTerm(p.Size() - 1)};
  }
  return {};
}

// ---- Order and equality

template <Relation relation, int gap>
void PostCompare(const Posting& p) {
  PostLinear(p, relation, {{{1, p.GetTerm(0)}, {-1, p.GetTerm(1)}}}, -gap, GetStatement(p));
}

template <Relation relation>
void PostLinearRow(const Posting& p) {
  const std::vector<std::int64_t> factors = p.GetConstants(0);
  const std::span<const Term> terms = p.GetTerms(1);
  if (factors.size() != terms.size()) {
    throw PostingError("arguments 1 and 2 should have the same length");
  }
  std::vector<LinearTerm> sum;
  for (std::size_t i = 0; i < terms.size(); ++i) {
    sum.push_back({factors[i], terms[i]});
  }
  sum.push_back({-1, p.GetTerm(2)});
  PostLinear(p, relation, sum, 0, GetStatement(p));
}

void PostMember(const Posting& p) {
  PostMembership(p, p.GetTerm(0), p.GetSet(1), GetStatement(p));
}

// ---- Truth values

void PostNot(const Posting& p) {
  PostLinear(p, Relation::Equal, {{{1, p.GetTerm(0)}, {1, p.GetTerm(1)}}}, 1);
}

// An odd number of the terms is 1.
void PostParity(const Posting& p, std::span<const Term> terms) {
  VokLong missing = 1;
  std::vector<Term> open;
  for (const Term& term : terms) {
    if (p.IsFixed(term)) {
      missing ^= static_cast<VokLong>(p.GetLower(term) & 1);
    } else {
      open.push_back(term);
    }
  }
  if (open.empty()) {
    if (missing != 0) {
      p.Fail();
    }
  } else if (open.size() == 1) {
    p.Fix(open[0], missing);
  } else {
    p.Post("VokTarnParityConstraint", p.GetValues(open), {{missing}});
  }
}

void PostXor(const Posting& p) {
  if (p.Size() == 2) {
    PostParity(p, {{p.GetTerm(0), p.GetTerm(1)}});
  } else {
    PostParity(p, {{p.GetTerm(0), p.GetTerm(1), p.GetTerm(2), Term{false, 1}}});
  }
}

void PostXorOfArray(const Posting& p) {
  PostParity(p, p.GetTerms(0));
}

void Append(std::vector<Literal>& literals, std::span<const Term> terms, bool aim) {
  for (const Term& term : terms) {
    literals.push_back({term, aim});
  }
}

// r <-> some p; r <-> all p: not r <-> some not p.
template <bool isAnd>
void PostConnective(const Posting& p) {
  PostDisjunction(p, {{{p.GetTerm(0), !isAnd}, {p.GetTerm(1), !isAnd}}}, {p.GetTerm(2), !isAnd});
}

template <bool isAnd>
void PostConnectiveOfArray(const Posting& p) {
  std::vector<Literal> literals;
  Append(literals, p.GetTerms(0), !isAnd);
  PostDisjunction(p, literals, {p.GetTerm(1), !isAnd});
}

void PostClauseRow(const Posting& p) {
  std::vector<Literal> literals;
  Append(literals, p.GetTerms(0), true);
  Append(literals, p.GetTerms(1), false);
  if (p.Size() == 2) {
    PostClause(p, literals);
  } else if (p.GetName().ends_with("_imp")) {
    literals.push_back({p.GetTerm(2), false});
    PostClause(p, literals);
  } else {
    PostDisjunction(p, literals, {p.GetTerm(2), true});
  }
}

// q or not p.
void PostImplies(const Posting& p) {
  PostDisjunction(p, {{{p.GetTerm(0), false}, {p.GetTerm(1), true}}},
                  {p.Size() == 3 ? p.GetTerm(2) : Term{false, 1}, true});
}

// Not p and q: the opposite of p or not q.
void PostBoolLess(const Posting& p) {
  PostDisjunction(p, {{{p.GetTerm(0), true}, {p.GetTerm(1), false}}},
                  {p.Size() == 3 ? p.GetTerm(2) : Term{false, 1}, false});
}

// ---- Arithmetic

void PostPlus(const Posting& p) {
  PostLinear(p, Relation::Equal, {{{1, p.GetTerm(0)}, {1, p.GetTerm(1)}, {-1, p.GetTerm(2)}}}, 0);
}

void PostFunction(const Posting& p, Function function, std::span<const Term> terms) {
  p.Post("VokTarnArithmeticConstraint", p.GetValues(terms), {{static_cast<VokLong>(function)}});
}

void PostTimes(const Posting& p) {
  const Term x = p.GetTerm(0);
  const Term y = p.GetTerm(1);
  const Term z = p.GetTerm(2);
  if (p.IsFixed(x) || p.IsFixed(y)) {
    const Term& open = p.IsFixed(x) ? y : x;
    PostLinear(p, Relation::Equal, {{{p.GetLower(p.IsFixed(x) ? x : y), open}, {-1, z}}}, 0);
  } else if (p.AreSame(x, y)) {
    PostFunction(p, Function::Power, {{x, Term{false, 2}, z}});
  } else {
    PostFunction(p, Function::Product, {{x, y, z}});
  }
}

template <Function function>
void PostFunctionRow(const Posting& p) {
  PostFunction(p, function, {{p.GetTerm(0), p.GetTerm(1), p.GetTerm(2)}});
}

void PostMagnitude(const Posting& p) {
  const Term x = p.GetTerm(0);
  const Term y = p.GetTerm(1);
  p.Restrict(y, 0, std::numeric_limits<std::int64_t>::max());
  if (p.GetLower(x) >= 0) {
    PostLinear(p, Relation::Equal, {{{1, x}, {-1, y}}}, 0);
  } else if (p.GetUpper(x) <= 0) {
    PostLinear(p, Relation::Equal, {{{1, x}, {1, y}}}, 0);
  } else {
    PostFunction(p, Function::Magnitude, {{x, y}});
  }
}

void PostExtremum(const Posting& p, const Term& result, std::span<const Term> terms, bool isGreatest) {
  if (terms.empty()) {
    p.Fail();
    return;
  }
  std::vector<VokTarnValueId> ids = {p.GetValue(result)};
  for (const VokTarnValueId id : p.GetValues(terms)) {
    if (std::find(ids.begin() + 1, ids.end(), id) == ids.end()) {
      ids.push_back(id);
    }
  }
  p.Post("VokTarnExtremumConstraint", ids, {{isGreatest ? 1 : 0}});
}

template <bool isGreatest>
void PostExtremumRow(const Posting& p) {
  PostExtremum(p, p.GetTerm(2), {{p.GetTerm(0), p.GetTerm(1)}}, isGreatest);
}

template <bool isGreatest>
void PostExtremumOfArray(const Posting& p) {
  PostExtremum(p, p.GetTerm(0), p.GetTerms(1), isGreatest);
}

// ---- Elements

// A constant that no value of the network is.
constexpr VokLong kNever = std::numeric_limits<VokLong>::min();

void PostElement(const Posting& p) {
  const Term index = p.GetTerm(0);
  const std::span<const Term> elements = p.GetTerms(1);
  const Term result = p.GetTerm(2);
  const auto count = static_cast<std::int64_t>(elements.size());
  p.Restrict(index, 1, count);
  if (p.IsFixed(index)) {
    const std::int64_t place = p.GetLower(index);
    if (place >= 1 && place <= count) {
      const Term& element = elements[static_cast<std::size_t>(place - 1)];
      PostLinear(p, Relation::Equal, {{{1, result}, {-1, element}}}, 0);
    }
    return;
  }
  // Places whose element cannot be the result are left out at once: only those up to the last place that stays count.
  std::vector<std::int64_t> places;
  bool isConstant = true;
  for (std::int64_t place = 1; place <= count; ++place) {
    const Term& element = elements[static_cast<std::size_t>(place - 1)];
    const bool canBe = p.GetLower(element) <= p.GetUpper(result) && p.GetUpper(element) >= p.GetLower(result);
    if (canBe && p.IsPossible(index, place)) {
      places.push_back(place);
      isConstant = isConstant && p.IsFixed(element);
    }
  }
  if (isConstant && p.IsFixed(result)) {
    std::erase_if(places, [&](std::int64_t place) {
      return p.GetLower(elements[static_cast<std::size_t>(place - 1)]) != p.GetLower(result);
    });
    p.Restrict(index, MakeSet(places));
    return;
  }
  p.Restrict(index, MakeSet(places));
  if (isConstant) {
    std::vector<VokLong> table(elements.size(), kNever);
    for (const std::int64_t place : places) {
      table[static_cast<std::size_t>(place - 1)] =
          ToConstant(p.GetLower(elements[static_cast<std::size_t>(place - 1)]));
    }
    p.Post("VokTarnConstantElementConstraint", {{p.GetValue(result), p.GetValue(index)}}, table);
    return;
  }
  // A place that the index cannot be holds the result itself: no constant has to fit.
  std::vector<VokTarnValueId> ids(elements.size() + 2, p.GetValue(result));
  ids[1] = p.GetValue(index);
  for (const std::int64_t place : places) {
    ids[static_cast<std::size_t>(place + 1)] = p.GetValue(elements[static_cast<std::size_t>(place - 1)]);
  }
  p.Post("VokTarnElementConstraint", ids);
}

// What makes two terms one is not here: see Builder::UnifyVariables.
constexpr PostingRow kRows[] = {
    {"int_eq_reif", 3, PostCompare<Relation::Equal, 0>},
    {"int_eq_imp", 3, PostCompare<Relation::Equal, 0>},
    {"int_ne", 2, PostCompare<Relation::Different, 0>},
    {"int_ne_reif", 3, PostCompare<Relation::Different, 0>},
    {"int_ne_imp", 3, PostCompare<Relation::Different, 0>},
    {"int_le", 2, PostCompare<Relation::AtMost, 0>},
    {"int_le_reif", 3, PostCompare<Relation::AtMost, 0>},
    {"int_le_imp", 3, PostCompare<Relation::AtMost, 0>},
    {"int_lt", 2, PostCompare<Relation::AtMost, 1>},
    {"int_lt_reif", 3, PostCompare<Relation::AtMost, 1>},
    {"int_lt_imp", 3, PostCompare<Relation::AtMost, 1>},
    {"int_lin_eq", 3, PostLinearRow<Relation::Equal>},
    {"int_lin_eq_reif", 4, PostLinearRow<Relation::Equal>},
    {"int_lin_eq_imp", 4, PostLinearRow<Relation::Equal>},
    {"int_lin_ne", 3, PostLinearRow<Relation::Different>},
    {"int_lin_ne_reif", 4, PostLinearRow<Relation::Different>},
    {"int_lin_ne_imp", 4, PostLinearRow<Relation::Different>},
    {"int_lin_le", 3, PostLinearRow<Relation::AtMost>},
    {"int_lin_le_reif", 4, PostLinearRow<Relation::AtMost>},
    {"int_lin_le_imp", 4, PostLinearRow<Relation::AtMost>},
    {"bool_lin_eq", 3, PostLinearRow<Relation::Equal>},
    {"bool_lin_le", 3, PostLinearRow<Relation::AtMost>},
    {"set_in", 2, PostMember},
    {"set_in_reif", 3, PostMember},
    {"set_in_imp", 3, PostMember},
    {"bool_eq_reif", 3, PostCompare<Relation::Equal, 0>},
    {"bool_eq_imp", 3, PostCompare<Relation::Equal, 0>},
    {"bool_not", 2, PostNot},
    {"bool_xor", 2, PostXor},
    {"bool_xor", 3, PostXor},
    {"bool_le", 2, PostImplies},
    {"bool_le_reif", 3, PostImplies},
    {"bool_lt", 2, PostBoolLess},
    {"bool_lt_reif", 3, PostBoolLess},
    {"bool_and", 3, PostConnective<true>},
    {"bool_or", 3, PostConnective<false>},
    {"array_bool_and", 2, PostConnectiveOfArray<true>},
    {"array_bool_or", 2, PostConnectiveOfArray<false>},
    {"array_bool_xor", 1, PostXorOfArray},
    {"bool_clause", 2, PostClauseRow},
    {"bool_clause_reif", 3, PostClauseRow},
    {"bool_clause_imp", 3, PostClauseRow},
    {"int_plus", 3, PostPlus},
    {"int_times", 3, PostTimes},
    {"int_div", 3, PostFunctionRow<Function::Quotient>},
    {"int_mod", 3, PostFunctionRow<Function::Remainder>},
    {"int_pow", 3, PostFunctionRow<Function::Power>},
    {"int_pow_fixed", 3, PostFunctionRow<Function::Power>},
    {"int_abs", 2, PostMagnitude},
    {"int_min", 3, PostExtremumRow<false>},
    {"int_max", 3, PostExtremumRow<true>},
    {"array_int_minimum", 2, PostExtremumOfArray<false>},
    {"array_int_maximum", 2, PostExtremumOfArray<true>},
    {"array_int_element", 3, PostElement},
    {"array_bool_element", 3, PostElement},
    {"array_var_int_element", 3, PostElement},
    {"array_var_bool_element", 3, PostElement},
};

}  // namespace

std::span<const PostingRow> GetBuiltinRows() {
  return kRows;
}

}  // namespace fzn
