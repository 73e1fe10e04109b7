#pragma once

#include "framework/VokTarnBoolean.h"
#include "framework/VokTarnNetwork.h"

// What a constraint sees while it is filtered: its arguments, numbered from 0. It is the one way in which a constraint
// narrows them.
//
// Numbers of an integer, and 0 and 1 of a truth value, go by Keep... and Remove, which touch no object where the
// network knows all values of the argument. For the operations of an argument's own type get write access with
// Narrow(i) and hand the status of every call to Note(i, status). Write access saves the value for backtracking first,
// so ask for it only when a narrowing is likely. References to objects and lists of members stand until the argument
// changes.
class VOKTARN_EXPORT VokTarnObjectEnvironment {
 public:
  VokTarnObjectEnvironment(VokTarnNetwork& network, std::span<const VokTarnValueId> arguments) noexcept
      : fNetwork(network), fSlots(network.fValues.data()), fIsFailed(network.fFailed), fArguments(arguments) {}

  unsigned Size() const noexcept { return static_cast<unsigned>(fArguments.size()); }
  bool Has(unsigned i) const noexcept { return i < fArguments.size() && fArguments[i] != vokNoValue; }

  // Whether both arguments are one value of the network.
  bool AreSame(unsigned i, unsigned j) const noexcept { return fArguments[i] == fArguments[j]; }

  // ---- Reading
  // What the value would answer itself, without a call: the number of possible values, the bounds (of a truth value 0
  // and 1).
  int Cardinality(unsigned i) const noexcept { return Slot(i).fSummary.fSize; }
  bool IsSingle(unsigned i) const noexcept { return Cardinality(i) == 1; }
  VokLong Lower(unsigned i) const noexcept { return Slot(i).fSummary.fLower; }
  VokLong Upper(unsigned i) const noexcept { return Slot(i).fSummary.fUpper; }
  bool IsInteger(unsigned i) const noexcept { return Slot(i).fKind == VokTarnSlot::Kind::Integer; }
  bool IsTruth(unsigned i) const noexcept { return Slot(i).fKind == VokTarnSlot::Kind::Truth; }
  // Whether argument i, not undefined, has every value between its bounds.
  bool HasNoHoles(unsigned i) const noexcept { return Slot(i).HasNoHoles(); }
  // Whether the argument's type has every value between the bounds, always.
  bool IsRange(unsigned i) const noexcept { return Slot(i).fShape == VokTarnObjectDescriptor::Shape::Range; }
  // Whether the argument is neither undefined nor empty and of a type that lists its values.
  bool IsListed(unsigned i) const noexcept { return Slot(i).fLister != nullptr && Slot(i).fSummary.fSize > 0; }
  // Whether v is possible, whatever number it is. An undefined argument has every value of the integer range.
  bool MayBe(unsigned i, std::int64_t v) const {
    const VokTarnSlot& slot = Slot(i);
    if (v < slot.fSummary.fLower || v > slot.fSummary.fUpper) {
      return false;
    }
    return slot.HasNoHoles() ||
           (slot.fSummary.fBits != 0 ? (slot.fSummary.fBits >> static_cast<unsigned>(v - slot.fSummary.fLower) & 1) != 0
                                     : fNetwork.IsPossible(fArguments[i], static_cast<VokLong>(v)));
  }
  // See VokTarnNetwork.
  VokLong FindFrom(unsigned i, VokLong v) const { return fNetwork.FindFrom(fArguments[i], v); }
  VokLong FindUpTo(unsigned i, VokLong v) const { return fNetwork.FindUpTo(fArguments[i], v); }
  VokTarnBits Bits(unsigned i) const {
    const VokTarnBits bits = Slot(i).fSummary.fBits;
    return bits != 0 ? bits : fNetwork.GetBits(fArguments[i]);
  }
  // The possible values where the type lists them, see VokTarnObjectDescriptor::Lister.
  std::span<const VokLong> Members(unsigned i) const {
    const VokTarnSlot& slot = Slot(i);
    return slot.fLister != nullptr ? slot.fLister(Value(i)) : std::span<const VokLong>();
  }
  const VokTarnAny& Value(unsigned i) const { return fNetwork.GetValue(fArguments[i]); }
  // Requires: the argument is an integer (a truth value).
  const VokTarnInteger& Integer(unsigned i) const { return static_cast<const VokTarnInteger&>(Value(i)); }
  const VokTarnBoolean& Truth(unsigned i) const { return static_cast<const VokTarnBoolean&>(Value(i)); }

