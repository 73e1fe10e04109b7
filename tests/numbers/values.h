// What the tests of the numbers share: short names, the ends of the range, texts of values.
#pragma once

#include <sstream>
#include <string>

#include "numbers/VokFenIntervalInteger.h"
#include "numbers/VokFenSingleBoolean.h"

using Single = VokFenSingleInteger;
using Interval = VokFenIntervalInteger;
using Boolean = VokFenSingleBoolean;

inline constexpr VokLong kMax = SubIntBase::sMax;
inline constexpr VokLong kMin = SubIntBase::sMin;
inline constexpr VokLong kNil = -2147483647 - 1;
inline constexpr VokLong kAny = 2147483647;

inline std::string Show(const VokTarnObject& v) {
  std::ostringstream os;
  v.PrintOn(os);
  return os.str();
}

inline Interval IntervalOf(const std::string& text) {
  std::istringstream is(text);
  Interval x;
  x.InputValue(is);
  return x;
}
