#pragma once

#include "framework/VokTarnAtom.h"
#include "framework/VokTarnNetwork.h"

// Chooses how a search goes on, in place of the search's own choice.
class VOKTARN_EXPORT VokTarnBrancher {
 public:
  virtual ~VokTarnBrancher() = default;

  // What to assume of an open integer first; neither it nor its negation may be impossible. Of a type that holds every
  // value between its bounds only a part at one end can be taken. False: nothing that this brancher looks after is
  // open. `depth` is the number of choices that the search is in; what is single at that depth stays so in the
  // choices below.
  virtual bool Choose(const VokTarnNetwork& network, unsigned depth, VokTarnAtom& choice) = 0;
  // The network's last propagation has failed.
  virtual void OnFailure(const VokTarnNetwork& /*network*/) {}
};
