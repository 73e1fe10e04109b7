#include "framework/VokTarnBase.h"

#include <atomic>
#include <new>

namespace {
std::atomic<VokULong> sAllocationFailures = 0;
}

void* VokTarnBase::operator new(std::size_t size) noexcept {
  void* memory = ::operator new(size, std::nothrow);
  if (memory == nullptr) {
    NoteAllocationFailure();
  }
  return memory;
}

void* VokTarnBase::operator new(std::size_t, void* place) noexcept {
  return place;
}

void VokTarnBase::operator delete(void* memory) noexcept {
  ::operator delete(memory);
}

void VokTarnBase::operator delete(void*, void*) noexcept {}

VokULong VokTarnBase::GetAllocationFailures() noexcept {
  return sAllocationFailures;
}

void VokTarnBase::NoteAllocationFailure() noexcept {
  // Saturates, so that a long run of failures never reads as none.
  if (sAllocationFailures != static_cast<VokULong>(-1)) {
    ++sAllocationFailures;
  }
}
