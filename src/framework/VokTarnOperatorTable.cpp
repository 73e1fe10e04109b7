#include "framework/VokTarnOperatorTable.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

#include "framework/VokTarnInteger.h"
#include "framework/VokTarnNetwork.h"

namespace {

// The constraint class that keeps a converted operand equal to its origin.
constexpr std::string_view kEquality = "VokTarnEqualConstraint";

bool IsInteger(VokTarnType type) {
  return type != nullptr && VokTarnInteger::sDescriptor != nullptr && VokTarnInteger::sDescriptor->IsMatched(type) != 0;
}

bool IsConcrete(VokTarnType type) {
  return type != nullptr && type->GetObjectSize() != 0;
}

bool TakesAnyOperands(const VokTarnOperatorDescriptor& row) {
  return row.GetConstraint() != nullptr && row.GetConstraint()->TakesAnyOperands();
}

// The place among the operands that becomes the constraint's last argument: the one that does the work. The
// result does where there is none.
std::optional<unsigned> WorkingOperand(const VokTarnOperatorDescriptor& row) {
  using Kind = VokTarnOperatorDescriptor::Kind;
  switch (row.GetKind()) {
    case Kind::InverseUnary:
    case Kind::FirstInverseBinary:
    case Kind::SecondInverseBinary:
      return 0U;
    case Kind::SecondInverseSymmetric:
      return 1U;
    default:
      return std::nullopt;
  }
}

// The operand whose type the result of a row over abstract types takes: the right one; beside a list, the first that is
// not a constant, for a constant's type need not hold more than one value.
VokTarnValueId ModelOperand(const VokTarnNetwork& network, const VokTarnOperatorDescriptor& row,
                            std::span<const VokTarnValueId> operands) {
  if (row.TakesList()) {
    const auto open = std::find_if(operands.begin(), operands.end(), [&network](VokTarnValueId operand) {
      return network.GetValue(operand).GetCardinality() != 1;
    });
    if (open != operands.end()) {
      return *open;
    }
  }
  return operands.back();
}

void AddNew(VokTarnNetwork& network, const VokTarnConstraintDescriptor& type, std::span<const VokTarnValueId> arguments,
            VokTarnForm form, std::span<const VokLong> constants) {
  std::unique_ptr<VokTarnConstraint> constraint(type.Create(arguments, form, constants));
  if (constraint == nullptr) {
    throw std::bad_alloc();
  }
  network.AddConstraint(std::move(constraint));
}

}  // namespace

VokTarnOperatorTable::VokTarnOperatorTable(const VokTarnModuleManager& manager) : fManager(manager) {
  Refresh();
}

bool VokTarnOperatorTable::Refresh() {
  const std::vector<VokTarnModule*>& modules = fManager.GetModules();
  const bool isNew = fModulesSeen < modules.size();
  try {
    for (; fModulesSeen < modules.size(); ++fModulesSeen) {
      for (const auto& descriptor : modules[fModulesSeen]->GetDescriptors()) {
        if (descriptor != nullptr) {
          Add(*descriptor);
        }
      }
    }
  } catch (...) {
    // Half of a module is worse than none: the next time begins anew.
    fModulesSeen = 0;
    fTypes.clear();
    fOperators.clear();
    fCasts.clear();
    throw;
  }
  return isNew;
}

void VokTarnOperatorTable::Add(const VokTarnObjectDescriptor& descriptor) {
  if (descriptor.IsDerivedFrom(VokTarnOperatorDescriptor::sIdent) != 0) {
    const auto& row = static_cast<const VokTarnOperatorDescriptor&>(descriptor);
    fOperators[row.GetName().View()].push_back(&row);
    if (row.IsCast()) {
      fCasts.push_back(&row);
    }
  } else if (descriptor.IsDerivedFrom(VokTarnConstraintDescriptor::sIdent) == 0) {
    fTypes.push_back(&descriptor);
  } else if (descriptor.GetName().View() == kEquality) {
    fEquality = static_cast<VokTarnConstraintType>(&descriptor);
  }
}

VokTarnType VokTarnOperatorTable::FindType(std::string_view name) const noexcept {
  const auto found =
      std::find_if(fTypes.begin(), fTypes.end(), [name](VokTarnType type) { return type->GetName().View() == name; });
  return found == fTypes.end() ? nullptr : *found;
}

std::vector<std::string_view> VokTarnOperatorTable::GetOperatorNames() const {
  std::vector<std::string_view> names;
  names.reserve(fOperators.size());
  for (const auto& [name, rows] : fOperators) {
    names.push_back(name);
  }
  return names;
}

std::span<const VokTarnOperatorDescriptor* const> VokTarnOperatorTable::GetRows(std::string_view name) const noexcept {
  const auto found = fOperators.find(name);
  return found == fOperators.end() ? std::span<const VokTarnOperatorDescriptor* const>() : found->second;
}

bool VokTarnOperatorTable::CanConvert(VokTarnType from, VokTarnType to) const noexcept {
  return fEquality != nullptr && IsInteger(from) && IsInteger(to) && IsConcrete(to);
}

bool VokTarnOperatorTable::HasCast(VokTarnType from, VokTarnType to) const noexcept {
  return CanConvert(from, to) &&
         std::any_of(fCasts.begin(), fCasts.end(), [from, to](const VokTarnOperatorDescriptor* cast) {
           const VokTarnType operand = cast->GetOperandType(0);
           const VokTarnType result = cast->GetResultType();
           return (operand == from && result == to) || (operand == to && result == from);
         });
}

