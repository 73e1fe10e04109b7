// Reading and narrowing the values of an argument one by one, without asking its type where the type lists them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "base/bits.h"
#include "base/range.h"
#include "constraints/narrowing.h"
#include "constraints/scratchValues.h"

inline bool IsKnown(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t v) {
  return environment.IsSingle(i) && environment.Lower(i) == v;
}

// Calls visit(v) for each possible value from `lower` to `upper`, ascending. A type that does not list its values is
// asked for each number, so these limits should be near where there is no end else.
template <class Visit>
void ForEachValue(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t lower, std::int64_t upper,
                  Visit visit) {
  lower = std::max<std::int64_t>(lower, environment.Lower(i));
  upper = std::min<std::int64_t>(upper, environment.Upper(i));
  if (environment.HasNoHoles(i)) {
    for (std::int64_t v = lower; v <= upper; ++v) {
      visit(static_cast<VokLong>(v));
    }
    return;
  }
  if (lower > upper) {
    return;
  }
  if (const VokTarnBits bits = environment.Bits(i); bits != 0) {
    const std::int64_t base = environment.Lower(i);
    ForEachBit(bits & BitRange(static_cast<unsigned>(lower - base), static_cast<unsigned>(upper - base)),
               [&](unsigned bit) { visit(static_cast<VokLong>(base + bit)); });
    return;
  }
  const std::span<const VokLong> members = environment.Members(i);
  if (!members.empty()) {
    for (auto v = std::lower_bound(members.begin(), members.end(), lower); v != members.end() && *v <= upper; ++v) {
      visit(*v);
    }
    return;
  }
  for (std::int64_t v = lower; v <= upper; ++v) {
    if (environment.MayBe(i, v)) {
      visit(static_cast<VokLong>(v));
    }
  }
}

// The possible values of argument i from `base` to base + 63, a bit for each.
inline VokTarnBits BitsFrom(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t base) {
  const std::int64_t last = base + static_cast<std::int64_t>(kWordBits) - 1;
  if (environment.HasNoHoles(i)) {
    const std::int64_t lower = std::max<std::int64_t>(environment.Lower(i), base);
    const std::int64_t upper = std::min<std::int64_t>(environment.Upper(i), last);
    return lower > upper ? 0 : BitRange(static_cast<unsigned>(lower - base), static_cast<unsigned>(upper - base));
  }
  if (const VokTarnBits bits = environment.Bits(i); bits != 0) {
    return ShiftBits(bits, environment.Lower(i) - base);
  }
  VokTarnBits bits = 0;
  ForEachValue(environment, i, base, last, [&](VokLong v) { bits |= Bit(static_cast<unsigned>(v - base)); });
  return bits;
}

// Takes away the values, which are possible values of argument i, a type that lists them.
int RemoveListed(const VokTarnObjectEnvironment& environment, unsigned i, std::span<const VokLong> values);

// Argument i keeps those of its values from `lower` to `upper` for which keep(v) holds; an interval keeps the others
// between them. The limits should be near.
template <class Keep>
int KeepWhere(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t lower, std::int64_t upper,
              Keep keep) {
  int changed = environment.KeepBetween(i, lower, upper);
  if (environment.IsFailed() || environment.Cardinality(i) < 0) {
    return changed;
  }
  if (const VokTarnBits bits = environment.Bits(i); bits != 0) {
    const std::int64_t base = environment.Lower(i);
    VokTarnBits kept = bits;
    ForEachBit(bits,
               [&](unsigned bit) { kept &= keep(static_cast<VokLong>(base + bit)) ? ~VokTarnBits{0} : ~Bit(bit); });
    return kept == bits ? changed : changed | environment.KeepBits(i, base, kept);
  }
  if (environment.IsListed(i)) {
    VokTarnScratchValues kept;
    for (const VokLong v : environment.Members(i)) {
      if (keep(v)) {
        kept.Add(v);
      }
    }
    return changed | environment.KeepSubset(i, kept.Get());
  }
  VokTarnScratchValues removed;
  std::int64_t first = 1;
  std::int64_t last = 0;
  ForEachValue(environment, i, lower, upper, [&](VokLong v) {
    if (!keep(v)) {
      removed.Add(v);
      return;
    }
    first = first > last ? v : first;
    last = v;
  });
  if (removed.IsEmpty()) {
    return changed;
  }
  if (first > last) {
    return environment.MakeNil(i);
  }
  changed |= environment.KeepBetween(i, first, last);
  if (!environment.IsSingle(i) && !environment.IsRange(i)) {
    for (const VokLong v : removed.Get()) {
      changed |= environment.Remove(i, v);
    }
  }
  return changed;
}

// Whether argument i has a value in the range, in some range of a list.
bool HasValueIn(const VokTarnObjectEnvironment& environment, unsigned i, const VokTarnRange& range);
bool HasValueIn(const VokTarnObjectEnvironment& environment, unsigned i, std::span<const VokTarnRange> ranges);
// Argument i keeps those of its values that are in the ranges, which ascend; a type that does not list its values keeps
// the others between them.
int KeepRanges(const VokTarnObjectEnvironment& environment, unsigned i, std::span<const VokTarnRange> ranges);

// Whether all arguments are different values of the network.
bool AreDistinct(std::span<const VokTarnValueId> arguments);
