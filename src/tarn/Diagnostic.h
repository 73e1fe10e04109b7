#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tarn/Source.h"

namespace tarn {

// A mistake at a place of the model text.
class ModelError : public std::runtime_error {
 public:
  // `notes` are further lines, such as the operators that do exist.
  ModelError(std::size_t offset, const std::string& message, std::vector<std::string> notes = {})
      : std::runtime_error(message), fOffset(offset), fNotes(std::move(notes)) {}

  std::size_t GetOffset() const noexcept { return fOffset; }
  const std::vector<std::string>& GetNotes() const noexcept { return fNotes; }

 private:
  std::size_t fOffset;
  std::vector<std::string> fNotes;
};

// A mistake that has no place in a model text; what() is the whole message to print.
class ProgramError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws ProgramError with the message and the C library's words for `error`; std::bad_alloc when memory was short.
[[noreturn]] void ThrowSystemError(int error, const std::string& message);

// "file:line:column: error: message", the source line, a line with a caret below the place, and the notes; every
// line ends with a newline but the last.
std::string FormatDiagnostic(const Source& source, const ModelError& error);

// The text between single quotes, cut when it is long.
std::string Quote(std::string_view text);

// The text with every control byte but the tab, and everything that is not UTF-8, replaced by '?', so that echoing
// a model to a terminal cannot do more than show it.
std::string MakePrintable(std::string_view text);

}  // namespace tarn
