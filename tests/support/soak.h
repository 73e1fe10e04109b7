// How many times longer than usual the random tests run: the environment variable VOKTARN_SOAK, 1 without it.
#pragma once

#include <algorithm>
#include <cstdlib>

namespace support {

inline int SoakFactor() {
  const char* factor = std::getenv("VOKTARN_SOAK");
  return factor == nullptr ? 1 : std::max(1, std::atoi(factor));
}

}  // namespace support
