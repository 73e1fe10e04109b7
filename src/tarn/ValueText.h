#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "framework/VokTarnAny.h"
#include "framework/VokTarnOperators.h"

namespace tarn {

// Whether values of the type can be built.
bool IsConcrete(VokTarnType type);

// A value outside every network, to try texts on. Undefined at first. Throws std::bad_alloc.
class ScratchValue {
 public:
  explicit ScratchValue(VokTarnType type);
  ScratchValue(const ScratchValue&) = delete;
  ScratchValue& operator=(const ScratchValue&) = delete;
  ~ScratchValue();

  VokTarnAny& Get() noexcept { return *fValue; }
  const VokTarnAny& Get() const noexcept { return *fValue; }

  // Reads the type's text form. The answer is the number of bytes read, blanks behind the text included, or
  // nothing when the text cannot be read.
  std::optional<std::size_t> Read(const std::string& text);

 private:
  VokTarnType fType;
  std::unique_ptr<std::max_align_t[]> fPlace;
  VokTarnAny* fValue;
};

// Reads a domain as it stands in a declaration into an undefined value: nothing but blanks leaves the value undefined.
// `offset` is the place of the text. Throws ModelError, also for a domain that the type cannot hold: taken as undefined
// it would admit values that the model excludes. The error names the first of `types` that holds the domain, if any.
void ReadDomain(ScratchValue& value, VokTarnType type, std::span<const VokTarnType> types, const std::string& text,
                std::size_t offset);

// Whether the undefined `value` reads `text` wholly and as one value. A number must be the number that it spells.
bool ReadLiteral(ScratchValue& value, const std::string& text);

}  // namespace tarn
