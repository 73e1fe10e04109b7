#include <algorithm>

#include "constraints/VokTarnInverseConstraint.h"
#include "constraints/domains.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnInverseConstraint)

namespace {

// For each place of one side, which places of the other it may have, as bits.
class PlaceMatrix {
 public:
  void Read(const VokTarnObjectEnvironment& environment, unsigned from, unsigned size, std::int64_t first) {
    fWords = (size + std::size_t{63}) / 64;
    fBits.assign(size * fWords, 0);
    for (unsigned i = 0; i < size; ++i) {
      ForEachValue(environment, from + i, first, first + size - 1, [&](VokLong v) {
        const auto place = static_cast<std::size_t>(v - first);
        fBits[i * fWords + place / 64] |= std::uint64_t{1} << (place % 64);
      });
    }
  }
  bool Has(std::size_t i, std::size_t place) const {
    return ((fBits[i * fWords + place / 64] >> (place % 64)) & 1) != 0;
  }

 private:
  std::size_t fWords = 0;
  std::vector<std::uint64_t> fBits;
};

}  // namespace

bool VokTarnInverseConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreIntegers(environment, 0, environment.Size()) && GetConstants().size() == 3 && GetConstants()[2] >= 0 &&
         static_cast<unsigned>(GetConstants()[2]) <= environment.Size();
}

bool VokTarnInverseConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const auto n = static_cast<unsigned>(GetConstants()[2]);
  if (environment.Size() != 2 * n) {
    return false;
  }
  for (unsigned i = 0; i < n; ++i) {
    const std::int64_t place = ExactValue(environment, i) - GetConstants()[1];
    if (place < 0 || place >= n ||
        ExactValue(environment, n + static_cast<unsigned>(place)) != std::int64_t{GetConstants()[0]} + i) {
      return false;
    }
  }
  return true;
}

int VokTarnInverseConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  thread_local PlaceMatrix ofF;
  thread_local PlaceMatrix ofG;
  const auto n = static_cast<unsigned>(GetConstants()[2]);
  const std::int64_t firstF = GetConstants()[0];
  const std::int64_t firstG = GetConstants()[1];
  if (environment.Size() != 2 * n) {
    return environment.Fail();
  }
  ofF.Read(environment, 0, n, firstG);
  ofG.Read(environment, n, n, firstF);
  int changed = 0;
  for (unsigned i = 0; i < n && !environment.IsFailed(); ++i) {
    changed |= KeepWhere(environment, i, firstG, firstG + n - 1,
                         [&](VokLong v) { return ofG.Has(static_cast<std::size_t>(v - firstG), i); });
  }
  for (unsigned j = 0; j < n && !environment.IsFailed(); ++j) {
    changed |= KeepWhere(environment, n + j, firstF, firstF + n - 1,
                         [&](VokLong v) { return ofF.Has(static_cast<std::size_t>(v - firstF), j); });
  }
  return changed;
}
