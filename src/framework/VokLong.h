// The integer types of the family: values and counts are 32 bits wide on every platform.
#pragma once

#include <cstdint>

using VokLong = std::int32_t;
using VokULong = std::uint32_t;

// Arithmetic on values that may wrap is done unsigned and converted back, so that it never overflows.
constexpr VokULong VokToUnsigned(VokLong v) noexcept {
  return static_cast<VokULong>(v);
}
constexpr VokLong VokToSigned(VokULong v) noexcept {
  return static_cast<VokLong>(v);
}
constexpr VokLong VokWrapAdd(VokLong a, VokLong b) noexcept {
  return VokToSigned(VokToUnsigned(a) + VokToUnsigned(b));
}
constexpr VokLong VokWrapNegate(VokLong v) noexcept {
  return VokToSigned(0U - VokToUnsigned(v));
}
