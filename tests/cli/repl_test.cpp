#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>

#include <filesystem>

#include "cli/runTarn.h"
#include "support/pseudoTerminal.h"

namespace {

using testing::HasSubstr;
using testing::Not;

// A directory of its own, in which the history is kept too.
class Repl : public testing::Test {
 protected:
  Repl() {
    char name[] = "/tmp/voktarn_test_XXXXXX";
    fDirectory = mkdtemp(name);
    setenv("XDG_STATE_HOME", fDirectory.c_str(), 1);
    setenv("TERM", "xterm", 1);
  }
  ~Repl() override { std::filesystem::remove_all(fDirectory); }

  static ProgramResult Run(const std::string& lines) { return RunTarn({"repl"}, {lines}); }

  std::string fDirectory;
};

TEST_F(Repl, AnswersEachLine) {
  struct Case {
    const char* fLines;
    const char* fOut;
    const char* fErr;
  };
  const std::string declared = "x, y : enum int [1, 9];\n";
  const Case sCases[] = {
      // What a statement narrows, and nothing when it narrows nothing.
      {"x mod 2 = 0; // even\n", "x: [1, 9] -> {2, 4, 6, 8}   gone: 1, 3, 5, 7, 9\n", ""},
      {"x <> y;\nx = 4;\n",
       "x: [1, 9] -> 4   gone: 1, 2, 3, 5, 6, 7, 8, 9\n"
       "y: [1, 9] -> {1, 2, 3, 5, 6, 7, 8, 9}   gone: 4\n",
       ""},
      {"y = 2\n  * // twice\n x;\n",
       "x: [1, 9] -> [1, 4]   gone: 5, 6, 7, 8, 9\ny: [1, 9] -> {2, 4, 6, 8}   gone: 1, 3, 5, 7, 9\n", ""},
      {"p : bool; p;\n", "p: Any -> 1\n", ""},
      {"w : interval int [0, 2000000000]; w > 3; w < 500;\nh : interval int; h > x;\n",
       "w: [0, 2000000000] -> [4, 499]   gone: 0..3, 500..2000000000\nh: Any -> [2, Max]\n", ""},
      {"m : enum int [0, 99]; m mod 9 = 5;\n",
       "m: [0, 99] -> {5, 14, 23, 32, 41, 50, 59, 68, ..., 95}   "
       "gone: 0..4, 6..13, 15..22, 24..31, 33..40, 42..49, 51..58, 60..67, ..., 96..99\n",
       ""},
      // Facts are explained by the statements so far.
      {"y < x;\nwhy x <> 1\nwhy z = 1\n",
       "x: [1, 9] -> [2, 9]   gone: 1\ny: [1, 9] -> [1, 8]   gone: 9\n"
       "1. line 2: y < x\n     x : [1, 9] (line 1) -> [2, 9]\n     with y : [1, 9] (line 1)\nHence x <> 1.\n",
       "fact:1:1: error: 'z' is not declared\nz = 1\n^\n"},
      // What cannot be accepted leaves the session as it was.
      {"x > 7; y < x; x < 3;\nx > 7;\nx < 8;\nshow x\n",
       "cannot hold with what stands; taken back\nx: [1, 9] -> [8, 9]   gone: 1, 2, 3, 4, 5, 6, 7\n"
       "cannot hold with what stands; taken back\nx = [8, 9]\n",
       ""},
      {"x = 3; y = x +;\nshow\n", "x = [1, 9]\ny = [1, 9]\n",
       "input:2:15: error: expected an expression, found ';'\nx = 3; y = x +;\n              ^\n"},
      {"x = p;\nx = \n", "",
       "input:2:5: error: 'p' is not declared\nx = p;\n    ^\n"
       "input:3:4: error: expected an expression, found the end of the text\nx = \n   ^\n"},
      // Commands.
      {"x > 1; y = 3 //a\x1b\n;\nlist\nundo 2\nlist\nshow x\nundo\nshow\nundo\n",
       "x: [1, 9] -> [2, 9]   gone: 1\ny: [1, 9] -> 3   gone: 1, 2, 4, 5, 6, 7, 8, 9\n"
       "1  x, y : enum int [1, 9];\n2  x > 1;\n3  y = 3 ;\n"
       "taken back: y = 3 ;\ntaken back: x > 1;\n1  x, y : enum int [1, 9];\nx = [1, 9]\n"
       "taken back: x, y : enum int [1, 9];\n",
       "input:10: error: there is no statement to take back\n"},
      {"x + y = 17; x < y;\nsolve\nsolve 5\n",
       "x: [1, 9] -> 8   gone: 1, 2, 3, 4, 5, 6, 7, 9\ny: [1, 9] -> 9   gone: 1, 2, 3, 4, 5, 6, 7, 8\n"
       "x = 8\ny = 9\n----------\n==========\nx = 8\ny = 9\n----------\n==========\n",
       ""},
      {"maximize x - y; x < 3; y > 8;\nsolve\nsolve 1\nshow x\n",
       "x: [1, 9] -> [1, 2]   gone: 3, 4, 5, 6, 7, 8, 9\ny: [1, 9] -> 9   gone: 1, 2, 3, 4, 5, 6, 7, 8\n"
       "x = 1\ny = 9\n----------\nx = 2\ny = 9\n----------\n==========\nx = 1\ny = 9\n----------\nx = [1, 2]\n",
       ""},
      {"reset\nshow\nhelp undo\nquit\nnonsense\n", "undo [N]          take back the last statement, or the last N\n",
       ""},
      {"slove\nsolve 0\nshow z\nundo 2\nquit now\nload\nhelp me\nload /no\x1bwhere\n", "",
       "input:2: error: unknown command 'slove'; 'help' lists the commands, and statements end with ';'\n"
       "input:3: error: usage: solve [N]\ninput:4: error: no variable 'z'\ninput:5: error: there are only 1 "
       "statements\n"
       "input:6: error: usage: quit\ninput:7: error: usage: load FILE\n"
       "input:8: error: unknown command 'me'; 'help' lists the commands\n"
       "/no?where: error: cannot open the file: No such file or directory\n"},
      // A variable may be named as a command.
      {"show : enum int [1, 9];\nshow\n= 3;\nshow + 1\n= 3;\nall different\n(show, x);\nsave /no/where\n",
       "x = [1, 9]\ny = [1, 9]\nshow = [1, 9]\nshow: [1, 9] -> 2   gone: 1, 3, 4, 5, 6, 7, 8, 9\n"
       "x: [1, 9] -> {1, 3, 4, 5, 6, 7, 8, 9}   gone: 2\n",
       "input:4:1: error: expected an expression, found '='\n= 3;\n^\n"
       "/no/where: error: cannot write the file: No such file or directory\n"},
  };
  for (const Case& c : sCases) {
    const ProgramResult result = Run(declared + c.fLines);
    EXPECT_EQ(result.fOut, c.fOut) << c.fLines;
    EXPECT_EQ(result.fErr, c.fErr) << c.fLines;
    EXPECT_EQ(result.fExitCode, *c.fErr == '\0' ? 0 : 2) << c.fLines;
  }
}

TEST_F(Repl, SavesAndLoadsModelsAndNetworks) {
  const std::string model = fDirectory + "/kept.tarn";
  const std::string network = fDirectory + "/kept net";
  ASSERT_EQ(
      Run("x : enum int [1, 9];\n// odd\nx mod 2 = 1; p : bool; p == (x >> 2);\nsave " + model + "\nsave " + network)
          .fErr,
      "");
  for (const std::string& file : {model, network}) {
    EXPECT_EQ(RunTarn({"narrow", file}).fOut, "x = { 1, 3, 5, 7, 9 }\np = Any\n");
    const std::string answer = "x: [1, 9] -> {1, 3, 5, 7, 9}   gone: 2, 4, 6, 8\n";
    EXPECT_EQ(Run("load " + file + "\nundo 2").fOut, answer + "taken back: p == (x >> 2);\ntaken back: p : bool;\n");
    EXPECT_EQ(RunTarn({"repl", file}, {"x > 2; x < 4;\nload " + file + "\nshow\n"}).fOut,
              answer + "x: {1, 3, 5, 7, 9} -> 3   gone: 1, 5, 7, 9\np: Any -> 1\nx = 3\np = 1\n");
  }
}

// Statements whose propagation takes far longer than any test.
constexpr const char* sSlow = "v, w : interval int [0, 2000000000]; v < w; w < v;\n";

TEST_F(Repl, ASignalEndsASessionWithoutATerminal) {
  const ProgramResult result =
      RunTarn({"repl"}, {"x : bool; x;\n" + std::string(sSlow) + "show\n", SIGINT, std::chrono::milliseconds(1500)});
  EXPECT_EQ(result.fExitCode, 3);
  EXPECT_EQ(result.fOut, "x: Any -> 1\n");
  EXPECT_EQ(result.fErr, "stopped; taken back\n");
}

TEST_F(Repl, EditsCompletesAndRemembersLinesAtATerminal) {
  {
    PseudoTerminal terminal(VOKTARN_BIN_DIR "/tarn", {"repl"});
    ASSERT_TRUE(terminal.WaitForText("tarn> "));
    terminal.Write("alpha, alps : en\ti\t[1, 9];\r");
    ASSERT_TRUE(terminal.WaitForText("tarn> "));
    terminal.Write("sho\talph\t\r");
    EXPECT_TRUE(terminal.WaitForText("\nalpha = [1, 9]\r\n"));
    ASSERT_TRUE(terminal.WaitForText("tarn> "));
    terminal.Write("al\t");
    EXPECT_TRUE(terminal.WaitForText("\nall  alpha  alps\r\n"));
    ASSERT_TRUE(terminal.WaitForText("tarn> al"));
    // Ctrl-C drops the line, and a statement without its end.
    terminal.Write("\x03");
    ASSERT_TRUE(terminal.WaitForText("tarn> "));
    terminal.Write("alps >\r");
    ASSERT_TRUE(terminal.WaitForText("  ... "));
    terminal.Write("\x03");
    ASSERT_TRUE(terminal.WaitForText("tarn> "));
    terminal.Write("load " + fDirectory.substr(0, fDirectory.size() - 2) + "\t");
    EXPECT_TRUE(terminal.WaitForText(fDirectory.substr(fDirectory.size() - 2) + "/"));
    terminal.Write("\x03");
    ASSERT_TRUE(terminal.WaitForText("tarn> "));
    terminal.Write("nonsense\r");
    EXPECT_TRUE(terminal.WaitForText("unknown command"));
    ASSERT_TRUE(terminal.WaitForText("tarn> "));
    // Ctrl-D on an empty line. That the terminal passes it on is sure once a line is edited.
    terminal.Write("qu\t");
    ASSERT_TRUE(terminal.WaitForText("it "));
    terminal.Write("\x15\x04");
    EXPECT_EQ(terminal.WaitForExit(), 0);
  }
  PseudoTerminal terminal(VOKTARN_BIN_DIR "/tarn", {"repl"});
  ASSERT_TRUE(terminal.WaitForText("tarn> "));
  terminal.Write("\x1b[A");
  EXPECT_TRUE(terminal.WaitForText("nonsense"));
}

TEST_F(Repl, CtrlCStopsAStatementOrASearchAndKeepsTheSession) {
  PseudoTerminal terminal(VOKTARN_BIN_DIR "/tarn", {"repl"});
  ASSERT_TRUE(terminal.WaitForText("tarn> "));
  terminal.Write("x : enum int [1, 9]; x > 7;\r");
  ASSERT_TRUE(terminal.WaitForText("tarn> "));
  terminal.Write(std::string(sSlow) + "\r");
  // The line has been typed when its end is echoed, and is soon taken.
  ASSERT_TRUE(terminal.WaitForText("w < v;\r\n"));
  std::this_thread::sleep_for(std::chrono::milliseconds(1500));
  terminal.Write("\x03");
  ASSERT_TRUE(terminal.WaitForText("stopped; taken back"));
  ASSERT_TRUE(terminal.WaitForText("tarn> "));
  terminal.Write("a, b, c, d, e, f, g : enum int [1, 99];\r");
  ASSERT_TRUE(terminal.WaitForText("tarn> "));
  terminal.Write("solve 99999999\r");
  ASSERT_TRUE(terminal.WaitForText("----------"));
  terminal.Write("\x03");
  ASSERT_TRUE(terminal.WaitForText("tarn: stopped by "));
  ASSERT_TRUE(terminal.WaitForText("tarn> "));
  terminal.Write("show x\r");
  EXPECT_TRUE(terminal.WaitForText("\nx = [8, 9]\r\n"));
  ASSERT_TRUE(terminal.WaitForText("tarn> "));
  EXPECT_THAT(terminal.GetOutput(), Not(HasSubstr("error")));
  terminal.Write("quit\r");
  EXPECT_EQ(terminal.WaitForExit(), 0);
}

}  // namespace
