#include "tarn/Evaluator.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace tarn {
namespace {

// What is known of an expression.
struct Result {
  enum class State { Known, None, Unknown };

  State fState;
  std::int64_t fValue = 0;
};

constexpr Result sNone{Result::State::None};
constexpr Result sUnknown{Result::State::Unknown};

Result Known(std::int64_t value) noexcept {
  return {Result::State::Known, value};
}

// The limits stand for everything beyond them as well, so arithmetic neither takes them nor gives them.
bool IsInside(std::int64_t value) noexcept {
  return -Evaluator::sLimit < value && value < Evaluator::sLimit;
}
Result Inside(const Result& result) noexcept {
  return result.fState == Result::State::Known && !IsInside(result.fValue) ? sNone : result;
}

Result Power(std::int64_t base, std::int64_t exponent) noexcept {
  if (base == 1 || exponent == 0) {
    return Known(1);
  }
  if (base == -1) {
    return Known(exponent % 2 == 0 ? 1 : -1);
  }
  if (exponent < 0) {
    return sNone;
  }
  if (base == 0) {
    return Known(0);
  }
  std::int64_t power = 1;
  for (; exponent > 0; --exponent) {
    power *= base;
    if (!IsInside(power)) {
      return sNone;
    }
  }
  return Known(power);
}

std::optional<bool> Compare(std::string_view relation, std::int64_t a, std::int64_t b) noexcept {
  if (relation == "=" || relation == "==") {
    return a == b;
  }
  if (relation == "<>") {
    return a != b;
  }
  if (relation == "<" || relation == "<<") {
    return a < b;
  }
  if (relation == "<=" || relation == "<==") {
    return a <= b;
  }
  if (relation == ">" || relation == ">>") {
    return a > b;
  }
  if (relation == ">=" || relation == ">==") {
    return a >= b;
  }
  return std::nullopt;
}

std::optional<bool> Connect(std::string_view connective, bool a, bool b) noexcept {
  if (connective == "&&") {
    return a && b;
  }
  if (connective == "||") {
    return a || b;
  }
  if (connective == "->") {
    return !a || b;
  }
  if (connective == "<->") {
    return a == b;
  }
  return std::nullopt;
}

// Nothing for an operation that is none of arithmetic.
std::optional<Result> Arithmetic(std::string_view operation, std::int64_t a, std::int64_t b) noexcept {
  if (operation == "+") {
    return Known(a + b);
  }
  if (operation == "-") {
    return Known(a - b);
  }
  if (operation == "*") {
    return Known(a * b);
  }
  if (operation == "/") {
    return b == 0 || a % b != 0 ? sNone : Known(a / b);
  }
  if (operation == "mod") {
    return b == 0 ? sNone : Known(a % b);
  }
  if (operation == "^") {
    return Power(a, b);
  }
  return std::nullopt;
}

std::optional<Result> Arithmetic(std::string_view operation, std::int64_t a) noexcept {
  if (operation == "-") {
    return Known(-a);
  }
  if (operation == "abs") {
    return Known(a < 0 ? -a : a);
  }
  if (operation == "sign") {
    return Known(a < 0 ? -1 : a > 0 ? 1 : 0);
  }
  if (operation == "next") {
    return Known(a + 1);
  }
  if (operation == "prev") {
    return Known(a - 1);
  }
  return std::nullopt;
}

Result Binary(std::string_view operation, std::int64_t a, std::int64_t b) noexcept {
  if (const std::optional<Result> result = Arithmetic(operation, a, b)) {
    return IsInside(a) && IsInside(b) ? Inside(*result) : sNone;
  }
  if (operation == "/\\") {
    return Known(std::min(a, b));
  }
  if (operation == "\\/") {
    return Known(std::max(a, b));
  }
  if (const std::optional<bool> truth = Connect(operation, a != 0, b != 0)) {
    return Known(*truth ? 1 : 0);
  }
  if (const std::optional<bool> truth = Compare(operation, a, b)) {
    return Known(*truth ? 1 : 0);
  }
  return sUnknown;
}

Result Unary(std::string_view operation, std::int64_t a) noexcept {
  if (const std::optional<Result> result = Arithmetic(operation, a)) {
    return IsInside(a) ? Inside(*result) : sNone;
  }
  return operation == "!" ? Known(a == 0 ? 1 : 0) : sUnknown;
}

Result Literal(std::string_view text) noexcept {
  if (text == "true" || text == "false") {
    return Known(text == "true" ? 1 : 0);
  }
  std::int64_t number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  return read.ec == std::errc() && read.ptr == text.data() + text.size() ? Known(number) : sUnknown;
}

// Functions of lists, by whether something stands beside the list.
bool IsKnownFunction(const Node& node) noexcept {
  return node.fHasBeside ? node.fText == "count" || node.fText == "element" : node.fText == "sum";
}

bool HasUnknownList(const Formula& formula) noexcept {
  return (formula.fKind == Formula::Kind::List && formula.fOperators[0].fText != "all different") ||
         (formula.fKind == Formula::Kind::Table && formula.fOperators[0].fText != "table") ||
         std::ranges::any_of(formula.fNodes,
                             [](const Node& node) { return node.fKind == Node::Kind::Call && !IsKnownFunction(node); });
}

Result Sum(std::span<const std::int64_t> members) noexcept {
  Result sum = Known(0);
  for (const std::int64_t member : members) {
    sum = IsInside(member) ? Inside(Known(sum.fValue + member)) : sNone;
    if (sum.fState != Result::State::Known) {
      break;
    }
  }
  return sum;
}

Result Call(const Node& node, std::span<const std::int64_t> members) noexcept {
  if (!node.fHasBeside) {
    return Sum(members);
  }
  const std::int64_t beside = members[0];
  const std::span<const std::int64_t> list = members.subspan(1);
  if (node.fText == "count") {
    return Known(std::ranges::count(list, beside));
  }
  const auto size = static_cast<std::int64_t>(list.size());
  return beside < 1 || beside > size ? sNone : Known(list[static_cast<std::size_t>(beside - 1)]);
}

Result Call(const Node& node, const Formula& formula, std::span<const Result> results) {
  std::vector<std::int64_t> members;
  members.reserve(node.fRight - node.fLeft);
  for (NodeIndex i = node.fLeft; i < node.fRight; ++i) {
    const Result& member = results[formula.fMembers[i]];
    if (member.fState != Result::State::Known) {
      return member;
    }
    members.push_back(member.fValue);
  }
  return Call(node, members);
}

Result Evaluate(const Node& node, const Formula& formula, std::span<const Result> results,
                std::span<const std::optional<std::int64_t>> values) {
  if (node.fKind == Node::Kind::Variable) {
    const std::optional<std::int64_t>& value = values[node.fLeft];
    return value ? Result{Result::State::Known, *value} : sUnknown;
  }
  if (node.fKind == Node::Kind::Literal) {
    return Literal(node.fText);
  }
  if (node.fKind == Node::Kind::Call) {
    return Call(node, formula, results);
  }
  const Result left = results[node.fLeft];
  const Result right = node.fKind == Node::Kind::Binary ? results[node.fRight] : left;
  for (const Result& operand : {left, right}) {
    if (operand.fState != Result::State::Known) {
      return operand;
    }
  }
  switch (node.fKind) {
    case Node::Kind::Unary:
      return Unary(node.fText, left.fValue);
    case Node::Kind::Binary:
      return Binary(node.fText, left.fValue, right.fValue);
    default:
      return left;  // a cast
  }
}

bool HasRow(const Formula& formula, std::span<const std::int64_t> values) {
  for (auto row = formula.fConstants.begin(); row != formula.fConstants.end();
       row += static_cast<std::ptrdiff_t>(values.size())) {
    if (std::ranges::equal(values, std::span(row, values.size()))) {
      return true;
    }
  }
  return false;
}

// Whether the statement over these root values holds; a relation that is not known holds.
bool Holds(const Formula& formula, std::vector<std::int64_t> roots) {
  switch (formula.fKind) {
    case Formula::Kind::Relations:
      for (std::size_t i = 0; i < formula.fOperators.size(); ++i) {
        if (!Compare(formula.fOperators[i].fText, roots[i], roots[i + 1]).value_or(true)) {
          return false;
        }
      }
      return true;
    case Formula::Kind::Truth:
      return roots[0] != 0;
    case Formula::Kind::List:
      std::ranges::sort(roots);
      return std::ranges::adjacent_find(roots) == roots.end();
    case Formula::Kind::Table:
      return HasRow(formula, roots);
    case Formula::Kind::Minimize:
    case Formula::Kind::Maximize:
      return true;
  }
  return true;
}

bool MayHold(const Formula& formula, std::span<const std::optional<std::int64_t>> values) {
  std::vector<Result> results;
  results.reserve(formula.fNodes.size());
  bool isKnown = true;
  bool hasValues = true;
  for (const Node& node : formula.fNodes) {
    results.push_back(Evaluate(node, formula, results, values));
    isKnown = isKnown && results.back().fState != Result::State::Unknown;
    hasValues = hasValues && results.back().fState != Result::State::None;
  }
  if (!isKnown || !hasValues) {
    return !isKnown;
  }
  std::vector<std::int64_t> roots;
  for (const NodeIndex root : formula.fRoots) {
    roots.push_back(results[root].fValue);
  }
  return Holds(formula, std::move(roots));
}

}  // namespace

std::optional<std::size_t> Evaluator::FindUnchecked() const {
  const std::vector<Statement>& statements = fModel.GetStatements();
  const auto found = std::ranges::find_if(statements, [](const Statement& statement) {
    const Formula* formula = std::get_if<Formula>(&statement.fBody);
    return formula != nullptr && HasUnknownList(*formula);
  });
  return found == statements.end() ? std::nullopt : std::optional(static_cast<std::size_t>(found - statements.begin()));
}

std::optional<std::size_t> Evaluator::FindContradiction(std::span<const std::optional<std::int64_t>> values) const {
  const std::vector<Statement>& statements = fModel.GetStatements();
  for (std::size_t i = 0; i < statements.size(); ++i) {
    const Formula* formula = std::get_if<Formula>(&statements[i].fBody);
    if (formula != nullptr && !MayHold(*formula, values)) {
      return i;
    }
  }
  return std::nullopt;
}

}  // namespace tarn
