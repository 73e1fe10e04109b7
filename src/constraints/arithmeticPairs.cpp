// Pairs: the divisor, the modulus or the exponent is the outer of two loops, and its values that yield the most results
// come first: small divisors, great moduli. One of them often supports every x and every z, and the others are left
// after their first support. No value is sorted: places in the lists are marked.
//
// Quotients of operands without holes: those of one divisor have none either, nor have the dividends of a range of
// quotients. So each divisor supports one range of each, and nothing is tried value by value where these ranges leave
// no gap between them.
#include <algorithm>
#include <array>
#include <optional>

#include "constraints/arithmeticSupport.h"
#include "constraints/narrowing.h"
#include "constraints/scratchValues.h"

namespace {

// Results that are marked by their place; more of them are seen by their bounds.
constexpr std::size_t kMostMarked = 1024;

// The values of an argument that lists them or has no holes, by their place.
class Values {
 public:
  Values(const VokTarnObjectEnvironment& environment, unsigned i)
      : fMembers(environment.HasNoHoles(i) ? std::span<const VokLong>() : environment.Members(i)),
        fLower(environment.Lower(i)),
        fSize(static_cast<std::size_t>(environment.Cardinality(i))) {}

  std::size_t Size() const noexcept { return fSize; }
  VokLong operator[](std::size_t place) const noexcept {
    return fMembers.empty() ? fLower + static_cast<VokLong>(place) : fMembers[place];
  }

 private:
  std::span<const VokLong> fMembers;
  VokLong fLower;
  std::size_t fSize;
};

// Which values of an argument have a support.
template <std::size_t most>
class Marks {
 public:
  explicit Marks(std::size_t size) : fOpen(size) { std::fill_n(fIsSupported.begin(), size, char{0}); }

  void Set(std::size_t place) noexcept {
    fOpen -= fIsSupported[place] == 0 ? 1U : 0U;
    fIsSupported[place] = 1;
  }
  bool Has(std::size_t place) const noexcept { return fIsSupported[place] != 0; }
  std::size_t CountOpen() const noexcept { return fOpen; }

 private:
  std::size_t fOpen;
  std::array<char, most> fIsSupported;
};

template <std::size_t most>
int KeepMarked(const VokTarnObjectEnvironment& environment, unsigned i, const Values& values,
               const Marks<most>& marks) {
  if (marks.CountOpen() == 0) {
    return 0;
  }
  const std::size_t count = values.Size() - marks.CountOpen();
  std::size_t first = 0;
  std::size_t last = values.Size();
  while (first < last && !marks.Has(first)) {
    ++first;
  }
  while (first < last && !marks.Has(last - 1)) {
    --last;
  }
  if (last - first == count) {
    return count == 0 ? environment.MakeNil(i) : KeepRange(environment, i, {values[first], values[last - 1]});
  }
  VokTarnScratchValues kept;
  for (std::size_t place = 0; place < values.Size(); ++place) {
    if (marks.Has(place)) {
      kept.Add(values[place]);
    }
  }
  return environment.IsListed(i) ? environment.KeepSubset(i, kept.Get())
                                 : KeepRange(environment, i, {kept.Get().front(), kept.Get().back()});
}

// The results that have been seen. A list is marked value by value; of all else the bounds are enough.
class Results {
 public:
  explicit Results(const VokTarnObjectEnvironment& environment)
      : fEnvironment(environment),
        fBounds{environment.Lower(kZ), environment.Upper(kZ)},
        fIsWhole(environment.HasNoHoles(kZ)),
        fMembers(environment.Members(kZ)),
        fIsMarked(environment.IsListed(kZ) && fMembers.size() <= kMostMarked),
        fMarks(fIsMarked ? fMembers.size() : 0),
        fSeen{fBounds.fUpper, fBounds.fLower} {}

  // Whether z is a possible value, which is seen then.
  bool See(std::int64_t z) {
    if (!fBounds.Has(z)) {
      return false;
    }
    if (fIsMarked) {
      const auto place = fIsWhole ? fMembers.begin() + (z - fBounds.fLower)
                                  : std::lower_bound(fMembers.begin(), fMembers.end(), static_cast<VokLong>(z));
      if (*place != z) {
        return false;
      }
      fMarks.Set(static_cast<std::size_t>(place - fMembers.begin()));
    } else if (!fIsWhole && !fEnvironment.MayBe(kZ, z)) {
      return false;
    }
    fSeen = {std::min(fSeen.fLower, z), std::max(fSeen.fUpper, z)};
    return true;
  }
  bool AreAllSeen() const noexcept {
    return fIsMarked ? fMarks.CountOpen() == 0 : fSeen.fLower == fBounds.fLower && fSeen.fUpper == fBounds.fUpper;
  }
  int Keep() const {
    if (!fIsMarked) {
      return KeepRange(fEnvironment, kZ, fSeen);
    }
    return KeepMarked(fEnvironment, kZ, Values(fEnvironment, kZ), fMarks);
  }

