// Powers, bases and exponents up to the ends of the range.
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "numbers/values.h"

namespace {

// The power by repeated multiplication; kNil when there is none.
VokLong SlowPower(std::int64_t a, VokLong e) {
  if (e < 0) {
    return std::abs(a) != 1 ? kNil : a == 1 || e % 2 == 0 ? 1 : -1;
  }
  std::int64_t power = 1;
  for (VokLong i = 0; i < e && std::abs(power) < kMax; ++i) {
    power *= a;
  }
  return std::abs(power) < kMax ? static_cast<VokLong>(power) : kNil;
}

const std::set<VokLong> kBases = {0,    1,    2,     3,     4,     7,        10,       46,     215,    216,
                                  1290, 1291, 46340, 46341, 92681, kMax - 2, kMax - 1, -1,     -2,     -3,
                                  -10,  -46,  -215,  -216,  -1290, -1291,    -46340,   -46341, -92681, kMin + 1};

TEST(SinglePower, IsExactAndOverwrites) {
  const auto powerOf = [](VokLong a, VokLong e) {
    Single power(77);
    power.CalcPowerValue(Single(a), Single(e));
    return power.GetExactValue();
  };
  for (const VokLong a : kBases) {
    for (VokLong e = -4; e <= 40; ++e) {
      EXPECT_EQ(powerOf(a, e), SlowPower(a, e)) << a << " ^ " << e;
    }
  }
  const VokLong rows[][3] = {{0, kMax, 0},    {1, kMax, 1},    {-1, kMax, -1},  {-1, kMax - 1, 1}, {-1, kMin, -1},
                             {1, kMin, 1},    {0, kMin, kNil}, {2, kMax, kNil}, {kMax, 1, kNil},   {kMax, 0, 1},
                             {kAny, 2, kAny}, {2, kAny, kAny}, {kNil, 2, kNil}, {2, kNil, kNil}};
  for (const auto& [a, e, power] : rows) {
    EXPECT_EQ(powerOf(a, e), power) << a << " ^ " << e;
  }
  Single power(8);
  EXPECT_EQ(power.CalcPowerValue(Single(2), Single(3)), 0);
  EXPECT_EQ(power.CalcPowerValue(power, power), 1);
  EXPECT_EQ(power.GetExactValue(), 16777216);
}

// The smallest interval with those of the values that fit.
template <class Range, class Fits>
std::string HullOf(const Range& values, Fits fits) {
  VokLong lower = kMax, upper = kMin;
  for (const VokLong v : values) {
    lower = fits(v) ? std::min(lower, v) : lower;
    upper = fits(v) ? std::max(upper, v) : upper;
  }
  return Show(Interval(lower, upper));
}

TEST(IntervalPower, BasesAreTheHullOfTheRootsInside) {
  for (VokLong e = 1; e <= 33; ++e) {
    std::set<VokLong> results = {-9, -8, -1, 0, 1, 2, 7, 8, 9, kMax - 1, kMin + 1};
    for (const VokLong a : kBases) {
      if (const VokLong power = SlowPower(a, e); power != kNil) {
        results.insert({power, std::max(power - 1, kMin + 1), std::min(power + 1, kMax - 1)});
      }
    }
    for (const VokLong z : results) {
      const VokLong root = static_cast<VokLong>(std::llround(std::pow(std::abs(static_cast<double>(z)), 1.0 / e)));
      for (const Interval& bases : {Interval(), Interval(-5, 5), Interval(-2, kMax), Interval(2, 3)}) {
        Interval x = bases;
        EXPECT_EQ(Interval(z, z).CalcFirstInversePowerValue(x, Single(e)), 1);
        EXPECT_EQ(Show(x),
                  HullOf(std::initializer_list<VokLong>{-root - 1, -root, 1 - root, -1, 0, 1, root - 1, root, root + 1},
                         [&](VokLong a) { return bases.IsPossible(a) && SlowPower(a, e) == z; }))
            << "x ^ " << e << " = " << z << ", x in " << Show(bases);
      }
    }
  }
}

TEST(IntervalPower, BasesOfSpecialExponents) {
  struct Row {
    const char* power;
    VokLong exponent;
    const char *base, *left;
  };
  for (const Row& row : {Row{"1", 0, "Any", "Any"}, Row{"1", -2, "Any", "[-1, 1]"}, Row{"-1", kMin, "[-7, 7]", "-1"},
                         Row{"[-1, 1]", -1, "[0, 5]", "1"}, Row{"Any", 2, "Any", "Any"}, Row{"Max", 1, "Any", "Nil"},
                         Row{"[10, 100]", 2, "Any", "[-10, 10]"}, Row{"[10, 100]", 2, "[-3, 50]", "[4, 10]"},
                         Row{"[-100, 10]", 3, "Any", "[-4, 2]"}}) {
    Interval x = IntervalOf(row.base);
    IntervalOf(row.power).CalcFirstInversePowerValue(x, Single(row.exponent));
    EXPECT_EQ(Show(x), row.left) << "x ^ " << row.exponent << " in " << row.power;
  }
}

TEST(IntervalPower, ExponentsOfAKnownBaseAreTheirHull) {
  for (const VokLong a : kBases) {
    for (VokLong lower = -4; lower <= 40; ++lower) {
      for (const VokLong z : {std::max(kMin + 1, SlowPower(a, lower)), -27, -8, -1, 0, 1, 2, 8, 9, 1024}) {
        for (const VokLong width : {1, 2, 21}) {
          std::vector<VokLong> exponents;
          for (VokLong e = lower; e < lower + width; ++e) {
            exponents.push_back(e);
          }
          Interval b(lower, exponents.back());
          Interval(z, z).CalcSecondInversePowerValue(Interval(a, a), b);
          EXPECT_EQ(Show(b), HullOf(exponents, [&](VokLong e) { return SlowPower(a, e) == z; })) << a << " ^ b = " << z;
        }
      }
    }
  }
  Interval b;
  EXPECT_EQ(Interval(1, 1).CalcSecondInversePowerValue(Interval(1, 1), b), 0);
  EXPECT_NE(b.IsUndefined(), 0);
}

}  // namespace
