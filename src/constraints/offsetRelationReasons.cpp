// Why x and z = s y + d are narrowed by a relation between them: see VokTarnOffsetRelationConstraint::Explain. What is
// said of z is said of y in other words.
#include <algorithm>

#include "constraints/VokTarnOffsetRelationConstraint.h"
#include "constraints/because.h"

namespace {

using Relation = VokTarnAtom::Relation;

constexpr unsigned kX = 0;
constexpr unsigned kY = 1;
constexpr unsigned kTruth = 2;

}  // namespace

// The two sides of the relation as they were.
class VokTarnOffsetRelationConstraint::Sides {
 public:
  Sides(const VokTarnOffsetRelationConstraint& constraint, const VokTarnPast& past, std::vector<VokTarnAtom>& because)
      : fConstraint(constraint), fPast(past), fReason(past, because), fIsMirrored(constraint.IsMirrored()) {}

  std::int64_t Lower(unsigned side) const {
    return side == kX ? fPast.Lower(kX) : fConstraint.FromSecond(fIsMirrored ? fPast.Upper(kY) : fPast.Lower(kY));
  }
  std::int64_t Upper(unsigned side) const {
    return side == kX ? fPast.Upper(kX) : fConstraint.FromSecond(fIsMirrored ? fPast.Lower(kY) : fPast.Upper(kY));
  }
  bool IsSingle(unsigned side) const { return fPast.IsSingle(side); }
  bool AtLeast(unsigned side, std::int64_t v) {
    return side == kX    ? fReason.AtLeast(kX, v)
           : fIsMirrored ? fReason.AtMost(kY, fConstraint.FromFirst(v))
                         : fReason.AtLeast(kY, fConstraint.FromFirst(v));
  }
  bool AtMost(unsigned side, std::int64_t v) {
    return side == kX    ? fReason.AtMost(kX, v)
           : fIsMirrored ? fReason.AtLeast(kY, fConstraint.FromFirst(v))
                         : fReason.AtMost(kY, fConstraint.FromFirst(v));
  }
  bool Is(unsigned side, std::int64_t v) { return fReason.Is(side, side == kX ? v : fConstraint.FromFirst(v)); }
  bool IsNot(unsigned side, std::int64_t v) { return fReason.IsNot(side, side == kX ? v : fConstraint.FromFirst(v)); }

  // What the atom says of its side; the relation of a mirrored bound is the other one.
  Relation GetRelation(unsigned side, const VokTarnAtom& atom) const {
    if (side == kX || !fIsMirrored || atom.fRelation == Relation::Equal || atom.fRelation == Relation::Unequal) {
      return atom.fRelation;
    }
    return atom.fRelation == Relation::AtLeast ? Relation::AtMost : Relation::AtLeast;
  }
  std::int64_t GetNumber(unsigned side, const VokTarnAtom& atom) const {
    return side == kX ? atom.fNumber : fConstraint.FromSecond(atom.fNumber);
  }

  bool ExplainEqual(unsigned side, const VokTarnAtom& atom);
  bool ExplainDifferent(unsigned side, const VokTarnAtom& atom);
  // x <= z, or x >= z + 1.
  bool ExplainOrder(unsigned side, const VokTarnAtom& atom, bool isNegated);
  // That the sides have no common value; that they are one.
  bool ExplainApart();
  bool ExplainSame();
  // That x <= z cannot hold, or must.
  bool ExplainAbove();
  bool ExplainNotAbove();

 private:
  const VokTarnOffsetRelationConstraint& fConstraint;
  const VokTarnPast& fPast;
  Because fReason;
  bool fIsMirrored;
};

bool VokTarnOffsetRelationConstraint::Sides::ExplainEqual(unsigned side, const VokTarnAtom& atom) {
  const unsigned other = kX + kY - side;
  const std::int64_t v = GetNumber(side, atom);
  switch (GetRelation(side, atom)) {
    case Relation::Equal:
      return Is(other, v);
    case Relation::Unequal:
      return IsNot(other, v);
    case Relation::AtMost:
      return AtMost(other, v);
    case Relation::AtLeast:
      break;
  }
  return AtLeast(other, v);
}

