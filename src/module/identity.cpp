// Who the enumerated set is to the framework: its identity pointers, its type descriptor and its registration with the
// object streams.
#include "framework/VokStreamableClass.h"
#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "module/VokFenEnumInteger_Descriptor.h"

namespace {

// Arrays of their own: equal literals may be merged, and these two must differ in address.
constexpr char kIdent[] = "VokFenEnumInteger";
constexpr char kCastableIdent[] = "VokFenEnumInteger";

template <class Streamable>
VokStreamable* Build(VokStreamable* existing) {
  return existing != nullptr ? existing : new Streamable(vokStreamableInit);
}

}  // namespace

const char* const VokFenEnumInteger::sIdent = kIdent;
const char* const VokFenEnumInteger::CastableIdent = kCastableIdent;
const char* const VokFenEnumInteger::Descriptor::CastableIdent = "VokFenEnumInteger_Descriptor";
VokTarnObjectDescriptor* VokFenEnumInteger::sDescriptor = nullptr;
VokULong VokFenEnumInteger::sMAX_CARD = 0;

namespace {

// The insertion after this many members makes a set Any.
constexpr std::size_t kMostMembers = 1023;

// In this order; the order of the registrations is that of the definitions in one source file.
const VokStreamableClass rVokFenEnumInteger_Descriptor(VokFenEnumInteger::Descriptor::CastableIdent,
                                                       Build<VokFenEnumInteger::Descriptor>, 1);
const VokStreamableClass rVokFenEnumInteger(VokFenEnumInteger::CastableIdent, Build<VokFenEnumInteger>, 1);

}  // namespace

VokTarnObjectDescriptor* VokFenEnumInteger::MakeDescriptor() {
  sDescriptor = new Descriptor();
  if (sDescriptor != nullptr) {
    sDescriptor->SetListed(
        [](const VokTarnAny& value) { return static_cast<const VokFenEnumInteger&>(value).GetMembers(); },
        [](VokTarnAny& value, std::span<const VokLong> numbers) {
          static_cast<VokFenEnumInteger&>(value).Fill(numbers);
        },
        kMostMembers);
  }
  return sDescriptor;
}

const VokTarnObjectDescriptor* VokFenEnumInteger::GetDescriptor() const {
  return sDescriptor;
}

const char* VokFenEnumInteger::CastableID() const {
  return CastableIdent;
}

int VokFenEnumInteger::IsDerivedFrom(const char* ident) const {
  return ident == sIdent || VokTarnInteger::IsDerivedFrom(ident) != 0 ? 1 : 0;
}

Vokipstream& VokFenEnumInteger::readRef(Vokipstream& is, VokFenEnumInteger& value) {
  VokStreamable* target = &value;
  return is.ReadObject(target);
}

Vokipstream& VokFenEnumInteger::readPtr(Vokipstream& is, VokFenEnumInteger*& value) {
  // The stream names the class of what it holds, so it may be another one than the caller expects.
  value = static_cast<VokFenEnumInteger*>(is.ReadObjectPointer(CastableIdent));
  return is;
}

Vokopstream& VokFenEnumInteger::writeRef(Vokopstream& os, const VokFenEnumInteger& value) {
  return os.WriteObject(&value);
}

Vokopstream& VokFenEnumInteger::writePtr(Vokopstream& os, const VokFenEnumInteger* value) {
  return os.WriteObjectPointer(value);
}
