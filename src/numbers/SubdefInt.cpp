#include "numbers/SubdefInt.h"

#include <algorithm>

const VokLong SubdefInt::sMaxValue = SubIntBase::sMax;

SubdefInt::SubdefInt() noexcept : SubdefInt(SubIntBase::sMin, SubIntBase::sMax) {}

SubdefInt::SubdefInt(VokLong lower, VokLong upper) noexcept {
  fLower = lower;
  fUpper = upper;
}

int SubdefInt::SDIntersect(SubdefInt& other) noexcept {
  const VokLong lower = std::max<VokLong>(fLower, other.fLower);
  const VokLong upper = std::min<VokLong>(fUpper, other.fUpper);
  if (lower > upper) {
    SDSetError();
  }
  const int changed = lower != fLower || upper != fUpper;
  fLower = lower;
  fUpper = upper;
  return changed;
}
