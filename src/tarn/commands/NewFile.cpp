#include "tarn/commands/NewFile.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "tarn/Diagnostic.h"

namespace tarn {

NewFile::NewFile(const std::string& path) : fPath(path), fTemporary(path + ".new-" + std::to_string(getpid())) {
  std::error_code unknown;
  if (std::filesystem::exists(path, unknown) && !std::filesystem::is_regular_file(path, unknown)) {
    throw ProgramError(MakePrintable(path) + ": error: cannot write the file: it is not a regular file");
  }
  fFile = std::fopen(fTemporary.c_str(), "wbxe");
  Check(fFile != nullptr);
}

NewFile::~NewFile() {
  if (fFile != nullptr) {
    std::fclose(fFile);
  }
  if (!fIsDone) {
    unlink(fTemporary.c_str());
  }
}

void NewFile::Write(std::string_view bytes) {
  Check(std::fwrite(bytes.data(), 1, bytes.size(), fFile) == bytes.size());
}

void NewFile::Finish() {
  Check(std::fflush(fFile) == 0 && fsync(fileno(fFile)) == 0);
  std::FILE* const file = fFile;
  fFile = nullptr;
  Check(std::fclose(file) == 0);
  Check(std::rename(fTemporary.c_str(), fPath.c_str()) == 0);
  fIsDone = true;
}

void NewFile::Check(bool isDone) const {
  if (!isDone) {
    ThrowSystemError(errno, MakePrintable(fPath) + ": error: cannot write the file");
  }
}

}  // namespace tarn
