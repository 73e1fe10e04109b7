#include "constraints/narrowing.h"

#include <algorithm>

#include "constraints/scratchValues.h"
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

// Whether argument i has the type whose bounds can be set without asking about the other operand. A set would fill its
// holes then.
bool IsOfIntervals(const VokTarnObjectEnvironment& environment, unsigned i) {
  return !environment.IsListed(i) && IsInterval(environment.Integer(i));
}

// How many values an undefined set takes over.
constexpr std::size_t kMostTaken = 1023;

// Makes argument i, which is undefined, hold the values. A type that cannot hold them all stays undefined.
int TakeValues(const VokTarnObjectEnvironment& environment, unsigned i, std::span<const VokLong> values) {
  if (values.size() > kMostTaken) {
    return 0;
  }
  VokTarnInteger& x = environment.NarrowInteger(i);
  x.SetExactValue(values.front());
  for (const VokLong v : values.subspan(1)) {
    if (x.AddExactValue(v) == 0) {
      x.SetUndefinedValue();
      return 0;
    }
  }
  return environment.Note(i, x.IsUndefined() != 0 ? 0 : 1);
}

}  // namespace

int KeepAtMost(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t limit) {
  if (limit >= environment.Upper(i) || limit <= SubIntBase::sMin || limit >= SubIntBase::sMax) {
    return 0;
  }
  const VokFenSingleInteger bound(static_cast<VokLong>(limit));
  return environment.Note(i, environment.NarrowInteger(i).CalcLessOrEqualValue(bound));
}

int KeepAtLeast(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t limit) {
  if (limit <= environment.Lower(i) || limit <= SubIntBase::sMin || limit >= SubIntBase::sMax) {
    return 0;
  }
  const VokFenSingleInteger bound(static_cast<VokLong>(limit));
  return environment.Note(i, environment.NarrowInteger(i).CalcNotLessValue(bound));
}

int KeepBetween(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t lower, std::int64_t upper) {
  const std::int64_t least = environment.Lower(i);
  const std::int64_t greatest = environment.Upper(i);
  if (lower <= least && upper >= greatest) {
    return 0;
  }
  lower = std::max<std::int64_t>(lower, SubIntBase::sMin);
  upper = std::min<std::int64_t>(upper, SubIntBase::sMax);
  if (lower > upper || lower > greatest || upper < least) {
    return environment.MakeNil(i);
  }
  return NarrowTo(environment, i, VokFenIntervalInteger(static_cast<VokLong>(lower), static_cast<VokLong>(upper)));
}

int KeepUpTo(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t limit) {
  if (limit >= environment.Upper(i)) {
    return 0;
  }
  if (limit <= environment.Lower(i)) {
    return KeepValue(environment, i, limit);
  }
  if (IsOfIntervals(environment, i)) {
    return environment.Note(i, environment.NarrowInteger(i).SetUpperBound(static_cast<VokLong>(limit)));
  }
  const VokFenSingleInteger bound(static_cast<VokLong>(limit));
  return environment.Note(i, environment.NarrowInteger(i).CalcLessOrEqualValue(bound));
}

int KeepFrom(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t limit) {
  if (limit <= environment.Lower(i)) {
    return 0;
  }
  if (limit >= environment.Upper(i)) {
    return KeepValue(environment, i, limit);
  }
  if (IsOfIntervals(environment, i)) {
    return environment.Note(i, environment.NarrowInteger(i).SetLowerBound(static_cast<VokLong>(limit)));
  }
  const VokFenSingleInteger bound(static_cast<VokLong>(limit));
  return environment.Note(i, environment.NarrowInteger(i).CalcNotLessValue(bound));
}

int KeepValue(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t v) {
  if (v < environment.Lower(i) || v > environment.Upper(i)) {
    return environment.MakeNil(i);
  }
  if (environment.IsSingle(i)) {
    return 0;
  }
  if (environment.Cardinality(i) < 0) {
    return KeepBetween(environment, i, v, v);
  }
  const auto value = static_cast<VokLong>(v);
  const bool isBound = v == environment.Lower(i) || v == environment.Upper(i);
  if (!isBound && !HasNoHoles(environment, i) && !environment.Integer(i).IsPossible(value)) {
    return environment.MakeNil(i);
  }
  return environment.Note(i, environment.NarrowInteger(i).SetExactValue(value));
}

int KeepListed(const VokTarnObjectEnvironment& environment, unsigned i, std::span<const VokLong> kept) {
  const std::size_t size = environment.Members(i).size();
  if (kept.size() == size) {
    return 0;
  }
  if (kept.empty()) {
    return environment.MakeNil(i);
  }
  if (kept.size() == 1) {
    return KeepValue(environment, i, kept.front());
  }
  VokTarnInteger& x = environment.NarrowInteger(i);
  // What goes at the ends goes at once.
  if (kept.front() > environment.Lower(i)) {
    x.CalcNotLessValue(VokFenSingleInteger(kept.front()));
  }
  if (kept.back() < environment.Upper(i)) {
    x.CalcLessOrEqualValue(VokFenSingleInteger(kept.back()));
  }
  const std::span<const VokLong> members = environment.Members(i);
  if (kept.size() == members.size()) {
    return environment.Note(i, 1);
  }
  // Whichever is less: the values to be taken out, or those to be put in again, each behind the last.
  if (kept.size() <= members.size() - kept.size()) {
    x.SetNilValue();
    for (const VokLong v : kept) {
      x.AddExactValue(v);
    }
    return environment.Note(i, 1);
  }
  VokTarnScratchValues removed;  // the list stands only until x changes
  auto stays = kept.begin();
  for (const VokLong v : members) {
    if (*stays == v) {
      ++stays;
    } else {
      removed.Add(v);
    }
  }
  for (const VokLong v : removed.Get()) {
    x.RemoveExactValue(v);
  }
  return environment.Note(i, 1);
}

