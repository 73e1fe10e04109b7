#include "tarn/Lexer.h"

#include <algorithm>

#include "tarn/Diagnostic.h"

namespace tarn {
namespace {

constexpr std::string_view sByteOrderMark = "\xEF\xBB\xBF";

bool IsDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

bool IsSpace(char c) noexcept {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

std::string DescribeByte(char c) {
  static constexpr char sDigits[] = "0123456789ABCDEF";
  const auto byte = static_cast<unsigned char>(c);
  if (byte > 0x20 && byte < 0x7F) {
    return std::string("unexpected character '") + c + "'";
  }
  return std::string("unexpected byte 0x") + sDigits[byte >> 4U] + sDigits[byte & 15U];
}

}  // namespace

bool IsNameStart(char c) noexcept {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

bool IsNamePart(char c) noexcept {
  return IsNameStart(c) || IsDigit(c);
}

Lexer::Lexer(const Source& source, const Vocabulary& vocabulary) : fText(source.GetText()), fVocabulary(&vocabulary) {
  if (fText.starts_with(sByteOrderMark)) {
    fOffset = sByteOrderMark.size();
  }
}

void Lexer::SkipSpace() noexcept {
  while (fOffset < fText.size()) {
    if (IsSpace(fText[fOffset])) {
      ++fOffset;
    } else if (IsComment(fOffset)) {
      fOffset = std::min(fText.find('\n', fOffset), fText.size());
    } else {
      return;
    }
  }
}

Token Lexer::Take(Token::Kind kind, std::size_t length) noexcept {
  const Token token{kind, fText.substr(fOffset, length), fOffset};
  fOffset += length;
  return token;
}

Token Lexer::Next() {
  SkipSpace();
  const std::string_view rest = fText.substr(fOffset);
  if (rest.empty()) {
    return Take(Token::Kind::End, 0);
  }
  const auto wordEnd = static_cast<std::size_t>(std::ranges::find_if_not(rest, IsNamePart) - rest.begin());
  if (IsNameStart(rest[0])) {
    return Take(Token::Kind::Word, wordEnd);
  }
  if (IsDigit(rest[0])) {
    const std::string_view word = rest.substr(0, wordEnd);
    if (!std::ranges::all_of(word, IsDigit)) {
      throw ModelError(fOffset, Quote(word) + " is neither a number nor a name");
    }
    return Take(Token::Kind::Number, wordEnd);
  }
  const std::size_t length = fVocabulary->MatchSymbol(rest);
  if (length == 0) {
    throw ModelError(fOffset, DescribeByte(rest[0]));
  }
  return Take(Token::Kind::Symbol, length);
}

bool Lexer::IsWordAhead() noexcept {
  SkipSpace();
  return fOffset < fText.size() && IsNameStart(fText[fOffset]);
}

std::string Lexer::ReadRaw() {
  const std::size_t start = fOffset;
  std::string raw;
  while (fOffset < fText.size() && fText[fOffset] != ';') {
    if (IsComment(fOffset)) {
      const std::size_t end = std::min(fText.find('\n', fOffset), fText.size());
      raw.append(end - fOffset, ' ');
      fOffset = end;
    } else {
      raw += fText[fOffset++];
    }
  }
  if (fOffset == fText.size()) {
    // The place of the missing mark is behind the last text, not at the end of the file.
    const std::size_t last = raw.find_last_not_of(" \t\r\n\v\f");
    throw ModelError(last == std::string::npos ? start : start + last + 1, "missing ';' at the end of the statement");
  }
  return raw;
}

}  // namespace tarn
