// The conditions that filtered intersections put on a member. `bound` points at one SubIntBase that the
// caller keeps and that is no member of the narrowed set: members move while they are filtered.
#pragma once

#include "numbers/SubIntBase.h"

inline int NotAboveBound(const SubIntBase& element, void* bound) {
  return element <= *static_cast<const SubIntBase*>(bound) ? 1 : 0;
}
inline int NotBelowBound(const SubIntBase& element, void* bound) {
  return element >= *static_cast<const SubIntBase*>(bound) ? 1 : 0;
}
inline int AlwaysTrue(const SubIntBase&, void*) {
  return 1;
}
