#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace tarn {

// A new file beside the one that it is to become, removed when it does not: whoever reads the name sees the old file
// or the whole new one.
//
// Errors  Throws ProgramError.
class NewFile {
 public:
  // `path` must name a regular file or nothing: a new name would take the place of a device or a pipe instead of
  // writing to it.
  explicit NewFile(const std::string& path);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile();

  void Write(std::string_view bytes);
  // For others to write to.
  int GetDescriptor() const { return fileno(fFile); }
  // Gives the file its name. On the disk before it replaces what had the name.
  void Finish();

 private:
  void Check(bool isDone) const;

  std::string fPath;
  std::string fTemporary;
  std::FILE* fFile = nullptr;
  bool fIsDone = false;
};

}  // namespace tarn
