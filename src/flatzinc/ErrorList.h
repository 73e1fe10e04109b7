#pragma once

#include <cstdint>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fzn {

// A mistake after which a text cannot be read on; what() is the whole message: "FILE:LINE: ...".
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What a text asks for that is not supported, collected to be told all at once.
class ErrorList {
 public:
  // `file` is the name to be shown.
  explicit ErrorList(std::string file) : fFile(std::move(file)) {}

  void Add(std::uint32_t line, const std::string& message);
  // A constraint that nobody knows, or not with so many arguments: told for its first place only.
  void AddUnsupported(std::uint32_t line, std::string_view name, std::size_t arguments);

  bool IsEmpty() const noexcept { return fErrors.empty(); }
  // A line for each, ordered by their lines in the text.
  std::string GetText() const;
  // "FILE:LINE: message".
  std::string Format(std::uint32_t line, const std::string& message) const;

 private:
  std::string fFile;
  std::vector<std::pair<std::uint32_t, std::string>> fErrors;
  std::set<std::pair<std::string, std::size_t>, std::less<>> fUnsupported;
};

}  // namespace fzn
