#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include "cli/runTarn.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* sThree = "x : enum int [1, 3];";
// Takes far longer than any test: one number more than there are values.
const std::string sPigeons = [] {
  std::string names;
  for (int i = 0; i < 13; ++i) {
    names += std::string(i == 0 ? "p" : ", p") + std::to_string(i);
  }
  std::string model = names + " : enum int [1, 12];";
  for (int i = 0; i < 13; ++i) {
    for (int j = 0; j < i; ++j) {
      model += std::string("p") + std::to_string(i) + " <> p" + std::to_string(j) + ";";
    }
  }
  return model;
}();

struct Case {
  const char* fModel;
  std::vector<std::string> fOptions;
  int fExitCode;
  const char* fOut;
};

TEST(Solve, SaysWhatItFoundAndWhetherThereIsMore) {
  const Case sCases[] = {
      {sThree, {}, 0, "x = 1\n----------\n"},
      {sThree, {"-n", "2"}, 0, "x = 1\n----------\nx = 2\n----------\n"},
      {sThree, {"-n", "7"}, 0, "x = 1\n----------\nx = 2\n----------\nx = 3\n----------\n==========\n"},
      {sThree, {"--all"}, 0, "x = 1\n----------\nx = 2\n----------\nx = 3\n----------\n==========\n"},
      {"x : enum int {4}; p : bool; p == (x << 3);", {}, 0, "x = 4\np = 0\n----------\n==========\n"},
      {"x : enum int [1, 3]; x > 3;", {}, 1, "=====UNSATISFIABLE=====\n"},
      {"x : enum int {};", {}, 2, ""},
      {"x : enum int [3, 1];", {"-a"}, 1, "=====UNSATISFIABLE=====\n"},
      {"false;", {}, 1, "=====UNSATISFIABLE=====\n"},
      {"", {}, 0, "----------\n==========\n"},
      {"x : enum int [1, 9]; x * x <= 50; maximize x;", {"-n", "1"}, 0, "x = 1\n----------\n"},
      {"x : enum int [1, 3]; minimize -x;",
       {},
       0,
       "x = 1\n----------\nx = 2\n----------\nx = 3\n----------\n==========\n"},
      {"x : enum int [1, 3]; minimize x; x > 3;", {}, 1, "=====UNSATISFIABLE=====\n"},
      {"x : enum int [1, 9]; y : interval int [1, 9]; x = y; (enum int) y = (interval int) x; x / 2 = 3;",
       {"-a"},
       0,
       "x = 6\ny = 6\n----------\n==========\n"},
  };
  for (const Case& c : sCases) {
    const ProgramResult result = RunModel("solve", c.fModel, c.fOptions);
    EXPECT_EQ(result.fExitCode, c.fExitCode) << c.fModel << result.fErr;
    EXPECT_EQ(result.fOut, c.fOut) << c.fModel;
  }
}

TEST(Solve, NamesTheVariableThatNothingBounds) {
  const ProgramResult result = RunModel("solve", "x : enum int [1, 2]; wide : enum int; wide > x;");
  EXPECT_EQ(result.fExitCode, 3);
  EXPECT_EQ(result.fOut, "=====UNKNOWN=====\n");
  EXPECT_THAT(result.fErr, HasSubstr("'wide'"));
}

TEST(Solve, PrintsFiguresOnRequest) {
  const ProgramResult result = RunModel("solve", sThree, {"-a", "-s"});
  for (const char* label : {"decisions:", "failures:", "propagations:", "solutions:    3\n", "depth:", "time:"}) {
    EXPECT_THAT(result.fErr, HasSubstr(label));
  }
  EXPECT_EQ(RunModel("solve", sThree, {"-a"}).fErr, "");
}

TEST(Solve, StopsAtATimeLimitOrASignal) {
  const ProgramResult limited = RunModel("solve", sPigeons, {"--time-limit", "100ms"});
  EXPECT_EQ(limited.fExitCode, 3);
  EXPECT_EQ(limited.fOut, "=====UNKNOWN=====\n");
  for (const int signal : {SIGINT, SIGTERM}) {
    const ProgramResult stopped = RunTarn({"solve", "-"}, {sPigeons, signal, std::chrono::milliseconds(1500)});
    EXPECT_EQ(stopped.fExitCode, 3);
    EXPECT_EQ(stopped.fOut, "=====UNKNOWN=====\n");
  }
  EXPECT_EQ(RunModel("solve", sPigeons, {"--fail-limit", "50", "--var", "weighted", "--val", "max"}).fExitCode, 3);
  // What was found before stays printed.
  const ProgramResult some =
      RunModel("solve", "a, b, c, d, e, f, g : enum int [1, 99];", {"-a", "--time-limit", "0.1"});
  EXPECT_EQ(some.fExitCode, 3);
  EXPECT_THAT(some.fOut, AllOf(StartsWith("a = 1\n"), EndsWith("----------\n")));
}

