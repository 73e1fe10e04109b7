#include "tarn/Compiler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <tuple>

#include "framework/VokTarnBoolean.h"
#include "tarn/CompileErrors.h"
#include "tarn/Diagnostic.h"
#include "tarn/ValueText.h"

namespace tarn {
namespace {

constexpr std::string_view sEquality = "=";
constexpr std::string_view sSum = "sum";
// Sums that stay this near to 0 are inside the integers in whatever order they are made.
constexpr double sLargestReach = 2e9;

// The side of an equation that is an operation and may give its result to the value of the other side: rather one
// that faces a variable than not, rather a sum than another operation. Behind the sides when there is none.
std::size_t FindTarget(const Formula& formula, std::span<const Sum* const> sumOf) {
  std::size_t target = formula.fRoots.size();
  int best = 0;
  for (const std::size_t side : {0U, 1U}) {
    const Node& node = formula.fNodes[formula.fRoots[side]];
    const Node& other = formula.fNodes[formula.fRoots[1 - side]];
    if (node.fKind == Node::Kind::Variable || node.fKind == Node::Kind::Literal || node.fKind == Node::Kind::Cast) {
      continue;
    }
    const int rank =
        1 + (sumOf[formula.fRoots[side]] != nullptr ? 1 : 0) + (other.fKind == Node::Kind::Variable ? 2 : 0);
    if (rank > best) {
      best = rank;
      target = side;
    }
  }
  return target;
}

}  // namespace

std::size_t Compiler::OperationHash::operator()(const Operation& operation) const noexcept {
  // Multiplication by a large odd number spreads the small operand numbers over all bits.
  constexpr std::size_t sSpread = 0x9E3779B97F4A7C15U;
  std::size_t hash = std::hash<const void*>()(operation.fOperator);
  hash = (hash ^ operation.fLeft) * sSpread;
  hash = ((hash ^ (hash >> 32U)) ^ operation.fRight) * sSpread;
  return hash ^ (hash >> 32U);
}

void Compiler::Declare(const Declaration& declaration) {
  const VokTarnType type = fTable.FindType(declaration.fType.fText);
  ScratchValue domain(type);
  ReadDomain(domain, type, fTable.GetTypes(), declaration.fDomain, declaration.fDomainOffset);
  for (const Word& name : declaration.fNames) {
    const VokTarnValueId value = fNetwork.AddValue(type, std::string(name.fText));
    fNetwork.Touch(value).Assign(domain.Get());
    fNetwork.NoteChange(value);
    fVariables.push_back(value);
  }
}

void Compiler::Post(const Formula& formula) {
  switch (formula.fKind) {
    case Formula::Kind::Relations:
      return PostRelations(formula);
    case Formula::Kind::Truth:
      return PostTruth(formula);
    case Formula::Kind::List:
    case Formula::Kind::Table:
      return PostList(formula);
    case Formula::Kind::Minimize:
    case Formula::Kind::Maximize:
      return PostObjective(formula);
  }
}

void Compiler::PostRelations(const Formula& formula) {
  const bool isEquation = formula.fOperators.size() == 1 && formula.fOperators[0].fText == sEquality;
  Nodes nodes(formula);
  NodeIndex first = 0;
  // "operation = expression": the expression's value itself is the operation's result, without a value between them.
  const std::size_t target = isEquation ? FindTarget(formula, nodes.fSumOf) : formula.fRoots.size();
  for (std::size_t i = 0; i < formula.fRoots.size(); ++i) {
    if (i != target) {
      CompileRange(nodes, first, formula.fRoots[i], vokNoValue);
    }
    first = formula.fRoots[i] + 1;
  }
  const std::vector<VokTarnValueId>& values = nodes.fValues;
  if (target < formula.fRoots.size()) {
    const VokTarnValueId result = values[formula.fRoots[1 - target]];
    CompileRange(nodes, target == 0 ? 0 : formula.fRoots[0] + 1, formula.fRoots[target], result);
    if (values[formula.fRoots[target]] == result) {
      return;
    }
  }
  for (std::size_t i = 0; i < formula.fOperators.size(); ++i) {
    PostRelation(formula.fOperators[i], values[formula.fRoots[i]], values[formula.fRoots[i + 1]]);
  }
}

void Compiler::PostRelation(const Word& name, VokTarnValueId left, VokTarnValueId right) {
  const std::array<VokTarnValueId, 2> operands{left, right};
  Apply(Choose(name, operands), operands, vokNoValue, false);
}

void Compiler::PostTruth(const Formula& formula) {
  const NodeIndex root = formula.fRoots[0];
  const VokTarnValueId value = CompileNodes(formula)[root];
  if (!IsDerivedFrom(value, VokTarnBoolean::sIdent)) {
    throw ModelError(formula.fNodes[root].fOffset,
                     "a statement must be a relation or a truth value, not a value of type " +
                         Quote(fNetwork.GetType(value)->GetName().View()));
  }
  static_cast<VokTarnBoolean&>(fNetwork.Touch(value)).CalcTruthValue(1);
  fNetwork.NoteChange(value);
  fTruths.push_back(value);
}

void Compiler::PostList(const Formula& formula) {
  const Word& name = formula.fOperators[0];
  Nodes nodes(formula);
  // "x + 3" in the list is x and a constant of the constraint, where the operator knows what to do with it.
  std::vector<VokLong> constants = formula.fConstants;
  std::vector<VokTarnValueId> shifted(formula.fRoots.size(), vokNoValue);
  const auto rows = fTable.GetRows(name.fText);
  if (std::ranges::all_of(rows, [](const auto* row) {
        return row->GetConstraint() != nullptr && row->GetConstraint()->TakesShifts();
      })) {
    for (std::size_t i = 0; i < shifted.size(); ++i) {
      if (const auto found = FindShifted(nodes, formula.fRoots[i])) {
        constants.resize(shifted.size());
        std::tie(shifted[i], constants[i]) = *found;
        nodes.Skip(*nodes.fSumOf[formula.fRoots[i]]);
      }
    }
  }
  if (!formula.fNodes.empty()) {
    CompileRange(nodes, 0, static_cast<NodeIndex>(formula.fNodes.size() - 1), vokNoValue);
  }
  std::vector<VokTarnValueId> operands;
  for (std::size_t i = 0; i < shifted.size(); ++i) {
    operands.push_back(shifted[i] != vokNoValue ? shifted[i] : nodes.fValues[formula.fRoots[i]]);
  }
  const std::vector<VokTarnType> types = GetTypes(operands);
  const VokTarnOperatorDescriptor* chosen = fTable.ChooseList(name.fText, types);
  if (chosen == nullptr) {
    throw MakeOperatorError(fTable, name, types);
  }
  fTable.Apply(fNetwork, {chosen, {}}, operands, vokNoValue, false, constants);
}

void Compiler::PostObjective(const Formula& formula) {
  const NodeIndex root = formula.fRoots[0];
  const VokTarnValueId value = CompileNodes(formula)[root];
  const auto offset = formula.fNodes[root].fOffset;
  const VokTarnType boundType = FindLiteralType("0");
  if (!IsDerivedFrom(value, VokTarnInteger::sIdent) || boundType == nullptr) {
    throw ModelError(offset, "an objective must be an integer, not a value of type " +
                                 Quote(fNetwork.GetType(value)->GetName().View()));
  }
  const bool isMinimum = formula.fKind == Formula::Kind::Minimize;
  const VokTarnValueId bound = fNetwork.AddValue(boundType);
  PostRelation({isMinimum ? "<=" : ">=", offset}, value, bound);
  fObjective = {value, bound, isMinimum ? VokTarnSearch::Sense::Minimize : VokTarnSearch::Sense::Maximize};
}

Compiler::Nodes::Nodes(const Formula& formula)
    : fFormula(formula),
      fSums(FindSums(formula)),
      fSumOf(formula.fNodes.size(), nullptr),
      fIsSkipped(formula.fNodes.size(), false),
      fValues(formula.fNodes.size(), vokNoValue) {
  for (const Sum& sum : fSums) {
    for (const NodeIndex node : sum.fInner) {
      fSumOf[node] = &sum;
    }
  }
}

void Compiler::Nodes::Skip(const Sum& sum) {
  for (const NodeIndex node : sum.fInner) {
    fIsSkipped[node] = true;
  }
  for (const Sum::Term& term : sum.fTerms) {
    fIsSkipped[term.fNode] = true;
  }
}

std::vector<VokTarnValueId> Compiler::CompileNodes(const Formula& formula) {
  Nodes nodes(formula);
  if (!formula.fNodes.empty()) {
    CompileRange(nodes, 0, static_cast<NodeIndex>(formula.fNodes.size() - 1), vokNoValue);
  }
  return std::move(nodes.fValues);
}

void Compiler::CompileRange(Nodes& nodes, NodeIndex first, NodeIndex root, VokTarnValueId result) {
  for (NodeIndex i = first; i <= root; ++i) {
    const VokTarnValueId wanted = i == root ? result : vokNoValue;
    const Sum* sum = nodes.fSumOf[i];
    if (nodes.fIsSkipped[i]) {
      continue;
    }
    if (sum == nullptr) {
      nodes.fValues[i] = CompileNode(nodes, i, wanted);
    } else if (sum->GetTop() == i) {
      nodes.fValues[i] = CompileSum(nodes, *sum, wanted);
    }
  }
}

VokTarnValueId Compiler::CompileNode(const Nodes& nodes, NodeIndex index, VokTarnValueId result) {
  const Node& node = nodes.fFormula.fNodes[index];
  switch (node.fKind) {
    case Node::Kind::Variable:
      return fVariables[node.fLeft];
    case Node::Kind::Literal:
      return CompileLiteral(node);
    case Node::Kind::Unary:
      return CompileOperation(node, std::array{nodes.fValues[node.fLeft]}, result);
    case Node::Kind::Binary:
      return CompileOperation(node, std::array{nodes.fValues[node.fLeft], nodes.fValues[node.fRight]}, result);
    case Node::Kind::Cast:
      return CompileCast(node, nodes.fValues[node.fLeft]);
    case Node::Kind::Call:
      break;
  }
  return CompileCall(nodes, node, result);
}

VokTarnValueId Compiler::CompileSum(Nodes& nodes, const Sum& sum, VokTarnValueId result) {
  std::vector<VokTarnValueId> operands;
  std::vector<VokLong> coefficients;
  for (const Sum::Term& term : sum.fTerms) {
    operands.push_back(nodes.fValues[term.fNode]);
    coefficients.push_back(term.fCoefficient);
  }
  const VokTarnOperatorDescriptor* linear = fTable.ChooseList(sSum, GetTypes(operands));
  const VokTarnSumPlan plan = sum.fIsList ? VokTarnSumPlan::Bounds : PlanSum(sum, operands, result);
  if (linear != nullptr && plan != VokTarnSumPlan::Chain) {
    VokTarnValueId taken = CanBeResult(*linear, result) ? result : vokNoValue;
    if (plan == VokTarnSumPlan::Both) {
      taken = CompileChain(nodes, sum, result);
    }
    MergeTerms(operands, coefficients);
    return fTable.Apply(fNetwork, {linear, {}}, operands, taken, true, coefficients);
  }
  return CompileChain(nodes, sum, result);
}

// The sum as its operators stand.
VokTarnValueId Compiler::CompileChain(Nodes& nodes, const Sum& sum, VokTarnValueId result) {
  for (const NodeIndex node : sum.fInner) {
    nodes.fValues[node] = CompileNode(nodes, node, node == sum.GetTop() ? result : vokNoValue);
  }
  return nodes.fValues[sum.GetTop()];
}

void Compiler::MergeTerms(std::vector<VokTarnValueId>& operands, std::vector<VokLong>& coefficients) const {
  double reach = 0;  // how far any sum of some of the terms can be from 0
  for (std::size_t i = 0; i < operands.size(); ++i) {
    const VokTarnAny& value = fNetwork.GetValue(operands[i]);
    const auto& integer = static_cast<const VokTarnInteger&>(value);
    reach += std::abs(static_cast<double>(coefficients[i])) *
             std::max({1.0, std::abs(static_cast<double>(integer.GetLowerBound())),
                       std::abs(static_cast<double>(integer.GetUpperBound()))});
  }
  if (!(reach < sLargestReach)) {
    return;
  }
  std::unordered_map<VokTarnValueId, std::size_t> places;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < operands.size(); ++i) {
    const auto [place, isNew] = places.try_emplace(operands[i], kept);
    if (isNew) {
      operands[kept] = operands[i];
      coefficients[kept++] = coefficients[i];
    } else {
      coefficients[place->second] += coefficients[i];
    }
  }
  operands.resize(kept);
  coefficients.resize(kept);
  for (std::size_t i = operands.size(); i-- > 0;) {
    if (coefficients[i] == 0) {
      operands.erase(operands.begin() + static_cast<std::ptrdiff_t>(i));
      coefficients.erase(coefficients.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }
}

std::optional<std::pair<VokTarnValueId, VokLong>> Compiler::FindShifted(const Nodes& nodes, NodeIndex index) const {
  const Sum* sum = nodes.fSumOf[index];
  if (sum == nullptr || sum->fTerms.size() != 2) {
    return std::nullopt;
  }
  const std::vector<Node>& all = nodes.fFormula.fNodes;
  for (const auto& [term, shift] :
       {std::pair(sum->fTerms[0], sum->fTerms[1]), std::pair(sum->fTerms[1], sum->fTerms[0])}) {
    const Node& node = all[term.fNode];
    const std::optional<VokLong> number = ReadCoefficient(all[shift.fNode]);
    if (node.fKind != Node::Kind::Variable || term.fCoefficient != 1 || !number ||
        !IsDerivedFrom(fVariables[node.fLeft], VokTarnInteger::sIdent)) {
      continue;
    }
    const VokTarnValueId value = fVariables[node.fLeft];
    const auto& integer = static_cast<const VokTarnInteger&>(fNetwork.GetValue(value));
    const double reach =
        std::abs(static_cast<double>(*number)) + std::max(std::abs(static_cast<double>(integer.GetLowerBound())),
                                                          std::abs(static_cast<double>(integer.GetUpperBound())));
    if (reach < sLargestReach) {
      return std::pair(value, *number * shift.fCoefficient);
    }
  }
  return std::nullopt;
}

// Sums of up to three terms are narrowed value by value wherever that can be.
VokTarnSumPlan Compiler::PlanSum(const Sum& sum, std::span<const VokTarnValueId> operands,
                                 VokTarnValueId result) const {
  constexpr double kUnknown = std::numeric_limits<double>::infinity();
  constexpr std::size_t kMostOfDomain = 3;
  const auto measure = [this](VokTarnValueId id, double factor) {
    const double width =
        fNetwork.GetCardinality(id) < 0 ? kUnknown : static_cast<double>(fNetwork.GetUpper(id)) - fNetwork.GetLower(id);
    return VokTarnSumTerm{EstimateSize(id), width * std::abs(factor)};
  };
  std::vector<VokTarnSumTerm> terms;
  for (std::size_t i = 0; i < operands.size(); ++i) {
    terms.push_back(measure(operands[i], static_cast<double>(sum.fTerms[i].fCoefficient)));
  }
  const bool isShort = operands.size() <= kMostOfDomain;
  return VokTarnPlanSum(terms, result == vokNoValue ? VokTarnSumTerm{kUnknown, kUnknown} : measure(result, 1),
                        isShort ? VokTarnConsistency::Domain : VokTarnConsistency::Default);
}

double Compiler::EstimateSize(VokTarnValueId value) const {
  const int cardinality = fNetwork.GetValue(value).GetCardinality();
  if (cardinality >= 0) {
    return cardinality;
  }
  const auto found = fEstimates.find(value);
  return found == fEstimates.end() ? std::numeric_limits<double>::infinity() : found->second;
}

VokTarnValueId Compiler::CompileOperation(const Node& node, std::span<const VokTarnValueId> operands,
                                          VokTarnValueId result) {
  const Operation operation{node.fText.data(), operands[0], operands.size() > 1 ? operands[1] : vokNoValue};
  const auto found = fOperations.find(operation);
  if (found != fOperations.end()) {
    return found->second;
  }
  const VokTarnOperatorTable::Choice choice = Choose({node.fText, node.fOffset}, operands);
  if (choice.fOperator->GetResultType() == nullptr) {
    throw ModelError(node.fOffset, Quote(node.fText) + " has no result and cannot stand inside an expression");
  }
  const bool fits = CanBeResult(*choice.fOperator, result);
  const VokTarnValueId value = Apply(choice, operands, fits ? result : vokNoValue, true);
  fOperations.emplace(operation, value);
  double estimate = EstimateSize(operands[0]);
  if (operands.size() > 1 && operands[1] != operands[0]) {
    estimate *= EstimateSize(operands[1]);
  }
  fEstimates.emplace(value, estimate);
  return value;
}

VokTarnValueId Compiler::CompileCall(const Nodes& nodes, const Node& node, VokTarnValueId result) {
  std::vector<VokTarnValueId> operands;
  for (NodeIndex i = node.fLeft; i < node.fRight; ++i) {
    operands.push_back(nodes.fValues[nodes.fFormula.fMembers[i]]);
  }
  const std::vector<VokTarnType> types = GetTypes(operands);
  const VokTarnOperatorDescriptor* chosen = fTable.ChooseList(
      node.fText, std::span(types).subspan(node.fHasBeside ? 1 : 0), node.fHasBeside ? types[0] : nullptr);
  if (chosen == nullptr || chosen->GetResultType() == nullptr) {
    throw MakeOperatorError(fTable, {node.fText, node.fOffset}, types);
  }
  return fTable.Apply(fNetwork, {chosen, {}}, operands, CanBeResult(*chosen, result) ? result : vokNoValue, true);
}

bool Compiler::CanBeResult(const VokTarnOperatorDescriptor& row, VokTarnValueId value) const {
  if (value == vokNoValue || row.GetResultType() == nullptr) {
    return false;
  }
  const bool isInteger =
      VokTarnInteger::sDescriptor != nullptr && VokTarnInteger::sDescriptor->IsMatched(row.GetResultType()) != 0;
  return fNetwork.GetType(value) == row.GetResultType() ||
         (row.GetConstraint()->TakesAnyOperands() && isInteger && IsDerivedFrom(value, VokTarnInteger::sIdent));
}

VokTarnValueId Compiler::CompileLiteral(const Node& node) {
  const auto found = fLiterals.find(node.fText);
  if (found != fLiterals.end()) {
    return found->second;
  }
  const std::string text(node.fText);
  const VokTarnType type = FindLiteralType(text);
  if (type == nullptr) {
    throw MakeLiteralError(fModel, node);
  }
  ScratchValue literal(type);
  ReadLiteral(literal, text);
  const VokTarnValueId value = fNetwork.AddValue(type);
  fNetwork.Touch(value).Assign(literal.Get());
  fNetwork.NoteChange(value);
  fLiterals.emplace(node.fText, value);
  return value;
}

VokTarnType Compiler::FindLiteralType(const std::string& text) const {
  for (const VokTarnType type : fTable.GetTypes()) {
    if (IsConcrete(type)) {
      ScratchValue literal(type);
      if (ReadLiteral(literal, text)) {
        return type;
      }
    }
  }
  return nullptr;
}

VokTarnValueId Compiler::CompileCast(const Node& node, VokTarnValueId operand) {
  const VokTarnType from = fNetwork.GetType(operand);
  const VokTarnType to = fTable.FindType(node.fText);
  if (from == to) {
    return operand;
  }
  if (!fTable.HasCast(from, to)) {
    throw MakeCastError(fTable, node, from);
  }
  return Convert(operand, to);
}

VokTarnOperatorTable::Choice Compiler::Choose(const Word& name, std::span<const VokTarnValueId> operands) const {
  const std::vector<VokTarnType> types = GetTypes(operands);
  std::optional<VokTarnOperatorTable::Choice> choice = fTable.Choose(name.fText, types);
  if (!choice) {
    throw MakeOperatorError(fTable, name, types);
  }
  return *std::move(choice);
}

VokTarnValueId Compiler::Apply(const VokTarnOperatorTable::Choice& choice, std::span<const VokTarnValueId> operands,
                               VokTarnValueId result, bool wantResult) {
  // Conversions are made here, so that an operand of many operations is converted once.
  std::vector<VokTarnValueId> converted(operands.begin(), operands.end());
  for (std::size_t i = 0; i < converted.size(); ++i) {
    if (choice.fConversions[i] != nullptr) {
      converted[i] = Convert(converted[i], choice.fConversions[i]);
    }
  }
  const VokTarnOperatorTable::Choice plain{choice.fOperator, std::vector<VokTarnType>(converted.size(), nullptr)};
  return fTable.Apply(fNetwork, plain, converted, result, wantResult);
}

VokTarnValueId Compiler::Convert(VokTarnValueId from, VokTarnType to) {
  const Operation operation{to, from, vokNoValue};
  const auto found = fOperations.find(operation);
  if (found != fOperations.end()) {
    return found->second;
  }
  const VokTarnValueId value = fTable.Convert(fNetwork, from, to);
  fOperations.emplace(operation, value);
  return value;
}

std::vector<VokTarnType> Compiler::GetTypes(std::span<const VokTarnValueId> values) const {
  std::vector<VokTarnType> types;
  types.reserve(values.size());
  for (const VokTarnValueId value : values) {
    types.push_back(fNetwork.GetType(value));
  }
  return types;
}

bool Compiler::IsDerivedFrom(VokTarnValueId value, const char* ident) const {
  return fNetwork.GetValue(value).IsDerivedFrom(ident) != 0;
}

}  // namespace tarn
