// Needs a module that needs this one: neither can start.
#include "framework/VokTarnModuleManager.h"

extern "C" VOKTARN_EXPORT int InitModule(VokTarnModule* module, VokTarnModuleManager* manager) {
  return module->AddLoadedModule(manager->OpenModule(CYCLE_NEEDS));
}
