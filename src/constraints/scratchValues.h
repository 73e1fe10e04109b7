#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "framework/VokLong.h"

// Values that one filtering collects. They lie on the stack as long as there are no more than a list of a network
// mostly holds, so that no call pays for memory, nor for finding the buffers of its thread.
class VokTarnScratchValues {
 public:
  VokTarnScratchValues() noexcept {}  // fNear stays as it is: to clear it would cost more than most calls
  VokTarnScratchValues(const VokTarnScratchValues&) = delete;
  VokTarnScratchValues& operator=(const VokTarnScratchValues&) = delete;

  void Add(VokLong v) {
    if (fCount < sNear) {
      fNear[fCount++] = v;
    } else {
      AddFar(v);
    }
  }
  std::size_t Size() const noexcept { return fCount; }
  bool IsEmpty() const noexcept { return fCount == 0; }
  std::span<const VokLong> Get() const noexcept { return {fFar.empty() ? fNear : fFar.data(), fCount}; }

 private:
  static constexpr std::size_t sNear = 1024;

  void AddFar(VokLong v) {
    if (fFar.empty()) {
      fFar.assign(fNear, fNear + sNear);
    }
    fFar.push_back(v);
    ++fCount;
  }

  std::size_t fCount = 0;
  std::vector<VokLong> fFar;  // all of them, once there are more
  VokLong fNear[sNear];
};
