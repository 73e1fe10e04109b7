#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runTarn.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::string sThree = "var 1..3: x:: output_var;\nvar bool: p;\nconstraint bool_eq(p,true);\n";
// z is 0 when 13 pigeons sit in 12 holes alone. That it is not takes years to find out pair by pair.
std::string MakePigeons() {
  std::string text;
  std::string pigeons;
  std::string meetings;
  std::string constraints;
  for (int i = 0; i < 13; ++i) {
    const std::string name = "x" + std::to_string(i);
    text += "var 1..12: " + name + ";\n";
    pigeons += (i == 0 ? "" : ",") + name;
    for (int j = 0; j < i; ++j) {
      const std::string pair = "b" + std::to_string(i) + "_" + std::to_string(j);
      text += "var bool: " + pair + ";\n";
      meetings += (meetings.empty() ? "" : ",") + pair;
      constraints += "constraint int_eq_reif(" + name + ",x" + std::to_string(j) + "," + pair + ");\n";
    }
  }
  return text + "var bool: p;\nvar 0..1: z:: output_var;\n" + constraints + "constraint array_bool_or([" + meetings +
         "],p);\nconstraint bool2int(p,z);\nsolve :: int_search([" + pigeons +
         "],input_order,indomain_min,complete) minimize z;\n";
}

// Beyond the network's integers there may be more: the verdict stays open, and what is found is a solution.
TEST(FlatZinc, WhereAVariableWasCutNoVerdictFollows) {
  const struct {
    std::string fText;
    std::string fOut;
    bool fIsCut;
  } rows[] = {
      {"var int: x:: output_var; solve minimize x;", "x = -2147483644;\n----------\n", true},
      {"var int: x; var int: y; constraint int_plus(x,2000000000,y); constraint int_times(x,x,y);"
       "constraint int_le(1000000,x); solve satisfy;",
       "=====UNKNOWN=====\n", true},
      {"var int: x; var int: y; constraint int_plus(x,1,y); constraint int_le(y,3); constraint int_lt(5,x);"
       "solve satisfy;",
       "=====UNSATISFIABLE=====\n", false},
      {"var int: x:: output_var; constraint int_le(3,x); solve minimize x;", "x = 3;\n----------\n==========\n", false},
      {"var int: x:: output_var; constraint int_le(x,3); solve minimize x;", "x = -2147483644;\n----------\n", true},
      {"var int: x; var 1..2: y:: output_var; solve maximize y;", "y = 2;\n----------\n==========\n", false},
  };
  for (const auto& row : rows) {
    const ProgramResult result = RunProgram(VOKTARN_BIN_DIR "/fzn-tarn", {"-"}, {row.fText});
    EXPECT_EQ(result.fOut, row.fOut) << row.fText;
    EXPECT_EQ(result.fErr.find("-2147483644 to 2147483644 only") != std::string::npos, row.fIsCut) << result.fErr;
  }
}

TEST(FlatZinc, FlagsChooseWhatIsPrinted) {
  const std::string one = "x = 1;\n----------\n";
  const std::string two = "x = 2;\n----------\n";
  const std::string three = "x = 3;\n----------\n";
  const std::string end = "==========\n";
  const std::string first = "solve :: int_search([x],input_order,indomain_min,complete) ";
  const struct {
    std::string fGoal;
    std::vector<std::string> fFlags;
    std::string fOut;
  } rows[] = {
      {"satisfy;", {}, one},
      {"satisfy;", {"-a"}, one + two + three + end},
      {"satisfy;", {"-n", "2"}, one + two},
      {"satisfy;", {"-a", "-n", "3"}, one + two + three},
      {"satisfy;", {"--num-solutions", "0", "-r", "-7", "-v"}, one + two + three + end},
      {"maximize x;", {}, three + end},
      {"maximize x;", {"-t", "0"}, three + end},
      {"maximize x;", {"-a"}, one + two + three + end},
      {"maximize x;", {"-i"}, one + two + three + end},
  };
  for (const auto& row : rows) {
    std::vector<std::string> arguments = row.fFlags;
    arguments.push_back("-");
    const ProgramResult result = RunProgram(VOKTARN_BIN_DIR "/fzn-tarn", arguments, {sThree + first + row.fGoal});
    EXPECT_EQ(result.fOut, row.fOut) << row.fGoal << testing::PrintToString(row.fFlags);
    EXPECT_EQ(result.fExitCode, 0) << result.fErr;
  }
}

TEST(FlatZinc, SaysWhatThereIsNot) {
  EXPECT_EQ(RunTarn({"fzn", "-"}, {"constraint bool_eq(false,true); solve satisfy;"}).fOut,
            "=====UNSATISFIABLE=====\n");
  const ProgramResult wrong = RunTarn({"fzn", "-"}, {"var float: x;\nconstraint no(1);\nsolve satisfy;"});
  EXPECT_EQ(wrong.fExitCode, 1);
  EXPECT_EQ(
      wrong.fErr,
      "standard input:1: float variables are not supported\nstandard input:2: constraint no/1 is not supported\n");
  const ProgramResult flag = RunTarn({"fzn", "--nothing", "x.fzn"});
  EXPECT_EQ(flag.fExitCode, 2);
  EXPECT_THAT(flag.fErr, HasSubstr("Usage: tarn fzn"));
  // Without the command, the end of the name tells.
  EXPECT_THAT(RunTarn({"-a", "/nowhere/x.fzn"}).fErr, StartsWith("/nowhere/x.fzn: error: cannot open"));
}

TEST(FlatZinc, AStopPrintsTheBestSolution) {
  const ProgramResult rows[] = {
      RunTarn({"fzn", "-s", "-t", "1000", "-"}, {MakePigeons()}),
      RunTarn({"fzn", "-s", "-"}, {MakePigeons(), SIGTERM, std::chrono::milliseconds(1500)}),
      RunTarn({"fzn", "-s", "-i", "-"}, {MakePigeons(), SIGINT, std::chrono::milliseconds(1500)}),
  };
  for (const ProgramResult& stopped : rows) {
    EXPECT_EQ(stopped.fExitCode, 0);
    EXPECT_THAT(stopped.fOut, StartsWith("z = 1;\n----------\n%%%mzn-stat: objective=1\n"));
    EXPECT_THAT(stopped.fOut, testing::EndsWith("%%%mzn-stat-end\n"));
    EXPECT_THAT(stopped.fOut, testing::Not(HasSubstr("==")));
  }
}

}  // namespace
