#include "tarn/commands/Picture.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <locale>
#include <memory>
#include <ostream>

#include "framework/VokTarnInteger.h"
#include "tarn/Diagnostic.h"
#include "tarn/TextStream.h"
#include "tarn/commands/NewFile.h"

namespace tarn {
namespace {

constexpr std::string_view sEllipsis = "\u2026";
constexpr const char* sProgram = "dot";

struct FileCloser {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

std::string RangeText(VokLong lower, VokLong upper) {
  std::string text = std::to_string(lower);
  if (lower != upper) {
    text += (lower == upper - 1 ? ", " : "..") + std::to_string(upper);
  }
  return text;
}

std::string ShortIntegers(const VokTarnInteger& value) {
  constexpr int sMaxRanges = 4;
  constexpr VokLong sMaxLength = 2000;  // a longer range among others is shown in pieces, not walked to its end
  const VokLong upper = value.GetUpperBound();
  VokLong first = value.GetLowerBound();
  constexpr std::int64_t sMaxCardinality = std::numeric_limits<int>::max();  // stands for any greater one
  if (std::min(static_cast<std::int64_t>(upper) - first + 1, sMaxCardinality) == value.GetCardinality()) {
    return RangeText(first, upper);
  }
  std::string text;
  for (int range = 0; range < sMaxRanges; ++range) {
    VokLong last = first;
    while (last < upper && last - first < sMaxLength && value.IsPossible(last + 1)) {
      ++last;
    }
    text += RangeText(first, last);
    if (last == upper) {
      return text;
    }
    text += ", ";
    first = value.GetNextExactValue(last);
  }
  return text + (first == upper ? "" : std::string(sEllipsis) + ", ") + std::to_string(upper);
}

// Lets graphviz make a picture of the kind `format` from `dot` on the descriptor `to`. No shell sees any of it.
void RunGraphviz(const std::string& dot, const std::string& format, int to) {
  // A file and not a pipe: a program that ends before it has read all is then no special case.
  const std::unique_ptr<std::FILE, FileCloser> input(std::tmpfile());
  if (input == nullptr || std::fwrite(dot.data(), 1, dot.size(), input.get()) != dot.size() ||
      std::fflush(input.get()) != 0 || lseek(fileno(input.get()), 0, SEEK_SET) != 0) {
    ThrowSystemError(errno, "tarn: error: cannot write a temporary file");
  }
  std::string name = sProgram;
  std::string quiet = "-q";
  std::string option = "-T" + format;
  const std::array<char*, 4> arguments{name.data(), quiet.data(), option.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  pid_t child = 0;
  int error = posix_spawn_file_actions_adddup2(&actions, fileno(input.get()), STDIN_FILENO);
  error = error != 0 ? error : posix_spawn_file_actions_adddup2(&actions, to, STDOUT_FILENO);
  error = error != 0 ? error : posix_spawnp(&child, sProgram, &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error == ENOENT) {
    throw ProgramError(
        "tarn: error: the program 'dot' was not found; it is in the Debian package graphviz (a name that ends in .dot "
        "needs no program)");
  }
  if (error != 0) {
    ThrowSystemError(error, "tarn: error: cannot run 'dot'");
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    throw ProgramError("tarn: error: 'dot' failed; there is no picture");
  }
}

}  // namespace

std::string DotText(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '\n') {
      result += "\\n";
      continue;
    }
    if (c == '"' || c == '\\') {
      result += '\\';
    }
    result += c;
  }
  return result + '"';
}

std::string ShortText(std::string_view text, std::size_t limit) {
  std::string line;
  for (const char c : text) {
    const bool isBlank = std::string_view(" \t\r\n\v\f").find(c) != std::string_view::npos;
    if (!isBlank) {
      line += c;
    } else if (!line.empty() && line.back() != ' ') {
      line += ' ';
    }
  }
  line = MakePrintable(line);
  std::size_t characters = 0;
  std::size_t cut = 0;  // where the last character that stays with an ellipsis behind it ends
  for (std::size_t i = 0; i < line.size(); ++i) {
    const bool isFirstByte = (static_cast<unsigned char>(line[i]) & 0xC0U) != 0x80U;
    characters += isFirstByte ? 1 : 0;
    cut = isFirstByte && characters == limit ? i : cut;
  }
  return characters <= limit ? line : line.substr(0, cut) + std::string(sEllipsis);
}

std::string ShortDomain(const VokTarnAny& value) {
  constexpr std::size_t sLimit = 30;
  if (value.IsNil() != 0) {
    return "no value";
  }
  if (value.IsUndefined() != 0) {
    return "any value";
  }
  if (value.IsDerivedFrom(VokTarnInteger::sIdent) != 0) {
    return ShortIntegers(static_cast<const VokTarnInteger&>(value));
  }
  TextWriter text;
  text.imbue(std::locale::classic());
  value.PrintOn(text);
  return ShortText(text.str(), sLimit);
}

void CheckPictureName(const std::string& path) {
  const std::string ending = std::filesystem::path(path).extension();
  if (!path.empty() && ending != ".dot" && ending != ".svg" && ending != ".png" && ending != ".pdf") {
    throw ProgramError(path + ": error: the name of a picture must end in .dot, .svg, .png or .pdf");
  }
}

void WritePicture(const std::string& dot, const std::string& path, std::ostream& out) {
  if (path.empty()) {
    out << dot;
    return;
  }
  const std::string format = std::filesystem::path(path).extension().string().substr(1);
  NewFile file(path);
  if (format == "dot") {
    file.Write(dot);
  } else {
    RunGraphviz(dot, format, file.GetDescriptor());
  }
  file.Finish();
}

}  // namespace tarn
