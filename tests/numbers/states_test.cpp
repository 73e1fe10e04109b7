// The states of singles, intervals and booleans and what moves between them.
#include <gtest/gtest.h>

#include <functional>

#include "numbers/values.h"
#include "support/foreignInteger.h"

namespace {

using support::ForeignInteger;

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

using Change = std::function<int(VokTarnInteger&)>;

// What the change makes of a single and of an interval that start from the text; a star where it tells a change.
std::string Changed(const char* from, const Change& change) {
  Single single;
  Interval interval = IntervalOf(from);
  single.Assign(interval);
  const int first = change(single);
  const int second = change(interval);
  return Show(single) + (first != 0 ? "* " : " ") + Show(interval) + (second != 0 ? "*" : "");
}

struct Row {
  const char* from;
  Change change;
  const char* expected;
};

TEST(States, Bounds) {
  const auto lower = [](VokLong v) { return [v](VokTarnInteger& x) { return x.SetLowerBound(v); }; };
  const auto upper = [](VokLong v) { return [v](VokTarnInteger& x) { return x.SetUpperBound(v); }; };
  for (const Row& row :
       {Row{"[3, 7]", lower(5), "Any [5, 7]*"}, Row{"[3, 7]", upper(5), "Any [3, 5]*"},
        Row{"[3, 7]", upper(2), "Any Nil*"}, Row{"7", lower(8), "Nil* Nil*"}, Row{"7", lower(7), "7 7"},
        Row{"7", upper(kNil), "Nil* Nil*"}, Row{"Min", upper(kNil), "Min Min"}, Row{"Max", lower(kAny), "Max Max"},
        Row{"Any", lower(kNil), "Any Any"}, Row{"Any", lower(kAny), "Any Max*"}, Row{"Nil", lower(5), "Nil Nil"}}) {
    EXPECT_EQ(Changed(row.from, row.change), row.expected) << "from " << row.from;
  }
}

TEST(States, ExactValues) {
  const auto exact = [](VokLong v) { return [v](VokTarnInteger& x) { return x.SetExactValue(v); }; };
  const auto add = [](VokLong v) { return [v](VokTarnInteger& x) { return x.AddExactValue(v); }; };
  const auto remove = [](VokLong v) { return [v](VokTarnInteger& x) { return x.RemoveExactValue(v); }; };
  for (const Row& row : {Row{"[3, 7]", exact(9), "9* 9*"}, Row{"[3, 7]", exact(kAny), "Any* Any*"},
                         Row{"[3, 7]", exact(kNil), "Nil* Nil*"}, Row{"7", add(9), "Any* [7, 9]*"},
                         Row{"Nil", add(9), "9* 9*"}, Row{"7", remove(7), "Nil* Nil*"},
                         Row{"[3, 7]", remove(3), "Any [4, 7]*"}, Row{"[3, 7]", remove(7), "Any [3, 6]*"},
                         Row{"[3, 7]", remove(5), "Any [3, 7]"}, Row{"Any", remove(kMin), "Any Any"}}) {
    EXPECT_EQ(Changed(row.from, row.change), row.expected) << "from " << row.from;
  }
}

TEST(States, AssignUniteAndIntersectTakeEveryIntegerType) {
  const ForeignInteger holes({1, 5, 9}), one({5}), none(std::set<VokLong>{}), any;
  const Boolean truth;
  const auto assign = [](const VokTarnAny& a) { return [&a](VokTarnAny& x) { return x.Assign(a); }; };
  const auto unite = [](const VokTarnAny& a) { return [&a](VokTarnAny& x) { return x.Unite(a); }; };
  const auto equal = [](const VokTarnAny& a) { return [&a](VokTarnAny& x) { return x.Intersect(a); }; };
  const auto meets = [](const VokTarnAny& a) { return [&a](VokTarnAny& x) { return x.IsIntersected(a); }; };
  for (const Row& row :
       {Row{"[2, 8]", assign(holes), "Any* [1, 9]*"}, Row{"[2, 8]", assign(one), "5* 5*"},
        Row{"[2, 8]", assign(none), "Nil* Nil*"}, Row{"[2, 8]", assign(truth), "Nil* Nil*"},
        Row{"5", unite(one), "5 5"}, Row{"[5, 12]", unite(holes), "Any [1, 12]*"}, Row{"5", unite(any), "Any* Any*"},
        Row{"Nil", unite(one), "5* 5*"}, Row{"5", unite(truth), "Nil* Nil*"}, Row{"[2, 8]", equal(holes), "Any 5*"},
        Row{"Any", equal(holes), "Any [1, 9]*"}, Row{"Any", equal(one), "5* 5*"}, Row{"6", equal(holes), "Nil* Nil*"},
        Row{"5", equal(truth), "Nil* Nil*"}, Row{"5", meets(holes), "5* 5*"}, Row{"6", meets(holes), "6 6"},
        Row{"[6, 8]", meets(holes), "Any* [6, 8]"}, Row{"Nil", meets(any), "Nil Nil"}, Row{"5", meets(truth), "5 5"}}) {
    EXPECT_EQ(Changed(row.from, row.change), row.expected) << "from " << row.from;
  }
}

TEST(States, OperandsOfOtherKindsMakeTheNarrowedOneNil) {
  Boolean truth;
  Single x(3), number(1);
  Interval y(1, 5);
  EXPECT_EQ(x.CalcLessOrEqualValue(truth), 1);
  EXPECT_EQ(y.CalcInverseLessOrEqualValue(truth), 1);
  EXPECT_EQ(y.CalcInverseLessOrEqualValue(truth), 0);
  EXPECT_EQ(y.CalcMinValue(y, Boolean(true)), 1);
  EXPECT_EQ(Boolean(true).CalcInverseEqualValue(number), 1);
  EXPECT_EQ(Show(x) + Show(truth) + Show(y) + Show(number), "NilNilNilNil");
}

// What every selection moves out and what it leaves.
template <class Value>
std::string Bisected(const Value& value) {
  std::string parts;
  for (const auto selection :
       {VokTarnAny::LowerHalf, VokTarnAny::UpperHalf, VokTarnAny::Smallest, VokTarnAny::Largest}) {
    Value kept = value, moved = value;
    const int changed = kept.Bisect(moved, selection);
    EXPECT_EQ(changed != 0, Show(kept) != Show(value)) << Show(value);
    parts += Show(moved) + "|" + Show(kept) + " ";
  }
  return parts;
}

TEST(States, BisectMovesTheSelectedPartOut) {
  EXPECT_EQ(Bisected(Single(7)), "7|Nil Nil|7 7|Nil 7|Nil ");
  EXPECT_EQ(Bisected(Single()) + Bisected(Interval()),
            "Any|Any Any|Any Any|Any Any|Any Any|Any Any|Any Any|Any Any|Any ");
  EXPECT_EQ(Bisected(Interval(3, 8)), "[3, 5]|[6, 8] [6, 8]|[3, 5] 3|[4, 8] 8|[3, 7] ");
  EXPECT_EQ(Bisected(Interval(-4, -1)), "[-4, -3]|[-2, -1] [-2, -1]|[-4, -3] -4|[-3, -1] -1|[-4, -2] ");
  EXPECT_EQ(Bisected(Interval(2, kMax)).substr(0, 29), "[2, 1073741823]|[1073741824, ");
  EXPECT_EQ(Bisected(Interval(5, 5)), "5|Nil Nil|5 5|Nil 5|Nil ");
  EXPECT_EQ(Bisected(kEmpty), "Nil|Nil Nil|Nil Nil|Nil Nil|Nil ");
  EXPECT_EQ(Bisected(Boolean()) + Bisected(Boolean(true)), "0|1 1|0 0|1 1|0 1|Nil Nil|1 1|Nil 1|Nil ");
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
#define ROW(call, condition) (Operation{NARROW(call), HOLDS(condition)})
  for (const auto& [name, narrow, holds] :
       {ROW(x.CalcEqualValue(a), x == a), ROW(a.CalcInverseEqualValue(x), x == a), ROW(x.CalcUnequalValue(a), x != a),
        ROW(a.CalcInverseUnequalValue(x), x != a), ROW(a.CalcIsEqual(b, x), (x == 1) == (a == b)),
        ROW(x.CalcLessOrEqualValue(a), x <= a), ROW(a.CalcInverseLessOrEqualValue(x), a <= x),
        ROW(x.CalcNotLessAndUnequalValue(a), x > a), ROW(a.CalcInverseNotLessAndUnequalValue(x), a > x),
        ROW(a.CalcIsLessOrEqual(b, x), (x == 1) == (a <= b)), ROW(x.CalcMinValue(a, b), x == (a & b)),
        ROW(a.CalcFirstInverseMinValue(x, b), a == (x & b)), ROW(x.CalcMaxValue(a, b), x == (a | b)),
        ROW(a.CalcFirstInverseMaxValue(x, b), a == (x | b))}) {
    const bool usesB = std::string(name).find('b') != std::string::npos;
    for (unsigned state = 0; state < 64; ++state) {
      const auto make = [state](unsigned k) {
        return BooleanOf((state >> (2 * k) & 1U) != 0, (state >> (2 * k + 1) & 1U) != 0);
      };
      const Boolean before = make(0);
      Boolean x = make(0), a = make(1), b = usesB ? make(2) : Boolean();
      bool expected[2] = {false, false};
      for (int v = 0; v < 8; ++v) {
        const int s = v & 1, t = v >> 1 & 1, u = v >> 2;
        expected[s] |= x.IsPossible(s) != 0 && a.IsPossible(t) != 0 && b.IsPossible(u) != 0 && holds(s, t, u);
      }
      const int status = narrow(x, a, b);
      EXPECT_EQ(Show(x), Show(BooleanOf(expected[0], expected[1]))) << name << " in state " << state;
      EXPECT_EQ(status, Show(x) != Show(before)) << name << " in state " << state;
    }
  }
#undef ROW
#undef HOLDS
#undef NARROW
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
}

}  // namespace
