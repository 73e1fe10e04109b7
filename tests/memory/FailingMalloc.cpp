// Preloaded, it makes allocations of a program fail, counted from main on: the one whose number FAILING_MALLOC_AT is,
// or all from the one whose number FAILING_MALLOC_FROM is. What fails before main ends a program in the dynamic
// loader's own way, so that is left alone. The number of allocations is written to the file FAILING_MALLOC_COUNT.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

// The C library's own, under the names that are not replaced.
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* block, std::size_t size);
extern "C" void* __libc_memalign(std::size_t alignment, std::size_t size);

namespace {

using Main = int (*)(int, char**, char**);

std::atomic<bool> sCounts = false;
std::atomic<unsigned long> sAllocations = 0;
unsigned long sFirst = 0;  // that fails
unsigned long sLast = 0;
Main sMain = nullptr;

bool Fails() {
  if (!sCounts) {
    return false;
  }
  const unsigned long n = ++sAllocations;
  if (n < sFirst || n > sLast) {
    return false;
  }
  errno = ENOMEM;
  return true;
}

int RunMain(int argc, char** argv, char** environment) {
  if (const char* n = std::getenv("FAILING_MALLOC_AT")) {
    sFirst = sLast = std::strtoul(n, nullptr, 10);
  } else if (const char* from = std::getenv("FAILING_MALLOC_FROM")) {
    sFirst = std::strtoul(from, nullptr, 10);
    sLast = static_cast<unsigned long>(-1);
  }
  sCounts = true;
  return sMain(argc, argv, environment);
}

struct Report {
  ~Report() {
    const char* path = std::getenv("FAILING_MALLOC_COUNT");
    const int file = path == nullptr ? -1 : open(path, O_WRONLY | O_TRUNC);
    if (file >= 0) {
      sCounts = false;
      dprintf(file, "%lu", sAllocations.load());
      close(file);
    }
  }
} sReport;

}  // namespace

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED void* malloc(std::size_t size) {
  return Fails() ? nullptr : __libc_malloc(size);
}
EXPORTED void* calloc(std::size_t count, std::size_t size) {
  return Fails() ? nullptr : __libc_calloc(count, size);
}
EXPORTED void* realloc(void* block, std::size_t size) {
  return Fails() ? nullptr : __libc_realloc(block, size);
}
EXPORTED void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return Fails() ? nullptr : __libc_memalign(alignment, size);
}
EXPORTED int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  if (Fails()) {
    return ENOMEM;
  }
  *block = __libc_memalign(alignment, size);
  return *block == nullptr ? ENOMEM : 0;
}

// A program may end without running what is to run at the end.
EXPORTED [[noreturn]] void _exit(int code) {
  Report();
  syscall(SYS_exit_group, code);
  __builtin_unreachable();
}

EXPORTED int __libc_start_main(Main main, int argc, char** argv, void (*init)(), void (*fini)(), void (*ldFini)(),
                               void* stackEnd) {
  using Start = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
  sMain = main;
  const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
  return start(RunMain, argc, argv, init, fini, ldFini, stackEnd);
}
