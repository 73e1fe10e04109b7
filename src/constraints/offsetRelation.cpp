#include <algorithm>
#include <vector>

#include "constraints/VokTarnOffsetRelationConstraint.h"
#include "constraints/narrowing.h"
#include "constraints/scratchValues.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnOffsetRelationConstraint)

namespace {

constexpr unsigned kX = 0;
constexpr unsigned kY = 1;
constexpr unsigned kTruth = 2;

}  // namespace

VokTarnEvent VokTarnOffsetRelationConstraint::GetEvent(unsigned argument,
                                                       const VokTarnObjectEnvironment& environment) const {
  if (argument == kTruth || (GetRelation() == VokTarnRelation::Different && GetMode() == VokTarnMode::Plain)) {
    return VokTarnEvent::Single;
  }
  const bool isByValue = GetRelation() != VokTarnRelation::AtMost && environment.IsListed(kX + kY - argument);
  return isByValue ? VokTarnEvent::Domain : VokTarnEvent::Bounds;
}

bool VokTarnOffsetRelationConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  const std::span<const VokLong> c = GetConstants();
  return c.size() == 4 && c[0] >= 0 && c[0] <= 2 && c[1] >= 0 && c[1] <= 2 && (c[2] == 1 || c[2] == -1) &&
         environment.Size() == (GetMode() == VokTarnMode::Plain ? 2 : 3) &&
         AreIntegers(environment, 0, environment.Size());
}

bool VokTarnOffsetRelationConstraint::Holds(std::int64_t x, std::int64_t y) const noexcept {
  switch (GetRelation()) {
    case VokTarnRelation::Equal:
      return x == FromSecond(y);
    case VokTarnRelation::AtMost:
      return x <= FromSecond(y);
    case VokTarnRelation::Different:
      break;
  }
  return x != FromSecond(y);
}

bool VokTarnOffsetRelationConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const bool holds = Holds(ExactValue(environment, kX), ExactValue(environment, kY));
  if (GetMode() == VokTarnMode::Plain) {
    return holds;
  }
  const std::int64_t truth = ExactValue(environment, kTruth);
  return (truth == 1 && holds) || (truth == 0 && (!holds || GetMode() == VokTarnMode::HalfReified));
}

int VokTarnOffsetRelationConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const VokTarnMode mode = GetMode();
  if (mode == VokTarnMode::Plain) {
    return Enforce(environment, false);
  }
  if (environment.IsSingle(kTruth)) {
    const VokLong truth = environment.Lower(kTruth);
    if (truth == 0 && mode == VokTarnMode::HalfReified) {
      environment.NoteEntailed();
      return 0;
    }
    return truth == 0 || truth == 1 ? Enforce(environment, truth == 0) : environment.Fail();
  }
  bool canHold = true;
  bool canFail = true;
  if (GetRelation() == VokTarnRelation::AtMost) {
    const std::int64_t first = FromSecond(environment.Lower(kY));
    const std::int64_t last = FromSecond(environment.Upper(kY));
    canHold = environment.Lower(kX) <= std::max(first, last);
    canFail = environment.Upper(kX) > std::min(first, last);
  } else {
    canHold = CanBeEqual(environment);
    canFail = !canHold || !environment.IsSingle(kX) || !environment.IsSingle(kY);
    if (GetRelation() == VokTarnRelation::Different) {
      std::swap(canHold, canFail);
    }
  }
  if (!canHold || (!canFail && mode == VokTarnMode::Reified)) {
    environment.NoteEntailed();
    return environment.KeepExactly(kTruth, canHold ? 1 : 0);
  }
  return environment.KeepBetween(kTruth, 0, 1);
}

bool VokTarnOffsetRelationConstraint::CanBeEqual(const VokTarnObjectEnvironment& environment) const {
  if (environment.IsSingle(kX)) {
    return environment.MayBe(kY, FromFirst(environment.Lower(kX)));
  }
  if (environment.IsSingle(kY)) {
    return environment.MayBe(kX, FromSecond(environment.Lower(kY)));
  }
  const auto [lower, upper] = std::minmax({FromSecond(environment.Lower(kY)), FromSecond(environment.Upper(kY))});
  if (environment.Upper(kX) < lower || environment.Lower(kX) > upper) {
    return false;
  }
  if (environment.HasNoHoles(kX) && environment.HasNoHoles(kY)) {
    return true;
  }
  const std::span<const VokLong> xs = environment.Members(kX);
  const auto isPartner = [&](VokLong x) { return environment.MayBe(kY, FromFirst(x)); };
  const auto isOpposite = [&](VokLong y) { return environment.MayBe(kX, FromSecond(y)); };
  return !xs.empty() ? std::ranges::any_of(xs, isPartner)
                     : environment.Members(kY).empty() || std::ranges::any_of(environment.Members(kY), isOpposite);
}

int VokTarnOffsetRelationConstraint::Enforce(const VokTarnObjectEnvironment& environment, bool isNegated) const {
  if (GetRelation() == VokTarnRelation::AtMost) {
    return KeepAtMostSecond(environment, isNegated);
  }
  return (GetRelation() == VokTarnRelation::Equal) != isNegated ? KeepEqualSides(environment)
                                                                : KeepDifferent(environment);
}

