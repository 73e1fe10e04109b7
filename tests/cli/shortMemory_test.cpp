// The program with memory running out at its allocations, in the C library too: it tells what it tells with memory
// enough, or a beginning of that and that memory is out.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli/runTarn.h"
#include "support/soak.h"

namespace {

constexpr std::string_view kError = "tarn: error: out of memory\n";

ProgramResult RunShort(std::vector<std::string> arguments, const std::string& input, const std::string& setting) {
  arguments.insert(arguments.begin(), {"LD_PRELOAD=" VOKTARN_BIN_DIR "/test-modules/libFailingMalloc.so", setting,
                                       VOKTARN_BIN_DIR "/tarn"});
  return RunProgram("/usr/bin/env", arguments, {input});
}

// What is wrong with the result beside the right one; empty when nothing is.
std::string FindFault(const ProgramResult& right, const ProgramResult& result) {
  if (result.fExitCode == right.fExitCode && result.fOut == right.fOut && result.fErr == right.fErr) {
    return {};
  }
  if (result.fExitCode != 3) {
    return "exit code " + std::to_string(result.fExitCode);
  }
  const std::string_view err(result.fErr);
  if (!err.ends_with(kError) || !right.fErr.starts_with(err.substr(0, err.size() - kError.size()))) {
    return "another error";
  }
  return right.fOut.starts_with(result.fOut) ? "" : "another output";
}

TEST(ShortMemory, EndsTheProgramWithAnErrorNeverWithAFalseAnswer) {
#ifdef VOKTARN_SANITIZED
  GTEST_SKIP() << "the sanitizers have an allocator of their own";
#endif
  const TemporaryFile model("x, y, z : enum int [1, 5]; p : bool; x + y = z; y < x; p <-> x == 3; minimize y - z;");
  const TemporaryFile all("x, y : enum int [1, 4]; z : interval int [0, 9]; x * y = z; x <> y; z <= 8;");
  const TemporaryFile conflict("x, y, z : enum int [1, 3]; all different (x, y, z); x < y; y < z; z < x + 2;");
  const TemporaryFile saved;
  const std::string session = "x, y : enum int [1, 9];\nx < y;\nsolve 2\nwhy x <> 9\nundo\nx = y + 8;\nshow\n";
  const std::string problem =
      "var 1..4: x; var 1..4: y; var 2..3000: z :: output_var; constraint int_ne(x,y); constraint int_plus(x,y,z);"
      "constraint int_ne(y,z); constraint int_ne(x,z);";
  const struct {
    std::vector<std::string> fArguments;
    std::string fInput;
  } cases[] = {
      {{"solve", model.GetPath(), "--restart", "luby"}, {}},
      {{"solve", all.GetPath(), "-a", "-q"}, {}},
      {{"solve", conflict.GetPath()}, {}},
      {{"narrow", model.GetPath()}, {}},
      {{"save", model.GetPath(), "-o", saved.GetPath()}, {}},
      {{"solve", saved.GetPath()}, {}},
      {{"modules"}, {}},
      {{"why", model.GetPath(), "z <> 2"}, {}},
      {{"why", all.GetPath(), "x <> 3"}, {}},
      {{"conflict", conflict.GetPath()}, {}},
      {{"graph", all.GetPath()}, {}},
      {{"tree", "-a", all.GetPath()}, {}},
      {{"fzn", "-i", "-"}, problem + "solve :: int_search([x,y],input_order,indomain_max,complete) minimize z;"},
      {{"fzn", "-a", "-"}, problem + "constraint int_lin_le([1,1,1],[x,y,z],4); solve satisfy;"},
      {{"repl"}, session}};
  // Every allocation in a long run, those of the beginning and ever fewer later ones otherwise.
  const bool isThorough = support::SoakFactor() > 1;
  for (const auto& c : cases) {
    const TemporaryFile count;
    const ProgramResult right = RunShort(c.fArguments, c.fInput, "FAILING_MALLOC_COUNT=" + count.GetPath());
    const std::string savedRight = saved.Read();
    const unsigned long allocations = std::stoul(count.Read());
    EXPECT_NE(right.fExitCode, 2) << right.fErr;
    for (const bool lasts : {false, true}) {
      for (unsigned long n = 1; n <= allocations; n += isThorough ? 1 : 1 + n / 8) {
        const ProgramResult result = RunShort(
            c.fArguments, c.fInput, (lasts ? "FAILING_MALLOC_FROM=" : "FAILING_MALLOC_AT=") + std::to_string(n));
        const std::string fault = FindFault(right, result);
        EXPECT_EQ(fault, "") << "tarn " << c.fArguments[0] << ", allocation " << n << " of " << allocations
                             << (lasts ? " and all after it" : "") << '\n'
                             << result.fOut << result.fErr;
        EXPECT_EQ(saved.Read(), savedRight) << "tarn " << c.fArguments[0] << ", allocation " << n;
      }
    }
  }
}

}  // namespace
