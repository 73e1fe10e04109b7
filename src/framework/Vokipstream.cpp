#include "framework/Vokipstream.h"

#include <algorithm>
#include <istream>
#include <memory>
#include <new>

#include "framework/VokStreamableClass.h"
#include "framework/streamFormat.h"

Vokipstream::Vokipstream(std::istream& is) : fStream(is) {
  std::array<char, vokStreamMagic.size()> magic{};
  ReadBytes(magic.data(), magic.size());
  if (magic != vokStreamMagic || ReadWord() != vokStreamVersion) {
    fFailed = true;
  }
}

Vokipstream::~Vokipstream() = default;

bool Vokipstream::ReadBytes(char* bytes, std::size_t count) {
  try {
    fFailed = fFailed || !fStream.read(bytes, static_cast<std::streamsize>(count));
  } catch (...) {  // the stream is set to throw
    fFailed = true;
  }
  return !fFailed;
}

VokULong Vokipstream::ReadWord() {
  char bytes[4];
  if (!ReadBytes(bytes, sizeof bytes)) {
    return 0;
  }
  VokULong v = 0;
  for (unsigned i = 4; i-- > 0;) {
    v = (v << 8) | static_cast<unsigned char>(bytes[i]);
  }
  return v;
}

Vokipstream& Vokipstream::operator>>(int& v) {
  v = VokToSigned(ReadWord());
  return *this;
}

Vokipstream& Vokipstream::operator>>(unsigned int& v) {
  v = ReadWord();
  return *this;
}

Vokipstream& Vokipstream::operator>>(long& v) {
  v = VokToSigned(ReadWord());
  return *this;
}

Vokipstream& Vokipstream::ReadText(std::string& text) {
  text.clear();
  VokULong left = ReadWord();
  if (left > vokMaxTextLength) {
    fFailed = true;
  }
  // In pieces, so that a false length costs no more memory than the bytes that are there.
  char piece[4096];
  try {
    while (!fFailed && left != 0) {
      const VokULong n = std::min<VokULong>(left, sizeof piece);
      text.append(piece, ReadBytes(piece, n) ? n : 0);
      left -= n;
    }
  } catch (const std::bad_alloc&) {
    VokTarnBase::NoteAllocationFailure();
    fFailed = true;
  }
  if (fFailed) {
    text.clear();
  }
  return *this;
}

Vokipstream& Vokipstream::ReadObject(VokStreamable*& object) {
  VokStreamable* const target = object;
  VokStreamable* const read = ReadRecord(target, target == nullptr ? nullptr : target->CastableID());
  if (target == nullptr) {
    object = read;
  } else if (read != target) {
    fFailed = true;  // the record is of another object: the target keeps its state
  }
  return *this;
}

VokStreamable* Vokipstream::ReadObjectPointer(const char* className) {
  return ReadRecord(nullptr, className);
}

VokStreamable* Vokipstream::ReadRecord(VokStreamable* existing, const char* className) {
  const VokULong tag = ReadWord();
  if (fFailed || tag == vokNullObject) {
    return nullptr;
  }
  if (tag == vokObjectReference) {
    const VokULong number = ReadWord();
    if (!fFailed && number < fRead.size() &&
        (className == nullptr || std::string_view(fRead[number]->CastableID()) == className)) {
      return fRead[number];
    }
    fFailed = true;
    return nullptr;
  }
  std::string name;
  ReadText(name);
  const VokULong version = ReadWord();
  const VokStreamableClass* known = fFailed ? nullptr : VokStreamableClass::Find(name);
  if (tag != vokNewObject || known == nullptr || version != static_cast<VokULong>(known->GetVersion()) ||
      fDepth >= sMaxDepth || (className != nullptr && name != className)) {
    fFailed = true;
    return nullptr;
  }
  std::unique_ptr<VokStreamable> made;
  VokStreamable* object = existing;
  if (existing == nullptr) {
    made.reset(known->Build(nullptr));
    object = made.get();
  }
  try {
    fRead.push_back(object);
  } catch (const std::bad_alloc&) {
    VokTarnBase::NoteAllocationFailure();
    fFailed = true;
  }
  if (object == nullptr || fFailed) {
    fFailed = true;
    return nullptr;
  }
  ++fDepth;
  object->Read(*this);
  --fDepth;
  if (fFailed) {
    return nullptr;
  }
  made.release();  // NOLINT(bugprone-unused-return-value): the caller owns it now
  return object;
}
