// Construction, states, insertion up to the limit, removal, negation.
#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "numbers/SDError.h"
#include "support/enumSets.h"

using namespace enumSets;

namespace {

TEST(EnumState, ConstructionAndAssignmentFromASingleDiffer) {
  const auto constructed = [](VokLong v) { return Show(VokFenEnumInteger(VokFenSingleInteger(v), 0)); };
  const auto assigned = [](VokLong v) {
    VokFenEnumInteger set = SetOf({1, 2});
    return Show(set = VokFenSingleInteger(v));
  };
  EXPECT_EQ(constructed(7), "7");
  EXPECT_EQ(constructed(kAny), "Any");
  EXPECT_EQ(constructed(kNil), "Nil");
  EXPECT_EQ(assigned(7), "Any");
  EXPECT_EQ(assigned(kAny), "2147483647");
  EXPECT_EQ(assigned(kNil), "Nil");
}

TEST(EnumState, ListsAreReadWithTheirCount) {
  const VokLong values[] = {4, 9, -3, 9, 2, 77};
  EXPECT_EQ(Show(VokFenEnumInteger(static_cast<const void*>(values))), "-3 2 9");
  const VokLong empty[] = {0, 5};
  EXPECT_EQ(Show(VokFenEnumInteger(static_cast<const void*>(empty))), "Nil");
  EXPECT_EQ(Show(VokFenEnumInteger(static_cast<const void*>(nullptr))), "Nil");
  std::vector<VokLong> tooLong{1025};
  for (VokLong v = 0; v < 1025; ++v) {
    tooLong.push_back(v);
  }
  EXPECT_EQ(Show(VokFenEnumInteger(static_cast<const void*>(tooLong.data()))), "Any");
}

TEST(EnumState, TheFlagDecidesWhatAnEmptiedSetMeans) {
  VokFenEnumInteger single(VokFenSingleInteger(4), 0);
  VokFenEnumInteger element(Element(4), 0);
  VokFenEnumInteger special(Element(kNil), 0);
  EXPECT_EQ(Show(special), "-2147483648");
  EXPECT_EQ(single.RemoveExactValue(5), 0);
  EXPECT_EQ(single.RemoveExactValue(4), 1);
  EXPECT_EQ(element.RemoveExactValue(4), 1);
  EXPECT_EQ(Show(single), "Nil");
  EXPECT_EQ(Show(element), "Any");
  EXPECT_EQ(single.SetUndefinedValue(), 1);
  EXPECT_EQ(Show(single), "Any");
  element.SetNilValue();
  EXPECT_EQ(Show(element), "Nil");
  EXPECT_EQ(element.SetExactValue(6), 1);
  EXPECT_EQ(Show(element), "6");
  EXPECT_EQ(VokFenEnumInteger().Contains(6), 0);
}

TEST(EnumState, InsertionPastTheLimitTurnsAnyAlsoForAKnownMember) {
  ASSERT_EQ(VokFenEnumInteger::sMAX_CARD, 1024U);
  for (const VokLong extra : {2000, 5}) {
    VokFenEnumInteger set = RangeSet(0, 1023);
    EXPECT_EQ(set.Insert(5), 1);
    EXPECT_EQ(set.GetCount(), 1023U);
    EXPECT_EQ(set.AddExactValue(1023), 1);
    EXPECT_EQ(set.GetCount(), 1024U);
    EXPECT_EQ(set.Insert(extra), 0);
    EXPECT_EQ(Show(set), "Any");
    EXPECT_EQ(set.Insert(extra), 0);
    EXPECT_EQ(Show(set), "Any");
  }
}

TEST(EnumState, ARaisedErrorFlagMakesTheSetNilOnce) {
  VokFenEnumInteger set = SetOf({1, 2});
  EXPECT_EQ(set.CheckErrorStatus(), 0);
  SubIntBase::base_div(1, 0);
  EXPECT_EQ(set.CheckErrorStatus(), 1);
  EXPECT_EQ(Show(set), "Nil");
  EXPECT_EQ(SDCheckError(), 0);
}

TEST(EnumState, CastFindsEnumeratedSetsOnly) {
  VokFenEnumInteger set;
  VokFenSingleInteger single(1);
  VokTarnAny* const none = nullptr;
  EXPECT_EQ(VokFenEnumInteger::CastToEnumInteger(static_cast<VokTarnAny*>(&set)), &set);
  EXPECT_EQ(VokFenEnumInteger::CastToEnumInteger(static_cast<const VokTarnAny*>(&single)), nullptr);
  EXPECT_EQ(VokFenEnumInteger::CastToEnumInteger(none), nullptr);
}

struct Row {
  VokFenEnumInteger set;
  std::function<VokLong(VokFenEnumInteger&)> operation;
  VokLong result;
  const char* after;
};

void CheckRows(const std::vector<Row>& rows) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    VokFenEnumInteger set = rows[i].set;
    EXPECT_EQ(rows[i].operation(set), rows[i].result) << "row " << i;
    EXPECT_EQ(Show(set), rows[i].after) << "row " << i;
  }
}

