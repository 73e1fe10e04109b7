#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "framework/VokTarnAtom.h"
#include "framework/VokTarnSlot.h"

class VokTarnNetwork;

// What has made a value change, or a network fail.
struct VokTarnCause {
  enum class Kind : unsigned char {
    Choices,     // something that holds because of all choices so far: the rest of one that was refuted, say
    Choice,      // the choice that opened the level
    Given,       // something that holds from now on, whatever is chosen: the bound of an objective
    Clause,      // fIndex: its number among the network's clauses
    Constraint,  // fIndex: its number
  };

  Kind fKind = Kind::Choices;
  VokULong fIndex = 0;
  VokTarnAtom fAtom{};  // what was made true; not of a constraint, which may have done more than one thing
};

// The changes of a network's values since it was begun, in their order, each with its cause. Going back cuts it.
//
// A position is a number of changes: the network as it was before the change at that position.
//
// Cost   52 bytes for a change, and 4 for each member that goes from a set which no summary holds. Questions take
//        O(log n) for n changes of one value, O(n) where no summary holds its domain. Of the changes of one branch,
//        which are all there is, so many are recorded as sMostChanges says, in 220 MB at most.
class VOKTARN_EXPORT VokTarnHistory {
 public:
  using Position = std::uint32_t;
  static constexpr Position sNone = 0xFFFFFFFFU;
  static constexpr std::size_t sMostChanges = std::size_t{1} << 22;

  struct Entry {
    VokTarnSummary fBefore;
    VokTarnValueId fValue;
    std::uint32_t fGone;  // the first of the members that went, where no summary holds the domain before
    VokTarnCause fCause;
  };

  explicit VokTarnHistory(const VokTarnNetwork& network);
  // Whether atoms can tell all that happens to the network's values: they are integers and truth values, and of a type
  // that is no range and does not list its members they have few. `other` is a value that will not change.
  static bool CanTell(const VokTarnNetwork& network, VokTarnValueId other);

  // Whether there is no room for more changes: then those that come are not recorded, and nothing is to be asked before
  // the network goes back.
  bool IsFull() const noexcept { return fEntries.size() >= sMostChanges; }
  Position GetSize() const noexcept { return static_cast<Position>(fEntries.size()); }
  const Entry& Get(Position position) const noexcept { return fEntries[position]; }
  // What the value was when the history began.
  const VokTarnSummary& GetRoot(VokTarnValueId id) const noexcept { return fRoots[id]; }
  bool WasPossibleAtRoot(VokTarnValueId id, VokLong v) const;
  // Its members then, where they are in no summary.
  std::span<const VokLong> GetRootMembers(VokTarnValueId id) const noexcept { return fRootMembers[id]; }

  // The change that made an atom true, which is true now; sNone when it was so from the beginning.
  Position FindChange(const VokTarnAtom& atom) const;
  // The first change of the value from a position on; sNone: there is none, it is as now.
  Position FindNext(VokTarnValueId id, Position position) const;
  // What is known of the value before `position`. Its bits are not, where the domain is in no summary.
  const VokTarnSummary& GetSummary(VokTarnValueId id, Position position) const;
  bool WasPossible(VokTarnValueId id, VokLong v, Position position) const;
  // The possible values, ascending; none of an undefined value. Requires: the value is no range, and an integer.
  void ListMembers(VokTarnValueId id, Position position, std::vector<VokLong>& members) const;

  // ---- For the network
  // The object of a value is about to change: what it lists now is kept until the change is noted.
  void NoteTouch(VokTarnValueId id);
  // The value, `before` this, has changed.
  void NoteChange(VokTarnValueId id, const VokTarnSummary& before, const VokTarnCause& cause);
  void CutTo(Position size);
  // Clauses have other numbers now.
  void RenumberClauses(std::span<const VokULong> numbers);

 private:
  struct Touched {
    VokTarnValueId fValue;
    std::vector<VokLong> fMembers;
  };

  static bool IsTold(const VokTarnSlot& slot, const VokTarnSummary& summary);
  bool HasGone(Position position, VokLong v) const;
  std::span<const VokLong> GetGone(Position position) const;
  bool HeldBefore(Position position, const VokTarnAtom& atom) const;
  void AppendNow(VokTarnValueId id, std::vector<VokLong>& members) const;

  const VokTarnNetwork& fNetwork;
  std::vector<Entry> fEntries;
  std::vector<VokLong> fGone;
  std::vector<VokTarnSummary> fRoots;              // by value
  std::vector<std::vector<VokLong>> fRootMembers;  // by value, where no summary holds them
  std::vector<std::vector<Position>> fChanges;     // by value, ascending
  std::vector<Touched> fTouched;                   // the first fTouchedCount are in use
  std::size_t fTouchedCount = 0;
};
