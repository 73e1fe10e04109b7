// Files that are no models, and output that cannot be written.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "cli/runTarn.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

// Runs a script in a directory of its own, which holds the models `model`, with one solution, and `many`, with more
// than can ever be printed. "tarn" is the program.
class Faults : public testing::Test {
 protected:
  Faults() {
    char name[] = "/tmp/voktarn_test_XXXXXX";
    fDirectory = mkdtemp(name);
    std::filesystem::copy_file(VOKTARN_SOURCE_DIR "/examples/send-more-money.tarn", fDirectory / "model");
    std::ofstream(fDirectory / "many") << "a, b, c, d, e, f : enum int [1, 99];";
  }
  ~Faults() override { std::filesystem::remove_all(fDirectory); }

  ProgramResult Run(const std::string& script, const ProgramInput& input = {}) const {
    return RunProgram("/bin/sh",
                      {"-c", "cd " + fDirectory.string() + "; tarn() { " VOKTARN_BIN_DIR "/tarn \"$@\"; }; " + script},
                      input);
  }

  std::filesystem::path fDirectory;
};

TEST_F(Faults, WhatIsNoModelFileIsRefused) {
  std::ofstream(fDirectory / "cut") << "\x8FVTN\r\n\x1A\n";
  const std::pair<const char*, const char*> rows[] = {
      {".", ".: error: cannot read the file: Is a directory\n"},
      {"nowhere", "nowhere: error: cannot open the file: No such file or directory\n"},
      {"''", ": error: cannot open the file: No such file or directory\n"},
      {"model/x", "model/x: error: cannot open the file: Not a directory\n"},
      {"/proc/self/mem", "/proc/self/mem: error: cannot read the file: Input/output error\n"},
      {"/dev/zero", "/dev/zero:1:1: error: a zero byte: this is not a model text\n"},
      {"- <&-", "standard input: error: cannot read the file: Bad file descriptor\n"},
      {"cut", "cut: error: the file ends at byte 8, within the header of 20 bytes\n"},
  };
  for (const char* command : {"solve", "narrow", "graph", "save -o saved"}) {
    for (const auto& [file, message] : rows) {
      const ProgramResult result = Run(std::string("tarn ") + command + " " + file);
      EXPECT_EQ(result.fExitCode, 2) << command << " " << file;
      EXPECT_EQ(result.fOut, "") << command << " " << file;
      EXPECT_THAT(result.fErr, StartsWith(message)) << command;
      EXPECT_EQ(CountText(result.fErr, "error: "), 1U) << result.fErr;
    }
  }
}

TEST_F(Faults, APipeIsAModelOnceSomebodyWritesToIt) {
  ASSERT_EQ(mkfifo((fDirectory / "pipe").c_str(), 0600), 0);
  const std::string solution = "S = 9\n";
  EXPECT_THAT(Run("cat model > pipe & tarn solve pipe").fOut, StartsWith(solution));
  EXPECT_THAT(Run("cat model | tarn solve /dev/stdin").fOut, StartsWith(solution));
  EXPECT_THAT(Run("(cat model; sleep 0.2; echo 'false;') | tarn solve /dev/fd/0").fOut, HasSubstr("UNSATISFIABLE"));
  // Without a writer a limit and a signal end the wait, which is told while it lasts.
  const ProgramResult limited = Run("tarn solve pipe --time-limit 50ms");
  EXPECT_EQ(limited.fExitCode, 3);
  EXPECT_THAT(limited.fErr, HasSubstr("tarn: stopped by the time limit\n"));
  const ProgramResult told = Run(
      VOKTARN_BIN_DIR "/tarn solve pipe 2> note & until grep -q waiting note; do sleep 0.1; done; kill $!; wait $!");
  EXPECT_EQ(told.fExitCode, 3);
  std::ifstream note(fDirectory / "note");
  std::string line;
  std::getline(note, line);
  EXPECT_EQ(line, "tarn: waiting for another program to write to the pipe pipe");
}

TEST_F(Faults, AFullDiskOrAClosedPipeEndsTheRun) {
  const std::string message = "tarn: error: cannot write the output\n";
  for (const char* command : {"solve model", "solve --json model", "solve -s -q -a many", "solve --json -a many",
                              "narrow model", "graph model", "tree -a model", "modules", "why model 'S = 9'",
                              "conflict model", "--help", "--version", "solve --help", "repl model < many"}) {
    const ProgramResult full = Run(std::string("tarn ") + command + " > /dev/full");
    EXPECT_EQ(full.fExitCode, 2) << command;
    EXPECT_THAT(full.fErr, testing::EndsWith(message)) << command;
    EXPECT_EQ(CountText(full.fErr, "error: "), 1U) << full.fErr;
  }
  for (const char* command : {"solve -a many", "solve --json -a many"}) {
    const ProgramResult closed = Run("{ tarn " + std::string(command) + "; echo $? >&2; } | head -n 1 | wc -l");
    EXPECT_EQ(closed.fOut, "1\n") << command;
    EXPECT_EQ(closed.fErr, message + "2\n") << command;
  }
}

TEST_F(Faults, AFileThatCannotBeWrittenWholeIsNotWritten) {
  std::vector<std::string> commands = {"save model -o old", "graph model -o old.dot", "tree -a model -o old.dot"};
  if (RunProgram("/bin/sh", {"-c", "command -v dot"}).fExitCode == 0) {
    commands.insert(commands.end(), {"graph model -o old.svg", "graph model -o old.png"});
  }
  for (const std::string& command : commands) {
    const std::string file = command.substr(command.find("old"));
    std::ofstream(fDirectory / file) << "old";
    // In blocks of 512 bytes; for a picture the text that it is drawn from still fits.
    const char* const limit = file == "old" || file == "old.dot" ? "1" : "6";
    const ProgramResult result = Run(std::string("ulimit -f ") + limit + "; tarn " + command);
    EXPECT_EQ(result.fExitCode, 2) << command;
    EXPECT_THAT(result.fErr, testing::AnyOf(HasSubstr(file + ": error: cannot write the file: File too large\n"),
                                            HasSubstr("tarn: error: 'dot' failed; there is no picture\n")));
    EXPECT_EQ(Run("cat " + file + "; rm " + file + "; ls").fOut, "oldmany\nmodel\n") << command;
    EXPECT_EQ(Run("tarn " + command + "; ls").fOut, "many\nmodel\n" + file + "\n");
    std::filesystem::remove(fDirectory / file);
  }
}

}  // namespace
