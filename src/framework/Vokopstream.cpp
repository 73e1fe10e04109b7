#include "framework/Vokopstream.h"

#include <limits>
#include <new>
#include <ostream>

#include "framework/VokStreamableClass.h"
#include "framework/streamFormat.h"

Vokopstream::Vokopstream(std::ostream& os) : fStream(os) {
  for (const char c : vokStreamMagic) {
    fStream.put(c);
  }
  WriteWord(vokStreamVersion);
}

Vokopstream::~Vokopstream() = default;

void Vokopstream::WriteWord(VokULong v) {
  if (fFailed) {
    return;
  }
  char bytes[4];
  for (char& byte : bytes) {
    byte = static_cast<char>(static_cast<unsigned char>(v & 0xFFU));
    v >>= 8;
  }
  if (!fStream.write(bytes, sizeof bytes)) {
    fFailed = true;
  }
}

Vokopstream& Vokopstream::operator<<(int v) {
  WriteWord(VokToUnsigned(v));
  return *this;
}

Vokopstream& Vokopstream::operator<<(unsigned int v) {
  WriteWord(v);
  return *this;
}

Vokopstream& Vokopstream::operator<<(long v) {
  if (v < std::numeric_limits<VokLong>::min() || v > std::numeric_limits<VokLong>::max()) {
    fFailed = true;
    return *this;
  }
  WriteWord(VokToUnsigned(static_cast<VokLong>(v)));
  return *this;
}

Vokopstream& Vokopstream::WriteText(std::string_view text) {
  if (text.size() > vokMaxTextLength) {
    fFailed = true;
    return *this;
  }
  WriteWord(static_cast<VokULong>(text.size()));
  if (!fFailed && !fStream.write(text.data(), static_cast<std::streamsize>(text.size()))) {
    fFailed = true;
  }
  return *this;
}

Vokopstream& Vokopstream::WriteObject(const VokStreamable* object) {
  if (object == nullptr) {
    fFailed = true;
    return *this;
  }
  return WriteObjectPointer(object);
}

Vokopstream& Vokopstream::WriteObjectPointer(const VokStreamable* object) {
  if (object == nullptr) {
    WriteWord(vokNullObject);
    return *this;
  }
  if (const auto found = fWritten.find(object); found != fWritten.end()) {
    WriteWord(vokObjectReference);
    WriteWord(found->second);
    return *this;
  }
  const VokStreamableClass* known = VokStreamableClass::Find(object->CastableID());
  if (known == nullptr) {
    fFailed = true;  // nobody could recreate it
    return *this;
  }
  try {
    fWritten.emplace(object, static_cast<unsigned>(fWritten.size()));
  } catch (const std::bad_alloc&) {
    VokTarnBase::NoteAllocationFailure();
    fFailed = true;
    return *this;
  }
  WriteWord(vokNewObject);
  WriteText(object->CastableID());
  WriteWord(static_cast<VokULong>(known->GetVersion()));
  object->Write(*this);
  return *this;
}
