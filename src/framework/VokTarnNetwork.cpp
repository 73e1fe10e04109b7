#include "framework/VokTarnNetwork.h"

#include <algorithm>
#include <new>
#include <stdexcept>

#include "framework/VokTarnObjectDescriptor.h"

namespace {

// The only event so far: the value lost possible values.
constexpr int kChanged = 1;

const std::string kNoName;

}  // namespace

VokTarnNetwork::VokTarnNetwork() : fAllocationFailures(VokTarnBase::GetAllocationFailures()) {}

VokTarnNetwork::~VokTarnNetwork() {
  while (!fLevels.empty()) {
    PopLevel();
  }
  for (const Slot& slot : fValues) {
    slot.fType->DestroyObject(slot.fObject);
    VokTarnBase::operator delete(slot.fObject);
  }
  for (const auto& [type, objects] : fSpare) {
    for (VokTarnAny* object : objects) {
      type->DestroyObject(object);
      VokTarnBase::operator delete(object);
    }
  }
}

VokTarnAny* VokTarnNetwork::TakeSpare(const VokTarnObjectDescriptor* type) {
  std::vector<VokTarnAny*>& spare = fSpare[type];
  if (!spare.empty()) {
    VokTarnAny* object = spare.back();
    spare.pop_back();
    return object;
  }
  void* place = VokTarnBase::operator new(type->GetObjectSize());
  if (place == nullptr) {
    fMemoryShort = true;
    return nullptr;
  }
  return static_cast<VokTarnAny*>(static_cast<VokTarnObject*>(type->InitObject(place)));
}

void VokTarnNetwork::ReleaseSpare(const VokTarnObjectDescriptor* type, VokTarnAny* object) {
  if (object != nullptr) {
    fSpare[type].push_back(object);
  }
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
  fValues.push_back({nullptr, type, 0, false, {}});
  VokTarnAny* object = TakeSpare(type);
  if (object == nullptr) {
    fValues.pop_back();
    throw std::bad_alloc();
  }
  fValues.back().fObject = object;
  object->SetUndefinedValue();
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
  if (!constraint->IsApplicable(VokTarnObjectEnvironment(*this, arguments))) {
    throw std::invalid_argument("a constraint does not apply to its arguments");
  }
  const VokULong index = GetConstraintCount();
  constraint->SetIndex(index);
  for (unsigned i = 0; i < arguments.size(); ++i) {
    if (arguments[i] != vokNoValue) {
      fValues[arguments[i]].fWatchers.push_back({index, i});
    }
  }
  fConstraints.push_back(std::move(constraint));
  fWaiting.push_back(false);
  fConstraints.back()->Activate(this);
  return index;
}

const std::string& VokTarnNetwork::GetName(VokTarnValueId id) const noexcept {
  const auto found = fNames.find(id);
  return found == fNames.end() ? kNoName : found->second;
}

void VokTarnNetwork::Schedule(VokULong constraint) {
  if (!fWaiting[constraint]) {
    fAgenda[fConstraints[constraint]->GetPriority()].push_back(constraint);
    fWaiting[constraint] = true;
  }
}

VokTarnNetwork::Outcome VokTarnNetwork::Propagate() {
  fFailedConstraint = nullptr;
  while (!fFailed) {
    const auto queue =
        std::find_if(fAgenda.begin(), fAgenda.end(), [](const auto& candidate) { return !candidate.empty(); });
    if (queue == fAgenda.end()) {
      return Outcome::Fixpoint;
    }
    if (PollInterrupt()) {
      return Outcome::Interrupted;
    }
    ++fPropagations;
    const VokULong index = queue->front();
    queue->pop_front();
    fWaiting[index] = false;
    VokTarnConstraint& constraint = *fConstraints[index];
    constraint.Filter(VokTarnObjectEnvironment(*this, constraint.GetArguments()), 0);
    if (fFailed) {
      fFailedConstraint = &constraint;
    }
  }
  ClearAgenda();
  return Outcome::Failed;
}

VokTarnAny& VokTarnNetwork::Touch(VokTarnValueId id) {
  Slot& slot = fValues[id];
  if (!fLevels.empty() && slot.fStamp != fLevels.back().fStamp) {
    VokTarnAny* copy = TakeSpare(slot.fType);
    if (copy == nullptr) {
      throw std::bad_alloc();
    }
    Copy(*copy, *slot.fObject);
    fTrail.push_back({id, slot.fStamp, copy});
    slot.fStamp = fLevels.back().fStamp;
  }
  return *slot.fObject;
}

void VokTarnNetwork::NoteChange(VokTarnValueId id) {
  LogChange(id);
  const Slot& slot = fValues[id];
  if (slot.fObject->IsNil() != 0) {
    fFailed = true;
    return;
  }
  for (const Watcher& watcher : slot.fWatchers) {
    fConstraints[watcher.fConstraint]->ActivateByArgument(watcher.fArgument, kChanged, this);
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
  for (auto& queue : fAgenda) {
    for (const VokULong index : queue) {
      fWaiting[index] = false;
    }
    queue.clear();
  }
}

void VokTarnNetwork::PushLevel() {
  fLevels.push_back({fTrail.size(), ++fStampCounter});
}

void VokTarnNetwork::PopLevel() {
  while (fTrail.size() > fLevels.back().fTrailSize) {
    const Saved& saved = fTrail.back();
    Slot& slot = fValues[saved.fValue];
    Copy(*slot.fObject, *saved.fCopy);
    slot.fStamp = saved.fStamp;
    LogChange(saved.fValue);
    ReleaseSpare(slot.fType, saved.fCopy);
    fTrail.pop_back();
  }
  fLevels.pop_back();
  ClearAgenda();
  fFailed = false;
}

bool VokTarnNetwork::IsMemoryShort() const noexcept {
  return fMemoryShort || VokTarnBase::GetAllocationFailures() != fAllocationFailures;
}
