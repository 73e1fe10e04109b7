// The set algebra of the enumerated set with single integers and with intervals.
#include <cstdint>

#include "domain/VokFenEnumInteger.h"
#include "domain/elements.h"

namespace {

int MakeEmpty(VokFenIntervalInteger& iv) {
  iv.fLower = VokFenSingleInteger::sNC_INT_MAX;
  iv.fUpper = VokFenSingleInteger::sNC_INT_MIN;
  return 1;
}

}  // namespace

int VokFenEnumInteger::Intersect(const VokFenSingleInteger& s) {
  const VokLong v = s.GetExactValue();
  if (IsNil() != 0) {
    return 0;
  }
  if (v == VokFenSingleInteger::sNC_INT_NIL) {
    return SetNilValue();
  }
  if (v == VokFenSingleInteger::sNC_INT_ANY) {
    return 0;
  }
  if (IsUndefined() != 0) {
    fEmptyMeansAny = 0;
    fValues.Add(ToElement(v));
    return 1;
  }
  if (Contains(v) == 0) {
    return SetNilValue();
  }
  if (fValues.Size() == 1) {
    return 0;
  }
  fValues.Flush();
  fValues.Add(ToElement(v));
  return 1;
}

int VokFenEnumInteger::Intersect(const VokFenIntervalInteger& iv) {
  if (IsNil() != 0) {
    return 0;
  }
  if (iv.IsEmptyInterval()) {
    return SetNilValue();
  }
  if (iv.IsUnrestricted()) {
    return 0;
  }
  const VokLong l = iv.GetLowerBound();
  const VokLong u = iv.GetUpperBound();
  if (IsUndefined() != 0) {
    // 64 bits: the width of the widest interval does not wrap into a small one, and the loop ends.
    if (std::int64_t{u} - l + 1 >= std::int64_t{sMAX_CARD}) {
      return 0;
    }
    fEmptyMeansAny = 0;
    for (std::int64_t k = l; k <= u; ++k) {
      if (fValues.Add(ToElement(static_cast<VokLong>(k))) == 0) {
        return SetNilValue();
      }
    }
    return 1;
  }
  // A set that loses every member here means what its flag says, so it can read Any.
  const unsigned size = fValues.Size();
  const unsigned i = fValues.FindUpperBound(ToElement(u), 0);
  if (i < fValues.Size()) {
    fValues.DetachAt(fValues[i] == u ? i + 1 : i, size);
  }
  const unsigned j = fValues.FindLowerBound(ToElement(l), 0);
  if (j < fValues.Size()) {
    fValues.DetachAt(0, fValues[j] == l ? j : j + 1);
  }
  return fValues.Size() != size ? 1 : 0;
}

int VokFenEnumInteger::IntersectInverse(VokFenSingleInteger& s) const {
  const VokLong v = s.GetExactValue();
  if (v == VokFenSingleInteger::sNC_INT_NIL || IsUndefined() != 0) {
    return 0;
  }
  if (IsNil() != 0) {
    s.SetNilValue();
    return 1;
  }
  if (v == VokFenSingleInteger::sNC_INT_ANY) {
    if (fValues.Size() != 1) {
      return 0;
    }
    s.SetExactValue(fValues[0]);
    return 1;
  }
  if (Contains(v) != 0) {
    return 0;
  }
  s.SetNilValue();
  return 1;
}

int VokFenEnumInteger::IntersectInverse(VokFenIntervalInteger& iv) const {
  if (iv.IsEmptyInterval() || IsUndefined() != 0) {
    return 0;
  }
  if (fValues.IsEmpty() != 0) {
    return MakeEmpty(iv);
  }
  // Where the interval lies between two members, or beyond them all, [lo, hi] is inverted or misses it.
  unsigned high = fValues.FindLowerBound(ToElement(iv.GetUpperBound()), 0);
  unsigned low = fValues.FindUpperBound(ToElement(iv.GetLowerBound()), 0);
  if (high >= fValues.Size()) {
    high = 0;
  }
  if (low >= fValues.Size()) {
    low = 0;
  }
  SubdefInt hull(fValues[low], fValues[high]);
  const int changed = iv.SDIntersect(hull);
  if (SDCheckError() != 0) {
    SDClearError();
    return MakeEmpty(iv);
  }
  return changed != 0 ? 1 : 0;
}

int VokFenEnumInteger::Unite(const VokFenSingleInteger& s) {
  const VokLong v = s.GetExactValue();
  if (IsUndefined() != 0) {
    return 1;
  }
  if (v == VokFenSingleInteger::sNC_INT_NIL) {
    return 0;
  }
  return v == VokFenSingleInteger::sNC_INT_ANY ? SetUndefinedValue() : Insert(v);
}
