#include "framework/VokTarnModule.h"

#include <new>

VokTarnModule::VokTarnModule(const VokString& name) : fName(name) {}

VokTarnModule::~VokTarnModule() = default;

int VokTarnModule::AddLoadedModule(VokTarnModule* module) noexcept {
  if (module == nullptr) {
    return 0;
  }
  try {
    fLoadedModules.push_back(module);
    return 1;
  } catch (const std::bad_alloc&) {
    VokTarnBase::NoteAllocationFailure();
    return 0;
  }
}

int VokTarnModule::AddObjectDescriptor(const VokTarnObjectDescriptor* descriptor) noexcept {
  std::unique_ptr<const VokTarnObjectDescriptor> owned(descriptor);
  try {
    fDescriptors.push_back(std::move(owned));
    return 1;
  } catch (const std::bad_alloc&) {
    VokTarnBase::NoteAllocationFailure();
    return 0;
  }
}

const VokTarnObjectDescriptor* VokTarnModule::FindDescriptor(std::string_view name) const noexcept {
  for (const auto& descriptor : fDescriptors) {
    if (descriptor != nullptr && descriptor->GetName().View() == name) {
      return descriptor.get();
    }
  }
  return nullptr;
}
