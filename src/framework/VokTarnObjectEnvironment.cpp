#include "framework/VokTarnObjectEnvironment.h"

#include "framework/VokTarnNetwork.h"

VokTarnObjectEnvironment::VokTarnObjectEnvironment(VokTarnNetwork& network,
                                                   std::span<const VokTarnValueId> arguments) noexcept
    : fNetwork(network), fSlots(network.fValues.data()), fIsFailed(network.fFailed), fArguments(arguments) {}

VokTarnAny& VokTarnObjectEnvironment::Narrow(unsigned i) const {
  return fNetwork.Touch(fArguments[i]);
}

void VokTarnObjectEnvironment::NoteChange(unsigned i) const {
  fNetwork.NoteChange(fArguments[i]);
}

int VokTarnObjectEnvironment::MakeNil(unsigned i) const {
  Narrow(i).SetNilValue();
  return Note(i, 1);
}

int VokTarnObjectEnvironment::Fail() const {
  fNetwork.Fail();
  return 1;
}

void VokTarnObjectEnvironment::NoteFixpoint() const noexcept {
  fNetwork.fIsAtFixpoint = true;
}

void VokTarnObjectEnvironment::NoteEntailed() const noexcept {
  fNetwork.fIsEntailed = true;
}
