// Why a linear relation has narrowed: see VokTarnLinearRelationConstraint::Explain.
#include "constraints/VokTarnLinearRelationConstraint.h"
#include "constraints/because.h"
#include "constraints/narrowing.h"

namespace {

using Relation = VokTarnAtom::Relation;
using Wide = LeastOfSum::Wide;

}  // namespace

// Of the sum minus n, or of its opposite: that it is at least `least`, without the terms of argument `but`.
bool VokTarnLinearRelationConstraint::ExplainLeast(const VokTarnPast& past, bool isOpposite, Wide least, unsigned but,
                                                   std::vector<VokTarnAtom>& because) const {
  LeastOfSum sum(past);
  const Wide sign = isOpposite ? -1 : 1;
  for (unsigned i = 0; i < GetTerms(); ++i) {
    if (i != but) {
      sum.Add(i, sign * GetStatement().fCoefficients[i]);
    }
  }
  return sum.Explain(least + sign * GetStatement().fNumber, because);
}

// The only values of all terms but one.
bool VokTarnLinearRelationConstraint::ExplainKnown(const VokTarnPast& past, unsigned but, Wide& rest,
                                                   std::vector<VokTarnAtom>& because) const {
  Because reason(past, because);
  rest = GetStatement().fNumber;
  for (unsigned i = 0; i < GetTerms(); ++i) {
    if (i != but) {
      if (!reason.Is(i, past.Lower(i))) {
        return false;
      }
      rest -= Wide{GetStatement().fCoefficients[i]} * past.Lower(i);
    }
  }
  return true;
}

// Why a term is bounded when the sum, or its opposite, is at most n: with the value beyond the bound it would be more.
bool VokTarnLinearRelationConstraint::ExplainBound(const VokTarnPast& past, bool isOpposite, bool isStrict,
                                                   unsigned term, const VokTarnAtom& atom,
                                                   std::vector<VokTarnAtom>& because) const {
  const Wide c = isOpposite ? -Wide{GetStatement().fCoefficients[term]} : Wide{GetStatement().fCoefficients[term]};
  if (c == 0 || atom.fRelation != (c > 0 ? Relation::AtMost : Relation::AtLeast)) {
    return false;
  }
  const Wide beyond = Wide{atom.fNumber} + (c > 0 ? 1 : -1);
  return ExplainLeast(past, isOpposite, Wide{isStrict ? 0 : 1} - c * beyond, term, because);
}

bool VokTarnLinearRelationConstraint::ExplainEnforced(const VokTarnPast& past, bool isNegated, unsigned term,
                                                      const VokTarnAtom* atom,
                                                      std::vector<VokTarnAtom>& because) const {
  const VokTarnRelation relation = GetRelation();
  const std::size_t size = because.size();
  // A sum that is at most n, or at least n + 1.
  if (relation == VokTarnRelation::AtMost) {
    return atom != nullptr ? ExplainBound(past, isNegated, isNegated, term, *atom, because)
                           : ExplainLeast(past, isNegated, isNegated ? 0 : 1, GetTerms(), because);
  }
  if ((relation == VokTarnRelation::Equal) == isNegated) {
    Wide rest = 0;
    if (atom != nullptr && atom->fRelation != Relation::Unequal) {
      return false;
    }
    return ExplainKnown(past, term, rest, because) &&
           (atom == nullptr ? rest == 0 : rest == Wide{GetStatement().fCoefficients[term]} * atom->fNumber);
  }
  for (const bool isOpposite : {false, true}) {
    if (atom != nullptr ? ExplainBound(past, isOpposite, false, term, *atom, because)
                        : ExplainLeast(past, isOpposite, 1, GetTerms(), because)) {
      return true;
    }
    because.resize(size);
  }
  return false;
}

// Why the relation is known to hold, or not to.
bool VokTarnLinearRelationConstraint::ExplainTruth(const VokTarnPast& past, bool holds,
                                                   std::vector<VokTarnAtom>& because) const {
  const VokTarnRelation relation = GetRelation();
  if (relation == VokTarnRelation::AtMost) {
    return ExplainLeast(past, holds, holds ? 0 : 1, GetTerms(), because);
  }
  const std::size_t size = because.size();
  Wide rest = 0;
  if ((relation == VokTarnRelation::Equal) == holds) {
    return ExplainKnown(past, GetTerms(), rest, because) && rest == 0;
  }
  for (const bool isOpposite : {false, true}) {
    if (ExplainLeast(past, isOpposite, 1, GetTerms(), because)) {
      return true;
    }
    because.resize(size);
  }
  // One term is open, and the value that it would need is none of its own.
  unsigned open = GetTerms();
  for (unsigned i = 0; i < GetTerms(); ++i) {
    open = past.IsSingle(i) ? open : i;
  }
  if (open == GetTerms() || !ExplainKnown(past, open, rest, because)) {
    return false;
  }
  const Wide c = GetStatement().fCoefficients[open];
  return c == 0 ? rest != 0
                : rest % c != 0 || !past.MayBeAtRoot(open, static_cast<std::int64_t>(rest / c)) ||
                      Because(past, because).IsNot(open, static_cast<std::int64_t>(rest / c));
}

bool VokTarnLinearRelationConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                              std::vector<VokTarnAtom>& because) const {
  if (GetStatement().fHasRepeats) {
    return false;
  }
  const unsigned truth = GetTerms();
  unsigned place = 0;
  while (atom != nullptr && past.Id(place) != atom->fValue) {
    ++place;
  }
  if (GetMode() == VokTarnMode::Plain) {
    return ExplainEnforced(past, false, atom != nullptr ? place : truth, atom, because);
  }
  if (past.RootLower(truth) < 0 || past.RootUpper(truth) > 1) {
    return false;
  }
  if (atom != nullptr && place == truth) {
    const bool isTrue = atom->Implies(past.AtLeast(truth, 1));
    return (isTrue || atom->Implies(past.AtMost(truth, 0))) && ExplainTruth(past, isTrue, because);
  }
  return past.IsSingle(truth) && Because(past, because).Is(truth, past.Lower(truth)) &&
         (past.Lower(truth) == 1 || GetMode() == VokTarnMode::Reified) &&
         ExplainEnforced(past, past.Lower(truth) == 0, atom != nullptr ? place : truth, atom, because);
}
