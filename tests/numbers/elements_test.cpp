// Element arithmetic beside 64-bit arithmetic, and the intervals that carry the error flag.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "numbers/SubdefInt.h"
#include "numbers/values.h"

namespace {

using Wide = std::int64_t;

constexpr VokLong kGrid[] = {kNil, -kMax - 1, -kMax, -kMax + 1, -1073741823, -46341, -46340, -3,       -2,   -1,  0,
                             1,    2,         3,     46340,     46341,       65536,  7,      kMax - 1, kMax, kAny};

// Numbers far beyond the range stand for the infinities. Opposite ones cancel out by themselves.
Wide Extended(VokLong v) {
  return v >= kMax ? Wide{1} << 40 : v <= -kMax ? -(Wide{1} << 40) : v;
}

VokLong Clamped(Wide v) {
  return static_cast<VokLong>(std::clamp<Wide>(v, -kMax, kMax));
}

TEST(ElementArithmetic, AgreesWithWideArithmeticOnAGridOfExtremes) {
  SDClearError();
  for (const VokLong a : kGrid) {
    for (const VokLong b : kGrid) {
      SCOPED_TRACE(testing::Message() << a << ", " << b);
      const Wide x = Extended(a);
      const Wide y = Extended(b);
      EXPECT_EQ(SubIntBase::base_plus(a, b), Clamped(x + y));
      EXPECT_EQ(SubIntBase::base_minus(a, b), Clamped(x - y));
      // Two infinities are reduced so that their product fits.
      EXPECT_EQ(SubIntBase::base_mult(a, b), Clamped(std::clamp<Wide>(x, -(Wide{1} << 31), Wide{1} << 31) *
                                                     std::clamp<Wide>(y, -(Wide{1} << 31), Wide{1} << 31)));
      if (b != 0 && std::abs(y) < kMax) {
        EXPECT_EQ(SubIntBase::base_div(a, b), std::abs(x) < kMax ? Clamped(x / y) : Clamped(y > 0 ? x : -x));
      } else if (b != 0) {
        EXPECT_EQ(SubIntBase::base_div(a, b), x / y);  // 0, or 1 and -1 for two infinities
      }
    }
  }
  EXPECT_EQ(SDCheckError(), 0);
}

TEST(ElementArithmetic, OnlyDivisionByZeroRaisesTheErrorFlag) {
  SDClearError();
  EXPECT_EQ(SubIntBase::base_div(5, 0), 0);
  EXPECT_NE(SDCheckError(), 0);
  EXPECT_NE(SDCheckError(), 0) << "polling keeps the flag";
  SDClearError();
  EXPECT_EQ(SDCheckError(), 0);
}

TEST(SubdefInt, IntersectionTellsChangeAndRaisesTheFlagWhenEmpty) {
  struct Row {
    Interval x, y;
    VokLong lower, upper;
    bool changed, error;
  };
  for (const Row& row : {Row{{0, 9}, {3, 20}, 3, 9, true, false}, Row{{3, 5}, {0, 9}, 3, 5, false, false},
                         Row{{0, 5}, {5, 9}, 5, 5, true, false}, Row{{}, {}, kMin, kMax, false, false},
                         Row{{0, 4}, {5, 9}, 5, 4, true, true}}) {
    SDClearError();
    SubdefInt x = row.x;
    SubdefInt y = row.y;
    EXPECT_EQ(x.SDIntersect(y) != 0, row.changed);
    EXPECT_EQ(VokLong{x.fLower}, row.lower);
    EXPECT_EQ(VokLong{x.fUpper}, row.upper);
    EXPECT_EQ(SDCheckError() != 0, row.error);
  }
  SDClearError();
}

}  // namespace
