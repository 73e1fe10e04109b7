#include "flatzinc/bounds.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

#include "flatzinc/sets.h"

namespace fzn {
namespace {

__extension__ using Int128 = __int128;

constexpr std::int64_t kUnbounded = std::numeric_limits<std::int64_t>::max();
// Stands for no bound; sums and products of bounds in between have fewer bits.
constexpr Int128 kInfinite = Int128{1} << 126;
constexpr int kMostRounds = 1000;

// Bounds, each possibly infinite.
struct Hull {
  Int128 fLower;
  Int128 fUpper;

  bool IsFinite() const { return fLower > -kInfinite && fUpper < kInfinite; }
};
constexpr Hull kEverything = {-kInfinite, kInfinite};

Hull Multiply(const Hull& a, const Hull& b) {
  if (!a.IsFinite() || !b.IsFinite()) {
    return kEverything;
  }
  const Int128 corners[] = {a.fLower * b.fLower, a.fLower * b.fUpper, a.fUpper * b.fLower, a.fUpper * b.fUpper};
  return {*std::ranges::min_element(corners), *std::ranges::max_element(corners)};
}

Int128 Magnitude(const Hull& a) {
  return std::max(a.fLower < 0 ? -a.fLower : a.fLower, a.fUpper < 0 ? -a.fUpper : a.fUpper);
}

class Inference {
 public:
  Inference(const Model& model, const std::function<std::size_t(std::size_t)>& find, std::vector<Set>& domains)
      : fModel(model), fFind(find), fDomains(domains) {}

  void Run();

 private:
  using Rule = void (Inference::*)(const Constraint&);

  static const std::unordered_map<std::string_view, Rule>& GetRules();
  bool IsOpen(const Term& term) const { return term.fIsVariable && !Fits(fDomains[Find(term)]); }
  bool Concerns(const Constraint& c) const;
  std::size_t Find(const Term& term) const { return fFind(static_cast<std::size_t>(term.fNumber)); }
  Hull GetHull(const Term& term) const;
  Hull Unite(std::span<const Term> terms) const;
  void Narrow(const Term& term, const Hull& hull);

  // Arguments; a constraint with other kinds than its rule expects is left to its row of the posting table.
  Term GetTerm(const Constraint& c, unsigned i) const;
  std::span<const Term> GetTerms(const Constraint& c, unsigned i) const;

  void InferLinear(const Constraint& c, bool isEquation);
  void InferEquation(const Constraint& c) { InferLinear(c, true); }
  void InferInequality(const Constraint& c) { InferLinear(c, false); }
  void InferSum(const Constraint& c);
  void InferProduct(const Constraint& c);
  void InferQuotient(const Constraint& c);
  void InferPower(const Constraint& c);
  void InferMagnitude(const Constraint& c);
  void InferOrder(const Constraint& c);
  void InferExtremum(const Constraint& c);
  void InferExtremumOfArray(const Constraint& c);
  void InferElement(const Constraint& c);
  void InferMembership(const Constraint& c);

