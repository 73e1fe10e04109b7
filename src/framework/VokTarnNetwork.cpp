#include "framework/VokTarnNetwork.h"

#include <algorithm>
#include <new>
#include <stdexcept>

#include "framework/VokTarnBoolean.h"
#include "framework/VokTarnObjectDescriptor.h"
#include "framework/VokTarnObjectEnvironment.h"

namespace {

const std::string kNoName;

// Constraints that have been taken from a queue are kept in it up to this number at least.
constexpr std::size_t kMostTaken = 1024;

VokTarnSlot::Kind FindKind(const VokTarnAny& value) {
  return value.IsDerivedFrom(VokTarnInteger::sIdent) != 0   ? VokTarnSlot::Kind::Integer
         : value.IsDerivedFrom(VokTarnBoolean::sIdent) != 0 ? VokTarnSlot::Kind::Truth
                                                            : VokTarnSlot::Kind::Other;
}

// Afterwards `vector` grows to `size` elements without an allocation.
template <class Element>
void MakeRoom(std::vector<Element>& vector, std::size_t size) {
  if (vector.capacity() < size) {
    vector.reserve(std::max(size, 2 * vector.capacity()));
  }
}

}  // namespace

VokTarnNetwork::VokTarnNetwork() = default;

VokTarnNetwork::~VokTarnNetwork() {
  while (!fLevels.empty()) {
    PopLevel();
  }
  const auto destroy = [](const VokTarnObjectDescriptor* type, VokTarnAny* object) {
    type->DestroyObject(object);
    VokTarnBase::operator delete(object);
  };
  for (const VokTarnSlot& slot : fValues) {
    destroy(slot.fType, slot.fObject);
  }
  for (const Pool& pool : fPools) {
    for (VokTarnAny* object : pool.fObjects) {
      destroy(pool.fType, object);
    }
  }
}

unsigned VokTarnNetwork::FindPool(const VokTarnObjectDescriptor* type) {
  const auto found = std::ranges::find(fPools, type, &Pool::fType);
  if (found != fPools.end()) {
    return static_cast<unsigned>(found - fPools.begin());
  }
  fPools.push_back({type, {}});
  return static_cast<unsigned>(fPools.size() - 1);
}

VokTarnAny* VokTarnNetwork::TakeSpare(Pool& pool) {
  if (!pool.fObjects.empty()) {
    VokTarnAny* object = pool.fObjects.back();
    pool.fObjects.pop_back();
    return object;
  }
  MakeRoom(pool.fObjects, pool.fMade + 1);
  void* place = VokTarnBase::operator new(pool.fType->GetObjectSize());
  if (place == nullptr) {
    throw std::bad_alloc();
  }
  ++pool.fMade;
  return static_cast<VokTarnAny*>(static_cast<VokTarnObject*>(pool.fType->InitObject(place)));
}

VokTarnNetwork::Spare VokTarnNetwork::TakeSpare(const VokTarnObjectDescriptor* type) {
  const unsigned pool = FindPool(type);
  return {TakeSpare(fPools[pool]), {this, pool}};
}

void VokTarnNetwork::Copy(VokTarnAny& copy, const VokTarnAny& original) {
  copy.Assign(original);
  if (copy.GetCardinality() != original.GetCardinality()) {
    fMemoryShort = true;
  }
}

VokTarnValueId VokTarnNetwork::AddValue(const VokTarnObjectDescriptor* type, std::string name) {
  if (type == nullptr || type->GetObjectSize() == 0) {
    throw std::invalid_argument("a value needs a concrete type");
  }
  const VokTarnValueId id = GetValueCount();
  if (!name.empty()) {
    fNames.emplace(id, std::move(name));
  }
  const unsigned pool = FindPool(type);
  MakeRoom(fValues, id + std::size_t{1});
  VokTarnAny* object = TakeSpare(fPools[pool]);
  fValues.push_back({object,
                     {},
                     0,
                     type->GetShape(),
                     VokTarnSlot::Kind::Other,
                     false,
                     false,
                     type->GetLister(),
                     type,
                     {},
                     {},
                     0,
                     pool});
  object->SetUndefinedValue();
  VokTarnSlot& slot = fValues.back();
  slot.fKind = FindKind(*object);
  slot.fSummary = Summarize(slot);
  object->Activate(this);
  return id;
}

