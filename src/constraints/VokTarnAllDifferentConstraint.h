#pragma once

#include <cstdint>
#include <vector>

#include "constraints/VokTarnConstraintOf.h"

// All arguments, integers of any types, have different values; where there are constants, each argument plus its
// constant.
//
// Strength  Domain consistent while at most 256 arguments with 16384 possible values in all are open: a value stays
//           when some assignment with all values different has it. Beyond that, and beside undefined
//           arguments, values that have become known leave the others.
// Cost      Of n arguments, k known and e possible values in all: O(k (n - k)) removals, and O(n e) for the matching at
//           worst, see valueMatching.h. Up to 64 arguments within a window of 64 values are words: O(n + e) for most
//           calls, because the matching of the last one is mended; O(n^2) at worst where arguments have only each
//           other's values. Where no k arguments have at most k values each, no matching is made.
class VOKTARN_EXPORT VokTarnAllDifferentConstraint final : public VokTarnConstraintOf<VokTarnAllDifferentConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Many; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;
  bool Explain(const VokTarnPast& past, const VokTarnAtom* atom, std::vector<VokTarnAtom>& because) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  std::int64_t GetOffset(unsigned i) const noexcept { return GetConstants().empty() ? 0 : GetConstants()[i]; }
  int PropagateSmall(const VokTarnObjectEnvironment& environment, std::int64_t base) const;
  int EliminateKnown(const VokTarnObjectEnvironment& environment) const;
  int EliminateUnsupported(const VokTarnObjectEnvironment& environment) const;

  // The values of the last matching: a hint only.
  mutable std::vector<VokLong> fPartners;
  // Room for the lists of one call.
  mutable std::vector<unsigned> fOpen;
  mutable std::vector<unsigned> fCounts;
  mutable std::vector<int> fSizes;
  mutable std::vector<std::int64_t> fKnown;
  mutable std::vector<std::int64_t> fBecameKnown;
};
