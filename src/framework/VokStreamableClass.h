#pragma once

#include <string_view>

#include "framework/VokStreamable.h"

// Makes an object for a stream to read into: returns `existing` when it is not null, else a new object,
// null when memory is short.
using VokStreamableBuilder = VokStreamable* (*)(VokStreamable* existing);

// The registration of one streamable class: as a static object of the library that defines the class, it
// makes the class known to the object streams from library load to unload.
//
// Cost  Registration allocates nothing: records form a list in order of registration. Find is O(records).
class VOKTARN_EXPORT VokStreamableClass {
 public:
  // `name` must outlive the record. `version` is the version of the class's record in the streams.
  VokStreamableClass(const char* name, VokStreamableBuilder build, int version) noexcept;
  VokStreamableClass(const VokStreamableClass&) = delete;
  VokStreamableClass& operator=(const VokStreamableClass&) = delete;
  ~VokStreamableClass();

  const char* GetName() const noexcept { return fName; }
  int GetVersion() const noexcept { return fVersion; }
  VokStreamable* Build(VokStreamable* existing) const { return fBuild(existing); }

  // The records in order of registration: First(), then GetNext() until null.
  static const VokStreamableClass* First() noexcept;
  const VokStreamableClass* GetNext() const noexcept { return fNext; }
  // The record registered last under `name`, or null.
  static const VokStreamableClass* Find(std::string_view name) noexcept;

 private:
  const char* fName;
  VokStreamableBuilder fBuild;
  int fVersion;
  VokStreamableClass* fNext = nullptr;
};
