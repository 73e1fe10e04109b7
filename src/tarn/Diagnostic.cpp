#include "tarn/Diagnostic.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

namespace tarn {
namespace {

// How much of a source line is shown on either side of the place.
constexpr std::size_t sShownBytes = 60;

unsigned char Byte(char c) noexcept {
  return static_cast<unsigned char>(c);
}

bool IsContinuation(char c) noexcept {
  return (Byte(c) & 0xC0U) == 0x80U;
}

// The length of the well-formed UTF-8 sequence of a printable character at the start of `text`, or 0.
std::size_t PrintableLength(std::string_view text) noexcept {
  const unsigned char first = Byte(text[0]);
  if (first < 0x80) {
    return first == '\t' || (first >= 0x20 && first != 0x7F) ? 1 : 0;
  }
  const std::size_t length = first >= 0xF5 ? 0 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 0;
  if (length == 0 || text.size() < length) {
    return 0;
  }
  for (std::size_t i = 1; i < length; ++i) {
    if (!IsContinuation(text[i])) {
      return 0;
    }
  }
  const unsigned char second = Byte(text[1]);
  const bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
  const bool surrogateOrBeyond = (first == 0xED && second >= 0xA0) || (first == 0xF4 && second >= 0x90);
  const bool control = first == 0xC2 && second < 0xA0;
  return overlong || surrogateOrBeyond || control ? 0 : length;
}

}  // namespace

void ThrowSystemError(int error, const std::string& message) {
  if (error == ENOMEM) {
    throw std::bad_alloc();
  }
  throw ProgramError(message + ": " + std::strerror(error));
}

std::string Quote(std::string_view text) {
  std::string quoted(1, '\'');
  quoted += text.substr(0, sShownBytes);
  quoted += text.size() <= sShownBytes ? "'" : "...'";
  return quoted;
}

std::string MakePrintable(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = PrintableLength(text);
    if (length == 0) {
      result += '?';
      text.remove_prefix(1);
    } else {
      result += text.substr(0, length);
      text.remove_prefix(length);
    }
  }
  return result;
}

std::string FormatDiagnostic(const Source& source, const ModelError& error) {
  const std::string_view text = source.GetText();
  const std::size_t offset = std::min(error.GetOffset(), text.size());
  const Source::Place place = source.Locate(offset);
  std::string result = MakePrintable(source.GetName()) + ":" + std::to_string(place.fLine) + ":" +
                       std::to_string(place.fColumn) + ": error: " + MakePrintable(error.what());

  std::size_t first = place.fLineOffset;
  std::size_t last = std::min(text.find('\n', offset), text.size());
  if (last > offset && text[last - 1] == '\r') {
    --last;
  }
  std::string head;
  std::string tail;
  if (offset - first > sShownBytes) {
    first = offset - sShownBytes;
    while (first < offset && IsContinuation(text[first])) {
      ++first;
    }
    head = "...";
  }
  if (last - offset > sShownBytes) {
    last = offset + sShownBytes;
    while (last > offset && IsContinuation(text[last])) {
      --last;
    }
    tail = "...";
  }
  const std::string before = head + MakePrintable(text.substr(first, offset - first));
  result += "\n" + before + MakePrintable(text.substr(offset, last - offset)) + tail + "\n";
  // Tabs are repeated, so that the caret stands right whatever the width of a tab.
  for (const char c : before) {
    if (!IsContinuation(c)) {
      result += c == '\t' ? '\t' : ' ';
    }
  }
  result += '^';
  for (const std::string& note : error.GetNotes()) {
    result += "\n  " + MakePrintable(note);
  }
  return result;
}

}  // namespace tarn
