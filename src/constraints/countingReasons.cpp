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

  // With `atom` its argument has only those of its values that make it false.
  bool Read(const VokTarnPast& past, const VokTarnAtom* atom);
  // Of an argument that finds no value: it and all that have the values which it could take, and these.
  bool FindCrowd(std::vector<char>& arguments, std::vector<char>& values);
  VokLong GetValue(std::size_t place) const { return fValues[place]; }
  std::size_t CountValues() const { return fValues.size(); }

 private:
  bool Match(unsigned argument, std::vector<char>& arguments, std::vector<char>& values);

  std::vector<VokLong> fValues;
  std::vector<std::vector<unsigned>> fEdges;  // by argument
  std::vector<unsigned> fMatched;             // by value
  unsigned fLast = 0;                         // the argument of the atom
};

bool Matching::Read(const VokTarnPast& past, const VokTarnAtom* atom) {
  std::vector<std::vector<VokLong>> members(past.Size());
  for (unsigned i = 0; i < past.Size(); ++i) {
    const VokTarnSummary& summary = past.Summary(i);
    if (summary.fSize <= 0 || summary.GetWidth() > sMostValues) {
      return false;
    }
    for (VokLong v = summary.fLower;; ++v) {
      if (past.MayBe(i, v) && !(atom != nullptr && atom->fValue == past.Id(i) && !atom->Denies(v))) {
        members[i].push_back(v);
      }
      if (v == summary.fUpper) {
        break;
      }
    }
    fValues.insert(fValues.end(), members[i].begin(), members[i].end());
    fLast = atom != nullptr && atom->fValue == past.Id(i) ? i : fLast;
  }
  std::ranges::sort(fValues);
  fValues.erase(std::unique(fValues.begin(), fValues.end()), fValues.end());
  fEdges.resize(past.Size());
  for (unsigned i = 0; i < past.Size(); ++i) {
    for (const VokLong v : members[i]) {
      fEdges[i].push_back(static_cast<unsigned>(std::ranges::lower_bound(fValues, v) - fValues.begin()));
    }
  }
  fMatched.assign(fValues.size(), sNone);
  return true;
}

bool Matching::Match(unsigned argument, std::vector<char>& arguments, std::vector<char>& values) {
  // Breadth first, with for each value the argument that it was reached from.
  std::vector<unsigned> queue{argument};
  std::vector<unsigned> from(fValues.size(), sNone);
  arguments.assign(fEdges.size(), 0);
  values.assign(fValues.size(), 0);
  arguments[argument] = 1;
  for (std::size_t next = 0; next < queue.size(); ++next) {
    for (unsigned v : fEdges[queue[next]]) {
      if (values[v] != 0) {
        continue;
      }
      values[v] = 1;
      from[v] = queue[next];
      if (fMatched[v] != sNone) {
        arguments[fMatched[v]] = 1;
        queue.push_back(fMatched[v]);
        continue;
      }
      // Turn the path that has led here.
      for (unsigned free = v; free != sNone;) {
        const unsigned i = from[free];
        const auto old = std::ranges::find(fMatched, i);
        const unsigned before = old == fMatched.end() ? sNone : static_cast<unsigned>(old - fMatched.begin());
        if (before != sNone) {
          fMatched[before] = sNone;
        }
        fMatched[free] = i;
        free = i == argument ? sNone : before;
      }
      return true;
    }
  }
  return false;
}

bool Matching::FindCrowd(std::vector<char>& arguments, std::vector<char>& values) {
  for (unsigned i = 0; i < fEdges.size(); ++i) {
    if (i != fLast && !Match(i, arguments, values)) {
      return true;
    }
  }
  return !fEdges.empty() && !Match(fLast, arguments, values);
}

}  // namespace

// With a value that the atom excludes there is a crowd: arguments with fewer values than they are.
bool VokTarnAllDifferentConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                            std::vector<VokTarnAtom>& because) const {
  Matching matching;
  std::vector<char> arguments;
  std::vector<char> values;
  if (!GetConstants().empty() || !matching.Read(past, atom) || !matching.FindCrowd(arguments, values)) {
    return false;
  }
  Because reason(past, because);
  for (unsigned i = 0; i < past.Size(); ++i) {
    if (arguments[i] == 0) {
      continue;
    }
    // All that it could be at the beginning is a value of the crowd, is gone, or is what the atom says.
    const VokTarnSummary& root = past.Root(i);
    if (root.fSize <= 0 || root.GetWidth() > Matching::sMostValues) {
      return false;
    }
    Excluded excluded(past, i);
    std::size_t place = 0;
    for (std::int64_t v = root.fLower; v <= root.fUpper; ++v) {
      while (place < matching.CountValues() && matching.GetValue(place) < v) {
        ++place;
      }
      const bool isOfCrowd = place < matching.CountValues() && matching.GetValue(place) == v && values[place] != 0;
      const bool isSaid = atom != nullptr && atom->fValue == past.Id(i) && !atom->Denies(v);
      if (!isOfCrowd && !isSaid && past.MayBeAtRoot(i, v) && !excluded.Add(v, reason)) {
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
