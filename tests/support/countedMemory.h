// Counts the bytes that the program takes from operator new. To be included by one source of a program.
// Not inline, or the compiler takes malloc and delete for a mismatch.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

namespace support {
inline std::size_t sAllocatedBytes = 0;
}

[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  support::sAllocatedBytes += size;
  return std::malloc(size);
}
[[gnu::noinline]] void* operator new(std::size_t size) {
  void* const memory = operator new(size, std::nothrow);
  return memory != nullptr ? memory : throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
