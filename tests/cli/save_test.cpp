#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "cli/runTarn.h"
#include "framework/checksum.h"
#include "support/streamBytes.h"

namespace {

using testing::HasSubstr;

// A directory of its own for each test, to see what a command leaves there.
class Save : public testing::Test {
 protected:
  Save() {
    char name[] = "/tmp/voktarn_test_XXXXXX";
    fDirectory = mkdtemp(name);
    fFile = fDirectory / "network";
  }
  ~Save() override { std::filesystem::remove_all(fDirectory); }

  ProgramResult SaveModel(const std::string& model, std::vector<std::string> options = {}) const {
    options.insert(options.end(), {"-o", fFile});
    return RunModel("save", model, options);
  }
  std::string ReadSaved() const {
    std::ifstream file(fFile, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void WriteSaved(const std::string& bytes) const { std::ofstream(fFile, std::ios::binary) << bytes; }
  bool IsDirectoryEmpty() const { return std::filesystem::is_empty(fDirectory); }

  std::filesystem::path fDirectory;
  std::string fFile;
};

constexpr const char* sModel = "x, y : enum int [1, 3]; x < y;";
constexpr const char* sSolutions =
    "x = 1\ny = 2\n----------\nx = 1\ny = 3\n----------\nx = 2\ny = 3\n----------\n==========\n";

TEST_F(Save, ASavedNetworkIsAnsweredLikeItsModel) {
  for (const std::string example : {"sudoku-4x4", "queens-8", "send-more-money", "magic-square-3x3", "sparse-numbers",
                                    "golomb-ruler-5", "knapsack", "party"}) {
    const std::string model = VOKTARN_SOURCE_DIR "/examples/" + example + ".tarn";
    const ProgramResult saved = RunTarn({"save", model, "-o", fFile});
    EXPECT_EQ(saved.fExitCode, 0) << example << saved.fErr;
    EXPECT_EQ(saved.fOut + saved.fErr, "") << example;
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"narrow"}, {"solve"}, {"solve", "-a"}, {"solve", "-n", "2"}}) {
      std::vector<std::string> onModel = command;
      std::vector<std::string> onNetwork = command;
      onModel.push_back(model);
      onNetwork.push_back(fFile);
      const ProgramResult expected = RunTarn(onModel);
      const ProgramResult result = RunTarn(onNetwork);
      EXPECT_EQ(result.fOut, expected.fOut) << example << " " << command.back();
      EXPECT_EQ(result.fErr, "") << example;
      EXPECT_EQ(result.fExitCode, expected.fExitCode) << example;
    }
  }
}

TEST_F(Save, AContradictionIsSavedToo) {
  for (const char* model : {"x : enum int [1, 3]; x > 3;", "x : enum int Nil;", "false;"}) {
    EXPECT_EQ(SaveModel(model).fExitCode, 0) << model;
    const ProgramResult result = RunTarn({"solve", fFile});
    EXPECT_EQ(result.fExitCode, 1) << model;
    EXPECT_EQ(result.fOut, "=====UNSATISFIABLE=====\n") << model;
  }
}

TEST_F(Save, ASavedNetworkIsReadFromTheStandardInputAndSavedAgain) {
  ASSERT_EQ(SaveModel(sModel).fExitCode, 0);
  const std::string bytes = ReadSaved();
  EXPECT_EQ(RunTarn({"solve", "-a", "-"}, {bytes}).fOut, sSolutions);
  ASSERT_EQ(RunTarn({"save", fFile, "-o", fFile}).fExitCode, 0);
  EXPECT_EQ(ReadSaved(), bytes);
}

TEST_F(Save, ADamagedFileIsBadInput) {
  ASSERT_EQ(SaveModel(sModel).fExitCode, 0);
  const std::string bytes = ReadSaved();
  std::string flipped = bytes;
  flipped[bytes.size() / 2] ^= 1;
  for (const std::string& damaged : {flipped, bytes.substr(0, bytes.size() - 1), bytes.substr(0, 12), bytes + "x"}) {
    WriteSaved(damaged);
    for (const char* command : {"solve", "narrow"}) {
      const ProgramResult result = RunTarn({command, fFile});
      EXPECT_EQ(result.fExitCode, 2);
      EXPECT_EQ(result.fOut, "");
      EXPECT_THAT(result.fErr, testing::StartsWith(fFile + ": error: the "));
    }
  }
}

