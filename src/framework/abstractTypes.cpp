// The identities of the abstract classes and the few operations that they supply for all types.
//
// Each identity is a named array of its own: equal literals could be merged by the linker, and type tests compare
// addresses.
#include <limits>

#include "framework/VokTarnBoolean.h"
#include "framework/VokTarnInteger.h"

namespace {
const char kStreamable[] = "VokStreamable";
const char kObject[] = "VokTarnObject";
const char kAny[] = "VokTarnAny";
const char kScalar[] = "VokTarnScalar";
const char kNumber[] = "VokTarnNumber";
const char kInteger[] = "VokTarnInteger";
const char kBoolean[] = "VokTarnBoolean";
}  // namespace

const char* const VokStreamable::sIdent = kStreamable;
const char* const VokTarnObject::sIdent = kObject;
const char* const VokTarnAny::sIdent = kAny;
const char* const VokTarnScalar::sIdent = kScalar;
const char* const VokTarnNumber::sIdent = kNumber;
const char* const VokTarnInteger::sIdent = kInteger;
const char* const VokTarnBoolean::sIdent = kBoolean;

VokTarnObjectDescriptor* VokTarnInteger::sDescriptor = nullptr;
VokTarnObjectDescriptor* VokTarnBoolean::sDescriptor = nullptr;

VokStreamable::~VokStreamable() = default;

int VokStreamable::IsDerivedFrom(const char* ident) const {
  return ident == sIdent ? 1 : 0;
}

int VokTarnObject::IsDerivedFrom(const char* ident) const {
  return ident == sIdent ? 1 : VokStreamable::IsDerivedFrom(ident);
}

int VokTarnAny::IsDerivedFrom(const char* ident) const {
  return ident == sIdent ? 1 : VokTarnObject::IsDerivedFrom(ident);
}

int VokTarnScalar::IsDerivedFrom(const char* ident) const {
  return ident == sIdent ? 1 : VokTarnAny::IsDerivedFrom(ident);
}

int VokTarnNumber::IsDerivedFrom(const char* ident) const {
  return ident == sIdent ? 1 : VokTarnScalar::IsDerivedFrom(ident);
}

int VokTarnInteger::IsDerivedFrom(const char* ident) const {
  return ident == sIdent ? 1 : VokTarnNumber::IsDerivedFrom(ident);
}

int VokTarnBoolean::IsDerivedFrom(const char* ident) const {
  return ident == sIdent ? 1 : VokTarnAny::IsDerivedFrom(ident);
}

int VokTarnObject::Activate(VokTarnNetwork*) {
  return 0;
}

int VokTarnObject::ActivateByArgument(unsigned, int, VokTarnNetwork*) {
  return 0;
}

int VokTarnObject::Filter(const VokTarnObjectEnvironment&, int) {
  return 0;
}

double VokTarnAny::GetWidth() const {
  const int cardinality = GetCardinality();
  return cardinality < 0 ? std::numeric_limits<double>::infinity() : cardinality;
}

double VokTarnAny::GetRelativeWidth(double reference) const {
  return GetWidth() / reference;
}
