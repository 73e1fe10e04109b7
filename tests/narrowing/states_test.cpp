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
  return name.find("x = y") != std::string::npos || name.find("sign") != std::string::npos;
}

TEST(NarrowingStates, GivenIntervalMakesNilAndNarrowedIntervalStays) {
  for (const Operation& op : Operations()) {
    for (unsigned i = 1; i < op.operands && !KnowsIntervals(op); ++i) {
      Case c = {Parse("1 2"), Parse("1 2"), Parse("1 2")};
      c[i] = Parse("i 1 2");
      const Outcome outcome = RunCase(op, c);
      EXPECT_EQ(outcome.after[op.narrowed], i == op.narrowed ? c[i] : Parse("Nil")) << Show(op, c);
      EXPECT_EQ(outcome.status, i == op.narrowed ? 0 : 1) << Show(op, c);
    }
  }
}

// An inverse relation empties an interval when nothing is left on the other side; a function of two operands leaves
// it alone.
TEST(NarrowingStates, NilBesideNarrowedInterval) {
  for (const Operation& op : Operations()) {
    if (op.narrowed == 1) {
      const Case c = {Parse("Nil"), Parse("i 1 2"), Parse("1")};
      const Outcome outcome = RunCase(op, c);
      EXPECT_EQ(outcome.after[1], Parse(op.operands == 2 ? "i Nil" : "i 1 2")) << Show(op, c);
      EXPECT_EQ(outcome.status, op.operands == 2 ? 1 : 0) << Show(op, c);
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
  for (const Operation& op : Operations()) {
    for (unsigned i = 0; i < op.operands; ++i) {
      for (const char* text : {"-1 2", "s 2", "s Any"}) {
        std::array<support::Operand, 3> operands = {support::Operand(Parse("-1 2")), support::Operand(Parse(text)),
                                                    support::Operand(Parse(text))};
        operands[i] = support::Operand(Parse("1"));
        operands[i].Set() = strange;
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
  // The narrowed set, the given one, what is left and the status.
  const char* const rows[][4] = {{"Nil", "1", "Nil", "0"}, {"Nil", "Nil", "Nil", "0"}, {"1", "Nil", "Nil", "1"}};
  for (const auto& [narrowed, given, left, status] : rows) {
    const auto expect = [&, left = left, status = status](support::Operand& x, int result) {
      EXPECT_EQ(x.Read(), Parse(left));
      EXPECT_EQ(std::to_string(result), status);
    };
    for (std::size_t i = 0; i < std::size(forward); ++i) {
      SCOPED_TRACE(i);
      support::Operand x(Parse(narrowed));
      support::Operand r(Parse(narrowed));
      support::Operand y(Parse(given));
      expect(x, (x.Set().*forward[i])(y.Set()));
      expect(r, (y.Set().*inverse[i])(r.Set()));
    }
    for (std::size_t i = 0; i < std::size(functions); ++i) {
      SCOPED_TRACE(i);
      support::Operand z(Parse(narrowed));
      support::Operand x(Parse(narrowed));
      support::Operand y(Parse(given));
      expect(z, (z.Set().*functions[i])(y.Set(), y.Set()));
      expect(x, (y.Set().*first[i])(x.Set(), y.Set()));
    }
  }
}

}  // namespace
}  // namespace narrowing
