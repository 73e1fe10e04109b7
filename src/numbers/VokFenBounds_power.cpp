// Powers of bounds, and their bases and exponents. Nothing is scanned: roots are found by bisection, exponents by
// at most 31 multiplications.
//
// z = a ^ b by cases, with m = |a|:
//
//   b < 0   only a = 1 (z = 1) and a = -1 (z = 1 for even b, -1 for odd b) have a value
//   b = 0   z = 1, also for a = 0
//   b > 0   m = 0: z = 0.  m = 1: z = 1, or -1 for a = -1 and odd b.
//           m > 1: |z| = m ^ b rises with m and with b, and z is negative for negative a and odd b
//
// In the last case a base or an exponent of a given sign and parity has a partner exactly when it lies between two
// roots or two logarithms of the ends of z, rounded inwards. The bounds are therefore exact for known operands.
//
// Powers are never MIN or MAX (a result there has no value), so that z = MIN and z = MAX have no base and no exponent.
#include <algorithm>

#include "numbers/VokFenBounds.h"

namespace {

using Wide = std::int64_t;

constexpr Wide sInfinity = VokFenBounds::sInfinity;
constexpr Wide sLimit = SubIntBase::sMax;

// m ^ e for m >= 0, e >= 0; infinity for results from MAX on.
Wide PowerOf(Wide m, Wide e) {
  if (m <= 1) {
    return e == 0 ? 1 : m;
  }
  Wide power = 1;
  for (Wide i = 0; i < e; ++i) {
    power *= m;
    if (power >= sLimit) {
      return sInfinity;
    }
  }
  return power;
}

// The greatest m with m ^ e <= v, for v >= 0, e >= 1.
Wide FloorOfRoot(Wide v, Wide e) {
  if (v == sInfinity || e == 1) {
    return v;
  }
  Wide low = 0;
  Wide high = 46342;  // its square is beyond the range
  while (low + 1 < high) {
    const Wide middle = (low + high) / 2;
    (PowerOf(middle, e) <= v ? low : high) = middle;
  }
  return low;
}

// The least m >= 0 with m ^ e >= v, for e >= 1.
Wide CeilingOfRoot(Wide v, Wide e) {
  if (v <= 0) {
    return 0;
  }
  const Wide root = FloorOfRoot(v, e);
  return e == 1 || PowerOf(root, e) == v ? root : root + 1;
}

// The greatest e with m ^ e <= v, and the least e >= 1 with m ^ e >= v, for m >= 2, v >= 1.
Wide FloorOfLogarithm(Wide v, Wide m) {
  if (v == sInfinity) {
    return sInfinity;
  }
  Wide e = 0;
  while (PowerOf(m, e + 1) <= v) {
    ++e;
  }
  return e;
}

Wide CeilingOfLogarithm(Wide v, Wide m) {
  Wide e = 1;
  while (PowerOf(m, e) < v) {
    ++e;
  }
  return e;
}

bool IsOdd(Wide v) {
  return v % 2 != 0;
}

// The numbers of [lower, upper] that are even, or odd, by their ends; an end that is infinite stays.
struct Exponents {
  Exponents(bool odd, Wide lower, Wide upper)
      : least(IsOdd(lower) == odd || lower == -sInfinity ? lower : lower + 1),
        greatest(IsOdd(upper) == odd || upper == sInfinity ? upper : upper - 1) {}

  bool IsEmpty() const { return least > greatest; }

  Wide least;
  Wide greatest;
};

// A known exponent MIN or MAX is the odd number that it is.
Wide LeastOf(VokFenBounds e) {
  return e.IsPoint() ? e.lower : e.Low();
}

Wide GreatestOf(VokFenBounds e) {
  return e.IsPoint() ? e.upper : e.High();
}

bool HasNegative(VokFenBounds e, bool odd) {
  return !Exponents(odd, LeastOf(e), std::min<Wide>(GreatestOf(e), -1)).IsEmpty();
}

Exponents PositiveOf(VokFenBounds e, bool odd) {
  return {odd, std::max<Wide>(LeastOf(e), 1), GreatestOf(e)};
}

// Can z be a power at all?
bool IsPowerless(VokFenBounds z) {
  return z.IsPoint() && (z.lower == SubIntBase::sMin || z.lower == SubIntBase::sMax);
}

// Adds sign * m ^ e for every m of [least, greatest], least >= 0, and every exponent.
void AddPowers(VokFenHull& hull, int sign, Wide least, Wide greatest, Exponents e) {
  if (least > greatest || e.IsEmpty()) {
    return;
  }
  const Wide low = PowerOf(least, e.least);
  const Wide high = PowerOf(greatest, e.greatest);
  if (low != sInfinity) {
    hull.Add(sign > 0 ? low : -high, sign > 0 ? high : -low);
  }
}

// Adds the bases sign * m, m >= 2, for which m ^ e is in [lower, upper] for an exponent e.
void AddRoots(VokFenHull& hull, int sign, Wide lower, Wide upper, Exponents e) {
  if (e.IsEmpty() || upper < 1) {
    return;
  }
  const Wide least = std::max<Wide>(2, CeilingOfRoot(lower, e.greatest));
  const Wide greatest = FloorOfRoot(upper, e.least);
  hull.Add(sign > 0 ? least : -greatest, sign > 0 ? greatest : -least);
}

// The magnitudes from 2 on of the bases of one sign.
struct Bases {
  Bases(Wide lower, Wide upper) : least(std::max<Wide>(lower, 2)), greatest(upper) {}