VokULong VokTarnNetwork::AddConstraint(std::unique_ptr<VokTarnConstraint> constraint) {
  if (constraint == nullptr) {
    throw std::invalid_argument("no constraint");
  }
  const std::span<const VokTarnValueId> arguments = constraint->GetArguments();
  for (const VokTarnValueId argument : arguments) {
    if (argument != vokNoValue && argument >= fValues.size()) {
      throw std::invalid_argument("an argument of a constraint is not a value of the network");
    }
  }
  const VokTarnObjectEnvironment environment(*this, arguments);
  if (!constraint->IsApplicable(environment)) {
    throw std::invalid_argument("a constraint does not apply to its arguments");
  }
  const VokULong index = GetConstraintCount();
  const unsigned numbers = constraint->CountState(environment);
  constraint->SetIndex(index, static_cast<VokULong>(fState.size()));
  fState.resize(fState.size() + numbers);
  fStateSizes.push_back(numbers);
  const std::vector<unsigned> watched = constraint->GetWatched(environment);
  for (const unsigned i : watched) {
    fValues[arguments[i]].fWatches.push_back({index, i});
  }
  for (unsigned i = 0; i < arguments.size(); ++i) {
    if (arguments[i] != vokNoValue) {
      VokTarnSlot& slot = fValues[arguments[i]];
      ++slot.fDegree;
      if (watched.empty()) {
        slot.fWatchers.push_back({index, i, constraint->GetEvent(i, environment), numbers != 0});
      }
    }
  }
  constraint->InitState(environment);
  fPriorities.push_back(static_cast<unsigned char>(constraint->GetPriority()));
  fConstraints.push_back(std::move(constraint));
  fStates.push_back(State::Idle);
  fConstraints.back()->Activate(this);
  return index;
}

const std::string& VokTarnNetwork::GetName(VokTarnValueId id) const noexcept {
  const auto found = fNames.find(id);
  return found == fNames.end() ? kNoName : found->second;
}

void VokTarnNetwork::Schedule(VokULong constraint) {
  if (constraint == fRunning) {
    fIsRunningWoken = true;
  } else if (fStates[constraint] == State::Idle) {
    fAgenda[fPriorities[constraint]].fConstraints.push_back(constraint);
    fStates[constraint] = State::Waiting;
  }
}

// The constraint that has waited longest among the cheapest; sNone when none waits.
VokULong VokTarnNetwork::TakeWaiting() noexcept {
  for (Queue& queue : fAgenda) {
    if (queue.fFirst != queue.fConstraints.size()) {
      const VokULong constraint = queue.fConstraints[queue.fFirst++];
      // What has been taken goes when it is the greater part: a queue that never runs empty does not grow.
      if (queue.fFirst == queue.fConstraints.size() ||
          (queue.fFirst >= kMostTaken && 2 * queue.fFirst >= queue.fConstraints.size())) {
        queue.fConstraints.erase(queue.fConstraints.begin(),
                                 queue.fConstraints.begin() + static_cast<std::ptrdiff_t>(queue.fFirst));
        queue.fFirst = 0;
      }
      fStates[constraint] = State::Idle;
      return constraint;
    }
  }
  return sNone;
}

VokTarnNetwork::Outcome VokTarnNetwork::Propagate() {
  const Outcome outcome = Filter();
  if (IsMemoryShort()) {
    throw std::bad_alloc();
  }
  return outcome;
}

