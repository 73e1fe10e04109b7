// A second operand with both signs is two, one for each sign, and what follows from either is united. A negative one is
// turned around: x / y = -x / -y, x * y = -x * -y, x mod y = x mod -y.
#include "constraints/arithmeticBounds.h"

#include <algorithm>
#include <cstdlib>

namespace {

using Range = VokTarnRange;

constexpr std::int64_t kFar = std::int64_t{1} << 40;  // beyond every integer of the network
constexpr Range kNone = {1, 0};
constexpr Range kAll = {-kFar, kFar};

Range Unite(Range a, Range b) {
  return a.IsEmpty() ? b : b.IsEmpty() ? a : Range{std::min(a.lower, b.lower), std::max(a.upper, b.upper)};
}
Range Intersect(Range a, Range b) {
  return {std::max(a.lower, b.lower), std::min(a.upper, b.upper)};
}
Range Negate(Range a) {
  return {-a.upper, -a.lower};
}
Range Positive(Range a) {
  return Intersect(a, {1, kFar});
}
// b > 0.
std::int64_t DivideDown(std::int64_t a, std::int64_t b) {
  return a / b - (a % b < 0 ? 1 : 0);
}
std::int64_t DivideUp(std::int64_t a, std::int64_t b) {
  return a / b + (a % b > 0 ? 1 : 0);
}

// The union of what a function says for a positive y, and of what it says for -y with the given turn of the rest.
template <class Rule>
Range ForBothSigns(Range y, Rule rule) {
  const Range positive = Positive(y);
  const Range negative = Positive(Negate(y));
  return Unite(positive.IsEmpty() ? kNone : rule(positive, false), negative.IsEmpty() ? kNone : rule(negative, true));
}

// ---- Product

Range Multiply(Range x, Range y) {
  const std::int64_t corners[] = {x.lower * y.lower, x.lower * y.upper, x.upper * y.lower, x.upper * y.upper};
  const auto [least, greatest] = std::ranges::minmax(corners);
  return {least, greatest};
}

// The x with z = x y.
Range FindFactor(Range y, Range z) {
  if (z.Has(0) && y.Has(0)) {
    return kAll;
  }
  return ForBothSigns(y, [z](Range divisor, bool isTurned) {
    const Range w = isTurned ? Negate(z) : z;
    return Range{DivideUp(w.lower, w.lower > 0 ? divisor.upper : divisor.lower),
                 DivideDown(w.upper, w.upper > 0 ? divisor.lower : divisor.upper)};
  });
}

// ---- Quotient

Range Divide(Range x, Range y) {
  return ForBothSigns(y, [x](Range divisor, bool isTurned) {
    const Range w = isTurned ? Negate(x) : x;
    return Range{w.lower / (w.lower >= 0 ? divisor.upper : divisor.lower),
                 w.upper / (w.upper >= 0 ? divisor.lower : divisor.upper)};
  });
}

Range FindDividend(Range y, Range z) {
  return ForBothSigns(y, [z](Range divisor, bool isTurned) {
    const std::int64_t lower = z.lower > 0 ? z.lower * divisor.lower : (z.lower - 1) * divisor.upper + 1;
    const std::int64_t upper = z.upper < 0 ? z.upper * divisor.lower : (z.upper + 1) * divisor.upper - 1;
    return isTurned ? Range{-upper, -lower} : Range{lower, upper};
  });
}

// The positive y with z = x / y.
Range FindPositiveDivisor(Range x, Range z) {
  Range y = {1, kFar};
  if (z.upper < 0) {
    x = Negate(x);
    z = Negate(z);
  }
  if (z.lower > 0) {
    y.upper = DivideDown(x.upper, z.lower);
  }
  if (z.lower >= 0 && x.lower >= 0) {
    y.lower = x.lower / (z.upper + 1) + 1;
  }
  return y;
}

Range FindDivisor(Range x, Range y, Range z) {
  const Range positive = Intersect(FindPositiveDivisor(x, z), Positive(y));
  const Range negative = Intersect(FindPositiveDivisor(Negate(x), z), Positive(Negate(y)));
  return Unite(positive, negative.IsEmpty() ? kNone : Negate(negative));
}

// ---- Remainder

Range FindRemainder(Range x, Range y) {
  const std::int64_t most = std::max(std::abs(y.lower), std::abs(y.upper)) - 1;
  if (most < 0) {
    return kNone;
  }
  const Range divisor = Positive(y.lower < 0 ? Negate(y) : y);
  if (y.lower == y.upper && x.lower / divisor.lower == x.upper / divisor.lower) {
    return {x.lower % divisor.lower, x.upper % divisor.lower};
  }
  return {std::max(-most, std::min<std::int64_t>(x.lower, 0)), std::min(most, std::max<std::int64_t>(x.upper, 0))};
}

// With a divisor that is known, the ends of x move to the next number whose remainder may be.
Range FindNumerator(Range x, Range y, Range z) {
  constexpr int kMostSteps = 64;
  Range result = {z.lower > 0 ? z.lower : -kFar, z.upper < 0 ? z.upper : kFar};
  result = Intersect(result, x);
  if (y.lower == y.upper && y.lower != 0) {
    for (int k = 0; k < kMostSteps && !result.IsEmpty() && !z.Has(result.lower % y.lower); ++k) {
      ++result.lower;
    }
    for (int k = 0; k < kMostSteps && !result.IsEmpty() && !z.Has(result.upper % y.lower); ++k) {
      --result.upper;
    }
  }
  return result;
}

Range FindModulus(Range y, Range z) {
  const std::int64_t least = z.lower > 0 ? z.lower + 1 : z.upper < 0 ? 1 - z.upper : 1;
  return ForBothSigns(y, [least](Range divisor, bool isTurned) {
    const Range kept = Intersect(divisor, {least, kFar});
    return isTurned && !kept.IsEmpty() ? Negate(kept) : kept;
  });
}

// ---- Power

// base and exponent not negative; clipped to kFar.
std::int64_t Raise(std::int64_t base, std::int64_t exponent) {
  std::int64_t power = 1;
  for (std::int64_t k = 0; k < exponent && base > 1; ++k) {
    if (power > kFar / base) {
      return kFar;
    }
    power *= base;
  }
  return base == 0 && exponent > 0 ? 0 : power;
}

// The greatest base whose power is at most v; v not negative, exponent positive.
std::int64_t RootDown(std::int64_t v, std::int64_t exponent) {
  std::int64_t low = 0;
  std::int64_t high = std::int64_t{1} << 32;
  while (low + 1 < high) {
    const std::int64_t middle = (low + high) / 2;
    (Raise(middle, exponent) <= v ? low : high) = middle;
  }
  return low;
}
std::int64_t RootUp(std::int64_t v, std::int64_t exponent) {
  return v <= 0 ? 0 : RootDown(v - 1, exponent) + 1;
}

Range FindMagnitude(Range x) {
  const std::int64_t most = std::max(std::abs(x.lower), std::abs(x.upper));
  return {x.Has(0) ? 0 : std::min(std::abs(x.lower), std::abs(x.upper)), most};
}

std::int64_t RaiseSigned(std::int64_t base, std::int64_t exponent) {
  const std::int64_t power = Raise(std::abs(base), exponent);
  return base < 0 && exponent % 2 != 0 ? -power : power;
}

Range FindPower(Range x, Range y) {
  if (y.lower < 0) {
    // Negative exponents give -1, 0 and 1.
    const Range rest = y.upper < 0 ? kNone : FindPower(x, {0, y.upper});
    return Unite({-1, 1}, rest);
  }
  const Range magnitude = FindMagnitude(x);
  if (x.lower > 0) {
    return {Raise(x.lower, y.lower), Raise(x.upper, y.upper)};
  }
  if (y.lower == y.upper) {
    return y.lower % 2 != 0 ? Range{RaiseSigned(x.lower, y.lower), RaiseSigned(x.upper, y.lower)}
                            : Range{Raise(magnitude.lower, y.lower), Raise(magnitude.upper, y.lower)};
  }
  const std::int64_t most = Raise(std::max<std::int64_t>(magnitude.upper, 1), y.upper);
  return {x.lower < 0 ? -most : 0, most};
}

Range FindBase(Range x, Range y, Range z) {
  if (y.lower < 1) {
    return x;
  }
  if (y.lower == y.upper && y.lower % 2 != 0) {
    const auto root = [&](std::int64_t v, bool isUp) {
      return v >= 0 ? (isUp ? RootUp(v, y.lower) : RootDown(v, y.lower))
                    : -(isUp ? RootDown(-v, y.lower) : RootUp(-v, y.lower));
    };
    return Intersect(x, {root(z.lower, true), root(z.upper, false)});
  }
  // |x| ^ y lies between what |z| can be.
  const Range magnitude = FindMagnitude(z);
  const std::int64_t most = RootDown(magnitude.upper, y.lower);
  const std::int64_t least = RootUp(magnitude.lower, y.upper);
  return Unite(Intersect(x, {least, most}), Intersect(x, {-most, -least}));
}

Range FindExponent(Range x, Range y, Range z) {
  if (x.lower < 2 || y.lower < 0) {
    return y;
  }
  while (!y.IsEmpty() && Raise(x.lower, y.upper) > z.upper) {
    if (y.upper > 63) {
      y.upper = 63;
    } else {
      --y.upper;
    }
  }
  while (!y.IsEmpty() && Raise(x.upper, y.lower) < z.lower) {
    ++y.lower;
  }
  return y;
}

}  // namespace

