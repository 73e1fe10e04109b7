#pragma once

#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "framework/VokTarnNetwork.h"
#include "framework/VokTarnOperatorTable.h"
#include "framework/VokTarnSearch.h"
#include "framework/VokTarnSumPlan.h"
#include "tarn/Model.h"
#include "tarn/Sum.h"

namespace tarn {

// Builds the network of a model: a value for each variable, literal and operation, a constraint for each operation and
// relation. All that it knows of types and operators comes from the operator table.
//
// Sharing  Equal literals are one value; the same operator over the same operands is one operation, and one operand
//          is converted to one type once. Propagation through a shared value is stronger than through copies, and
//          sharing is right everywhere because every operation must have a value, also inside a truth value.
// Sums     A sum is a chain of additions while the sets of its partial sums stay small; otherwise it is one linear
//          constraint, which narrows by bounds at a cost that does not depend on the sets. It is both when its terms
//          are few and small: the partial sums can be listed once some terms are known.
// Errors   Throws ModelError. The network is then incomplete and only good to be thrown away.
class Compiler {
 public:
  // An operation by its operator (an interned spelling, or the type of a conversion) and operands.
  struct Operation {
    const void* fOperator;
    VokTarnValueId fLeft;
    VokTarnValueId fRight;
    bool operator==(const Operation&) const = default;
  };
  struct OperationHash {
    std::size_t operator()(const Operation& operation) const noexcept;
  };

  Compiler(const VokTarnOperatorTable& table, VokTarnNetwork& network, const Model& model)
      : fTable(table), fNetwork(network), fModel(model) {}

  // Adds the variables of a declaration, which the model has not yet taken in.
  void Declare(const Declaration& declaration);
  void Post(const Formula& formula);

  // The values of the declared variables, in order of declaration.
  const std::vector<VokTarnValueId>& GetVariables() const noexcept { return fVariables; }
  const std::optional<VokTarnSearch::Objective>& GetObjective() const noexcept { return fObjective; }
  // The truth values that are statements, in order of the statements.
  const std::vector<VokTarnValueId>& GetTruths() const noexcept { return fTruths; }
  // The operations, each with the value of its result.
  const std::unordered_map<Operation, VokTarnValueId, OperationHash>& GetOperations() const noexcept {
    return fOperations;
  }

 private:
  // The nodes of a formula and the values that they have got so far.
  struct Nodes {
    explicit Nodes(const Formula& formula);
    // The sum, of two leaves, is dealt with elsewhere.
    void Skip(const Sum& sum);

    const Formula& fFormula;
    std::vector<Sum> fSums;
    std::vector<const Sum*> fSumOf;  // per node, the sum of which it is an inner node, or null
    std::vector<bool> fIsSkipped;    // per node, whether it needs no value
    std::vector<VokTarnValueId> fValues;
  };

  // Gives each node its value.
  std::vector<VokTarnValueId> CompileNodes(const Formula& formula);
  // Nodes from `first` up to `root`, which gives its result to the value `result` where its type allows.
  void CompileRange(Nodes& nodes, NodeIndex first, NodeIndex root, VokTarnValueId result);
  VokTarnValueId CompileNode(const Nodes& nodes, NodeIndex index, VokTarnValueId result);
  VokTarnValueId CompileSum(Nodes& nodes, const Sum& sum, VokTarnValueId result);
  VokTarnValueId CompileChain(Nodes& nodes, const Sum& sum, VokTarnValueId result);
  VokTarnValueId CompileOperation(const Node& node, std::span<const VokTarnValueId> operands, VokTarnValueId result);
  VokTarnValueId CompileCall(const Nodes& nodes, const Node& node, VokTarnValueId result);
  VokTarnValueId CompileLiteral(const Node& node);
  VokTarnValueId CompileCast(const Node& node, VokTarnValueId operand);
  void PostRelations(const Formula& formula);
  void PostTruth(const Formula& formula);
  void PostList(const Formula& formula);
  void PostObjective(const Formula& formula);
  void PostRelation(const Word& name, VokTarnValueId left, VokTarnValueId right);

  // Whether the value can be the result of the operator itself.
  bool CanBeResult(const VokTarnOperatorDescriptor& row, VokTarnValueId value) const;
  // The variable and the number of which the node is the sum, where that is certain to stay inside the integers.
  std::optional<std::pair<VokTarnValueId, VokLong>> FindShifted(const Nodes& nodes, NodeIndex index) const;
  // Makes one term of those over the same value, where no order of them can leave the integers.
  void MergeTerms(std::vector<VokTarnValueId>& operands, std::vector<VokLong>& coefficients) const;
  VokTarnSumPlan PlanSum(const Sum& sum, std::span<const VokTarnValueId> operands, VokTarnValueId result) const;
  double EstimateSize(VokTarnValueId value) const;

  VokTarnOperatorTable::Choice Choose(const Word& name, std::span<const VokTarnValueId> operands) const;
  VokTarnValueId Apply(const VokTarnOperatorTable::Choice& choice, std::span<const VokTarnValueId> operands,
                       VokTarnValueId result, bool wantResult);
  VokTarnValueId Convert(VokTarnValueId from, VokTarnType to);
  VokTarnType FindLiteralType(const std::string& text) const;
  std::vector<VokTarnType> GetTypes(std::span<const VokTarnValueId> values) const;
  bool IsDerivedFrom(VokTarnValueId value, const char* ident) const;

  const VokTarnOperatorTable& fTable;
  VokTarnNetwork& fNetwork;
  const Model& fModel;
  std::vector<VokTarnValueId> fVariables;
  std::vector<VokTarnValueId> fTruths;
  std::unordered_map<std::string_view, VokTarnValueId> fLiterals;
  std::unordered_map<Operation, VokTarnValueId, OperationHash> fOperations;
  // An upper bound on the number of values that the result of an operation will have, where the value does not tell.
  std::unordered_map<VokTarnValueId, double> fEstimates;
  std::optional<VokTarnSearch::Objective> fObjective;
};

}  // namespace tarn