  const Model& fModel;
  const std::function<std::size_t(std::size_t)>& fFind;
  std::vector<Set>& fDomains;
  bool fHasChanged = false;
};

const std::unordered_map<std::string_view, Inference::Rule>& Inference::GetRules() {
  static const std::unordered_map<std::string_view, Rule> rules = {
      {"int_lin_eq", &Inference::InferEquation},
      {"bool_lin_eq", &Inference::InferEquation},
      {"int_lin_le", &Inference::InferInequality},
      {"int_plus", &Inference::InferSum},
      {"int_times", &Inference::InferProduct},
      {"int_div", &Inference::InferQuotient},
      {"int_mod", &Inference::InferQuotient},
      {"int_pow", &Inference::InferPower},
      {"int_pow_fixed", &Inference::InferPower},
      {"int_abs", &Inference::InferMagnitude},
      {"int_le", &Inference::InferOrder},
      {"int_lt", &Inference::InferOrder},
      {"int_min", &Inference::InferExtremum},
      {"int_max", &Inference::InferExtremum},
      {"array_int_minimum", &Inference::InferExtremumOfArray},
      {"array_int_maximum", &Inference::InferExtremumOfArray},
      {"array_int_element", &Inference::InferElement},
      {"array_var_int_element", &Inference::InferElement},
      {"set_in", &Inference::InferMembership}};
  return rules;
}

// A missing or mistaken argument tells nothing: a term of its own that is everything.
constexpr Term kNoTerm = {false, std::numeric_limits<std::int64_t>::min()};

Term Inference::GetTerm(const Constraint& c, unsigned i) const {
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

std::span<const Term> Inference::GetTerms(const Constraint& c, unsigned i) const {
  const std::span<const Argument> arguments = fModel.GetArguments(c);
  return i < arguments.size() && arguments[i].fKind == Argument::Kind::Array ? fModel.GetTerms(arguments[i])
                                                                             : std::span<const Term>();
}

Hull Inference::GetHull(const Term& term) const {
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

Hull Inference::Unite(std::span<const Term> terms) const {
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

void Inference::Narrow(const Term& term, const Hull& hull) {
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

// sum c x = n, or <= n: a term without a bound tells of itself alone. n may be a variable.
void Inference::InferLinear(const Constraint& c, bool isEquation) {
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
  const auto scale = [this](Int128 factor, const Term& term) {
    const Hull x = GetHull(term);
    const Int128 lower = factor > 0 ? x.fLower : -x.fUpper;
    const Int128 upper = factor > 0 ? x.fUpper : -x.fLower;
    const Int128 magnitude = factor > 0 ? factor : -factor;
    return Hull{lower <= -kInfinite ? lower : lower * magnitude, upper >= kInfinite ? upper : upper * magnitude};
  };
  Hull sum = {0, 0};
  std::size_t openBelow = 0;
  std::size_t openAbove = 0;
  for (const auto& [factor, term] : terms) {
    const Hull part = factor == 0 ? Hull{0, 0} : scale(factor, term);
    part.fLower <= -kInfinite ? static_cast<Int128>(++openBelow) : sum.fLower += part.fLower;
    part.fUpper >= kInfinite ? static_cast<Int128>(++openAbove) : sum.fUpper += part.fUpper;
  }
  for (const auto& [factor, term] : terms) {
    if (!IsOpen(term) || factor == 0) {
      continue;
    }
    const Hull part = scale(factor, term);
    const bool isOpenBelow = part.fLower <= -kInfinite;
    const bool isOpenAbove = part.fUpper >= kInfinite;
    const Int128 magnitude = factor > 0 ? factor : -factor;
    // What the others leave for the term, and for the variable: rounded towards 0, which at worst keeps one value.
    Hull left = kEverything;
    if (openBelow == (isOpenBelow ? 1U : 0U)) {
      left.fUpper = (-sum.fLower + (isOpenBelow ? 0 : part.fLower)) / magnitude;
    }
    if (isEquation && openAbove == (isOpenAbove ? 1U : 0U)) {
      left.fLower = (-sum.fUpper + (isOpenAbove ? 0 : part.fUpper)) / magnitude;
    }
    Narrow(term, factor > 0 ? left : Hull{-left.fUpper, -left.fLower});
  }
}

void Inference::InferSum(const Constraint& c) {
  const Hull x = GetHull(GetTerm(c, 0));
  const Hull y = GetHull(GetTerm(c, 1));
  const Hull z = GetHull(GetTerm(c, 2));
  if (x.IsFinite() && y.IsFinite()) {
    Narrow(GetTerm(c, 2), {x.fLower + y.fLower, x.fUpper + y.fUpper});
  }
  for (const unsigned i : {0U, 1U}) {
    const Hull& other = i == 0 ? y : x;
    if (other.IsFinite() && z.IsFinite()) {
      Narrow(GetTerm(c, i), {z.fLower - other.fUpper, z.fUpper - other.fLower});
    }
  }
}

void Inference::InferProduct(const Constraint& c) {
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
void Inference::InferQuotient(const Constraint& c) {
  const Hull x = GetHull(GetTerm(c, 0));
  const Hull y = GetHull(GetTerm(c, 1));
  if (x.IsFinite()) {
    Narrow(GetTerm(c, 2), {-Magnitude(x), Magnitude(x)});
  }
  if (y.IsFinite() && fModel.GetName(c) == "int_mod") {
    Narrow(GetTerm(c, 2), {-Magnitude(y), Magnitude(y)});
  }
}

void Inference::InferPower(const Constraint& c) {
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

void Inference::InferMagnitude(const Constraint& c) {
  const Hull x = GetHull(GetTerm(c, 0));
  const Hull y = GetHull(GetTerm(c, 1));
  Narrow(GetTerm(c, 1), {0, x.IsFinite() ? Magnitude(x) : kInfinite});
  if (y.fUpper < kInfinite) {
    Narrow(GetTerm(c, 0), {-y.fUpper, y.fUpper});
  }
}

void Inference::InferOrder(const Constraint& c) {
  const Hull x = GetHull(GetTerm(c, 0));
  const Hull y = GetHull(GetTerm(c, 1));
  Narrow(GetTerm(c, 0), {-kInfinite, y.fUpper});
  Narrow(GetTerm(c, 1), {x.fLower, kInfinite});
}

void Inference::InferExtremum(const Constraint& c) {
  const Term operands[] = {GetTerm(c, 0), GetTerm(c, 1)};
  const Term result = GetTerm(c, 2);
  Narrow(result, Unite(operands));
  const Hull z = GetHull(result);
  for (const Term& operand : operands) {
    Narrow(operand, fModel.GetName(c) == "int_max" ? Hull{-kInfinite, z.fUpper} : Hull{z.fLower, kInfinite});
  }
}

void Inference::InferExtremumOfArray(const Constraint& c) {
  const Term result = GetTerm(c, 0);
  Narrow(result, Unite(GetTerms(c, 1)));
  const Hull z = GetHull(result);
  for (const Term& operand : GetTerms(c, 1)) {
    Narrow(operand, fModel.GetName(c) == "array_int_maximum" ? Hull{-kInfinite, z.fUpper} : Hull{z.fLower, kInfinite});
  }
}

void Inference::InferElement(const Constraint& c) {
  const std::span<const Term> elements = GetTerms(c, 1);
  Narrow(GetTerm(c, 2), Unite(elements));
  Narrow(GetTerm(c, 0), {1, static_cast<std::int64_t>(elements.size())});
}

void Inference::InferMembership(const Constraint& c) {
  const std::span<const Argument> arguments = fModel.GetArguments(c);
  if (arguments.size() == 2 && arguments[1].fKind == Argument::Kind::OneSet) {
    const Set& set = fModel.fSets[static_cast<std::size_t>(arguments[1].fNumber)];
    if (!set.empty()) {
      Narrow(GetTerm(c, 0), {set.front().fLower, set.back().fUpper});
    }
  }
}

bool Inference::Concerns(const Constraint& c) const {
  const std::span<const Argument> arguments = fModel.GetArguments(c);
  return std::ranges::any_of(arguments, [this](const Argument& argument) {
    if (argument.fKind == Argument::Kind::Array) {
      return std::ranges::any_of(fModel.GetTerms(argument), [this](const Term& term) { return IsOpen(term); });
    }
    return argument.fKind == Argument::Kind::Variable && IsOpen({true, argument.fNumber});
  });
}

void Inference::Run() {
  if (std::ranges::all_of(fDomains, Fits)) {
    return;
  }
  std::vector<std::pair<const Constraint*, Rule>> concerned;
  for (const Constraint& c : fModel.fConstraints) {
    const auto rule = GetRules().find(fModel.GetName(c));
    if (rule != GetRules().end() && Concerns(c)) {
      concerned.emplace_back(&c, rule->second);
    }
  }
  // To and fro: a chain of definitions is found in one of two rounds, in whichever order it stands.
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

}  // namespace

Set MakeUnbounded() {
  return MakeRange(-kUnbounded, kUnbounded);
}

void InferBounds(const Model& model, const std::function<std::size_t(std::size_t)>& find, std::vector<Set>& domains) {
  Inference(model, find, domains).Run();
}

}  // namespace fzn
