#include <algorithm>

#include "constraints/VokTarnBinPackingConstraint.h"
#include "constraints/domains.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnBinPackingConstraint)

namespace {

// Places of the constants.
constexpr std::size_t kFirstBin = 0;
constexpr std::size_t kBins = 1;
constexpr std::size_t kWeights = 2;

// The weight of the items that are in a bin and that may be, and what it is to be.
struct Bin {
  std::int64_t fCertain = 0;
  std::int64_t fPossible = 0;
  std::int64_t fLower = 0;
  std::int64_t fUpper = 0;
};

}  // namespace

bool VokTarnBinPackingConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  const std::span<const VokLong> c = GetConstants();
  return AreIntegers(environment, 0, environment.Size()) && c.size() >= kWeights && c[kBins] >= 0 &&
         static_cast<std::size_t>(c[kBins]) + c.size() - kWeights == environment.Size() &&
         std::all_of(c.begin() + kWeights, c.end(), [](VokLong w) { return w >= 0; });
}

bool VokTarnBinPackingConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const auto bins = static_cast<unsigned>(GetConstants()[kBins]);
  std::vector<std::int64_t> loads(bins);
  for (unsigned i = bins; i < environment.Size(); ++i) {
    const std::int64_t bin = ExactValue(environment, i) - GetConstants()[kFirstBin];
    if (bin < 0 || bin >= bins) {
      return false;
    }
    loads[static_cast<std::size_t>(bin)] += GetConstants()[kWeights + i - bins];
  }
  for (unsigned j = 0; j < bins; ++j) {
    if (loads[j] != ExactValue(environment, j)) {
      return false;
    }
  }
  return true;
}

int VokTarnBinPackingConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  thread_local std::vector<Bin> bins;
  const auto count = static_cast<unsigned>(GetConstants()[kBins]);
  const std::int64_t first = GetConstants()[kFirstBin];
  const std::int64_t last = first + count - 1;
  const std::span<const VokLong> weights = GetConstants().subspan(kWeights);
  bins.assign(count, {});
  std::int64_t total = 0;
  int changed = 0;
  for (unsigned i = count; i < environment.Size(); ++i) {
    changed |= environment.KeepBetween(i, first, last);
    if (environment.IsFailed()) {
      return changed;
    }
    const VokLong weight = weights[i - count];
    total += weight;
    const bool isSingle = environment.IsSingle(i);
    ForEachValue(environment, i, first, last, [&](VokLong v) {
      Bin& bin = bins[static_cast<std::size_t>(v - first)];
      bin.fPossible += weight;
      bin.fCertain += isSingle ? weight : 0;
    });
  }
  std::int64_t lower = 0;
  std::int64_t upper = 0;
  for (unsigned j = 0; j < count; ++j) {
    bins[j].fLower = std::max<std::int64_t>(environment.Lower(j), bins[j].fCertain);
    bins[j].fUpper = std::min<std::int64_t>(environment.Upper(j), bins[j].fPossible);
    lower += bins[j].fLower;
    upper += bins[j].fUpper;
  }
  for (unsigned j = 0; j < count; ++j) {
    Bin& bin = bins[j];
    const Bin before = bin;
    bin.fLower = std::max(before.fLower, total - (upper - before.fUpper));
    bin.fUpper = std::min(before.fUpper, total - (lower - before.fLower));
    changed |= environment.KeepBetween(j, bin.fLower, bin.fUpper);
    if (environment.IsFailed()) {
      return changed;
    }
  }
  for (unsigned i = count; i < environment.Size() && !environment.IsFailed(); ++i) {
    const VokLong weight = weights[i - count];
    if (environment.IsSingle(i) || weight == 0) {
      continue;
    }
    const auto isNeeded = [&](const Bin& bin) { return bin.fPossible - weight < bin.fLower; };
    std::int64_t needed = last + 1;
    changed |= KeepWhere(environment, i, first, last, [&](VokLong v) {
      const Bin& bin = bins[static_cast<std::size_t>(v - first)];
      needed = isNeeded(bin) ? v : needed;
      return bin.fCertain + weight <= bin.fUpper;
    });
    if (!environment.IsFailed() && needed <= last) {
      changed |= environment.KeepBetween(i, needed, needed);
    }
  }
  return changed;
}
