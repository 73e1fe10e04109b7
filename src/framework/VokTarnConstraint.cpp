#include "framework/VokTarnConstraint.h"

#include <istream>
#include <new>
#include <ostream>

#include "framework/VokTarnNetwork.h"
#include "framework/VokTarnObjectEnvironment.h"
#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"

namespace {

const char kIdent[] = "VokTarnConstraint";

// Set in a record's form when a list of constants follows the arguments.
constexpr int kHasConstants = 16;

// Reads a count and as many numbers, one by one: a false count ends with the stream and reserves nothing.
template <class Number>
void ReadNumbers(Vokipstream& is, std::vector<Number>& numbers) {
  unsigned int count = 0;
  is >> count;
  for (; count != 0 && !is.IsFailed(); --count) {
    Number number = 0;
    is >> number;
    numbers.push_back(number);
  }
}

}  // namespace

const char* const VokTarnConstraint::sIdent = kIdent;

void VokTarnConstraint::Write(Vokopstream& os) const {
  os << (static_cast<int>(fForm) | (fConstants.empty() ? 0 : kHasConstants))
     << static_cast<unsigned int>(fArguments.size());
  for (const VokTarnValueId argument : fArguments) {
    os << argument;
  }
  if (!fConstants.empty()) {
    os << static_cast<unsigned int>(fConstants.size());
    for (const VokLong constant : fConstants) {
      os << constant;
    }
  }
}

void VokTarnConstraint::Read(Vokipstream& is) {
  int form = 0;
  is >> form;
  const bool hasConstants = (form & kHasConstants) != 0;
  form &= ~kHasConstants;
  if (form < static_cast<int>(VokTarnForm::Plain) || form > static_cast<int>(VokTarnForm::Inverse)) {
    is.SetFailed();
    return;
  }
  fForm = static_cast<VokTarnForm>(form);
  fArguments.clear();
  fConstants.clear();
  try {
    ReadNumbers(is, fArguments);
    if (hasConstants) {
      ReadNumbers(is, fConstants);
    }
  } catch (const std::bad_alloc&) {
    NoteAllocationFailure();
    is.SetFailed();
  }
  if (is.IsFailed()) {
    fArguments.clear();
    fConstants.clear();
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

// Whether some argument has more than one value. From where one was found last, around: arguments mostly become known
// in some order.
bool VokTarnConstraint::HasOpenArgument(const VokTarnObjectEnvironment& environment) const {
  const unsigned size = environment.Size();
  unsigned i = fOpen < size ? fOpen : 0;
  for (unsigned seen = 0; seen < size; ++seen) {
    if (environment.Has(i) && !environment.IsSingle(i)) {
      fOpen = i;
      return true;
    }
    i = i + 1 < size ? i + 1 : 0;
  }
  return false;
}

int VokTarnConstraint::Filter(const VokTarnObjectEnvironment& environment, int) {
  environment.BeginFiltering();
  const int changed = Propagate(environment);
  // What is entailed holds whatever is still open, and needs no check when nothing is.
  return environment.IsFailed() || environment.IsEntailed() || HasOpenArgument(environment) || IsSatisfied(environment)
             ? changed
             : changed | environment.Fail();
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
