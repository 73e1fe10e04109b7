#pragma once

#include <memory>
#include <string>
#include <vector>

#include "framework/VokTarnModule.h"

// Finds, loads and keeps modules.
//
// A module NAME is the shared library lib<NAME>.so on the search path: the directories that were added, in
// order, then those of the environment variable VOKTARN_MODULE_PATH (separated by colons), then the directory that
// holds the framework library. Relative and empty directories are ignored, so that the working directory is
// never searched by accident. The library's function `InitModule` is called once; when it returns 0 the
// module is not kept.
//
// Files      The first directory that has the file decides. The file is checked before it is loaded (libraryFile.h), so
//            that one that is cut off, of another machine or no library gives an error and not a signal. It is loaded
//            by its path, since what it links is looked for beside it; a file that is exchanged after the check is not
//            noticed. Once loaded, its code is trusted: it runs with the rights of the program.
// Names      1 to 64 letters, digits and underscores.
// Lifetime   Modules stay loaded until the manager is destroyed, in reverse order of loading; every value and network
//            built from their descriptors must be gone by then.
// Errors     Throws nothing: OpenModule returns null and GetError() says why.
class VOKTARN_EXPORT VokTarnModuleManager {
 public:
  VokTarnModuleManager();
  VokTarnModuleManager(const VokTarnModuleManager&) = delete;
  VokTarnModuleManager& operator=(const VokTarnModuleManager&) = delete;
  ~VokTarnModuleManager();

  // Adds a directory, an absolute path, to the search path. Returns 1, or 0 when it is not absolute.
  int AddSearchDirectory(const std::string& directory);

  // Finds or loads a module. Null when it cannot; also while the same module is being loaded (a cycle).
  VokTarnModule* OpenModule(const VokString& name) noexcept;

  // Why the last OpenModule failed; empty after a success.
  const std::string& GetError() const noexcept { return fError; }

  // The modules that are loaded, dependencies first.
  const std::vector<VokTarnModule*>& GetModules() const noexcept { return fOrder; }

 private:
  struct Loaded;

  VokTarnModule* Load(const VokString& name);
  std::string FindFile(const std::string& name);  // empty, with the error set, when there is none
  VokTarnModule* Fail(std::string message);

  std::vector<std::string> fDirectories;
  std::vector<std::unique_ptr<Loaded>> fLoaded;
  std::vector<VokTarnModule*> fOrder;
  std::string fError;
};
