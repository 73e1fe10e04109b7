#pragma once

#include <chrono>
#include <iosfwd>
#include <string>

namespace tarn {

// One line of the terminal behind the standard error, written over and over. Without such a terminal it does nothing.
//
// Whoever writes to the terminal calls Clear before.
class ProgressLine {
 public:
  ProgressLine(bool isWanted, std::ostream& err);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  // Whether it is time for a new text: not in the first second, and five times a second at most.
  bool IsDue();
  // Shows as much of the text as fits the terminal.
  void Show(const std::string& text);
  void Clear();

 private:
  std::ostream& fErr;
  std::chrono::duration<double> fNext{1.0};
  bool fIsOn;
  bool fIsShown = false;
};

}  // namespace tarn
