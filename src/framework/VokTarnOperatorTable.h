#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "framework/VokTarnModuleManager.h"
#include "framework/VokTarnOperatorDescriptor.h"

class VokTarnNetwork;

// The vocabulary of the loaded modules: their types and operators by name, and the choice of an operator for given
// operand types.
//
// The choice, for a name and operand types, is the first that exists of
//   1. a row with exactly these types;
//   2. a row that matches through an abstract type and whose constraint takes operands of all types;
//   3. a row that casts reach, the one with the fewest casts;
//   4. a row that matches through an abstract type: its operands are brought to the row's result type by values kept
//   equal to them.
// Within each, the row published first. Operands of another type than the row's never reach the
// constraint of a typed row themselves.
//
// Lifetime  Refers to the manager's descriptors; Refresh() after a further module has been opened.
class VOKTARN_EXPORT VokTarnOperatorTable {
 public:
  // A chosen operator: operand i is first converted to conversions[i] (null: taken as it is).
  struct Choice {
    const VokTarnOperatorDescriptor* fOperator;
    std::vector<VokTarnType> fConversions;
  };

  explicit VokTarnOperatorTable(const VokTarnModuleManager& manager);

  // Adds what the modules opened since the last time publish. Returns whether there were any.
  bool Refresh();

  // The concrete and abstract types, in order of publication; null when there is none of that name.
  const std::vector<VokTarnType>& GetTypes() const noexcept { return fTypes; }
  VokTarnType FindType(std::string_view name) const noexcept;
  bool HasOperator(std::string_view name) const noexcept { return fOperators.contains(name); }
  // Every operator name, sorted.
  std::vector<std::string_view> GetOperatorNames() const;
  // The rows of one name in order of publication; empty when there is none.
  std::span<const VokTarnOperatorDescriptor* const> GetRows(std::string_view name) const noexcept;

  std::optional<Choice> Choose(std::string_view name, std::span<const VokTarnType> operandTypes) const;
  // The operator of that name that takes a list of members of these types, and beside it an operand of type `beside`
  // (null: none); null when there is none.
  const VokTarnOperatorDescriptor* ChooseList(std::string_view name, std::span<const VokTarnType> memberTypes,
                                              VokTarnType beside = nullptr) const;
  // Whether a value of type `from` can be kept equal to one of type `to`.
  bool CanConvert(VokTarnType from, VokTarnType to) const noexcept;
  // Whether a cast row leads from one type to the other, either way: a cast is an equality.
  bool HasCast(VokTarnType from, VokTarnType to) const noexcept;

  // Adds the operation to the network: conversions, the constraint, and a new result value when `result` is
  // vokNoValue and `wantResult` is set. Returns the result's number (vokNoValue when there is none).
  // Throws std::bad_alloc; std::invalid_argument when a value cannot be built.
  VokTarnValueId Apply(VokTarnNetwork& network, const Choice& choice, std::span<const VokTarnValueId> operands,
                       VokTarnValueId result, bool wantResult, std::span<const VokLong> constants = {}) const;
  // A new value of type `to`, kept equal to value `from`.
  VokTarnValueId Convert(VokTarnNetwork& network, VokTarnValueId from, VokTarnType to) const;

 private:
  void Add(const VokTarnObjectDescriptor& descriptor);
  VokTarnType ResultType(VokTarnType declared, VokTarnType operand) const noexcept;

  const VokTarnModuleManager& fManager;
  std::size_t fModulesSeen = 0;
  std::vector<VokTarnType> fTypes;
  std::map<std::string_view, std::vector<const VokTarnOperatorDescriptor*>> fOperators;
  std::vector<const VokTarnOperatorDescriptor*> fCasts;
  VokTarnConstraintType fEquality = nullptr;
};
