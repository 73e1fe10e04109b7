// How much longer than usual the long tests are to run: the environment variable VOKTARN_SOAK.
#pragma once

#include <algorithm>
#include <cstdlib>

inline int SoakFactor() {
  const char* factor = std::getenv("VOKTARN_SOAK");
  return factor == nullptr ? 1 : std::max(std::atoi(factor), 1);
}
