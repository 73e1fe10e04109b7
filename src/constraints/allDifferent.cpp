#include <algorithm>
#include <limits>
#include <vector>

#include "constraints/VokTarnAllDifferentConstraint.h"
#include "constraints/narrowing.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnAllDifferentConstraint)

bool VokTarnAllDifferentConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreIntegers(environment, 0, environment.Size());
}

bool VokTarnAllDifferentConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  std::vector<std::int64_t> values(environment.Size());
  for (unsigned i = 0; i < environment.Size(); ++i) {
    values[i] = ExactValue(environment, i);
  }
  std::sort(values.begin(), values.end());
  return std::adjacent_find(values.begin(), values.end()) == values.end();
}

int VokTarnAllDifferentConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const unsigned size = environment.Size();
  int changed = 0;
  // Arguments whose value is known; a removal may make another one known, which then joins the end.
  std::vector<unsigned> known;
  std::vector<bool> isKnown(size, false);
  const auto note = [&](unsigned i) {
    if (!isKnown[i] && environment.Value(i).GetCardinality() == 1) {
      isKnown[i] = true;
      known.push_back(i);
    }
  };
  for (unsigned i = 0; i < size; ++i) {
    note(i);
  }
  for (std::size_t next = 0; next < known.size(); ++next) {
    const VokLong v = environment.Integer(known[next]).GetLowerBound();
    for (unsigned i = 0; i < size; ++i) {
      if (i == known[next]) {
        continue;
      }
      changed |= RemoveValue(environment, i, v);
      if (environment.IsFailed()) {
        return changed;
      }
      note(i);
    }
  }
  std::int64_t least = std::numeric_limits<std::int64_t>::max();
  std::int64_t greatest = std::numeric_limits<std::int64_t>::min();
  for (unsigned i = 0; i < size; ++i) {
    least = std::min<std::int64_t>(least, environment.Integer(i).GetLowerBound());
    greatest = std::max<std::int64_t>(greatest, environment.Integer(i).GetUpperBound());
  }
  return size != 0 && greatest - least + 1 < size ? environment.Fail() : changed;
}
