#pragma once

#include "framework/VokStreamableClass.h"
#include "framework/VokTarnConstraint.h"
#include "framework/VokTarnObjectDescriptor.h"
#include "framework/VokTarnObjectEnvironment.h"

// What every constraint class has in the same form: its identity, its descriptor and how it is made. `Class`
// derives from this and has the statics sIdent, CastableIdent and sDescriptor, defined by
// VOKTARN_CONSTRAINT_STATICS; `Base` is VokTarnConstraint or a class below it.
template <class Class, class Base = VokTarnConstraint>
class VokTarnConstraintOf : public Base {
 public:
  using Base::Base;

  const char* CastableID() const override { return Class::CastableIdent; }
  int IsDerivedFrom(const char* ident) const override {
    return ident == Class::sIdent ? 1 : Base::IsDerivedFrom(ident);
  }
  const VokTarnObjectDescriptor* GetDescriptor() const override { return Class::sDescriptor; }

  static VokTarnConstraint* Create(std::span<const VokTarnValueId> arguments, VokTarnForm form,
                                   std::span<const VokLong> constants) {
    return new Class(arguments, form, constants);
  }
  static VokStreamable* Build(VokStreamable* existing) {
    return existing != nullptr ? existing : new Class(vokStreamableInit);
  }
};

// Defines the statics of a constraint class, in a source file of its own library: the identity and the streamable name
// are arrays of their own, and the class is known to the streams from library load on.
#define VOKTARN_CONSTRAINT_STATICS(Class)                                       \
  namespace {                                                                   \
  const char k##Class##Ident[] = #Class;                                        \
  const char k##Class##CastableIdent[] = #Class;                                \
  }                                                                             \
  const char* const Class::sIdent = k##Class##Ident;                            \
  const char* const Class::CastableIdent = k##Class##CastableIdent;             \
  VokTarnConstraintDescriptor* Class::sDescriptor = nullptr;                    \
  namespace {                                                                   \
  const VokStreamableClass r##Class(k##Class##CastableIdent, &Class::Build, 1); \
  }
