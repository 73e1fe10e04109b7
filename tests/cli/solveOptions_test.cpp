#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/runTarn.h"
#include "support/pseudoTerminal.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* sTarn = VOKTARN_BIN_DIR "/tarn";
constexpr const char* sThree = "x : enum int [1, 3];";

std::string ListNames(const std::string& prefix, int count) {
  std::string names;
  for (int i = 0; i < count; ++i) {
    names += (i == 0 ? "" : ", ") + prefix + std::to_string(i);
  }
  return names;
}

// Takes far longer than any test: one number more than there are values.
std::string MakePigeons(int values) {
  std::string model = ListNames("p", values + 1) + " : enum int [1, " + std::to_string(values) + "];";
  for (int i = 0; i <= values; ++i) {
    for (int j = 0; j < i; ++j) {
      model += "p" + std::to_string(i) + " <> p" + std::to_string(j) + ";";
    }
  }
  return model;
}

TEST(SolveJson, PrintsALineForEachSolutionAndOneForTheResult) {
  struct Case {
    const char* fModel;
    std::vector<std::string> fOptions;
    int fExitCode;
    const char* fSolutions;
    const char* fResult;
  };
  const Case sCases[] = {
      {"x : enum int [-1, 1]; p : bool; y : interval int 7; p == (x << 0);",
       {"-n", "2", "--val", "min", "--var", "input-order"},
       0,
       "{\"type\":\"solution\",\"values\":{\"x\":-1,\"p\":true,\"y\":7}}\n"
       "{\"type\":\"solution\",\"values\":{\"x\":0,\"p\":false,\"y\":7}}\n",
       "SATISFIED\",\"statistics\":{\"decisions\":"},
      {"x : enum int {4, 5}; maximize x;",
       {"--val", "max"},
       0,
       "{\"type\":\"solution\",\"values\":{\"x\":5},\"objective\":5}\n",
       "OPTIMAL\",\"statistics\""},
      {"", {}, 0, "{\"type\":\"solution\",\"values\":{}}\n", "ALL_SOLUTIONS\",\"statistics\""},
      {"x : enum int [1, 3]; x > 3;", {}, 1, "", "UNSATISFIABLE\",\"statistics\""},
      {"x : enum int;", {}, 3, "", "UNKNOWN\",\"statistics\""},
      {sThree, {"--node-limit", "0"}, 3, "", "UNKNOWN\",\"stoppedBy\":\"the node limit\",\"statistics\""},
      {sThree, {"--time-limit", "0"}, 3, "", "UNKNOWN\",\"stoppedBy\":\"the time limit\"}\n"},
  };
  for (const Case& c : sCases) {
    std::vector<std::string> options = c.fOptions;
    options.emplace_back("--json");
    const ProgramResult result = RunModel("solve", c.fModel, options);
    EXPECT_EQ(result.fExitCode, c.fExitCode) << c.fModel << result.fErr;
    EXPECT_THAT(result.fOut, StartsWith(std::string(c.fSolutions) + "{\"type\":\"result\",\"status\":\"" + c.fResult));
    EXPECT_THAT(result.fOut, EndsWith("}\n"));
  }
}

TEST(SolveLimits, SayWhichOneStoppedTheSearch) {
  struct Case {
    std::vector<std::string> fOptions;
    const char* fNote;
  };
  const Case sCases[] = {
      {{"--time-limit", "100ms"}, "tarn: stopped by the time limit\n"},
      {{"--memory-limit", "1M"}, "tarn: stopped by the memory limit\n"},
      {{"--node-limit", "9", "--memory-limit", "64G"}, "tarn: stopped by the node limit\n"},
      {{"--fail-limit", "9", "--time-limit", "99999999999"}, "tarn: stopped by the failure limit\n"},
  };
  const std::string pigeons = MakePigeons(12);
  for (const Case& c : sCases) {
    const ProgramResult result = RunModel("solve", pigeons, c.fOptions);
    EXPECT_EQ(result.fExitCode, 3);
    EXPECT_EQ(result.fOut, "=====UNKNOWN=====\n");
    EXPECT_EQ(result.fErr, c.fNote);
    std::vector<std::string> quiet = c.fOptions;
    quiet.emplace_back("--quiet");
    EXPECT_EQ(RunModel("solve", pigeons, quiet).fErr, "");
  }
  for (const char* size : {"", "M", "-1", "1T", "1 M", "0x10", "17179869184G"}) {
    EXPECT_EQ(RunModel("solve", sThree, {"--memory-limit", size}).fExitCode, 2) << size;
  }
  EXPECT_EQ(RunModel("solve", sThree, {"--solution-limit", "2"}).fOut, RunModel("solve", sThree, {"-n", "2"}).fOut);
}

