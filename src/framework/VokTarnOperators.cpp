#include "framework/VokTarnOperators.h"

#include "framework/VokTarnOperatorDescriptor.h"

using Kind = VokTarnOperatorKind;

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

VokTarnObjectDescriptor* VokTarnCreateListFunction(const VokString& name, VokTarnType element, VokTarnType b,
                                                   VokTarnType r, VokTarnConstraintType c) {
  return new VokTarnOperatorDescriptor(name, Kind::ListFunction, element, b, r, nullptr, c);
}

VokTarnObjectDescriptor* VokTarnCreateTableOperator(const VokString& name, VokTarnType element,
                                                    VokTarnConstraintType c) {
  return new VokTarnOperatorDescriptor(name, Kind::Table, element, nullptr, nullptr, nullptr, c);
}

VokTarnObjectDescriptor* VokTarnCreateOperator(VokTarnOperatorKind kind, const VokString& name,
                                               std::span<const VokTarnType> types, VokTarnConstraintType c) {
  constexpr unsigned kTypes[] = {2, 3, 3, 3, 4, 4, 4, 1, 2, 1};  // by kind
  if (types.size() < kTypes[static_cast<unsigned>(kind)]) {
    return nullptr;
  }
  switch (kind) {
    case Kind::Unary:
      return VokTarnCreateUnaryOperator(name, types[0], types[1], c);
    case Kind::InverseUnary:
      return VokTarnCreateInverseUnaryOperator(name, types[0], types[1], types[2], c);
    case Kind::Binary:
      return VokTarnCreateBinaryOperator(name, types[0], types[1], types[2], c);
    case Kind::SymmetricBinary:
      return VokTarnCreateSymmetricBinaryOperator(name, types[0], types[1], types[2], c);
    case Kind::FirstInverseBinary:
      return VokTarnCreateFirstInverseBinaryOperator(name, types[0], types[1], types[2], types[3], c);
    case Kind::SecondInverseBinary:
      return VokTarnCreateSecondInverseBinaryOperator(name, types[0], types[1], types[2], types[3], c);
    case Kind::SecondInverseSymmetric:
      return VokTarnCreateSecondInverseSymmetricBinaryOperator(name, types[0], types[1], types[2], types[3], c);
    case Kind::ListFunction:
      return VokTarnCreateListFunction(name, types[0], types.size() > 2 ? types[1] : nullptr,
                                       types[types.size() > 2 ? 2 : 1], c);
    case Kind::Table:
      return VokTarnCreateTableOperator(name, types[0], c);
    case Kind::List:
      break;
  }
  return VokTarnCreateListOperator(name, types[0], c);
}
