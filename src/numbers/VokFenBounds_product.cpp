// Products, factors and remainders of bounds.
//
// Factor  z = x * b. When 0 is possible for b and for z, every x has a partner. Otherwise b = 0 has none, and what
// is left of b falls into a positive and a negative part. For b in [p, q], 0 < p, the real quotients z / b
// reach from z.lower / p (z.lower / q when that is positive) to z.upper / p (z.upper / q when that is
// negative); rounding the lower end up and the upper end down loses no integer. For the negative part both
// z and b change their sign.
//
// Remainder  z = a mod b keeps |z| < |b|, |z| <= |a| and the sign of a, and equals a while |a| < |b|.
#include <algorithm>

#include "numbers/VokFenBounds.h"

namespace {

using Wide = std::int64_t;

constexpr Wide sInfinity = VokFenBounds::sInfinity;

Wide FloorOfQuotient(Wide a, Wide positive) {
  return a / positive - (a % positive < 0 ? 1 : 0);
}

Wide CeilingOfQuotient(Wide a, Wide positive) {
  return a / positive + (a % positive > 0 ? 1 : 0);
}

// Adds the x with x * b = z for a z in [lower, upper] and a b in [p, q], p > 0.
void AddQuotients(VokFenHull& hull, Wide lower, Wide upper, Wide p, Wide q) {
  if (p <= q) {
    hull.Add(lower == -sInfinity ? lower : CeilingOfQuotient(lower, lower > 0 ? q : p),
             upper == sInfinity ? upper : FloorOfQuotient(upper, upper > 0 ? p : q));
  }
}

// The least and the greatest magnitude of a divisor, 0 left out.
struct Magnitudes {
  Wide least;
  Wide greatest;
};

Magnitudes MagnitudesOf(VokFenBounds b) {
  const Wide least = b.lower > 0 ? b.Low() : b.upper < 0 ? -b.High() : 1;
  return {least, std::max(-b.Low(), b.High())};
}

bool IsOnlyZero(VokFenBounds b) {
  return b.lower == 0 && b.upper == 0;
}

// The bounds of a when it is the remainder itself, every |a| being below every |b|.
bool IsBelow(VokFenBounds a, Magnitudes b) {
  return std::max(-a.Low(), a.High()) < b.least;
}

// Narrows x to the numbers that leave the remainder r when divided by `divisor`: the nearest ones inside.
void AddCongruent(VokFenHull& hull, VokFenBounds x, Wide r, Wide divisor) {
  const Wide low = r > 0 ? std::max(x.Low(), r) : x.Low();
  const Wide high = r < 0 ? std::min(x.High(), r) : x.High();
  const auto distance = [divisor](Wide from, Wide to) {
    return to - from - divisor * FloorOfQuotient(to - from, divisor);
  };
  hull.Add(low == -sInfinity ? low : low + distance(low, r), high == sInfinity ? high : high - distance(r, high));
}

}  // namespace

VokFenBounds BoundsOfProduct(VokFenBounds, VokFenBounds a, VokFenBounds b) {
  if (a.IsPoint() && b.IsPoint()) {
    const VokLong product = SubIntBase::base_mult(a.lower, b.lower);
    return {product, product};
  }
  const auto [least, greatest] =
      std::minmax({a.Low() * b.Low(), a.Low() * b.High(), a.High() * b.Low(), a.High() * b.High()});
  return VokFenBounds::Clamped(least, greatest);
}

VokFenBounds BoundsOfFactor(VokFenBounds x, VokFenBounds z, VokFenBounds b) {
  if (b.Holds(0) && z.Holds(0)) {
    return x;
  }
  VokFenHull hull(x);
  AddQuotients(hull, z.Low(), z.High(), std::max<Wide>(1, b.Low()), b.High());
  AddQuotients(hull, -z.High(), -z.Low(), std::max<Wide>(1, -b.High()), -b.Low());
  return hull.Get();
}

VokFenBounds BoundsOfRemainder(VokFenBounds, VokFenBounds a, VokFenBounds b) {
  if (IsOnlyZero(b)) {
    return VokFenBounds::Empty();
  }
  const Magnitudes divisor = MagnitudesOf(b);
  if (IsBelow(a, divisor)) {
    return a;
  }
  const Wide low = a.Low();
  const Wide high = a.High();
  // Between two multiples of a known divisor the remainder rises with a.
  const bool oneSign = low >= 0 || high <= 0;
  const bool finite = low != -sInfinity && high != sInfinity;
  if (divisor.least == divisor.greatest && finite && oneSign && low / divisor.least == high / divisor.least) {
    return VokFenBounds::Clamped(low % divisor.least, high % divisor.least);
  }
  const Wide limit = divisor.greatest == sInfinity ? sInfinity : divisor.greatest - 1;
  return VokFenBounds::Clamped(std::clamp<Wide>(low, -limit, 0), std::clamp<Wide>(high, 0, limit));
}

VokFenBounds BoundsOfDividend(VokFenBounds x, VokFenBounds z, VokFenBounds b) {
  const VokFenBounds r = z.Intersection(BoundsOfRemainder(z, x, b));
  if (r.IsEmpty()) {
    return r;
  }
  const Magnitudes divisor = MagnitudesOf(b);
  if (IsBelow(x, divisor)) {
    return r;
  }
  VokFenHull hull(x);
  if (r.IsPoint() && divisor.least == divisor.greatest) {
    AddCongruent(hull, x, r.lower, divisor.least);
  } else {
    hull.Add(r.lower > 0 ? r.Low() : -sInfinity, r.upper < 0 ? r.High() : sInfinity);
  }
  return hull.Get();
}

// |x| is above every |z|. When a and z cannot be equal, x divides their difference.
VokFenBounds BoundsOfDivisor(VokFenBounds x, VokFenBounds z, VokFenBounds a) {
  const VokFenBounds r = z.Intersection(BoundsOfRemainder(z, a, VokFenBounds::All()));
  if (r.IsEmpty()) {
    return r;
  }
  const Wide least = 1 + (r.lower > 0 ? r.Low() : r.upper < 0 ? -r.High() : 0);
  Wide greatest = sInfinity;
  if (r.Intersection(a).IsEmpty()) {
    greatest = std::max(a.High() - r.Low(), r.High() - a.Low());
  }
  VokFenHull hull(x);
  hull.Add(least, greatest);
  hull.Add(-greatest, -least);
  const VokFenBounds divisor = hull.Get();
  if (divisor.IsEmpty() || BoundsOfRemainder(z, a, divisor).Intersection(z).IsEmpty()) {
    return VokFenBounds::Empty();
  }
  return divisor;
}
