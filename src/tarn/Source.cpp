#include "tarn/Source.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>

#include "framework/VokTarnNetworkFile.h"
#include "tarn/Diagnostic.h"

namespace tarn {
namespace {

struct FileCloser {
  void operator()(std::FILE* file) const noexcept {
    if (file != stdin) {
      std::fclose(file);
    }
  }
};

// Offsets are kept in 32 bits by the parsed model.
constexpr std::size_t sMaxSize = std::numeric_limits<std::uint32_t>::max();

// How long a pipe may be silent before it is told.
constexpr std::chrono::milliseconds sPatience(1000);

// Waits until there is something to read, or all that wrote have gone.
void AwaitText(int pipe, const std::function<void()>& onWait) {
  using Clock = std::chrono::steady_clock;
  using std::chrono::milliseconds;
  const Clock::time_point end = Clock::now() + sPatience;
  pollfd text{pipe, POLLIN, 0};
  milliseconds left = sPatience;
  int ready = 0;
  // A signal, such as that of a timer, ends a wait early.
  while ((ready = poll(&text, 1, static_cast<int>(left.count()))) < 0 && errno == EINTR) {
    left = std::max(std::chrono::ceil<milliseconds>(end - Clock::now()), milliseconds(0));
  }
  if (ready == 0) {
    onWait();
    while (poll(&text, 1, -1) < 0 && errno == EINTR) {
    }
  }
}

// Null, with errno set, when the file cannot be opened.
std::FILE* OpenFile(const std::string& path, const std::function<void()>& onWait) {
  // To open a pipe without a writer would block, and nobody would know what is being waited for.
  const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (file < 0) {
    return nullptr;
  }
  struct stat status {};
  if (fstat(file, &status) == 0 && S_ISFIFO(status.st_mode)) {
    AwaitText(file, onWait);
  }
  fcntl(file, F_SETFL, fcntl(file, F_GETFL) & ~O_NONBLOCK);
  return fdopen(file, "rb");
}

}  // namespace

Source Source::ReadFile(const std::string& path, const std::function<void()>& onWait) {
  const std::string name = path == "-" ? "standard input" : MakePrintable(path);
  const std::unique_ptr<std::FILE, FileCloser> file(path == "-" ? stdin : OpenFile(path, onWait));
  if (file == nullptr) {
    ThrowSystemError(errno, name + ": error: cannot open the file");
  }
  std::string text;
  char buffer[1 << 16];
  std::size_t got = 0;
  while ((got = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) {
    // Looked for chunk by chunk, so that an endless stream of zero bytes ends here.
    const char* zero = static_cast<const char*>(std::memchr(buffer, 0, got));
    text.append(buffer, got);
    if (zero != nullptr && !VokTarnNetworkFile::IsNetworkFile(text)) {
      const std::size_t offset = text.size() - got + static_cast<std::size_t>(zero - buffer);
      const Source source(name, std::move(text));
      throw ProgramError(FormatDiagnostic(source, ModelError(offset, "a zero byte: this is not a model text")));
    }
    if (text.size() > sMaxSize) {
      throw ProgramError(name + ": error: the file is too large");
    }
  }
  if (std::ferror(file.get()) != 0) {
    ThrowSystemError(errno, name + ": error: cannot read the file");
  }
  return Source(name, std::move(text));
}

Source::Place Source::Locate(std::size_t offset) const noexcept {
  const std::string_view before = std::string_view(fText).substr(0, offset);
  const std::size_t newline = before.rfind('\n');
  const std::size_t start = newline == std::string_view::npos ? 0 : newline + 1;
  const auto isFirstByte = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
  const std::string_view inLine = before.substr(start);
  return {fFirstLine + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')),
          1 + static_cast<std::size_t>(std::count_if(inLine.begin(), inLine.end(), isFirstByte)), start};
}

}  // namespace tarn
