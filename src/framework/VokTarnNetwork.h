#pragma once

#include <array>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "framework/VokTarnAtom.h"
#include "framework/VokTarnClauses.h"
#include "framework/VokTarnConstraint.h"
#include "framework/VokTarnHistory.h"
#include "framework/VokTarnInteger.h"
#include "framework/VokTarnMemoryWatch.h"

// Values and the constraints over them, with propagation to a fixpoint and a trail for backtracking.
//
// Values and constraints are numbered in order of addition. A constraint waits on the agenda when it is
// added and whenever one of its arguments changes; Propagate filters waiting constraints, cheap ones first,
// first come first served among equals, until none waits or a value is Nil. The order is deterministic.
//
// Events     A constraint waits for the events that it asked for, see VokTarnConstraint::GetEvent; its own changes wake
//            it as well unless it said that it is at its fixpoint.
// Levels     PushLevel opens a choice level; PopLevel restores every value to what it was at that moment,
//            empties the agenda and forgets a failure. A value is saved once per level, when it first changes: a few
//            words where these hold all its possible values (VokTarnSlot), else a copy. Values and constraints may be
//            added at the root level only.
// Ownership  Owns its values and constraints. Descriptors belong to modules, which must outlive it.
// Errors     Adding and propagating throw std::bad_alloc; after that the network is only good to be destroyed. An
//            allocation that fails anywhere while the network lives, also one that a module gets over, may have cost a
//            domain its values: it sets IsMemoryShort() for good, and from then on no propagation reports an outcome.
//            The network holds a VokTarnMemoryWatch, whose header says how a program with a new handler of its own
//            lives with it.
class VOKTARN_EXPORT VokTarnNetwork {
 public:
  enum class Outcome { Fixpoint, Failed, Interrupted };

  // Gives a value back to the network that lent it.
  struct SpareReturner {
    VokTarnNetwork* fNetwork;
    unsigned fPool;
    void operator()(VokTarnAny* object) const noexcept { fNetwork->fPools[fPool].fObjects.push_back(object); }
  };
  using Spare = std::unique_ptr<VokTarnAny, SpareReturner>;

  VokTarnNetwork();
  VokTarnNetwork(const VokTarnNetwork&) = delete;
  VokTarnNetwork& operator=(const VokTarnNetwork&) = delete;
  ~VokTarnNetwork();

  // ---- Building
  // A new undefined value of a concrete type. Throws std::invalid_argument for an abstract one.
  VokTarnValueId AddValue(const VokTarnObjectDescriptor* type, std::string name = {});
  // Takes over a constraint whose arguments are values of this network and schedules it. Throws
  // std::invalid_argument when the constraint is null or not applicable to them.
  VokULong AddConstraint(std::unique_ptr<VokTarnConstraint> constraint);

  VokULong GetValueCount() const noexcept { return static_cast<VokULong>(fValues.size()); }
  const VokTarnAny& GetValue(VokTarnValueId id) const {
    if (fValues[id].fIsStale) {
      Refresh(fValues[id]);
    }
    return *fValues[id].fObject;
  }
  // As the value would answer, without a call.
  int GetCardinality(VokTarnValueId id) const noexcept { return fValues[id].fSummary.fSize; }
  // Of an integer its bounds, of a truth value 0 and 1 as far as they are possible.
  VokLong GetLower(VokTarnValueId id) const noexcept { return fValues[id].fSummary.fLower; }
  VokLong GetUpper(VokTarnValueId id) const noexcept { return fValues[id].fSummary.fUpper; }
  // Of an integer: whether v is possible.
  bool IsPossible(VokTarnValueId id, VokLong v) const;
  // The least value of an integer from v on, its greatest up to v. Require: there is one.
  VokLong FindFrom(VokTarnValueId id, VokLong v) const;
  VokLong FindUpTo(VokTarnValueId id, VokLong v) const;
  const VokTarnObjectDescriptor* GetType(VokTarnValueId id) const noexcept { return fValues[id].fType; }
  // Whether it is an integer or a truth value: what atoms speak of.
  bool IsNumber(VokTarnValueId id) const noexcept { return fValues[id].fKind != VokTarnSlot::Kind::Other; }
  // The declared name; empty for an intermediate value.
  const std::string& GetName(VokTarnValueId id) const noexcept;
  VokULong GetConstraintCount() const noexcept { return static_cast<VokULong>(fConstraints.size()); }
  const VokTarnConstraint& GetConstraint(VokULong index) const noexcept { return *fConstraints[index]; }
  // How many constraints the value is an argument of (counted once per place).
  std::size_t GetDegree(VokTarnValueId id) const noexcept { return fValues[id].fDegree; }

  // ---- Propagation
  // Throws std::bad_alloc rather than to report an outcome when IsMemoryShort().
  Outcome Propagate();
  bool IsFailed() const noexcept { return fFailed; }
  // The constraint that was being filtered when the network failed; null when it has not failed, or not so.
  const VokTarnConstraint* GetFailedConstraint() const noexcept { return fFailedConstraint; }
  // Asked before each step of propagation, so it should be quick; true ends it with Interrupted, the rest of the agenda
  // kept.
  void SetInterrupt(std::function<bool()> interrupt) { fInterrupt = std::move(interrupt); }
  // Whether the work is to stop. For those who drive the network, so that they stop even where nothing propagates.
  bool PollInterrupt() const { return fInterrupt && fInterrupt(); }

