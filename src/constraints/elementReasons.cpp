// Why elements and extremes have narrowed.
#include <algorithm>

#include "constraints/VokTarnConstantElementConstraint.h"
#include "constraints/VokTarnElementConstraint.h"
#include "constraints/VokTarnExtremumConstraint.h"
#include "constraints/because.h"

namespace {

using Relation = VokTarnAtom::Relation;

constexpr unsigned kResult = 0;
constexpr unsigned kIndex = 1;

}  // namespace

// Each place that would make the atom false is excluded, by the index or by its constant.
bool VokTarnConstantElementConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                               std::vector<VokTarnAtom>& because) const {
  const std::span<const VokLong> constants = GetConstants();
  Because reason(past, because);
  Excluded indices(past, kIndex);
  Excluded results(past, kResult);
  const bool isOfIndex = atom != nullptr && atom->fValue == past.Id(kIndex);
  const bool isOfResult = atom != nullptr && !isOfIndex;
  const auto first = std::max<std::int64_t>(1, past.RootLower(kIndex));
  const auto last = std::min<std::int64_t>(static_cast<std::int64_t>(constants.size()), past.RootUpper(kIndex));
  for (std::int64_t place = first; place <= last; ++place) {
    const VokLong constant = constants[static_cast<std::size_t>(place - 1)];
    if ((isOfIndex && !atom->Denies(place)) || (isOfResult && !atom->Denies(constant))) {
      continue;
    }
    // Of two ways to exclude it one is the atom itself.
    const bool byIndex = !past.MayBe(kIndex, place);
    if (isOfIndex ? !past.MayBe(kResult, constant) : !byIndex) {
      if (!results.Add(constant, reason)) {
        return false;
      }
    } else if (!indices.Add(place, reason)) {
      return false;
    }
  }
  indices.Finish(reason);
  results.Finish(reason);
  return true;
}

// Of bounds: each place that would make the atom false is excluded by the index, or by the bounds of its argument.
bool VokTarnElementConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                       std::vector<VokTarnAtom>& because) const {
  constexpr unsigned kBeforeFirst = 1;
  const auto places = std::int64_t{past.Size()} - kBeforeFirst - 1;
  Because reason(past, because);
  Excluded indices(past, kIndex);
  const auto first = std::max<std::int64_t>(1, past.RootLower(kIndex));
  const auto last = std::min(places, std::int64_t{past.RootUpper(kIndex)});
  // That the argument of a place and the result have no common value.
  const auto areApart = [&](unsigned i) {
    if (past.Lower(i) > past.Upper(kResult)) {
      return reason.AtMost(kResult, past.Upper(kResult)) && reason.AtLeast(i, std::int64_t{past.Upper(kResult)} + 1);
    }
    if (past.Upper(i) < past.Lower(kResult)) {
      return reason.AtLeast(kResult, past.Lower(kResult)) && reason.AtMost(i, std::int64_t{past.Lower(kResult)} - 1);
    }
    const unsigned single = past.IsSingle(i) ? i : kResult;
    return past.IsSingle(single) && reason.Is(single, past.Lower(single)) &&
           reason.IsNot(i + kResult - single, past.Lower(single));
  };
  if (atom == nullptr || atom->fValue == past.Id(kIndex)) {
    for (std::int64_t place = first; place <= last; ++place) {
      if ((atom == nullptr || atom->Denies(place)) &&
          !(!past.MayBe(kIndex, place) ? indices.Add(place, reason)
                                       : areApart(kBeforeFirst + static_cast<unsigned>(place)))) {
        return false;
      }
    }
    indices.Finish(reason);
    return true;
  }
  if (atom->fValue != past.Id(kResult)) {
    // The member at the only place is the result.
    const auto place = kBeforeFirst + static_cast<unsigned>(past.Lower(kIndex));
    return past.IsSingle(kIndex) && past.Lower(kIndex) >= 1 && past.Lower(kIndex) <= places &&
           past.Id(place) == atom->fValue && reason.Is(kIndex, past.Lower(kIndex)) && reason.IsTrueOf(kResult, *atom);
  }
  for (std::int64_t place = first; place <= last; ++place) {
    const auto i = kBeforeFirst + static_cast<unsigned>(place);
    if (!(past.MayBe(kIndex, place) ? reason.IsTrueOf(i, *atom) : indices.Add(place, reason))) {
      return false;
    }
  }
  indices.Finish(reason);
  return true;
}

bool VokTarnExtremumConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                        std::vector<VokTarnAtom>& because) const {
  if (atom == nullptr || (atom->fRelation != Relation::AtLeast && atom->fRelation != Relation::AtMost)) {
    return false;
  }
  Because reason(past, because);
  // Towards the end that an extreme reaches, seen from the greatest.
  const bool isUp = (atom->fRelation == Relation::AtLeast) == IsGreatest();
  const auto areBelow = [&](std::int64_t v, unsigned but) {
    for (unsigned i = 1; i < past.Size(); ++i) {
      if (i != but && !(IsGreatest() ? reason.AtMost(i, v) : reason.AtLeast(i, v))) {
        return false;
      }
    }
    return true;
  };
  if (atom->fValue == past.Id(kResult)) {
    if (!isUp) {
      return areBelow(atom->fNumber, kResult);
    }
    for (unsigned i = 1; i < past.Size(); ++i) {
      if (IsGreatest() ? past.Lower(i) >= atom->fNumber : past.Upper(i) <= atom->fNumber) {
        return reason.IsTrueOf(i, *atom);
      }
    }
    return false;
  }
  if (!isUp) {
    return reason.IsTrueOf(kResult, *atom);
  }
  // It is the only one that can be as great as the result.
  unsigned place = 1;
  while (past.Id(place) != atom->fValue) {
    ++place;
  }
  return reason.IsTrueOf(kResult, *atom) && areBelow(std::int64_t{atom->fNumber} + (IsGreatest() ? -1 : 1), place);
}
