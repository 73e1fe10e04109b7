#pragma once

#include <iosfwd>

#include "framework/VokStreamable.h"

class VokTarnNetwork;
class VokTarnObjectDescriptor;
class VokTarnObjectEnvironment;

// An object of a network: a value, or a constraint over values.
class VOKTARN_EXPORT VokTarnObject : public VokStreamable {
 public:
  static const char* const sIdent;

  using VokStreamable::VokStreamable;

  int IsDerivedFrom(const char* ident) const override;
  // The type of this object; null when the type has not been published yet.
  virtual const VokTarnObjectDescriptor* GetDescriptor() const = 0;
  // Called once, when the object has been added to `network`. Returns 1 when the object now waits to be
  // filtered, else 0. A value does nothing.
  virtual int Activate(VokTarnNetwork* network);
  // Called when argument number `argument` changed; `event` is a set of VokTarnEvent bits. As Activate.
  virtual int ActivateByArgument(unsigned argument, int event, VokTarnNetwork* network);
  // Narrows the arguments that `environment` gives access to. Returns 1 when one changed, else 0.
  // `effort` 0 is the ordinary propagation; larger values are free for constraints that can do more.
  virtual int Filter(const VokTarnObjectEnvironment& environment, int effort);
  // The text form, written to and read from. A text that cannot be read sets the stream's fail bit.
  virtual std::ostream& PrintOn(std::ostream& os) const = 0;
  virtual void InputValue(std::istream& is) = 0;
};