// Filters what waits, until nothing does.
VokTarnNetwork::Outcome VokTarnNetwork::Filter() {
  fFailedConstraint = nullptr;
  while (!fFailed) {
    if (PollInterrupt()) {
      return Outcome::Interrupted;
    }
    if (fClauses.HasWork()) {
      fClauses.Propagate();
      fCause = {};
      continue;
    }
    const VokULong index = TakeWaiting();
    if (index == sNone) {
      return Outcome::Fixpoint;
    }
    ++fPropagations;
    VokTarnConstraint& constraint = *fConstraints[index];
    fRunning = index;
    fIsRunningWoken = false;
    fCause = {VokTarnCause::Kind::Constraint, index, {}};
    constraint.Filter(VokTarnObjectEnvironment(*this, constraint.GetArguments()), 0);
    fRunning = sNone;
    fCause = {};
    if (fFailed) {
      fFailedConstraint = &constraint;
    } else if (fIsEntailed) {
      fStates[index] = State::Entailed;
      fEntailed.push_back(index);
    } else if (fIsRunningWoken && !fIsAtFixpoint) {
      Schedule(index);
    }
    if (fFilterHook) {
      fFilterHook(index);
    }
  }
  ClearAgenda();
  return Outcome::Failed;
}

// Tells those who wait for it that the value has changed.
void VokTarnNetwork::Announce(VokTarnValueId id, VokTarnSlot& slot, const VokTarnSummary& before) {
  LogChange(id);
  if (fHistory != nullptr) {
    fHistory->NoteChange(id, before, fCause);
  }
  if (slot.fSummary.fSize == 0) {
    if (!fFailed) {
      NoteFailed(fHistory != nullptr ? GetHistorySize() - 1 : 0);
    }
    // No constraint's numbers are read before the way back restores them.
    return;
  }
  if (!fClauses.IsEmpty()) {
    fClauses.NoteChange(id, before, slot.fSummary);
  }
  const bool isInside = slot.fSummary.fLower == before.fLower && slot.fSummary.fUpper == before.fUpper;
  const VokTarnEvent event = slot.fSummary.fSize == 1                             ? VokTarnEvent::Single
                             : isInside && slot.fKind != VokTarnSlot::Kind::Other ? VokTarnEvent::Domain
                                                                                  : VokTarnEvent::Bounds;
  for (const VokTarnSlot::Watcher& watcher : slot.fWatchers) {
    if (watcher.fEvent <= event) {
      if (watcher.fIsAdvised) {
        const VokTarnConstraint& constraint = *fConstraints[watcher.fConstraint];
        if (!constraint.Advise(watcher.fArgument, before, VokTarnObjectEnvironment(*this, constraint.GetArguments()))) {
          continue;
        }
      }
      Schedule(watcher.fConstraint);
    }
  }
  if (event == VokTarnEvent::Single) {
    AskWatches(slot);
  }
}

// Asks those who watch the value, which has become single, what they watch from now on. It is never the same value:
// they watch what is still open.
void VokTarnNetwork::AskWatches(VokTarnSlot& slot) {
  for (std::size_t i = 0; i < slot.fWatches.size();) {
    const VokTarnSlot::Watch watch = slot.fWatches[i];
    const VokTarnConstraint& constraint = *fConstraints[watch.fConstraint];
    const std::span<const VokTarnValueId> arguments = constraint.GetArguments();
    const unsigned next = constraint.MoveWatch(watch.fArgument, VokTarnObjectEnvironment(*this, arguments));
    if (next != VokTarnConstraint::sWake && next != watch.fArgument) {
      fValues[arguments[next]].fWatches.push_back({watch.fConstraint, next});
      slot.fWatches[i] = slot.fWatches.back();
      slot.fWatches.pop_back();
      continue;
    }
    if (next == VokTarnConstraint::sWake) {
      Schedule(watch.fConstraint);
    }
    ++i;
  }
}

void VokTarnNetwork::SetChangeLog(std::vector<VokTarnValueId>* log) noexcept {
  ClearChangeLog();
  fChangeLog = log;
}

void VokTarnNetwork::ClearChangeLog() noexcept {
  if (fChangeLog != nullptr) {
    for (const VokTarnValueId id : *fChangeLog) {
      fValues[id].fIsLogged = false;
    }
    fChangeLog->clear();
  }
}

void VokTarnNetwork::LogChange(VokTarnValueId id) {
  if (fChangeLog != nullptr && !fValues[id].fIsLogged) {
    fValues[id].fIsLogged = true;
    fChangeLog->push_back(id);
  }
}

