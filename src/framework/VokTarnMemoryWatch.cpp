#include "framework/VokTarnMemoryWatch.h"

#include <atomic>
#include <mutex>
#include <new>

namespace {

std::mutex sMutex;  // guards the count of watches and the installation
unsigned sWatches = 0;
std::atomic<std::new_handler> sPrevious = nullptr;

void HandleFailure() {
  const std::new_handler previous = sPrevious;
  if (previous == nullptr) {
    VokTarnBase::NoteAllocationFailure();
    throw std::bad_alloc();
  }
  try {
    previous();
  } catch (...) {
    VokTarnBase::NoteAllocationFailure();
    throw;
  }
  if (std::get_new_handler() != HandleFailure) {  // it has given way to another: how that ends is not seen here
    VokTarnBase::NoteAllocationFailure();
  }
}

}  // namespace

VokTarnMemoryWatch::VokTarnMemoryWatch() {
  const std::scoped_lock lock(sMutex);
  if (sWatches++ == 0 && std::get_new_handler() != HandleFailure) {
    sPrevious = std::set_new_handler(HandleFailure);
  }
}

VokTarnMemoryWatch::~VokTarnMemoryWatch() {
  const std::scoped_lock lock(sMutex);
  if (--sWatches == 0 && std::get_new_handler() == HandleFailure) {
    std::set_new_handler(sPrevious);
  }
}
