#include "framework/VokTarnConstraintDescriptor.h"

#include "framework/VokTarnConstraint.h"

namespace {
const char kIdent[] = "VokTarnConstraintDescriptor";
}

const char* const VokTarnConstraintDescriptor::sIdent = kIdent;

VokTarnConstraintDescriptor::VokTarnConstraintDescriptor(const VokString& name, unsigned arguments, Operands operands,
                                                         Factory factory)
    : VokTarnObjectDescriptor(name, nullptr, static_cast<int>(arguments)), fFactory(factory), fOperands(operands) {}

const char* VokTarnConstraintDescriptor::CastableID() const {
  return sIdent;
}

int VokTarnConstraintDescriptor::IsDerivedFrom(const char* ident) const {
  return ident == sIdent ? 1 : VokTarnObjectDescriptor::IsDerivedFrom(ident);
}

VokTarnConstraint* VokTarnConstraintDescriptor::Create(std::span<const VokTarnValueId> arguments, VokTarnForm form,
                                                       std::span<const VokLong> constants) const {
  return fFactory(arguments, form, constants);
}
