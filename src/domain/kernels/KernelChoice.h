// Which kernels the module uses. For tests, which run every variant; nothing else changes the choice.
#pragma once

#include <span>

#include "domain/VokFenEnumInteger.h"
#include "domain/kernels/kernels.h"

class VOKTARN_EXPORT VokFenEnumInteger::KernelChoice {
 public:
  // The variants that this processor can run, the portable one first, the best one last.
  static std::span<const VokFenKernels::Kernels* const> GetRunnable() noexcept;
  static void Use(const VokFenKernels::Kernels& kernels) noexcept;
};
