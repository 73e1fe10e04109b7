#include "flatzinc/Lexer.h"

#include <bit>
#include <charconv>

namespace fzn {
namespace {

bool IsNameCharacter(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

}  // namespace

void Lexer::Fail(const std::string& message) const {
  throw InputError(fErrors.Format(fLine, message));
}

void Lexer::SkipBlanks() {
  for (; fAt != fEnd; ++fAt) {
    if (*fAt == '\n') {
      ++fLine;
    } else if (*fAt == '%') {
      while (fAt + 1 != fEnd && fAt[1] != '\n') {
        ++fAt;
      }
    } else if (*fAt != ' ' && *fAt != '\t' && *fAt != '\r') {
      return;
    }
  }
}

Token Lexer::Next() {
  SkipBlanks();
  if (fAt == fEnd) {
    return {Token::Kind::End, "", 0};
  }
  if (HasDigit(0) || (*fAt == '-' && HasDigit(1))) {
    return ReadNumber();
  }
  if (*fAt == '"') {
    return ReadText();
  }
  return IsNameCharacter(*fAt) ? ReadName() : ReadSymbol();
}

Token Lexer::ReadName() {
  const char* const first = fAt;
  while (fAt != fEnd && IsNameCharacter(*fAt)) {
    ++fAt;
  }
  return {Token::Kind::Name, {first, fAt}, 0};
}

Token Lexer::ReadNumber() {
  const char* const first = fAt;
  const bool isNegative = Has('-');
  fAt += isNegative ? 1 : 0;
  const int base = !Has('0') ? 10 : Has('x', 1) ? 16 : Has('o', 1) ? 8 : 10;
  fAt += base == 10 ? 0 : 2;
  std::uint64_t size = 0;
  const auto [end, error] = std::from_chars(fAt, fEnd, size, base);
  if (end == fAt) {
    Fail("expected a digit after '" + std::string(first, fAt) + "'");
  }
  fAt = end;
  if (base == 10 && ((Has('.') && HasDigit(1)) || Has('e') || Has('E'))) {
    double number = 0;
    fAt = std::from_chars(first, fEnd, number).ptr;
    return {Token::Kind::Float, {first, fAt}, std::bit_cast<std::int64_t>(number)};
  }
  constexpr std::uint64_t sLimit = std::uint64_t{1} << 63U;
  if (error != std::errc() || size > sLimit || (size == sLimit && !isNegative)) {
    Fail("expected an integer of 64 bits, not " + std::string(first, fAt));
  }
  return {Token::Kind::Integer, {first, fAt}, static_cast<std::int64_t>(isNegative ? 0 - size : size)};
}

Token Lexer::ReadText() {
  const char* const first = ++fAt;
  for (; fAt != fEnd && *fAt != '\n'; ++fAt) {
    if (*fAt == '"') {
      return {Token::Kind::Text, {first, fAt++}, 0};
    }
    fAt += *fAt == '\\' && fAt + 1 != fEnd && fAt[1] != '\n' ? 1 : 0;
  }
  Fail("expected the end of the string");
}

Token Lexer::ReadSymbol() {
  const std::size_t length = (Has(':') && Has(':', 1)) || (Has('.') && Has('.', 1)) ? 2 : 1;
  if (length == 1 && std::string_view("()[]{},;:=").find(*fAt) == std::string_view::npos) {
    Fail("expected a name, a number, a string or a symbol, not '" + std::string(1, *fAt) + "'");
  }
  const char* const first = fAt;
  fAt += length;
  return {Token::Kind::Symbol, {first, length}, 0};
}

}  // namespace fzn
