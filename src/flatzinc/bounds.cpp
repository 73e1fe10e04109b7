#include "flatzinc/bounds.h"

#include "flatzinc/BoundsInference.h"
#include "flatzinc/sets.h"

namespace fzn {
namespace {

constexpr int kMostRounds = 100;

// The hulls are those of variables: finite ends have 64 bits.
Hull Multiply(const Hull& a, const Hull& b) {
  if (!a.IsFinite() || !b.IsFinite()) {
    return kEverything;
  }
  const Int128 corners[] = {a.fLower * b.fLower, a.fLower * b.fUpper, a.fUpper * b.fLower, a.fUpper * b.fUpper};
  return {Cut(*std::ranges::min_element(corners)), Cut(*std::ranges::max_element(corners))};
}

Int128 Magnitude(const Hull& a) {
  return std::max(a.fLower < 0 ? -a.fLower : a.fLower, a.fUpper < 0 ? -a.fUpper : a.fUpper);
}

// A missing or mistaken argument tells nothing: a term of its own that is everything.
constexpr Term kNoTerm = {false, std::numeric_limits<std::int64_t>::min()};

}  // namespace

const std::unordered_map<std::string_view, BoundsInference::Rule>& BoundsInference::GetArithmeticRules() {
  static const std::unordered_map<std::string_view, Rule> rules = {
      {"int_lin_eq", &BoundsInference::InferEquation},
      {"bool_lin_eq", &BoundsInference::InferEquation},
      {"int_lin_le", &BoundsInference::InferInequality},
      {"int_plus", &BoundsInference::InferSum},
      {"int_times", &BoundsInference::InferProduct},
      {"int_div", &BoundsInference::InferQuotient},
      {"int_mod", &BoundsInference::InferQuotient},
      {"int_pow", &BoundsInference::InferPower},
      {"int_pow_fixed", &BoundsInference::InferPower},
      {"int_abs", &BoundsInference::InferMagnitude},
      {"int_le", &BoundsInference::InferOrder},
      {"int_lt", &BoundsInference::InferOrder},
      {"int_min", &BoundsInference::InferExtremum},
      {"int_max", &BoundsInference::InferExtremum},
      {"array_int_minimum", &BoundsInference::InferExtremumOfArray},
      {"array_int_maximum", &BoundsInference::InferExtremumOfArray},
      {"array_int_element", &BoundsInference::InferElement},
      {"array_var_int_element", &BoundsInference::InferElement},
      {"set_in", &BoundsInference::InferMembership},
      {"int_eq", &BoundsInference::InferEquality},
      {"bool2int", &BoundsInference::InferEquality}};
  return rules;
}

Term BoundsInference::GetTerm(const Constraint& c, unsigned i) const {
  const std::span<const Argument> arguments = fModel.GetArguments(c);
  if (i >= arguments.size()) {
    return kNoTerm;
  }
  const Argument& argument = arguments[i];
  switch (argument.fKind) {
    case Argument::Kind::Truth:
    case Argument::Kind::Integer:
      return {false, argument.fNumber};
    case Argument::Kind::Variable:
      return {true, argument.fNumber};
    default:
      return kNoTerm;
  }
}

std::span<const Term> BoundsInference::GetTerms(const Constraint& c, unsigned i) const {
  const std::span<const Argument> arguments = fModel.GetArguments(c);
  return i < arguments.size() && arguments[i].fKind == Argument::Kind::Array ? fModel.GetTerms(arguments[i])
                                                                             : std::span<const Term>();
}

Hull BoundsInference::GetHull(const Term& term) const {
  if (!term.fIsVariable) {
    return term.fNumber == kNoTerm.fNumber ? kEverything : Hull{term.fNumber, term.fNumber};
  }
  const Set& domain = fDomains[Find(term)];
  if (domain.empty()) {
    return {0, 0};
  }
  const std::int64_t lower = domain.front().fLower;
  const std::int64_t upper = domain.back().fUpper;
  return {lower == -kUnbounded ? -kInfinite : Int128{lower}, upper == kUnbounded ? kInfinite : Int128{upper}};
}

Hull BoundsInference::Unite(std::span<const Term> terms) const {
  if (terms.empty()) {
    return kEverything;
  }
  Hull hull = {kInfinite, -kInfinite};
  for (const Term& term : terms) {
    const Hull other = GetHull(term);
    hull = {std::min(hull.fLower, other.fLower), std::max(hull.fUpper, other.fUpper)};
  }
  return hull;
}

void BoundsInference::Narrow(const Term& term, const Hull& hull) {
  if (!IsOpen(term)) {
    return;
  }
  const auto clamp = [](Int128 v) { return static_cast<std::int64_t>(std::clamp<Int128>(v, -kUnbounded, kUnbounded)); };
  Set& domain = fDomains[Find(term)];
  Set narrowed = Intersect(domain, MakeRange(clamp(hull.fLower), clamp(hull.fUpper)));
  if (narrowed.empty() || narrowed.front().fLower != domain.front().fLower ||
      narrowed.back().fUpper != domain.back().fUpper) {
    domain = std::move(narrowed);
    fHasChanged = true;
  }
}

void BoundsInference::NarrowAll(std::span<const Term> terms, const Hull& hull) {
  for (const Term& term : terms) {
    Narrow(term, hull);
  }
}

Hull BoundsInference::GetPlaces(const Constraint& c, std::span<const Term> terms, unsigned first) const {
  const Hull start = GetHull(GetTerm(c, first));
  return start.IsFinite() ? Hull{start.fLower, start.fUpper + static_cast<std::int64_t>(terms.size()) - 1}
                          : kEverything;
}

// sum c x = n, or <= n: a term without a bound tells of itself alone. n may be a variable.
void BoundsInference::InferLinear(const Constraint& c, bool isEquation) {
  const std::span<const Term> coefficients = GetTerms(c, 0);
  const std::span<const Term> variables = GetTerms(c, 1);
  // A variable with one value may stand for a coefficient: that is left to the constraint.
  if (coefficients.size() != variables.size() || std::ranges::any_of(coefficients, &Term::fIsVariable)) {
    return;
  }
  std::vector<std::pair<Int128, Term>> terms = {{-1, GetTerm(c, 2)}};
  for (std::size_t i = 0; i < variables.size(); ++i) {
    terms.emplace_back(coefficients[i].fNumber, variables[i]);
  }
  InferTerms(terms, isEquation);
}

// The sum of the products is 0, or at most 0.
void BoundsInference::InferTerms(const std::vector<std::pair<Int128, Term>>& terms, bool isEquation) {
  const auto scale = [this](Int128 factor, const Term& term) {
    const Hull x = GetHull(term);
    const Int128 lower = factor > 0 ? x.fLower : -x.fUpper;
    const Int128 upper = factor > 0 ? x.fUpper : -x.fLower;
    const Int128 magnitude = factor > 0 ? factor : -factor;
    return Hull{lower <= -kInfinite ? lower : Cut(lower * magnitude),
                upper >= kInfinite ? upper : Cut(upper * magnitude)};
  };
  SumEnd least;
  SumEnd greatest;
  for (const auto& [factor, term] : terms) {
    const Hull part = factor == 0 ? Hull{0, 0} : scale(factor, term);
    least.Add(part.fLower);
    greatest.Add(part.fUpper);
  }
  for (const auto& [factor, term] : terms) {
    if (!IsOpen(term) || factor == 0) {
      continue;
    }
    const Hull part = scale(factor, term);
    const Int128 magnitude = factor > 0 ? factor : -factor;
    // What the others leave for the term, and for the variable: rounded towards 0, which at worst keeps one value.
    Hull left = kEverything;
    if (const std::optional<Int128> others = least.GetWithout(part.fLower)) {
      left.fUpper = -*others / magnitude;
    }
    if (const std::optional<Int128> others = greatest.GetWithout(part.fUpper); isEquation && others) {
      left.fLower = -*others / magnitude;
    }
    Narrow(term, factor > 0 ? left : Hull{-left.fUpper, -left.fLower});
  }
}

void BoundsInference::InferSum(const Constraint& c) {
  InferTerms({{1, GetTerm(c, 0)}, {1, GetTerm(c, 1)}, {-1, GetTerm(c, 2)}}, true);
}

void BoundsInference::InferProduct(const Constraint& c) {
  const Hull x = GetHull(GetTerm(c, 0));
  const Hull y = GetHull(GetTerm(c, 1));
  const Hull z = GetHull(GetTerm(c, 2));
  Narrow(GetTerm(c, 2), Multiply(x, y));
  for (const unsigned i : {0U, 1U}) {
    const Hull& other = i == 0 ? y : x;
    if (z.IsFinite() && (other.fLower > 0 || other.fUpper < 0)) {
      Narrow(GetTerm(c, i), {-Magnitude(z), Magnitude(z)});
    }
  }
}

// The result is no greater than the dividend; a remainder is smaller than the divisor too.
void BoundsInference::InferQuotient(const Constraint& c) {
  const Hull x = GetHull(GetTerm(c, 0));
  const Hull y = GetHull(GetTerm(c, 1));
  if (x.IsFinite()) {
    Narrow(GetTerm(c, 2), {-Magnitude(x), Magnitude(x)});
  }
  if (!y.IsFinite()) {
    return;
  }
  if (fModel.GetName(c) == "int_mod") {
    Narrow(GetTerm(c, 2), {-Magnitude(y), Magnitude(y)});
  } else if (const Hull z = GetHull(GetTerm(c, 2)); z.IsFinite()) {
    const Int128 most = Magnitude(Multiply(y, z)) + Magnitude(y);
    Narrow(GetTerm(c, 0), {-most, most});
  }
}

void BoundsInference::InferPower(const Constraint& c) {
  const Hull x = GetHull(GetTerm(c, 0));
  const Hull y = GetHull(GetTerm(c, 1));
  if (!x.IsFinite() || !y.IsFinite()) {
    return;
  }
  const Int128 base = std::max<Int128>(Magnitude(x), 1);
  Int128 most = 1;
  for (Int128 k = 0; k < y.fUpper && base > 1 && most < kUnbounded; ++k) {
    most *= base;
  }
  Narrow(GetTerm(c, 2), {x.fLower >= 0 ? Int128{0} : -most, most});
}

void BoundsInference::InferMagnitude(const Constraint& c) {
  const Hull x = GetHull(GetTerm(c, 0));
  const Hull y = GetHull(GetTerm(c, 1));
  Narrow(GetTerm(c, 1), {0, x.IsFinite() ? Magnitude(x) : kInfinite});
  if (y.fUpper < kInfinite) {
    Narrow(GetTerm(c, 0), {-y.fUpper, y.fUpper});
  }
}

void BoundsInference::InferOrder(const Constraint& c) {
  const Hull x = GetHull(GetTerm(c, 0));
  const Hull y = GetHull(GetTerm(c, 1));
  Narrow(GetTerm(c, 0), {-kInfinite, y.fUpper});
  Narrow(GetTerm(c, 1), {x.fLower, kInfinite});
}

void BoundsInference::InferExtremum(const Constraint& c) {
  const Term operands[] = {GetTerm(c, 0), GetTerm(c, 1)};
  const Term result = GetTerm(c, 2);
  Narrow(result, Unite(operands));
  const Hull z = GetHull(result);
  for (const Term& operand : operands) {
    Narrow(operand, fModel.GetName(c) == "int_max" ? Hull{-kInfinite, z.fUpper} : Hull{z.fLower, kInfinite});
  }
}

void BoundsInference::InferExtremumOfArray(const Constraint& c) {
  const Term result = GetTerm(c, 0);
  Narrow(result, Unite(GetTerms(c, 1)));
  const Hull z = GetHull(result);
  for (const Term& operand : GetTerms(c, 1)) {
    Narrow(operand, fModel.GetName(c) == "array_int_maximum" ? Hull{-kInfinite, z.fUpper} : Hull{z.fLower, kInfinite});
  }
}

void BoundsInference::InferElement(const Constraint& c) {
  const std::span<const Term> elements = GetTerms(c, 1);
  Narrow(GetTerm(c, 2), Unite(elements));
  Narrow(GetTerm(c, 0), {1, static_cast<std::int64_t>(elements.size())});
}

void BoundsInference::InferMembership(const Constraint& c) {
  const std::span<const Argument> arguments = fModel.GetArguments(c);
  if (arguments.size() >= 2 && arguments[1].fKind == Argument::Kind::OneSet) {
    const Set& set = fModel.fSets[static_cast<std::size_t>(arguments[1].fNumber)];
    if (!set.empty()) {
      Narrow(GetTerm(c, 0), {set.front().fLower, set.back().fUpper});
    }
  }
}

void BoundsInference::InferEquality(const Constraint& c) {
  Narrow(GetTerm(c, 0), GetHull(GetTerm(c, 1)));
  Narrow(GetTerm(c, 1), GetHull(GetTerm(c, 0)));
}

// The rule of a constraint that holds: of a reified one, once its truth is known.
BoundsInference::Rule BoundsInference::FindRule(const Constraint& c) const {
  std::string_view name = fModel.GetName(c);
  for (const std::string_view suffix : {"_reif", "_imp"}) {
    if (name.ends_with(suffix)) {
      if (c.fCount == 0 || GetHull(GetTerm(c, c.fCount - 1)).fLower != 1) {
        return nullptr;
      }
      name.remove_suffix(suffix.size());
      break;
    }
  }
  for (const auto* rules : {&GetArithmeticRules(), &GetGlobalRules()}) {
    if (const auto found = rules->find(name); found != rules->end()) {
      return found->second;
    }
  }
  return nullptr;
}

bool BoundsInference::Concerns(const Constraint& c) const {
  const std::span<const Argument> arguments = fModel.GetArguments(c);
  return std::ranges::any_of(arguments, [this](const Argument& argument) {
    if (argument.fKind == Argument::Kind::Array) {
      return std::ranges::any_of(fModel.GetTerms(argument), [this](const Term& term) { return IsOpen(term); });
    }
    return argument.fKind == Argument::Kind::Variable && IsOpen({true, argument.fNumber});
  });
}

void BoundsInference::Run() {
  if (std::ranges::all_of(fDomains, Fits)) {
    return;
  }
  std::vector<std::pair<const Constraint*, Rule>> concerned;
  for (const Constraint& c : fModel.fConstraints) {
    if (const Rule rule = FindRule(c); rule != nullptr && Concerns(c)) {
      concerned.emplace_back(&c, rule);
    }
  }
  // Forth and back: a chain of definitions is found in one of two rounds, in whichever order it stands.
  for (int round = 0; round < kMostRounds; ++round) {
    fHasChanged = false;
    for (const auto& [constraint, rule] : concerned) {
      (this->*rule)(*constraint);
    }
    std::ranges::reverse(concerned);
    if (!fHasChanged) {
      break;
    }
  }
}

Set MakeUnbounded() {
  return MakeRange(-kUnbounded, kUnbounded);
}

void InferBounds(const Model& model, const std::function<std::size_t(std::size_t)>& find, std::vector<Set>& domains) {
  BoundsInference(model, find, domains).Run();
}

}  // namespace fzn
