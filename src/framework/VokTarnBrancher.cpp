#include "framework/VokTarnBrancher.h"

#include <new>

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
      const VokTarnObjectDescriptor* type = network.GetType(id);
      auto* bound = static_cast<VokTarnInteger*>(network.TakeSpare(type));
      if (bound == nullptr) {
        throw std::bad_alloc();
      }
      bound->SetExactValue(v);
      if (part.fPart == VokTarnBranch::Part::AtMost) {
        x.CalcLessOrEqualValue(*bound);
      } else {
        x.CalcNotLessValue(*bound);
      }
      network.ReleaseSpare(type, bound);
      break;
    }
  }
  network.NoteChange(id);
}
