#pragma once

#include <span>
#include <vector>

#include "framework/VokTarnHistory.h"

// The arguments of a constraint, numbered from 0, as they were at a position of a history: what it explains its
// narrowing from. As VokTarnObjectEnvironment answers, without undefined values' objects.
//
// Cost  As that of VokTarnHistory when an argument is asked for first.
class VOKTARN_EXPORT VokTarnPast {
 public:
  VokTarnPast(const VokTarnHistory& history, std::span<const VokTarnValueId> arguments,
              VokTarnHistory::Position position) noexcept
      : fHistory(history), fArguments(arguments), fPosition(position) {}
  VokTarnPast(const VokTarnPast&) = delete;
  VokTarnPast& operator=(const VokTarnPast&) = delete;

  unsigned Size() const noexcept { return static_cast<unsigned>(fArguments.size()); }
  bool Has(unsigned i) const noexcept { return i < fArguments.size() && fArguments[i] != vokNoValue; }
  VokTarnValueId Id(unsigned i) const noexcept { return fArguments[i]; }

  const VokTarnSummary& Summary(unsigned i) const {
    if (fSummaries.empty()) {
      fSummaries.resize(fArguments.size());
    }
    if (fSummaries[i] == nullptr) {
      fSummaries[i] = &fHistory.GetSummary(fArguments[i], fPosition);
    }
    return *fSummaries[i];
  }
  VokLong Lower(unsigned i) const { return Summary(i).fLower; }
  VokLong Upper(unsigned i) const { return Summary(i).fUpper; }
  int Cardinality(unsigned i) const { return Summary(i).fSize; }
  bool IsSingle(unsigned i) const { return Cardinality(i) == 1; }
  bool MayBe(unsigned i, std::int64_t v) const {
    const VokTarnSummary& summary = Summary(i);
    if (v < summary.fLower || v > summary.fUpper) {
      return false;
    }
    return summary.fBits != 0
               ? (summary.fBits >> static_cast<unsigned>(v - summary.fLower) & 1) != 0
               : summary.HasNoHoles() || fHistory.WasPossible(fArguments[i], static_cast<VokLong>(v), fPosition);
  }

  // The same from the beginning, whatever has been chosen.
  const VokTarnSummary& Root(unsigned i) const { return fHistory.GetRoot(fArguments[i]); }
  VokLong RootLower(unsigned i) const { return Root(i).fLower; }
  VokLong RootUpper(unsigned i) const { return Root(i).fUpper; }
  bool MayBeAtRoot(unsigned i, std::int64_t v) const {
    return v >= RootLower(i) && v <= RootUpper(i) && fHistory.WasPossibleAtRoot(fArguments[i], static_cast<VokLong>(v));
  }

  // The change that made an atom true.
  VokTarnHistory::Position FindChange(const VokTarnAtom& atom) const { return fHistory.FindChange(atom); }

  // ---- Atoms that are true of argument i
  VokTarnAtom AtLeast(unsigned i, std::int64_t v) const {
    return {fArguments[i], VokTarnAtom::Relation::AtLeast, static_cast<VokLong>(v)};
  }
  VokTarnAtom AtMost(unsigned i, std::int64_t v) const {
    return {fArguments[i], VokTarnAtom::Relation::AtMost, static_cast<VokLong>(v)};
  }
  VokTarnAtom Is(unsigned i, VokLong v) const { return {fArguments[i], VokTarnAtom::Relation::Equal, v}; }
  VokTarnAtom IsNot(unsigned i, VokLong v) const { return {fArguments[i], VokTarnAtom::Relation::Unequal, v}; }

 private:
  const VokTarnHistory& fHistory;
  std::span<const VokTarnValueId> fArguments;
  VokTarnHistory::Position fPosition;
  mutable std::vector<const VokTarnSummary*> fSummaries;  // that have been asked for
};
