#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/runTarn.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Case {
  std::string fModel;
  std::string fMessage;  // from the line number on
};

TEST(Diagnostics, NamePlaceAndCause) {
  std::string members = "0";
  for (int i = 1; i <= 1024; ++i) {
    members += std::string(", ") + std::to_string(i);
  }
  const Case sCases[] = {
      {"x : integer;", "1:5: error: unknown type 'integer'"},
      {"x : enum int [1, 2];\n\tx + true = 3;", "2:4: error: no operator '+' for 'enum int' and 'bool'"},
      {"x : bool; all different (x, 1);", "1:11: error: no operator 'all different' for 'bool' and 'int'"},
      {"x : enum int {1, 2;", "1:14: error: this '{' is never closed"},
      {"x : enum int 1, 2};", "1:18: error: this '}' closes nothing"},
      {"x : enum int {1; 2};", "1:14: error: this '{' is never closed"},
      {"x : enum int {1, two};", "1:14: error: '{1, two}' is not a domain of type 'enum int'\n"},
      {"x : int [1, 100000];", "1:9: error: '[1, 100000]' is not a domain of type 'int'; type 'interval int' holds it"},
      {"x : int {1, 3};", "1:9: error: '{1, 3}' is not a domain of type 'int'; type 'enum int' holds it"},
      {"x : interval int [1, 2] 3;", "1:25: error: unexpected text behind the domain"},
      {"x : enum int [1, 2]\ny : bool;", "2:1: error: unexpected text behind the domain (is a ';' missing?)"},
      {"x : enum int [0, 100000];",
       "1:14: error: the domain is too large for type 'enum int'; use type 'interval int', or write"},
      {"x : enum int [0, 1023];", "1:14: error: the domain is too large for type 'enum int'"},
      {"x : enum int {" + members + "};", "1:14: error: the domain is too large for type 'enum int'"},
      {"x : enum int {1, 99999999999};", "1:18: error: number out of range: '99999999999'"},
      {"x : interval int [-2147483646, 5];", "1:19: error: number out of range: '-2147483646'"},
      {"x : int; x = 2147483646;", "1:14: error: number out of range: '2147483646'"},
      {"x : int; x = -99999999999999999999;", "1:14: error: number out of range: '-99999999999999999999'"},
      {"apples : int; aples = 3;", "1:15: error: 'aples' is not declared; did you mean 'apples'?"},
      {"x : int; nothing = 3;", "1:10: error: 'nothing' is not declared"},
      {"x : int; x;", "1:10: error: a statement must be a relation or a truth value, not a value of type 'int'"},
      {"p : bool; minimize p;", "1:20: error: an objective must be an integer, not a value of type 'bool'"},
      {"x : int; minimize x; maximize x;", "1:22: error: the model has an objective already"},
      {"p : bool; (int) p = 3;", "1:11: error: no cast from 'bool' to 'int'"},
      {"use Nothing;", "1:5: error: cannot open the module 'Nothing': "},
      {std::string("x : int\0;", 9), "1:8: error: a zero byte: this is not a model text"},
  };
  for (const Case& c : sCases) {
    const ProgramResult result = RunModel("solve", c.fModel);
    EXPECT_EQ(result.fExitCode, 2) << c.fModel;
    EXPECT_EQ(result.fOut, "") << c.fModel;
    EXPECT_THAT(result.fErr, StartsWith("standard input:" + c.fMessage));
  }
}

TEST(Diagnostics, ListWhatDoesExist) {
  EXPECT_THAT(RunModel("solve", "x : enum;").fErr, HasSubstr("\n    bool\n    enum int\n    int\n    interval int\n"));
  EXPECT_THAT(RunModel("solve", "!3;").fErr, HasSubstr("\n    ! (bool) -> bool\n"));
  EXPECT_THAT(RunModel("solve", "p : bool; (int) p = 3;").fErr, HasSubstr("\n    interval int and enum int\n"));
}

TEST(Diagnostics, ShowTheSourceLine) {
  const TemporaryFile model("x : int;\nx = y;\n");
  EXPECT_EQ(RunTarn({"narrow", model.GetPath()}).fErr,
            model.GetPath() + ":2:5: error: 'y' is not declared\nx = y;\n    ^\n");
}

TEST(Documentation, ModelsOfTheLanguagePageAreAccepted) {
  std::ifstream page(VOKTARN_SOURCE_DIR "/docs/model-language.md");
  ASSERT_TRUE(page);
  int models = 0;
  std::string model;
  bool inModel = false;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("```")) {
      if (inModel) {
        const ProgramResult result = RunModel("narrow", model);
        EXPECT_LE(result.fExitCode, 1) << model << result.fErr;
        ++models;
      }
      inModel = line == "```tarn";
      model.clear();
    } else if (inModel) {
      model += line + "\n";
    }
  }
  EXPECT_GE(models, 5);
}

}  // namespace