bool MayBe(const VokTarnObjectEnvironment& environment, unsigned i, std::int64_t v) {
  if (v < environment.Lower(i) || v > environment.Upper(i)) {
    return false;
  }
  if (HasNoHoles(environment, i)) {
    return true;
  }
  const std::span<const VokLong> members = environment.Members(i);
  return members.empty() ? environment.Integer(i).IsPossible(static_cast<VokLong>(v))
                         : std::binary_search(members.begin(), members.end(), static_cast<VokLong>(v));
}

bool MayBeEqual(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j) {
  if (environment.Upper(i) < environment.Lower(j) || environment.Upper(j) < environment.Lower(i)) {
    return false;
  }
  if (environment.IsSingle(i)) {
    return MayBe(environment, j, environment.Lower(i));
  }
  if (environment.IsSingle(j)) {
    return MayBe(environment, i, environment.Lower(j));
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

int KeepValues(const VokTarnObjectEnvironment& environment, unsigned i, std::span<const VokLong> values) {
  if (values.empty()) {
    return environment.MakeNil(i);
  }
  int changed = KeepBetween(environment, i, values.front(), values.back());
  const VokTarnInteger& x = environment.Integer(i);
  if (environment.IsFailed() || IsInterval(x)) {
    return changed;
  }
  if (x.IsUndefined() != 0) {
    return changed | TakeValues(environment, i, values);
  }
  auto kept = values.begin();
  for (const VokLong v : ListValues(x)) {
    kept = std::lower_bound(kept, values.end(), v);
    if (kept == values.end() || *kept != v) {
      changed |= RemoveValue(environment, i, v);
    }
  }
  return changed;
}

int RemoveValue(const VokTarnObjectEnvironment& environment, unsigned i, VokLong v) {
  if (environment.Cardinality(i) < 0 || v < environment.Lower(i) || v > environment.Upper(i)) {
    return 0;
  }
  if (environment.IsSingle(i)) {
    return environment.MakeNil(i);
  }
  const std::span<const VokLong> members = environment.Members(i);
  if (!members.empty()) {
    // A listed value that keeps others can be taken out without asking the type.
    return std::binary_search(members.begin(), members.end(), v)
               ? environment.Note(i, environment.NarrowInteger(i).RemoveExactValue(v))
               : 0;
  }
  if (!environment.Integer(i).IsPossible(v)) {
    return 0;
  }
  return environment.Note(i, environment.NarrowInteger(i).CalcUnequalValue(VokFenSingleInteger(v)));
}

int KeepTruth(const VokTarnObjectEnvironment& environment, unsigned i, bool truth) {
  if (environment.Truth(i).IsPossible(truth ? 0 : 1) == 0) {
    return environment.Truth(i).IsPossible(truth ? 1 : 0) != 0 ? 0 : environment.MakeNil(i);
  }
  return environment.Note(i, environment.NarrowTruth(i).CalcTruthValue(truth ? 1 : 0));
}

int KeepEqual(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j) {
  if (environment.AreSame(i, j)) {
    return 0;
  }
  if (IsA(environment.Value(i), VokTarnBoolean::sIdent)) {
    int changed = 0;
    for (const bool truth : {false, true}) {
      if (environment.Truth(i).IsPossible(truth ? 1 : 0) == 0) {
        changed |= KeepTruth(environment, j, !truth);
      } else if (environment.Truth(j).IsPossible(truth ? 1 : 0) == 0) {
        changed |= KeepTruth(environment, i, !truth);
      }
    }
    return changed;
  }
  const int changed = NarrowTo(environment, i, environment.Integer(j));
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
    changed |= IsA(environment.Value(other), VokTarnBoolean::sIdent)
                   ? KeepTruth(environment, other, v == 0)
                   : RemoveValue(environment, other, static_cast<VokLong>(v));
  }
  return changed;
}

int KeepOrdered(const VokTarnObjectEnvironment& environment, unsigned i, unsigned j, int gap) {
  if (environment.AreSame(i, j)) {
    // Bounds alone would take one value after the other from a value that is to be below itself.
    return gap > 0 ? environment.Fail() : 0;
  }
  const int changed = KeepAtMost(environment, i, std::int64_t{environment.Upper(j)} - gap);
  if (environment.IsFailed()) {
    return changed;
  }
  return changed | KeepAtLeast(environment, j, std::int64_t{environment.Lower(i)} + gap);
}

bool AreIntegers(const VokTarnObjectEnvironment& environment, unsigned from, unsigned to) {
  for (unsigned i = from; i < to; ++i) {
    if (!environment.Has(i) || !IsA(environment.Value(i), VokTarnInteger::sIdent)) {
      return false;
    }
  }
  return true;
}

bool AreTruthValues(const VokTarnObjectEnvironment& environment, unsigned from, unsigned to) {
  for (unsigned i = from; i < to; ++i) {
    if (!environment.Has(i) || !IsA(environment.Value(i), VokTarnBoolean::sIdent)) {
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

bool IsInterval(const VokTarnInteger& x) {
  return IsA(x, VokFenIntervalInteger::sIdent);
}