  // ---- Narrowing: every change of a value goes through here
  // An integer or a truth value (0 and 1) keeps its values up to a limit, from one on, between two, one of them, those
  // of a list that ascends within the integer range; loses one. Limits may be any numbers. The answer is 1 when it has
  // changed; left without values it is Nil, and the network has failed.
  //   A value of a type that holds each number between its bounds keeps what it cannot take out. An undefined value
  // stays so where its type cannot hold what is left.
  int KeepAtMost(VokTarnValueId id, std::int64_t limit);
  int KeepAtLeast(VokTarnValueId id, std::int64_t limit);
  int KeepBetween(VokTarnValueId id, std::int64_t lower, std::int64_t upper);
  int KeepExactly(VokTarnValueId id, std::int64_t v);
  int KeepListed(VokTarnValueId id, std::span<const VokLong> values);
  int Remove(VokTarnValueId id, VokLong v);
  // Keeps `values`, which are some of its values. Requires: its type is listed, it is neither undefined nor Nil.
  int KeepSubset(VokTarnValueId id, std::span<const VokLong> values);
  // Keeps base + k for each bit k. Requires: GetBits(id) is not 0.
  int KeepBits(VokTarnValueId id, std::int64_t base, VokTarnBits bits);
  int MakeNil(VokTarnValueId id);
  // Makes an atom true.
  int Keep(const VokTarnAtom& atom);
  // Whether an atom is true of all possible values. It is false when its negation is true.
  bool IsTrue(const VokTarnAtom& atom) const;
  // The possible values of an integer above its lower bound, bit 0 for that one; 0 where a word does not hold them.
  VokTarnBits GetBits(VokTarnValueId id) const { return FindBits(fValues[id]); }
  // Write access to the value itself, for the operations of its type. NoteChange after each change, or the network does
  // not know of it.
  VokTarnAny& Touch(VokTarnValueId id);
  void NoteChange(VokTarnValueId id);
  void Fail() noexcept {
    if (!fFailed) {
      NoteFailed(GetHistorySize());
    }
  }

  // ---- History: what has changed, and why
  // From here on changes are recorded, until EndHistory. No earlier level is to be left meanwhile.
  void BeginHistory();
  void EndHistory() noexcept { fHistory.reset(); }
  // Null when nothing is recorded.
  const VokTarnHistory* GetHistory() const noexcept { return fHistory.get(); }
  void RenumberClauses(std::span<const VokULong> numbers);
  // The cause of the changes that are made from outside of Propagate from now on.
  void SetCause(const VokTarnCause& cause) noexcept { fCause = cause; }
  // What has made the network fail, and where: before the change that left a value without values, if one did.
  const VokTarnCause& GetFailedCause() const noexcept { return fFailedCause; }
  VokTarnHistory::Position GetFailedAt() const noexcept { return fFailedAt; }
  // The position at which a level was opened; the number of the innermost one that was open at a position.
  VokTarnHistory::Position GetLevelBegin(unsigned level) const noexcept { return fLevels[level - 1].fHistorySize; }
  unsigned FindLevel(VokTarnHistory::Position position) const noexcept;
  // Makes a value of a network without levels be what another says: `members` where `summary` does not tell them.
  void Assume(VokTarnValueId id, const VokTarnSummary& summary, std::span<const VokLong> members);
  // Filters a copy of a constraint of `original` on the values of this network, which has the same, but no constraints
  // and no levels. Returns 1 when a value has changed. Throws std::invalid_argument when the constraint's class is not
  // published.
  int FilterFor(const VokTarnNetwork& original, VokULong constraint);
  void ForgetFailure() noexcept { fFailed = false; }

  // Called with the number of each constraint that Propagate has filtered (empty: no longer).
  void SetFilterHook(std::function<void(VokULong)> hook) { fFilterHook = std::move(hook); }
  // Appends the number of every value that changes, or that PopLevel restores, to `log` (null: no longer), once until
  // the log is cleared: one propagation can change a value billions of times.
  void SetChangeLog(std::vector<VokTarnValueId>* log) noexcept;
  void ClearChangeLog() noexcept;
  void Schedule(VokULong constraint);

  // A spare value of a type, for the caller to write to, which must not outlive the network. Throws std::bad_alloc.
  Spare TakeSpare(const VokTarnObjectDescriptor* type);
  // Makes `copy` equal to `original`, of the same type; notes when memory was too short for that.
  void Copy(VokTarnAny& copy, const VokTarnAny& original);

  // What is known besides the constraints. The network propagates it first.
  VokTarnClauses& GetClauses() noexcept { return fClauses; }

  // Numbers that belong to constraints, see VokTarnConstraint::CountState.
  std::int64_t GetState(VokULong place) const noexcept { return fState[place].fNumber; }
  void SetState(VokULong place, std::int64_t number);

