#pragma once

#include <vector>

#include "constraints/VokTarnConstraintOf.h"

// r = a_i for the arguments (r, i), integers of any types, and the constants a1 .. an. Places count from 1; where i is
// none of 1 .. n the constraint does not hold.
//
// Strength  Domain consistent where both types list their values; i is of its own, r keeps its bounds where its type
//           lists none. Of an i that lists none every place between the bounds counts.
// Cost      O(k + m) for k places that i may be and m different constants, O(k log m) look-ups where r is listed.
class VOKTARN_EXPORT VokTarnConstantElementConstraint final
    : public VokTarnConstraintOf<VokTarnConstantElementConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Ternary; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;
  bool Explain(const VokTarnPast& past, const VokTarnAtom* atom, std::vector<VokTarnAtom>& because) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  void ReadConstants() const;
  bool IsPlace(const VokTarnObjectEnvironment& environment, std::int64_t place) const;
  int NarrowIndex(const VokTarnObjectEnvironment& environment) const;
  int NarrowResult(const VokTarnObjectEnvironment& environment) const;

  // The different constants, ascending; of each constant its place among them. Read once.
  mutable std::vector<VokLong> fValues;
  mutable std::vector<unsigned> fRanks;
  // Room for the lists of one call.
  mutable std::vector<VokLong> fKept;
  mutable std::vector<unsigned char> fMarks;
};
