#pragma once

#include <cstdint>
#include <vector>

#include "constraints/VokTarnConstraintOf.h"

// The values of the arguments (x1, .., xn), integers of any types, are a word of the language of a finite automaton.
// The constants are (Q, S, q0, f, F1, .., Ff, d): states 1 to Q, letters 1 to S, the initial state, the number of final
// states and these, and the successor of every state with every letter, state after state, Q times S in all. State 0
// stands for none.
//
// Strength  Domain consistent for distinct arguments: a value stays when some path from the initial to a final state
//           has it. An interval keeps what lies between its bounds.
// Cost      O(n Q d) for each filtering at most, d the values of an argument; only states that the initial one reaches
//           count, and only layers whose states or letters differ from those of the last filtering: for another layer
//           it is O(d + Q / 64).
// Source    G. Pesant, "A regular language membership constraint for finite sequences of variables", CP 2004: a pass
//           forward for the states that are reached and one backward for those from which a final state is. We keep no
//           graph and no state of the search. What is kept of each layer is a function of what is kept of its neighbour
//           and of its letters, and is found again when these differ, so it is right whatever the search did in
//           between.
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
  std::size_t Next(std::size_t state, std::size_t letter) const;
  void MakeRoom() const;
  void IndexSteps() const;
  void ReadLetters(const VokTarnObjectEnvironment& environment, unsigned i) const;
  void StepForward(std::size_t i) const;
  void StepForwardByWords(std::size_t i) const;
  void StepBackward(std::size_t i) const;

  // A bit for each state or letter, in words; made when they are needed first.
  mutable std::size_t fStateWords = 0;
  mutable std::size_t fLetterWords = 0;
  mutable std::vector<std::uint64_t> fFinal;
  mutable std::span<const VokLong> fSteps;   // the successors among the constants
  mutable std::vector<std::uint64_t> fFrom;  // see IndexSteps
  mutable std::vector<std::uint64_t> fTo;
  // By argument: the letters that were possible when it was read last, and those with a support among them.
  mutable std::vector<std::uint64_t> fLetters;
  mutable std::vector<std::uint64_t> fSupported;
  // By layer, of which there is one before each argument and one behind the last: the states that are reached with the
  // letters, and those of them from which a final state is.
  mutable std::vector<std::uint64_t> fReached;
  mutable std::vector<std::uint64_t> fUseful;
  // By argument: whether what the layer behind it (before it) and the supported letters follow from has changed since
  // they were found. A call that ends early leaves the marks for the next one.
  mutable std::vector<char> fIsForwardStale;
  mutable std::vector<char> fIsBackwardStale;
  mutable std::vector<std::uint64_t> fNow;
  mutable bool fIsDistinct = false;  // no argument stands twice
};
