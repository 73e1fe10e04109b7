#include <algorithm>
#include <numeric>
#include <vector>

#include "constraints/VokTarnAllDifferentConstraint.h"
#include "constraints/narrowing.h"
#include "constraints/valueMatching.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnAllDifferentConstraint)

namespace {

// Domains beyond these sizes are left to value elimination: matching them would cost more than it prunes.
constexpr unsigned kMostMatched = 256;
constexpr int kMostValues = 16384;

// Takes every value that has become known from the other arguments, until no further one becomes known.
int EliminateKnown(const VokTarnObjectEnvironment& environment) {
  const unsigned size = environment.Size();
  int changed = 0;
  std::vector<unsigned> known;  // a removal may make another argument known, which then joins the end
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
    for (unsigned i = 0; i < size && !environment.IsFailed(); ++i) {
      if (i != known[next]) {
        changed |= RemoveValue(environment, i, v);
        note(i);
      }
    }
  }
  return changed;
}

std::vector<VokLong> ListValues(const VokTarnInteger& x) {
  std::vector<VokLong> values = {x.GetLowerBound()};
  while (values.back() != x.GetUpperBound()) {
    values.push_back(x.GetNextExactValue(values.back()));
  }
  return values;
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
  std::vector<std::int64_t> values(environment.Size());
  for (unsigned i = 0; i < environment.Size(); ++i) {
    values[i] = ExactValue(environment, i);
  }
  std::sort(values.begin(), values.end());
  return std::adjacent_find(values.begin(), values.end()) == values.end();
}

int VokTarnAllDifferentConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const int changed = EliminateKnown(environment);
  return environment.IsFailed() ? changed : changed | EliminateUnsupported(environment);
}
