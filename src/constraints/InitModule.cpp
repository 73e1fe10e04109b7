// The entry point of the module of abstract types: the types' descriptors, the constraint classes, and the
// operators that hold for integers of every type.
#include "constraints/VokTarnAbsoluteConstraint.h"
#include "constraints/VokTarnAdditionConstraint.h"
#include "constraints/VokTarnAllDifferentConstraint.h"
#include "constraints/VokTarnAmongConstraint.h"
#include "constraints/VokTarnArithmeticConstraint.h"
#include "constraints/VokTarnBinPackingConstraint.h"
#include "constraints/VokTarnBooleanAndConstraint.h"
#include "constraints/VokTarnBooleanEqualConstraint.h"
#include "constraints/VokTarnBooleanImpliesConstraint.h"
#include "constraints/VokTarnBooleanLessConstraint.h"
#include "constraints/VokTarnBooleanLessOrEqualConstraint.h"
#include "constraints/VokTarnBooleanNotConstraint.h"
#include "constraints/VokTarnBooleanOrConstraint.h"
#include "constraints/VokTarnCircuitConstraint.h"
#include "constraints/VokTarnClauseConstraint.h"
#include "constraints/VokTarnConstantElementConstraint.h"
#include "constraints/VokTarnCountConstraint.h"
#include "constraints/VokTarnCumulativeConstraint.h"
#include "constraints/VokTarnDisjunctionConstraint.h"
#include "constraints/VokTarnDisjunctiveConstraint.h"
#include "constraints/VokTarnElementConstraint.h"
#include "constraints/VokTarnEqualConstraint.h"
#include "constraints/VokTarnEqualTernaryConstraint.h"
#include "constraints/VokTarnExtremePlaceConstraint.h"
#include "constraints/VokTarnExtremumConstraint.h"
#include "constraints/VokTarnGlobalCardinalityConstraint.h"
#include "constraints/VokTarnInverseConstraint.h"
#include "constraints/VokTarnLessOrEqualTernaryConstraint.h"
#include "constraints/VokTarnLessTernaryConstraint.h"
#include "constraints/VokTarnLexicographicOrderConstraint.h"
#include "constraints/VokTarnLinearConstraint.h"
#include "constraints/VokTarnLinearRelationConstraint.h"
#include "constraints/VokTarnMaximumConstraint.h"
#include "constraints/VokTarnMembershipConstraint.h"
#include "constraints/VokTarnMinimumConstraint.h"
#include "constraints/VokTarnMultiplicationConstraint.h"
#include "constraints/VokTarnNextConstraint.h"
#include "constraints/VokTarnNonOverlapConstraint.h"
#include "constraints/VokTarnNumberNegationConstraint.h"
#include "constraints/VokTarnNumberOfValuesConstraint.h"
#include "constraints/VokTarnOffsetRelationConstraint.h"
#include "constraints/VokTarnParityConstraint.h"
#include "constraints/VokTarnPowerConstraint.h"
#include "constraints/VokTarnRegularConstraint.h"
#include "constraints/VokTarnRemainderConstraint.h"
#include "constraints/VokTarnSignumConstraint.h"
#include "constraints/VokTarnSortConstraint.h"
#include "constraints/VokTarnTableConstraint.h"
#include "constraints/VokTarnUnequalTernaryConstraint.h"
#include "constraints/VokTarnValuePrecedenceConstraint.h"
#include "framework/VokTarnBoolean.h"
#include "framework/VokTarnInteger.h"
#include "framework/VokTarnModuleManager.h"
#include "framework/VokTarnOperators.h"

