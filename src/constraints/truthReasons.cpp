// Why constraints over truth values that are integers, and membership, have narrowed.
#include "constraints/VokTarnClauseConstraint.h"
#include "constraints/VokTarnDisjunctionConstraint.h"
#include "constraints/VokTarnMembershipConstraint.h"
#include "constraints/because.h"
#include "numbers/SubIntBase.h"

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

bool VokTarnMembershipConstraint::Explain(const VokTarnPast& past, const VokTarnAtom* atom,
                                          std::vector<VokTarnAtom>& because) const {
  constexpr unsigned kX = 0;
  constexpr unsigned kTruth = 1;
  const bool isPlain = GetMode() == VokTarnMode::Plain;
  if (!isPlain && (!IsTruth(past, kTruth) || past.Id(kX) == past.Id(kTruth))) {
    return false;
  }
  Because reason(past, because);
  const auto isInside = [&] {
    const std::size_t range = FindRange(past.Lower(kX));
    return range != GetRanges() && reason.AtLeast(kX, GetLower(range)) && reason.AtMost(kX, GetUpper(range));
  };
  // That x was in none of the ranges, of which the atom allows no more.
  const auto isOutside = [&](const VokTarnAtom* allowed) {
    Excluded excluded(past, kX);
    std::int64_t work = 0;
    for (std::size_t range = 0; range < GetRanges(); ++range) {
      const std::int64_t lower = std::max(GetLower(range), past.RootLower(kX));
      const std::int64_t upper = std::min(GetUpper(range), past.RootUpper(kX));
      work += upper - lower;
      if (work > 10000) {
        return false;
      }
      for (std::int64_t v = lower; v <= upper; ++v) {
        if ((allowed == nullptr || allowed->Denies(v)) && past.MayBeAtRoot(kX, v) && !excluded.Add(v, reason)) {
          return false;
        }
      }
    }
    excluded.Finish(reason);
    return true;
  };
  if (atom != nullptr && !isPlain && atom->fValue == past.Id(kTruth)) {
    VokLong v = 0;
    return FindArgument(past, *atom, v) == kTruth && (v == 1 ? isInside() : isOutside(nullptr));
  }
  const bool holds = isPlain || past.Lower(kTruth) == 1;
  if (!isPlain && !(past.IsSingle(kTruth) && reason.Is(kTruth, past.Lower(kTruth)) &&
                    (holds || GetMode() == VokTarnMode::Reified))) {
    return false;
  }
  if (holds) {
    return isOutside(atom);
  }
  if (atom == nullptr) {
    return isInside();
  }
  // The numbers next to the bound are in one range.
  const bool isLower = atom->fRelation == VokTarnAtom::Relation::AtLeast;
  const std::int64_t next = isLower ? std::int64_t{atom->fNumber} - 1 : std::int64_t{atom->fNumber} + 1;
  if (atom->fRelation == VokTarnAtom::Relation::Unequal) {
    return Has(atom->fNumber);
  }
  if (atom->fRelation == VokTarnAtom::Relation::Equal || next < SubIntBase::sMin || next > SubIntBase::sMax ||
      !Has(static_cast<VokLong>(next))) {
    return false;
  }
  const std::size_t range = FindRange(static_cast<VokLong>(next));
  return isLower ? reason.AtLeast(kX, GetLower(range)) : reason.AtMost(kX, GetUpper(range));
}
