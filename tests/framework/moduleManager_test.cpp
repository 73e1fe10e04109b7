#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "support/modules.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::string sTestModules = VOKTARN_BIN_DIR "/test-modules";

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
  void WriteFile(const std::string& module, const std::string& bytes) const {
    std::ofstream(File(module), std::ios::binary) << bytes;
  }
  static std::string ReadLibrary() {
    std::ifstream file(sTestModules + "/libVokFenEvenIntegers.so", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

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
    WriteFile(sibling, "no library");
    EXPECT_EQ(manager.OpenModule("VokFenEnumIntegers"), nullptr);
    EXPECT_THAT(manager.GetError(), HasSubstr("libVokFenEnumIntegers.so) did not start: module '"));
    EXPECT_THAT(manager.GetError(), HasSubstr(File(sibling) + ") is not a shared library"));
    std::filesystem::remove(File(sibling));
    EXPECT_NE(manager.OpenModule("VokFenEnumIntegers"), nullptr) << manager.GetError();
  }
}

TEST_F(ModuleManager, RefusesAFileThatIsNoModuleAndSaysWhy) {
  fManager.AddSearchDirectory(sTestModules);
  const std::string library = ReadLibrary();
  const auto patched = [&library](std::size_t at, int value) {
    std::string bytes = library;
    bytes[at] = static_cast<char>(value);
    return bytes;
  };
  WriteFile("Empty", "");
  WriteFile("Text", "no library");
  WriteFile("OtherClass", patched(4, 3 - library[4]));
  WriteFile("OtherOrder", patched(5, 3 - library[5]));
  WriteFile("OtherMachine", patched(18, library[18] + 1));
  WriteFile("ObjectFile", patched(16, 1));
  WriteFile("Unreadable", library);
  std::filesystem::permissions(File("Unreadable"), std::filesystem::perms::none);
  ASSERT_EQ(mkfifo(File("Pipe").c_str(), 0644), 0);
  std::filesystem::create_directory(File("Directory"));
  std::filesystem::create_symlink(File("Loop"), File("Loop"));

  const std::pair<const char*, const char*> rows[] = {
      {"Empty", "is not a shared library"},
      {"Text", "is not a shared library"},
      {"OtherClass", "is a library for another kind of machine"},
      {"OtherOrder", "is a library for another kind of machine"},
      {"OtherMachine", "is a library for another kind of machine"},
      {"ObjectFile", "is not a shared library"},
      {"Unreadable", "cannot be opened: Permission denied"},
      {"Pipe", "is not a regular file"},
      {"Directory", "is not a regular file"},
      {"Loop", "cannot be opened: Too many levels of symbolic links"},
      {"NoEntry", "has no function InitModule"},
      {"NotStarting", "did not start: its function InitModule reported a failure"},
      {"Undefined", "cannot be loaded: "},
      {"CycleOne", "did not start: module 'CycleTwo' ("},
      {"CycleTwo", "did not start: module 'CycleOne' ("},
  };
  const uid_t user = geteuid();
  for (const auto& [name, reason] : rows) {
    // Root reads everything, so the rows are those of a user without rights.
    ASSERT_TRUE(user != 0 || seteuid(65534) == 0);
    EXPECT_EQ(fManager.OpenModule(name), nullptr) << name;
    ASSERT_EQ(seteuid(user), 0);
    const std::string file = std::string("/lib") + name + ".so) ";
    EXPECT_THAT(fManager.GetError(), HasSubstr(std::string("module '") + name + "' (/"));
    EXPECT_THAT(fManager.GetError(), HasSubstr(file + reason));
    EXPECT_TRUE(fManager.GetModules().empty());
  }
  EXPECT_THAT(fManager.GetError(), HasSubstr("did not start: module 'CycleTwo' depends on itself"));
}

TEST_F(ModuleManager, RefusesANameThatIsNoneOrHasNoFile) {
  for (const std::string& name : {std::string(), std::string("../libVokTarn"), std::string(65, 'a')}) {
    EXPECT_EQ(fManager.OpenModule(name.c_str()), nullptr) << name;
    EXPECT_EQ(fManager.GetError(), "a module name has 1 to 64 letters, digits and underscores");
  }
  EXPECT_EQ(fManager.OpenModule("Missing"), nullptr);
  EXPECT_THAT(fManager.GetError(),
              StartsWith("module 'Missing' not found: no libMissing.so in " + fDirectory.string()));
}

// The loader maps what the headers promise, so it must not see a file that ends before.
TEST_F(ModuleManager, RefusesALibraryThatIsCutOff) {
  const std::string library = ReadLibrary();
  std::size_t cutOff = 0;
  for (std::size_t length = 0; length < library.size(); length += 97) {
    std::filesystem::remove(File("Cut"));
    WriteFile("Cut", library.substr(0, length));
    VokTarnModuleManager manager;
    manager.AddSearchDirectory(fDirectory);
    // What lies behind the last segment is not loaded.
    if (manager.OpenModule("Cut") == nullptr) {
      EXPECT_EQ(manager.GetError(),
                "module 'Cut' (" + File("Cut") + ") is " + (length < 4 ? "not a shared library" : "cut off"));
      cutOff = length;
    }
  }
  EXPECT_GT(cutOff, 0x1000U);
}

TEST_F(ModuleManager, SearchesAbsoluteDirectoriesOnly) {
  VokTarnModuleManager manager;
  EXPECT_EQ(manager.AddSearchDirectory("relative"), 0);
  EXPECT_EQ(manager.AddSearchDirectory(""), 0);
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(fDirectory);
  WriteFile("Decoy", "no library");
  setenv("VOKTARN_MODULE_PATH", ":.::relative:", 1);
  EXPECT_EQ(manager.OpenModule("Decoy"), nullptr);
  EXPECT_THAT(manager.GetError(), HasSubstr("not found"));
  setenv("VOKTARN_MODULE_PATH", (":" + fDirectory.string() + ":").c_str(), 1);
  EXPECT_EQ(manager.OpenModule("Decoy"), nullptr);
  EXPECT_THAT(manager.GetError(), HasSubstr("is not a shared library"));
  unsetenv("VOKTARN_MODULE_PATH");
  std::filesystem::current_path(before);
}

}  // namespace
