#include <array>

#include "domain/kernels/kernels.h"

namespace VokFenKernels {

namespace {

struct Runnable {
  std::array<const Kernels*, 3> fKernels{&kPortable, nullptr, nullptr};
  std::size_t fCount = 1;

  Runnable() noexcept {
#if defined(__x86_64__)
    __builtin_cpu_init();
    const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
                      __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("popcnt");
    if (avx2) {
      fKernels[fCount++] = &kAvx2;
    }
    if (avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl")) {
      fKernels[fCount++] = &kAvx512;
    }
#endif
  }
};

const Runnable rRunnable;
// Portable until the choice is made, for other static objects may come first.
const Kernels* sKernels = &kPortable;
const bool rChosen = (sKernels = rRunnable.fKernels[rRunnable.fCount - 1], true);

}  // namespace

std::span<const Kernels* const> GetRunnable() {
  return {rRunnable.fKernels.data(), rRunnable.fCount};
}

const Kernels& GetKernels() noexcept {
  return *sKernels;
}

void SetKernels(const Kernels& kernels) noexcept {
  sKernels = &kernels;
}

}  // namespace VokFenKernels