  bool IsEmpty() const { return least > greatest; }

  Wide least;
  Wide greatest;
};

// The positive exponents e for which m ^ e is in [lower, upper] for a base m.
struct ExponentRange {
  ExponentRange(Bases m, Wide lower, Wide upper)
      : least(upper < 1 ? 1 : CeilingOfLogarithm(lower, m.greatest)),
        greatest(upper < 1 ? 0 : FloorOfLogarithm(upper, m.least)) {}

  Wide least;
  Wide greatest;
};

}  // namespace

bool FindPower(VokLong a, VokLong e, VokLong& power) {
  const Wide m = a < 0 ? -Wide{a} : Wide{a};
  if (e < 0 && m != 1) {
    return false;
  }
  const Wide magnitude = e < 0 ? 1 : PowerOf(m, e);
  if (magnitude >= sLimit) {
    return false;
  }
  power = static_cast<VokLong>(a < 0 && IsOdd(e) ? -magnitude : magnitude);
  return true;
}

VokFenBounds BoundsOfPower(VokFenBounds, VokFenBounds a, VokFenBounds b) {
  if (a.IsPoint() && b.IsPoint()) {
    VokLong power = 0;
    return FindPower(a.lower, b.lower, power) ? VokFenBounds{power, power} : VokFenBounds::Empty();
  }
  VokFenHull hull(VokFenBounds::All());
  if (b.Holds(0) || (a.Holds(1) && b.lower < 0) || (a.Holds(-1) && HasNegative(b, false))) {
    hull.Add(1, 1);
  }
  if (a.Holds(-1) && HasNegative(b, true)) {
    hull.Add(-1, -1);
  }
  const Wide leastNegative = std::max<Wide>(1, -a.High());
  AddPowers(hull, 1, std::max<Wide>(0, a.Low()), a.High(), PositiveOf(b, false));
  AddPowers(hull, 1, std::max<Wide>(0, a.Low()), a.High(), PositiveOf(b, true));
  AddPowers(hull, 1, leastNegative, -a.Low(), PositiveOf(b, false));
  AddPowers(hull, -1, leastNegative, -a.Low(), PositiveOf(b, true));
  return hull.Get();
}

VokFenBounds BoundsOfBase(VokFenBounds x, VokFenBounds z, VokFenBounds b) {
  if (IsPowerless(z)) {
    return VokFenBounds::Empty();
  }
  if (b.Holds(0) && z.Holds(1)) {
    return x;
  }
  const Exponents even = PositiveOf(b, false);
  const Exponents odd = PositiveOf(b, true);
  const bool hasEven = !even.IsEmpty() || HasNegative(b, false);
  const bool hasOdd = !odd.IsEmpty() || HasNegative(b, true);
  VokFenHull hull(x);
  if (z.Holds(0) && b.upper > 0) {
    hull.Add(0, 0);
  }
  if (z.Holds(1) && (hasEven || hasOdd)) {
    hull.Add(1, 1);
  }
  if ((z.Holds(1) && hasEven) || (z.Holds(-1) && hasOdd)) {
    hull.Add(-1, -1);
  }
  AddRoots(hull, 1, z.Low(), z.High(), even);
  AddRoots(hull, 1, z.Low(), z.High(), odd);
  AddRoots(hull, -1, z.Low(), z.High(), even);
  AddRoots(hull, -1, -z.High(), -z.Low(), odd);
  return hull.Get();
}

VokFenBounds BoundsOfExponent(VokFenBounds x, VokFenBounds z, VokFenBounds a) {
  if (IsPowerless(z)) {
    return VokFenBounds::Empty();
  }
  // A known exponent is tested by itself, MIN and MAX as the odd numbers that they are.
  if (x.IsPoint() && a.IsPoint()) {
    VokLong power = 0;
    return FindPower(a.lower, x.lower, power) && z.Holds(power) ? x : VokFenBounds::Empty();
  }
  if (a.Holds(1) && z.Holds(1)) {
    return x;
  }
  VokFenHull hull(x);
  if (z.Holds(1)) {
    hull.Add(0, 0);
  }
  if (a.Holds(0) && z.Holds(0)) {
    hull.Add(1, sInfinity);
  }
  if (a.Holds(-1) && z.Holds(1)) {
    hull.AddEvery(false, -sInfinity, sInfinity);
  }
  if (a.Holds(-1) && z.Holds(-1)) {
    hull.AddEvery(true, -sInfinity, sInfinity);
  }
  const Bases positive(a.Low(), a.High());
  if (!positive.IsEmpty()) {
    const ExponentRange e(positive, z.Low(), z.High());
    hull.Add(e.least, e.greatest);
  }
  const Bases negative(-a.High(), -a.Low());
  if (!negative.IsEmpty()) {
    const ExponentRange even(negative, z.Low(), z.High());
    const ExponentRange odd(negative, -z.High(), -z.Low());
    hull.AddEvery(false, even.least, even.greatest);
    hull.AddEvery(true, odd.least, odd.greatest);
  }
  return hull.Get();
}
