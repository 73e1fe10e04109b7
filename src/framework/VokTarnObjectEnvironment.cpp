#include "framework/VokTarnObjectEnvironment.h"

#include "framework/VokTarnNetwork.h"

VokTarnObjectEnvironment::VokTarnObjectEnvironment(VokTarnNetwork& network,
                                                   std::span<const VokTarnValueId> arguments) noexcept
    : fNetwork(network), fSlots(network.fValues.data()), fArguments(arguments) {}

VokTarnAny& VokTarnObjectEnvironment::Narrow(unsigned i) const {
  return fNetwork.Touch(fArguments[i]);
}

int VokTarnObjectEnvironment::Note(unsigned i, int status) const {
  if (status != 0) {
    fNetwork.NoteChange(fArguments[i]);
  }
  return status;
}

int VokTarnObjectEnvironment::MakeNil(unsigned i) const {
  Narrow(i).SetNilValue();
  return Note(i, 1);
}

int VokTarnObjectEnvironment::Fail() const {
  fNetwork.Fail();
  return 1;
}

bool VokTarnObjectEnvironment::IsFailed() const noexcept {
  return fNetwork.IsFailed();
}

void VokTarnObjectEnvironment::NoteFixpoint() const noexcept {
  fNetwork.fIsAtFixpoint = true;
}
