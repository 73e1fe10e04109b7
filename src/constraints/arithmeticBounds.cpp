// A second operand with both signs is two, one for each sign, and what follows from either is united. A negative one is
// turned around: x / y = -x / -y, x * y = -x * -y, x mod y = x mod -y.
#include "constraints/arithmeticBounds.h"

#include <algorithm>
#include <cstdlib>

#include "base/division.h"

namespace {

using Range = VokTarnRange;

constexpr std::int64_t kFar = std::int64_t{1} << 40;  // beyond every integer of the network
constexpr Range kNone = {1, 0};
constexpr Range kAll = {-kFar, kFar};

Range Positive(Range a) {
  return a.Intersect({1, kFar});
}
// The union of what a function says for a positive y, and of what it says for -y with the given turn of the rest.
template <class Rule>
Range ForBothSigns(Range y, Rule rule) {
  const Range positive = Positive(y);
  const Range negative = Positive(y.Negate());
  return (positive.IsEmpty() ? kNone : rule(positive, false)).Unite(negative.IsEmpty() ? kNone : rule(negative, true));
}

// ---- Product

Range Multiply(Range x, Range y) {
  const std::int64_t corners[] = {x.fLower * y.fLower, x.fLower * y.fUpper, x.fUpper * y.fLower, x.fUpper * y.fUpper};
  const auto [least, greatest] = std::ranges::minmax(corners);
  return {least, greatest};
}

// The x with z = x y.
Range FindFactor(Range y, Range z) {
  if (z.Has(0) && y.Has(0)) {
    return kAll;
  }
  return ForBothSigns(y, [z](Range divisor, bool isTurned) {
    const Range w = isTurned ? z.Negate() : z;
    return Range{DivideUp(w.fLower, w.fLower > 0 ? divisor.fUpper : divisor.fLower),
                 DivideDown(w.fUpper, w.fUpper > 0 ? divisor.fLower : divisor.fUpper)};
  });
}

// ---- Quotient

Range Divide(Range x, Range y) {
  return ForBothSigns(y, [x](Range divisor, bool isTurned) {
    const Range w = isTurned ? x.Negate() : x;
    return Range{w.fLower / (w.fLower >= 0 ? divisor.fUpper : divisor.fLower),
                 w.fUpper / (w.fUpper >= 0 ? divisor.fLower : divisor.fUpper)};
  });
}

Range FindDividend(Range y, Range z) {
  return ForBothSigns(y, [z](Range divisor, bool isTurned) {
    const std::int64_t lower = z.fLower > 0 ? z.fLower * divisor.fLower : (z.fLower - 1) * divisor.fUpper + 1;
    const std::int64_t upper = z.fUpper < 0 ? z.fUpper * divisor.fLower : (z.fUpper + 1) * divisor.fUpper - 1;
    return isTurned ? Range{-upper, -lower} : Range{lower, upper};
  });
}

// The positive y with z = x / y.
Range FindPositiveDivisor(Range x, Range z) {
  Range y = {1, kFar};
  if (z.fUpper < 0) {
    x = x.Negate();
    z = z.Negate();
  }
  if (z.fLower > 0) {
    y.fUpper = DivideDown(x.fUpper, z.fLower);
  }
  if (z.fLower >= 0 && x.fLower >= 0) {
    y.fLower = x.fLower / (z.fUpper + 1) + 1;
  }
  return y;
}

Range FindDivisor(Range x, Range y, Range z) {
  const Range positive = FindPositiveDivisor(x, z).Intersect(Positive(y));
  const Range negative = FindPositiveDivisor(x.Negate(), z).Intersect(Positive(y.Negate()));
  return positive.Unite(negative.IsEmpty() ? kNone : negative.Negate());
}

// ---- Remainder

Range FindRemainder(Range x, Range y) {
  const std::int64_t most = std::max(std::abs(y.fLower), std::abs(y.fUpper)) - 1;
  if (most < 0) {
    return kNone;
  }
  const Range divisor = Positive(y.fLower < 0 ? y.Negate() : y);
  if (y.fLower == y.fUpper && x.fLower / divisor.fLower == x.fUpper / divisor.fLower) {
    return {x.fLower % divisor.fLower, x.fUpper % divisor.fLower};
  }
  return {std::max(-most, std::min<std::int64_t>(x.fLower, 0)), std::min(most, std::max<std::int64_t>(x.fUpper, 0))};
}

// With a divisor that is known, the ends of x move to the next number whose remainder may be.
Range FindNumerator(Range x, Range y, Range z) {
  constexpr int kMostSteps = 64;
  Range result = {z.fLower > 0 ? z.fLower : -kFar, z.fUpper < 0 ? z.fUpper : kFar};
  result = result.Intersect(x);
  if (y.fLower == y.fUpper && y.fLower != 0) {
    for (int k = 0; k < kMostSteps && !result.IsEmpty() && !z.Has(result.fLower % y.fLower); ++k) {
      ++result.fLower;
    }
    for (int k = 0; k < kMostSteps && !result.IsEmpty() && !z.Has(result.fUpper % y.fLower); ++k) {
      --result.fUpper;
    }
  }
  return result;
}

Range FindModulus(Range y, Range z) {
  const std::int64_t least = z.fLower > 0 ? z.fLower + 1 : z.fUpper < 0 ? 1 - z.fUpper : 1;
  return ForBothSigns(y, [least](Range divisor, bool isTurned) {
    const Range kept = divisor.Intersect({least, kFar});
    return isTurned && !kept.IsEmpty() ? kept.Negate() : kept;
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
  const std::int64_t most = std::max(std::abs(x.fLower), std::abs(x.fUpper));
  return {x.Has(0) ? 0 : std::min(std::abs(x.fLower), std::abs(x.fUpper)), most};
}

std::int64_t RaiseSigned(std::int64_t base, std::int64_t exponent) {
  const std::int64_t power = Raise(std::abs(base), exponent);
  return base < 0 && exponent % 2 != 0 ? -power : power;
}

Range FindPower(Range x, Range y) {
  if (y.fLower < 0) {
    // Negative exponents give -1, 0 and 1.
    const Range rest = y.fUpper < 0 ? kNone : FindPower(x, {0, y.fUpper});
    return rest.Unite({-1, 1});
  }
  const Range magnitude = FindMagnitude(x);
  if (x.fLower > 0) {
    return {Raise(x.fLower, y.fLower), Raise(x.fUpper, y.fUpper)};
  }
  if (y.fLower == y.fUpper) {
    return y.fLower % 2 != 0 ? Range{RaiseSigned(x.fLower, y.fLower), RaiseSigned(x.fUpper, y.fLower)}
                             : Range{Raise(magnitude.fLower, y.fLower), Raise(magnitude.fUpper, y.fLower)};
  }
  const std::int64_t most = Raise(std::max<std::int64_t>(magnitude.fUpper, 1), y.fUpper);
  return {x.fLower < 0 ? -most : 0, most};
}

Range FindBase(Range x, Range y, Range z) {
  if (y.fLower < 1) {
    return x;
  }
  if (y.fLower == y.fUpper && y.fLower % 2 != 0) {
    const auto root = [&](std::int64_t v, bool isUp) {
      return v >= 0 ? (isUp ? RootUp(v, y.fLower) : RootDown(v, y.fLower))
                    : -(isUp ? RootDown(-v, y.fLower) : RootUp(-v, y.fLower));
    };
    return x.Intersect({root(z.fLower, true), root(z.fUpper, false)});
  }
  // |x| ^ y lies between what |z| can be.
  const Range magnitude = FindMagnitude(z);
  const std::int64_t most = RootDown(magnitude.fUpper, y.fLower);
  const std::int64_t least = RootUp(magnitude.fLower, y.fUpper);
  return x.Intersect({least, most}).Unite(x.Intersect({-most, -least}));
}

Range FindExponent(Range x, Range y, Range z) {
  if (x.fLower < 2 || y.fLower < 0) {
    return y;
  }
  while (!y.IsEmpty() && Raise(x.fLower, y.fUpper) > z.fUpper) {
    if (y.fUpper > 63) {
      y.fUpper = 63;
    } else {
      --y.fUpper;
    }
  }
  while (!y.IsEmpty() && Raise(x.fUpper, y.fLower) < z.fLower) {
    ++y.fLower;
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
  const Range magnitude = z.Intersect({0, kFar});
  return magnitude.IsEmpty() ? kNone : x.Intersect(magnitude).Unite(x.Intersect(magnitude.Negate()));
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
