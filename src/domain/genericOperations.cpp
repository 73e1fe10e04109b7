// The operations that every value has: each finds out the type of its operand and hands over to the set algebra.
#include "domain/VokFenEnumInteger.h"
#include "domain/operandTypes.h"

namespace {

// Keeps the elements of the positions from `first` up to, not including, `end`.
void KeepPositions(VokSVectorImp_SubIntBase& v, unsigned first, unsigned end) {
  v.DetachAt(end, v.Size());
  v.DetachAt(0, first);
}

}  // namespace

// An interval makes the set Nil, like every type that is neither enumerated nor single, although a narrow one could be
// listed. The narrowing operations and IsIntersected build on that outcome.
int VokFenEnumInteger::Assign(const VokTarnAny& a) {
  if (IsOperandOf(a, sIdent) != 0) {
    *this = static_cast<const VokFenEnumInteger&>(a);
  } else if (IsOperandOf(a, VokFenSingleInteger::sIdent) != 0) {
    // By construction, not by assignment from the single: the two differ.
    *this = VokFenEnumInteger(static_cast<const VokFenSingleInteger&>(a), 0);
  } else {
    SetNilValue();
  }
  return 1;
}

int VokFenEnumInteger::Intersect(const VokTarnAny& a) {
  return CalcEqualValue(a);
}

// A union can only grow a set; even so an operand of any other type, an interval included, makes it Nil.
int VokFenEnumInteger::Unite(const VokTarnAny& a) {
  if (IsOperandOf(a, sIdent) != 0) {
    return Unite(static_cast<const VokFenEnumInteger&>(a));
  }
  if (IsOperandOf(a, VokFenSingleInteger::sIdent) != 0) {
    return Unite(static_cast<const VokFenSingleInteger&>(a));
  }
  return SetNilValue();
}

int VokFenEnumInteger::IsIntersected(const VokTarnAny& a) const {
  VokFenEnumInteger common;
  common.Assign(a);
  if (IsNil() != 0 || common.IsNil() != 0) {
    return 0;
  }
  common.Intersect(*this);
  return common.GetCount() > 0 || common.IsUndefined() != 0 ? 1 : 0;
}

int VokFenEnumInteger::GetCardinality() const {
  return IsUndefined() != 0 ? -1 : static_cast<int>(GetCount());
}

// Parts are taken by position among the members, not by value. The flag of this set is kept, so a set that gives its
// only member away reads as its flag says. `other` may be this set: the part to move is taken
// before anything is changed.
int VokFenEnumInteger::Bisect(VokTarnObject& other, ValueSelection selection) {
  const unsigned n = fValues.Size();
  if (n == 0) {
    return 0;
  }
  if (IsOperandOf(other, sIdent) == 0) {
    return SetNilValue();
  }
  const unsigned middle = (n - 1) / 2 + 1;
  unsigned movedFirst = 0;
  unsigned movedEnd = n;
  unsigned keptFirst = 0;
  unsigned keptEnd = n;
  switch (selection) {
    case LowerHalf:
      movedEnd = keptFirst = middle;
      break;
    case UpperHalf:
      movedFirst = keptEnd = middle;
      break;
    case Smallest:
      movedEnd = keptFirst = 1;
      break;
    case Largest:
      movedFirst = keptEnd = n - 1;
      break;
    default:
      return SetNilValue();
  }
  VokSVectorImp_SubIntBase moved(fValues);
  KeepPositions(moved, movedFirst, movedEnd);
  VokFenEnumInteger& part = static_cast<VokFenEnumInteger&>(other);
  part.fValues = moved;
  part.fEmptyMeansAny = 0;
  KeepPositions(fValues, keptFirst, keptEnd);
  return movedFirst < movedEnd ? 1 : 0;
}

int VokFenEnumInteger::CalcMinValue() {
  return Intersect(VokFenSingleInteger(VokFenSingleInteger::sNC_INT_MIN));
}

int VokFenEnumInteger::CalcMaxValue() {
  return Intersect(VokFenSingleInteger(VokFenSingleInteger::sNC_INT_MAX));
}

int VokFenEnumInteger::CalcZeroValue() {
  return Intersect(VokFenSingleInteger(0));
}

int VokFenEnumInteger::CalcOneValue() {
  return Intersect(VokFenSingleInteger(1));
}
