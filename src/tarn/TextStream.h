#pragma once

#include <sstream>
#include <string>

namespace tarn {

// Streams to and from a text that throw std::bad_alloc where those of the standard library would only note that they
// have failed, and leave a text cut short.
class TextWriter : public std::ostringstream {
 public:
  TextWriter() { exceptions(std::ios::badbit); }
};

class TextReader : public std::istringstream {
 public:
  explicit TextReader(const std::string& text) : std::istringstream(text) { exceptions(std::ios::badbit); }
};

}  // namespace tarn
