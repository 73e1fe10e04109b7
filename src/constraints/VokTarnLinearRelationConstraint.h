#pragma once

#include "constraints/VokTarnConstraintOf.h"
#include "framework/VokTarnRelation.h"

// c1 x1 + .. + cn xn = n, <= n or <> n for the arguments (x1, .., xn), and with the truth as the last where the mode
// asks for one: integers of any types.
//
// Constants  The relation and the mode (VokTarnRelation.h), then n and c1 .. cn with 64 bits each, see VokSplitWide.
// Meaning    That of the integers, whatever their size; the arguments are taken as the numbers that they are.
// Strength   Bounds: each term keeps what the bounds of the others leave it, in one pass for <=, in several for =.
//            An argument that stands twice counts as two. <> removes a value when one argument is open. The truth is
//            decided by bounds, that of = and <> by a single open argument too.
// Cost       The bounds of the sum follow the changes of its terms, and a filtering ends in O(1) where the widest open
//            term says that every value stays. Else O(k) for a pass over the k terms that may be open. Sums that might
//            leave 63 bits are read anew, in O(n).
// Source     W. Harvey, P. J. Stuckey, "Improving linear constraint propagation by changing constraint representation",
//            Constraints 8, 2003. Reasons: see LeastOfSum.
class VOKTARN_EXPORT VokTarnLinearRelationConstraint final
    : public VokTarnConstraintOf<VokTarnLinearRelationConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override {
    return GetArguments().size() <= 2 ? Binary : GetArguments().size() == 3 ? Ternary : Many;
  }
  VokTarnEvent GetEvent(unsigned argument, const VokTarnObjectEnvironment& environment) const override;
  std::vector<unsigned> GetWatched(const VokTarnObjectEnvironment& environment) const override;
  unsigned MoveWatch(unsigned argument, const VokTarnObjectEnvironment& environment) const override;
  unsigned CountState(const VokTarnObjectEnvironment&) const override { return HasState() ? unsigned{sStateSize} : 0U; }
  void InitState(const VokTarnObjectEnvironment& environment) const override;
  bool Advise(unsigned argument, const VokTarnSummary& before,
              const VokTarnObjectEnvironment& environment) const override;
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;
  bool Explain(const VokTarnPast& past, const VokTarnAtom* atom, std::vector<VokTarnAtom>& because) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  template <class Wide>
  class Pass;
  // What the constants say, read once: the same whatever the arguments.
  struct Statement {
    std::vector<std::int64_t> fCoefficients;
    std::int64_t fNumber = 0;
    bool fIsNarrow = false;  // every sum of terms has less than 63 bits
    bool fHasRepeats = false;
    bool fHasState = false;
    bool fIsRead = false;
  };

  VokTarnRelation GetRelation() const noexcept { return static_cast<VokTarnRelation>(GetConstants()[0]); }
  VokTarnMode GetMode() const noexcept { return static_cast<VokTarnMode>(GetConstants()[1]); }
  unsigned GetTerms() const noexcept {
    return static_cast<unsigned>(GetArguments().size()) - (GetMode() == VokTarnMode::Plain ? 0U : 1U);
  }
  const Statement& GetStatement() const {
    if (!fStatement.fIsRead) {
      ReadStatement();
    }
    return fStatement;
  }
  void ReadStatement() const;
  // The numbers that the network keeps: the bounds of the sum minus n, the width of the widest term or more, and how
  // many terms at the beginning of fOrder may be open.
  enum StateNumber : unsigned { sLower, sUpper, sWidest, sOpen, sStateSize };
  static constexpr unsigned sLeastFollowed = 8;  // fewer terms are read as quickly
  bool HasState() const { return GetStatement().fHasState; }
  __extension__ using Int128 = __int128;
  bool ExplainLeast(const VokTarnPast& past, bool isOpposite, Int128 least, unsigned but,
                    std::vector<VokTarnAtom>& because) const;
  bool ExplainKnown(const VokTarnPast& past, unsigned but, Int128& rest, std::vector<VokTarnAtom>& because) const;
  bool ExplainBound(const VokTarnPast& past, bool isOpposite, bool isStrict, unsigned term, const VokTarnAtom& atom,
                    std::vector<VokTarnAtom>& because) const;
  bool ExplainEnforced(const VokTarnPast& past, bool isNegated, unsigned term, const VokTarnAtom* atom,
                       std::vector<VokTarnAtom>& because) const;
  bool ExplainTruth(const VokTarnPast& past, bool holds, std::vector<VokTarnAtom>& because) const;
  template <class Wide>
  int PropagateIn(const VokTarnObjectEnvironment& environment) const;

  mutable Statement fStatement;
  // The terms; those behind the first sOpen are known. Which stand in front changes, the set of those behind does not
  // but for what is added: going back takes it as it is.
  mutable std::vector<unsigned> fOrder;
  // The two arguments that are watched: they move, and stay when the search goes back, as the network's watches do.
  mutable unsigned fWatched[2] = {0, 1};
};
