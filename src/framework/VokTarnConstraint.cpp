#include "framework/VokTarnConstraint.h"

#include <istream>
#include <new>
#include <ostream>

#include "framework/VokTarnNetwork.h"
#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"

namespace {
const char kIdent[] = "VokTarnConstraint";
}

const char* const VokTarnConstraint::sIdent = kIdent;

void VokTarnConstraint::Write(Vokopstream& os) const {
  os << static_cast<int>(fForm) << static_cast<unsigned int>(fArguments.size());
  for (const VokTarnValueId argument : fArguments) {
    os << argument;
  }
}

void VokTarnConstraint::Read(Vokipstream& is) {
  int form = 0;
  unsigned int count = 0;
  is >> form >> count;
  if (form < static_cast<int>(VokTarnForm::Plain) || form > static_cast<int>(VokTarnForm::Inverse)) {
    is.SetFailed();
    return;
  }
  fForm = static_cast<VokTarnForm>(form);
  fArguments.clear();
  try {
    // One by one: a false count ends with the stream and reserves nothing.
    for (; count != 0 && !is.IsFailed(); --count) {
      unsigned int argument = vokNoValue;
      is >> argument;
      fArguments.push_back(argument);
    }
  } catch (const std::bad_alloc&) {
    NoteAllocationFailure();
    is.SetFailed();
  }
  if (is.IsFailed()) {
    fArguments.clear();
  }
}

int VokTarnConstraint::IsDerivedFrom(const char* ident) const {
  return ident == sIdent ? 1 : VokTarnObject::IsDerivedFrom(ident);
}

int VokTarnConstraint::Activate(VokTarnNetwork* network) {
  network->Schedule(fIndex);
  return 1;
}

int VokTarnConstraint::ActivateByArgument(unsigned, int, VokTarnNetwork* network) {
  network->Schedule(fIndex);
  return 1;
}

int VokTarnConstraint::Filter(const VokTarnObjectEnvironment& environment, int) {
  int changed = Propagate(environment);
  for (unsigned i = 0; i < environment.Size(); ++i) {
    if (environment.IsFailed() || (environment.Has(i) && environment.Value(i).GetCardinality() != 1)) {
      return changed;
    }
  }
  if (!IsSatisfied(environment)) {
    changed |= environment.Fail();
  }
  return changed;
}

std::ostream& VokTarnConstraint::PrintOn(std::ostream& os) const {
  os << CastableID() << " (";
  for (std::size_t i = 0; i < fArguments.size(); ++i) {
    os << (i == 0 ? "" : ", ");
    if (fArguments[i] == vokNoValue) {
      os << '-';
    } else {
      os << '#' << fArguments[i];
    }
  }
  return os << ')';
}

void VokTarnConstraint::InputValue(std::istream& is) {
  is.setstate(std::ios::failbit);
}
