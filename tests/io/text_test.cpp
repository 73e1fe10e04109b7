#include <gtest/gtest.h>

#include <ios>

#include "support/enumSets.h"

using namespace enumSets;

namespace {

std::string Printed(const VokFenEnumInteger& set) {
  std::ostringstream text;
  set.PrintOn(text);
  return text.str();
}

TEST(EnumText, PrintsEveryStateInItsForm) {
  EXPECT_EQ(Printed(Nil()), "Nil");
  EXPECT_EQ(Printed(Any()), "Any");
  EXPECT_EQ(Printed(SetOf({-5})), "-5");
  EXPECT_EQ(Printed(SetOf({1, 2, 3})), "{ 1, 2, 3 }");
  EXPECT_EQ(Printed(SetOf({kMin})), " Min");
  EXPECT_EQ(Printed(SetOf({kMax})), " Max");
  EXPECT_EQ(Printed(SetOf({kMin, 3, kMax})), "{  Min, 3,  Max }");
  EXPECT_EQ(Printed(SetOf({kNil, kMin + 1, kMax - 1, kAny})), "{  Min, -2147483644, 2147483644,  Max }");
}

TEST(EnumText, ReadsBackWhatItPrints) {
  for (const VokFenEnumInteger& set : AllSets(-2, 2)) {
    std::stringstream text(Printed(set) + " 77");
    VokFenEnumInteger read = SetOf({4});
    read.InputValue(text);
    EXPECT_EQ(Show(read), Show(set));
    int next = 0;
    text >> next;
    EXPECT_EQ(next, 77) << Show(set);
  }
  const VokFenEnumInteger extremes = SetOf({kMin, kMin + 1, 0, kMax});
  std::stringstream text(Printed(extremes));
  VokFenEnumInteger read;
  read.InputValue(text);
  EXPECT_EQ(Show(read), Show(extremes));
}

struct Row {
  const char* text;
  std::string set;
  bool failed = false;
};

const Row kRows[] = {
    {"  Nil", "Nil"},
    {"Any", "Any"},
    {"Min", "-2147483645"},
    {" Max", "2147483645"},
    {"-Max", "-2147483645"},
    {"+Max", "2147483645"},
    {"-5", "-5"},
    {"+7 8", "7"},
    {"{3,1,2,1}", "1 2 3"},
    {"{ Max , 0, Min }", "-2147483645 0 2147483645"},
    {"[3, 1]", "Nil"},
    {"[1,1]", "1"},
    {"[ -1 , 2 ]", "-1 0 1 2"},
    {"[Min, -2147483644]", "-2147483645 -2147483644"},
    {"[Min, Max]", "Any"},
    {"[-2147483648, 2147483647]", "Any"},
    {"[2147483646, 2147483647]", "2147483646 2147483647"},
    {"[0, 1022]", Show(RangeSet(0, 1023))},
    {"[0, 1023]", "Any"},
    // A range is made of its two numbers even when what stands beside them is wrong.
    {"[3;5]", "3 4 5", true},
    {"[3,5)", "3 4 5", true},
    {"[3,5", "3 4 5", true},
    {"[-2", "-2 -1 0", true},
    {"[3", "Nil", true},
    {"[x,7]", "0", true},
    {"[0;1023]", "Any", true},
    {"{1;2}", "Nil", true},
    {"{1, 2", "Nil", true},
    {"{1, }", "Nil", true},
    {"{ }", "Nil", true},
    {"{99999999999}", "Nil", true},
    {"{1, [2, 3]}", "Nil", true},
    // A plain number is whatever the stream gives.
    {"", "0", true},
    {"x", "0", true},
    {"99999999999", "2147483647", true},
};

TEST(EnumText, AcceptsAndRejects) {
  for (const Row& row : kRows) {
    std::istringstream text(row.text);
    VokFenEnumInteger set = SetOf({8, 88});
    set.InputValue(text);
    EXPECT_EQ(Show(set), row.set) << row.text;
    EXPECT_EQ(text.fail(), row.failed) << row.text;
    EXPECT_FALSE(text.bad()) << row.text;

    // A stream that throws leaves a set in some valid state behind.
    std::istringstream throwing(row.text);
    throwing.exceptions(std::ios_base::failbit | std::ios_base::badbit);
    VokFenEnumInteger interrupted = SetOf({8, 88});
    try {
      interrupted.InputValue(throwing);
      EXPECT_FALSE(row.failed) << row.text;
    } catch (const std::ios_base::failure&) {
      EXPECT_TRUE(row.failed) << row.text;
    }
    EXPECT_NE(Show(interrupted), "8 88") << row.text;
  }
}

TEST(EnumText, AListBeyondTheLimitStopsThereAsAny) {
  std::string list = "{0";
  for (int v = 1; v < 1024; ++v) {
    list += ", " + std::to_string(v);
  }
  VokFenEnumInteger set;
  std::istringstream full(list + "}");
  set.InputValue(full);
  EXPECT_EQ(Show(set), Show(RangeSet(0, 1024)));
  std::istringstream tooLong(list + ", 5; the rest");
  set.InputValue(tooLong);
  EXPECT_EQ(Show(set), "Any");
  EXPECT_FALSE(tooLong.fail());
  EXPECT_EQ(tooLong.get(), ';');
}

TEST(EnumText, AFailedListKeepsTheHardFailureOnly) {
  std::istringstream text("{1, 2");
  VokFenEnumInteger set;
  set.InputValue(text);
  EXPECT_EQ(text.rdstate(), std::ios_base::failbit);
}

}  // namespace
