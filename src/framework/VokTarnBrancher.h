#pragma once

#include <span>

#include "framework/VokTarnAtom.h"
#include "framework/VokTarnNetwork.h"

// Chooses how a search goes on.
class VOKTARN_EXPORT VokTarnBrancher {
 public:
  virtual ~VokTarnBrancher() = default;

  // What to assume of an open integer first; neither it nor its negation may be impossible. Of a type that holds every
  // value between its bounds only a part at one end can be taken, and of one that neither lists its values nor is a
  // range only the value is taken from the answer: the search splits it. False: nothing that this brancher looks after
  // is open. `depth` is the number of choices that the search is in; what is single at that depth stays so in the
  // choices below.
  virtual bool Choose(const VokTarnNetwork& network, unsigned depth, VokTarnAtom& choice) = 0;
  // Whether NoteChanges is to be called before each choice, and the values that have changed since the last one, or
  // that going back has restored.
  virtual bool WantsChanges() const noexcept { return false; }
  virtual void NoteChanges(const VokTarnNetwork& /*network*/, std::span<const VokTarnValueId> /*changed*/) {}
  // The network's last propagation has failed, after the choice (vokNoValue: none) of this value.
  virtual void OnFailure(const VokTarnNetwork& /*network*/, VokTarnValueId /*last*/) {}
  // The search has learned from that failure, in which these values were involved, some of them more than once.
  virtual void NoteInvolved(const VokTarnNetwork& /*network*/, std::span<const VokTarnValueId> /*values*/) {}
  // The network holds a solution, which is the best so far.
  virtual void OnSolution(const VokTarnNetwork& /*network*/) {}
  // The search begins again at its root.
  virtual void OnRestart(const VokTarnNetwork& /*network*/) {}
};
