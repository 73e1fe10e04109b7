// What the streaming functions of the value classes share.
#pragma once

#include "framework/Vokipstream.h"

template <class Value>
Vokipstream& ReadObjectInto(Vokipstream& is, Value& value) {
  VokStreamable* target = &value;
  return is.ReadObject(target);
}

// An object of another class fails the stream and gives null.
template <class Value>
Vokipstream& ReadObjectPointerOf(Vokipstream& is, Value*& value) {
  value = static_cast<Value*>(is.ReadObjectPointer(Value::CastableIdent));
  return is;
}
