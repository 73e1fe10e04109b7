// The type descriptor of a value class, apart from its name.
#pragma once

#include <cstring>
#include <new>

#include "framework/VokStreamableClass.h"
#include "framework/VokTarnObjectDescriptor.h"

// A list of values in memory: a 32-bit count n, then n 32-bit values, at any alignment.
class ValueList {
 public:
  // Null counts as the empty list.
  explicit ValueList(const void* source) : fBytes(static_cast<const char*>(source)) {}

  VokULong GetCount() const { return fBytes == nullptr ? 0 : VokToUnsigned(GetWord(0)); }
  VokLong GetValue(VokULong i) const { return GetWord(std::size_t{i} + 1); }

 private:
  VokLong GetWord(std::size_t i) const {
    VokLong word = 0;
    std::memcpy(&word, fBytes + i * sizeof word, sizeof word);
    return word;
  }

  const char* fBytes;
};

// `Fill` gives a new value the state that a list stands for.
template <class Value, void (*Fill)(Value&, const ValueList&)>
class ValueDescriptor : public VokTarnObjectDescriptor {
 public:
  using VokTarnObjectDescriptor::VokTarnObjectDescriptor;

  void* InitObject(void* place) const override { return place == nullptr ? nullptr : new (place) Value; }

  void* InitObject(void* place, const void* source) const override {
    if (place == nullptr) {
      return nullptr;
    }
    auto* const value = new (place) Value;
    Fill(*value, ValueList(source));
    return value;
  }

  std::size_t GetObjectSize() const override { return sizeof(Value); }
};

// The build function of a streamable class.
template <class Streamable>
VokStreamable* BuildStreamable(VokStreamable* existing) {
  return existing != nullptr ? existing : new Streamable(vokStreamableInit);
}
