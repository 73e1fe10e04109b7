#pragma once

#include "framework/VokTarnBase.h"

// Notes every allocation of this process that fails while a watch lives, in whatever library and whoever swallows the
// failure: a domain that could not be copied or narrowed for want of memory looks like an impossible one, so whoever
// draws a conclusion asks first.
//
// How     The first watch installs a std::new_handler, which counts the failure (VokTarnBase::NoteAllocationFailure)
//         and throws std::bad_alloc; throwing and nothrow forms of operator new alike call it. The last watch takes it
//         away. A handler that was there before is called in its stead: when it returns, the allocation is tried again
//         and nothing has failed; when it throws, that is the failure.
// Beside  A program that has a new handler sets it while no watch lives (every network holds one). A handler that it
//         sets later stays in place; then only failures of the framework's own allocator are counted.
// Owners  Watches may live in several threads and end in any order. They do not tell threads apart: what fails in one
//         bars the conclusions of all.
class VOKTARN_EXPORT VokTarnMemoryWatch {
 public:
  VokTarnMemoryWatch();
  VokTarnMemoryWatch(const VokTarnMemoryWatch&) = delete;
  VokTarnMemoryWatch& operator=(const VokTarnMemoryWatch&) = delete;
  ~VokTarnMemoryWatch();

  // Whether an allocation has failed since this watch was made.
  bool HasSeenFailure() const noexcept { return VokTarnBase::GetAllocationFailures() != fFailuresBefore; }

 private:
  VokULong fFailuresBefore = VokTarnBase::GetAllocationFailures();
};
