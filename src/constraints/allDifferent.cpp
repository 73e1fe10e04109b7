#include <algorithm>
#include <vector>

#include "constraints/VokTarnAllDifferentConstraint.h"
#include "constraints/narrowing.h"
#include "constraints/valueMatching.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnAllDifferentConstraint)

namespace {

// Domains beyond these sizes are left to value elimination: matching them would cost more than it prunes.
constexpr unsigned kMostMatched = 256;
constexpr int kMostValues = 16384;

bool HasDuplicate(std::vector<VokLong>& values) {
  std::sort(values.begin(), values.end());
  return std::adjacent_find(values.begin(), values.end()) != values.end();
}

// Takes every value that is known from the arguments that are open, until no further one becomes known.
int EliminateKnown(const VokTarnObjectEnvironment& environment) {
  int changed = 0;
  std::vector<unsigned> open;
  std::vector<VokLong> known;
  for (unsigned i = 0; i < environment.Size(); ++i) {
    if (environment.Value(i).GetCardinality() == 1) {
      known.push_back(environment.Integer(i).GetLowerBound());
    } else {
      open.push_back(i);
    }
  }
  while (!known.empty()) {
    if (HasDuplicate(known)) {
      return environment.Fail();
    }
    std::vector<VokLong> becameKnown;
    std::vector<unsigned> stillOpen;
    for (const unsigned i : open) {
      for (const VokLong v : known) {
        changed |= RemoveValue(environment, i, v);
      }
      if (environment.IsFailed()) {
        return changed;
      }
      if (environment.Value(i).GetCardinality() == 1) {
        becameKnown.push_back(environment.Integer(i).GetLowerBound());
      } else {
        stillOpen.push_back(i);
      }
    }
    open.swap(stillOpen);
    known.swap(becameKnown);
  }
  return changed;
}

// Takes the values that no assignment with all values different has. An argument that is known already has no other
// argument's value after the elimination, so only the open ones are matched.
int EliminateUnsupported(const VokTarnObjectEnvironment& environment) {
  std::vector<unsigned> open;
  int total = 0;
  for (unsigned i = 0; i < environment.Size(); ++i) {
    const int cardinality = environment.Value(i).GetCardinality();
    if (cardinality == 1) {
      continue;
    }
    if (cardinality < 0 || cardinality > kMostValues - total || open.size() == kMostMatched) {
      return 0;
    }
    total += cardinality;
    open.push_back(i);
  }
  std::vector<std::vector<VokLong>> domains;
  domains.reserve(open.size());
  for (const unsigned i : open) {
    domains.push_back(ListValues(environment.Integer(i)));
  }
  VokTarnValueMatching matching(std::move(domains));
  if (!matching.Exists()) {
    return environment.Fail();
  }
  int changed = 0;
  for (const auto& [position, v] : matching.FindUnsupported()) {
    changed |= RemoveValue(environment, open[position], v);
  }
  return changed;
}

}  // namespace

bool VokTarnAllDifferentConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return AreIntegers(environment, 0, environment.Size());
}

bool VokTarnAllDifferentConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  std::vector<VokLong> values(environment.Size());
  for (unsigned i = 0; i < environment.Size(); ++i) {
    values[i] = environment.Integer(i).GetLowerBound();
  }
  return !HasDuplicate(values);
}

int VokTarnAllDifferentConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const int changed = EliminateKnown(environment);
  return environment.IsFailed() ? changed : changed | EliminateUnsupported(environment);
}
