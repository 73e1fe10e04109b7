#include "constraints/narrowing.h"

#include <algorithm>

#include "base/bits.h"
#include "numbers/VokFenIntervalInteger.h"
#include "numbers/VokFenSingleInteger.h"

namespace {

bool IsA(const VokTarnAny& value, const char* ident) {
  return value.IsDerivedFrom(ident) != 0;
}

// Whether x's own equality may be given y: every type handles its own kind and the two of the numbers
// library; of other types it need not know anything.
bool UnderstandsEquality(const VokTarnAny& x, const VokTarnAny& y) {
  return x.GetDescriptor() == y.GetDescriptor() || IsA(y, VokFenSingleInteger::sIdent) ||
         IsA(y, VokFenIntervalInteger::sIdent) || IsA(x, VokFenSingleInteger::sIdent) ||
         IsA(x, VokFenIntervalInteger::sIdent);
}

// Narrows argument i to the values that `other` has.
int NarrowTo(const VokTarnObjectEnvironment& environment, unsigned i, const VokTarnInteger& other) {
  if (other.IsUndefined() != 0) {
    return 0;
  }
  const bool wasUndefined = environment.Value(i).IsUndefined() != 0;
  VokTarnInteger& x = environment.NarrowInteger(i);
  const int changed = UnderstandsEquality(x, other) ? x.CalcEqualValue(other) : x.VokTarnInteger::CalcEqualValue(other);
  // A set emptied by an interval may read as undefined; it has no value left.
  if (changed != 0 && !wasUndefined && x.IsUndefined() != 0) {
    x.SetNilValue();
  }
  return environment.Note(i, changed);
}

}  // namespace

bool MayBeEqual(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j) {
  if (environment.Upper(i) < environment.Lower(j) || environment.Upper(j) < environment.Lower(i)) {
    return false;
  }
  if (environment.IsSingle(i)) {
    return environment.MayBe(j, environment.Lower(i));
  }
  if (environment.IsSingle(j)) {
    return environment.MayBe(i, environment.Lower(j));
  }
  if (const VokTarnBits bits = environment.Bits(i); bits != 0 && environment.Bits(j) != 0) {
    const std::int64_t distance = std::int64_t{environment.Lower(j)} - environment.Lower(i);
    return (bits & ShiftBits(environment.Bits(j), distance)) != 0;
  }
  const std::span<const VokLong> a = environment.Members(i);
  const std::span<const VokLong> b = environment.Members(j);
  if (a.empty() || b.empty()) {
    const unsigned listed = a.empty() ? j : i;
    const unsigned other = a.empty() ? i : j;
    const std::span<const VokLong> members = environment.Members(listed);
    const auto first = std::ranges::lower_bound(members, environment.Lower(other));
    return members.empty() || (first != members.end() && *first <= environment.Upper(other));
  }
  auto left = a.begin();
  auto right = b.begin();
  while (left != a.end() && right != b.end()) {
    if (*left == *right) {
      return true;
    }
    *left < *right ? ++left : ++right;
  }
  return false;
}

int KeepEqual(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j) {
  if (environment.AreSame(i, j)) {
    return 0;
  }
  int changed = 0;
  if (environment.IsTruth(i)) {
    changed |= environment.IsSingle(i) ? environment.KeepExactly(j, environment.Lower(i)) : 0;
    return changed | (environment.IsSingle(j) ? environment.KeepExactly(i, environment.Lower(j)) : 0);
  }
  if (environment.Cardinality(i) > 0 && environment.Cardinality(j) > 0) {
    changed |= environment.KeepBetween(i, environment.Lower(j), environment.Upper(j));
    changed |= environment.IsFailed() ? 0 : environment.KeepBetween(j, environment.Lower(i), environment.Upper(i));
    if (environment.IsFailed() ||
        (environment.HasNoHoles(i) && environment.HasNoHoles(j) && environment.Lower(i) == environment.Lower(j) &&
         environment.Upper(i) == environment.Upper(j))) {
      return changed;
    }
    if (environment.Bits(i) != 0 && environment.Bits(j) != 0) {
      changed |= environment.KeepBits(i, environment.Lower(j), environment.Bits(j));
      return environment.IsFailed() ? changed
                                    : changed | environment.KeepBits(j, environment.Lower(i), environment.Bits(i));
    }
  }
  changed |= NarrowTo(environment, i, environment.Integer(j));
  return environment.IsFailed() ? changed : changed | NarrowTo(environment, j, environment.Integer(i));
}

int KeepUnequal(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j) {
  if (environment.AreSame(i, j)) {
    return environment.Fail();
  }
  int changed = 0;
  for (const auto& [known, other] : {std::pair(i, j), std::pair(j, i)}) {
    if (environment.IsFailed() || !environment.IsSingle(known)) {
      continue;
    }
    const std::int64_t v = ExactValue(environment, known);
    changed |= environment.Remove(other, static_cast<VokLong>(v));
  }
  return changed;
}

int KeepOrdered(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j, int gap) {
  if (environment.AreSame(i, j)) {
    // Bounds alone would take one value after the other from a value that is to be below itself.
    return gap > 0 ? environment.Fail() : 0;
  }
  const int changed = environment.KeepAtMost(i, std::int64_t{environment.Upper(j)} - gap);
  if (environment.IsFailed()) {
    return changed;
  }
  return changed | environment.KeepAtLeast(j, std::int64_t{environment.Lower(i)} + gap);
}

bool AreIntegers(const VokTarnObjectEnvironment& environment, unsigned from, unsigned to) {
  for (unsigned i = from; i < to; ++i) {
    if (!environment.Has(i) || !environment.IsInteger(i)) {
      return false;
    }
  }
  return true;
}

bool AreTruthValues(const VokTarnObjectEnvironment& environment, unsigned from, unsigned to) {
  for (unsigned i = from; i < to; ++i) {
    if (!environment.Has(i) || !environment.IsTruth(i)) {
      return false;
    }
  }
  return true;
}

std::int64_t ExactValue(const VokTarnObjectEnvironment& environment, unsigned i) {
  return environment.Lower(i);
}

std::vector<VokLong> ListValues(const VokTarnInteger& x) {
  std::vector<VokLong> values = {x.GetLowerBound()};
  while (values.back() != x.GetUpperBound()) {
    values.push_back(x.GetNextExactValue(values.back()));
  }
  return values;
}

bool HaveCommonValue(const VokTarnInteger& x, const VokTarnInteger& y) {
  return x.VokTarnInteger::IsIntersected(y) != 0;
}
