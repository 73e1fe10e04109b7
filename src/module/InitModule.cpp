// The entry points of the module, found by their plain names in the loaded library.
#include <initializer_list>

#include "domain/VokFenEnumInteger.h"
#include "framework/VokTarnModule.h"
#include "framework/VokTarnModuleManager.h"
#include "module/operatorTable.h"

VokULong InitEnumIntegers() {
  VokFenEnumInteger::sMAX_CARD = 1024;
  return VokFenEnumInteger::sMAX_CARD;
}

// Publishes the type "enum int" and its operators in `module`. Returns 1, or 0 when an argument is null or a module
// that this one needs cannot be opened; what was recorded until then stays recorded. Opening the same
// module twice is up to the framework: a second call makes a second descriptor.
extern "C" VOKTARN_EXPORT int InitModule(VokTarnModule* module, VokTarnModuleManager* manager) noexcept {
  if (module == nullptr || manager == nullptr) {
    return 0;
  }
  for (const char* const name : {"VokFenAbstractTypes", "VokFenNumbers"}) {
    VokTarnModule* const needed = manager->OpenModule(name);
    if (needed == nullptr) {
      return 0;
    }
    module->AddLoadedModule(needed);
  }
  // First of all descriptors, because every operator names the type.
  module->AddObjectDescriptor(VokFenEnumInteger::MakeDescriptor());
  InitEnumIntegers();
  RegisterOperators(*module);
  return 1;
}

// Marks the library as one of enumerated integers, for whoever looks before opening it.
extern "C" VOKTARN_EXPORT int VokFenEnumIntegersMarker() noexcept {
  return 1;
}
