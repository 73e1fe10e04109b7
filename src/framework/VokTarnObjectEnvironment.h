#pragma once

#include "framework/VokTarnBoolean.h"
#include "framework/VokTarnConstraintDescriptor.h"
#include "framework/VokTarnInteger.h"
#include "framework/VokTarnSlot.h"

class VokTarnNetwork;

// What a constraint sees while it is filtered: its arguments, numbered from 0.
//
// To narrow argument i, get write access with Narrow(i) and hand the status of every narrowing call to
// Note(i, status). Write access saves the value for backtracking first, so ask for it only when a narrowing is likely.
class VOKTARN_EXPORT VokTarnObjectEnvironment {
 public:
  VokTarnObjectEnvironment(VokTarnNetwork& network, std::span<const VokTarnValueId> arguments) noexcept;

  unsigned Size() const noexcept { return static_cast<unsigned>(fArguments.size()); }
  bool Has(unsigned i) const noexcept { return i < fArguments.size() && fArguments[i] != vokNoValue; }

  // Whether both arguments are one value of the network.
  bool AreSame(unsigned i, unsigned j) const noexcept { return fArguments[i] == fArguments[j]; }

  const VokTarnAny& Value(unsigned i) const noexcept { return *Slot(i).fObject; }
  // What the value would answer itself, without a call: the number of possible values, the bounds (of a truth value 0
  // and 1).
  int Cardinality(unsigned i) const noexcept { return Slot(i).fSummary.fSize; }
  bool IsSingle(unsigned i) const noexcept { return Cardinality(i) == 1; }
  VokLong Lower(unsigned i) const noexcept { return Slot(i).fSummary.fLower; }
  VokLong Upper(unsigned i) const noexcept { return Slot(i).fSummary.fUpper; }
  // Whether the argument is neither undefined nor empty and of a type that lists its values.
  bool IsListed(unsigned i) const noexcept { return Slot(i).fLister != nullptr && Slot(i).fSummary.fSize > 0; }
  // The possible values where the type lists them, see VokTarnObjectDescriptor::Lister; valid until the argument
  // changes.
  std::span<const VokLong> Members(unsigned i) const {
    const VokTarnSlot& slot = Slot(i);
    return slot.fLister != nullptr ? slot.fLister(*slot.fObject) : std::span<const VokLong>();
  }
  // Requires: the argument is an integer (a truth value).
  const VokTarnInteger& Integer(unsigned i) const noexcept { return static_cast<const VokTarnInteger&>(Value(i)); }
  const VokTarnBoolean& Truth(unsigned i) const noexcept { return static_cast<const VokTarnBoolean&>(Value(i)); }

  VokTarnAny& Narrow(unsigned i) const;
  VokTarnInteger& NarrowInteger(unsigned i) const { return static_cast<VokTarnInteger&>(Narrow(i)); }
  VokTarnBoolean& NarrowTruth(unsigned i) const { return static_cast<VokTarnBoolean&>(Narrow(i)); }
  // Tells the network that argument i changed when `status` is 1. Returns `status`.
  int Note(unsigned i, int status) const {
    if (status != 0) {
      NoteChange(i);
    }
    return status;
  }
  // Makes argument i Nil. Returns 1.
  int MakeNil(unsigned i) const;
  // The constraint cannot hold, whatever its arguments. Returns 1.
  int Fail() const;
  // 1 when a contradiction has been found: nothing more need be narrowed.
  bool IsFailed() const noexcept { return fIsFailed; }
  // Filtering the constraint once more would change nothing: its own changes need not wake it.
  void NoteFixpoint() const noexcept;
  // The constraint holds whatever values the arguments take of those that are left: it is not filtered again until the
  // search goes back.
  void NoteEntailed() const noexcept;

 private:
  const VokTarnSlot& Slot(unsigned i) const noexcept { return fSlots[fArguments[i]]; }
  void NoteChange(unsigned i) const;

  VokTarnNetwork& fNetwork;
  const VokTarnSlot* fSlots;
  const bool& fIsFailed;
  std::span<const VokTarnValueId> fArguments;
};
