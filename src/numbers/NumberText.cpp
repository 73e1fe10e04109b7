#include "numbers/NumberText.h"

#include <cstdint>
#include <istream>
#include <ostream>
#include <streambuf>

#include "numbers/SubIntBase.h"

namespace {

bool IsSpace(int c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool IsDigit(int c) {
  return c >= '0' && c <= '9';
}

bool IsWordCharacter(int c) {
  return IsDigit(c) || c == '_' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

void SkipSpace(std::streambuf& text) {
  while (IsSpace(text.sgetc())) {
    text.sbumpc();
  }
}

// Consumes `word` when it stands next as a whole, else nothing. Only what agreed with the word is put back, which
// is a single character, the one that every stream can take back, unless the text is a misspelt word.
bool TakeWord(std::streambuf& text, const char* word) {
  int taken = 0;
  while (word[taken] != '\0' && text.sgetc() == word[taken]) {
    text.sbumpc();
    ++taken;
  }
  if (word[taken] == '\0' && !IsWordCharacter(text.sgetc())) {
    return true;
  }
  while (taken > 0) {
    --taken;
    text.sputbackc(word[taken]);
  }
  return false;
}

int TakeSignedWord(std::streambuf& text, char sign) {
  text.sbumpc();
  if (TakeWord(text, "Max")) {
    return sign == '-' ? 6 : 7;
  }
  text.sputbackc(sign);
  return 0;
}

int TakeCode(std::streambuf& text) {
  SkipSpace(text);
  switch (text.sgetc()) {
    case '[':
      text.sbumpc();
      return 1;
    case '{':
      text.sbumpc();
      return 8;
    case 'M':
      return TakeWord(text, "Min") ? 2 : TakeWord(text, "Max") ? 3 : 0;
    case 'A':
      return TakeWord(text, "Any") ? 4 : 0;
    case 'N':
      return TakeWord(text, "Nil") ? 5 : 0;
    case '-':
      return TakeSignedWord(text, '-');
    case '+':
      return TakeSignedWord(text, '+');
    default:
      return 0;
  }
}

// Reads a number. Every digit is consumed, also of a number that is too long. 0 when there is none in 32 bits.
bool TakeNumber(std::streambuf& text, VokLong& v) {
  const int sign = text.sgetc();
  if (sign == '-' || sign == '+') {
    text.sbumpc();
  }
  constexpr std::int64_t limit = std::int64_t{1} << 31;
  std::int64_t magnitude = 0;
  bool found = false;
  for (int c = text.sgetc(); IsDigit(c); c = text.snextc()) {
    found = true;
    if (magnitude <= limit) {
      magnitude = magnitude * 10 + (c - '0');
    }
  }
  const std::int64_t value = sign == '-' ? -magnitude : magnitude;
  if (!found || value < -limit || value >= limit) {
    return false;
  }
  v = static_cast<VokLong>(value);
  return true;
}

}  // namespace

int CheckNumString(std::istream& is) {
  std::streambuf* const text = is.rdbuf();
  return text == nullptr ? 0 : TakeCode(*text);
}

VokLong GetSIValue(std::istream& is) {
  std::streambuf* const text = is.rdbuf();
  VokLong v = 0;
  if (text != nullptr) {
    switch (TakeCode(*text)) {
      case 0:
        if (TakeNumber(*text, v)) {
          return v;
        }
        break;
      case 2:
      case 6:
        return SubIntBase::sMin;
      case 3:
      case 7:
        return SubIntBase::sMax;
      default:
        break;
    }
  }
  is.setstate(std::ios_base::failbit);
  return 0;
}

void PrintSIValue(std::ostream& os, VokLong v) {
  if (v >= SubIntBase::sMax) {
    os << "Max";
  } else if (v <= SubIntBase::sMin) {
    os << "Min";
  } else {
    os << v;
  }
}
