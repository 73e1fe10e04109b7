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
  EXPECT_EQ(Printed(Nil()) + Printed(Any()) + Printed(SetOf({-5})), "NilAny-5");
  EXPECT_EQ(Printed(SetOf({1, 2, 3})), "{ 1, 2, 3 }");
  EXPECT_EQ(Printed(SetOf({kMin})) + Printed(SetOf({kMax})), " Min Max");
  EXPECT_EQ(Printed(SetOf({kMin, 3, kMax})), "{  Min, 3,  Max }");
  EXPECT_EQ(Printed(SetOf({kNil, kMin + 1, kMax - 1, kAny})), "{  Min, -2147483644, 2147483644,  Max }");
}

TEST(EnumText, ReadsBackWhatItPrints) {
  std::vector<VokFenEnumInteger> sets = AllSets(-2, 2);
  sets.push_back(SetOf({kMin, kMin + 1, 0, kMax}));
  for (const VokFenEnumInteger& set : sets) {
    std::stringstream text(Printed(set) + " 77");
    VokFenEnumInteger read = SetOf({4});
    read.InputValue(text);
    EXPECT_EQ(Show(read), Show(set));
    int next = 0;
    text >> next;
    EXPECT_EQ(next, 77) << Show(set);
  }
}

struct Row {
  const char* text;
  std::string set;
};

void CheckRow(const Row& row, bool accepted) {
  std::istringstream text(row.text);
  VokFenEnumInteger set = SetOf({8, 88});
  set.InputValue(text);
  EXPECT_EQ(Show(set), row.set) << row.text;
  EXPECT_EQ(!text.fail(), accepted) << row.text;
  // Of a failed list only the hard failure stays.
  EXPECT_TRUE(row.text[0] != '{' || accepted || text.rdstate() == std::ios_base::failbit) << row.text;
  // A stream that throws leaves some valid state behind, never the old one.
  std::istringstream throwing(row.text);
  throwing.exceptions(std::ios_base::failbit | std::ios_base::badbit);
  set = SetOf({8, 88});
  try {
    set.InputValue(throwing);
    EXPECT_TRUE(accepted) << row.text;
  } catch (const std::ios_base::failure&) {
    EXPECT_FALSE(accepted) << row.text;
  }
  EXPECT_NE(Show(set), "8 88") << row.text;
}

TEST(EnumText, AcceptsAndRejects) {
  for (const Row& row :
       {Row{"  Nil", "Nil"}, Row{"Any", "Any"}, Row{"Min", "-2147483645"}, Row{"-Max", "-2147483645"},
        Row{"+Max", "2147483645"}, Row{"-5", "-5"}, Row{"+7 8", "7"}, Row{"{3,1,2,1}", "1 2 3"},
        Row{"{ Max , 0, Min }", "-2147483645 0 2147483645"}, Row{"[3, 1]", "Nil"}, Row{"[1,1]", "1"},
        Row{"[ -1 , 2 ]", "-1 0 1 2"}, Row{"[Min, -2147483644]", "-2147483645 -2147483644"},
        Row{"[-2147483648, 2147483647]", "Any"}, Row{"[2147483646, 2147483647]", "2147483646 2147483647"},
        Row{"[0, 1022]", Show(RangeSet(0, 1023))}, Row{"[0, 1023]", "Any"}}) {
    CheckRow(row, true);
  }
  // A range is made of its two numbers even when what stands beside them is wrong, a plain number is whatever the
  // stream gives, and a list that breaks off is Nil.
  for (const Row& row : {Row{"[3;5]", "3 4 5"}, Row{"[3,5)", "3 4 5"}, Row{"[3,5", "3 4 5"}, Row{"[-2", "-2 -1 0"},
                         Row{"[3", "Nil"}, Row{"[x,7]", "0"}, Row{"[0;1023]", "Any"}, Row{"{1;2}", "Nil"},
                         Row{"{1, 2", "Nil"}, Row{"{1, }", "Nil"}, Row{"{ }", "Nil"}, Row{"{99999999999}", "Nil"},
                         Row{"{1, [2, 3]}", "Nil"}, Row{"", "0"}, Row{"x", "0"}, Row{"99999999999", "2147483647"}}) {
    CheckRow(row, false);
  }
}

TEST(EnumText, AListBeyondTheLimitStopsThereAsAny) {
  std::string list = "{0";
  for (int v = 1; v < 1024; ++v) {
    list.append(", ").append(std::to_string(v));
  }
  VokFenEnumInteger set;
  std::istringstream full(list + "}"), tooLong(list + ", 5; the rest");
  set.InputValue(full);
  EXPECT_EQ(set.GetCount(), 1024U);
  set.InputValue(tooLong);
  EXPECT_EQ(Show(set), "Any");
  EXPECT_EQ(tooLong.get(), ';') << "the stream is sound, the rest is unread";
}

}  // namespace
