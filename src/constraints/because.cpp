#include "constraints/because.h"

#include <algorithm>

bool Because::AtLeast(unsigned i, std::int64_t v) {
  if (v <= fPast.RootLower(i)) {
    return true;
  }
  if (fPast.Lower(i) < v) {
    return false;
  }
  fAtoms.push_back(fPast.AtLeast(i, v));
  return true;
}

bool Because::AtMost(unsigned i, std::int64_t v) {
  if (v >= fPast.RootUpper(i)) {
    return true;
  }
  if (fPast.Upper(i) > v) {
    return false;
  }
  fAtoms.push_back(fPast.AtMost(i, v));
  return true;
}

bool Because::Is(unsigned i, std::int64_t v) {
  if (fPast.Root(i).fSize == 1) {
    return fPast.RootLower(i) == v;
  }
  if (!fPast.IsSingle(i) || fPast.Lower(i) != v) {
    return false;
  }
  fAtoms.push_back(fPast.Is(i, static_cast<VokLong>(v)));
  return true;
}

bool Because::IsNot(unsigned i, std::int64_t v) {
  if (!fPast.MayBeAtRoot(i, v)) {
    return true;
  }
  if (fPast.MayBe(i, v)) {
    return false;
  }
  fAtoms.push_back(fPast.IsNot(i, static_cast<VokLong>(v)));
  return true;
}

bool Because::IsTrueOf(unsigned i, const VokTarnAtom& atom) {
  switch (atom.fRelation) {
    case VokTarnAtom::Relation::Equal:
      return Is(i, atom.fNumber);
    case VokTarnAtom::Relation::Unequal:
      return IsNot(i, atom.fNumber);
    case VokTarnAtom::Relation::AtMost:
      return AtMost(i, atom.fNumber);
    case VokTarnAtom::Relation::AtLeast:
      break;
  }
  return AtLeast(i, atom.fNumber);
}

void LeastOfSum::Add(unsigned argument, Wide coefficient) {
  const VokTarnSummary& now = fPast.Summary(argument);
  const VokTarnSummary& root = fPast.Root(argument);
  const Wide least = coefficient * (coefficient > 0 ? now.fLower : now.fUpper);
  const Wide gain = least - coefficient * (coefficient > 0 ? root.fLower : root.fUpper);
  fLeast += least;
  if (gain != 0) {
    const VokTarnAtom bound =
        coefficient > 0 ? fPast.AtLeast(argument, now.fLower) : fPast.AtMost(argument, now.fUpper);
    fTerms.push_back({argument, coefficient, gain, fPast.FindChange(bound)});
  }
}

bool LeastOfSum::Explain(Wide atLeast, std::vector<VokTarnAtom>& because) {
  Wide slack = fLeast - atLeast;
  if (slack < 0) {
    return false;
  }
  const auto size = [](const Term& term) { return term.fCoefficient < 0 ? -term.fCoefficient : term.fCoefficient; };
  std::ranges::stable_sort(fTerms, [&](const Term& a, const Term& b) { return a.fChange > b.fChange; });
  std::erase_if(fTerms, [&slack](const Term& term) {
    const bool isGiven = term.fGain <= slack;
    slack -= isGiven ? term.fGain : 0;
    return isGiven;
  });
  Because reason(fPast, because);
  for (const Term& term : fTerms) {
    const Wide steps = slack / size(term);
    slack -= steps * size(term);
    const auto given = static_cast<std::int64_t>(steps);
    if (term.fCoefficient > 0) {
      reason.AtLeast(term.fArgument, fPast.Lower(term.fArgument) - given);
    } else {
      reason.AtMost(term.fArgument, fPast.Upper(term.fArgument) + given);
    }
  }
  return true;
}
