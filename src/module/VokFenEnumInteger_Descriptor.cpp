#include "module/VokFenEnumInteger_Descriptor.h"

#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"

VokFenEnumInteger::Descriptor::Descriptor() : VokTarnObjectDescriptor("enum int", VokTarnInteger::sDescriptor, 0) {}

VokFenEnumInteger::Descriptor::Descriptor(VokStreamableInit init) : VokTarnObjectDescriptor(init) {}

VokFenEnumInteger::Descriptor::~Descriptor() = default;

const char* VokFenEnumInteger::Descriptor::CastableID() const {
  return CastableIdent;
}

void* VokFenEnumInteger::Descriptor::InitObject(void* place) const {
  if (place != nullptr) {
    new (place) VokFenEnumInteger();
  }
  return place;
}

void* VokFenEnumInteger::Descriptor::InitObject(void* place, const void* source) const {
  if (place != nullptr) {
    new (place) VokFenEnumInteger(source);
  }
  return place;
}

std::size_t VokFenEnumInteger::Descriptor::GetObjectSize() const {
  return sizeof(VokFenEnumInteger);
}

Vokipstream& VokFenEnumInteger::Descriptor::readRef(Vokipstream& is, Descriptor& descriptor) {
  VokStreamable* target = &descriptor;
  return is.ReadObject(target);
}

Vokipstream& VokFenEnumInteger::Descriptor::readPtr(Vokipstream& is, Descriptor*& descriptor) {
  descriptor = static_cast<Descriptor*>(is.ReadObjectPointer(CastableIdent));
  return is;
}

Vokopstream& VokFenEnumInteger::Descriptor::writeRef(Vokopstream& os, const Descriptor& descriptor) {
  return os.WriteObject(&descriptor);
}

Vokopstream& VokFenEnumInteger::Descriptor::writePtr(Vokopstream& os, const Descriptor* descriptor) {
  return os.WriteObjectPointer(descriptor);
}
