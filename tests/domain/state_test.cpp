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
  EXPECT_EQ(Show(VokFenEnumInteger(List({5, 7, 9, -3, 9, 2, 77}))), "-3 2 7 9");
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
  VokFenSingleInteger single(1);
  VokTarnAny* const values[] = {&set, &single, nullptr};
  for (VokTarnAny* const value : values) {
    EXPECT_EQ(VokFenEnumInteger::CastToEnumInteger(value), value == &set ? &set : nullptr);
    EXPECT_EQ(VokFenEnumInteger::CastToEnumInteger(static_cast<const VokTarnAny*>(value)),
              value == &set ? &set : nullptr);
  }
}

TEST(EnumBounds, SettingABoundFillsHolesAndTurnsAnyBeyondTheOtherEnd) {
  struct Row {
    VokFenEnumInteger set;
    VokLong v;
    std::string after;
  };
  const VokFenEnumInteger three = SetOf({1, 5, 9});
  for (const Row& row :
       {Row{three, 3, "3 4 5 6 7 8 9"}, Row{three, 10, "10"}, Row{three, 11, "Any"}, Row{Nil(), 3, "3"},
        Row{Any(), 3, "Any"}, Row{SetOf({kAny - 2, kAny}), kAny - 1, "2147483646 2147483647"},
        Row{SetOf({kMin}), kMax, "2147483645"}, Row{SetOf({kMin}), kMax - 1100, "Any"}}) {
    VokFenEnumInteger set = row.set;
    EXPECT_EQ(set.SetLowerBound(row.v), 1);
    EXPECT_EQ(Show(set), row.after) << Show(row.set) << " from " << row.v;
  }
  for (const Row& row :
       {Row{three, 4, "1 2 3 4"}, Row{three, 0, "0"}, Row{three, -1, "Any"}, Row{Nil(), 3, "3"}, Row{Any(), 3, "Any"},
        Row{SetOf({kNil}), kNil + 1, "-2147483648 -2147483647"}, Row{SetOf({kMax}), kMin, "-2147483645"},
        Row{SetOf({0}), 1022, Show(RangeSet(0, 1023))}, Row{SetOf({0}), 1023, "Any"}}) {
    VokFenEnumInteger set = row.set;
    EXPECT_EQ(set.SetUpperBound(row.v), 1);
    EXPECT_EQ(Show(set), row.after) << Show(row.set) << " up to " << row.v;
  }
}

TEST(EnumBounds, BoundsAndStepsInEveryState) {
  const VokFenEnumInteger three = SetOf({1, 5, 9});
  struct Step {
    VokFenEnumInteger set;
    VokLong v, next, previous;
  };
  for (const Step& step :
       {Step{three, 0, 1, 0}, Step{three, 1, 5, 0}, Step{three, 5, 9, 1}, Step{three, 6, 9, 5}, Step{three, 9, 10, 5},
        Step{three, 12, 12, 9}, Step{Nil(), 4, 4, 4}, Step{Any(), 4, 5, 3}, Step{Any(), kMax, kMax + 1, kMax - 1},
        Step{Any(), kMax + 1, kMax + 1, kMax}, Step{Any(), kMin - 1, kMin, kMin - 1},
        Step{SetOf({kAny}), kAny, kNil, kAny - 1}, Step{SetOf({kNil}), kNil, kNil + 1, kAny}}) {
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
