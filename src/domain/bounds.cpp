// The bounds of the enumerated set and the steps from member to member.
#include <algorithm>
#include <cstdint>

#include "domain/VokFenEnumInteger.h"
#include "domain/elements.h"

namespace {

// Whether the values from v to u are listed. Their number is taken in 32 bits and wraps. A gap of one, u = v - 1,
// counts as none and is listed; a wider one counts as too many, unless it spans all but the ends of the 32-bit range:
// from the least integers to the greatest the count is small again.
bool IsListed(VokLong v, VokLong u) noexcept {
  return VokToUnsigned(u) - VokToUnsigned(v) + 1U < VokFenEnumInteger::sMAX_CARD;
}

// Makes `set` hold every value from v to u.
int SetRange(VokFenEnumInteger& set, VokLong v, VokLong u) {
  set.SetNilValue();
  int status = 1;
  // 64 bits, so that the loop ends behind the greatest 32-bit value.
  for (std::int64_t k = v; k <= u; ++k) {
    status = set.Insert(static_cast<VokLong>(k));
    // Nil after an insertion: memory is short, and a set filled by halves would be wrong. Any takes no more.
    if (status == 0 || set.IsNil() != 0) {
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
  return IsListed(v, u) ? SetRange(*this, v, std::max(u, v)) : SetUndefinedValue();
}

int VokFenEnumInteger::SetUpperBound(VokLong v) {
  if (IsUndefined() != 0) {
    return 1;
  }
  if (fValues.IsEmpty() != 0) {
    return Insert(v);
  }
  const VokLong l = GetLowerBound();
  return IsListed(l, v) ? SetRange(*this, std::min(l, v), v) : SetUndefinedValue();
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
