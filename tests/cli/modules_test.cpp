// Module files through the program: its message and exit code, and files of the right name in the wrong place.
#include <gmock/gmock.h>

#include <filesystem>

#include "cli/runTarn.h"

namespace {

using testing::HasSubstr;

const std::string sTestModules = VOKTARN_BIN_DIR "/test-modules";

TEST(ModuleFiles, TheProgramNamesTheFileThatItRefuses) {
  for (const auto& [name, reason] :
       {std::pair("NoEntry", " has no function InitModule\n"), std::pair("NotStarting", " did not start: "),
        std::pair("Undefined", " cannot be loaded: "), std::pair("CycleOne", " did not start: ")}) {
    const ProgramResult result = RunTarn({"-M", sTestModules, "modules", name});
    EXPECT_EQ(result.fExitCode, 2) << name;
    EXPECT_THAT(result.fErr, HasSubstr(sTestModules + "/lib" + name + ".so)" + reason));
  }
}

TEST(ModuleFiles, TheWorkingDirectoryAndTheLoadersPathAreNotSearched) {
  const std::filesystem::path before = std::filesystem::current_path();
  const std::filesystem::path directory =
      std::filesystem::temp_directory_path() / ("decoys" + std::to_string(getpid()));
  std::filesystem::create_directory(directory);
  std::filesystem::copy_file(sTestModules + "/libNotStarting.so", directory / "libVokFenEvenIntegers.so");
  std::filesystem::current_path(directory);
  setenv("LD_LIBRARY_PATH", directory.c_str(), 1);
  const ProgramResult found = RunTarn({"-M", sTestModules, "modules", "VokFenEvenIntegers"});
  const ProgramResult missing = RunTarn({"modules", "VokFenEvenIntegers"});
  unsetenv("LD_LIBRARY_PATH");
  std::filesystem::current_path(before);
  std::filesystem::remove_all(directory);
  EXPECT_EQ(found.fExitCode, 0) << found.fErr;
  EXPECT_EQ(missing.fExitCode, 2);
  EXPECT_THAT(missing.fErr, HasSubstr("no libVokFenEvenIntegers.so in "));
}

}  // namespace
