// The entry point of the numbers module: publishes its three types and the operators over them.
#include <algorithm>
#include <array>
#include <string_view>

#include "framework/VokTarnModule.h"
#include "framework/VokTarnModuleManager.h"
#include "framework/VokTarnOperators.h"
#include "numbers/VokFenIntervalInteger.h"
#include "numbers/VokFenSingleBoolean.h"
#include "numbers/VokFenSingleInteger.h"

namespace {

using Kind = VokTarnOperatorKind;

// Operands and result in the order of the creators. S is "int", V "interval int", I any integer, B "bool"; a row with
// a working type has it last.
struct Row {
  const char* name;
  Kind kind;
  const char* constraint;
  const char* types;
};

// Several lists of types stand for as many rows of the same name, separated by blanks.
constexpr Row sRows[] = {
    {"+", Kind::Binary, "VokTarnAdditionConstraint", "SSS SVV VSV VVV"},
    {"*", Kind::Binary, "VokTarnMultiplicationConstraint", "SSS SVV VSV VVV"},
    {"mod", Kind::Binary, "VokTarnRemainderConstraint", "SSS SVV VSV VVV"},
    {"/\\", Kind::Binary, "VokTarnMinimumConstraint", "SSS SVV VSV VVV"},
    {"\\/", Kind::Binary, "VokTarnMaximumConstraint", "SSS SVV VSV VVV"},
    {"^", Kind::Binary, "VokTarnPowerConstraint", "SSS SVV VSV VVV"},
    {"-", Kind::FirstInverseBinary, "VokTarnAdditionConstraint", "SSSS SVVV VSVV VVVV"},
    {"/", Kind::FirstInverseBinary, "VokTarnMultiplicationConstraint", "SSSS SVVV VSVV VVVV"},
    {"-", Kind::Unary, "VokTarnNumberNegationConstraint", "SS VV"},
    {"abs", Kind::Unary, "VokTarnAbsoluteConstraint", "SS VV"},
    {"sign", Kind::InverseUnary, "VokTarnSignumConstraint", "SSS VVV"},
    {"next", Kind::Unary, "VokTarnNextConstraint", "SS VV"},
    {"prev", Kind::InverseUnary, "VokTarnNextConstraint", "SSS VVV"},
    {"(int)", Kind::Unary, "VokTarnEqualConstraint", "SV"},
    {"=", Kind::Binary, "VokTarnEqualTernaryConstraint", "SSS SVV VSV VVV BBB"},
    {"<>", Kind::Binary, "VokTarnUnequalTernaryConstraint", "SSS SVV VSV VVV BBB"},
    {">=", Kind::Binary, "VokTarnLessOrEqualTernaryConstraint", "SSS SVV VSV VVV"},
    {">", Kind::Binary, "VokTarnLessTernaryConstraint", "SSS SVV VSV VVV"},
    {"<=", Kind::SymmetricBinary, "VokTarnLessOrEqualTernaryConstraint", "SSS SVV VSV VVV"},
    {"<", Kind::SymmetricBinary, "VokTarnLessTernaryConstraint", "SSS SVV VSV VVV"},
    {"==", Kind::SecondInverseBinary, "VokTarnBooleanEqualConstraint", "SSBS SVBV VSBV VVBV BBBB"},
    {">>", Kind::SecondInverseBinary, "VokTarnBooleanLessConstraint", "SSBS SVBV VSBV VVBV"},
    {">==", Kind::SecondInverseBinary, "VokTarnBooleanLessOrEqualConstraint", "SSBS SVBV VSBV VVBV"},
    {"<<", Kind::SecondInverseSymmetric, "VokTarnBooleanLessConstraint", "SSBS SVBV VSBV VVBV"},
    {"<==", Kind::SecondInverseSymmetric, "VokTarnBooleanLessOrEqualConstraint", "SSBS SVBV VSBV VVBV"},
    {"!", Kind::Unary, "VokTarnBooleanNotConstraint", "BB"},
    {"&&", Kind::Binary, "VokTarnBooleanAndConstraint", "BBB"},
    {"||", Kind::Binary, "VokTarnBooleanOrConstraint", "BBB"},
    {"->", Kind::Binary, "VokTarnBooleanImpliesConstraint", "BBB"},
    {"<->", Kind::SecondInverseBinary, "VokTarnBooleanEqualConstraint", "BBBB"},
    {"sum", Kind::ListFunction, "VokTarnLinearConstraint", "IV"},
    {"count", Kind::ListFunction, "VokTarnCountConstraint", "IIV"},
};

VokTarnType TypeOf(char letter) {
  switch (letter) {
    case 'S':
      return VokFenSingleInteger::sDescriptor;
    case 'V':
      return VokFenIntervalInteger::sDescriptor;
    case 'I':
      return VokTarnInteger::sDescriptor;
    default:
      return VokFenSingleBoolean::sDescriptor;
  }
}

VokTarnObjectDescriptor* CreateOperator(const Row& row, std::string_view letters, VokTarnConstraintType constraint) {
  std::array<VokTarnType, 4> types{};
  std::transform(letters.begin(), letters.end(), types.begin(), TypeOf);
  return VokTarnCreateOperator(row.kind, row.name, {types.data(), letters.size()}, constraint);
}

// The constraint classes stand in a library above this one, so they are found by name.
VokTarnConstraintType FindConstraint(const VokTarnModule& module, const char* name) {
  const VokTarnObjectDescriptor* const found = module.FindDescriptor(name);
  if (found == nullptr || found->IsDerivedFrom(VokTarnConstraintDescriptor::sIdent) == 0) {
    return nullptr;
  }
  return static_cast<VokTarnConstraintType>(found);
}

// Publishes an operator for each list of types of the row.
int AddRow(VokTarnModule& module, const Row& row, VokTarnConstraintType constraint) {
  std::string_view rest(row.types);
  while (!rest.empty()) {
    const std::string_view types = rest.substr(0, rest.find(' '));
    if (module.AddObjectDescriptor(CreateOperator(row, types, constraint)) == 0) {
      return 0;
    }
    rest.remove_prefix(types.size() < rest.size() ? types.size() + 1 : types.size());
  }
  return 1;
}

}  // namespace

extern "C" VOKTARN_EXPORT int InitModule(VokTarnModule* module, VokTarnModuleManager* manager) {
  if (module == nullptr || manager == nullptr) {
    return 0;
  }
  VokTarnModule* const abstractTypes = manager->OpenModule("VokFenAbstractTypes");
  if (abstractTypes == nullptr) {
    return 0;
  }
  module->AddLoadedModule(abstractTypes);
  module->AddObjectDescriptor(VokFenSingleInteger::MakeDescriptor());
  module->AddObjectDescriptor(VokFenIntervalInteger::MakeDescriptor());
  module->AddObjectDescriptor(VokFenSingleBoolean::MakeDescriptor());
  for (const Row& row : sRows) {
    const VokTarnConstraintType constraint = FindConstraint(*abstractTypes, row.constraint);
    if (constraint == nullptr || AddRow(*module, row, constraint) == 0) {
      return 0;
    }
  }
  return 1;
}
