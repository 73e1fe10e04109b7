// Operations on values of any type: copying, overlap, union, splitting, counting, constants.
#include <gtest/gtest.h>

#include "numbers/VokFenSingleBoolean.h"
#include "support/enumSets.h"

using namespace enumSets;

namespace {

TEST(EnumGeneric, AssignAndUniteGoByTheOperandsType) {
  const VokFenEnumInteger set = SetOf({2, 5});
  const VokFenSingleInteger one(7);
  const VokFenSingleInteger any(kAny);
  const VokFenIntervalInteger interval(1, 3);
  const VokFenSingleBoolean truth(true);
  struct Row {
    const VokTarnAny& operand;
    const char *assigned, *united;
  };
  // An interval is of no type that these two know, and makes the set Nil.
  for (const Row& row : {Row{set, "2 5", "1 2 5"}, Row{one, "7", "1 2 7"}, Row{any, "Any", "Any"},
                         Row{interval, "Nil", "Nil"}, Row{truth, "Nil", "Nil"}}) {
    VokFenEnumInteger assigned = SetOf({1, 2});
    VokFenEnumInteger united = SetOf({1, 2});
    assigned.Assign(row.operand);
    EXPECT_EQ(united.Unite(row.operand), 1);
    EXPECT_EQ(Show(assigned), row.assigned);
    EXPECT_EQ(Show(united), row.united);
  }
  VokFenEnumInteger copy;
  copy.Assign(VokFenEnumInteger(Element(3), 0));
  copy.Assign(copy);
  copy.RemoveExactValue(3);
  EXPECT_EQ(Show(copy), "Any") << "the copy takes the flag along";
  copy = SetOf({1, 2, 3});
  EXPECT_EQ(copy.Intersect(static_cast<const VokTarnAny&>(set)), 1);
  EXPECT_EQ(Show(copy), "2");
}

#ifndef VOKTARN_SANITIZED
// The sanitizers rightly refuse the call itself, so this runs in ordinary builds only.
TEST(EnumGeneric, AnOperandThroughANullPointerIsOfNoType) {
  VokTarnAny* volatile nothing = nullptr;
  const auto after = [](auto operation) {
    VokFenEnumInteger set = SetOf({1, 2});
    operation(set);
    return Show(set);
  };
  EXPECT_EQ(after([&](auto& set) { EXPECT_EQ(set.IsIntersected(*nothing), 0); }), "1 2");
  EXPECT_EQ(after([&](auto& set) { set.Unite(*nothing); }), "Nil");
  EXPECT_EQ(after([&](auto& set) { set.Assign(*nothing); }), "Nil");
  EXPECT_EQ(after([&](auto& set) { set.Bisect(*nothing, VokTarnAny::LowerHalf); }), "Nil");
}
#endif

TEST(EnumBisect, MovesThePartByPosition) {
  struct Row {
    VokFenEnumInteger set;
    int selection;
    const char *moved, *kept, *alone;  // alone: the set bisected into itself
  };
  const VokFenEnumInteger four = SetOf({1, 2, 50, 100}), five = SetOf({1, 2, 3, 4, 5}), one = SetOf({4});
  const VokFenEnumInteger flagged = VokFenEnumInteger(Element(4), 0);
  for (const Row& row :
       {Row{four, 0, "1 2", "50 100", "Nil"}, Row{four, 1, "50 100", "1 2", "50 100"},
        Row{four, 2, "1", "2 50 100", "Nil"}, Row{four, 3, "100", "1 2 50", "100"}, Row{five, 0, "1 2 3", "4 5", "Nil"},
        Row{five, 1, "4 5", "1 2 3", "4 5"}, Row{one, 0, "4", "Nil", "Nil"}, Row{one, 1, "Nil", "4", "Nil"},
        Row{one, 3, "4", "Nil", "Nil"}, Row{flagged, 0, "4", "Any", "Nil"}, Row{flagged, 2, "4", "Any", "Nil"},
        Row{four, 4, "9", "Nil", "Nil"}, Row{four, -1, "9", "Nil", "Nil"}, Row{Nil(), 0, "9", "Nil", "Nil"},
        Row{Any(), 3, "9", "Any", "Any"}}) {
    SCOPED_TRACE(Show(row.set) + " selection " + std::to_string(row.selection));
    const auto selection = static_cast<VokTarnAny::ValueSelection>(row.selection);
    VokFenEnumInteger set(row.set), alone(row.set), mismatched(row.set), part(Element(9), 0);
    VokFenSingleInteger other(9);
    set.Bisect(part, selection);
    alone.Bisect(alone, selection);
    mismatched.Bisect(other, selection);
    EXPECT_EQ(Show(part), row.moved);
    EXPECT_EQ(Show(set), row.kept);
    EXPECT_EQ(Show(alone), row.alone);
    EXPECT_EQ(Show(mismatched), row.set.GetCount() > 0 ? "Nil" : Show(row.set)) << "into another type";
    EXPECT_EQ(other.GetExactValue(), 9);
  }
}

TEST(EnumGeneric, ConstantsPinTheSet) {
  using Set = VokFenEnumInteger;
  EXPECT_EQ(Nil().GetCardinality() + Any().GetCardinality(), -1);
  const std::pair<int (Set::*)(), VokLong> pins[] = {
      {&Set::CalcMinValue, kMin}, {&Set::CalcMaxValue, kMax}, {&Set::CalcZeroValue, 0}, {&Set::CalcOneValue, 1}};
  for (const auto& [pin, value] : pins) {
    Set set = SetOf({kMin, 0, 1, kMax}), without = SetOf({5});
    EXPECT_EQ((set.*pin)() + (without.*pin)(), 2);
    EXPECT_EQ(Show(set) + Show(without), std::to_string(value) + "Nil");
    EXPECT_EQ((set.*pin)(), 0);
  }
}

}  // namespace
