#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace tarn {

// A model text, or the bytes of a saved network, and where they came from. Must outlive every token and position taken
// from it.
//
// Places in it are byte offsets; lines and columns are worked out only when a message needs them.
class Source {
 public:
  struct Place {
    std::size_t fLine;        // from the number of the first line
    std::size_t fColumn;      // from 1, in characters: a UTF-8 sequence and a tab count one each
    std::size_t fLineOffset;  // where the line starts
  };

  // `firstLine` is the number of the text's first line.
  Source(std::string name, std::string text, std::size_t firstLine = 1)
      : fName(std::move(name)), fText(std::move(text)), fFirstLine(firstLine) {}

  // Reads a whole file; "-" is the standard input. Throws ProgramError when it cannot be read or is
  // neither a text nor begins as a saved network does. `onWait` is called once when a pipe that `path` names has
  // nothing to read for a second: nobody may have opened it for writing.
  static Source ReadFile(
      const std::string& path, const std::function<void()>& onWait = [] {});

  const std::string& GetName() const noexcept { return fName; }
  std::string_view GetText() const noexcept { return fText; }
  Place Locate(std::size_t offset) const noexcept;

 private:
  std::string fName;
  std::string fText;
  std::size_t fFirstLine;
};

}  // namespace tarn
