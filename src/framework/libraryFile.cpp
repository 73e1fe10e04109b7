#include "framework/libraryFile.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <system_error>

namespace {

using Header = ElfW(Ehdr);
using Segment = ElfW(Phdr);

// False when the file ends before, or cannot be read: errno is then 0 or says why.
bool ReadAt(int file, std::uint64_t offset, void* place, std::size_t size) {
  errno = 0;
  return pread(file, place, size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
}

std::string ReadFault() {
  return errno == 0 ? "is cut off" : "cannot be read: " + std::generic_category().message(errno);
}

// The header of the library or program that holds this function: it says what this machine runs.
const Header& OwnHeader() {
  Dl_info info{};
  dladdr(reinterpret_cast<void*>(&OwnHeader), &info);
  return *static_cast<const Header*>(info.dli_fbase);
}

bool IsForThisMachine(const Header& header) {
  const Header& own = OwnHeader();
  return header.e_ident[EI_CLASS] == own.e_ident[EI_CLASS] && header.e_ident[EI_DATA] == own.e_ident[EI_DATA] &&
         header.e_machine == own.e_machine;
}

bool IsWithin(std::uint64_t offset, std::uint64_t length, std::uint64_t size) {
  return offset <= size && length <= size - offset;
}

}  // namespace

std::string VokFindFaultOfLibrary(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) {
    return "is not a regular file";
  }
  const auto size = static_cast<std::uint64_t>(status.st_size);
  // The mark and what follows up to the machine are the same for every class; the rest is read for this machine only.
  Header header{};
  if (!ReadAt(file, 0, header.e_ident, SELFMAG)) {
    return errno == 0 ? "is not a shared library" : ReadFault();
  }
  if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) {
    return "is not a shared library";
  }
  if (!ReadAt(file, 0, &header, sizeof header)) {
    return ReadFault();
  }
  if (!IsForThisMachine(header)) {
    return "is a library for another kind of machine";
  }
  if (header.e_type != ET_DYN || header.e_phentsize != sizeof(Segment)) {
    return "is not a shared library";
  }
  if (!IsWithin(header.e_phoff, std::uint64_t{header.e_phnum} * sizeof(Segment), size)) {
    return "is cut off";
  }
  for (unsigned i = 0; i < header.e_phnum; ++i) {
    Segment segment{};
    if (!ReadAt(file, header.e_phoff + std::uint64_t{i} * sizeof segment, &segment, sizeof segment)) {
      return ReadFault();
    }
    if (!IsWithin(segment.p_offset, segment.p_filesz, size)) {
      return "is cut off";
    }
  }
  return {};
}
