#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "framework/VokTarnAny.h"
#include "framework/VokTarnConstraintDescriptor.h"

// What has happened to a value, from the most common to the most telling: each implies the ones before it.
enum class VokTarnEvent : unsigned char {
  Domain,  // it lost possible values
  Bounds,  // among them the least or the greatest
  Single   // one is left
};

// A set of numbers near each other, a bit for each; base/bits.h works on it.
using VokTarnBits = std::uint64_t;

// What a network knows of a value without asking it.
struct VokTarnSummary {
  // Of an integer with holes between bounds less than 64 apart, where that is known: bit k tells whether fLower + k is
  // possible. Else 0.
  VokTarnBits fBits;
  // Of an integer its bounds; of a truth value 0 and 1 as far as they are possible; else 0.
  VokLong fLower;
  VokLong fUpper;
  int fSize;  // the number of possible values, -1 when it cannot be told; as GetCardinality

  std::int64_t GetWidth() const noexcept { return std::int64_t{fUpper} - fLower; }
  bool HasNoHoles() const noexcept { return fSize == GetWidth() + 1; }
};

// A value of a network, what is known of it, and who is to know of its changes. Internal to the framework.
//
// The possible values are in the object or in the summary. The summary holds all of them when the type is a range or
// lists its values, they are known, and the summary's bounds and bits tell them; then the object may be behind
// (fIsStale) and is brought up to date for those who ask for it. So most changes of small domains, of ranges and of
// truth values touch no object, and going back restores a few words.
struct VokTarnSlot {
  struct Watcher {
    VokULong fConstraint;
    unsigned fArgument;   // the value is this argument of it
    VokTarnEvent fEvent;  // the least telling event that the constraint is to see
    bool fIsAdvised;      // the constraint keeps numbers up to date by it
  };
  // A constraint that is asked when the value becomes single, as one of its arguments.
  struct Watch {
    VokULong fConstraint;
    unsigned fArgument;
  };
  enum class Kind : unsigned char { Integer, Truth, Other };
  using Shape = VokTarnObjectDescriptor::Shape;

  // Sets without holes of more members are kept in the object.
  static constexpr int sMostFilled = 1024;

  // Whether the summary holds all possible values.
  bool IsCompact() const noexcept {
    return fShape == Shape::Range
               ? fSummary.fSize > 0
               : fShape == Shape::Listed && fSummary.fSize > 0 &&
                     (fSummary.fBits != 0 || (fSummary.HasNoHoles() && fSummary.fSize <= sMostFilled));
  }
  bool HasNoHoles() const noexcept { return fSummary.HasNoHoles() || (fShape == Shape::Range && fSummary.fSize > 0); }

  VokTarnAny* fObject;
  mutable VokTarnSummary fSummary;  // bits may be found out when they are asked for
  VokULong fStamp;                  // the stamp of the level at which the value was saved last
  Shape fShape;
  Kind fKind;
  bool fIsLogged;
  mutable bool fIsStale;  // the object is not up to date
  VokTarnObjectDescriptor::Lister fLister;
  const VokTarnObjectDescriptor* fType;
  std::vector<Watcher> fWatchers;
  std::vector<Watch> fWatches;
  unsigned fDegree;  // the places at which constraints have it as an argument
  unsigned fPool;    // of spare values of its type
};
