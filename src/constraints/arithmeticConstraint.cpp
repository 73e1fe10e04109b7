#include <utility>

#include "constraints/VokTarnArithmeticConstraint.h"
#include "constraints/arithmeticBounds.h"
#include "constraints/arithmeticSupport.h"
#include "constraints/narrowing.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnArithmeticConstraint)

namespace {

VokTarnRange GetRange(const VokTarnObjectEnvironment& environment, unsigned i) {
  return {environment.Lower(i), environment.Upper(i)};
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
  const bool areDistinct =
      !environment.AreSame(kX, result) && !environment.AreSame(kX, kY) && (isUnary || !environment.AreSame(kY, result));
  if (areDistinct && isUnary) {
    return KeepMagnitude(environment);
  }
  if (areDistinct && function == VokTarnFunction::Product) {
    for (const auto& [truth, factor] : {std::pair(kX, kY), std::pair(kY, kX)}) {
      if (environment.Lower(truth) >= 0 && environment.Upper(truth) <= 1) {
        return KeepTruthProduct(environment, truth, factor);
      }
    }
  }
  const auto areFew = [&] {
    const std::int64_t first = environment.Cardinality(kX);
    const std::int64_t second = environment.Cardinality(kY);
    const auto isListable = [&](unsigned i) { return environment.IsListed(i) || environment.HasNoHoles(i); };
    return first > 0 && second > 0 && first * second <= kMostTried && isListable(kX) && isListable(kY);
  };
  // Pairs tell what the bounds do and more.
  const bool triesPairs = areDistinct && function != VokTarnFunction::Product;
  int changed = 0;
  if (function == VokTarnFunction::Quotient && areDistinct && KeepWholeQuotients(environment, changed)) {
    return changed;
  }
  if (triesPairs && areFew()) {
    return KeepPairs(environment, function);
  }
  const bool needsNonZero = function == VokTarnFunction::Quotient || function == VokTarnFunction::Remainder;
  // An interval keeps a 0 inside; the rules know that it does not divide.
  const bool isZeroInside = environment.Lower(kY) < 0 && environment.Upper(kY) > 0 && !environment.IsListed(kY);
  changed = needsNonZero && !isZeroInside ? environment.Remove(kY, 0) : 0;
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
  return !environment.IsFailed() && triesPairs && areFew() ? changed | KeepPairs(environment, function) : changed;
}
