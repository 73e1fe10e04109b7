#pragma once

#include <span>
#include <vector>

#include "framework/VokTarnAny.h"
#include "framework/VokTarnConstraintDescriptor.h"

// What has happened to a value, from the most common to the most telling: each implies the ones before it.
enum class VokTarnEvent : unsigned {
  Domain,  // it lost possible values
  Bounds,  // among them the least or the greatest
  Single   // one is left
};

// What a network knows of a value without asking it.
struct VokTarnSummary {
  int fSize;  // the number of possible values, -1 when it cannot be told; as GetCardinality
  // Of an integer its bounds; of a truth value 0 and 1 as far as they are possible; else 0.
  VokLong fLower;
  VokLong fUpper;
};

// A value of a network, what is known of it, and who is to know of its changes. Internal to the framework.
struct VokTarnSlot {
  struct Watcher {
    VokULong fConstraint;
    VokTarnEvent fEvent;  // the least telling event that the constraint is to see
  };
  // A constraint that is asked when the value becomes single, as one of its arguments.
  struct Watch {
    VokULong fConstraint;
    unsigned fArgument;
  };
  enum class Kind : unsigned char { Integer, Truth, Other };

  VokTarnAny* fObject;
  VokTarnSummary fSummary;
  VokULong fStamp;  // the stamp of the level at which the value was saved last
  VokTarnObjectDescriptor::Lister fLister;
  const VokTarnObjectDescriptor* fType;
  std::vector<Watcher> fWatchers;
  std::vector<Watch> fWatches;
  unsigned fDegree;  // the places at which constraints have it as an argument
  unsigned fPool;    // of spare values of its type
  Kind fKind;
  bool fIsLogged;
};
