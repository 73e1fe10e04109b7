#pragma once

#include <cstddef>
#include <string_view>

#include "framework/VokTarnExport.h"

// An immutable-by-convention character string: the name of a module, a type or an operator.
//
// Ownership  Holds its own copy of the text.
// Errors     Throws nothing. When memory is short the string is empty and IsValid() is 0.
class VOKTARN_EXPORT VokString {
 public:
  VokString() noexcept = default;
  VokString(const char* text) noexcept;  // null counts as the empty text
  explicit VokString(std::string_view text) noexcept;
  VokString(const VokString& other) noexcept;
  VokString(VokString&& other) noexcept;
  VokString& operator=(const VokString& other) noexcept;
  VokString& operator=(VokString&& other) noexcept;
  ~VokString();

  int IsValid() const noexcept { return fValid; }
  bool IsEmpty() const noexcept { return fLength == 0; }
  const char* Text() const noexcept { return fText == nullptr ? "" : fText; }  // never null, terminated
  std::string_view View() const noexcept { return {Text(), fLength}; }

  friend bool operator==(const VokString& a, const VokString& b) noexcept { return a.View() == b.View(); }
  friend bool operator<(const VokString& a, const VokString& b) noexcept { return a.View() < b.View(); }

 private:
  void Take(std::string_view text) noexcept;

  char* fText = nullptr;
  std::size_t fLength = 0;
  int fValid = 1;
};
