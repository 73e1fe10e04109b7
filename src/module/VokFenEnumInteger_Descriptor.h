#pragma once

#include "domain/VokFenEnumInteger.h"

// The published type "enum int": builds enumerated sets for the framework.
//
// The inherited virtual operations keep their order, which is part of the binary interface.
class VOKTARN_EXPORT VokFenEnumInteger::Descriptor : public VokTarnObjectDescriptor {
 public:
  static const char* const CastableIdent;

  Descriptor();
  explicit Descriptor(VokStreamableInit init);

  ~Descriptor() override;
  const char* CastableID() const override;
  // The set built is Any.
  void* InitObject(void* place) const override;
  void* InitObject(void* place, const void* source) const override;
  std::size_t GetObjectSize() const override;

  static Vokipstream& readRef(Vokipstream& is, Descriptor& descriptor);
  // An object of any other class counts as a failure of the stream and gives null.
  static Vokipstream& readPtr(Vokipstream& is, Descriptor*& descriptor);
  static Vokopstream& writeRef(Vokopstream& os, const Descriptor& descriptor);
  static Vokopstream& writePtr(Vokopstream& os, const Descriptor* descriptor);
};
