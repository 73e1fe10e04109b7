#include "domain/VokSVectorImp_SubIntBase.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

#include "framework/VokTarnBase.h"

namespace {

// One below the largest count, so that the position "not found", capacity + 1, still fits.
constexpr std::uint64_t kMaxCapacity = std::numeric_limits<unsigned>::max() - 1;

// `count` elements of value 0; null when memory is short.
SubIntBase* AllocateElements(std::uint64_t count) noexcept {
  if (count > kMaxCapacity) {
    VokTarnBase::NoteAllocationFailure();
    return nullptr;
  }
  void* const memory = VokTarnBase::operator new(static_cast<std::size_t>(count) * sizeof(SubIntBase));
  if (memory == nullptr) {
    return nullptr;
  }
  SubIntBase* const elements = static_cast<SubIntBase*>(memory);
  std::uninitialized_value_construct_n(elements, static_cast<std::size_t>(count));
  return elements;
}

void ReleaseElements(SubIntBase* elements) noexcept {
  VokTarnBase::operator delete(elements);
}

void CopyElements(SubIntBase* to, const SubIntBase* from, unsigned count, int bitwise) noexcept {
  if (count == 0) {
    return;
  }
  if (bitwise != 0) {
    std::memcpy(static_cast<void*>(to), from, count * sizeof(SubIntBase));
  } else {
    std::copy_n(from, count, to);
  }
}

}  // namespace

VokSVectorImp_SubIntBase::VokSVectorImp_SubIntBase() noexcept
    : fData(nullptr), fCapacity(0), fSize(0), fDelta(0), fFactor(0.0), fValid(1), fBitwiseCopy(0) {}

VokSVectorImp_SubIntBase::VokSVectorImp_SubIntBase(unsigned initial, unsigned delta, int bitwise) noexcept
    : fData(AllocateElements(std::uint64_t{initial} + 1)),
      fCapacity(fData != nullptr ? initial + 1 : 0),
      fSize(0),
      fDelta(delta),
      fFactor(0.0),
      fValid(fData != nullptr ? 1 : 0),
      fBitwiseCopy(bitwise) {}

VokSVectorImp_SubIntBase::VokSVectorImp_SubIntBase(unsigned initial, double factor, int bitwise) noexcept
    : VokSVectorImp_SubIntBase(initial, 0U, bitwise) {
  fFactor = std::isfinite(factor) && factor > 0.0 ? factor : 1.0;
}

VokSVectorImp_SubIntBase::VokSVectorImp_SubIntBase(const VokSVectorImp_SubIntBase& other) noexcept
    : VokSVectorImp_SubIntBase() {
  *this = other;
}

VokSVectorImp_SubIntBase& VokSVectorImp_SubIntBase::operator=(const VokSVectorImp_SubIntBase& other) noexcept {
  if (this == &other) {
    return *this;
  }
  // The capacity is taken over, for searches tell it. Slots of the same number are used again, emptied as fresh ones.
  if (fCapacity != other.fCapacity) {
    ReleaseElements(fData);
    fData = other.fCapacity == 0 ? nullptr : AllocateElements(other.fCapacity);
    fCapacity = fData != nullptr ? other.fCapacity : 0;
  } else if (fData != nullptr) {
    std::fill(fData + other.fSize, fData + fCapacity, SubIntBase());
  }
  fValid = fCapacity == other.fCapacity ? 1 : 0;
  fSize = fValid != 0 && fData != nullptr ? other.fSize : 0;
  fDelta = other.fDelta;
  fFactor = other.fFactor;
  fBitwiseCopy = other.fBitwiseCopy;
  CopyElements(fData, other.fData, fSize, fBitwiseCopy);
  return *this;
}

VokSVectorImp_SubIntBase::~VokSVectorImp_SubIntBase() {
  ReleaseElements(fData);
}

int VokSVectorImp_SubIntBase::IsValid() const {
  return fValid;
}

int VokSVectorImp_SubIntBase::IsAllocated() const {
  return fValid;
}

int VokSVectorImp_SubIntBase::Add(const SubIntBase& x) {
  const SubIntBase element = x;
  if (fSize == fCapacity && Resize(fSize + 1) == 0) {
    return 0;
  }
  unsigned i = fSize++;
  for (; i > 0 && element < fData[i - 1]; --i) {
    fData[i] = fData[i - 1];
  }
  fData[i] = element;
  return 1;
}

