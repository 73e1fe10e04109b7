#pragma once

#include "framework/VokTarnNetwork.h"

// A part of an integer's possible values; what is not in it is the rest.
struct VokTarnBranch {
  enum class Part : unsigned char { Exactly, AllBut, AtMost, AtLeast };

  VokTarnValueId fValue;
  Part fPart;
  VokLong fNumber;

  VokTarnBranch GetRest() const noexcept {
    switch (fPart) {
      case Part::Exactly:
        return {fValue, Part::AllBut, fNumber};
      case Part::AllBut:
        return {fValue, Part::Exactly, fNumber};
      case Part::AtMost:
        return {fValue, Part::AtLeast, fNumber + 1};
      case Part::AtLeast:
        break;
    }
    return {fValue, Part::AtMost, fNumber - 1};
  }
};

// Chooses how a search goes on, in place of the search's own choice.
class VOKTARN_EXPORT VokTarnBrancher {
 public:
  virtual ~VokTarnBrancher() = default;

  // The part of an open integer's values to search first; neither it nor the rest may be empty. Of a type that holds
  // every value between its bounds only a part at one end can be taken. False: nothing that this brancher looks after
  // is open. `depth` is the number of choices that the search is in; what is single at that depth stays so in the
  // choices below.
  virtual bool Choose(const VokTarnNetwork& network, unsigned depth, VokTarnBranch& branch) = 0;
  // The network's last propagation has failed.
  virtual void OnFailure(const VokTarnNetwork& /*network*/) {}
};

// Takes away what is not in the part, whether or not it is there. Nothing left: the network has failed.
VOKTARN_EXPORT void VokTarnNarrow(VokTarnNetwork& network, const VokTarnBranch& part);
