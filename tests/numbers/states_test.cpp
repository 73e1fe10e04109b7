// The states of singles, intervals and booleans and what moves between them.
#include <gtest/gtest.h>

#include <functional>
#include <sstream>

#include "numbers/VokFenIntervalInteger.h"
#include "numbers/VokFenSingleBoolean.h"
#include "support/foreignInteger.h"

namespace {

using Single = VokFenSingleInteger;
using Interval = VokFenIntervalInteger;
using Boolean = VokFenSingleBoolean;
using support::ForeignInteger;

constexpr VokLong kMax = SubIntBase::sMax;
constexpr VokLong kMin = SubIntBase::sMin;
constexpr VokLong kNil = -2147483647 - 1;
constexpr VokLong kAny = 2147483647;
constexpr auto kSelections = {VokTarnAny::LowerHalf, VokTarnAny::UpperHalf, VokTarnAny::Smallest, VokTarnAny::Largest};

std::string Show(const VokTarnObject& v) {
  std::ostringstream os;
  v.PrintOn(os);
  return os.str();
}

const Interval kEmpty(1, 0);

Boolean BooleanOf(bool canBeFalse, bool canBeTrue) {
  Boolean b(false);
  b.SetNilValue();
  b.Unite(canBeFalse ? Boolean(false) : b);
  b.Unite(canBeTrue ? Boolean(true) : b);
  return b;
}

TEST(States, AreToldByCardinalityAndBounds) {
  struct Row {
    const VokTarnInteger& value;
    int cardinality;
    VokLong lower, upper;
  };
  const Single known(7), nil(kNil), any;
  const Interval unrestricted, range(-3, 4), wide(kMin, 4), huge(-2147483644, 2147483644), outside(kNil, kAny);
  for (const Row& row :
       {Row{known, 1, 7, 7}, Row{nil, 0, kMax, kMin}, Row{any, -1, kMin, kMax}, Row{unrestricted, -1, kMin, kMax},
        Row{range, 8, -3, 4}, Row{kEmpty, 0, kMax, kMin}, Row{wide, 2147483647, kMin, 4},
        Row{huge, 2147483647, -2147483644, 2147483644}, Row{outside, -1, kMin, kMax}}) {
    EXPECT_EQ(row.value.GetCardinality(), row.cardinality) << Show(row.value);
    EXPECT_EQ(row.value.GetLowerBound(), row.lower) << Show(row.value);
    EXPECT_EQ(row.value.GetUpperBound(), row.upper) << Show(row.value);
    EXPECT_EQ(row.value.IsNil(), row.cardinality == 0);
    EXPECT_EQ(row.value.IsUndefined(), row.cardinality == -1);
  }
}

TEST(States, NearestValuesAnswerTheArgumentItselfWhereThereIsNone) {
  struct Row {
    const VokTarnInteger& value;
    VokLong v, next, previous;
  };
  const Single known(7), nil(kNil), any;
  const Interval range(3, 7);
  for (const Row& row : {Row{known, 6, 7, 6}, Row{known, 7, 8, 6}, Row{known, 8, 8, 7}, Row{nil, 5, 5, 5},
                         Row{any, 5, 6, 4}, Row{any, kNil, kMin, kNil}, Row{any, kAny, kAny, kMax}, Row{range, 1, 3, 1},
                         Row{range, 3, 4, 2}, Row{range, 7, 8, 6}, Row{range, 9, 9, 7}, Row{kEmpty, 5, 5, 5}}) {
    EXPECT_EQ(row.value.GetNextExactValue(row.v), row.next) << Show(row.value) << " above " << row.v;
    EXPECT_EQ(row.value.GetPrevExactValue(row.v), row.previous) << Show(row.value) << " below " << row.v;
  }
}

// Runs `change` on a single and on an interval that start from `from`, and shows both afterwards.
using Change = std::function<int(VokTarnInteger&)>;

std::string Changed(const Interval& from, const Change& change) {
  Single single;
  Interval interval;
  single.Assign(from);
  interval.Assign(from);
  const int first = change(single);
  const int second = change(interval);
  return Show(single) + (first != 0 ? "*" : "") + " " + Show(interval) + (second != 0 ? "*" : "");
}

struct Row {
  Interval from;
  Change change;
  const char* expected;
};

TEST(States, BoundsAndExactValues) {
  const Interval any, seven(7, 7), range(3, 7);
  const auto lower = [](VokLong v) { return [v](VokTarnInteger& x) { return x.SetLowerBound(v); }; };
  const auto upper = [](VokLong v) { return [v](VokTarnInteger& x) { return x.SetUpperBound(v); }; };
  const auto exact = [](VokLong v) { return [v](VokTarnInteger& x) { return x.SetExactValue(v); }; };
  const auto add = [](VokLong v) { return [v](VokTarnInteger& x) { return x.AddExactValue(v); }; };
  const auto remove = [](VokLong v) { return [v](VokTarnInteger& x) { return x.RemoveExactValue(v); }; };
  EXPECT_EQ(Changed(any, remove(kMin)), "Any Any");
  for (const Row& row :
       {Row{range, lower(5), "Any [5, 7]*"}, Row{range, upper(5), "Any [3, 5]*"}, Row{range, upper(2), "Any Nil*"},
        Row{seven, lower(8), "Nil* Nil*"}, Row{seven, lower(7), "7 7"}, Row{seven, upper(kNil), "Nil* Nil*"},
        Row{any, lower(kNil), "Any Any"}, Row{any, lower(kAny), "Any Max*"}, Row{kEmpty, lower(5), "Nil Nil"},
        Row{range, exact(9), "9* 9*"}, Row{range, exact(kAny), "Any* Any*"}, Row{range, exact(kNil), "Nil* Nil*"},
        Row{seven, add(9), "Any* [7, 9]*"}, Row{kEmpty, add(9), "9* 9*"}, Row{seven, remove(7), "Nil* Nil*"},
        Row{range, remove(3), "Any [4, 7]*"}, Row{range, remove(7), "Any [3, 6]*"},
        Row{range, remove(5), "Any [3, 7]"}}) {
    EXPECT_EQ(Changed(row.from, row.change), row.expected) << "from " << Show(row.from);
  }
}

TEST(States, AssignUniteAndIntersectTakeEveryIntegerType) {
  const ForeignInteger holes({1, 5, 9}), one({5}), none(std::set<VokLong>{}), any;
  const Boolean truth;
  const Interval five(5, 5), six(6, 6), range(2, 8), over(6, 8), every;
  const auto assign = [](const VokTarnAny& a) { return [&a](VokTarnAny& x) { return x.Assign(a); }; };
  const auto unite = [](const VokTarnAny& a) { return [&a](VokTarnAny& x) { return x.Unite(a); }; };
  const auto equal = [](const VokTarnAny& a) { return [&a](VokTarnAny& x) { return x.Intersect(a); }; };
  const auto meets = [](const VokTarnAny& a) { return [&a](VokTarnAny& x) { return x.IsIntersected(a); }; };
  EXPECT_EQ(Changed(five, meets(truth)), "5 5");
  for (const Row& row :
       {Row{range, assign(holes), "Any* [1, 9]*"}, Row{range, assign(one), "5* 5*"},
        Row{range, assign(none), "Nil* Nil*"}, Row{range, assign(truth), "Nil* Nil*"}, Row{five, unite(one), "5 5"},
        Row{five, unite(holes), "Any* [1, 9]*"}, Row{five, unite(any), "Any* Any*"}, Row{kEmpty, unite(one), "5* 5*"},
        Row{five, unite(truth), "Nil* Nil*"}, Row{range, equal(holes), "Any 5*"},
        Row{every, equal(holes), "Any [1, 9]*"}, Row{every, equal(one), "5* 5*"}, Row{six, equal(holes), "Nil* Nil*"},
        Row{five, equal(truth), "Nil* Nil*"}, Row{five, meets(holes), "5* 5*"}, Row{six, meets(holes), "6 6"},
        Row{over, meets(holes), "Any* [6, 8]"}, Row{kEmpty, meets(any), "Nil Nil"}}) {
    EXPECT_EQ(Changed(row.from, row.change), row.expected) << "from " << Show(row.from);
  }
}

TEST(States, OperandsOfOtherKindsMakeTheNarrowedOneNil) {
  Boolean truth;
  Single x(3);
  Interval y(1, 5);
  EXPECT_EQ(x.CalcLessOrEqualValue(truth), 1);
  EXPECT_EQ(Show(x), "Nil");
  EXPECT_EQ(y.CalcInverseLessOrEqualValue(truth), 1);
  EXPECT_EQ(Show(truth), "Nil");
  EXPECT_EQ(y.CalcInverseLessOrEqualValue(truth), 0);
  EXPECT_EQ(y.CalcMinValue(y, Boolean(true)), 1);
  EXPECT_EQ(Show(y), "Nil");
}

// Every selection's moved and kept part.
template <class Value>
std::string Bisected(const Value& value) {
  std::string parts;
  for (const VokTarnAny::ValueSelection selection : kSelections) {
    Value kept = value;
    Value moved = value;
    const int changed = kept.Bisect(moved, selection);
    EXPECT_EQ(changed != 0, Show(kept) != Show(value)) << Show(value);
    parts += Show(moved) + "|" + Show(kept) + " ";
  }
  return parts;
}

TEST(States, BisectMovesTheSelectedPartOut) {
  EXPECT_EQ(Bisected(Single(7)), "7|Nil Nil|7 7|Nil 7|Nil ");
  EXPECT_EQ(Bisected(Single()), "Any|Any Any|Any Any|Any Any|Any ");
  EXPECT_EQ(Bisected(Interval(3, 8)), "[3, 5]|[6, 8] [6, 8]|[3, 5] 3|[4, 8] 8|[3, 7] ");
  EXPECT_EQ(Bisected(Interval(-4, -1)), "[-4, -3]|[-2, -1] [-2, -1]|[-4, -3] -4|[-3, -1] -1|[-4, -2] ");
  EXPECT_EQ(Bisected(Interval(2, kMax)).substr(0, 29), "[2, 1073741823]|[1073741824, ");
  EXPECT_EQ(Bisected(Interval(5, 5)), "5|Nil Nil|5 5|Nil 5|Nil ");
  EXPECT_EQ(Bisected(Interval()), "Any|Any Any|Any Any|Any Any|Any ");
  EXPECT_EQ(Bisected(kEmpty), "Nil|Nil Nil|Nil Nil|Nil Nil|Nil ");
  EXPECT_EQ(Bisected(Boolean()), "0|1 1|0 0|1 1|0 ");
  EXPECT_EQ(Bisected(Boolean(true)), "1|Nil Nil|1 1|Nil 1|Nil ");
  Interval range(1, 2);
  Single other;
  EXPECT_EQ(range.Bisect(other, VokTarnAny::LowerHalf), 0);
  EXPECT_EQ(Show(range), "[1, 2]");
}

// Every boolean operation beside its truth table. x is narrowed; b is not used by a relation.
TEST(Booleans, KeepExactlyTheValuesThatHaveAPartner) {
  struct Operation {
    const char* name;
    int (*narrow)(Boolean& x, Boolean& a, Boolean& b);
    bool (*holds)(int x, int a, int b);
  };
#define NARROW(call) #call, [](Boolean & x, Boolean & a, [[maybe_unused]] Boolean & b) { return call; }
#define HOLDS(condition) [](int x, int a, [[maybe_unused]] int b) { return condition; }
  const Operation rows[] = {
      {NARROW(x.CalcEqualValue(a)), HOLDS(x == a)},
      {NARROW(a.CalcInverseEqualValue(x)), HOLDS(x == a)},
      {NARROW(x.CalcUnequalValue(a)), HOLDS(x != a)},
      {NARROW(a.CalcInverseUnequalValue(x)), HOLDS(x != a)},
      {NARROW(a.CalcIsEqual(b, x)), HOLDS((x == 1) == (a == b))},
      {NARROW(x.CalcLessOrEqualValue(a)), HOLDS(x <= a)},
      {NARROW(a.CalcInverseLessOrEqualValue(x)), HOLDS(a <= x)},
      {NARROW(x.CalcNotLessAndUnequalValue(a)), HOLDS(x > a)},
      {NARROW(a.CalcInverseNotLessAndUnequalValue(x)), HOLDS(a > x)},
      {NARROW(a.CalcIsLessOrEqual(b, x)), HOLDS((x == 1) == (a <= b))},
      {NARROW(x.CalcMinValue(a, b)), HOLDS(x == (a & b))},
      {NARROW(a.CalcFirstInverseMinValue(x, b)), HOLDS(a == (x & b))},
      {NARROW(x.CalcMaxValue(a, b)), HOLDS(x == (a | b))},
      {NARROW(a.CalcFirstInverseMaxValue(x, b)), HOLDS(a == (x | b))},
  };
#undef NARROW
#undef HOLDS
  for (const Operation& row : rows) {
    for (unsigned state = 0; state < 64; ++state) {
      const auto has = [state](unsigned operand, int t) { return ((state >> (2 * operand) >> t) & 1U) != 0; };
      const auto make = [&has](unsigned operand) { return BooleanOf(has(operand, 0), has(operand, 1)); };
      Boolean x = make(0), a = make(1), b = make(2);
      if (std::string(row.name).find('b') == std::string::npos) {
        b = Boolean();
      }
      bool expected[2] = {false, false};
      for (int v = 0; v < 8; ++v) {
        if (x.IsPossible(v & 1) != 0 && a.IsPossible((v >> 1) & 1) != 0 && b.IsPossible(v >> 2) != 0 &&
            row.holds(v & 1, (v >> 1) & 1, v >> 2)) {
          expected[v & 1] = true;
        }
      }
      const bool changes = expected[0] != has(0, 0) || expected[1] != has(0, 1);
      EXPECT_EQ(row.narrow(x, a, b), changes ? 1 : 0) << row.name << " in state " << state;
      EXPECT_EQ(Show(x), Show(BooleanOf(expected[0], expected[1]))) << row.name << " in state " << state;
    }
  }
}

TEST(Booleans, StatesAndNumbers) {
  Boolean b;
  EXPECT_EQ(b.GetCardinality(), 2);
  EXPECT_EQ(b.CalcMaxValue(), 1);
  EXPECT_EQ(b.CalcTruthValue(1), 0);
  EXPECT_EQ(b.CalcMinValue(), 1);
  EXPECT_EQ(b.GetCardinality(), 0);
  EXPECT_EQ(b.Assign(Single(1)), 1);
  EXPECT_NE(b.IsNil(), 0);
  Single number(1);
  EXPECT_EQ(Boolean(true).CalcInverseEqualValue(number), 1);
  EXPECT_NE(number.IsNil(), 0);
}

}  // namespace
