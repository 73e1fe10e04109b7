#include <gtest/gtest.h>

#include <ios>

#include "numbers/VokFenSingleBoolean.h"
#include "support/enumSets.h"
#include "support/exercise.h"
#include "support/mutate.h"
#include "support/soak.h"

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
  EXPECT_TRUE(row.text[0] != '{' || accepted || set.IsNil() != 0) << row.text;
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

// The domain that a type reads, cut when it is long; "!" in front when the stream has failed.
template <class Value>
std::string ReadText(const std::string& text) {
  std::istringstream is(text);
  Value value;
  value.InputValue(is);
  std::ostringstream printed;
  value.PrintOn(printed);
  return (is.fail() ? "!" : "") + printed.str().substr(0, 12);
}

TEST(HostileText, EachTypeReadsItsFormAndRefusesTheRest) {
  const std::string digits(5U << 20, '9');
  const std::string zeros(5U << 20, '0');
  const struct {
    std::string fText;
    const char* fEnum;
    const char* fInterval;
    const char* fSingle;
    const char* fBoolean;
  } rows[] = {
      {"", "!0", "!Nil", "!Nil", "!Nil"},
      {" ", "!0", "!Nil", "!Nil", "!Nil"},
      {std::string("\0", 1), "!0", "!Nil", "!Nil", "!Nil"},
      {std::string("7\0", 2), "7", "7", "7", "!Nil"},
      {std::string("{1\0, 2}", 7), "!Nil", "!Nil", "!Nil", "!Nil"},
      {"\xEF\xBB\xBF"
       "5",
       "!0", "!Nil", "!Nil", "!Nil"},
      {"[1,\r\n2]\r\n", "{ 1, 2 }", "[1, 2]", "!Nil", "!Nil"},
      {"\x80\xFF", "!0", "!Nil", "!Nil", "!Nil"},
      {"Nile", "!0", "!Nil", "!Nil", "!Nil"},
      {"nil", "!0", "!Nil", "!Nil", "!Nil"},
      {"NilAny", "!0", "!Nil", "!Nil", "!Nil"},
      {"Any5", "!0", "!Nil", "!Nil", "!Nil"},
      {"Min5", "!0", "!Nil", "!Nil", "!Nil"},
      {"- 5", "!0", "!Nil", "!Nil", "!Nil"},
      {"--5", "!0", "!Nil", "!Nil", "!Nil"},
      {"0x10", "0", "0", "0", "!Nil"},
      {"1e3", "1", "1", "1", "!Nil"},
      {"2147483645", " Max", "Max", "Max", "!Nil"},
      {"2147483646", " Max", "!Nil", "!Nil", "!Nil"},
      {"-2147483648", " Min", "!Nil", "!Nil", "!Nil"},
      {"2147483648", "! Max", "!Nil", "!Nil", "!Nil"},
      {"-2147483649", "! Min", "!Nil", "!Nil", "!Nil"},
      {digits, "! Max", "!Nil", "!Nil", "!Nil"},
      {"-" + digits, "! Min", "!Nil", "!Nil", "!Nil"},
      {"[0, " + digits + "]", "!0", "!Nil", "!Nil", "!Nil"},
      {zeros + "7", "7", "7", "7", "!Nil"},
      {"[-2147483648, 2147483647]", "Any", "!Nil", "!Nil", "!Nil"},
      {"[-2147483645, 2147483645]", "Any", "Any", "!Nil", "!Nil"},
      {"[-1000000000, 1000000000]", "Any", "[-1000000000", "!Nil", "!Nil"},
      {"[9, 1]", "Nil", "Nil", "!Nil", "!Nil"},
      {"[1, 2", "!{ 1, 2 }", "!Nil", "!Nil", "!Nil"},
      {"[,]", "!0", "!Nil", "!Nil", "!Nil"},
      {"{}", "!Nil", "!Nil", "!Nil", "!Nil"},
      {"{,}", "!Nil", "!Nil", "!Nil", "!Nil"},
      {"{1,,2}", "!Nil", "!Nil", "!Nil", "!Nil"},
      {"{1, 2}}", "{ 1, 2 }", "!Nil", "!Nil", "!Nil"},
      {std::string(100000, '['), "!0", "!Nil", "!Nil", "!Nil"},
      {std::string(100000, '{'), "!Nil", "!Nil", "!Nil", "!Nil"},
      {"{1, [2, 3]}", "!Nil", "!Nil", "!Nil", "!Nil"},
      {"{1, 1, 1}", "1", "!Nil", "!Nil", "!Nil"},
      {"true", "!0", "!Nil", "!Nil", "1"},
      {"2", "2", "2", "2", "!Nil"},
      {"-0", "0", "0", "0", "!Nil"},
  };
  for (const auto& row : rows) {
    const std::string shown = testing::PrintToString(row.fText.substr(0, 40));
    EXPECT_EQ(ReadText<VokFenEnumInteger>(row.fText), row.fEnum) << shown;
    EXPECT_EQ(ReadText<VokFenIntervalInteger>(row.fText), row.fInterval) << shown;
    EXPECT_EQ(ReadText<VokFenSingleInteger>(row.fText), row.fSingle) << shown;
    EXPECT_EQ(ReadText<VokFenSingleBoolean>(row.fText), row.fBoolean) << shown;
  }
}

template <class Value>
void ReadMutated(const std::string& text, bool exercises) {
  for (const auto exceptions : {std::ios_base::goodbit, std::ios_base::failbit | std::ios_base::eofbit}) {
    std::istringstream is(text);
    is.exceptions(exceptions);
    Value value;
    try {
      value.InputValue(is);
    } catch (const std::ios_base::failure&) {
      EXPECT_FALSE(is.good());
    }
    EXPECT_LE(value.GetCardinality() == 0, value.IsNil() != 0) << text;
    if (exercises) {
      support::Exercise(value);
    }
  }
}

TEST(HostileText, MutationsGiveAValidDomain) {
  const std::vector<std::string> seeds{"Nil",
                                       "Any",
                                       " Min",
                                       "-Max",
                                       "+17",
                                       "2147483647",
                                       "[-3, 9]",
                                       "[0, 1023]",
                                       "true",
                                       "false",
                                       "{1, 2, 3, 1000, -7}",
                                       "{ Min, 0,  Max }",
                                       "[Min, Max]",
                                       "0"};
  constexpr unsigned seed = 5;
  std::mt19937 random(seed);
  for (int round = 0; round < 5000 * support::SoakFactor(); ++round) {
    const std::string text = support::Mutate(seeds, random);
    SCOPED_TRACE("round " + std::to_string(round) + " of seed " + std::to_string(seed));
    const bool exercises = round % 50 == 0;
    ReadMutated<VokFenEnumInteger>(text, exercises);
    ReadMutated<VokFenIntervalInteger>(text, exercises);
    ReadMutated<VokFenSingleInteger>(text, exercises);
    ReadMutated<VokFenSingleBoolean>(text, exercises);
  }
}

}  // namespace