std::optional<VokTarnOperatorTable::Choice> VokTarnOperatorTable::Choose(
    std::string_view name, std::span<const VokTarnType> operandTypes) const {
  // The ways in which an operand may meet a row's type, weakest demand last; the better row has the better
  // worst operand, then the fewer conversions.
  enum Rank : unsigned { Exact, AnyOperands, Cast, Abstract, None };
  const auto castsTo = [this](VokTarnType from, VokTarnType to) {
    return std::any_of(fCasts.begin(), fCasts.end(), [from, to](const VokTarnOperatorDescriptor* cast) {
      return cast->GetOperandType(0) == from && cast->GetResultType() == to;
    });
  };
  std::optional<Choice> best;
  unsigned bestRank = None;
  unsigned bestConversions = std::numeric_limits<unsigned>::max();
  for (const VokTarnOperatorDescriptor* row : GetRows(name)) {
    if (row->GetOperandCount() != operandTypes.size() || row->GetConstraint() == nullptr) {
      continue;
    }
    const bool anyOperands = TakesAnyOperands(*row);
    unsigned rank = Exact;
    unsigned conversions = 0;
    Choice choice{row, std::vector<VokTarnType>(operandTypes.size(), nullptr)};
    for (unsigned i = 0; i < operandTypes.size() && rank != None; ++i) {
      const VokTarnType type = operandTypes[i];
      const VokTarnType wanted = row->GetOperandType(i);
      unsigned operandRank = None;
      if (wanted == type) {
        operandRank = Exact;
      } else if (wanted != nullptr && wanted->IsMatched(type) != 0) {
        if (anyOperands) {
          operandRank = AnyOperands;
        } else if (type == row->GetResultType()) {
          operandRank = Abstract;
        } else if (CanConvert(type, row->GetResultType())) {
          operandRank = Abstract;
          choice.fConversions[i] = row->GetResultType();
        }
      } else if (castsTo(type, wanted) && CanConvert(type, wanted)) {
        operandRank = Cast;
        choice.fConversions[i] = wanted;
      }
      conversions += choice.fConversions[i] != nullptr ? 1U : 0U;
      rank = std::max(rank, operandRank);
    }
    const std::optional<unsigned> working = WorkingOperand(*row);
    if (rank != None && working && !anyOperands && row->GetWorkingType() != nullptr) {
      VokTarnType& conversion = choice.fConversions[*working];
      const VokTarnType type = conversion != nullptr ? conversion : operandTypes[*working];
      if (type != row->GetWorkingType()) {
        if (!CanConvert(type, row->GetWorkingType())) {
          continue;
        }
        conversion = row->GetWorkingType();
      }
    }
    if (rank < bestRank || (rank == bestRank && rank != None && conversions < bestConversions)) {
      bestRank = rank;
      bestConversions = conversions;
      best = std::move(choice);
    }
  }
  return best;
}

const VokTarnOperatorDescriptor* VokTarnOperatorTable::ChooseList(std::string_view name,
                                                                  std::span<const VokTarnType> memberTypes,
                                                                  VokTarnType beside) const {
  for (const VokTarnOperatorDescriptor* row : GetRows(name)) {
    const VokTarnType wanted = row->GetOperandType(1);
    if (!row->TakesList() || row->GetConstraint() == nullptr || (wanted == nullptr) != (beside == nullptr) ||
        (wanted != nullptr && wanted->IsMatched(beside) == 0)) {
      continue;
    }
    const VokTarnType element = row->GetOperandType(0);
    if (element != nullptr && std::all_of(memberTypes.begin(), memberTypes.end(),
                                          [element](VokTarnType type) { return element->IsMatched(type) != 0; })) {
      return row;
    }
  }
  return nullptr;
}

// A row over abstract types has a result of the operand's type where that fits, else of the first published type that
// does.
VokTarnType VokTarnOperatorTable::ResultType(VokTarnType declared, VokTarnType operand) const noexcept {
  if (IsConcrete(declared) || declared->IsMatched(operand) != 0) {
    return IsConcrete(declared) ? declared : operand;
  }
  const auto found = std::find_if(fTypes.begin(), fTypes.end(), [declared](VokTarnType type) {
    return IsConcrete(type) && declared->IsMatched(type) != 0;
  });
  return found == fTypes.end() ? declared : *found;
}

VokTarnValueId VokTarnOperatorTable::Convert(VokTarnNetwork& network, VokTarnValueId from, VokTarnType to) const {
  if (!CanConvert(network.GetType(from), to)) {
    throw std::invalid_argument("a value cannot be converted to this type");
  }
  const VokTarnValueId converted = network.AddValue(to);
  const std::array<VokTarnValueId, 2> arguments = {from, converted};
  AddNew(network, *fEquality, arguments, VokTarnForm::Plain, {});
  return converted;
}

VokTarnValueId VokTarnOperatorTable::Apply(VokTarnNetwork& network, const Choice& choice,
                                           std::span<const VokTarnValueId> operands, VokTarnValueId result,
                                           bool wantResult, std::span<const VokLong> constants) const {
  std::vector<VokTarnValueId> taken(operands.begin(), operands.end());
  for (std::size_t i = 0; i < choice.fConversions.size(); ++i) {
    if (choice.fConversions[i] != nullptr) {
      taken[i] = Convert(network, taken[i], choice.fConversions[i]);
    }
  }
  const VokTarnType declared = choice.fOperator->GetResultType();
  if (result == vokNoValue && wantResult && declared != nullptr) {
    const bool isSettled = IsConcrete(declared) || taken.empty();
    result = network.AddValue(
        isSettled ? declared : ResultType(declared, network.GetType(ModelOperand(network, *choice.fOperator, taken))));
  }
  const std::vector<VokTarnValueId> arguments = choice.fOperator->ArrangeArguments(taken, result);
  AddNew(network, *choice.fOperator->GetConstraint(), arguments, choice.fOperator->GetForm(), constants);
  return result;
}
