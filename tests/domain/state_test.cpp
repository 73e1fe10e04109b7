// Construction, states, insertion up to the limit, bounds, steps, negation.
#include <gtest/gtest.h>

#include "numbers/SDError.h"
#include "support/enumSets.h"

using namespace enumSets;

namespace {

const void* List(const std::vector<VokLong>& words) {
  return words.data();
}

TEST(EnumState, ConstructionAndAssignmentDiffer) {
  const auto assigned = [](VokLong v) {
    VokFenEnumInteger set = SetOf({1, 2});
    return Show(set = VokFenSingleInteger(v));
  };
  EXPECT_EQ(Show(VokFenEnumInteger(VokFenSingleInteger(7), 0)), "7");
  EXPECT_EQ(Show(VokFenEnumInteger(VokFenSingleInteger(kAny), 0)), "Any");
  EXPECT_EQ(Show(VokFenEnumInteger(VokFenSingleInteger(kNil), 0)), "Nil");
  EXPECT_EQ(Show(VokFenEnumInteger(Element(kNil), 0)), "-2147483648");
  EXPECT_EQ(assigned(7), "Any");
  EXPECT_EQ(assigned(kAny), "2147483647");
  EXPECT_EQ(assigned(kNil), "Nil");
  EXPECT_EQ(Show(VokFenEnumInteger(List({4, 9, -3, 9, 2, 77}))), "-3 2 9");
  EXPECT_EQ(Show(VokFenEnumInteger(List({0, 5}))), "Nil");
  EXPECT_EQ(Show(VokFenEnumInteger(List({}))), "Nil");
}

TEST(EnumState, TheFlagDecidesWhatAnEmptiedSetMeans) {
  VokFenEnumInteger single(VokFenSingleInteger(4), 0);
  VokFenEnumInteger element(Element(4), 0);
  EXPECT_EQ(single.RemoveExactValue(5), 0);
  EXPECT_EQ(single.RemoveExactValue(4), 1);
  EXPECT_EQ(element.RemoveExactValue(4), 1);
  EXPECT_EQ(Show(single), "Nil");
  EXPECT_EQ(Show(element), "Any");
  EXPECT_EQ(element.Contains(4), 0);
  EXPECT_EQ(element.SetExactValue(6), 1);
  EXPECT_EQ(element.RemoveExactValue(6), 1);
  EXPECT_EQ(Show(element), "Nil");
}

TEST(EnumState, InsertionPastTheLimitTurnsAnyAlsoForAKnownMember) {
  for (const VokLong extra : {2000, 5}) {
    VokFenEnumInteger set = RangeSet(0, 1023);
    EXPECT_EQ(set.Insert(5), 1);
    EXPECT_EQ(set.AddExactValue(1023), 1);
    EXPECT_EQ(set.GetCardinality(), 1024);
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
  const VokFenSingleInteger single(1);
  EXPECT_EQ(VokFenEnumInteger::CastToEnumInteger(static_cast<VokTarnAny*>(&set)), &set);
  EXPECT_EQ(VokFenEnumInteger::CastToEnumInteger(static_cast<const VokTarnAny*>(&single)), nullptr);
  EXPECT_EQ(VokFenEnumInteger::CastToEnumInteger(static_cast<VokTarnAny*>(nullptr)), nullptr);
}

TEST(EnumBounds, SettingABoundFillsHolesAndTurnsAnyBeyondTheOtherEnd) {
  constexpr auto kLower = &VokFenEnumInteger::SetLowerBound;
  constexpr auto kUpper = &VokFenEnumInteger::SetUpperBound;
  struct Row {
    VokFenEnumInteger set;
    int (VokFenEnumInteger::*setBound)(VokLong);
    VokLong v;
    std::string after;
  };
  const VokFenEnumInteger three = SetOf({1, 5, 9});
  const Row rows[] = {
      {three, kLower, 3, "3 4 5 6 7 8 9"},
      {three, kLower, 10, "10"},
      {three, kLower, 11, "Any"},
      {Nil(), kLower, 3, "3"},
      {Any(), kLower, 3, "Any"},
      {SetOf({kAny - 2, kAny}), kLower, kAny - 1, "2147483646 2147483647"},
      {SetOf({kNil}), kLower, kAny, "Any"},
      {SetOf({kAny}), kLower, kNil, "Any"},
      {three, kUpper, 4, "1 2 3 4"},
      {three, kUpper, 0, "0"},
      {three, kUpper, -1, "Any"},
      {Nil(), kUpper, 3, "3"},
      {Any(), kUpper, 3, "Any"},
      {SetOf({kNil}), kUpper, kNil + 1, "-2147483648 -2147483647"},
      {SetOf({kAny}), kUpper, kNil, "Any"},
      {SetOf({0}), kUpper, 1022, Show(RangeSet(0, 1023))},
      {SetOf({0}), kUpper, 1023, "Any"},
  };
  for (const Row& row : rows) {
    VokFenEnumInteger set = row.set;
    EXPECT_EQ((set.*row.setBound)(row.v), 1);
    EXPECT_EQ(Show(set), row.after) << Show(row.set) << " bounded by " << row.v;
  }
}

TEST(EnumBounds, BoundsAndStepsInEveryState) {
  const VokFenEnumInteger three = SetOf({1, 5, 9});
  struct Step {
    VokFenEnumInteger set;
    VokLong v, next, previous;
  };
  const Step steps[] = {{three, 0, 1, 0},
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
                        {SetOf({kNil}), kNil, kNil + 1, kAny}};
  for (const Step& step : steps) {
    EXPECT_EQ(step.set.GetNextExactValue(step.v), step.next) << Show(step.set) << " above " << step.v;
    EXPECT_EQ(step.set.GetPrevExactValue(step.v), step.previous) << Show(step.set) << " below " << step.v;
  }
  const auto bounds = [](const VokFenEnumInteger& set) { return std::pair(set.GetLowerBound(), set.GetUpperBound()); };
  EXPECT_EQ(bounds(three), std::pair(1, 9));
  EXPECT_EQ(bounds(Any()), std::pair(kMin, kMax));
  EXPECT_EQ(bounds(Nil()), std::pair(kMax, kMin));
}

TEST(EnumMembers, NegationKeepsTheOrder) {
  const auto negated = [](VokFenEnumInteger set) {
    set.Minus();
    return Show(set);
  };
  EXPECT_EQ(negated(SetOf({-3, 1, 4})), "-4 -1 3");
  EXPECT_EQ(negated(SetOf({1, 2, 3, 4})), "-4 -3 -2 -1");
  EXPECT_EQ(negated(SetOf({kNil, -1, 7})), "-2147483648 -7 1");
  EXPECT_EQ(negated(SetOf({kNil})), "-2147483648");
  EXPECT_EQ(negated(Nil()) + negated(Any()), "NilAny");
}

}  // namespace
