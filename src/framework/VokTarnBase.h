#pragma once

#include <cstddef>

#include "framework/VokLong.h"
#include "framework/VokTarnExport.h"

// The allocator of every framework object.
//
// Errors  Allocation never throws: it returns null, and a new-expression of a derived class then yields null
//         without running the constructor. Failures are counted, because a domain that could not be
//         copied looks like an impossible one: whoever draws a final conclusion compares the count first.
class VOKTARN_EXPORT VokTarnBase {
 public:
  static void* operator new(std::size_t size) noexcept;
  static void* operator new(std::size_t size, void* place) noexcept;
  static void operator delete(void* memory) noexcept;
  static void operator delete(void* memory, void* place) noexcept;

  // How many allocations have failed in this process. Never decreases.
  static VokULong GetAllocationFailures() noexcept;
  // Counts a failure that happened outside operator new (a container of the standard library, say).
  static void NoteAllocationFailure() noexcept;
};
