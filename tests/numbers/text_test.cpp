// The text forms: what is printed is read back, what is accepted and what is not.
#include <gtest/gtest.h>

#include "numbers/NumberText.h"
#include "numbers/values.h"

namespace {

TEST(CheckNumString, ConsumesWordsAndBracketsButNoNumbers) {
  struct Row {
    const char* text;
    int code;
    const char* rest;
  };
  for (const Row& row :
       {Row{" [3, 7]", 1, "3, 7]"}, Row{"Min;", 2, ";"}, Row{"\n\tMax", 3, ""}, Row{"Any", 4, ""}, Row{"Nil}", 5, "}"},
        Row{"-Max,", 6, ","}, Row{"+Max", 7, ""}, Row{"{ 1", 8, " 1"}, Row{"  12", 0, "12"}}) {
    std::istringstream is(row.text);
    EXPECT_EQ(CheckNumString(is), row.code) << row.text;
    EXPECT_EQ(is.str().substr(static_cast<std::size_t>(is.tellg())), row.rest) << row.text;
  }
  for (const char* const text : {"-5", "+5", "Maximum", "Max1", "Mix", "-Min", "-Maxi", "", "nil", "-", "Nil_a", "A"}) {
    std::istringstream is(text);
    EXPECT_EQ(CheckNumString(is), 0) << text;
    EXPECT_EQ(is.tellg(), 0) << text;
    EXPECT_FALSE(is.fail());
  }
}

TEST(GetSIValue, ReadsNumbersOf32BitsAndTheWordsForTheEnds) {
  const std::pair<const char*, VokLong> accepted[] = {{"7]", 7},
                                                      {" -12,", -12},
                                                      {"+3", 3},
                                                      {"007", 7},
                                                      {"Min", kMin},
                                                      {"+Max", kMax},
                                                      {"2147483647", kAny},
                                                      {"-2147483648", kNil}};
  for (const auto& [text, value] : accepted) {
    std::istringstream is(text);
    EXPECT_EQ(GetSIValue(is), value) << text;
    EXPECT_FALSE(is.fail()) << text;
  }
  for (const char* const text :
       {"2147483648", "-2147483649", "-21474836480", "99999999999999999999", "", "-", "- 3", "Any", "x"}) {
    std::istringstream is(text);
    EXPECT_EQ(GetSIValue(is), 0) << text;
    EXPECT_TRUE(is.fail()) << text;
  }
}

TEST(GetSIValue, GoesOnAfterTheStreamHasFailed) {
  std::istringstream is("7]");
  is.setstate(std::ios_base::failbit);
  EXPECT_EQ(GetSIValue(is), 7);
  EXPECT_TRUE(is.fail());
  std::istream none(nullptr);
  EXPECT_EQ(GetSIValue(none), 0);
}

// Reads `text` into a value of the type: the printed value, behind "failed" where the stream is.
template <class Value>
std::string ReadBack(const std::string& text) {
  std::istringstream is(text);
  Value value;
  value.InputValue(is);
  return (is.fail() ? "failed " : "") + Show(value);
}

TEST(NumberTexts, AcceptWhatIsPrinted) {
  static constexpr const char* kBad = "failed Nil";
  struct Row {
    const char *text, *single, *interval, *boolean;
  };
  for (const Row& row :
       {Row{"Nil", "Nil", "Nil", "Nil"}, Row{" Any", "Any", "Any", "Any"}, Row{"Min", "Min", "Min", kBad},
        Row{"+Max", "Max", "Max", kBad}, Row{"-Max", "Min", "Min", kBad}, Row{"1", "1", "1", "1"},
        Row{"-42", "-42", "-42", kBad}, Row{"true", kBad, kBad, "1"}, Row{"false", kBad, kBad, "0"},
        Row{"10", "10", "10", kBad}, Row{"[3, 7]", kBad, "[3, 7]", kBad}, Row{"[ 3 ,7 ]", kBad, "[3, 7]", kBad},
        Row{"[Min, 7]", kBad, "[Min, 7]", kBad}, Row{"[-Max, Max]", kBad, "Any", kBad}, Row{"[5, 5]", kBad, "5", kBad},
        Row{"[7, 3]", kBad, "Nil", kBad}, Row{"2147483644", "2147483644", "2147483644", kBad}}) {
    EXPECT_EQ(ReadBack<Single>(row.text), row.single) << row.text;
    EXPECT_EQ(ReadBack<Interval>(row.text), row.interval) << row.text;
    EXPECT_EQ(ReadBack<Boolean>(row.text), row.boolean) << row.text;
  }
}

TEST(NumberTexts, RefuseWhatNoTypePrints) {
  for (const char* const text :
       {"falsehood", "[3; 7]", "[3, 7", "[3, Any]", "[0, 2147483646]", "{1}", "2147483647", "-2147483648", ""}) {
    EXPECT_EQ(ReadBack<Single>(text) + ReadBack<Interval>(text) + ReadBack<Boolean>(text),
              "failed Nilfailed Nilfailed Nil")
        << text;
  }
}

TEST(NumberTexts, LeaveTheRestOfTheTextAndAFailedStreamAlone) {
  std::istringstream is("true, [1, 2]; Any");
  Boolean truth;
  Interval interval;
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
