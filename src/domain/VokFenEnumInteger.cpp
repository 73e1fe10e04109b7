// Construction and state of the enumerated set.
#include "domain/VokFenEnumInteger.h"

#include <algorithm>
#include <cstring>
#include <typeinfo>

#include "domain/elements.h"
#include "numbers/SDError.h"

namespace {

constexpr unsigned kInitialSize = 20;
constexpr unsigned kGrowthStep = 20;

// The i-th 32-bit word of a list that need not be aligned.
VokLong WordAt(const void* list, unsigned i) noexcept {
  VokLong word;
  std::memcpy(&word, static_cast<const char*>(list) + std::size_t{i} * sizeof word, sizeof word);
  return word;
}

// The two classes that operands nearly always are of tell themselves apart by their table of virtual operations.
bool IsEnumerated(const VokTarnAny& value) {
  const std::type_info* const type = &typeid(value);
  return type == &typeid(VokFenEnumInteger) ||
         (type != &typeid(VokFenSingleInteger) && value.IsDerivedFrom(VokFenEnumInteger::sIdent) != 0);
}

}  // namespace

VokFenEnumInteger::VokFenEnumInteger() noexcept : fValues(kInitialSize, kGrowthStep, 0), fEmptyMeansAny(1) {}

VokFenEnumInteger::VokFenEnumInteger(VokStreamableInit init) noexcept
    : VokTarnInteger(init), fValues(kInitialSize, kGrowthStep, 0), fEmptyMeansAny(1) {}

VokFenEnumInteger::VokFenEnumInteger(const VokFenSingleInteger& s, int) noexcept
    : fValues(kInitialSize, kGrowthStep, 0), fEmptyMeansAny(0) {
  const VokLong v = s.GetExactValue();
  if (v == VokFenSingleInteger::sNC_INT_ANY) {
    fEmptyMeansAny = 1;
  } else if (v != VokFenSingleInteger::sNC_INT_NIL) {
    fValues.Add(ToElement(v));
  }
}

VokFenEnumInteger::VokFenEnumInteger(SubIntBase* borrowed) noexcept : fEmptyMeansAny(0) {
  if (*borrowed == VokFenSingleInteger::sNC_INT_ANY) {
    fEmptyMeansAny = 1;
  } else if (*borrowed != VokFenSingleInteger::sNC_INT_NIL) {
    fValues.BorrowElement(*borrowed);
  }
}

VokFenEnumInteger::OfSingle::OfSingle(const VokFenSingleInteger& single) noexcept
    : fElement(ToElement(single.GetExactValue())), fSet(&fElement) {}

VokFenEnumInteger::VokFenEnumInteger(const SubIntBase& v, int) noexcept
    : fValues(kInitialSize, kGrowthStep, 0), fEmptyMeansAny(1) {
  fValues.Add(v);
}

VokFenEnumInteger::VokFenEnumInteger(const void* list) noexcept
    : fValues(kInitialSize, kGrowthStep, 0), fEmptyMeansAny(0) {
  if (list == nullptr) {
    return;
  }
  for (VokULong left = VokToUnsigned(WordAt(list, 0)); left > 0; --left) {
    // Any takes nothing more, and a set that became Nil because memory was short must not be filled by halves.
    if (Insert(WordAt(list, left)) == 0 || fValues.IsEmpty() != 0) {
      return;
    }
  }
}

// A copy needs room for the members alone, however large the other set has been.
VokFenEnumInteger::VokFenEnumInteger(const VokFenEnumInteger& other) noexcept
    : VokTarnInteger(other),
      fValues(std::max(kInitialSize, other.fValues.GetSize()), kGrowthStep, 0),
      fEmptyMeansAny(other.fEmptyMeansAny) {
  fValues.AssignNumbers(other.fValues.GetNumbers(), other.fValues.GetSize());
}

VokFenEnumInteger& VokFenEnumInteger::operator=(const VokFenEnumInteger& other) noexcept {
  if (this != &other) {
    fValues.AssignNumbers(other.fValues.GetNumbers(), other.fValues.GetSize());
  }
  fEmptyMeansAny = other.fEmptyMeansAny;
  return *this;
}

VokFenEnumInteger& VokFenEnumInteger::operator=(const VokFenSingleInteger& s) noexcept {
  const VokLong v = s.GetExactValue();
  if (v == VokFenSingleInteger::sNC_INT_NIL) {
    SetNilValue();
  } else if (v == VokFenSingleInteger::sNC_INT_ANY) {
    SetNilValue();
    fValues.Add(ToElement(v));
  } else {
    SetUndefinedValue();
  }
  return *this;
}

VokFenEnumInteger::~VokFenEnumInteger() = default;

const VokFenEnumInteger* VokFenEnumInteger::CastToEnumInteger(const VokTarnAny* value) {
  return value != nullptr && IsEnumerated(*value) ? static_cast<const VokFenEnumInteger*>(value) : nullptr;
}

VokFenEnumInteger* VokFenEnumInteger::CastToEnumInteger(VokTarnAny* value) {
  return value != nullptr && IsEnumerated(*value) ? static_cast<VokFenEnumInteger*>(value) : nullptr;
}

int VokFenEnumInteger::SetNilValue() {
  fValues.Flush();
  fEmptyMeansAny = 0;
  return 1;
}

int VokFenEnumInteger::SetUndefinedValue() {
  fValues.Flush();
  fEmptyMeansAny = 1;
  return 1;
}

int VokFenEnumInteger::IsNil() const {
  return fValues.IsEmpty() != 0 && fEmptyMeansAny == 0 ? 1 : 0;
}

int VokFenEnumInteger::IsUndefined() const {
  return fValues.IsEmpty() != 0 && fEmptyMeansAny == 1 ? 1 : 0;
}

int VokFenEnumInteger::CheckErrorStatus() {
  if (SDCheckError() == 0) {
    return 0;
  }
  SetNilValue();
  SDClearError();
  return 1;
}

void VokFenEnumInteger::CheckValue() {}