auto Lower(VokLong v) {
  return [v](VokFenEnumInteger& set) { return set.SetLowerBound(v); };
}
auto Upper(VokLong v) {
  return [v](VokFenEnumInteger& set) { return set.SetUpperBound(v); };
}

TEST(EnumBounds, SettingABoundFillsHolesAndTurnsAnyBeyondTheOtherEnd) {
  const VokFenEnumInteger three = SetOf({1, 5, 9});
  CheckRows({
      {three, Lower(3), 1, "3 4 5 6 7 8 9"},
      {three, Lower(10), 1, "10"},
      {three, Lower(11), 1, "Any"},
      {three, Lower(kAny), 1, "Any"},
      {Nil(), Lower(3), 1, "3"},
      {Any(), Lower(3), 1, "Any"},
      {SetOf({kAny - 2, kAny}), Lower(kAny - 1), 1, "2147483646 2147483647"},
      {SetOf({kNil}), Lower(kAny), 1, "Any"},
      {three, Upper(4), 1, "1 2 3 4"},
      {three, Upper(0), 1, "0"},
      {three, Upper(-1), 1, "Any"},
      {three, Upper(kNil), 1, "Any"},
      {Nil(), Upper(3), 1, "3"},
      {Any(), Upper(3), 1, "Any"},
      {SetOf({kNil}), Upper(kNil + 1), 1, "-2147483648 -2147483647"},
      {SetOf({kAny}), Upper(kNil), 1, "Any"},
      {SetOf({kNil}), Upper(kAny), 1, "Any"},
      {SetOf({0}), Upper(1023), 1, "Any"},
  });
  VokFenEnumInteger wide = SetOf({0});
  wide.SetUpperBound(1022);
  EXPECT_EQ(wide.GetCount(), 1023U);
}

TEST(EnumBounds, BoundsAndStepsInEveryState) {
  const VokFenEnumInteger three = SetOf({1, 5, 9});
  struct Step {
    VokFenEnumInteger set;
    VokLong v, next, previous;
  };
  const Step steps[] = {
      {three, 0, 1, 0},
      {three, 1, 5, 0},
      {three, 5, 9, 1},
      {three, 6, 9, 5},
      {three, 9, 10, 5},
      {three, 12, 12, 9},
      {Nil(), 4, 4, 4},
      {Any(), 4, 5, 3},
      {Any(), kMax, kMax + 1, kMax - 1},
      {Any(), kMax + 1, kMax + 1, kMax},
      {Any(), kMin - 1, kMin, kMin - 1},
      {SetOf({kAny}), kAny, kNil, kAny - 1},
      {SetOf({kNil}), kNil, kNil + 1, kAny},
  };
  for (const Step& step : steps) {
    EXPECT_EQ(step.set.GetNextExactValue(step.v), step.next) << Show(step.set) << " above " << step.v;
    EXPECT_EQ(step.set.GetPrevExactValue(step.v), step.previous) << Show(step.set) << " below " << step.v;
  }
  EXPECT_EQ(three.GetLowerBound(), 1);
  EXPECT_EQ(three.GetUpperBound(), 9);
  EXPECT_EQ(Any().GetLowerBound(), kMin);
  EXPECT_EQ(Any().GetUpperBound(), kMax);
  EXPECT_EQ(Nil().GetLowerBound(), kMax);
  EXPECT_EQ(Nil().GetUpperBound(), kMin);
}

TEST(EnumMembers, NegationKeepsTheOrder) {
  const auto minus = [](VokFenEnumInteger& set) {
    set.Minus();
    return 0;
  };
  CheckRows({
      {SetOf({-3, 1, 4}), minus, 0, "-4 -1 3"},
      {SetOf({1, 2, 3, 4}), minus, 0, "-4 -3 -2 -1"},
      {SetOf({5}), minus, 0, "-5"},
      {SetOf({kNil, -1, 7}), minus, 0, "-2147483648 -7 1"},
      {SetOf({kNil}), minus, 0, "-2147483648"},
      {Nil(), minus, 0, "Nil"},
      {Any(), minus, 0, "Any"},
  });
}

}  // namespace