  // ---- Levels
  void PushLevel();
  void PopLevel();
  unsigned GetLevel() const noexcept { return static_cast<unsigned>(fLevels.size()); }

  // ---- Figures
  std::uint64_t GetPropagations() const noexcept { return fPropagations; }
  bool IsMemoryShort() const noexcept { return fMemoryShort || fMemory.HasSeenFailure(); }

 private:
  friend class VokTarnHistory;
  friend class VokTarnObjectEnvironment;

  struct Saved {
    VokTarnSummary fSummary;
    VokTarnAny* fObject;  // null: the summary is all
    VokTarnValueId fValue;
    VokULong fStamp;
  };
  // Spare values of one type.
  struct Pool {
    const VokTarnObjectDescriptor* fType;
    std::vector<VokTarnAny*> fObjects;  // with room for all that have been made
    std::size_t fMade = 0;
  };
  // Constraints that wait, first come first served.
  struct Queue {
    std::vector<VokULong> fConstraints;
    std::size_t fFirst = 0;
  };
  static constexpr VokULong sNone = 0xFFFFFFFFU;
  // An entailed constraint sleeps until the search goes back to before it became so.
  enum class State : unsigned char { Idle, Waiting, Entailed };
  struct StateNumber {
    std::int64_t fNumber;
    VokULong fStamp;  // as that of a slot
  };
  struct SavedNumber {
    StateNumber fNumber;
    VokULong fPlace;
  };
  struct Level {
    std::size_t fTrailSize;
    std::size_t fStateTrailSize;
    std::size_t fEntailedSize;
    VokULong fStamp;
    VokTarnHistory::Position fHistorySize;
  };

  const VokTarnSlot& GetSlot(VokTarnValueId id) const noexcept { return fValues[id]; }
  VokTarnHistory::Position GetHistorySize() const noexcept { return fHistory ? fHistory->GetSize() : 0; }
  void NoteFailed(VokTarnHistory::Position position) noexcept {
    fFailed = true;
    fFailedCause = fCause;
    fFailedAt = position;
  }
  static VokTarnSummary Summarize(const VokTarnSlot& slot);
  static VokTarnBits FindBits(const VokTarnSlot& slot);
  static bool IsCompact(const VokTarnSlot& slot) { return slot.IsCompact() || FindBits(slot) != 0; }
  void Refresh(const VokTarnSlot& slot) const;
  void Save(VokTarnValueId id, VokTarnSlot& slot);
  int Shrink(VokTarnValueId id, VokTarnSlot& slot, const VokTarnSummary& now);
  int Refill(VokTarnValueId id, VokTarnSlot& slot, std::span<const VokLong> values);
  int TakeOver(VokTarnValueId id, VokTarnSlot& slot, std::span<const VokLong> values);
  int KeepEnd(VokTarnValueId id, VokTarnSlot& slot, std::int64_t limit, bool isUpper);
  void Announce(VokTarnValueId id, VokTarnSlot& slot, const VokTarnSummary& before);
  Outcome Filter();
  unsigned FindPool(const VokTarnObjectDescriptor* type);
  VokTarnAny* TakeSpare(Pool& pool);
  VokULong TakeWaiting() noexcept;
  void ClearAgenda() noexcept;
  void LogChange(VokTarnValueId id);
  void AskWatches(VokTarnSlot& slot);

  VokTarnMemoryWatch fMemory;
  std::vector<VokTarnSlot> fValues;
  std::unordered_map<VokTarnValueId, std::string> fNames;
  std::vector<std::unique_ptr<VokTarnConstraint>> fConstraints;
  std::vector<unsigned char> fPriorities;                   // by constraint
  std::vector<VokULong> fStateSizes;                        // the same
  std::vector<State> fStates;                               // the same
  std::vector<std::unique_ptr<VokTarnConstraint>> fCopies;  // see FilterFor
  std::array<Queue, VokTarnConstraint::sPriorities> fAgenda;
  VokTarnClauses fClauses{*this};
  std::vector<Saved> fTrail;
  std::vector<StateNumber> fState;
  std::vector<SavedNumber> fStateTrail;
  std::vector<VokULong> fEntailed;  // in the order in which they became so
  std::vector<Level> fLevels;
  std::vector<Pool> fPools;
  std::unique_ptr<VokTarnHistory> fHistory;
  VokTarnCause fCause;
  VokTarnCause fFailedCause;
  VokTarnHistory::Position fFailedAt = 0;
  std::function<bool()> fInterrupt;
  std::function<void(VokULong)> fFilterHook;
  std::vector<VokTarnValueId>* fChangeLog = nullptr;
  const VokTarnConstraint* fFailedConstraint = nullptr;
  std::uint64_t fPropagations = 0;
  VokULong fStampCounter = 0;
  VokULong fRunning = sNone;  // the constraint that is being filtered
  bool fIsRunningWoken = false;
  bool fIsAtFixpoint = false;
  bool fIsEntailed = false;
  bool fFailed = false;
  mutable bool fMemoryShort = false;
};
