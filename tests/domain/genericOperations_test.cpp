// Operations on values of any type: copying, overlap, union, splitting, counting, constants.
#include <gtest/gtest.h>

#include "numbers/VokFenSingleBoolean.h"
#include "support/enumSets.h"

using namespace enumSets;

namespace {

using Selection = VokTarnAny::ValueSelection;

TEST(EnumGeneric, AssignCopiesSetsAndSinglesAndKnowsNothingElse) {
  VokFenEnumInteger set = SetOf({1});
  for (const VokFenEnumInteger& other : AllSets(0, 1)) {
    set.Assign(other);
    EXPECT_EQ(Show(set), Show(other));
    set.Assign(set);
    EXPECT_EQ(Show(set), Show(other));
  }
  set.Assign(VokFenSingleInteger(7));
  EXPECT_EQ(Show(set), "7");
  set.Assign(VokFenSingleInteger(kAny));
  EXPECT_EQ(Show(set), "Any");
  set.Assign(VokFenIntervalInteger(1, 3));
  EXPECT_EQ(Show(set), "Nil");
  set = SetOf({1});
  set.Assign(VokFenSingleBoolean(true));
  EXPECT_EQ(Show(set), "Nil");
  // The copy takes the flag along.
  set.Assign(VokFenEnumInteger(Element(3), 0));
  set.RemoveExactValue(3);
  EXPECT_EQ(Show(set), "Any");
}

TEST(EnumGeneric, OverlapAgreesWithSetTheoryAndIntervalsNeverOverlap) {
  const std::vector<VokFenEnumInteger> sets = AllSets(0, 2);
  for (const VokFenEnumInteger& a : sets) {
    for (const VokFenEnumInteger& b : sets) {
      VokFenEnumInteger common(a);
      common.Intersect(b);
      EXPECT_EQ(a.IsIntersected(b), common.IsNil() != 0 ? 0 : 1) << Show(a) << " with " << Show(b);
    }
    for (const VokLong v : {0, 3}) {
      const int expected = a.Contains(v) != 0 || a.IsUndefined() != 0 ? 1 : 0;
      EXPECT_EQ(a.IsIntersected(VokFenSingleInteger(v)), expected) << Show(a) << " with " << v;
    }
    EXPECT_EQ(a.IsIntersected(VokFenSingleInteger(kNil)), 0);
    EXPECT_EQ(a.IsIntersected(VokFenIntervalInteger(0, 2)), 0);
  }
}

TEST(EnumGeneric, UniteAndIntersectGoByTheOperandsType) {
  const auto united = [](const VokTarnAny& a) {
    VokFenEnumInteger set = SetOf({1, 2});
    const int status = set.Unite(a);
    return Show(set) + ", " + std::to_string(status);
  };
  EXPECT_EQ(united(SetOf({5})), "1 2 5, 1");
  EXPECT_EQ(united(VokFenSingleInteger(0)), "0 1 2, 1");
  EXPECT_EQ(united(VokFenSingleInteger(kAny)), "Any, 1");
  EXPECT_EQ(united(VokFenIntervalInteger(1, 2)), "Nil, 1");
  EXPECT_EQ(united(VokFenSingleBoolean(true)), "Nil, 1");

  VokFenEnumInteger set = SetOf({1, 2, 3});
  const VokFenIntervalInteger interval(2, 9);
  EXPECT_EQ(set.Intersect(static_cast<const VokTarnAny&>(interval)), 1);
  EXPECT_EQ(Show(set), "2 3");
}

// The sanitizers rightly refuse the call itself, so this runs in ordinary builds only.
#if defined(__has_feature)
#define VOK_TEST_SANITIZED (__has_feature(address_sanitizer) || __has_feature(undefined_behavior_sanitizer))
#elif defined(__SANITIZE_ADDRESS__)
#define VOK_TEST_SANITIZED 1
#else
#define VOK_TEST_SANITIZED 0
#endif
#if !VOK_TEST_SANITIZED
TEST(EnumGeneric, AnOperandThroughANullPointerIsOfNoType) {
  VokTarnObject* volatile nothing = nullptr;
  const VokTarnAny& operand = *static_cast<VokTarnAny*>(nothing);
  VokFenEnumInteger set = SetOf({1, 2});
  EXPECT_EQ(set.IsIntersected(operand), 0);
  EXPECT_EQ(set.Unite(operand), 1);
  EXPECT_EQ(Show(set), "Nil");
  set = SetOf({1, 2});
  set.Assign(operand);
  EXPECT_EQ(Show(set), "Nil");
  set = SetOf({1, 2});
  set.Bisect(*nothing, Selection::LowerHalf);
  EXPECT_EQ(Show(set), "Nil");
}
#endif

TEST(EnumBisect, MovesThePartByPosition) {
  struct Row {
    VokFenEnumInteger set;
    int selection;
    const char *moved, *kept, *alone;  // alone: the set bisected into itself
  };
  const VokFenEnumInteger flagged = VokFenEnumInteger(Element(4), 0);
  const Row rows[] = {
      {SetOf({1, 2, 50, 100}), 0, "1 2", "50 100", "Nil"},
      {SetOf({1, 2, 50, 100}), 1, "50 100", "1 2", "50 100"},
      {SetOf({1, 2, 50, 100}), 2, "1", "2 50 100", "Nil"},
      {SetOf({1, 2, 50, 100}), 3, "100", "1 2 50", "100"},
      {SetOf({1, 2, 3, 4, 5}), 0, "1 2 3", "4 5", "Nil"},
      {SetOf({1, 2, 3, 4, 5}), 1, "4 5", "1 2 3", "4 5"},
      {SetOf({4}), 0, "4", "Nil", "Nil"},
      {SetOf({4}), 1, "Nil", "4", "Nil"},
      {SetOf({4}), 2, "4", "Nil", "Nil"},
      {SetOf({4}), 3, "4", "Nil", "Nil"},
      {flagged, 0, "4", "Any", "Nil"},
      {flagged, 3, "4", "Any", "Nil"},
      {SetOf({1, 2}), 4, "9", "Nil", "Nil"},
      {SetOf({1, 2}), -1, "9", "Nil", "Nil"},
      {Nil(), 0, "9", "Nil", "Nil"},
      {Any(), 3, "9", "Any", "Any"},
  };
  for (const Row& row : rows) {
    const std::string what = Show(row.set) + " selection " + std::to_string(row.selection);
    VokFenEnumInteger set(row.set);
    VokFenEnumInteger part(Element(9), 0);
    set.Bisect(part, static_cast<Selection>(row.selection));
    EXPECT_EQ(Show(part), row.moved) << what;
    EXPECT_EQ(Show(set), row.kept) << what;
    set = row.set;
    set.Bisect(set, static_cast<Selection>(row.selection));
    EXPECT_EQ(Show(set), row.alone) << what << " into itself";
    set = row.set;
    VokFenSingleInteger other(9);
    set.Bisect(other, static_cast<Selection>(row.selection));
    EXPECT_EQ(Show(set), row.set.GetCount() > 0 ? "Nil" : Show(row.set)) << what << " into another type";
    EXPECT_EQ(other.GetExactValue(), 9);
  }
}

TEST(EnumGeneric, CardinalityAndConstants) {
  EXPECT_EQ(Nil().GetCardinality(), 0);
  EXPECT_EQ(Any().GetCardinality(), -1);
  EXPECT_EQ(RangeSet(0, 1024).GetCardinality(), 1024);
  struct Row {
    int (VokFenEnumInteger::*pin)();
    VokLong value;
  };
  const Row rows[] = {{&VokFenEnumInteger::CalcMinValue, kMin},
                      {&VokFenEnumInteger::CalcMaxValue, kMax},
                      {&VokFenEnumInteger::CalcZeroValue, 0},
                      {&VokFenEnumInteger::CalcOneValue, 1}};
  for (const Row& row : rows) {
    VokFenEnumInteger set = SetOf({kMin, 0, 1, kMax});
    EXPECT_EQ((set.*row.pin)(), 1);
    EXPECT_EQ(Show(set), std::to_string(row.value));
    EXPECT_EQ((set.*row.pin)(), 0);
    set = SetOf({5});
    EXPECT_EQ((set.*row.pin)(), 1);
    EXPECT_EQ(Show(set), "Nil");
  }
}

}  // namespace
