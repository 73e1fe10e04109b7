// Why constraints that count values, or keep them apart, have narrowed.
#include <algorithm>
#include <limits>
#include <vector>

#include "constraints/VokTarnAllDifferentConstraint.h"
#include "constraints/VokTarnCountConstraint.h"
#include "constraints/VokTarnGlobalCardinalityConstraint.h"
#include "constraints/because.h"

namespace {

// Members from `first` on: which surely are v, and which surely are not.
class Tally {
 public:
  Tally(const VokTarnPast& past, unsigned first, VokLong v, unsigned but) : fValue(v) {
    for (unsigned i = first; i < past.Size(); ++i) {
      if (i == but) {
        continue;
      }
      ++fCount;
      if (past.IsSingle(i) && past.Lower(i) == v) {
        fCertain.push_back(i);
      } else if (!past.MayBe(i, v)) {
        fImpossible.push_back(i);
      }
    }
    // What has been so from the beginning costs nothing.
    std::stable_partition(fImpossible.begin(), fImpossible.end(), [&](unsigned i) { return !past.MayBeAtRoot(i, v); });
  }

  bool AreAtLeast(std::int64_t count, Because& reason) const { return Take(fCertain, count, reason, true); }
  bool AreAtMost(std::int64_t count, Because& reason) const { return Take(fImpossible, fCount - count, reason, false); }
  std::int64_t CountCertain() const { return static_cast<std::int64_t>(fCertain.size()); }
  std::int64_t CountPossible() const { return fCount - static_cast<std::int64_t>(fImpossible.size()); }

 private:
  bool Take(const std::vector<unsigned>& from, std::int64_t count, Because& reason, bool isValue) const {
    if (count > static_cast<std::int64_t>(from.size())) {
      return false;
    }
    for (std::int64_t k = 0; k < count; ++k) {
      const unsigned i = from[static_cast<std::size_t>(k)];
      if (!(isValue ? reason.Is(i, fValue) : reason.IsNot(i, fValue))) {
        return false;
      }
    }
    return true;
  }

  VokLong fValue;
  std::int64_t fCount = 0;
  std::vector<unsigned> fCertain;
  std::vector<unsigned> fImpossible;
};

// That argument `count` is the number of the members from `first` on that are v implies the atom.
bool ExplainCount(const VokTarnPast& past, unsigned count, unsigned first, VokLong v, const VokTarnAtom* atom,
                  std::vector<VokTarnAtom>& because) {
  Because reason(past, because);
  if (atom == nullptr || atom->fValue == past.Id(count)) {
    const Tally tally(past, first, v, past.Size());
    if (atom == nullptr) {
      const std::int64_t lower = past.Lower(count);
      const std::int64_t upper = past.Upper(count);
      return tally.CountCertain() > upper    ? reason.AtMost(count, upper) && tally.AreAtLeast(upper + 1, reason)
             : tally.CountPossible() < lower ? reason.AtLeast(count, lower) && tally.AreAtMost(lower - 1, reason)
                                             : false;
    }
    return atom->fRelation == VokTarnAtom::Relation::AtLeast  ? tally.AreAtLeast(atom->fNumber, reason)
           : atom->fRelation == VokTarnAtom::Relation::AtMost ? tally.AreAtMost(atom->fNumber, reason)
                                                              : false;
  }
  unsigned member = first;
  while (past.Id(member) != atom->fValue && ++member < past.Size()) {
  }
  if (member == past.Size()) {
    return false;
  }
  const Tally others(past, first, v, member);
  if (past.Is(member, v).Implies(*atom)) {  // it is needed
    return reason.AtLeast(count, others.CountPossible() + 1) && others.AreAtMost(others.CountPossible(), reason);
  }
  return past.IsNot(member, v).Implies(*atom) && reason.AtMost(count, others.CountCertain()) &&
         others.AreAtLeast(others.CountCertain(), reason);
}

// Arguments and the values that they could have, each with an argument that it is matched to.
class Matching {
 public:
  static constexpr unsigned sNone = std::numeric_limits<unsigned>::max();
  // More values than these are too many for a reason.
  static constexpr std::int64_t sMostValues = 2000;

  // With `atom` its argument has only those of its values that make it false. False where there are too many.
  bool Read(const VokTarnPast& past, const VokTarnAtom* atom);
  // Of an argument that finds no value: it and all that have the values which it could take.
  bool FindCrowd();
  bool HasArgument(unsigned argument) const { return fArguments[argument] != 0; }
  // Whether a number is one of the values that they have.
  bool HasValue(std::int64_t v) const {
    return v >= fLower && v - fLower < static_cast<std::int64_t>(fValues.size()) &&
           fValues[static_cast<std::size_t>(v - fLower)] != 0;
  }

 private:
  bool Match(unsigned argument);

