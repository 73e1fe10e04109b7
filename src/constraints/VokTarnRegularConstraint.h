#pragma once

#include <vector>

#include "constraints/VokTarnConstraintOf.h"

// The values of the arguments (x1, .., xn), integers of any types, are a word of the language of a finite automaton.
// The constants are (Q, S, q0, f, F1, .., Ff, d): states 1 to Q, letters 1 to S, the initial state, the number of final
// states and these, and the successor of every state with every letter, state after state, Q times S in all. State 0
// stands for none.
//
// Strength  Domain consistent for distinct arguments: a value stays when some path from the initial to a final state
//           has it. An interval keeps what lies between its bounds.
// Cost      O(n Q d) for each filtering, d the values of an argument; only states that the initial one reaches count.
// Source    G. Pesant, "A regular language membership constraint for finite sequences of variables", CP 2004: a pass
//           forward for the states that are reached and one backward for those from which a final state is. We keep no
//           graph between the calls.
class VOKTARN_EXPORT VokTarnRegularConstraint final : public VokTarnConstraintOf<VokTarnRegularConstraint> {
 public:
  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnConstraintDescriptor* sDescriptor;

  using VokTarnConstraintOf::VokTarnConstraintOf;

  Priority GetPriority() const noexcept override { return Many; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  int Propagate(const VokTarnObjectEnvironment& environment) const override;

 private:
  VokLong Next(std::size_t state, std::size_t letter) const;
  void IndexStates() const;

  // Made when they are needed first: whether each state is final, whether no argument stands twice.
  mutable std::vector<char> fIsFinal;
  mutable bool fIsDistinct = false;
};
