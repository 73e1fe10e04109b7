// Magnitude: z keeps what lies between the least and the greatest |x|, then each bound of x moves to the next value
// whose magnitude z has. Without holes that is all, but for the values around 0 below the least z. With holes each list
// is gone through with the other, once: a value that leaves one of them supports nothing in the other.
#include "constraints/arithmeticSupport.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <optional>

#include "constraints/narrowing.h"
#include "constraints/scratchValues.h"
#include "numbers/VokFenSingleInteger.h"

namespace {

// The least possible value of argument i from v on; the greatest up to v. Requires: it is not undefined.
std::optional<std::int64_t> FindFrom(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t v) {
  return v <= environment.Lower(i)  ? std::optional<std::int64_t>(environment.Lower(i))
         : v > environment.Upper(i) ? std::nullopt
                                    : std::optional<std::int64_t>(environment.FindFrom(i, static_cast<VokLong>(v)));
}
std::optional<std::int64_t> FindUpTo(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t v) {
  return v >= environment.Upper(i)  ? std::optional<std::int64_t>(environment.Upper(i))
         : v < environment.Lower(i) ? std::nullopt
                                    : std::optional<std::int64_t>(environment.FindUpTo(i, static_cast<VokLong>(v)));
}

// The least and the greatest |x|.
VokTarnRange FindMagnitudes(const VokTarnObjectEnvironment& environment) {
  const std::int64_t lower = environment.Lower(kX);
  const std::int64_t upper = environment.Upper(kX);
  const std::int64_t greatest = std::max(-lower, upper);
  if (lower >= 0 || upper <= 0) {
    return {std::min(std::abs(lower), std::abs(upper)), greatest};
  }
  // Both are there: one end is below 0, the other one above.
  return {std::min(*FindFrom(environment, kX, 0), -*FindUpTo(environment, kX, 0)), greatest};
}

// Where the bounds of x are to be with the magnitudes that z, argument 1, has. Empty: nowhere.
VokTarnRange FindSigned(const VokTarnObjectEnvironment& environment) {
  constexpr unsigned z = 1;
  const std::int64_t lower = environment.Lower(kX);
  const std::int64_t upper = environment.Upper(kX);
  const auto outermost = [&](std::int64_t bound, std::int64_t sign) -> std::optional<std::int64_t> {
    if (bound * sign >= 0) {
      if (const auto magnitude = FindUpTo(environment, z, bound * sign)) {
        return *magnitude * sign;
      }
    }
    const auto magnitude = FindFrom(environment, z, std::max<std::int64_t>(0, -bound * sign));
    return magnitude ? std::optional(-*magnitude * sign) : std::nullopt;
  };
  const std::optional<std::int64_t> least = outermost(lower, -1);
  const std::optional<std::int64_t> greatest = outermost(upper, 1);
  return least && greatest ? VokTarnRange{*least, *greatest} : VokTarnRange{1, 0};
}

// z, listed, loses what is the magnitude of no member of x. Two fingers go outwards from 0.
int KeepMagnitudesOf(const VokTarnObjectEnvironment& environment, std::span<const VokLong> members) {
  constexpr unsigned z = 1;
  VokTarnScratchValues kept;
  auto above = std::lower_bound(members.begin(), members.end(), 0);
  auto below = std::make_reverse_iterator(above);
  for (const VokLong v : environment.Members(z)) {
    while (above != members.end() && *above < v) {
      ++above;
    }
    while (below != members.rend() && *below > -v) {
      ++below;
    }
    if ((above != members.end() && *above == v) || (below != members.rend() && *below == -v)) {
      kept.Add(v);
    }
  }
  return environment.KeepSubset(z, kept.Get());
}

// x, listed, loses what has a magnitude that z has not.
int KeepThoseOfMagnitudes(const VokTarnObjectEnvironment& environment) {
  constexpr unsigned z = 1;
  VokTarnScratchValues kept;
  const bool isWhole = environment.HasNoHoles(z);
  for (const VokLong v : environment.Members(kX)) {
    const VokLong magnitude = v < 0 ? -v : v;
    if (isWhole ? magnitude >= environment.Lower(z) && magnitude <= environment.Upper(z)
                : environment.MayBe(z, magnitude)) {
      kept.Add(v);
    }
  }
  return environment.KeepSubset(kX, kept.Get());
}

}  // namespace

