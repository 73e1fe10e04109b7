#include "framework/VokTarnModuleManager.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <system_error>

#include "framework/VokTarnMemoryWatch.h"
#include "framework/libraryFile.h"

namespace {

// Short enough for a string to hold without an allocation.
constexpr const char* kOutOfMemory = "out of memory";

using InitModuleFunction = int (*)(VokTarnModule*, VokTarnModuleManager*);

bool IsModuleName(std::string_view name) {
  const auto allowed = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
  };
  return !name.empty() && name.size() <= 64 && std::all_of(name.begin(), name.end(), allowed);
}

// The directory of the library that holds this function; empty when the loader cannot tell.
std::string FrameworkDirectory() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&FrameworkDirectory), &info) == 0 || info.dli_fname == nullptr) {
    return {};
  }
  std::error_code error;
  const std::filesystem::path path = std::filesystem::canonical(info.dli_fname, error);
  if (error == std::errc::not_enough_memory) {
    throw std::bad_alloc();
  }
  return error ? std::string() : path.parent_path().string();
}

// The library's own; the loader would also give that of a module which the library links.
InitModuleFunction FindInitModule(void* library) {
  void* const init = dlsym(library, "InitModule");
  link_map* own = nullptr;
  link_map* owner = nullptr;
  Dl_info info{};
  if (init == nullptr || dlinfo(library, RTLD_DI_LINKMAP, &own) != 0 ||
      dladdr1(init, &info, reinterpret_cast<void**>(&owner), RTLD_DL_LINKMAP) == 0 || own != owner) {
    return nullptr;
  }
  return reinterpret_cast<InitModuleFunction>(init);
}

std::string LoaderError() {
  const char* text = dlerror();
  return text == nullptr ? "unknown error of the loader" : text;
}

}  // namespace

namespace {

// Closes a library. As a member declared before the module it closes after the module's descriptors, whose code lives
// there, are gone.
struct LibraryHandle {
  LibraryHandle() = default;
  LibraryHandle(const LibraryHandle&) = delete;
  LibraryHandle& operator=(const LibraryHandle&) = delete;
  ~LibraryHandle() {
    if (fHandle != nullptr) {
      dlclose(fHandle);
    }
  }

  void* fHandle = nullptr;
};

struct OpenFile {
  // A pipe must not make the program wait, nor a terminal become its own.
  explicit OpenFile(const std::string& path)
      : fFile(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (fFile >= 0) {
      close(fFile);
    }
  }

  int fFile;
};

}  // namespace

struct VokTarnModuleManager::Loaded {
  explicit Loaded(const VokString& name) : fModule(name) {}

  LibraryHandle fLibrary;
  VokTarnModule fModule;
  bool fReady = false;
};

VokTarnModuleManager::VokTarnModuleManager() = default;

VokTarnModuleManager::~VokTarnModuleManager() {
  while (!fOrder.empty()) {
    const VokTarnModule* last = fOrder.back();
    fOrder.pop_back();
    std::erase_if(fLoaded, [last](const auto& loaded) { return &loaded->fModule == last; });
  }
}

int VokTarnModuleManager::AddSearchDirectory(const std::string& directory) {
  if (directory.empty() || directory.front() != '/') {
    return 0;
  }
  fDirectories.push_back(directory);
  return 1;
}

VokTarnModule* VokTarnModuleManager::OpenModule(const VokString& name) noexcept {
  const VokTarnMemoryWatch memory;
  VokTarnModule* module = nullptr;
  try {
    fError.clear();
    module = name.IsValid() != 0 ? Load(name) : nullptr;
  } catch (const std::exception&) {
    VokTarnBase::NoteAllocationFailure();
  }
  if (module == nullptr && (memory.HasSeenFailure() || name.IsValid() == 0)) {
    fError = kOutOfMemory;  // whatever came of it
  }
  return module;
}

VokTarnModule* VokTarnModuleManager::Fail(std::string message) {
  fError = std::move(message);
  return nullptr;
}

VokTarnModule* VokTarnModuleManager::Load(const VokString& name) {
  const VokTarnMemoryWatch memory;
  const std::string text(name.View());
  if (!IsModuleName(text)) {
    return Fail("a module name has 1 to 64 letters, digits and underscores");
  }
  for (const auto& loaded : fLoaded) {
    if (loaded->fModule.GetName() == name) {
      return loaded->fReady ? &loaded->fModule : Fail("module '" + text + "' depends on itself");
    }
  }
  const std::string path = FindFile(text);
  if (path.empty()) {
    return nullptr;
  }
  const std::string subject = "module '" + text + "' (" + path + ") ";
  auto entry = std::make_unique<Loaded>(name);
  errno = 0;
  entry->fLibrary.fHandle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (entry->fLibrary.fHandle == nullptr && errno == ENOMEM) {
    throw std::bad_alloc();
  }
  if (entry->fLibrary.fHandle == nullptr) {
    return Fail(subject + "cannot be loaded: " + LoaderError());
  }
  const InitModuleFunction init = FindInitModule(entry->fLibrary.fHandle);
  if (init == nullptr) {
    return Fail(subject + "has no function InitModule");
  }
  Loaded& loaded = *entry;
  fOrder.reserve(fLoaded.size() + 1);  // room for the modules that are being loaded too
  fLoaded.push_back(std::move(entry));
  const auto forget = [this, &loaded] {
    std::erase_if(fLoaded, [&loaded](const auto& other) { return other.get() == &loaded; });
  };
  try {
    // A module need not report that memory was too short for some of its descriptors, and its name may be cut short.
    if (init(&loaded.fModule, this) != 0 && !memory.HasSeenFailure()) {
      fOrder.push_back(&loaded.fModule);
      loaded.fReady = true;
    }
  } catch (...) {
    forget();
    throw;
  }
  if (!loaded.fReady) {
    const std::string reason = std::move(fError);
    forget();
    return Fail(subject + "did not start: " + (reason.empty() ? "its function InitModule reported a failure" : reason));
  }
  fError.clear();
  return &loaded.fModule;
}

std::string VokTarnModuleManager::FindFile(const std::string& name) {
  std::vector<std::string> directories = fDirectories;
  if (const char* variable = std::getenv("VOKTARN_MODULE_PATH"); variable != nullptr) {
    std::string_view rest = variable;
    while (!rest.empty()) {
      const std::size_t end = std::min(rest.find(':'), rest.size());
      if (end != 0 && rest.front() == '/') {
        directories.emplace_back(rest.substr(0, end));
      }
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
  }
  if (std::string own = FrameworkDirectory(); !own.empty()) {
    directories.push_back(std::move(own));
  }
  std::string searched;
  for (const std::string& directory : directories) {
    std::string path = directory + "/lib" + name + ".so";
    const OpenFile file(path);
    if (file.fFile >= 0 || (errno != ENOENT && errno != ENOTDIR)) {
      const std::string fault = file.fFile >= 0 ? VokFindFaultOfLibrary(file.fFile)
                                                : "cannot be opened: " + std::generic_category().message(errno);
      if (!fault.empty()) {
        Fail("module '" + name + "' (" + path + ") " + fault);
        return {};
      }
      return path;
    }
    searched += (searched.empty() ? "" : ", ") + directory;
  }
  Fail("module '" + name + "' not found: no lib" + name + ".so in " + searched);
  return {};
}
