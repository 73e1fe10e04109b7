// The text forms: what is printed is read back, what is accepted and what is not.
#include <gtest/gtest.h>

#include <sstream>

#include "numbers/NumberText.h"
#include "numbers/VokFenIntervalInteger.h"
#include "numbers/VokFenSingleBoolean.h"

namespace {

TEST(CheckNumString, ConsumesWordsAndBracketsButNoNumbers) {
  struct Row {
    const char* text;
    int code;
    const char* rest;
  };
  for (const Row& row : {Row{" [3, 7]", 1, "3, 7]"}, Row{"Min;", 2, ";"},      Row{"\n\tMax", 3, ""},
                         Row{"Any", 4, ""},          Row{"Nil}", 5, "}"},      Row{"-Max,", 6, ","},
                         Row{"+Max", 7, ""},         Row{"{ 1", 8, " 1"},      Row{"-5", 0, "-5"},
                         Row{"+5", 0, "+5"},         Row{"  12", 0, "12"},     Row{"Maximum", 0, "Maximum"},
                         Row{"Max1", 0, "Max1"},     Row{"Mix", 0, "Mix"},     Row{"-Min", 0, "-Min"},
                         Row{"-Maxi", 0, "-Maxi"},   Row{"", 0, ""},           Row{"nil", 0, "nil"},
                         Row{"-", 0, "-"},           Row{"Nil_a", 0, "Nil_a"}, Row{"A", 0, "A"}}) {
    std::istringstream is(row.text);
    EXPECT_EQ(CheckNumString(is), row.code) << row.text;
    EXPECT_EQ(is.str().substr(static_cast<std::size_t>(is.tellg())), row.rest) << row.text;
    EXPECT_FALSE(is.fail());
  }
}

TEST(GetSIValue, ReadsNumbersOf32BitsAndTheWordsForTheEnds) {
  struct Row {
    const char* text;
    VokLong value;
    bool accepted;
  };
  for (const Row& row :
       {Row{"7]", 7, true}, Row{" -12,", -12, true}, Row{"+3", 3, true}, Row{"007", 7, true},
        Row{"Min", -2147483645, true}, Row{"+Max", 2147483645, true}, Row{"2147483647", 2147483647, true},
        Row{"-2147483648", -2147483647 - 1, true}, Row{"2147483648", 0, false}, Row{"-2147483649", 0, false},
        Row{"99999999999999999999", 0, false}, Row{"", 0, false}, Row{"-", 0, false}, Row{"- 3", 0, false},
        Row{"Any", 0, false}, Row{"x", 0, false}}) {
    std::istringstream is(row.text);
    EXPECT_EQ(GetSIValue(is), row.value) << row.text;
    EXPECT_EQ(!is.fail(), row.accepted) << row.text;
  }
}

TEST(GetSIValue, GoesOnAfterTheStreamHasFailed) {
  std::istringstream is("3;7]");
  EXPECT_EQ(GetSIValue(is), 3);
  is.ignore();
  is.setstate(std::ios_base::failbit);
  EXPECT_EQ(GetSIValue(is), 7);
  EXPECT_TRUE(is.fail());
  std::istream none(nullptr);
  EXPECT_EQ(GetSIValue(none), 0);
}

// Reads `text` into a value of the type; "failed" with the state left behind, else the printed value and the rest.
template <class Value>
std::string ReadBack(const std::string& text) {
  std::istringstream is(text);
  Value value;
  value.InputValue(is);
  std::ostringstream os;
  os << (is.fail() ? "failed " : "");
  value.PrintOn(os);
  return os.str();
}

TEST(TextForm, AcceptsWhatIsPrinted) {
  struct Row {
    const char* text;
    const char* single;
    const char* interval;
    const char* boolean;
  };
  static constexpr const char* kBad = "failed Nil";
  for (const Row& row :
       {Row{"Nil", "Nil", "Nil", "Nil"}, Row{" Any", "Any", "Any", "Any"}, Row{"Min", "Min", "Min", kBad},
        Row{"+Max", "Max", "Max", kBad}, Row{"-Max", "Min", "Min", kBad}, Row{"1", "1", "1", "1"},
        Row{"-42", "-42", "-42", kBad}, Row{"true", kBad, kBad, "1"}, Row{"false", kBad, kBad, "0"},
        Row{"10", "10", "10", kBad}, Row{"[3, 7]", kBad, "[3, 7]", kBad}, Row{"[ 3 ,7 ]", kBad, "[3, 7]", kBad},
        Row{"[Min, 7]", kBad, "[Min, 7]", kBad}, Row{"[-Max, Max]", kBad, "Any", kBad}, Row{"[5, 5]", kBad, "5", kBad},
        Row{"[7, 3]", kBad, "Nil", kBad}, Row{"2147483644", "2147483644", "2147483644", kBad}}) {
    EXPECT_EQ(ReadBack<VokFenSingleInteger>(row.text), row.single) << row.text;
    EXPECT_EQ(ReadBack<VokFenIntervalInteger>(row.text), row.interval) << row.text;
    EXPECT_EQ(ReadBack<VokFenSingleBoolean>(row.text), row.boolean) << row.text;
  }
}

TEST(TextForm, RefusesWhatNoTypePrints) {
  for (const char* const text :
       {"falsehood", "[3; 7]", "[3, 7", "[3, Any]", "[0, 2147483646]", "{1}", "2147483647", "-2147483648", ""}) {
    EXPECT_EQ(ReadBack<VokFenSingleInteger>(text), "failed Nil") << text;
    EXPECT_EQ(ReadBack<VokFenIntervalInteger>(text), "failed Nil") << text;
    EXPECT_EQ(ReadBack<VokFenSingleBoolean>(text), "failed Nil") << text;
  }
}

TEST(TextForm, LeavesTheRestOfTheTextAndAFailedStreamAlone) {
  std::istringstream is("true, [1, 2]; Any");
  VokFenSingleBoolean truth;
  VokFenIntervalInteger interval;
  truth.InputValue(is);
  EXPECT_EQ(is.get(), ',');
  interval.InputValue(is);
  EXPECT_EQ(is.get(), ';');
  is.setstate(std::ios_base::failbit);
  interval.InputValue(is);
  EXPECT_NE(interval.IsNil(), 0);
  is.clear();
  interval.InputValue(is);
  EXPECT_NE(interval.IsUndefined(), 0);
}

}  // namespace
