// The members of the enumerated set: insertion, removal and negation.
#include <algorithm>
#include <limits>

#include "domain/VokFenEnumInteger.h"
#include "domain/elements.h"

unsigned VokFenEnumInteger::GetCount() const {
  return fValues.Size();
}

VokLong VokFenEnumInteger::GetValue(unsigned i) const {
  return fValues[i];
}

int VokFenEnumInteger::Contains(VokLong v) const {
  const auto members = GetMembers();
  return std::binary_search(members.begin(), members.end(), v) ? 1 : 0;
}

int VokFenEnumInteger::SimpleInsert(VokLong v) {
  // Values mostly come in ascending order: no search for one behind the last.
  const bool isLast = fValues.GetSize() == 0 || GetMembers().back() < v;
  return isLast ? fValues.Add(ToElement(v)) : fValues.AddUnique(ToElement(v));
}

int VokFenEnumInteger::Insert(VokLong v) {
  if (IsUndefined() != 0) {
    return 0;
  }
  // The limit is tested before the search: a full set turns Any even for a value that it already holds.
  if (fValues.Size() >= sMAX_CARD) {
    SetUndefinedValue();
    return 0;
  }
  if (SimpleInsert(v) == 0) {
    SetNilValue();
  }
  return 1;
}

int VokFenEnumInteger::SetExactValue(VokLong v) {
  SetNilValue();
  return Insert(v);
}

int VokFenEnumInteger::AddExactValue(VokLong v) {
  return Insert(v);
}

int VokFenEnumInteger::RemoveExactValue(VokLong v) {
  const unsigned i = fValues.Find(ToElement(v));
  if (i >= fValues.Size()) {
    return 0;
  }
  fValues.DetachAt(i, 1);
  return 1;
}

void VokFenEnumInteger::Minus() {
  unsigned low = 0;
  unsigned high = fValues.Size();
  // The least 32-bit value is its own negative, so it stays where it is, in front.
  if (high > 0 && fValues[0] == std::numeric_limits<VokLong>::min()) {
    low = 1;
  }
  while (low < high) {
    --high;
    const VokLong smallest = fValues[low];
    fValues[low] = VokWrapNegate(fValues[high]);
    fValues[high] = VokWrapNegate(smallest);
    ++low;
  }
}
