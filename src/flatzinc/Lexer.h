#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "flatzinc/ErrorList.h"

namespace fzn {

struct Token {
  enum class Kind : std::uint8_t {
    End,
    Name,
    Integer,
    Float,
    Text,   // a string; fText is what stands between the quotes
    Symbol  // one of ( ) [ ] { } , ; : = :: ..
  };

  Kind fKind;
  std::string_view fText;
  std::int64_t fNumber;  // of an Integer; of a Float, its bits

  bool Is(std::string_view symbol) const noexcept { return fKind == Kind::Symbol && fText == symbol; }
  bool IsName(std::string_view name) const noexcept { return fKind == Kind::Name && fText == name; }
};

// Takes a text apart, token by token. Throws InputError for what is no token.
class Lexer {
 public:
  Lexer(std::string_view text, const ErrorList& errors)
      : fAt(text.data()), fEnd(text.data() + text.size()), fErrors(errors) {}

  Token Next();
  // Of the token that Next gave last.
  std::uint32_t GetLine() const noexcept { return fLine; }
  [[noreturn]] void Fail(const std::string& message) const;

 private:
  bool Has(char c, std::size_t offset = 0) const noexcept {
    return static_cast<std::size_t>(fEnd - fAt) > offset && fAt[offset] == c;
  }
  bool HasDigit(std::size_t offset) const noexcept {
    return static_cast<std::size_t>(fEnd - fAt) > offset && fAt[offset] >= '0' && fAt[offset] <= '9';
  }
  void SkipBlanks();
  Token ReadName();
  Token ReadNumber();
  Token ReadText();
  Token ReadSymbol();

  const char* fAt;
  const char* fEnd;
  std::uint32_t fLine = 1;
  const ErrorList& fErrors;
};

}  // namespace fzn