  // ---- Narrowing, see VokTarnNetwork
  int KeepAtMost(unsigned i, std::int64_t limit) const {
    return limit >= Upper(i) ? 0 : fNetwork.KeepAtMost(fArguments[i], limit);
  }
  int KeepAtLeast(unsigned i, std::int64_t limit) const {
    return limit <= Lower(i) ? 0 : fNetwork.KeepAtLeast(fArguments[i], limit);
  }
  int KeepBetween(unsigned i, std::int64_t lower, std::int64_t upper) const {
    return lower <= Lower(i) && upper >= Upper(i) ? 0 : fNetwork.KeepBetween(fArguments[i], lower, upper);
  }
  int KeepExactly(unsigned i, std::int64_t v) const { return fNetwork.KeepExactly(fArguments[i], v); }
  int KeepTruth(unsigned i, bool truth) const { return KeepExactly(i, truth ? 1 : 0); }
  int KeepListed(unsigned i, std::span<const VokLong> values) const {
    return fNetwork.KeepListed(fArguments[i], values);
  }
  int KeepSubset(unsigned i, std::span<const VokLong> values) const {
    return fNetwork.KeepSubset(fArguments[i], values);
  }
  int KeepBits(unsigned i, std::int64_t base, VokTarnBits bits) const {
    return fNetwork.KeepBits(fArguments[i], base, bits);
  }
  int Remove(unsigned i, VokLong v) const {
    return v < Lower(i) || v > Upper(i) ? 0 : fNetwork.Remove(fArguments[i], v);
  }
  // Makes argument i Nil. Returns 1.
  int MakeNil(unsigned i) const { return fNetwork.MakeNil(fArguments[i]); }
  VokTarnAny& Narrow(unsigned i) const { return fNetwork.Touch(fArguments[i]); }
  VokTarnInteger& NarrowInteger(unsigned i) const { return static_cast<VokTarnInteger&>(Narrow(i)); }
  VokTarnBoolean& NarrowTruth(unsigned i) const { return static_cast<VokTarnBoolean&>(Narrow(i)); }
  // Tells the network that argument i changed when `status` is 1. Returns `status`.
  int Note(unsigned i, int status) const {
    if (status != 0) {
      fNetwork.NoteChange(fArguments[i]);
    }
    return status;
  }

  // ---- Numbers of the constraint, see VokTarnConstraint::CountState
  std::int64_t State(VokULong place) const noexcept { return fNetwork.GetState(place); }
  void SetState(VokULong place, std::int64_t number) const { fNetwork.SetState(place, number); }

  // ---- The constraint as a whole
  // The constraint cannot hold, whatever its arguments. Returns 1.
  int Fail() const {
    fNetwork.Fail();
    return 1;
  }
  // 1 when a contradiction has been found: nothing more need be narrowed.
  bool IsFailed() const noexcept { return fIsFailed; }
  // What the filtering before has noted is over.
  void BeginFiltering() const noexcept { fNetwork.fIsAtFixpoint = fNetwork.fIsEntailed = false; }
  // Filtering the constraint once more would change nothing: its own changes need not wake it.
  void NoteFixpoint() const noexcept { fNetwork.fIsAtFixpoint = true; }
  // The constraint holds whatever values the arguments take of those that are left: it is not filtered again until the
  // search goes back.
  void NoteEntailed() const noexcept { fNetwork.fIsEntailed = true; }
  bool IsEntailed() const noexcept { return fNetwork.fIsEntailed; }

 private:
  const VokTarnSlot& Slot(unsigned i) const noexcept { return fSlots[fArguments[i]]; }

  VokTarnNetwork& fNetwork;
  const VokTarnSlot* fSlots;
  const bool& fIsFailed;
  std::span<const VokTarnValueId> fArguments;
};
