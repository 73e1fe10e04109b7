#pragma once

#include <cstdint>

// Numbers from fLower to fUpper.
struct VokTarnNumberRange {
  std::int64_t fLower;
  std::int64_t fUpper;
};
