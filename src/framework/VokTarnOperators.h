// The factories that a module uses to publish its operators. Each returns a new operator descriptor, to be
// handed to VokTarnModule::AddObjectDescriptor; null when memory is short. The name is copied.
#pragma once

#include <span>

#include "framework/VokString.h"
#include "framework/VokTarnConstraintDescriptor.h"
#include "framework/VokTarnExport.h"
#include "framework/VokTarnObjectDescriptor.h"

using VokTarnType = const VokTarnObjectDescriptor*;
using VokTarnConstraintType = const VokTarnConstraintDescriptor*;

// One kind for each factory.
enum class VokTarnOperatorKind {
  Unary,
  InverseUnary,
  Binary,
  SymmetricBinary,
  FirstInverseBinary,
  SecondInverseBinary,
  SecondInverseSymmetric,
  List,
  ListFunction,
  Table
};

// op a is r with C(a, r).
VOKTARN_EXPORT VokTarnObjectDescriptor* VokTarnCreateUnaryOperator(const VokString& name, VokTarnType a, VokTarnType r,
                                                                   VokTarnConstraintType c);
// op a is r with C(r, a).
VOKTARN_EXPORT VokTarnObjectDescriptor* VokTarnCreateInverseUnaryOperator(const VokString& name, VokTarnType a,
                                                                          VokTarnType r, VokTarnType working,
                                                                          VokTarnConstraintType c);
// a op b is r with C(a, b, r).
VOKTARN_EXPORT VokTarnObjectDescriptor* VokTarnCreateBinaryOperator(const VokString& name, VokTarnType a, VokTarnType b,
                                                                    VokTarnType r, VokTarnConstraintType c);
// a op b is r with C(b, a, r).
VOKTARN_EXPORT VokTarnObjectDescriptor* VokTarnCreateSymmetricBinaryOperator(const VokString& name, VokTarnType a,
                                                                             VokTarnType b, VokTarnType r,
                                                                             VokTarnConstraintType c);
// a op b is r with C(r, b, a).
VOKTARN_EXPORT VokTarnObjectDescriptor* VokTarnCreateFirstInverseBinaryOperator(const VokString& name, VokTarnType a,
                                                                                VokTarnType b, VokTarnType r,
                                                                                VokTarnType working,
                                                                                VokTarnConstraintType c);
// a op b is r with C(b, r, a).
VOKTARN_EXPORT VokTarnObjectDescriptor* VokTarnCreateSecondInverseBinaryOperator(const VokString& name, VokTarnType a,
                                                                                 VokTarnType b, VokTarnType r,
                                                                                 VokTarnType working,
                                                                                 VokTarnConstraintType c);
// a op b is r with C(a, r, b).
VOKTARN_EXPORT VokTarnObjectDescriptor* VokTarnCreateSecondInverseSymmetricBinaryOperator(
    const VokString& name, VokTarnType a, VokTarnType b, VokTarnType r, VokTarnType working, VokTarnConstraintType c);
// op (a1, .., an) is a statement with C(a1, .., an), any number of operands that match `element`.
VOKTARN_EXPORT VokTarnObjectDescriptor* VokTarnCreateListOperator(const VokString& name, VokTarnType element,
                                                                  VokTarnConstraintType c);

// op ((a1, .., an), b) is r with C(r, b, a1, .., an), any number of list members that match `element`; without b
// where that is null. Constants, one for each member where the constraint wants them, go to the constraint.
VOKTARN_EXPORT VokTarnObjectDescriptor* VokTarnCreateListFunction(const VokString& name, VokTarnType element,
                                                                  VokTarnType b, VokTarnType r,
                                                                  VokTarnConstraintType c);
// op ((a1, .., an), (k11, .., k1n), ..) is a statement with C(a1, .., an) and the constants k11, .., kmn.
VOKTARN_EXPORT VokTarnObjectDescriptor* VokTarnCreateTableOperator(const VokString& name, VokTarnType element,
                                                                   VokTarnConstraintType c);

// The factory of that kind, for tables of operators. `types` stand in the order of the factory's parameters; null when
// they are too few; a list function takes them with b null when they are two.
VOKTARN_EXPORT VokTarnObjectDescriptor* VokTarnCreateOperator(VokTarnOperatorKind kind, const VokString& name,
                                                              std::span<const VokTarnType> types,
                                                              VokTarnConstraintType c);