// Neither a limit nor Ctrl-C waits for a model that does not come.
TEST(SolveLimits, HoldWhileTheModelIsRead) {
  PseudoTerminal limited(sTarn, {"solve", "-", "--time-limit", "100ms"});
  limited.Write("x : enum int");
  EXPECT_EQ(limited.WaitForExit(), 3);
  EXPECT_THAT(limited.GetOutput(), AllOf(HasSubstr("=====UNKNOWN====="), HasSubstr("stopped by the time limit")));
}

TEST(SolveSeed, FixesTheOutputToTheByte) {
  const std::string model = ListNames("q", 9) + " : enum int [1, 9]; all different (" + ListNames("q", 9) +
                            "); q0 + q1 * q2 = q3 + q4 + 2 * q5; q6 * q7 mod 7 = q8;";
  const std::vector<std::string> options{"-n", "20", "--restart", "luby", "--seed", "5", "--var", "weighted"};
  const std::string out = RunModel("solve", model, options).fOut;
  EXPECT_EQ(CountText(out, "----------\n"), 20U);
  EXPECT_EQ(RunModel("solve", model, options).fOut, out);
  EXPECT_NE(RunModel("solve", model, {"-n", "20", "--seed", "6", "--var", "weighted"}).fOut, out);
}

TEST(SolveProgress, ShowsOnATerminalUntilCtrlC) {
  const TemporaryFile model(MakePigeons(12) + "minimize p0;");
  PseudoTerminal shown(sTarn, {"solve", model.GetPath(), "-s", "--learn", "off"});
  ASSERT_TRUE(shown.WaitForText("nodes/s"));
  ASSERT_TRUE(shown.WaitForText("best none, bound 1"));
  shown.Write("\x03");
  EXPECT_EQ(shown.WaitForExit(), 3);
  // The line is erased before anything else is printed.
  EXPECT_THAT(shown.GetOutput(), AllOf(HasSubstr("\r\x1b[K=====UNKNOWN====="), HasSubstr("stopped by a signal"),
                                       HasSubstr("restarts:     0\r\n")));
  PseudoTerminal quiet(sTarn, {"solve", model.GetPath(), "--quiet", "--time-limit", "1600ms"});
  EXPECT_EQ(quiet.WaitForExit(), 3);
  EXPECT_EQ(quiet.GetOutput(), "=====UNKNOWN=====\r\n");
  // The standard error is no terminal here.
  EXPECT_EQ(RunTarn({"solve", model.GetPath(), "--time-limit", "1600ms"}).fErr, "tarn: stopped by the time limit\n");
}

TEST(SolveProgress, CtrlCKeepsTheSolutions) {
  const TemporaryFile model(ListNames("x", 12) + " : enum int [1, 99];");
  PseudoTerminal terminal(sTarn, {"solve", model.GetPath(), "-a"});
  ASSERT_TRUE(terminal.WaitForText("nodes/s"));
  ASSERT_TRUE(terminal.WaitForText("----------"));
  terminal.Write("\x03");
  EXPECT_EQ(terminal.WaitForExit(), 3);
  // Each time the line is erased before a solution is printed.
  EXPECT_THAT(terminal.GetOutput(), Not(testing::ContainsRegex("nodes/s[^\r]*x0 = ")));
  EXPECT_THAT(terminal.GetOutput(), AllOf(StartsWith("x0 = 1\r\n"), HasSubstr("stopped by a signal\r\n"),
                                          Not(HasSubstr("UNKNOWN")), Not(HasSubstr("=========="))));
}

}  // namespace
