#include "framework/VokTarnObjectDescriptor.h"

#include <ostream>
#include <string>

#include "framework/VokTarnObject.h"
#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"

namespace {
const char kIdent[] = "VokTarnObjectDescriptor";
}

const char* const VokTarnObjectDescriptor::sIdent = kIdent;

VokTarnObjectDescriptor::VokTarnObjectDescriptor(const VokString& name, const VokTarnObjectDescriptor* parent,
                                                 int arguments)
    : fName(name), fParent(parent), fArguments(arguments) {}

VokTarnObjectDescriptor::VokTarnObjectDescriptor(VokStreamableInit init)
    : VokStreamable(init), fParent(nullptr), fArguments(0) {}

VokTarnObjectDescriptor::~VokTarnObjectDescriptor() = default;

const char* VokTarnObjectDescriptor::CastableID() const {
  return sIdent;
}

void VokTarnObjectDescriptor::Write(Vokopstream& os) const {
  os.WriteText(fName.View());
}

void VokTarnObjectDescriptor::Read(Vokipstream& is) {
  std::string name;
  is.ReadText(name);
  if (!is.IsFailed()) {
    fName = VokString(std::string_view(name));
  }
}

int VokTarnObjectDescriptor::IsDerivedFrom(const char* ident) const {
  return ident == sIdent ? 1 : VokStreamable::IsDerivedFrom(ident);
}

void* VokTarnObjectDescriptor::InitObject(void*) const {
  return nullptr;
}

void* VokTarnObjectDescriptor::InitObject(void*, const void*) const {
  return nullptr;
}

void VokTarnObjectDescriptor::DestroyObject(VokTarnObject* object) const {
  if (object != nullptr) {
    object->~VokTarnObject();
  }
}

std::size_t VokTarnObjectDescriptor::GetObjectSize() const {
  return 0;
}

unsigned VokTarnObjectDescriptor::GetNumberOfArguments() const {
  return fArguments > 0 ? static_cast<unsigned>(fArguments) : 0;
}

std::size_t VokTarnObjectDescriptor::GetArgumentsSize() const {
  return GetNumberOfArguments() * sizeof(void*);
}

int VokTarnObjectDescriptor::IsMatched(const VokTarnObjectDescriptor* type) const {
  for (const VokTarnObjectDescriptor* at = type; at != nullptr; at = at->fParent) {
    if (at == this) {
      return 1;
    }
  }
  return 0;
}

std::ostream& VokTarnObjectDescriptor::PrintOn(std::ostream& os) const {
  return os << fName.View();
}
