#include "module/operatorTable.h"

#include <algorithm>
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

enum class Creator {
  Unary,
  InverseUnary,
  Binary,
  SymmetricBinary,
  FirstInverseBinary,
  SecondInverseBinary,
  SecondInverseSymmetric
};

struct Line {
  const char* name;
  Creator creator;
  const char* rows;
  const VokTarnConstraintDescriptor* const* constraint;
};

// Rows of operand types that several operators share.
constexpr char kEveryOperand[] = "SEE ESE EEE EIE IEE";
constexpr char kTruthValue[] = "SEBE ESBE VEBE EVBE EEBE";

// name        the operator
// creator     the factory of the framework that makes it
// rows        one registration per word. The letters are the descriptors that the factory takes, in its order:
//             operands, result and, for an inverse operator, the working type.
//             E enumerated set, S single, V interval, B boolean, I any integer type.
// constraint  where the constraint class keeps its descriptor
//
// The order of the rows is part of the module's interface, the split of "=" into two runs included. The
// orders ">=" and ">" share the constraints of "<=" and "<", whose operands are exchanged by the symmetric factory.
constexpr Line kLines[] = {
    {"+", Creator::Binary, kEveryOperand, &VokTarnAdditionConstraint::sDescriptor},
    {"*", Creator::Binary, kEveryOperand, &VokTarnMultiplicationConstraint::sDescriptor},
    {"^", Creator::Binary, "SEE ESE EEE", &VokTarnPowerConstraint::sDescriptor},
    {"=", Creator::Binary, kEveryOperand, &VokTarnEqualTernaryConstraint::sDescriptor},
    {"<>", Creator::Binary, kEveryOperand, &VokTarnUnequalTernaryConstraint::sDescriptor},
    {">=", Creator::Binary, kEveryOperand, &VokTarnLessOrEqualTernaryConstraint::sDescriptor},
    {"/\\", Creator::Binary, kEveryOperand, &VokTarnMinimumConstraint::sDescriptor},
    {"\\/", Creator::Binary, kEveryOperand, &VokTarnMaximumConstraint::sDescriptor},
    {">", Creator::Binary, kEveryOperand, &VokTarnLessTernaryConstraint::sDescriptor},
    {"=", Creator::Binary, "VEE EVE", &VokTarnEqualTernaryConstraint::sDescriptor},
    {"<=", Creator::SymmetricBinary, "SEE ESE EEE", &VokTarnLessOrEqualTernaryConstraint::sDescriptor},
    {"<", Creator::SymmetricBinary, "SEE ESE EEE", &VokTarnLessTernaryConstraint::sDescriptor},
    {"-", Creator::FirstInverseBinary, "SEEE ESEE EEEE", &VokTarnAdditionConstraint::sDescriptor},
    {"/", Creator::FirstInverseBinary, "SEEE ESEE EEEE", &VokTarnMultiplicationConstraint::sDescriptor},
    {"-", Creator::Unary, "EE", &VokTarnNumberNegationConstraint::sDescriptor},
    {"sign", Creator::InverseUnary, "EEE", &VokTarnSignumConstraint::sDescriptor},
    {"abs", Creator::Unary, "EE", &VokTarnAbsoluteConstraint::sDescriptor},
    {"next", Creator::Unary, "EE", &VokTarnNextConstraint::sDescriptor},
    {"(interval int)", Creator::Unary, "VE", &VokTarnEqualConstraint::sDescriptor},
    {"prev", Creator::InverseUnary, "EEE", &VokTarnNextConstraint::sDescriptor},
    {"==", Creator::SecondInverseBinary, kTruthValue, &VokTarnBooleanEqualConstraint::sDescriptor},
    {">>", Creator::SecondInverseBinary, kTruthValue, &VokTarnBooleanLessConstraint::sDescriptor},
    {">==", Creator::SecondInverseBinary, kTruthValue, &VokTarnBooleanLessOrEqualConstraint::sDescriptor},
    {"<<", Creator::SecondInverseSymmetric, kTruthValue, &VokTarnBooleanLessConstraint::sDescriptor},
    {"<==", Creator::SecondInverseSymmetric, kTruthValue, &VokTarnBooleanLessOrEqualConstraint::sDescriptor},
    {"mod", Creator::Binary, kEveryOperand, &VokTarnRemainderConstraint::sDescriptor},
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

VokTarnObjectDescriptor* Create(const Line& line, const char* row) {
  const VokString name(line.name);
  const VokTarnConstraintType c = *line.constraint;
  const auto type = [row](int i) { return TypeOf(row[i]); };
  switch (line.creator) {
    case Creator::Unary:
      return VokTarnCreateUnaryOperator(name, type(0), type(1), c);
    case Creator::InverseUnary:
      return VokTarnCreateInverseUnaryOperator(name, type(0), type(1), type(2), c);
    case Creator::Binary:
      return VokTarnCreateBinaryOperator(name, type(0), type(1), type(2), c);
    case Creator::SymmetricBinary:
      return VokTarnCreateSymmetricBinaryOperator(name, type(0), type(1), type(2), c);
    case Creator::FirstInverseBinary:
      return VokTarnCreateFirstInverseBinaryOperator(name, type(0), type(1), type(2), type(3), c);
    case Creator::SecondInverseBinary:
      return VokTarnCreateSecondInverseBinaryOperator(name, type(0), type(1), type(2), type(3), c);
    case Creator::SecondInverseSymmetric:
      return VokTarnCreateSecondInverseSymmetricBinaryOperator(name, type(0), type(1), type(2), type(3), c);
  }
  return nullptr;
}

}  // namespace

void RegisterOperators(VokTarnModule& module) noexcept {
  for (const Line& line : kLines) {
    for (std::string_view rows = line.rows; !rows.empty();) {
      const std::size_t length = std::min(rows.find(' '), rows.size());
      module.AddObjectDescriptor(Create(line, rows.data()));
      rows.remove_prefix(std::min(length + 1, rows.size()));
    }
  }
}
