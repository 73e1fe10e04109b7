#include "numbers/VokFenBounds.h"

#include <algorithm>

#include "framework/VokTarnInteger.h"

namespace {

using Wide = std::int64_t;

constexpr Wide sInfinity = VokFenBounds::sInfinity;

VokLong ClampToRange(Wide v) {
  return static_cast<VokLong>(std::clamp<Wide>(v, SubIntBase::sMin, SubIntBase::sMax));
}

// An open end of either operand makes the end of the sum open.
Wide AddLow(Wide a, Wide b) {
  return a == -sInfinity || b == -sInfinity ? -sInfinity : a + b;
}

Wide AddHigh(Wide a, Wide b) {
  return a == sInfinity || b == sInfinity ? sInfinity : a + b;
}

VokFenBounds NegativeOf(VokFenBounds a) {
  return {VokWrapNegate(a.upper), VokWrapNegate(a.lower)};
}

VokLong SignOf(VokLong v) {
  return v < 0 ? -1 : v > 0;
}

constexpr VokFenBounds sOne = {1, 1};
constexpr VokFenBounds sMinusOne = {-1, -1};

}  // namespace

VokFenBounds VokFenBounds::Clamped(Wide lower, Wide upper) {
  return lower > upper ? Empty() : VokFenBounds{ClampToRange(lower), ClampToRange(upper)};
}

VokFenBounds VokFenBounds::Of(const VokTarnInteger& v) {
  return v.IsNil() != 0 ? Empty() : Clamped(v.GetLowerBound(), v.GetUpperBound());
}

VokFenBounds VokFenBounds::Intersection(VokFenBounds other) const {
  return {std::max(lower, other.lower), std::min(upper, other.upper)};
}

void VokFenHull::Add(Wide lower, Wide upper) {
  lower = std::max(lower, fDomain.Low());
  upper = std::min(upper, fDomain.High());
  if (lower <= upper) {
    fLower = std::min(fLower, lower);
    fUpper = std::max(fUpper, upper);
  }
}

void VokFenHull::AddEvery(bool odd, Wide lower, Wide upper) {
  lower = std::max(lower, fDomain.Low());
  upper = std::min(upper, fDomain.High());
  if (lower != -sInfinity && (lower % 2 != 0) != odd) {
    ++lower;
  }
  if (upper != sInfinity && (upper % 2 != 0) != odd) {
    --upper;
  }
  Add(lower, upper);
}

VokFenBounds BoundsOfLessOrEqual(VokFenBounds, VokFenBounds a) {
  return {SubIntBase::sMin, a.upper};
}

VokFenBounds BoundsOfLess(VokFenBounds, VokFenBounds a) {
  const bool open = a.upper == SubIntBase::sMax && !a.IsPoint();
  return {SubIntBase::sMin, open ? a.upper : a.upper - 1};
}

VokFenBounds BoundsOfNotLess(VokFenBounds, VokFenBounds a) {
  return {a.lower, SubIntBase::sMax};
}

VokFenBounds BoundsOfNotLessAndUnequal(VokFenBounds, VokFenBounds a) {
  const bool open = a.lower == SubIntBase::sMin && !a.IsPoint();
  return {open ? a.lower : a.lower + 1, SubIntBase::sMax};
}

VokFenBounds BoundsOfNext(VokFenBounds x, VokFenBounds a) {
  return BoundsOfSum(x, a, sOne);
}

VokFenBounds BoundsOfPrev(VokFenBounds x, VokFenBounds a) {
  return BoundsOfSum(x, a, sMinusOne);
}

VokFenBounds BoundsOfNegative(VokFenBounds, VokFenBounds a) {
  return NegativeOf(a);
}

VokFenBounds BoundsOfAbsolute(VokFenBounds, VokFenBounds a) {
  if (a.lower >= 0) {
    return a;
  }
  const VokFenBounds negative = NegativeOf(a);
  return a.upper <= 0 ? negative : VokFenBounds{0, std::max(a.upper, negative.upper)};
}

VokFenBounds BoundsOfAbsoluteArgument(VokFenBounds x, VokFenBounds a) {
  VokFenHull hull(x);
  const Wide smallest = std::max<Wide>(0, a.Low());
  hull.Add(smallest, a.High());
  hull.Add(-a.High(), -smallest);
  return hull.Get();
}

VokFenBounds BoundsOfSignum(VokFenBounds, VokFenBounds a) {
  return {SignOf(a.lower), SignOf(a.upper)};
}

VokFenBounds BoundsOfSignumArgument(VokFenBounds x, VokFenBounds a) {
  VokFenHull hull(x);
  if (a.Holds(-1)) {
    hull.Add(-sInfinity, -1);
  }
  if (a.Holds(0)) {
    hull.Add(0, 0);
  }
  if (a.Holds(1)) {
    hull.Add(1, sInfinity);
  }
  return hull.Get();
}

VokFenBounds BoundsOfMinimum(VokFenBounds, VokFenBounds a, VokFenBounds b) {
  return {std::min(a.lower, b.lower), std::min(a.upper, b.upper)};
}

// No operand is below z, and one of them is z: when b cannot be, x is.
VokFenBounds BoundsOfMinimumArgument(VokFenBounds, VokFenBounds z, VokFenBounds b) {
  if (b.upper < z.lower) {
    return VokFenBounds::Empty();
  }
  return {z.lower, b.lower > z.upper ? z.upper : SubIntBase::sMax};
}

VokFenBounds BoundsOfMaximum(VokFenBounds, VokFenBounds a, VokFenBounds b) {
  return {std::max(a.lower, b.lower), std::max(a.upper, b.upper)};
}

VokFenBounds BoundsOfMaximumArgument(VokFenBounds, VokFenBounds z, VokFenBounds b) {
  if (b.lower > z.upper) {
    return VokFenBounds::Empty();
  }
  return {b.upper < z.lower ? z.lower : SubIntBase::sMin, z.upper};
}

// Two known operands give what the element arithmetic gives, where MIN and MAX absorb.
VokFenBounds BoundsOfSum(VokFenBounds, VokFenBounds a, VokFenBounds b) {
  if (a.IsPoint() && b.IsPoint()) {
    const VokLong sum = SubIntBase::base_plus(a.lower, b.lower);
    return {sum, sum};
  }
  return VokFenBounds::Clamped(AddLow(a.Low(), b.Low()), AddHigh(a.High(), b.High()));
}

VokFenBounds BoundsOfDifference(VokFenBounds, VokFenBounds z, VokFenBounds b) {
  return VokFenBounds::Clamped(AddLow(z.Low(), -b.High()), AddHigh(z.High(), -b.Low()));
}
