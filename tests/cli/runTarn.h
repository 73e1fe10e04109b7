// Running the program on model texts.
#pragma once

#include <string>
#include <vector>

#include "support/RunProgram.h"

inline ProgramResult RunTarn(const std::vector<std::string>& arguments, const ProgramInput& input = {}) {
  return RunProgram(VOKTARN_BIN_DIR "/tarn", arguments, input);
}

// Runs a command on a model given through the standard input.
inline ProgramResult RunModel(const std::string& command, const std::string& model,
                              std::vector<std::string> options = {}) {
  options.insert(options.begin(), {command, "-"});
  return RunTarn(options, {model});
}

inline std::size_t CountText(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
    ++count;
  }
  return count;
}