bool VokTarnOffsetRelationConstraint::Sides::ExplainDifferent(unsigned side, const VokTarnAtom& atom) {
  return atom.fRelation == Relation::Unequal && Is(kX + kY - side, GetNumber(side, atom));
}

bool VokTarnOffsetRelationConstraint::Sides::ExplainOrder(unsigned side, const VokTarnAtom& atom, bool isNegated) {
  const std::int64_t v = GetNumber(side, atom);
  const Relation relation = GetRelation(side, atom);
  // The side that is below the other, and how far.
  const bool isBelow = (side == kX) != isNegated;
  const std::int64_t gap = isNegated ? 1 : 0;
  const unsigned other = kX + kY - side;
  if (relation == Relation::AtMost) {
    return isBelow && AtMost(other, v + gap);
  }
  return relation == Relation::AtLeast && !isBelow && AtLeast(other, v - gap);
}

bool VokTarnOffsetRelationConstraint::Sides::ExplainApart() {
  for (const unsigned side : {kX, kY}) {
    const unsigned other = kX + kY - side;
    if (Lower(side) > Upper(other)) {
      return AtMost(other, Upper(other)) && AtLeast(side, Upper(other) + 1);
    }
  }
  for (const unsigned side : {kX, kY}) {
    if (IsSingle(side)) {
      return Is(side, Lower(side)) && IsNot(kX + kY - side, Lower(side));
    }
  }
  return false;
}

bool VokTarnOffsetRelationConstraint::Sides::ExplainSame() {
  return IsSingle(kX) && IsSingle(kY) && Lower(kX) == Lower(kY) && Is(kX, Lower(kX)) && Is(kY, Lower(kX));
}

bool VokTarnOffsetRelationConstraint::Sides::ExplainAbove() {
  return Lower(kX) > Upper(kY) && AtMost(kY, Upper(kY)) && AtLeast(kX, Upper(kY) + 1);
}

bool VokTarnOffsetRelationConstraint::Sides::ExplainNotAbove() {
  return Upper(kX) <= Lower(kY) && AtMost(kX, Upper(kX)) && AtLeast(kY, Upper(kX));
}

bool VokTarnOffsetRelationConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                              std::vector<VokTarnAtom>& because) const {
  if (past.Id(kX) == past.Id(kY)) {
    return false;
  }
  Sides sides(*this, past, because);
  bool isNegated = false;
  if (GetMode() != VokTarnMode::Plain) {
    if (past.RootLower(kTruth) < 0 || past.RootUpper(kTruth) > 1 || past.Id(kTruth) == past.Id(kX) ||
        past.Id(kTruth) == past.Id(kY)) {
      return false;
    }
    if (atom != nullptr && atom->fValue == past.Id(kTruth)) {
      const bool holds = atom->Implies(past.AtLeast(kTruth, 1));
      if (!holds && !atom->Implies(past.AtMost(kTruth, 0))) {
        return false;
      }
      if (GetRelation() == VokTarnRelation::AtMost) {
        return holds ? sides.ExplainNotAbove() : sides.ExplainAbove();
      }
      return (GetRelation() == VokTarnRelation::Equal) == holds ? sides.ExplainSame() : sides.ExplainApart();
    }
    isNegated = past.Lower(kTruth) == 0;
    if (!past.IsSingle(kTruth) || !Because(past, because).Is(kTruth, past.Lower(kTruth)) ||
        (isNegated && GetMode() == VokTarnMode::HalfReified)) {
      return false;
    }
  }
  const bool isEqual = (GetRelation() == VokTarnRelation::Equal) != isNegated;
  if (atom == nullptr) {
    if (GetRelation() == VokTarnRelation::AtMost) {
      return isNegated ? sides.ExplainNotAbove() : sides.ExplainAbove();
    }
    return isEqual ? sides.ExplainApart() : sides.ExplainSame();
  }
  const unsigned side = atom->fValue == past.Id(kX) ? kX : kY;
  return GetRelation() == VokTarnRelation::AtMost ? sides.ExplainOrder(side, *atom, isNegated)
         : isEqual                                ? sides.ExplainEqual(side, *atom)
                                                  : sides.ExplainDifferent(side, *atom);
}
