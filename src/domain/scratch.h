// Room for numbers that an operation collects.
//
// Internal to the module.
#pragma once

#include "domain/VokSVectorImp_SubIntBase.h"
#include "domain/kernels/kernels.h"

namespace VokFenDomain {

// Room for the result of an operation, on the stack unless a set holds more members than the limit allows:
// SimpleInsert does not count.
class Scratch {
 public:
  explicit Scratch(std::size_t n) {
    if (n > kOnStack) {
      fOnHeap = VokSVectorImp_SubIntBase(static_cast<unsigned>(n) + VokFenKernels::kSlack, 0U, 0);
    }
    fNumbers = n > kOnStack ? fOnHeap.GetNumbers() : fOnStack;
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  // Null when memory is short.
  VokLong* GetNumbers() noexcept { return fNumbers; }

 private:
  static constexpr unsigned kOnStack = 2048;

  VokLong fOnStack[kOnStack + VokFenKernels::kSlack];
  VokSVectorImp_SubIntBase fOnHeap;
  VokLong* fNumbers;
};

}  // namespace VokFenDomain
