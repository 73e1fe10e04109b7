// Why constraints over truth values that are integers, and membership, have narrowed.
#include "constraints/VokTarnClauseConstraint.h"
#include "constraints/VokTarnDisjunctionConstraint.h"
#include "constraints/VokTarnMembershipConstraint.h"
#include "constraints/because.h"

namespace {

// Whether argument i is 0 or 1 from the beginning.
bool IsTruth(const VokTarnPast& past, unsigned i) {
  return past.RootLower(i) >= 0 && past.RootUpper(i) <= 1;
}

// The argument that an atom says the value v of, which is 0 or 1; the number of arguments when there is none.
unsigned FindArgument(const VokTarnPast& past, const VokTarnAtom& atom, VokLong& v) {
  for (unsigned i = 0; i < past.Size(); ++i) {
    if (past.Id(i) == atom.fValue && IsTruth(past, i)) {
      v = atom.Implies(past.AtLeast(i, 1)) ? 1 : 0;
      return v == 1 || atom.Implies(past.AtMost(i, 0)) ? i : past.Size();
    }
  }
  return past.Size();
}

}  // namespace

// The last argument that could hold has to: the others do not.
bool VokTarnClauseConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                      std::vector<VokTarnAtom>& because) const {
  unsigned but = past.Size();
  if (atom != nullptr) {
    VokLong v = 0;
    but = FindArgument(past, *atom, v);
    if (but == past.Size() || v != GetAim(but)) {
      return false;
    }
  }
  Because reason(past, because);
  for (unsigned i = 0; i < past.Size(); ++i) {
    if (i != but && !(IsTruth(past, i) && reason.Is(i, 1 - GetAim(i)))) {
      return false;
    }
  }
  return true;
}

bool VokTarnDisjunctionConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                           std::vector<VokTarnAtom>& because) const {
  const unsigned result = GetResult();
  Because reason(past, because);
  const auto isLost = [&](unsigned but) {
    for (unsigned i = 0; i < result; ++i) {
      if (i != but && !(IsTruth(past, i) && reason.Is(i, 1 - GetAim(i)))) {
        return false;
      }
    }
    return true;
  };
  const auto holds = [&] {
    for (unsigned i = 0; i < result; ++i) {
      if (IsTruth(past, i) && past.IsSingle(i) && past.Lower(i) == GetAim(i)) {
        return reason.Is(i, GetAim(i));
      }
    }
    return false;
  };
  if (atom == nullptr) {
    return past.IsSingle(result) && reason.Is(result, past.Lower(result)) &&
           (past.Lower(result) == GetAimOfResult() ? isLost(result) : holds());
  }
  VokLong v = 0;
  const unsigned place = FindArgument(past, *atom, v);
  if (place == past.Size()) {
    return false;
  }
  if (place == result) {
    return v == GetAimOfResult() ? holds() : isLost(result);
  }
  return v == GetAim(place) ? reason.Is(result, GetAimOfResult()) && isLost(place)
                            : reason.Is(result, 1 - GetAimOfResult());
}

// Of a set of one range, as most are.
bool VokTarnMembershipConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                          std::vector<VokTarnAtom>& because) const {
  constexpr unsigned kX = 0;
  constexpr unsigned kTruth = 1;
  const bool isPlain = GetMode() == VokTarnMode::Plain;
  if (GetRanges() != 1 || (!isPlain && (!IsTruth(past, kTruth) || past.Id(kX) == past.Id(kTruth)))) {
    return false;
  }
  const std::int64_t lower = GetLower(0);
  const std::int64_t upper = GetUpper(0);
  Because reason(past, because);
  const auto isInside = [&] { return reason.AtLeast(kX, lower) && reason.AtMost(kX, upper); };
  const auto isOutside = [&] {
    return past.Lower(kX) > upper   ? reason.AtLeast(kX, upper + 1)
           : past.Upper(kX) < lower ? reason.AtMost(kX, lower - 1)
                                    : lower == upper && reason.IsNot(kX, lower);
  };
  if (atom != nullptr && !isPlain && atom->fValue == past.Id(kTruth)) {
    VokLong v = 0;
    return FindArgument(past, *atom, v) == kTruth && (v == 1 ? isInside() : isOutside());
  }
  const bool holds = isPlain || past.Lower(kTruth) == 1;
  if (!isPlain && !(past.IsSingle(kTruth) && reason.Is(kTruth, past.Lower(kTruth)) &&
                    (holds || GetMode() == VokTarnMode::Reified))) {
    return false;
  }
  if (atom == nullptr) {
    return holds ? isOutside() : isInside();
  }
  if (holds) {
    return past.AtLeast(kX, lower).Implies(*atom) || past.AtMost(kX, upper).Implies(*atom);
  }
  switch (atom->fRelation) {
    case VokTarnAtom::Relation::AtLeast:  // the range is below, and so are all other values that there were
      return atom->fNumber <= upper + 1 && reason.AtLeast(kX, lower);
    case VokTarnAtom::Relation::AtMost:
      return atom->fNumber >= lower - 1 && reason.AtMost(kX, upper);
    case VokTarnAtom::Relation::Unequal:
      return lower <= atom->fNumber && atom->fNumber <= upper;
    case VokTarnAtom::Relation::Equal:
      break;
  }
  return false;
}
