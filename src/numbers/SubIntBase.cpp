#include "numbers/SubIntBase.h"

#include <algorithm>
#include <cstdint>

namespace {

using Wide = std::int64_t;

constexpr Wide sWideMax = SubIntBase::sMax;
constexpr Wide sWideMin = SubIntBase::sMin;

VokLong Clamp(Wide v) {
  return static_cast<VokLong>(std::clamp(v, sWideMin, sWideMax));
}

bool IsInfinite(Wide v) {
  return v == sWideMin || v == sWideMax;
}

int SignOf(Wide v) {
  return v < 0 ? -1 : v > 0;
}

VokLong InfinityOf(int sign) {
  return sign < 0 ? SubIntBase::sMin : SubIntBase::sMax;
}

VokLong Add(Wide a, Wide b) {
  if (IsInfinite(a) && IsInfinite(b)) {
    return a == b ? Clamp(a) : 0;
  }
  if (IsInfinite(a)) {
    return Clamp(a);
  }
  return IsInfinite(b) ? Clamp(b) : Clamp(a + b);
}

}  // namespace

// The operands are clamped first: the special values of single integers lie beyond the ends of the range and
// count as these.

VokLong SubIntBase::base_plus(VokLong a, VokLong b) noexcept {
  return Add(Clamp(a), Clamp(b));
}

VokLong SubIntBase::base_minus(VokLong a, VokLong b) noexcept {
  return Add(Clamp(a), -Wide{Clamp(b)});
}

// No test for infinities is needed: times any other number but 0 they stay beyond the range, and 0 wins.
VokLong SubIntBase::base_mult(VokLong a, VokLong b) noexcept {
  return Clamp(Wide{Clamp(a)} * Wide{Clamp(b)});
}

VokLong SubIntBase::base_div(VokLong a, VokLong b) noexcept {
  const Wide dividend = Clamp(a);
  const Wide divisor = Clamp(b);
  if (divisor == 0) {
    SDSetError();
    return 0;
  }
  if (IsInfinite(dividend) && !IsInfinite(divisor)) {
    return InfinityOf(SignOf(dividend) * SignOf(divisor));
  }
  // Two infinities give 1 or -1, and a finite dividend by an infinite divisor 0, by plain division.
  return Clamp(dividend / divisor);
}
