#include "constraints/domains.h"

int RemoveListed(const VokTarnObjectEnvironment& environment, unsigned i, std::span<const VokLong> values) {
  if (values.empty()) {
    return 0;
  }
  if (values.size() == static_cast<std::size_t>(environment.Cardinality(i))) {
    return environment.MakeNil(i);
  }
  if (const VokTarnBits bits = environment.Bits(i); bits != 0) {
    VokTarnBits kept = bits;
    for (const VokLong v : values) {
      kept &= ~Bit(static_cast<unsigned>(v - environment.Lower(i)));
    }
    return environment.KeepBits(i, environment.Lower(i), kept);
  }
  VokTarnInteger& x = environment.NarrowInteger(i);
  for (const VokLong v : values) {
    x.RemoveExactValue(v);
  }
  return environment.Note(i, 1);
}

namespace {

// The least value of argument i within the range; one above the range when there is none.
std::int64_t FindFirst(const VokTarnObjectEnvironment& environment, unsigned i, const VokTarnRange& range) {
  const std::int64_t lower = std::max<std::int64_t>(range.fLower, environment.Lower(i));
  const std::int64_t upper = std::min<std::int64_t>(range.fUpper, environment.Upper(i));
  if (lower > upper) {
    return range.fUpper + 1;
  }
  const std::int64_t next = environment.FindFrom(i, static_cast<VokLong>(lower));
  return next <= upper ? next : range.fUpper + 1;
}

std::int64_t FindLast(const VokTarnObjectEnvironment& environment, unsigned i, const VokTarnRange& range) {
  return environment.FindUpTo(i, static_cast<VokLong>(std::min<std::int64_t>(range.fUpper, environment.Upper(i))));
}

}  // namespace

bool HasValueIn(const VokTarnObjectEnvironment& environment, unsigned i, const VokTarnRange& range) {
  return FindFirst(environment, i, range) <= range.fUpper;
}

bool HasValueIn(const VokTarnObjectEnvironment& environment, unsigned i, std::span<const VokTarnRange> ranges) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [&](const VokTarnRange& range) { return HasValueIn(environment, i, range); });
}

int KeepRanges(const VokTarnObjectEnvironment& environment, unsigned i, std::span<const VokTarnRange> ranges) {
  const auto isTouched = [&](const VokTarnRange& range) { return HasValueIn(environment, i, range); };
  const auto first = std::find_if(ranges.begin(), ranges.end(), isTouched);
  if (first == ranges.end()) {
    return environment.MakeNil(i);
  }
  const auto last = std::find_if(ranges.rbegin(), ranges.rend(), isTouched);
  const int changed = environment.KeepBetween(i, FindFirst(environment, i, *first), FindLast(environment, i, *last));
  if (environment.IsFailed() || !environment.IsListed(i)) {
    return changed;
  }
  VokTarnScratchValues removed;
  auto range = first;
  for (const VokLong v : environment.Members(i)) {
    while (v > range->fUpper) {
      ++range;
    }
    if (v < range->fLower) {
      removed.Add(v);
    }
  }
  return changed | RemoveListed(environment, i, removed.Get());
}

bool AreDistinct(std::span<const VokTarnValueId> arguments) {
  std::vector<VokTarnValueId> sorted(arguments.begin(), arguments.end());
  std::sort(sorted.begin(), sorted.end());
  return std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end();
}