 private:
  const VokTarnObjectEnvironment& fEnvironment;
  VokTarnRange fBounds;
  bool fIsWhole;
  std::span<const VokLong> fMembers;
  bool fIsMarked;
  Marks<kMostMarked> fMarks;
  VokTarnRange fSeen;
};

// `compute(x, y, z)` tells whether the function has a value there, and the value.
template <class Compute>
int KeepPairsOf(const VokTarnObjectEnvironment& environment, bool isDescending, Compute compute) {
  const Values x(environment, kX);
  const Values y(environment, kY);
  Marks<kMostTried> ofX(x.Size());
  Marks<kMostTried> ofY(y.Size());
  Results results(environment);
  bool isOnlyYOpen = false;
  for (std::size_t k = 0; k < y.Size() && !(isOnlyYOpen && ofY.CountOpen() == 0); ++k) {
    const std::size_t j = isDescending ? y.Size() - 1 - k : k;
    const VokLong divisor = y[j];
    for (std::size_t i = 0; i < x.Size(); ++i) {
      std::int64_t z = 0;
      if (compute(x[i], divisor, z) && results.See(z)) {
        ofX.Set(i);
        ofY.Set(j);
        if (isOnlyYOpen) {
          break;
        }
      }
    }
    isOnlyYOpen = ofX.CountOpen() == 0 && results.AreAllSeen();
  }
  int changed = KeepMarked(environment, kX, x, ofX);
  if (!environment.IsFailed()) {
    changed |= KeepMarked(environment, kY, y, ofY);
  }
  if (!environment.IsFailed()) {
    changed |= results.Keep();
  }
  environment.NoteFixpoint();
  return changed;
}

// Values without a gap that are known to have a support; more of them are united with it.
struct Cover {
  VokTarnRange range = {1, 0};
  bool hasGap = false;

  void Add(std::int64_t lower, std::int64_t upper) noexcept {
    if (range.IsEmpty()) {
      range = {lower, upper};
      return;
    }
    hasGap = hasGap || lower > range.fUpper + 1 || upper < range.fLower - 1;
    range = {std::min(lower, range.fLower), std::max(upper, range.fUpper)};
  }
};

}  // namespace

bool KeepWholeQuotients(const VokTarnObjectEnvironment& environment, int& changed) {
  if (environment.Cardinality(kY) < 1 || environment.Cardinality(kY) > kMostDivisors || !environment.HasNoHoles(kX) ||
      !environment.HasNoHoles(kY) || !environment.HasNoHoles(kZ)) {
    return false;
  }
  const VokLong lower = environment.Lower(kX);
  const VokLong upper = environment.Upper(kX);
  const VokTarnRange results = {environment.Lower(kZ), environment.Upper(kZ)};
  Cover x;
  Cover y;
  Cover z;
  for (VokLong divisor = environment.Lower(kY); divisor <= environment.Upper(kY); ++divisor) {
    if (divisor == 0) {
      continue;
    }
    // x / -y = -x / y: the dividends are turned around with the divisor.
    const bool isTurned = divisor < 0;
    const VokLong magnitude = isTurned ? -divisor : divisor;
    const VokTarnRange of = isTurned ? VokTarnRange{-upper, -lower} : VokTarnRange{lower, upper};
    const VokTarnRange seen = {std::max<std::int64_t>(static_cast<VokLong>(of.fLower) / magnitude, results.fLower),
                               std::min<std::int64_t>(static_cast<VokLong>(of.fUpper) / magnitude, results.fUpper)};
    if (seen.IsEmpty()) {
      continue;
    }
    y.Add(divisor, divisor);
    z.Add(seen.fLower, seen.fUpper);
    const std::int64_t least = seen.fLower > 0 ? seen.fLower * magnitude : (seen.fLower - 1) * magnitude + 1;
    const std::int64_t greatest = seen.fUpper < 0 ? seen.fUpper * magnitude : (seen.fUpper + 1) * magnitude - 1;
    const VokTarnRange kept = {std::max(least, of.fLower), std::min(greatest, of.fUpper)};
    if (isTurned) {
      x.Add(-kept.fUpper, -kept.fLower);
    } else {
      x.Add(kept.fLower, kept.fUpper);
    }
  }
  if (x.hasGap || y.hasGap || z.hasGap) {
    return false;
  }
  changed = KeepRange(environment, kX, x.range);
  if (!environment.IsFailed()) {
    changed |= KeepRange(environment, kY, y.range);
  }
  if (!environment.IsFailed()) {
    changed |= KeepRange(environment, kZ, z.range);
  }
  environment.NoteFixpoint();
  return true;
}

int KeepPairs(const VokTarnObjectEnvironment& environment, VokTarnFunction function) {
  // Numbers of the network, whose quotients are, too.
  if (function == VokTarnFunction::Quotient) {
    return KeepPairsOf(environment, false, [](VokLong x, VokLong y, std::int64_t& z) {
      z = y == 0 ? 0 : x / y;
      return y != 0;
    });
  }
  if (function == VokTarnFunction::Remainder) {
    return KeepPairsOf(environment, true, [](VokLong x, VokLong y, std::int64_t& z) {
      z = y == 0 ? 0 : x % y;
      return y != 0;
    });
  }
  return KeepPairsOf(environment, false, [function](VokLong x, VokLong y, std::int64_t& z) {
    const std::optional<std::int64_t> value = Apply(function, x, y);
    z = value.value_or(0);
    return value.has_value();
  });
}
