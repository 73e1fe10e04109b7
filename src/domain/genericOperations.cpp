// The operations that every value has: each finds out the type of its operand and hands over to the set algebra.
#include "domain/VokFenEnumInteger.h"
#include "domain/operandTypes.h"

namespace {

// Keeps the elements of the positions from `first` up to, not including, `end`.
void KeepPositions(VokSVectorImp_SubIntBase& v, unsigned first, unsigned end) {
  v.DetachAt(end, v.Size());
  v.DetachAt(0, first);
}

bool HaveCommon(std::span<const VokLong> a, std::span<const VokLong> b) {
  auto i = a.begin();
  auto j = b.begin();
  while (i != a.end() && j != b.end()) {
    if (*i == *j) {
      return true;
    }
    (*i < *j ? i : j) += 1;
  }
  return false;
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

// An operand that is neither enumerated nor single shares nothing with a set.
int VokFenEnumInteger::IsIntersected(const VokTarnAny& a) const {
  if (ReadsNil()) {
    return 0;
  }
  if (const VokFenEnumInteger* const set = CastToEnumInteger(&a)) {
    return set->ReadsNil() ? 0 : ReadsAny() || set->ReadsAny() || HaveCommon(GetMembers(), set->GetMembers()) ? 1 : 0;
  }
  if (IsOperandOf(a, VokFenSingleInteger::sIdent) == 0) {
    return 0;
  }
  const VokLong v = static_cast<const VokFenSingleInteger&>(a).GetExactValue();
  if (v == VokFenSingleInteger::sNC_INT_NIL) {
    return 0;
  }
  return v == VokFenSingleInteger::sNC_INT_ANY || ReadsAny() ? 1 : Contains(v);
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
  VokFenEnumInteger& part = static_cast<VokFenEnumInteger&>(other);
  if (&part == this) {
    KeepPositions(fValues, movedFirst, movedEnd);
  } else {
    part.fValues.AssignNumbers(fValues.GetNumbers() + movedFirst, movedEnd - movedFirst);
  }
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
