// Powers, bases and exponents up to the ends of the range.
#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <set>

#include "numbers/VokFenIntervalInteger.h"

namespace {

constexpr VokLong kMax = SubIntBase::sMax;
constexpr VokLong kMin = SubIntBase::sMin;
constexpr VokLong kNil = -2147483647 - 1;
constexpr VokLong kAny = 2147483647;

VokLong PowerOf(VokLong a, VokLong e) {
  VokFenSingleInteger power(77);
  power.CalcPowerValue(VokFenSingleInteger(a), VokFenSingleInteger(e));
  return power.GetExactValue();
}

// The power by repeated multiplication; kNil when there is none.
VokLong SlowPower(std::int64_t a, VokLong e) {
  if (e < 0) {
    return std::abs(a) != 1 ? kNil : a == 1 || e % 2 == 0 ? 1 : -1;
  }
  std::int64_t power = 1;
  for (VokLong i = 0; i < e; ++i) {
    power *= a;
    if (std::abs(power) >= kMax) {
      return kNil;
    }
  }
  return static_cast<VokLong>(power);
}

const std::set<VokLong> kBases = {0,    1,    2,     3,     4,     7,        10,       46,     215,    216,
                                  1290, 1291, 46340, 46341, 92681, kMax - 2, kMax - 1, -1,     -2,     -3,
                                  -10,  -46,  -215,  -216,  -1290, -1291,    -46340,   -46341, -92681, kMin + 1};

TEST(SinglePower, IsExactAndOverwrites) {
  for (const VokLong a : kBases) {
    for (VokLong e = -4; e <= 40; ++e) {
      EXPECT_EQ(PowerOf(a, e), SlowPower(a, e)) << a << " ^ " << e;
    }
  }
  struct Row {
    VokLong a, e, power;
  };
  for (const Row& row : {Row{0, kMax, 0}, Row{1, kMax, 1}, Row{-1, kMax, -1}, Row{-1, kMax - 1, 1}, Row{-1, kMin, -1},
                         Row{1, kMin, 1}, Row{0, kMin, kNil}, Row{2, kMax, kNil}, Row{kMax, 1, kNil}, Row{kMax, 0, 1},
                         Row{kAny, 2, kAny}, Row{2, kAny, kAny}, Row{kNil, 2, kNil}, Row{2, kNil, kNil}}) {
    EXPECT_EQ(PowerOf(row.a, row.e), row.power) << row.a << " ^ " << row.e;
  }
  VokFenSingleInteger power(8);
  EXPECT_EQ(power.CalcPowerValue(VokFenSingleInteger(2), VokFenSingleInteger(3)), 0);
  EXPECT_EQ(power.CalcPowerValue(power, power), 1);
  EXPECT_EQ(power.GetExactValue(), 16777216);
}

using Hull = std::optional<std::pair<VokLong, VokLong>>;

Hull HullOf(const VokFenIntervalInteger& x) {
  return x.IsNil() != 0 ? Hull() : Hull(std::pair(x.GetLowerBound(), x.GetUpperBound()));
}

// Results to try: powers and their neighbours.
std::set<VokLong> Results(VokLong e) {
  std::set<VokLong> results = {-9, -8, -1, 0, 1, 2, 7, 8, 9, kMax - 1, kMin + 1};
  for (const VokLong a : kBases) {
    const VokLong power = SlowPower(a, e);
    if (power != kNil) {
      results.insert({power, std::max(power - 1, kMin + 1), std::min(power + 1, kMax - 1)});
    }
  }
  return results;
}

TEST(IntervalPower, BasesAreTheHullOfTheRootsInside) {
  for (VokLong e = 1; e <= 33; ++e) {
    for (const VokLong z : Results(e)) {
      const VokLong root = static_cast<VokLong>(std::llround(std::pow(std::abs(static_cast<double>(z)), 1.0 / e)));
      for (const auto& [lower, upper] :
           {std::pair(kMin, kMax), std::pair(-5, 5), std::pair(-2, kMax), std::pair(2, 3)}) {
        Hull expected;
        for (VokLong x : {-root - 1, -root, 1 - root, -1, 0, 1, root - 1, root, root + 1}) {
          if (lower <= x && x <= upper && SlowPower(x, e) == z) {
            expected =
                expected ? std::pair(std::min(expected->first, x), std::max(expected->second, x)) : std::pair(x, x);
          }
        }
        VokFenIntervalInteger x(lower, upper);
        EXPECT_EQ(VokFenIntervalInteger(z, z).CalcFirstInversePowerValue(x, VokFenSingleInteger(e)), 1);
        EXPECT_EQ(HullOf(x), expected) << "x ^ " << e << " = " << z << ", x in " << lower << ", " << upper;
      }
    }
  }
}

TEST(IntervalPower, BasesOfSpecialExponents) {
  struct Row {
    VokLong zLower, zUpper, e, lower, upper;
    Hull expected;
  };
  const Row rows[] = {
      {9, 9, 2, -5, 5, std::pair(-3, 3)},           {8, 8, 3, kMin, kMax, std::pair(2, 2)},
      {-8, -8, 3, kMin, kMax, std::pair(-2, -2)},   {-4, -4, 2, kMin, kMax, std::nullopt},
      {1, 1, 0, kMin, kMax, std::pair(kMin, kMax)}, {2, 2, 0, -5, 5, std::nullopt},
      {1, 1, -2, kMin, kMax, std::pair(-1, 1)},     {1, 1, -3, kMin, kMax, std::pair(1, 1)},
      {-1, -1, kMin, -7, 7, std::pair(-1, -1)},     {2, 2, -1, kMin, kMax, std::nullopt},
      {-1, 1, -1, 0, 5, std::pair(1, 1)},           {kMin, kMax, 2, kMin, kMax, std::pair(kMin, kMax)},
      {kMax, kMax, 1, kMin, kMax, std::nullopt},    {10, 100, 2, kMin, kMax, std::pair(-10, 10)},
      {10, 100, 2, -3, 50, std::pair(4, 10)},       {-100, 10, 3, kMin, kMax, std::pair(-4, 2)},
  };
  for (const Row& row : rows) {
    VokFenIntervalInteger x(row.lower, row.upper);
    VokFenIntervalInteger(row.zLower, row.zUpper).CalcFirstInversePowerValue(x, VokFenSingleInteger(row.e));
    EXPECT_EQ(HullOf(x), row.expected) << "x ^ " << row.e << " in " << row.zLower << ", " << row.zUpper;
  }
}

TEST(IntervalPower, ExponentsOfAKnownBaseAreTheirHull) {
  for (const VokLong a : kBases) {
    for (VokLong lower = -4; lower <= 40; ++lower) {
      for (const VokLong z : {std::max(kMin + 1, SlowPower(a, lower)), -27, -8, -1, 0, 1, 2, 8, 9, 1024}) {
        for (const VokLong upper : {lower, lower + 1, lower + 20}) {
          Hull expected;
          for (VokLong e = lower; e <= upper; ++e) {
            if (SlowPower(a, e) == z) {
              expected = std::pair(expected ? expected->first : e, e);
            }
          }
          VokFenIntervalInteger b(lower, upper);
          VokFenIntervalInteger(z, z).CalcSecondInversePowerValue(VokFenIntervalInteger(a, a), b);
          EXPECT_EQ(HullOf(b), expected) << a << " ^ b = " << z << ", b from " << lower << " to " << upper;
        }
      }
    }
  }
  VokFenIntervalInteger b;
  EXPECT_EQ(VokFenIntervalInteger(1, 1).CalcSecondInversePowerValue(VokFenIntervalInteger(1, 1), b), 0);
  EXPECT_NE(b.IsUndefined(), 0);
}

}  // namespace
