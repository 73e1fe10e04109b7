#pragma once

#include <cstdint>

#include "framework/VokTarnConstraintDescriptor.h"

// The smallest statement about a value of a network: an integer, or a truth value as 0 and 1, is (is not) a number, is
// at most (at least) one. Choices and clauses are made of atoms.
struct VokTarnAtom {
  enum class Relation : unsigned char { Equal, Unequal, AtMost, AtLeast };

  VokTarnValueId fValue;
  Relation fRelation;
  VokLong fNumber;

  VokTarnAtom Negate() const noexcept {
    switch (fRelation) {
      case Relation::Equal:
        return {fValue, Relation::Unequal, fNumber};
      case Relation::Unequal:
        return {fValue, Relation::Equal, fNumber};
      case Relation::AtMost:
        return {fValue, Relation::AtLeast, fNumber + 1};
      case Relation::AtLeast:
        break;
    }
    return {fValue, Relation::AtMost, fNumber - 1};
  }

  // Whether it is false of an integer that is v.
  bool Denies(std::int64_t v) const noexcept {
    switch (fRelation) {
      case Relation::Equal:
        return v != fNumber;
      case Relation::Unequal:
        return v == fNumber;
      case Relation::AtMost:
        return v > fNumber;
      case Relation::AtLeast:
        break;
    }
    return v < fNumber;
  }

  // Whether this being true of an integer makes `other`, of the same one, true.
  bool Implies(const VokTarnAtom& other) const noexcept {
    switch (other.fRelation) {
      case Relation::Equal:
        return fRelation == Relation::Equal && fNumber == other.fNumber;
      case Relation::AtMost:
        return (fRelation == Relation::AtMost || fRelation == Relation::Equal) && fNumber <= other.fNumber;
      case Relation::AtLeast:
        return (fRelation == Relation::AtLeast || fRelation == Relation::Equal) && fNumber >= other.fNumber;
      case Relation::Unequal:
        break;
    }
    return fRelation == Relation::Equal     ? fNumber != other.fNumber
           : fRelation == Relation::Unequal ? fNumber == other.fNumber
           : fRelation == Relation::AtMost  ? fNumber < other.fNumber
                                            : fNumber > other.fNumber;
  }
};
