#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/runTarn.h"

namespace {

using testing::HasSubstr;

const std::string sModel =
    "x, y : enum int [0, 9];   // digits\n"
    "z : interval int [0, 30];\n"
    "p : bool;\n"
    "y < 4;\n"
    "x = 2 *\n  y;             // even\n"
    "z > x + y;\n"
    "p -> x >> 3;\n"
    "p;\n";

TEST(Why, TellsTheStepsOfPropagation) {
  struct Case {
    const char* fFact;
    int fExitCode;
    const char* fOut;
  };
  const Case sCases[] = {
      {"x <> 7", 0,
       "1. line 5: x = 2 * y\n"
       "     x : [0, 9] (line 1) -> {0, 2, 4, 6, 8}\n"
       "     with y : [0, 9] (line 1)\n"
       "Hence x <> 7.\n"},
      {"4 <= x;", 0,
       "1. line 8: p -> x >> 3\n"
       "     x >> 3 : Any -> 1\n"
       "     with p : 1 (line 9)\n"
       "2. line 8: p -> x >> 3\n"
       "     x : [0, 9] (line 1) -> [4, 9]\n"
       "     with x >> 3 : 1 (step 1)\n"
       "Hence x >= 4.\n"},
      {"x < 10", 0, "line 1: x, y : enum int [0, 9]\n     x : [0, 9]\nHence x < 10.\n"},
      {"p = true", 0, "line 9: p\n     p : 1\nHence p = true.\n"},
      {"x <> 4", 1, "Not so: a solution has x = 4.\nx = 4\ny = 2\nz = 7\np = 1\n----------\n"},
      {"false", 1, "The model has a solution.\nx = 4\ny = 2\nz = 7\np = 1\n----------\n"},
  };
  for (const Case& c : sCases) {
    const ProgramResult result = RunModel("why", sModel, {c.fFact});
    EXPECT_EQ(result.fExitCode, c.fExitCode) << c.fFact;
    EXPECT_EQ(result.fOut, c.fOut) << c.fFact << result.fErr;
  }
}

TEST(Why, ExplainsARefutedModelAndAsksTheSearchWherePropagationIsSilent) {
  EXPECT_EQ(RunModel("why", "x, y : enum int [1, 3];\nx < y;\ny < 2;", {"x = 2"}).fOut,
            "1. line 2: x < y\n"
            "     y : [1, 3] (line 1) -> [2, 3]\n"
            "     with x : [1, 3] (line 1)\n"
            "2. line 3: y < 2\n"
            "     cannot hold\n"
            "     with y : [2, 3] (step 1)\n"
            "Hence the model has no solution.\n");
  EXPECT_EQ(RunModel("why", "x : enum int [3, 1];", {"false"}).fOut,
            "line 1: x : enum int [3, 1]\n     cannot hold\nHence the model has no solution.\n");
  const char* parity = "x, y : enum int [1, 4]; a : enum int [1, 2]; b : enum int [1, 2]; x <> a; x <> b; a <> b;";
  const ProgramResult found = RunModel("why", parity, {"x >= 3"});
  EXPECT_EQ(found.fExitCode, 0);
  EXPECT_THAT(found.fOut, HasSubstr("No solution has x < 3, as a search shows (decisions: 1); propagation alone "
                                    "leaves x : [1, 4].\n"));
  EXPECT_EQ(RunModel("why", "x, y : enum int; x <> y;", {"x <> 1"}).fExitCode, 3);
}

TEST(Why, RefusesWhatIsNoFact) {
  const TemporaryFile model(sModel);
  const TemporaryFile saved;
  EXPECT_EQ(RunTarn({"save", model.GetPath(), "-o", saved.GetPath()}).fExitCode, 0);
  for (const char* fact :
       {"", "x", "x = y", "x = y + 1", "1 <= x <= 3", "x <", "x = 1; y = 2", "q = 1", "x = true", "p < 1", "x = 3 = 3",
        "x = 99999999999", "true", "use M", "a : bool", "minimize x", "all different (x, y)"}) {
    const ProgramResult result = RunTarn({"why", model.GetPath(), fact});
    EXPECT_EQ(result.fExitCode, 2) << fact;
    EXPECT_THAT(result.fErr, testing::StartsWith("fact:1:")) << fact;
    EXPECT_EQ(result.fOut, "");
  }
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{"why", saved.GetPath(), "x = 1"}, {"conflict", saved.GetPath()}}) {
    const ProgramResult result = RunTarn(arguments);
    EXPECT_EQ(result.fExitCode, 2);
    EXPECT_THAT(result.fErr, HasSubstr("saved network"));
  }
}

