#include "framework/VokTarnObjectEnvironment.h"

#include "framework/VokTarnNetwork.h"

const VokTarnAny& VokTarnObjectEnvironment::Value(unsigned i) const noexcept {
  return fNetwork.GetValue(fArguments[i]);
}

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
