#pragma once

#include "constraints/VokTarnConstraintOf.h"

// Rectangles do not overlap: any two of them are apart in one of the two directions. Rectangle i reaches from xi to xi
// + wi and from yi to yi + hi, for the arguments (x1, .., xn, y1, .., yn, w1, .., wn, h1, .., hn), integers of any
// types. The constant is 1 where a rectangle without width or height may not lie inside another either, 0 where it
// takes no room.
//
// Strength  Two rectangles at a time: one that can only be at one side of the other stays there; where they overlap in
//           one direction for sure, the bounds leave the range in which they overlap in the other too. Nothing is told
//           by three or more rectangles, nor by their area.
// Cost      O(n^2).
class VOKTARN_EXPORT VokTarnNonOverlapConstraint final : public VokTarnConstraintOf<VokTarnNonOverlapConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Many; }
  VokTarnEvent GetEvent(unsigned, const VokTarnObjectEnvironment&) const override { return VokTarnEvent::Bounds; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;
  bool Explain(const VokTarnPast& past, const VokTarnAtom* atom, std::vector<VokTarnAtom>& because) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  bool IsStrict() const noexcept { return GetConstants()[0] != 0; }
  int Separate(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j) const;
};