TEST(Conflict, NamesStatementsThatCannotHoldTogether) {
  struct Case {
    const char* fModel;
    int fExitCode;
    const char* fOut;
  };
  const Case sCases[] = {
      {"x, y, z : enum int [1, 9];\nx < y;\nz <> 3;\ny <\n  z;\nz < x;\nminimize x;", 0,
       "These 3 statements cannot hold together:\n  line 2: x < y\n  line 4: y < z\n  line 6: z < x\n"
       "They can when any one of them is left out.\n"},
      {"a, b, c : enum int [1, 2];\na < 9;\na <> b; a <> c;\nb <> c;\n", 0,
       "These 3 statements cannot hold together:\n  line 3: a <> b\n  line 3: a <> c\n  line 4: b <> c\n"
       "They can when any one of them is left out.\n"},
      {"x : bool;\nx;\nfalse;\n", 0, "This statement cannot hold:\n  line 3: false\n"},
      {"x : enum int {1}; y : enum int Nil; x = y;", 0, "The declarations alone leave no solution.\n"},
      {"x : enum int [1, 3]; x > 2;", 1, "There is no conflict: the model has a solution.\n"},
      {"x, y : enum int; x <> y;", 3, "=====UNKNOWN=====\n"},
      {"x, y : enum int; x <> y; x <> x;", 0, "This statement cannot hold:\n  line 1: x <> x\n"},
      {"x : enum int; y : enum int [1, 3];\nx = y; x = 1; y = 2;", 0,
       "These 3 statements cannot hold together:\n  line 2: x = y\n  line 2: x = 1\n  line 2: y = 2\n"
       "They can when any one of them is left out.\n"},
      {"a, b, c : enum int [1, 2]; x : interval int; x <> a;\na <> b; a <> c; b <> c;", 0,
       "These 3 statements cannot hold together:\n  line 2: a <> b\n  line 2: a <> c\n  line 2: b <> c\n"
       "They can when any one of them is left out.\n"},
      {"x, y : interval int;\nx <> y;\nx = 1;\ny = 1;", 3,
       "These 3 statements cannot hold together:\n  line 2: x <> y\n  line 3: x = 1\n  line 4: y = 1\n"
       "Some of them alone may not hold together either.\n"},
  };
  for (const Case& c : sCases) {
    const ProgramResult result = RunModel("conflict", c.fModel);
    EXPECT_EQ(result.fExitCode, c.fExitCode) << c.fModel << result.fErr;
    EXPECT_EQ(result.fOut, c.fOut) << c.fModel;
  }
}

TEST(Conflict, StopsAtATimeLimit) {
  const char* cubes = "x, y, z : interval int [1, 1200]; x * x * x + y * y * y = z * z * z;";
  const std::vector<std::string> limit{"--time-limit", "50ms"};
  EXPECT_EQ(RunModel("conflict", cubes, limit).fExitCode, 3);
  EXPECT_EQ(RunModel("why", cubes, {"false", limit[0], limit[1]}).fExitCode, 3);
}

TEST(Conflict, IsHintedAtWherePropagationRefutesAFile) {
  const TemporaryFile refuted("x : enum int [1, 3]; x > 3;");
  const TemporaryFile searched("a, b, c : enum int [1, 2]; a <> b; a <> c; b <> c;");
  for (const char* command : {"solve", "narrow"}) {
    EXPECT_EQ(RunTarn({command, refuted.GetPath()}).fErr, "tarn: propagation alone refutes the model; `tarn conflict " +
                                                              refuted.GetPath() + "` names the statements\n");
    EXPECT_EQ(RunTarn({command, searched.GetPath()}).fErr, "");
    EXPECT_EQ(RunModel(command, refuted.Read()).fErr, "");
  }
}

}  // namespace
