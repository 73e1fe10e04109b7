#pragma once

// Quotients of integers of any width, rounded down and up. Require: b is not 0, and a is not the least number with b
// -1.

template <class Integer>
constexpr Integer DivideDown(Integer a, Integer b) {
  return a / b - (a % b != 0 && (a < 0) != (b < 0) ? 1 : 0);
}

template <class Integer>
constexpr Integer DivideUp(Integer a, Integer b) {
  return a / b + (a % b != 0 && (a < 0) == (b < 0) ? 1 : 0);
}
