// Calls a function that no library has: the loader refuses it.
#include "framework/VokTarnModuleManager.h"

int FunctionOfNobody();

extern "C" VOKTARN_EXPORT int InitModule(VokTarnModule* /*module*/, VokTarnModuleManager* /*manager*/) {
  return FunctionOfNobody();
}