int VokSVectorImp_SubIntBase::AddUnique(const SubIntBase& x) {
  const unsigned i = FindLowerBound(x, 0);
  if (i >= fSize) {
    return Add(x);
  }
  if (fData[i] == x) {
    return 1;
  }
  // The search ends at the last of elements that are equal and less than x.
  return AddAt(x, i + 1);
}

int VokSVectorImp_SubIntBase::AddAt(const SubIntBase& x, unsigned i) {
  const SubIntBase element = x;
  if (i >= kMaxCapacity) {
    return 0;
  }
  if (i >= fCapacity && Resize(i + 1) == 0) {
    return 0;
  }
  if (fSize == fCapacity && Resize(fCapacity + 1) == 0) {
    return 0;
  }
  fSize = std::max(fSize, i);
  if (fBitwiseCopy != 0) {
    std::memmove(static_cast<void*>(fData + i + 1), fData + i, (fSize - i) * sizeof(SubIntBase));
  } else {
    std::copy_backward(fData + i, fData + fSize, fData + fSize + 1);
  }
  fData[i] = element;
  ++fSize;
  return 1;
}

int VokSVectorImp_SubIntBase::Detach(const SubIntBase& x) {
  return DetachAt(Find(x), 1);
}

int VokSVectorImp_SubIntBase::DetachAt(unsigned i, unsigned n) {
  if (i >= fCapacity) {
    return 0;
  }
  if (i >= fSize) {
    return 1;
  }
  const unsigned removed = std::min(n, fSize - i);
  fSize -= removed;
  if (fBitwiseCopy != 0) {
    std::memmove(static_cast<void*>(fData + i), fData + i + removed, (fSize - i) * sizeof(SubIntBase));
  } else {
    std::copy(fData + i + removed, fData + fSize + removed, fData + i);
  }
  return 1;
}

int VokSVectorImp_SubIntBase::IsEmpty() const {
  return fSize == 0 ? 1 : 0;
}

void VokSVectorImp_SubIntBase::Flush() {
  fSize = 0;
}

unsigned VokSVectorImp_SubIntBase::Count() const {
  return fSize;
}

unsigned VokSVectorImp_SubIntBase::Size() const {
  return fSize;
}

unsigned VokSVectorImp_SubIntBase::Delta() const {
  return fDelta;
}

int VokSVectorImp_SubIntBase::AssignNumbers(const VokLong* numbers, unsigned n) noexcept {
  fSize = 0;
  if (n > fCapacity && Resize(n) == 0) {
    return 0;
  }
  std::copy_n(numbers, n, GetNumbers());
  fSize = n;
  return 1;
}

int VokSVectorImp_SubIntBase::Resize(unsigned n) noexcept {
  if (fCapacity >= n || (fDelta == 0 && fFactor == 0.0)) {
    return 0;
  }
  const std::uint64_t capacity = std::uint64_t{fCapacity} + NextDelta(n - fCapacity);
  SubIntBase* const data = AllocateElements(capacity);
  if (data == nullptr) {
    return 0;
  }
  // Slots behind the last element keep what they held: AddAt past the end can bring them back.
  CopyElements(data, fData, fCapacity, fBitwiseCopy);
  ReleaseElements(fData);
  fData = data;
  fCapacity = static_cast<unsigned>(capacity);
  fValid = 1;
  return 1;
}

unsigned VokSVectorImp_SubIntBase::NextDelta(unsigned need) const noexcept {
  // More than any array can grow: what is too large to count is too large to allocate.
  constexpr std::uint64_t limit = std::numeric_limits<unsigned>::max();
  if (fFactor == 0.0) {
    const std::uint64_t step = std::max(fDelta, 1U);
    return static_cast<unsigned>(std::min(limit, (need + step - 1) / step * step));
  }
  const std::uint64_t target = std::uint64_t{fCapacity} + need;
  std::uint64_t capacity = std::max(fCapacity, 1U);
  while (capacity < target) {
    const double step = std::min(static_cast<double>(capacity) * fFactor, static_cast<double>(limit));
    capacity += std::max<std::uint64_t>(static_cast<std::uint64_t>(step), 1);
  }
  return static_cast<unsigned>(std::min(limit, capacity - fCapacity));
}
