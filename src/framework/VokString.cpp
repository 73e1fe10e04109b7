#include "framework/VokString.h"

#include <cstring>
#include <utility>

#include "framework/VokTarnBase.h"

VokString::VokString(const char* text) noexcept {
  Take(text == nullptr ? std::string_view() : std::string_view(text));
}

VokString::VokString(std::string_view text) noexcept {
  Take(text);
}

VokString::VokString(const VokString& other) noexcept {
  Take(other.View());
  fValid &= other.fValid;
}

VokString::VokString(VokString&& other) noexcept
    : fText(std::exchange(other.fText, nullptr)), fLength(std::exchange(other.fLength, 0)), fValid(other.fValid) {}

VokString& VokString::operator=(const VokString& other) noexcept {
  if (this != &other) {
    *this = VokString(other);
  }
  return *this;
}

VokString& VokString::operator=(VokString&& other) noexcept {
  std::swap(fText, other.fText);
  std::swap(fLength, other.fLength);
  std::swap(fValid, other.fValid);
  return *this;
}

VokString::~VokString() {
  VokTarnBase::operator delete(fText);
}

void VokString::Take(std::string_view text) noexcept {
  if (text.empty()) {
    return;
  }
  fText = static_cast<char*>(VokTarnBase::operator new(text.size() + 1));
  if (fText == nullptr) {
    fValid = 0;
    return;
  }
  std::memcpy(fText, text.data(), text.size());
  fText[text.size()] = '\0';
  fLength = text.size();
}
