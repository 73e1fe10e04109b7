#pragma once

#include "numbers/SubIntBase.h"

// An interval of integers, given by its bounds, both included. Empty when the lower bound is above the
// upper one; [-sMaxValue, sMaxValue] means no restriction.
class VOKTARN_EXPORT SubdefInt {
 public:
  static const VokLong sMaxValue;  // 2147483645

  SubdefInt() noexcept;  // no restriction
  SubdefInt(VokLong lower, VokLong upper) noexcept;

  // Narrows this interval to its intersection with `other`; non-zero when it changed. An empty
  // intersection raises the error flag.
  int SDIntersect(SubdefInt& other) noexcept;

  bool IsEmptyInterval() const noexcept { return fUpper < fLower; }
  bool IsUnrestricted() const noexcept { return fLower == -sMaxValue && fUpper == sMaxValue; }

  SubIntBase fLower;
  SubIntBase fUpper;
};
