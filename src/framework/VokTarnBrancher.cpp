#include "framework/VokTarnBrancher.h"

// A bound crosses as a single value of the same type, which every type handles.
void VokTarnNarrow(VokTarnNetwork& network, const VokTarnBranch& part) {
  const VokTarnValueId id = part.fValue;
  const VokLong v = part.fNumber;
  auto& x = static_cast<VokTarnInteger&>(network.Touch(id));
  switch (part.fPart) {
    case VokTarnBranch::Part::Exactly:
      if (x.IsPossible(v)) {
        x.SetExactValue(v);
      } else {
        x.SetNilValue();
      }
      break;
    case VokTarnBranch::Part::AllBut:
      if (network.GetCardinality(id) == 1 && network.GetLower(id) == v) {
        x.SetNilValue();
      } else {
        x.RemoveExactValue(v);
      }
      break;
    case VokTarnBranch::Part::AtMost:
    case VokTarnBranch::Part::AtLeast: {
      const VokTarnNetwork::Spare spare = network.TakeSpare(network.GetType(id));
      auto& bound = static_cast<VokTarnInteger&>(*spare);
      bound.SetExactValue(v);
      if (part.fPart == VokTarnBranch::Part::AtMost) {
        x.CalcLessOrEqualValue(bound);
      } else {
        x.CalcNotLessValue(bound);
      }
      break;
    }
  }
  network.NoteChange(id);
}