TEST(Narrow, PrintsTheDomainsThatPropagationLeaves) {
  const Case sCases[] = {
      {"x, y : enum int {1, 4, 9}; w : interval int [0, 5]; p : bool; u : enum int; x < y; w > x;",
       {},
       0,
       "x = { 1, 4 }\ny = { 4, 9 }\nw = [2, 5]\np = Any\nu = Any\n"},
      {"x : enum int [1, 3]; x = 4;", {}, 1, "=====UNSATISFIABLE=====\n"},
  };
  for (const Case& c : sCases) {
    const ProgramResult result = RunModel("narrow", c.fModel, c.fOptions);
    EXPECT_EQ(result.fExitCode, c.fExitCode) << result.fErr;
    EXPECT_EQ(result.fOut, c.fOut);
  }
}

TEST(Modules, ListTheirOperatorRowsInOrder) {
  const ProgramResult result = RunTarn({"modules", "VokFenEnumIntegers"});
  EXPECT_EQ(result.fExitCode, 0);
  EXPECT_THAT(result.fOut,
              StartsWith("module VokFenEnumIntegers\n  needs VokFenAbstractTypes\n  needs VokFenNumbers\n"
                         "  type enum int, a kind of abstract int\n"
                         "   1  +               binary                           (int, enum int)           "
                         "enum int  VokTarnAdditionConstraint\n"));
  EXPECT_EQ(CountText(result.fOut, "\n"), 4U + 93U);
  for (const char* row : {
           "  18  =               binary                           (abstract int, enum int)  enum int  "
           "VokTarnEqualTernaryConstraint\n",
           "  45  =               binary                           (enum int, interval int)  enum int  "
           "VokTarnEqualTernaryConstraint\n",
           "  54  -               first inverse binary             (enum int, enum int)      enum int  "
           "VokTarnAdditionConstraint\n",
           "  59  sign            inverse unary                    (enum int)                enum int  "
           "VokTarnSignumConstraint\n",
           "  62  (interval int)  unary                            (interval int)            enum int  "
           "VokTarnEqualConstraint\n",
           "  83  <<              second inverse symmetric binary  (enum int, enum int)      bool      "
           "VokTarnBooleanLessConstraint\n",
       }) {
    EXPECT_THAT(result.fOut, HasSubstr(row));
  }
  EXPECT_THAT(result.fOut, EndsWith("  93  mod             binary                           (abstract int, enum int)  "
                                    "enum int  VokTarnRemainderConstraint\n"));
}

TEST(Modules, ListAllThatAreLoaded) {
  const ProgramResult result = RunTarn({"modules"});
  EXPECT_EQ(result.fExitCode, 0);
  EXPECT_THAT(result.fOut, AllOf(StartsWith("module VokFenAbstractTypes\n"), HasSubstr("\n\nmodule VokFenNumbers\n"),
                                 HasSubstr("\n\nmodule VokFenEnumIntegers\n"), HasSubstr("all different")));
}

TEST(CommandLine, AnswersHelpAndVersion) {
  const ProgramResult help = RunTarn({"--help"});
  EXPECT_EQ(help.fExitCode, 0);
  EXPECT_THAT(help.fOut, AllOf(HasSubstr("narrow"), HasSubstr("solve"), HasSubstr("modules")));
  EXPECT_THAT(RunTarn({"solve", "--help"}).fOut, AllOf(HasSubstr("--time-limit"), HasSubstr("--stats")));
  EXPECT_THAT(RunTarn({"--version"}).fOut, StartsWith("tarn "));
}

TEST(CommandLine, RefusesWhatItDoesNotKnow) {
  const TemporaryFile model(sThree);
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {},
           {"dance"},
           {"solve"},
           {"solve", model.GetPath(), "extra"},
           {"solve", model.GetPath(), "-n", "0"},
           {"solve", model.GetPath(), "-n", "-1"},
           {"solve", model.GetPath(), "-a", "-n", "1"},
           {"solve", model.GetPath(), "--time-limit", "nan"},
           {"solve", model.GetPath(), "--time-limit", "-1"},
           {"solve", model.GetPath(), "--time-limit", "1h"},
           {"solve", model.GetPath(), "--var", "fastest"},
           {"solve", model.GetPath(), "--node-limit", "some"},
           {"narrow", model.GetPath(), "-a"},
           {"modules", "Nothing"},
           {"-m", "Nothing", "solve", model.GetPath()},
           {"solve", "/nowhere/at.all"},
           {"solve", "/"},
       }) {
    const ProgramResult result = RunTarn(arguments);
    EXPECT_EQ(result.fExitCode, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(result.fOut, "");
    EXPECT_NE(result.fErr, "");
  }
}

TEST(CommandLine, TakesModuleOptionsBeforeAndBehindTheCommand) {
  const TemporaryFile model(sThree);
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {"-m", "VokFenNumbers", "-M", VOKTARN_BIN_DIR, "solve", model.GetPath()},
           {"solve", "-m", "VokFenNumbers", model.GetPath(), "--module-path", "relative"},
       }) {
    EXPECT_EQ(RunTarn(arguments).fOut, "x = 1\n----------\n") << testing::PrintToString(arguments);
  }
  const ProgramResult missing = RunTarn({"-M", "/first", "-M", "/second", "-m", "Nothing", "modules"});
  EXPECT_THAT(missing.fErr, HasSubstr("/first, /second"));
}

}  // namespace
