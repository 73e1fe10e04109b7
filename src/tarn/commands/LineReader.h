#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// How the beginning of a line may go on.
struct Completion {
  std::size_t fStart = 0;                // where the unfinished word stands in the line
  std::vector<std::string> fCandidates;  // what may stand there, all beginning as the word does
};

// Where the lines of a session come from.
class LineReader {
 public:
  using Completer = std::function<Completion(std::string_view)>;

  LineReader() = default;
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;
  virtual ~LineReader() = default;

  // The next line, without its end. Nothing at the end of the input, and when a signal has interrupted the reading.
  virtual std::optional<std::string> Read(const std::string& prompt) = 0;
};

// Reads the standard input as it comes and shows no prompt.
std::unique_ptr<LineReader> MakePlainReader();

// Edits lines on the terminal, with completion by Tab and a history that outlives the program, where it can be written.
std::unique_ptr<LineReader> MakeTerminalReader(LineReader::Completer completer);

}  // namespace tarn
