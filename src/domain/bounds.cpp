// The bounds of the enumerated set and the steps from member to member.
#include <algorithm>
#include <cstdint>

#include "domain/VokFenEnumInteger.h"
#include "domain/elements.h"

namespace {

// How many values there are from v to u, exactly: -1 or less when u < v - 1.
std::int64_t Width(VokLong v, VokLong u) noexcept {
  return std::int64_t{u} - v + 1;
}

// A gap of one, u = v - 1, counts as the width 0 and is listed; a wider one is beyond every limit.
bool IsListed(std::int64_t width) noexcept {
  return width >= 0 && width < std::int64_t{VokFenEnumInteger::sMAX_CARD};
}

// Makes `set` hold every value from v to u.
int SetRange(VokFenEnumInteger& set, VokLong v, VokLong u) {
  set.SetNilValue();
  int status = 1;
  // 64 bits, so that the loop ends behind the greatest 32-bit value.
  for (std::int64_t k = v; k <= u; ++k) {
    status = set.Insert(static_cast<VokLong>(k));
    // Nil after an insertion: memory is short, and a set filled by halves would be wrong.
    if (set.IsNil() != 0) {
      break;
    }
  }
  return status;
}

}  // namespace

int VokFenEnumInteger::SetLowerBound(VokLong v) {
  if (IsUndefined() != 0) {
    return 1;
  }
  if (fValues.IsEmpty() != 0) {
    return Insert(v);
  }
  const VokLong u = GetUpperBound();
  return IsListed(Width(v, u)) ? SetRange(*this, v, std::max(u, v)) : SetUndefinedValue();
}

int VokFenEnumInteger::SetUpperBound(VokLong v) {
  if (IsUndefined() != 0) {
    return 1;
  }
  if (fValues.IsEmpty() != 0) {
    return Insert(v);
  }
  const VokLong l = GetLowerBound();
  return IsListed(Width(l, v)) ? SetRange(*this, std::min(l, v), v) : SetUndefinedValue();
}

VokLong VokFenEnumInteger::GetLowerBound() const {
  if (fValues.IsEmpty() == 0) {
    return fValues[0];
  }
  return IsUndefined() != 0 ? VokFenSingleInteger::sNC_INT_MIN : VokFenSingleInteger::sNC_INT_MAX;
}

VokLong VokFenEnumInteger::GetUpperBound() const {
  if (fValues.IsEmpty() == 0) {
    return fValues[fValues.Size() - 1];
  }
  return IsUndefined() != 0 ? VokFenSingleInteger::sNC_INT_MAX : VokFenSingleInteger::sNC_INT_MIN;
}

VokLong VokFenEnumInteger::GetNextExactValue(VokLong v) const {
  if (IsUndefined() != 0 && v <= VokFenSingleInteger::sNC_INT_MAX) {
    return v + 1;
  }
  const unsigned i = fValues.FindUpperBound(ToElement(v), 0);
  if (i >= fValues.Size()) {
    return v;
  }
  if (fValues[i] != v) {
    return fValues[i];
  }
  return i + 1 == fValues.Size() ? VokWrapAdd(v, 1) : VokLong{fValues[i + 1]};
}

VokLong VokFenEnumInteger::GetPrevExactValue(VokLong v) const {
  if (IsUndefined() != 0 && v >= VokFenSingleInteger::sNC_INT_MIN) {
    return v - 1;
  }
  const unsigned i = fValues.FindLowerBound(ToElement(v), 0);
  if (i >= fValues.Size()) {
    return v;
  }
  if (fValues[i] != v) {
    return fValues[i];
  }
  return i == 0 ? VokWrapAdd(v, -1) : VokLong{fValues[i - 1]};
}
