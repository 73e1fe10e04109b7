#include "tarn/OutputFile.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "tarn/Diagnostic.h"

namespace tarn {
namespace {

// A new file beside the one that it is to become, removed when it does not.
class NewFile {
 public:
  explicit NewFile(const std::string& path)
      : fPath(path),
        fTemporary(path + ".new-" + std::to_string(getpid())),
        fFile(std::fopen(fTemporary.c_str(), "wbx")) {
    Check(fFile != nullptr);
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile() {
    if (fFile != nullptr) {
      std::fclose(fFile);
    }
    if (!fIsDone) {
      unlink(fTemporary.c_str());
    }
  }

  // Gives the file these bytes and its name. On the disk before it replaces what had the name.
  void Finish(std::string_view bytes) {
    Check(std::fwrite(bytes.data(), 1, bytes.size(), fFile) == bytes.size());
    Check(std::fflush(fFile) == 0 && fsync(fileno(fFile)) == 0);
    std::FILE* const file = fFile;
    fFile = nullptr;
    Check(std::fclose(file) == 0);
    Check(std::rename(fTemporary.c_str(), fPath.c_str()) == 0);
    fIsDone = true;
  }

 private:
  void Check(bool isDone) const {
    if (!isDone) {
      throw ProgramError(MakePrintable(fPath) + ": error: cannot write the file: " + std::strerror(errno));
    }
  }

  std::string fPath;
  std::string fTemporary;
  std::FILE* fFile;
  bool fIsDone = false;
};

}  // namespace

void WriteFile(const std::string& path, std::string_view bytes) {
  // A new name would take the place of a device or a pipe instead of writing to it.
  std::error_code unknown;
  if (std::filesystem::exists(path, unknown) && !std::filesystem::is_regular_file(path, unknown)) {
    throw ProgramError(MakePrintable(path) + ": error: cannot write the file: it is not a regular file");
  }
  NewFile(path).Finish(bytes);
}

}  // namespace tarn
