#include "tarn/ValueText.h"

#include <algorithm>
#include <charconv>
#include <locale>
#include <new>
#include <string_view>
#include <vector>

#include "base/range.h"
#include "framework/VokTarnInteger.h"
#include "tarn/Diagnostic.h"
#include "tarn/TextStream.h"

namespace tarn {
namespace {

constexpr std::string_view sBlanks = " \t\r\n\v\f";
constexpr std::string_view sDigits = "0123456789";

std::string_view Trim(std::string_view text) noexcept {
  const std::size_t first = text.find_first_not_of(sBlanks);
  return first == std::string_view::npos ? std::string_view()
                                         : text.substr(first, text.find_last_not_of(sBlanks) - first + 1);
}

std::string Print(const VokTarnAny& value) {
  TextWriter text;
  text.imbue(std::locale::classic());
  value.PrintOn(text);
  return text.str();
}

// What an integer type can hold: the ends of its undefined value. Nothing for other types.
std::optional<VokTarnRange> GetRange(const VokTarnAny& undefined) {
  if (undefined.IsDerivedFrom(VokTarnInteger::sIdent) == 0) {
    return std::nullopt;
  }
  const auto& integer = static_cast<const VokTarnInteger&>(undefined);
  return VokTarnRange{integer.GetLowerBound(), integer.GetUpperBound()};
}

// Refuses numbers that the type cannot hold before the type reads them: what a text form makes of such a number is
// its own affair, but it is not the number.
void CheckNumbers(const VokTarnRange& range, const std::string& text, std::size_t offset) {
  for (std::size_t first = text.find_first_of(sDigits); first != std::string::npos;) {
    const std::size_t end = std::min(text.find_first_not_of(sDigits, first), text.size());
    const std::size_t start = first > 0 && text[first - 1] == '-' ? first - 1 : first;
    std::int64_t number = 0;
    const auto result = std::from_chars(text.data() + start, text.data() + end, number);
    if (result.ec != std::errc() || number < range.fLower || number > range.fUpper) {
      throw ModelError(offset + start, "number out of range: " + Quote(text.substr(start, end - start)) +
                                           " (integers go from " + std::to_string(range.fLower) + " to " +
                                           std::to_string(range.fUpper) + ")");
    }
    first = text.find_first_of(sDigits, end);
  }
}

// Throws when a bracket of the text has no partner.
void CheckBrackets(const std::string& text, std::size_t offset) {
  static constexpr std::string_view sOpening = "([{";
  static constexpr std::string_view sClosing = ")]}";
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (sOpening.find(text[i]) != std::string_view::npos) {
      open.push_back(i);
    }
    const std::size_t kind = sClosing.find(text[i]);
    if (kind == std::string_view::npos) {
      continue;
    }
    if (open.empty() || text[open.back()] != sOpening[kind]) {
      throw ModelError(offset + i, "this '" + std::string(1, text[i]) + "' closes nothing");
    }
    open.pop_back();
  }
  if (!open.empty()) {
    throw ModelError(offset + open.back(), "this '" + std::string(1, text[open.back()]) + "' is never closed");
  }
}

}  // namespace

bool IsConcrete(VokTarnType type) {
  return type->GetObjectSize() != 0;
}

ScratchValue::ScratchValue(VokTarnType type)
    : fType(type),
      fPlace(std::make_unique<std::max_align_t[]>(type->GetObjectSize() / sizeof(std::max_align_t) + 1)),
      fValue(static_cast<VokTarnAny*>(type->InitObject(fPlace.get()))) {
  if (fValue == nullptr) {
    throw std::bad_alloc();
  }
}

ScratchValue::~ScratchValue() {
  fType->DestroyObject(fValue);
}

std::optional<std::size_t> ScratchValue::Read(const std::string& text) {
  TextReader is(text);
  is.imbue(std::locale::classic());
  fValue->InputValue(is);
  if (is.fail()) {
    return std::nullopt;
  }
  is.clear();
  is >> std::ws;
  is.clear();
  return static_cast<std::size_t>(is.tellg());
}

namespace {

// The name of the first type that holds the whole domain, in quotes; empty when none does.
std::string FindHolder(std::span<const VokTarnType> types, const std::string& text) {
  for (const VokTarnType type : types) {
    if (!IsConcrete(type)) {
      continue;
    }
    ScratchValue value(type);
    const std::optional<std::size_t> read = value.Read(text);
    if (read && *read == text.size() && value.Get().IsUndefined() == 0) {
      return Quote(type->GetName().View());
    }
  }
  return {};
}

}  // namespace

void ReadDomain(ScratchValue& value, VokTarnType type, std::span<const VokTarnType> types, const std::string& text,
                std::size_t offset) {
  const std::string_view trimmed = Trim(text);
  if (trimmed.empty()) {
    return;
  }
  const std::string undefined = Print(value.Get());
  if (const std::optional<VokTarnRange> range = GetRange(value.Get())) {
    CheckNumbers(*range, text, offset);
  }
  const std::size_t start = offset + text.find_first_not_of(sBlanks);
  const std::string typeName = Quote(type->GetName().View());
  const std::optional<std::size_t> read = value.Read(text);
  if (!read) {
    CheckBrackets(text, offset);
    const std::string holder = FindHolder(types, text);
    throw ModelError(start, Quote(trimmed) + " is not a domain of type " + typeName +
                                (holder.empty() ? "" : "; type " + holder + " holds it"));
  }
  if (value.Get().IsUndefined() != 0 && trimmed != Trim(undefined)) {
    const std::string holder = FindHolder(types, text);
    throw ModelError(start, "the domain is too large for type " + typeName + "; use " +
                                (holder.empty() ? "another type" : "type " + holder) + ", or write '" +
                                std::string(Trim(undefined)) + "' for a domain without limits");
  }
  if (*read < text.size()) {
    CheckBrackets(text, offset);
    throw ModelError(offset + *read, "unexpected text behind the domain (is a ';' missing?)");
  }
}

bool ReadLiteral(ScratchValue& value, const std::string& text) {
  const std::optional<VokTarnRange> range = GetRange(value.Get());
  const std::optional<std::size_t> read = value.Read(text);
  if (!read || *read < text.size() || value.Get().GetCardinality() != 1) {
    return false;
  }
  std::int64_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isNumber = result.ptr == text.data() + text.size();
  if (!isNumber || !range) {
    return true;
  }
  const VokLong taken = static_cast<const VokTarnInteger&>(value.Get()).GetLowerBound();
  return result.ec == std::errc() && number == taken && number >= range->fLower && number <= range->fUpper;
}

}  // namespace tarn
