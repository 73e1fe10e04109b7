#include "framework/VokTarnOperators.h"

#include "framework/VokTarnOperatorDescriptor.h"

using Kind = VokTarnOperatorDescriptor::Kind;

VokTarnObjectDescriptor* VokTarnCreateUnaryOperator(const VokString& name, VokTarnType a, VokTarnType r,
                                                    VokTarnConstraintType c) {
  return new VokTarnOperatorDescriptor(name, Kind::Unary, a, nullptr, r, nullptr, c);
}

VokTarnObjectDescriptor* VokTarnCreateInverseUnaryOperator(const VokString& name, VokTarnType a, VokTarnType r,
                                                           VokTarnType working, VokTarnConstraintType c) {
  return new VokTarnOperatorDescriptor(name, Kind::InverseUnary, a, nullptr, r, working, c);
}

VokTarnObjectDescriptor* VokTarnCreateBinaryOperator(const VokString& name, VokTarnType a, VokTarnType b, VokTarnType r,
                                                     VokTarnConstraintType c) {
  return new VokTarnOperatorDescriptor(name, Kind::Binary, a, b, r, nullptr, c);
}

VokTarnObjectDescriptor* VokTarnCreateSymmetricBinaryOperator(const VokString& name, VokTarnType a, VokTarnType b,
                                                              VokTarnType r, VokTarnConstraintType c) {
  return new VokTarnOperatorDescriptor(name, Kind::SymmetricBinary, a, b, r, nullptr, c);
}

VokTarnObjectDescriptor* VokTarnCreateFirstInverseBinaryOperator(const VokString& name, VokTarnType a, VokTarnType b,
                                                                 VokTarnType r, VokTarnType working,
                                                                 VokTarnConstraintType c) {
  return new VokTarnOperatorDescriptor(name, Kind::FirstInverseBinary, a, b, r, working, c);
}

VokTarnObjectDescriptor* VokTarnCreateSecondInverseBinaryOperator(const VokString& name, VokTarnType a, VokTarnType b,
                                                                  VokTarnType r, VokTarnType working,
                                                                  VokTarnConstraintType c) {
  return new VokTarnOperatorDescriptor(name, Kind::SecondInverseBinary, a, b, r, working, c);
}

VokTarnObjectDescriptor* VokTarnCreateSecondInverseSymmetricBinaryOperator(const VokString& name, VokTarnType a,
                                                                           VokTarnType b, VokTarnType r,
                                                                           VokTarnType working,
                                                                           VokTarnConstraintType c) {
  return new VokTarnOperatorDescriptor(name, Kind::SecondInverseSymmetric, a, b, r, working, c);
}

VokTarnObjectDescriptor* VokTarnCreateListOperator(const VokString& name, VokTarnType element,
                                                   VokTarnConstraintType c) {
  return new VokTarnOperatorDescriptor(name, Kind::List, element, nullptr, nullptr, nullptr, c);
}