// The saved network of sModel with a part of the kept text replaced by one of the same length, under a right checksum.
std::string Forge(std::string bytes, const std::string& part, const std::string& other) {
  bytes.replace(bytes.rfind(part), part.size(), other);
  return bytes.replace(16, 4, support::NumberBytes(VokCalcChecksum(std::string_view(bytes).substr(20))));
}

TEST_F(Save, SolutionsAreCheckedAgainstTheKeptModel) {
  ASSERT_EQ(SaveModel(sModel).fExitCode, 0);
  const std::string bytes = ReadSaved();
  const struct {
    const char* fPart;
    const char* fOther;
    int fExitCode;
    const char* fError;
  } rows[] = {
      {"x < y", "x > y", 3, "a solution contradicts the statement of line 1"},
      {"x, y", "x, z", 2, "network: error: the model text in it does not declare the variables of its network"},
      {"enum", "Enum", 2, "network: error: the model text in it is wrong\nstandard input:1:8: error: "},
  };
  for (const auto& row : rows) {
    WriteSaved(Forge(bytes, row.fPart, row.fOther));
    const ProgramResult result = RunTarn({"solve", fFile});
    EXPECT_EQ(result.fExitCode, row.fExitCode) << row.fOther;
    EXPECT_THAT(result.fErr, HasSubstr(row.fError));
  }
}

TEST_F(Save, AFailureLeavesNothing) {
  const std::string missing = fDirectory / "missing" / "network";
  const ProgramResult nowhere = RunModel("save", sModel, {"-o", missing});
  EXPECT_EQ(nowhere.fExitCode, 2);
  EXPECT_EQ(nowhere.fErr, missing + ": error: cannot write the file: No such file or directory\n");
  const ProgramResult directory = RunModel("save", sModel, {"-o", fDirectory});
  EXPECT_EQ(directory.fExitCode, 2);
  EXPECT_THAT(directory.fErr, HasSubstr("not a regular file"));
  EXPECT_EQ(SaveModel("x : enum int [1, 3]; x < z;").fExitCode, 2);
  const ProgramResult usage = RunModel("save", sModel);
  EXPECT_EQ(usage.fExitCode, 2);
  EXPECT_THAT(usage.fErr, HasSubstr("--output is required"));
  EXPECT_TRUE(IsDirectoryEmpty());
}

TEST_F(Save, DomainsOfAnotherModuleAreKept) {
  const std::vector<std::string> path = {"-M", VOKTARN_BIN_DIR "/test-modules"};
  ASSERT_EQ(SaveModel("use VokFenEvenIntegers; x, y, z : even int up to 8; x + y = z; z < 5; x > 1;", path).fExitCode,
            0);
  EXPECT_EQ(RunTarn({"narrow", fFile, path[0], path[1]}).fOut, "x = even {2, 4}\ny = even {0, 2}\nz = even {2, 4}\n");
  EXPECT_EQ(RunTarn({"narrow", fFile}).fExitCode, 2);
}

TEST_F(Save, AFailureKeepsTheFileThatWasThere) {
  ASSERT_EQ(SaveModel(sModel).fExitCode, 0);
  const std::string bytes = ReadSaved();
  EXPECT_EQ(SaveModel("x : enum int [1, 3]; x < z;").fExitCode, 2);
  EXPECT_EQ(ReadSaved(), bytes);
  EXPECT_EQ(SaveModel("x : enum int [1, 2];").fExitCode, 0);
  EXPECT_EQ(RunTarn({"narrow", fFile}).fOut, "x = { 1, 2 }\n");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(fDirectory), {}), 1);
}

}  // namespace
