#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tarn/Source.h"
#include "tarn/Vocabulary.h"

namespace tarn {

// A piece of a model text.
struct Token {
  enum class Kind { End, Word, Number, Symbol };

  Kind fKind;
  std::string_view fText;
  std::size_t fOffset;

  bool Is(std::string_view text) const noexcept { return fKind != Kind::End && fText == text; }
};

bool IsNameStart(char c) noexcept;
bool IsNamePart(char c) noexcept;

// Cuts a model text into tokens, one at a time: the vocabulary may grow between two statements.
//
// Symbols are the longest ones that the vocabulary knows. White space and comments, from "//" to the end of the
// line, separate. Copying a lexer marks a place to come back to.
class Lexer {
 public:
  Lexer(const Source& source, const Vocabulary& vocabulary);

  // Throws ModelError for text that is no token.
  Token Next();
  // Everything up to the next ";", which stays to be read; comments are replaced by blanks, so that places within
  // the answer are places of the source. Throws ModelError when there is no further ";".
  std::string ReadRaw();

  // Whether the next token is a word. Throws nothing, whatever comes.
  bool IsWordAhead() noexcept;
  std::size_t GetOffset() const noexcept { return fOffset; }

 private:
  bool IsComment(std::size_t offset) const noexcept { return fText.substr(offset, 2) == "//"; }
  void SkipSpace() noexcept;
  Token Take(Token::Kind kind, std::size_t length) noexcept;

  std::string_view fText;
  const Vocabulary* fVocabulary;
  std::size_t fOffset = 0;
};

}  // namespace tarn