void VokTarnNetwork::ClearAgenda() noexcept {
  fClauses.DropWork();
  for (Queue& queue : fAgenda) {
    for (; queue.fFirst != queue.fConstraints.size(); ++queue.fFirst) {
      fStates[queue.fConstraints[queue.fFirst]] = State::Idle;
    }
    queue.fConstraints.clear();
    queue.fFirst = 0;
  }
}

void VokTarnNetwork::SetState(VokULong place, std::int64_t number) {
  StateNumber& state = fState[place];
  if (!fLevels.empty() && state.fStamp != fLevels.back().fStamp) {
    fStateTrail.push_back({state, place});
    state.fStamp = fLevels.back().fStamp;
  }
  state.fNumber = number;
}

void VokTarnNetwork::PushLevel() {
  fLevels.push_back({fTrail.size(), fStateTrail.size(), fEntailed.size(), ++fStampCounter, GetHistorySize()});
}

void VokTarnNetwork::PopLevel() {
  while (fTrail.size() > fLevels.back().fTrailSize) {
    const Saved& saved = fTrail.back();
    LogChange(saved.fValue);
    VokTarnSlot& slot = fValues[saved.fValue];
    slot.fIsStale = saved.fObject == nullptr;
    if (saved.fObject != nullptr) {
      fPools[slot.fPool].fObjects.push_back(slot.fObject);
      slot.fObject = saved.fObject;
    }
    slot.fSummary = saved.fSummary;
    slot.fStamp = saved.fStamp;
    fTrail.pop_back();
  }
  while (fStateTrail.size() > fLevels.back().fStateTrailSize) {
    fState[fStateTrail.back().fPlace] = fStateTrail.back().fNumber;
    fStateTrail.pop_back();
  }
  while (fEntailed.size() > fLevels.back().fEntailedSize) {
    fStates[fEntailed.back()] = State::Idle;
    fEntailed.pop_back();
  }
  if (fHistory != nullptr) {
    fHistory->CutTo(fLevels.back().fHistorySize);
  }
  fLevels.pop_back();
  ClearAgenda();
  fFailed = false;
  fFailedConstraint = nullptr;
}

void VokTarnNetwork::BeginHistory() {
  fHistory = std::make_unique<VokTarnHistory>(*this);
  for (Level& level : fLevels) {
    level.fHistorySize = 0;
  }
}

unsigned VokTarnNetwork::FindLevel(VokTarnHistory::Position position) const noexcept {
  const auto behind = std::ranges::upper_bound(fLevels, position, {}, &Level::fHistorySize);
  return static_cast<unsigned>(behind - fLevels.begin());
}

int VokTarnNetwork::FilterFor(const VokTarnNetwork& original, VokULong constraint) {
  fCopies.resize(original.fConstraints.size());
  std::unique_ptr<VokTarnConstraint>& copy = fCopies[constraint];
  const VokTarnConstraint& known = *original.fConstraints[constraint];
  const VokTarnObjectEnvironment environment(*this, known.GetArguments());
  const VokULong size = original.fStateSizes[constraint];
  if (copy == nullptr) {
    const VokTarnObjectDescriptor* published = known.GetDescriptor();
    if (published == nullptr || published->IsDerivedFrom(VokTarnConstraintDescriptor::sIdent) == 0) {
      throw std::invalid_argument("the class of a constraint is not published");
    }
    copy.reset(static_cast<const VokTarnConstraintDescriptor*>(published)->Create(known.GetArguments(), known.GetForm(),
                                                                                  known.GetConstants()));
    if (copy == nullptr) {
      throw std::bad_alloc();
    }
    copy->SetIndex(constraint, static_cast<VokULong>(fState.size()));
    fState.resize(fState.size() + size);
    copy->GetWatched(environment);
  }
  if (size != 0) {
    const VokULong first = copy->GetStatePlace();
    std::fill_n(fState.begin() + first, size, StateNumber{});
    copy->InitState(environment);
  }
  return copy->Filter(environment, 0);
}

void VokTarnNetwork::RenumberClauses(std::span<const VokULong> numbers) {
  if (fHistory != nullptr) {
    fHistory->RenumberClauses(numbers);
  }
}
