// Finding out what an operand of a generic operation really is.
#pragma once

#include "framework/VokTarnObject.h"

// 1 when `operand` is of the class with the identity pointer `ident`. An operand may come from outside through a null
// pointer: it is of no class. The address goes through a variable because compilers warn of a
// direct comparison; the module is compiled so that the test is not optimised away.
inline int IsOperandOf(const VokTarnObject& operand, const char* ident) {
  const VokTarnObject* const address = &operand;
  return address != nullptr && address->IsDerivedFrom(ident) != 0 ? 1 : 0;
}
