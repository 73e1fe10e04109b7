#pragma once

#include "framework/VokTarnBase.h"

class Vokipstream;
class Vokopstream;

// Selects the constructor that a stream uses when it recreates an object.
enum VokStreamableInit : int { vokStreamableInit };

// Anything that an object stream can write and recreate, with the run-time type protocol of the family.
//
// A class C of the family has a static `sIdent`, a pointer to its own copy of its name. Type tests
// compare these pointers, never the texts: x.IsDerivedFrom(C::sIdent).
// The order of the virtual operations here and in every class below is part of the binary interface.
class VOKTARN_EXPORT VokStreamable : public VokTarnBase {
 public:
  static const char* const sIdent;

  VokStreamable() noexcept = default;
  explicit VokStreamable(VokStreamableInit) noexcept {}
  VokStreamable(const VokStreamable&) = default;
  VokStreamable& operator=(const VokStreamable&) = default;

  virtual ~VokStreamable();
  // The name under which the class is registered with the streams (see VokStreamableClass).
  virtual const char* CastableID() const = 0;
  // Writes the state of this object; Read replaces the state by one that Write wrote.
  virtual void Write(Vokopstream& os) const = 0;
  virtual void Read(Vokipstream& is) = 0;
  // 1 when `ident` is the identity pointer of this object's class or of one of its bases, else 0.
  virtual int IsDerivedFrom(const char* ident) const;
};
