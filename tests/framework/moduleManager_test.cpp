#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "support/modules.h"

namespace {

using testing::HasSubstr;

// A directory of its own for each test, searched first.
class ModuleManager : public testing::Test {
 protected:
  void SetUp() override {
    fDirectory =
        std::filesystem::temp_directory_path() /
        ("voktarn-" + std::to_string(getpid()) + testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::create_directory(fDirectory);
    ASSERT_EQ(fManager.AddSearchDirectory(fDirectory), 1);
  }
  void TearDown() override { std::filesystem::remove_all(fDirectory); }

  std::string File(const std::string& module) const { return fDirectory / ("lib" + module + ".so"); }
  void WriteGarbage(const std::string& module) const { std::ofstream(File(module)) << "no library"; }

  std::filesystem::path fDirectory;
  VokTarnModuleManager fManager;
};

TEST_F(ModuleManager, LoadsAModuleOnceAndItsDependenciesBeforeIt) {
  VokTarnModule* module = fManager.OpenModule("VokFenEnumIntegers");
  ASSERT_NE(module, nullptr) << fManager.GetError();
  EXPECT_EQ(fManager.OpenModule("VokFenEnumIntegers"), module);
  std::vector<std::string> names;
  for (const VokTarnModule* loaded : fManager.GetModules()) {
    names.emplace_back(loaded->GetName().View());
  }
  EXPECT_THAT(names, testing::ElementsAre("VokFenAbstractTypes", "VokFenNumbers", "VokFenEnumIntegers"));
  EXPECT_EQ(module->GetLoadedModules().size(), 2U);
  EXPECT_EQ(module->GetDescriptors().size(), 94U);
}

TEST_F(ModuleManager, AModuleWhoseSiblingIsMissingDoesNotStart) {
  for (const char* sibling : {"VokFenAbstractTypes", "VokFenNumbers"}) {
    VokTarnModuleManager manager;
    manager.AddSearchDirectory(fDirectory);
    WriteGarbage(sibling);
    EXPECT_EQ(manager.OpenModule("VokFenEnumIntegers"), nullptr);
    EXPECT_THAT(manager.GetError(), HasSubstr(std::string("module '") + sibling + "' cannot be loaded"));
    EXPECT_THAT(manager.GetError(), HasSubstr("'VokFenEnumIntegers' did not start"));
    std::filesystem::remove(File(sibling));
    EXPECT_NE(manager.OpenModule("VokFenEnumIntegers"), nullptr) << manager.GetError();
  }
}

TEST_F(ModuleManager, RefusesWhatIsNoModuleAndSaysWhy) {
  WriteGarbage("Garbage");
  ASSERT_EQ(mkfifo(File("Pipe").c_str(), 0600), 0);
  std::filesystem::create_directory(File("Directory"));
  std::filesystem::copy(VOKTARN_BIN_DIR "/test-modules/libNoEntry.so", File("NoEntry"));
  const std::pair<std::string, const char*> rows[] = {
      {"Garbage", "cannot be loaded"},      {"Pipe", "not a regular file"},
      {"Directory", "not a regular file"},  {"NoEntry", "no function InitModule"},
      {"Missing", "no libMissing.so in "},  {"", "1 to 64 letters"},
      {"../libVokTarn", "1 to 64 letters"}, {std::string(65, 'a'), "1 to 64 letters"},
  };
  for (const auto& [name, reason] : rows) {
    EXPECT_EQ(fManager.OpenModule(name.c_str()), nullptr) << name;
    EXPECT_THAT(fManager.GetError(), HasSubstr(reason));
  }
  EXPECT_TRUE(fManager.GetModules().empty());
}

TEST_F(ModuleManager, SearchesAbsoluteDirectoriesOnly) {
  VokTarnModuleManager manager;
  EXPECT_EQ(manager.AddSearchDirectory("relative"), 0);
  EXPECT_EQ(manager.AddSearchDirectory(""), 0);
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(fDirectory);
  WriteGarbage("Decoy");
  setenv("VOKTARN_MODULE_PATH", ":.::relative:", 1);
  EXPECT_EQ(manager.OpenModule("Decoy"), nullptr);
  EXPECT_THAT(manager.GetError(), HasSubstr("not found"));
  setenv("VOKTARN_MODULE_PATH", (":" + fDirectory.string() + ":").c_str(), 1);
  EXPECT_EQ(manager.OpenModule("Decoy"), nullptr);
  EXPECT_THAT(manager.GetError(), HasSubstr("cannot be loaded"));
  unsetenv("VOKTARN_MODULE_PATH");
  std::filesystem::current_path(before);
}

}  // namespace
