#pragma once

#include "numbers/SubIntBase.h"

// An element has no constructor from a number, so one is made by assignment.
constexpr SubIntBase ToElement(VokLong v) noexcept {
  SubIntBase element;
  element = v;
  return element;
}