namespace {

using Operands = VokTarnConstraintDescriptor::Operands;

VokTarnObjectDescriptor* PublishType(VokTarnModule& module, const char* name) {
  auto* descriptor = new VokTarnObjectDescriptor(name, nullptr, 0);
  return module.AddObjectDescriptor(descriptor) != 0 ? descriptor : nullptr;
}

template <class Class>
bool Publish(VokTarnModule& module, unsigned arguments, Operands operands) {
  Class::sDescriptor = new VokTarnConstraintDescriptor(Class::CastableIdent, arguments, operands, &Class::Create);
  if (module.AddObjectDescriptor(Class::sDescriptor) == 0) {
    Class::sDescriptor = nullptr;
  }
  return Class::sDescriptor != nullptr;
}

// Constraints over many arguments that no operator of the model language stands for.
bool PublishGlobals(VokTarnModule& module) {
  const unsigned any = VokTarnConstraintDescriptor::sAnyNumber;
  return Publish<VokTarnAmongConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnBinPackingConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnCircuitConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnCumulativeConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnDisjunctiveConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnExtremePlaceConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnGlobalCardinalityConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnInverseConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnLexicographicOrderConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnNonOverlapConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnNumberOfValuesConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnRegularConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnSortConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnValuePrecedenceConstraint>(module, any, Operands::Any);
}

bool PublishConstraints(VokTarnModule& module) {
  const unsigned any = VokTarnConstraintDescriptor::sAnyNumber;
  return Publish<VokTarnAdditionConstraint>(module, 3, Operands::Typed) &&
         Publish<VokTarnMultiplicationConstraint>(module, 3, Operands::Typed) &&
         Publish<VokTarnPowerConstraint>(module, 3, Operands::Typed) &&
         Publish<VokTarnRemainderConstraint>(module, 3, Operands::Typed) &&
         Publish<VokTarnMinimumConstraint>(module, 3, Operands::Typed) &&
         Publish<VokTarnMaximumConstraint>(module, 3, Operands::Typed) &&
         Publish<VokTarnNumberNegationConstraint>(module, 2, Operands::Typed) &&
         Publish<VokTarnAbsoluteConstraint>(module, 2, Operands::Typed) &&
         Publish<VokTarnSignumConstraint>(module, 2, Operands::Typed) &&
         Publish<VokTarnNextConstraint>(module, 2, Operands::Typed) &&
         Publish<VokTarnEqualConstraint>(module, 2, Operands::Any) &&
         Publish<VokTarnEqualTernaryConstraint>(module, 3, Operands::Any) &&
         Publish<VokTarnUnequalTernaryConstraint>(module, 3, Operands::Any) &&
         Publish<VokTarnLessOrEqualTernaryConstraint>(module, 3, Operands::Any) &&
         Publish<VokTarnLessTernaryConstraint>(module, 3, Operands::Any) &&
         Publish<VokTarnBooleanEqualConstraint>(module, 3, Operands::Any) &&
         Publish<VokTarnBooleanLessConstraint>(module, 3, Operands::Any) &&
         Publish<VokTarnBooleanLessOrEqualConstraint>(module, 3, Operands::Any) &&
         Publish<VokTarnBooleanNotConstraint>(module, 2, Operands::Any) &&
         Publish<VokTarnBooleanAndConstraint>(module, 3, Operands::Any) &&
         Publish<VokTarnBooleanOrConstraint>(module, 3, Operands::Any) &&
         Publish<VokTarnBooleanImpliesConstraint>(module, 3, Operands::Any) &&
         Publish<VokTarnAllDifferentConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnLinearConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnElementConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnCountConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnTableConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnArithmeticConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnClauseConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnConstantElementConstraint>(module, 2, Operands::Any) &&
         Publish<VokTarnDisjunctionConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnExtremumConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnLinearRelationConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnMembershipConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnOffsetRelationConstraint>(module, any, Operands::Any) &&
         Publish<VokTarnParityConstraint>(module, any, Operands::Any) && PublishGlobals(module);
}

// Relations see of an integer only what every type offers, so they are published once for all types, and a
// type from another module has them without a row of its own.
int PublishOperators(VokTarnModule& module) {
  const VokTarnType i = VokTarnInteger::sDescriptor;
  const VokTarnType b = VokTarnBoolean::sDescriptor;
  const VokTarnConstraintType lessOrEqual = VokTarnLessOrEqualTernaryConstraint::sDescriptor;
  const VokTarnConstraintType less = VokTarnLessTernaryConstraint::sDescriptor;
  const VokTarnConstraintType isEqual = VokTarnBooleanEqualConstraint::sDescriptor;
  const VokTarnConstraintType isLess = VokTarnBooleanLessConstraint::sDescriptor;
  const VokTarnConstraintType isLessOrEqual = VokTarnBooleanLessOrEqualConstraint::sDescriptor;
  int added = 1;
  for (VokTarnObjectDescriptor* row :
       {VokTarnCreateBinaryOperator("=", i, i, i, VokTarnEqualTernaryConstraint::sDescriptor),
        VokTarnCreateBinaryOperator("<>", i, i, i, VokTarnUnequalTernaryConstraint::sDescriptor),
        VokTarnCreateBinaryOperator(">=", i, i, i, lessOrEqual), VokTarnCreateBinaryOperator(">", i, i, i, less),
        VokTarnCreateSymmetricBinaryOperator("<=", i, i, i, lessOrEqual),
        VokTarnCreateSymmetricBinaryOperator("<", i, i, i, less),
        VokTarnCreateSecondInverseBinaryOperator("==", i, i, b, i, isEqual),
        VokTarnCreateSecondInverseBinaryOperator(">>", i, i, b, i, isLess),
        VokTarnCreateSecondInverseBinaryOperator(">==", i, i, b, i, isLessOrEqual),
        VokTarnCreateSecondInverseSymmetricBinaryOperator("<<", i, i, b, i, isLess),
        VokTarnCreateSecondInverseSymmetricBinaryOperator("<==", i, i, b, i, isLessOrEqual),
        VokTarnCreateListOperator("all different", i, VokTarnAllDifferentConstraint::sDescriptor),
        VokTarnCreateListFunction("element", i, i, i, VokTarnElementConstraint::sDescriptor),
        VokTarnCreateTableOperator("table", i, VokTarnTableConstraint::sDescriptor)}) {
    added &= row != nullptr ? module.AddObjectDescriptor(row) : 0;
  }
  return added;
}

}  // namespace

extern "C" VOKTARN_EXPORT int InitModule(VokTarnModule* module, VokTarnModuleManager* manager) {
  if (module == nullptr || manager == nullptr) {
    return 0;
  }
  VokTarnInteger::sDescriptor = PublishType(*module, "abstract int");
  VokTarnBoolean::sDescriptor = PublishType(*module, "abstract bool");
  if (VokTarnInteger::sDescriptor == nullptr || VokTarnBoolean::sDescriptor == nullptr) {
    return 0;
  }
  if (!PublishConstraints(*module)) {
    return 0;
  }
  VokTarnAllDifferentConstraint::sDescriptor->SetTakesShifts();
  return PublishOperators(*module);
}
