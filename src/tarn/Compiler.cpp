#include "tarn/Compiler.h"

#include <array>

#include "framework/VokTarnBoolean.h"
#include "tarn/CompileErrors.h"
#include "tarn/Diagnostic.h"
#include "tarn/ValueText.h"

namespace tarn {
namespace {

constexpr std::string_view sEquality = "=";

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
  ReadDomain(domain, type, declaration.fDomain, declaration.fDomainOffset);
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
      return PostList(formula);
    case Formula::Kind::Minimize:
    case Formula::Kind::Maximize:
      return PostObjective(formula);
  }
}

void Compiler::PostRelations(const Formula& formula) {
  // "operation = name": the variable itself is the operation's result, without a value between them.
  std::optional<NodeIndex> target;
  VokTarnValueId result = vokNoValue;
  if (formula.fOperators.size() == 1 && formula.fOperators[0].fText == sEquality) {
    for (const std::size_t side : {0U, 1U}) {
      const Node& name = formula.fNodes[formula.fRoots[side]];
      const Node& other = formula.fNodes[formula.fRoots[1 - side]];
      if (name.fKind == Node::Kind::Variable &&
          (other.fKind == Node::Kind::Unary || other.fKind == Node::Kind::Binary)) {
        target = formula.fRoots[1 - side];
        result = fVariables[name.fLeft];
      }
    }
  }
  const std::vector<VokTarnValueId> values = CompileNodes(formula, target, result);
  if (target && values[*target] == result) {
    return;
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
  const std::vector<VokTarnValueId> values = CompileNodes(formula);
  std::vector<VokTarnValueId> operands;
  for (const NodeIndex root : formula.fRoots) {
    operands.push_back(values[root]);
  }
  const Word& name = formula.fOperators[0];
  const std::vector<VokTarnType> types = GetTypes(operands);
  const VokTarnOperatorDescriptor* chosen = fTable.ChooseList(name.fText, types);
  if (chosen == nullptr) {
    throw MakeOperatorError(fTable, name, types);
  }
  Apply({chosen, std::vector<VokTarnType>(operands.size(), nullptr)}, operands, vokNoValue, false);
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

std::vector<VokTarnValueId> Compiler::CompileNodes(const Formula& formula, std::optional<NodeIndex> target,
                                                   VokTarnValueId result) {
  std::vector<VokTarnValueId> values;
  values.reserve(formula.fNodes.size());
  for (const Node& node : formula.fNodes) {
    const VokTarnValueId wanted = target == values.size() ? result : vokNoValue;
    switch (node.fKind) {
      case Node::Kind::Variable:
        values.push_back(fVariables[node.fLeft]);
        break;
      case Node::Kind::Literal:
        values.push_back(CompileLiteral(node));
        break;
      case Node::Kind::Unary:
        values.push_back(CompileOperation(node, std::array{values[node.fLeft]}, wanted));
        break;
      case Node::Kind::Binary:
        values.push_back(CompileOperation(node, std::array{values[node.fLeft], values[node.fRight]}, wanted));
        break;
      case Node::Kind::Cast:
        values.push_back(CompileCast(node, values[node.fLeft]));
        break;
    }
  }
  return values;
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
  const bool fits = result != vokNoValue && fNetwork.GetType(result) == choice.fOperator->GetResultType();
  const VokTarnValueId value = Apply(choice, operands, fits ? result : vokNoValue, true);
  fOperations.emplace(operation, value);
  return value;
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
