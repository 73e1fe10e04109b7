// Intersections with intervals against plain set theory, over all small operands, and the limits.
#include <gtest/gtest.h>

#include "numbers/SDError.h"
#include "support/enumSets.h"

using namespace enumSets;

namespace {

const Model kEvery{true};

template <class Keep>
Model Filter(Model model, Keep keep) {
  std::erase_if(model.values, [&](VokLong v) { return !keep(v); });
  return model;
}

Model Common(const Model& a, const Model& b) {
  return a.every ? b : Filter(a, [&](VokLong v) { return b.every || b.values.count(v) != 0; });
}

Model RangeModel(VokLong l, VokLong u) {
  Model model;
  for (VokLong v = l; v <= u; ++v) {
    model.values.insert(v);
  }
  return model;
}

// Runs `operate` on a copy of `set`: the result must be `expected`, the status whether it changed.
template <class Operation>
void Check(const VokFenEnumInteger& set, const Model& expected, const std::string& what, Operation operate) {
  VokFenEnumInteger narrowed(set);
  const int status = operate(narrowed);
  EXPECT_EQ(Show(narrowed), Show(expected)) << Show(set) << what;
  EXPECT_EQ(status, Show(narrowed) != Show(set) ? 1 : 0) << Show(set) << what;
  EXPECT_EQ(SDCheckError(), 0);
}

template <class Other>
std::string United(VokFenEnumInteger a, const Other& b) {
  a.Unite(b);
  return Show(a);
}

TEST(EnumAlgebra, WithIntervalsItIsSetTheoryBothWays) {
  for (const VokFenEnumInteger& a : AllSets(-2, 2)) {
    VokFenEnumInteger emptied(a);
    while (emptied.GetCount() > 0) {
      emptied.RemoveExactValue(emptied.GetValue(0));
    }
    for (VokLong l = -4; l <= 4; ++l) {
      for (VokLong u = l - 1; u <= 4; ++u) {
        const VokFenIntervalInteger interval = l > u ? VokFenIntervalInteger(kMax, kMin) : VokFenIntervalInteger(l, u);
        const Model common = Common(ModelOf(a), RangeModel(l, u));
        const std::string what = " and [" + std::to_string(l) + ", " + std::to_string(u) + "]";
        // Emptied member by member, the set means what its flag says. The empty interval makes it Nil.
        const bool byFlag = a.GetCount() > 0 && common.values.empty() && l <= u;
        Check(a, byFlag ? ModelOf(emptied) : common, what, [&](auto& set) { return set.Intersect(interval); });
        VokFenIntervalInteger narrowed(interval);
        const int status = a.IntersectInverse(narrowed);
        const std::pair expected =
            common.values.empty() ? std::pair(kMax, kMin) : std::pair(*common.values.begin(), *common.values.rbegin());
        EXPECT_EQ(std::pair(narrowed.GetLowerBound(), narrowed.GetUpperBound()), expected) << Show(a) << what;
        EXPECT_EQ(status, expected != std::pair(interval.GetLowerBound(), interval.GetUpperBound()) ? 1 : 0);
      }
    }
    Check(a, ModelOf(a), " and no restriction", [](auto& set) { return set.Intersect(VokFenIntervalInteger()); });
  }
}

TEST(EnumAlgebra, LimitsOfWidthAndCount) {
  Check(Any(), RangeModel(0, 1022), " narrow", [](auto& set) { return set.Intersect(VokFenIntervalInteger(0, 1022)); });
  Check(Any(), kEvery, " wide", [](auto& set) { return set.Intersect(VokFenIntervalInteger(0, 1023)); });
  Check(Any(), kEvery, " widest", [](auto& set) { return set.Intersect(VokFenIntervalInteger(kNil, kAny)); });
  // A union that reaches the limit is Any already; insertion still fills a set up to it.
  EXPECT_EQ(United(RangeSet(0, 1022), SetOf({1022})), Show(RangeSet(0, 1023)));
  EXPECT_EQ(United(RangeSet(0, 1023), SetOf({1023})), "Any");
  VokFenEnumInteger full = RangeSet(0, 1023);
  EXPECT_EQ(full.Unite(VokFenSingleInteger(1023)), 1);
  EXPECT_EQ(full.Unite(SetOf({3})), 0);
  EXPECT_EQ(full.GetCount(), 1024U);
  EXPECT_EQ(full.Unite(Nil()), 1);
  EXPECT_EQ(full.Unite(VokFenSingleInteger(kNil)), 0);
  EXPECT_EQ(Any().Unite(full), 1);
}

TEST(EnumAlgebra, RepeatedUnionsStayExact) {
  VokFenEnumInteger set = SetOf({0});
  for (VokLong v = 1; v < 1000; ++v) {
    VokFenEnumInteger next = SetOf({v * 7 % 1000});
    next.Unite(set);
    set.Unite(next);
  }
  EXPECT_EQ(Show(set), Show(RangeSet(0, 1000)));
}

}  // namespace
