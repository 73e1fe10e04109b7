// What the streaming functions of the value classes share.
#pragma once

#include "framework/Vokipstream.h"

template <class Value>
Vokipstream& ReadObjectInto(Vokipstream& is, Value& value) {
  VokStreamable* target = &value;
  return is.ReadObject(target);
}

// An object of another class fails the stream and gives null. It is left alone: it may be one that the stream has
// handed out before.
template <class Value>
Vokipstream& ReadObjectPointerOf(Vokipstream& is, Value*& value) {
  VokStreamable* const object = is.ReadObjectPointer();
  value = nullptr;
  if (object != nullptr && object->IsDerivedFrom(Value::sIdent) != 0) {
    value = static_cast<Value*>(object);
  } else if (object != nullptr) {
    is.SetFailed();
  }
  return is;
}