int KeepRange(const VokTarnObjectEnvironment& environment, unsigned i, VokTarnRange range) {
  return environment.KeepBetween(i, range.fLower, range.fUpper);
}

int KeepMagnitude(const VokTarnObjectEnvironment& environment) {
  constexpr unsigned z = 1;
  int changed = KeepRange(environment, z, {0, environment.Upper(z)});
  if (environment.IsFailed() || environment.Cardinality(kX) < 0) {
    // An operand that is undefined takes the bounds.
    return environment.IsFailed() ? changed
                                  : changed | KeepRange(environment, kX, {-environment.Upper(z), environment.Upper(z)});
  }
  changed |= KeepRange(environment, z, FindMagnitudes(environment));
  if (environment.IsFailed() || environment.Cardinality(z) < 0) {
    return changed;
  }
  // Asked before x is cut: what is left between two cuts may have no holes, and z may rely on those that went.
  const bool isWhole = environment.HasNoHoles(kX);
  changed |= KeepRange(environment, kX, FindSigned(environment));
  if (environment.IsFailed()) {
    return changed;
  }
  const bool isListed = environment.IsListed(kX);
  const bool isCrossing = environment.Lower(kX) < 0 && environment.Upper(kX) > 0 && environment.Lower(z) > 0;
  // Without holes every magnitude between the bounds is there, and the bounds of x are right.
  if (isWhole && (!isListed || (environment.HasNoHoles(z) && !isCrossing))) {
    environment.NoteFixpoint();
    return changed;
  }
  if (!isListed || environment.Members(kX).size() > static_cast<std::size_t>(kMostTried)) {
    return changed;
  }
  if (environment.IsListed(z) && !isWhole) {
    changed |= KeepMagnitudesOf(environment, environment.Members(kX));
  }
  if (!environment.IsFailed()) {
    changed |= KeepThoseOfMagnitudes(environment);
  }
  if (!environment.IsFailed() && !environment.IsListed(z)) {
    changed |= KeepRange(environment, z, FindMagnitudes(environment));
  }
  environment.NoteFixpoint();
  return changed;
}

int KeepTruthProduct(const VokTarnObjectEnvironment& environment, unsigned truth, unsigned factor) {
  const auto x = [&] { return VokTarnRange{environment.Lower(factor), environment.Upper(factor)}; };
  const auto z = [&] { return VokTarnRange{environment.Lower(kZ), environment.Upper(kZ)}; };
  int changed = 0;
  if (!environment.IsSingle(truth)) {
    if (!z().Has(0)) {
      changed |= environment.KeepExactly(truth, 1);
    } else if (z().fUpper < x().fLower || z().fLower > x().fUpper) {
      changed |= environment.KeepExactly(truth, 0);
    } else {
      changed |=
          KeepRange(environment, kZ, {std::min<std::int64_t>(x().fLower, 0), std::max<std::int64_t>(x().fUpper, 0)});
      if (environment.HasNoHoles(kZ)) {
        environment.NoteFixpoint();
      }
      return changed;
    }
  }
  if (environment.Upper(truth) == 0) {
    changed |= environment.KeepExactly(kZ, 0);
    environment.NoteEntailed();
    return changed;
  }
  changed |= KeepRange(environment, kZ, x());
  if (!environment.IsFailed()) {
    changed |= KeepRange(environment, factor, z());
  }
  if (!environment.IsFailed() && environment.HasNoHoles(kZ) && environment.HasNoHoles(factor)) {
    environment.NoteFixpoint();
  }
  return changed;
}
