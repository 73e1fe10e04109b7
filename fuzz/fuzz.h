// What the fuzz targets share: the function that each defines, and how it reports what must not be.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

// Runs one input; ends the process on a fault.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

// Reports a fault and ends the process.
[[noreturn]] inline void Fail(const std::string& fault) {
  std::fprintf(stderr, "fault: %s\n", fault.c_str());
  std::abort();
}

inline std::string ToString(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

template <class Value>
std::string Print(const Value& value) {
  std::ostringstream text;
  value.PrintOn(text);
  return text.str();
}

}  // namespace fuzz
