// A domain type from another module, which the program has never heard of, in models.
#include <gmock/gmock.h>

#include "cli/runTarn.h"

namespace {

const std::vector<std::string> kPath = {"-M", VOKTARN_BIN_DIR "/test-modules"};

ProgramResult RunEven(const std::string& command, const std::string& model, std::vector<std::string> options = {}) {
  options.insert(options.end(), kPath.begin(), kPath.end());
  return RunModel(command, "use VokFenEvenIntegers;\n" + model, options);
}

TEST(FourthType, IsDeclaredRelatedAndSolvedLikeAnyOther) {
  const struct {
    const char* fModel;
    std::size_t fSolutions;
  } rows[] = {
      {"e : even int up to 8;", 5},
      {"e, f : even int up to 8; e < f;", 10},
      {"e, f, g : even int up to 4; all different (e, f, g);", 6},
      // Beside the other types: relations take every type, sums bring it to the row's type.
      {"e : even int up to 8; x : enum int [1, 9]; e = x;", 4},
      {"e : even int up to 8; w : interval int [3, 6]; e >= w;", 10},
      {"e : even int up to 8; x : enum int [1, 9]; e + x = 5;", 3},
      {"e : even int up to 8; p : bool; p == (e << 3);", 5},
      // Its own operator row, and its own sum behind it.
      {"e, f, g : even int up to 8; e + f = g;", 15},
      {"e : even int up to 8; maximize e;", 0},
  };
  for (const auto& row : rows) {
    const ProgramResult result = RunEven("solve", row.fModel, {"-a"});
    EXPECT_EQ(result.fExitCode, 0) << row.fModel << '\n' << result.fErr;
    if (row.fSolutions != 0) {
      EXPECT_EQ(CountText(result.fOut, "----------\n"), row.fSolutions) << row.fModel;
    }
  }
  EXPECT_EQ(RunEven("narrow", "e : even int up to 8; x : enum int {3, 4, 5, 6}; e = x;").fOut,
            "e = even {4, 6}\nx = { 4, 6 }\n");
}

TEST(FourthType, ErrorsListTheRowsThatExist) {
  const ProgramResult result = RunEven("solve", "e, f : even int up to 8; e * f = 4;");
  EXPECT_EQ(result.fExitCode, 2);
  EXPECT_THAT(result.fErr, testing::HasSubstr("(enum int, abstract int)"));
  EXPECT_EQ(RunEven("solve", "e : even int down to 8;").fExitCode, 2);
}

}  // namespace
