#include "framework/VokTarnOperatorDescriptor.h"

#include <ostream>

namespace {
const char kIdent[] = "VokTarnOperatorDescriptor";
}

const char* const VokTarnOperatorDescriptor::sIdent = kIdent;

VokTarnOperatorDescriptor::VokTarnOperatorDescriptor(const VokString& name, Kind kind, VokTarnType left,
                                                     VokTarnType right, VokTarnType result, VokTarnType working,
                                                     VokTarnConstraintType constraint)
    : VokTarnObjectDescriptor(name, nullptr,
                              kind >= Kind::List ? 0
                              : right == nullptr ? 2
                                                 : 3),
      fKind(kind),
      fLeft(left),
      fRight(right),
      fResult(result),
      fWorking(working),
      fConstraint(constraint) {}

const char* VokTarnOperatorDescriptor::CastableID() const {
  return sIdent;
}

int VokTarnOperatorDescriptor::IsDerivedFrom(const char* ident) const {
  return ident == sIdent ? 1 : VokTarnObjectDescriptor::IsDerivedFrom(ident);
}

std::ostream& VokTarnOperatorDescriptor::PrintOn(std::ostream& os) const {
  const auto name = [](VokTarnType type) { return type == nullptr ? "?" : type->GetName().Text(); };
  os << GetName().Text() << " (" << name(fLeft) << (fKind == Kind::ListFunction ? " list" : "");
  if (fRight != nullptr) {
    os << ", " << name(fRight);
  }
  if (fKind == Kind::List) {
    return os << ", ...)";
  }
  if (fKind == Kind::Table) {
    return os << " list, ...)";
  }
  return os << ") -> " << name(fResult);
}

const char* VokTarnOperatorDescriptor::GetKindName() const noexcept {
  switch (fKind) {
    case Kind::Unary:
      return "unary";
    case Kind::InverseUnary:
      return "inverse unary";
    case Kind::Binary:
      return "binary";
    case Kind::SymmetricBinary:
      return "symmetric binary";
    case Kind::FirstInverseBinary:
      return "first inverse binary";
    case Kind::SecondInverseBinary:
      return "second inverse binary";
    case Kind::SecondInverseSymmetric:
      return "second inverse symmetric binary";
    case Kind::ListFunction:
      return "list function";
    case Kind::Table:
      return "table";
    case Kind::List:
      break;
  }
  return "list";
}

bool VokTarnOperatorDescriptor::IsCast() const noexcept {
  const std::string_view name = GetName().View();
  return fKind == Kind::Unary && name.size() > 2 && name.front() == '(' && name.back() == ')';
}

std::vector<VokTarnValueId> VokTarnOperatorDescriptor::ArrangeArguments(std::span<const VokTarnValueId> operands,
                                                                        VokTarnValueId result) const {
  switch (fKind) {
    case Kind::Unary:
      return {operands[0], result};
    case Kind::InverseUnary:
      return {result, operands[0]};
    case Kind::Binary:
      return {operands[0], operands[1], result};
    case Kind::SymmetricBinary:
      return {operands[1], operands[0], result};
    case Kind::FirstInverseBinary:
      return {result, operands[1], operands[0]};
    case Kind::SecondInverseBinary:
      return {operands[1], result, operands[0]};
    case Kind::SecondInverseSymmetric:
      return {operands[0], result, operands[1]};
    case Kind::ListFunction: {
      std::vector<VokTarnValueId> arguments{result};
      arguments.insert(arguments.end(), operands.begin(), operands.end());
      return arguments;
    }
    case Kind::List:
    case Kind::Table:
      break;
  }
  return {operands.begin(), operands.end()};
}

VokTarnForm VokTarnOperatorDescriptor::GetForm() const noexcept {
  switch (fKind) {
    case Kind::SymmetricBinary:
    case Kind::SecondInverseSymmetric:
      return VokTarnForm::Symmetric;
    case Kind::InverseUnary:
    case Kind::FirstInverseBinary:
      return VokTarnForm::Inverse;
    default:
      return VokTarnForm::Plain;
  }
}
