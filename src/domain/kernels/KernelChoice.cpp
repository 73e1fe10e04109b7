#include "domain/kernels/KernelChoice.h"

#include <array>

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

const Runnable& GetTable() noexcept {
  static const Runnable sRunnable;
  return sRunnable;
}

}  // namespace

// Portable until this library's static objects are made.
const Kernels* sKernels = &kPortable;

namespace {
const bool rChosen = (sKernels = GetTable().fKernels[GetTable().fCount - 1]) != nullptr;
}

}  // namespace VokFenKernels

std::span<const VokFenKernels::Kernels* const> VokFenEnumInteger::KernelChoice::GetRunnable() noexcept {
  return {VokFenKernels::GetTable().fKernels.data(), VokFenKernels::GetTable().fCount};
}

void VokFenEnumInteger::KernelChoice::Use(const VokFenKernels::Kernels& kernels) noexcept {
  VokFenKernels::sKernels = &kernels;
}
