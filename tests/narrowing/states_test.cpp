// Operands that cannot be listed, strange states, and the typed routines called without the frame.
#include <gtest/gtest.h>

#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "narrowing/dispatchFrame.h"
#include "narrowing/oracle.h"
#include "numbers/VokFenSingleBoolean.h"

namespace narrowing {
namespace {

using support::Parse;

bool KnowsIntervals(const Operation& op) {
  const std::string name = op.name;
  return name.ends_with("x = y") || name.ends_with("sign");
}

// An inverse relation empties an interval when *this* is Nil; a function of two operands leaves it alone even then.
TEST(NarrowingStates, GivenIntervalMakesNilAndNarrowedIntervalStays) {
  for (const Operation& op : support::Operations()) {
    for (unsigned i = 1; i < op.operands && !KnowsIntervals(op); ++i) {
      Case c = {Parse("1 2"), Parse("1 2"), Parse("1 2")};
      c[i] = Parse("i 1 2");
      EXPECT_EQ(RunCase(op, c).after[op.narrowed], i == op.narrowed ? c[i] : Parse("Nil")) << Show(op, c);
      EXPECT_EQ(RunCase(op, c).status, i == op.narrowed ? 0 : 1) << Show(op, c);
      if (i == op.narrowed) {
        c[0] = Parse("Nil");
        EXPECT_EQ(RunCase(op, c).status, op.operands == 2 ? 1 : 0) << Show(op, c);
      }
    }
  }
}

TEST(NarrowingStates, EqualityWithAnotherTypeIsNil) {
  VokFenEnumInteger set = enumSets::SetOf({0, 1});
  VokFenSingleBoolean truth;
  EXPECT_EQ(set.CalcInverseEqualValue(truth), 1);
  EXPECT_TRUE(truth.IsNil());
  EXPECT_EQ(set.CalcEqualValue(truth), 1);
  EXPECT_TRUE(set.IsNil());
  EXPECT_EQ(set.CalcEqualValue(truth), 1);
}

// A record can hold a flag that is neither 0 nor 1; such an empty set is like Nil wherever a member is needed.
TEST(NarrowingStates, EmptySetWithStrangeFlagIsLikeNil) {
  std::stringstream bytes;
  Vokopstream os(bytes);
  os << 5 << 0U;
  Vokipstream is(bytes);
  VokFenEnumInteger strange;
  strange.Read(is);
  ASSERT_EQ(strange.GetCount(), 0U);
  ASSERT_FALSE(strange.IsUndefined() || strange.IsNil());
  for (const Operation& op : support::Operations()) {
    for (unsigned i = 0; i < op.operands; ++i) {
      for (const char* text : {"-1 2", "s 2", "s Any"}) {
        std::array<support::Operand, 3> operands = {support::Operand(Parse("-1 2")), support::Operand(Parse(text)),
                                                    support::Operand(Parse(text))};
        operands[i] = support::Operand(strange);
        const Model before = operands[op.narrowed].Read();
        const int status = op.run(operands[0].Set(), operands[1].Get(), operands[2].Get());
        const Model after = operands[op.narrowed].Read();
        EXPECT_TRUE(status == 0 ? after == before : after.IsNil()) << op.name << " " << i << " " << text;
      }
    }
  }
}

TEST(NarrowingStates, TypedRoutinesSettleEmptySets) {
  using Set = VokFenEnumInteger;
  using namespace VokFenNarrowing;
  const GivenOne forward[] = {&Set::CalcLessOrEqualValue, &Set::CalcLessValue,     &Set::CalcNotLessValue,
                              &Set::CalcNextValue,        &Set::CalcNegativeValue, &Set::CalcNotLessAndUnequalValue,
                              &Set::CalcAbsoluteValue};
  const InverseOnSet inverse[] = {&Set::CalcInverseLessOrEqualValue, &Set::CalcInverseLessValue,
                                  &Set::CalcInverseNotLessValue,     &Set::CalcInverseNextValue,
                                  &Set::CalcInverseNegativeValue,    &Set::CalcInverseNotLessAndUnequalValue,
                                  &Set::CalcInverseAbsoluteValue};
  const GivenTwo functions[] = {&Set::CalcMinValue,  &Set::CalcMaxValue, &Set::CalcSumValue,
                                &Set::CalcProdValue, &Set::CalcModValue, &Set::CalcPowerValue};
  const FirstInverseOnSet first[] = {&Set::CalcFirstInverseMinValue, &Set::CalcFirstInverseMaxValue,
                                     &Set::CalcFirstInverseSumValue, &Set::CalcFirstInverseProdValue,
                                     &Set::CalcFirstInverseModValue, &Set::CalcFirstInversePowerValue};
  const auto set = [](const char* text) { return support::Operand(Parse(text)).Set(); };
  // Nil stays Nil, and a set becomes Nil when the given one is.
  const std::pair<const char*, const char*> rows[] = {{"Nil", "1"}, {"Nil", "Nil"}, {"1", "Nil"}};
  for (const auto& [before, given] : rows) {
    const Set y = set(given);
    const auto settled = [&, was = before](const Set& x, int status) { return x.IsNil() && status == (*was == '1'); };
    for (std::size_t i = 0; i < std::size(forward); ++i) {
      Set x = set(before);
      Set r = set(before);
      EXPECT_TRUE(settled(x, (x.*forward[i])(y)) && settled(r, (y.*inverse[i])(r))) << i << before << given;
    }
    for (std::size_t i = 0; i < std::size(functions); ++i) {
      Set z = set(before);
      Set x = set(before);
      EXPECT_TRUE(settled(z, (z.*functions[i])(y, y)) && settled(x, (y.*first[i])(x, y))) << i << before << given;
    }
  }
  const InverseOnSingle onSingle[] = {&Set::CalcInverseNextValue, &Set::CalcInverseNegativeValue,
                                      &Set::CalcInverseAbsoluteValue};
  for (const InverseOnSingle inverseOnSingle : onSingle) {
    VokFenSingleInteger nil(VokFenSingleInteger::sNC_INT_NIL);
    EXPECT_TRUE((set("1").*inverseOnSingle)(nil) == 0 && nil.IsNil() != 0);
  }
}

TEST(NarrowingStates, ATypeDerivedFromSingleIsOne) {
  struct Derived : VokFenSingleInteger {
    using VokFenSingleInteger::VokFenSingleInteger;
  };
  VokFenEnumInteger z = enumSets::SetOf({3, 4});
  EXPECT_EQ(z.CalcNegativeValue(Derived(-3)), 1);
  EXPECT_EQ(enumSets::Show(z), "3");
}

// How far apart the ends of the sums are decides how they are formed: one word, two, or blocks of bits.
TEST(NarrowingStates, SumsOfEveryWidth) {
  for (VokLong width = 7; width <= 1100; ++width) {
    VokFenEnumInteger z = enumSets::RangeSet(-1, static_cast<unsigned>(width) + 3);
    const std::set<VokLong> sums{0, 1, 5, 6, width - 5, width};
    EXPECT_EQ(z.CalcSumValue(enumSets::SetOf({0, 1, width - 5}), enumSets::SetOf({0, 5})), 1);
    ASSERT_EQ(enumSets::Show(z), enumSets::Show(enumSets::SetFrom(sums))) << width;
  }
}

// 3024 is a multiple of the last divisor alone.
TEST(NarrowingStates, DivisorsBeyondTheLimitDivideToo) {
  VokFenEnumInteger x = enumSets::SetOf({3023, 3024, 3025});
  EXPECT_EQ(enumSets::SetOf({0}).CalcFirstInverseModValue(x, enumSets::RangeSet(2000, 1025)), 1);
  EXPECT_EQ(enumSets::Show(x), "3023 3024");
}

// More members than the room for a union, which only SimpleInsert gives a set.
TEST(NarrowingStates, UnionsBeyondTheRoomJoinOnlyWhatTheyHold) {
  for (const VokLong nonnegative : {3, 2101}) {
    VokFenEnumInteger a = enumSets::RangeSet(-2100, 2100), z = enumSets::SetOf({-1, 3, 2100, 2101});
    a.SimpleInsert(nonnegative);
    EXPECT_EQ(z.CalcAbsoluteValue(a), nonnegative == 3 ? 1 : 0);
    EXPECT_EQ(enumSets::Show(z), nonnegative == 3 ? "3 2100" : "-1 3 2100 2101");
  }
}

}  // namespace
}  // namespace narrowing
