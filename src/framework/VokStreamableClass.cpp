#include "framework/VokStreamableClass.h"

namespace {
// Plain pointers, so that they are ready before any library's static objects register.
VokStreamableClass* sFirst = nullptr;
VokStreamableClass* sLast = nullptr;
}  // namespace

VokStreamableClass::VokStreamableClass(const char* name, VokStreamableBuilder build, int version) noexcept
    : fName(name), fBuild(build), fVersion(version) {
  (sLast == nullptr ? sFirst : sLast->fNext) = this;
  sLast = this;
}

VokStreamableClass::~VokStreamableClass() {
  VokStreamableClass* before = nullptr;
  for (VokStreamableClass* at = sFirst; at != nullptr; before = at, at = at->fNext) {
    if (at == this) {
      (before == nullptr ? sFirst : before->fNext) = fNext;
      if (sLast == this) {
        sLast = before;
      }
      return;
    }
  }
}

const VokStreamableClass* VokStreamableClass::First() noexcept {
  return sFirst;
}

const VokStreamableClass* VokStreamableClass::Find(std::string_view name) noexcept {
  const VokStreamableClass* found = nullptr;
  for (const VokStreamableClass* at = sFirst; at != nullptr; at = at->fNext) {
    if (name == at->fName) {
      found = at;
    }
  }
  return found;
}
