#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "cli/runTarn.h"

namespace {

struct Example {
  const char* fFile;
  std::size_t fSolutions;  // of a complete search; of an optimisation, 0: not looked at
  const char* fPart;       // stands in the last solution
  bool fFirstOnly = false;
};

constexpr Example sExamples[] = {
    {"sudoku-4x4", 12, "b3 = 2\n"},
    {"sudoku-9x9", 1, "A1 = 3\nA2 = 6\nA3 = 5\nA4 = 4\nA5 = 1\nA6 = 9\nA7 = 8\nA8 = 2\nA9 = 7\n"},
    {"queens-8", 92, ""},
    {"send-more-money", 1, "S = 9\nM = 1\nE = 5\nN = 6\nD = 7\nO = 0\nR = 8\nY = 2\n"},
    {"magic-square-3x3", 8, "e = 5\n"},
    {"langford-4", 2, ""},
    {"sparse-numbers", 1, "x = 700\ny = 20\nsum = 720\nproduct = 14000\nroot = 30\nsquare = 900\nnumber = 57\n"},
    {"golomb-ruler-5", 0, "m5 = 11\n"},
    {"knapsack", 0, "weight = 15\nworth = 27\n"},
    {"change", 0, "coins = 5\n"},
    {"party", 2, "cleo = 1\n"},
    {"radio-links", 1, "f60 = ", true},
};

TEST(Examples, HaveTheirKnownAnswers) {
  for (const Example& example : sExamples) {
    const std::string path = std::string(VOKTARN_SOURCE_DIR "/examples/") + example.fFile + ".tarn";
    const ProgramResult result = RunTarn({"solve", example.fFirstOnly ? "-n1" : "-a", path});
    EXPECT_EQ(result.fExitCode, 0) << example.fFile << result.fErr;
    EXPECT_THAT(result.fOut, testing::EndsWith(example.fFirstOnly ? "----------\n" : "----------\n==========\n"))
        << example.fFile;
    if (example.fSolutions != 0) {
      EXPECT_EQ(CountText(result.fOut, "----------\n"), example.fSolutions) << example.fFile;
    }
    const std::string solutions = result.fOut.substr(0, result.fOut.rfind("----------\n"));
    const std::size_t before = solutions.rfind("----------\n");
    EXPECT_THAT(solutions.substr(before == std::string::npos ? 0 : before), testing::HasSubstr(example.fPart))
        << example.fFile;
  }
}

TEST(Examples, AreAllTested) {
  std::set<std::string> tested;
  for (const Example& example : sExamples) {
    tested.insert(example.fFile);
  }
  std::set<std::string> present;
  for (const auto& entry : std::filesystem::directory_iterator(VOKTARN_SOURCE_DIR "/examples")) {
    if (entry.path().extension() == ".tarn") {
      present.insert(entry.path().stem());
    }
  }
  EXPECT_EQ(tested, present);
}

TEST(Examples, ModelsOfTheBenchesAreRead) {
  for (const auto& entry : std::filesystem::directory_iterator(VOKTARN_SOURCE_DIR "/bench/models")) {
    if (entry.path().extension() == ".tarn") {
      const ProgramResult result = RunTarn({"narrow", entry.path().string()});
      EXPECT_EQ(result.fExitCode, 0) << entry.path() << result.fErr;
    }
  }
}

TEST(Examples, SparseSetsNeedNoSearch) {
  const ProgramResult result = RunTarn({"narrow", VOKTARN_SOURCE_DIR "/examples/sparse-numbers.tarn"});
  EXPECT_EQ(result.fOut, "x = 700\ny = 20\nsum = 720\nproduct = 14000\nroot = 30\nsquare = 900\nnumber = 57\n");
}

}  // namespace