std::optional<std::int64_t> Apply(VokTarnFunction function, std::int64_t x, std::int64_t y) noexcept {
  switch (function) {
    case VokTarnFunction::Product:
      return x * y;
    case VokTarnFunction::Quotient:
      return y == 0 ? std::nullopt : std::optional(x / y);
    case VokTarnFunction::Remainder:
      return y == 0 ? std::nullopt : std::optional(x % y);
    case VokTarnFunction::Power:
      if (y >= 0) {
        return RaiseSigned(x, y);
      }
      return x == 0 ? std::nullopt : std::optional(std::abs(x) == 1 ? RaiseSigned(x, -y % 2) : 0);
    case VokTarnFunction::Magnitude:
      break;
  }
  return std::abs(x);
}

VokTarnRange FindResult(VokTarnFunction function, Range x, Range y) {
  switch (function) {
    case VokTarnFunction::Product:
      return Multiply(x, y);
    case VokTarnFunction::Quotient:
      return Divide(x, y);
    case VokTarnFunction::Remainder:
      return FindRemainder(x, y);
    case VokTarnFunction::Power:
      return FindPower(x, y);
    case VokTarnFunction::Magnitude:
      break;
  }
  return FindMagnitude(x);
}

VokTarnRange FindFirst(VokTarnFunction function, Range x, Range y, Range z) {
  switch (function) {
    case VokTarnFunction::Product:
      return FindFactor(y, z);
    case VokTarnFunction::Quotient:
      return FindDividend(y, z);
    case VokTarnFunction::Remainder:
      return FindNumerator(x, y, z);
    case VokTarnFunction::Power:
      return FindBase(x, y, z);
    case VokTarnFunction::Magnitude:
      break;
  }
  const Range magnitude = Intersect(z, {0, kFar});
  return magnitude.IsEmpty() ? kNone : Unite(Intersect(x, magnitude), Intersect(x, Negate(magnitude)));
}

VokTarnRange FindSecond(VokTarnFunction function, Range x, Range y, Range z) {
  switch (function) {
    case VokTarnFunction::Product:
      return FindFactor(x, z);
    case VokTarnFunction::Quotient:
      return FindDivisor(x, y, z);
    case VokTarnFunction::Remainder:
      return FindModulus(y, z);
    case VokTarnFunction::Power:
      return FindExponent(x, y, z);
    case VokTarnFunction::Magnitude:
      break;
  }
  return y;
}