int VokTarnOffsetRelationConstraint::KeepDifferent(const VokTarnObjectEnvironment& environment) const {
  int changed = 0;
  const auto remove = [&](unsigned i, std::int64_t v) {
    const bool isInside = v >= environment.Lower(i) && v <= environment.Upper(i);
    const int removed = isInside ? environment.Remove(i, static_cast<VokLong>(v)) : 0;
    // An interval keeps a value inside.
    if (environment.IsListed(i) || v < environment.Lower(i) || v > environment.Upper(i)) {
      environment.NoteEntailed();
    }
    return removed;
  };
  if (environment.IsSingle(kX)) {
    changed = remove(kY, FromFirst(environment.Lower(kX)));
  } else if (environment.IsSingle(kY)) {
    changed = remove(kX, FromSecond(environment.Lower(kY)));
  }
  return changed;
}

// x <= s y + d; negated x >= s y + d + 1. x is cut at one end only, and y by the other end of x.
int VokTarnOffsetRelationConstraint::KeepAtMostSecond(const VokTarnObjectEnvironment& environment,
                                                      bool isNegated) const {
  const auto far = [&](bool isUpper) { return isUpper ? environment.Upper(kY) : environment.Lower(kY); };
  const std::int64_t one = isNegated ? 1 : 0;
  const std::int64_t limit = FromSecond(far(isNegated == IsMirrored())) + one;
  int changed = isNegated ? environment.KeepAtLeast(kX, limit) : environment.KeepAtMost(kX, limit);
  if (environment.IsFailed()) {
    return changed;
  }
  const std::int64_t nearest = FromSecond(far(isNegated != IsMirrored())) + one;
  if (isNegated ? environment.Lower(kX) >= nearest : environment.Upper(kX) <= nearest) {
    environment.NoteEntailed();
    return changed;
  }
  const std::int64_t end = FromFirst(std::int64_t{isNegated ? environment.Upper(kX) : environment.Lower(kX)} - one);
  changed |= isNegated == IsMirrored() ? environment.KeepAtLeast(kY, end) : environment.KeepAtMost(kY, end);
  if (!environment.AreSame(kX, kY)) {
    environment.NoteFixpoint();
  }
  return changed;
}

int VokTarnOffsetRelationConstraint::KeepEqualSides(const VokTarnObjectEnvironment& environment) const {
  if (environment.IsSingle(kX)) {
    return environment.KeepExactly(kY, FromFirst(environment.Lower(kX)));
  }
  if (environment.IsSingle(kY)) {
    return environment.KeepExactly(kX, FromSecond(environment.Lower(kY)));
  }
  const int changed = KeepEqualBounds(environment);
  return environment.IsFailed() || environment.AreSame(kX, kY) || !environment.IsListed(kX) || !environment.IsListed(kY)
             ? changed
             : changed | KeepCommonValues(environment);
}

int VokTarnOffsetRelationConstraint::KeepEqualBounds(const VokTarnObjectEnvironment& environment) const {
  int changed = 0;
  for (int narrowed = 1; narrowed != 0 && !environment.IsFailed();) {
    const auto [lower, upper] = std::minmax({FromSecond(environment.Lower(kY)), FromSecond(environment.Upper(kY))});
    narrowed = environment.KeepAtLeast(kX, lower);
    narrowed |= environment.IsFailed() ? 0 : environment.KeepAtMost(kX, upper);
    if (environment.IsFailed()) {
      return 1;
    }
    const auto [least, greatest] = std::minmax({FromFirst(environment.Lower(kX)), FromFirst(environment.Upper(kX))});
    narrowed |= environment.KeepAtLeast(kY, least);
    narrowed |= environment.IsFailed() ? 0 : environment.KeepAtMost(kY, greatest);
    changed |= narrowed;
    if (environment.AreSame(kX, kY)) {
      break;
    }
  }
  return changed;
}

// Both are listed, with bounds that agree.
int VokTarnOffsetRelationConstraint::KeepCommonValues(const VokTarnObjectEnvironment& environment) const {
  environment.NoteFixpoint();
  if (environment.HasNoHoles(kX) && environment.HasNoHoles(kY)) {
    return 0;
  }
  VokTarnScratchValues common;  // values of x
  const std::span<const VokLong> xs = environment.Members(kX);
  const std::span<const VokLong> ys = environment.Members(kY);
  const auto image = [&](std::size_t k) { return FromSecond(ys[IsMirrored() ? ys.size() - 1 - k : k]); };
  std::size_t j = 0;
  for (const VokLong x : xs) {
    while (j < ys.size() && image(j) < x) {
      ++j;
    }
    if (j < ys.size() && image(j) == x) {
      common.Add(x);
    }
  }
  const int changed = environment.KeepSubset(kX, common.Get());
  if (environment.IsFailed() || common.Size() == ys.size()) {
    return changed;
  }
  VokTarnScratchValues images;
  for (std::size_t k = 0; k < common.Size(); ++k) {
    images.Add(static_cast<VokLong>(FromFirst(common.Get()[IsMirrored() ? common.Size() - 1 - k : k])));
  }
  return changed | environment.KeepSubset(kY, images.Get());
}