  std::int64_t fLower = 0;                    // of all values; a value is known by how far it is above
  std::vector<std::vector<unsigned>> fEdges;  // by argument
  std::vector<unsigned> fPartners;            // the same: its value
  std::vector<unsigned> fMatched;             // by value: its argument
  std::vector<char> fArguments;               // those that the last search has met
  std::vector<char> fValues;
  std::vector<unsigned> fFrom;  // by value, the argument that it was reached from
  unsigned fLast = 0;           // the argument of the atom
};

bool Matching::Read(const VokTarnPast& past, const VokTarnAtom* atom) {
  std::int64_t upper = std::numeric_limits<VokLong>::min();
  fLower = std::numeric_limits<VokLong>::max();
  for (unsigned i = 0; i < past.Size(); ++i) {
    if (past.Cardinality(i) <= 0) {
      return false;
    }
    fLower = std::min<std::int64_t>(fLower, past.Lower(i));
    upper = std::max<std::int64_t>(upper, past.Upper(i));
  }
  if (upper - fLower > sMostValues) {
    return false;
  }
  fEdges.resize(past.Size());
  for (unsigned i = 0; i < past.Size(); ++i) {
    const bool isSaid = atom != nullptr && atom->fValue == past.Id(i);
    fLast = isSaid ? i : fLast;
    for (std::int64_t v = past.Lower(i); v <= past.Upper(i); ++v) {
      if ((!isSaid || atom->Denies(v)) && past.MayBe(i, v)) {
        fEdges[i].push_back(static_cast<unsigned>(v - fLower));
      }
    }
  }
  fPartners.assign(past.Size(), sNone);
  fMatched.assign(static_cast<std::size_t>(upper - fLower) + 1, sNone);
  fFrom.resize(fMatched.size());
  return true;
}

// Breadth first.
bool Matching::Match(unsigned argument) {
  std::vector<unsigned> queue{argument};
  fArguments.assign(fEdges.size(), 0);
  fValues.assign(fMatched.size(), 0);
  fArguments[argument] = 1;
  for (std::size_t next = 0; next < queue.size(); ++next) {
    for (const unsigned v : fEdges[queue[next]]) {
      if (fValues[v] != 0) {
        continue;
      }
      fValues[v] = 1;
      fFrom[v] = queue[next];
      if (fMatched[v] != sNone) {
        fArguments[fMatched[v]] = 1;
        queue.push_back(fMatched[v]);
        continue;
      }
      // Turn the path that has led here.
      for (unsigned free = v; free != sNone;) {
        const unsigned i = fFrom[free];
        const unsigned before = fPartners[i];
        fMatched[free] = i;
        fPartners[i] = free;
        free = before;
      }
      return true;
    }
  }
  return false;
}

bool Matching::FindCrowd() {
  for (unsigned i = 0; i < fEdges.size(); ++i) {
    if (i != fLast && !Match(i)) {
      return true;
    }
  }
  return !fEdges.empty() && !Match(fLast);
}

}  // namespace

// With a value that the atom excludes there is a crowd: arguments with fewer values than they are.
bool VokTarnAllDifferentConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                            std::vector<VokTarnAtom>& because) const {
  Matching matching;
  if (!GetConstants().empty() || !matching.Read(past, atom) || !matching.FindCrowd()) {
    return false;
  }
  Because reason(past, because);
  for (unsigned i = 0; i < past.Size(); ++i) {
    if (!matching.HasArgument(i)) {
      continue;
    }
    // All that it could be at the beginning is a value of the crowd, is gone, or is what the atom says.
    const VokTarnSummary& root = past.Root(i);
    if (root.fSize <= 0 || root.GetWidth() > Matching::sMostValues) {
      return false;
    }
    Excluded excluded(past, i);
    for (std::int64_t v = root.fLower; v <= root.fUpper; ++v) {
      const bool isSaid = atom != nullptr && atom->fValue == past.Id(i) && !atom->Denies(v);
      if (!isSaid && !matching.HasValue(v) && past.MayBeAtRoot(i, v) && !excluded.Add(v, reason)) {
        return false;
      }
    }
    excluded.Finish(reason);
  }
  return true;
}

// Of a value that is known from the beginning.
bool VokTarnCountConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                     std::vector<VokTarnAtom>& because) const {
  constexpr unsigned kResult = 0;
  constexpr unsigned kValue = 1;
  constexpr unsigned kFirst = 2;
  return past.Root(kValue).fSize == 1 && ExplainCount(past, kResult, kFirst, past.RootLower(kValue), atom, because);
}

// Each value by itself.
bool VokTarnGlobalCardinalityConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                                 std::vector<VokTarnAtom>& because) const {
  const std::size_t size = because.size();
  for (unsigned j = 0; j < CountArguments(); ++j) {
    if (ExplainCount(past, j, CountArguments(), GetConstants()[j + 1], atom, because)) {
      return true;
    }
    because.resize(size);
  }
  return false;
}
