#pragma once

#include "framework/VokLong.h"
#include "framework/VokTarnExport.h"
#include "numbers/SDError.h"

// One element value: a 32-bit integer with the checked arithmetic of the numbers library.
//
// There is no implicit construction from a number, so that overloads on SubIntBase and on single integers
// stay apart; assignment from a number and conversion to one exist.
class VOKTARN_EXPORT SubIntBase {
 public:
  // The ends of the range that values are clamped to. They absorb like infinities.
  static constexpr VokLong sMax = 2147483645;
  static constexpr VokLong sMin = -2147483645;

  constexpr SubIntBase() noexcept = default;
  constexpr SubIntBase& operator=(VokLong v) noexcept {
    fValue = v;
    return *this;
  }
  constexpr operator VokLong() const noexcept { return fValue; }

  // Exact in 64 bits, then clamped to [sMin, sMax]. An end of the range stands for everything beyond it:
  // sMax + 5 is sMax, sMax + sMin is 0, 0 * sMax is 0. Division truncates toward zero; by zero it raises
  // the error flag and gives 0.
  static VokLong base_plus(VokLong a, VokLong b) noexcept;
  static VokLong base_minus(VokLong a, VokLong b) noexcept;
  static VokLong base_mult(VokLong a, VokLong b) noexcept;
  static VokLong base_div(VokLong a, VokLong b) noexcept;

 private:
  VokLong fValue = 0;
};
