#include "module/operatorTable.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "constraints/VokTarnAbsoluteConstraint.h"
#include "constraints/VokTarnAdditionConstraint.h"
#include "constraints/VokTarnBooleanEqualConstraint.h"
#include "constraints/VokTarnBooleanLessConstraint.h"
#include "constraints/VokTarnBooleanLessOrEqualConstraint.h"
#include "constraints/VokTarnEqualConstraint.h"
#include "constraints/VokTarnEqualTernaryConstraint.h"
#include "constraints/VokTarnLessOrEqualTernaryConstraint.h"
#include "constraints/VokTarnLessTernaryConstraint.h"
#include "constraints/VokTarnMaximumConstraint.h"
#include "constraints/VokTarnMinimumConstraint.h"
#include "constraints/VokTarnMultiplicationConstraint.h"
#include "constraints/VokTarnNextConstraint.h"
#include "constraints/VokTarnNumberNegationConstraint.h"
#include "constraints/VokTarnPowerConstraint.h"
#include "constraints/VokTarnRemainderConstraint.h"
#include "constraints/VokTarnSignumConstraint.h"
#include "constraints/VokTarnUnequalTernaryConstraint.h"
#include "domain/VokFenEnumInteger.h"
#include "framework/VokTarnModule.h"
#include "framework/VokTarnOperators.h"
#include "numbers/VokFenSingleBoolean.h"

namespace {

using Kind = VokTarnOperatorKind;

struct Line {
  const char* name;
  Kind kind;
  const char* rows;
  const VokTarnConstraintDescriptor* const* constraint;
};

// Rows of operand types that several operators share.
constexpr char kEveryOperand[] = "SEE ESE EEE EIE IEE";
constexpr char kTruthValue[] = "SEBE ESBE VEBE EVBE EEBE";

// name        the operator
// kind        names the factory of the framework that makes it
// rows        one registration per word. The letters are the descriptors that the factory takes, in its order:
//             operands, result and, for an inverse operator, the working type.
//             E enumerated set, S single, V interval, B boolean, I any integer type.
// constraint  where the constraint class keeps its descriptor
//
// The order of the rows is part of the module's interface, the split of "=" into two runs included. The
// orders ">=" and ">" share the constraints of "<=" and "<", whose operands are exchanged by the symmetric factory.
constexpr Line kLines[] = {
    {"+", Kind::Binary, kEveryOperand, &VokTarnAdditionConstraint::sDescriptor},
    {"*", Kind::Binary, kEveryOperand, &VokTarnMultiplicationConstraint::sDescriptor},
    {"^", Kind::Binary, "SEE ESE EEE", &VokTarnPowerConstraint::sDescriptor},
    {"=", Kind::Binary, kEveryOperand, &VokTarnEqualTernaryConstraint::sDescriptor},
    {"<>", Kind::Binary, kEveryOperand, &VokTarnUnequalTernaryConstraint::sDescriptor},
    {">=", Kind::Binary, kEveryOperand, &VokTarnLessOrEqualTernaryConstraint::sDescriptor},
    {"/\\", Kind::Binary, kEveryOperand, &VokTarnMinimumConstraint::sDescriptor},
    {"\\/", Kind::Binary, kEveryOperand, &VokTarnMaximumConstraint::sDescriptor},
    {">", Kind::Binary, kEveryOperand, &VokTarnLessTernaryConstraint::sDescriptor},
    {"=", Kind::Binary, "VEE EVE", &VokTarnEqualTernaryConstraint::sDescriptor},
    {"<=", Kind::SymmetricBinary, "SEE ESE EEE", &VokTarnLessOrEqualTernaryConstraint::sDescriptor},
    {"<", Kind::SymmetricBinary, "SEE ESE EEE", &VokTarnLessTernaryConstraint::sDescriptor},
    {"-", Kind::FirstInverseBinary, "SEEE ESEE EEEE", &VokTarnAdditionConstraint::sDescriptor},
    {"/", Kind::FirstInverseBinary, "SEEE ESEE EEEE", &VokTarnMultiplicationConstraint::sDescriptor},
    {"-", Kind::Unary, "EE", &VokTarnNumberNegationConstraint::sDescriptor},
    {"sign", Kind::InverseUnary, "EEE", &VokTarnSignumConstraint::sDescriptor},
    {"abs", Kind::Unary, "EE", &VokTarnAbsoluteConstraint::sDescriptor},
    {"next", Kind::Unary, "EE", &VokTarnNextConstraint::sDescriptor},
    {"(interval int)", Kind::Unary, "VE", &VokTarnEqualConstraint::sDescriptor},
    {"prev", Kind::InverseUnary, "EEE", &VokTarnNextConstraint::sDescriptor},
    {"==", Kind::SecondInverseBinary, kTruthValue, &VokTarnBooleanEqualConstraint::sDescriptor},
    {">>", Kind::SecondInverseBinary, kTruthValue, &VokTarnBooleanLessConstraint::sDescriptor},
    {">==", Kind::SecondInverseBinary, kTruthValue, &VokTarnBooleanLessOrEqualConstraint::sDescriptor},
    {"<<", Kind::SecondInverseSymmetric, kTruthValue, &VokTarnBooleanLessConstraint::sDescriptor},
    {"<==", Kind::SecondInverseSymmetric, kTruthValue, &VokTarnBooleanLessOrEqualConstraint::sDescriptor},
    {"mod", Kind::Binary, kEveryOperand, &VokTarnRemainderConstraint::sDescriptor},
};

// Read at registration, because the descriptors are made when the modules are opened.
VokTarnType TypeOf(char letter) noexcept {
  switch (letter) {
    case 'E':
      return VokFenEnumInteger::sDescriptor;
    case 'S':
      return VokFenSingleInteger::sDescriptor;
    case 'V':
      return VokFenIntervalInteger::sDescriptor;
    case 'B':
      return VokFenSingleBoolean::sDescriptor;
    default:
      return VokTarnInteger::sDescriptor;
  }
}

VokTarnObjectDescriptor* Create(const Line& line, std::string_view row) {
  std::array<VokTarnType, 4> types{};
  std::transform(row.begin(), row.end(), types.begin(), TypeOf);
  return VokTarnCreateOperator(line.kind, line.name, {types.data(), row.size()}, *line.constraint);
}

}  // namespace

void RegisterOperators(VokTarnModule& module) noexcept {
  for (const Line& line : kLines) {
    for (std::string_view rows = line.rows; !rows.empty();) {
      const std::size_t length = std::min(rows.find(' '), rows.size());
      module.AddObjectDescriptor(Create(line, rows.substr(0, length)));
      rows.remove_prefix(std::min(length + 1, rows.size()));
    }
  }
}
