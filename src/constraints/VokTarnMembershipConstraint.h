#pragma once

#include "constraints/VokTarnConstraintOf.h"
#include "framework/VokTarnRelation.h"

// x is in a set of integers, for the arguments (x), and with the truth as the second where the mode asks for one:
// integers of any types.
//
// Constants  The mode (VokTarnRelation.h), then the set as ranges that ascend, with gaps between them: the least and
//            the greatest number of each.
// Strength   Domain consistent where the type of x lists its values, else bounds; an interval keeps the holes.
// Cost       O(log r + n) for r ranges and n listed values, O(log r) where bounds decide.
class VOKTARN_EXPORT VokTarnMembershipConstraint final : public VokTarnConstraintOf<VokTarnMembershipConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Unary; }
  VokTarnEvent GetEvent(unsigned argument, const VokTarnObjectEnvironment& environment) const override;
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;
  bool Explain(const VokTarnPast& past, const VokTarnAtom* atom, std::vector<VokTarnAtom>& because) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  VokTarnMode GetMode() const noexcept { return static_cast<VokTarnMode>(GetConstants()[0]); }
  std::size_t GetRanges() const noexcept { return GetConstants().size() / 2; }
  VokLong GetLower(std::size_t range) const noexcept { return GetConstants()[1 + 2 * range]; }
  VokLong GetUpper(std::size_t range) const noexcept { return GetConstants()[2 + 2 * range]; }
  // The first range that ends at v or above; the number of ranges when there is none.
  std::size_t FindRange(VokLong v) const noexcept;
  bool Has(VokLong v) const noexcept;
  int KeepInside(const VokTarnObjectEnvironment& environment) const;
  int KeepOutside(const VokTarnObjectEnvironment& environment) const;
};
