// Its entry point reports a failure.
#include "framework/VokTarnModuleManager.h"

extern "C" VOKTARN_EXPORT int InitModule(VokTarnModule* /*module*/, VokTarnModuleManager* /*manager*/) {
  return 0;
}
