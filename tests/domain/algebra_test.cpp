// Intersections and unions against plain set theory, over all small operands.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "domain/elementPredicates.h"
#include "numbers/SDError.h"
#include "support/enumSets.h"

using namespace enumSets;

namespace {

const Model kEmpty = std::set<VokLong>{};

bool Holds(const Model& model, VokLong v) {
  return !model || model->count(v) != 0;
}

Model Filter(const Model& model, const std::function<bool(VokLong)>& keep) {
  if (!model) {
    return model;
  }
  std::set<VokLong> kept;
  std::copy_if(model->begin(), model->end(), std::inserter(kept, kept.begin()), keep);
  return kept;
}

Model Common(const Model& a, const Model& b) {
  return a ? Filter(a, [&](VokLong v) { return Holds(b, v); }) : b;
}

Model Union(const Model& a, const Model& b) {
  if (!a || !b) {
    return std::nullopt;
  }
  Model all = a;
  all->insert(b->begin(), b->end());
  return all;
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

TEST(EnumAlgebra, WithSetsItIsSetTheory) {
  const std::vector<VokFenEnumInteger> sets = AllSets(-2, 2);
  for (const VokFenEnumInteger& a : sets) {
    for (const VokFenEnumInteger& b : sets) {
      const Model left = ModelOf(a);
      const Model right = ModelOf(b);
      Check(a, Common(left, right), " intersect " + Show(b), [&](auto& set) { return set.Intersect(b); });
      VokFenEnumInteger united(a);
      united.Unite(b);
      EXPECT_EQ(Show(united), Show(Union(left, right))) << Show(a) << " unite " << Show(b);
      for (VokLong limit = -3; limit <= 3; ++limit) {
        SubIntBase bound = Element(limit);
        const Model low = Filter(right, [limit](VokLong v) { return v <= limit; });
        // Any stays Any where nothing of the operand is accepted.
        const Model expected = !left && right && !right->empty() && low->empty() ? left
                               : right                                           ? Common(left, low)
                                                                                 : left;
        Check(a, expected, " filtered with " + Show(b) + " up to " + std::to_string(limit),
              [&](auto& set) { return set.Intersect(b, NotAboveBound, &bound); });
      }
    }
    Check(a, ModelOf(a), " intersect itself", [](auto& set) { return set.Intersect(set); });
    Check(a, Filter(ModelOf(a), [](VokLong v) { return v >= 1; }), " filtered with itself", [](auto& set) {
      SubIntBase bound = Element(1);
      return set.Intersect(set, NotBelowBound, &bound);
    });
    VokFenEnumInteger united(a);
    united.Unite(united);
    EXPECT_EQ(Show(united), Show(a)) << "united with itself";
  }
}

TEST(EnumAlgebra, FilteredWithTwoSetsTakesTheirUnion) {
  const std::vector<VokFenEnumInteger> sets = AllSets(0, 2);
  for (const VokFenEnumInteger& a : sets) {
    for (const VokFenEnumInteger& b : sets) {
      for (const VokFenEnumInteger& c : sets) {
        const Model both = Union(ModelOf(b), ModelOf(c));
        Check(a, both ? Common(ModelOf(a), both) : ModelOf(a), " with " + Show(b) + " or " + Show(c),
              [&](auto& set) { return set.Intersect(b, c, AlwaysTrue, nullptr); });
      }
    }
  }
}

TEST(EnumAlgebra, WithSinglesItIsSetTheoryBothWays) {
  for (const VokFenEnumInteger& a : AllSets(-2, 2)) {
    for (const VokLong v : {-3, -2, 0, 1, 3, kNil, kAny}) {
      const VokFenSingleInteger single(v);
      const Model one = v == kAny ? Model() : v == kNil ? kEmpty : Model(std::set<VokLong>{v});
      const std::string what = " and single " + std::to_string(v);
      Check(a, Common(ModelOf(a), one), what, [&](auto& set) { return set.Intersect(single); });
      VokFenEnumInteger united(a);
      united.Unite(single);
      EXPECT_EQ(Show(united), Show(Union(ModelOf(a), one))) << Show(a) << what;

      VokFenSingleInteger narrowed(v);
      const int status = a.IntersectInverse(narrowed);
      const Model common = Common(one, ModelOf(a));
      const VokLong expected = !common || common->size() > 1 ? kAny : common->empty() ? kNil : *common->begin();
      EXPECT_EQ(narrowed.GetExactValue(), expected) << Show(a) << what;
      EXPECT_EQ(status, expected != v ? 1 : 0) << Show(a) << what;
    }
  }
}

TEST(EnumAlgebra, WithIntervalsItIsSetTheoryBothWays) {
  for (const VokFenEnumInteger& a : AllSets(-2, 2)) {
    for (VokLong l = -4; l <= 4; ++l) {
      for (VokLong u = -4; u <= 4; ++u) {
        const VokFenIntervalInteger interval = l > u ? VokFenIntervalInteger(kMax, kMin) : VokFenIntervalInteger(l, u);
        Model values = kEmpty;
        for (VokLong v = l; v <= u; ++v) {
          values->insert(v);
        }
        const Model common = Common(ModelOf(a), values);
        const std::string what = " and [" + std::to_string(l) + ", " + std::to_string(u) + "]";
        // Emptied member by member, the set means what its flag says. The empty interval makes it Nil.
        VokFenEnumInteger emptied(a);
        while (emptied.GetCount() > 0) {
          emptied.RemoveExactValue(emptied.GetValue(0));
        }
        const bool byFlag = a.GetCount() > 0 && common->empty() && l <= u;
        Check(a, byFlag ? ModelOf(emptied) : common, what, [&](auto& set) { return set.Intersect(interval); });

        VokFenIntervalInteger narrowed(interval);
        const int status = a.IntersectInverse(narrowed);
        const VokLong lower = common->empty() ? kMax : *common->begin();
        const VokLong upper = common->empty() ? kMin : *common->rbegin();
        EXPECT_EQ(narrowed.GetLowerBound(), lower) << Show(a) << what;
        EXPECT_EQ(narrowed.GetUpperBound(), upper) << Show(a) << what;
        EXPECT_EQ(status, lower != interval.GetLowerBound() || upper != interval.GetUpperBound() ? 1 : 0);
        EXPECT_EQ(SDCheckError(), 0);
      }
    }
    const VokFenIntervalInteger unrestricted;
    Check(a, ModelOf(a), " and no restriction", [&](auto& set) { return set.Intersect(unrestricted); });
  }
}

TEST(EnumAlgebra, LimitsOfWidthAndCount) {
  VokFenEnumInteger listed;
  EXPECT_EQ(listed.Intersect(VokFenIntervalInteger(0, 1022)), 1);
  EXPECT_EQ(Show(listed), Show(RangeSet(0, 1023)));
  for (const VokFenIntervalInteger& wide : {VokFenIntervalInteger(0, 1023), VokFenIntervalInteger(kNil, kAny)}) {
    VokFenEnumInteger any;
    EXPECT_EQ(any.Intersect(wide), 0);
    EXPECT_EQ(Show(any), "Any");
  }
  // A union that reaches the limit is Any already; insertion still fills a set up to it.
  VokFenEnumInteger nearlyFull = RangeSet(0, 1022);
  EXPECT_EQ(nearlyFull.Unite(SetOf({1022})), 1);
  EXPECT_EQ(nearlyFull.GetCount(), 1023U);
  VokFenEnumInteger inserted = nearlyFull;
  EXPECT_EQ(inserted.Unite(VokFenSingleInteger(1023)), 1);
  EXPECT_EQ(inserted.GetCount(), 1024U);
  EXPECT_EQ(inserted.Unite(SetOf({3})), 0);
  EXPECT_EQ(inserted.GetCount(), 1024U);
  nearlyFull.Unite(SetOf({1023}));
  EXPECT_EQ(Show(nearlyFull), "Any");
}

TEST(EnumAlgebra, RepeatedUnionsStayExact) {
  VokFenEnumInteger set = SetOf({0});
  for (VokLong v = 1; v < 1000; ++v) {
    VokFenEnumInteger next = SetOf({v * 7 % 1000});
    set.Unite(next);
    next.Unite(set);
    set.Unite(next);
  }
  EXPECT_EQ(Show(set), Show(RangeSet(0, 1000)));
}

TEST(EnumAlgebra, UnionStatusOfUnchangedSets) {
  VokFenEnumInteger any;
  VokFenEnumInteger set = SetOf({1, 2});
  EXPECT_EQ(any.Unite(set), 1);
  EXPECT_EQ(set.Unite(Nil()), 1);
  EXPECT_EQ(set.Unite(SetOf({2})), 0);
  EXPECT_EQ(set.Unite(VokFenSingleInteger(kNil)), 0);
  EXPECT_EQ(Show(set), "1 2");
}

}  // namespace
