#include <algorithm>
#include <vector>

#include "constraints/VokTarnArithmeticConstraint.h"
#include "constraints/arithmeticBounds.h"
#include "constraints/narrowing.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnArithmeticConstraint)

namespace {

constexpr unsigned kX = 0;
constexpr unsigned kY = 1;

// So many pairs of values are tried one by one.
constexpr std::int64_t kMostPairs = 256;

VokTarnRange GetRange(const VokTarnObjectEnvironment& environment, unsigned i) {
  return {environment.Lower(i), environment.Upper(i)};
}

int KeepRange(const VokTarnObjectEnvironment& environment, unsigned i, VokTarnRange range) {
  if (range.IsEmpty()) {
    return environment.MakeNil(i);
  }
  const int changed = KeepFrom(environment, i, range.lower);
  return environment.IsFailed() ? changed : changed | KeepUpTo(environment, i, range.upper);
}

template <class Visit>
void ForEachValue(const VokTarnObjectEnvironment& environment, unsigned i, Visit visit) {
  const std::span<const VokLong> members = environment.Members(i);
  for (const VokLong v : members) {
    visit(v);
  }
  for (std::int64_t v = environment.Lower(i); members.empty() && v <= environment.Upper(i); ++v) {
    visit(static_cast<VokLong>(v));
  }
}

// `values`, some possible values in any order, stay alone.
int KeepThese(const VokTarnObjectEnvironment& environment, unsigned i, std::vector<VokLong>& values) {
  std::ranges::sort(values);
  values.erase(std::unique(values.begin(), values.end()), values.end());
  if (values.empty()) {
    return environment.MakeNil(i);
  }
  return environment.IsListed(i) ? KeepListed(environment, i, values)
                                 : KeepRange(environment, i, {values.front(), values.back()});
}

}  // namespace

VokTarnEvent VokTarnArithmeticConstraint::GetEvent(unsigned, const VokTarnObjectEnvironment& environment) const {
  const bool isByValue =
      GetFunction() == VokTarnFunction::Magnitude && environment.IsListed(0) && environment.IsListed(1);
  return isByValue ? VokTarnEvent::Domain : VokTarnEvent::Bounds;
}

bool VokTarnArithmeticConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  const std::span<const VokLong> c = GetConstants();
  return c.size() == 1 && c[0] >= 0 && c[0] <= static_cast<VokLong>(VokTarnFunction::Magnitude) &&
         environment.Size() == (GetFunction() == VokTarnFunction::Magnitude ? 2 : 3) &&
         AreIntegers(environment, 0, environment.Size());
}

bool VokTarnArithmeticConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  return Apply(GetFunction(), ExactValue(environment, kX), ExactValue(environment, kY)) ==
         ExactValue(environment, environment.Size() - 1);
}

int VokTarnArithmeticConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const VokTarnFunction function = GetFunction();
  const unsigned result = environment.Size() - 1;
  const bool isUnary = result == kY;
  const bool needsNonZero = function == VokTarnFunction::Quotient || function == VokTarnFunction::Remainder;
  // An interval keeps a 0 inside; the rules know that it does not divide.
  const bool isZeroInside = environment.Lower(kY) < 0 && environment.Upper(kY) > 0 && !environment.IsListed(kY);
  int changed = needsNonZero && !isZeroInside ? RemoveValue(environment, kY, 0) : 0;
  const auto x = [&] { return GetRange(environment, kX); };
  const auto y = [&] { return GetRange(environment, kY); };
  const auto z = [&] { return GetRange(environment, result); };
  if (!environment.IsFailed()) {
    changed |= KeepRange(environment, result, FindResult(function, x(), y()));
  }
  if (!environment.IsFailed()) {
    changed |= KeepRange(environment, kX, FindFirst(function, x(), y(), z()));
  }
  if (!environment.IsFailed() && !isUnary) {
    changed |= KeepRange(environment, kY, FindSecond(function, x(), y(), z()));
  }
  if (environment.IsFailed() || function == VokTarnFunction::Product || environment.AreSame(kX, kY) ||
      environment.AreSame(kX, result) || (!isUnary && environment.AreSame(kY, result))) {
    return changed;
  }
  const std::int64_t first = environment.Cardinality(kX);
  const std::int64_t second = isUnary ? 1 : environment.Cardinality(kY);
  const auto isListable = [&](unsigned i) { return environment.IsListed(i) || HasNoHoles(environment, i); };
  const bool isFew =
      first > 0 && second > 0 && first * second <= kMostPairs && isListable(kX) && (isUnary || isListable(kY));
  return isFew ? changed | KeepSupported(environment) : changed;
}

int VokTarnArithmeticConstraint::KeepSupported(const VokTarnObjectEnvironment& environment) const {
  static thread_local std::vector<VokLong> kept[3];  // room that is kept
  for (std::vector<VokLong>& values : kept) {
    values.clear();
  }
  const unsigned result = environment.Size() - 1;
  const auto see = [&](VokLong x, VokLong y) {
    const std::optional<std::int64_t> z = Apply(GetFunction(), x, y);
    if (z && MayBe(environment, result, *z)) {
      kept[kX].push_back(x);
      kept[kY].push_back(y);
      kept[2].push_back(static_cast<VokLong>(*z));
    }
  };
  ForEachValue(environment, kX, [&](VokLong x) {
    if (result == kY) {
      see(x, 0);
    } else {
      ForEachValue(environment, kY, [&](VokLong y) { see(x, y); });
    }
  });
  int changed = KeepThese(environment, kX, kept[kX]);
  if (result != kY && !environment.IsFailed()) {
    changed |= KeepThese(environment, kY, kept[kY]);
  }
  return environment.IsFailed() ? changed : changed | KeepThese(environment, result, kept[2]);
}
