#include "tarn/Source.h"

#include <algorithm>
#include <cerrno>
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

}  // namespace

Source Source::ReadFile(const std::string& path) {
  const std::string name = path == "-" ? "standard input" : MakePrintable(path);
  const std::unique_ptr<std::FILE, FileCloser> file(path == "-" ? stdin : std::fopen(path.c_str(), "rb"));
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
