#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "framework/VokString.h"
#include "framework/VokTarnObjectDescriptor.h"

// One opened module: its name, the modules that it depends on, and the descriptors that it published.
//
// Ownership  Owns its descriptors, in order of publication; a null one is kept as a gap.
class VOKTARN_EXPORT VokTarnModule {
 public:
  explicit VokTarnModule(const VokString& name);
  VokTarnModule(const VokTarnModule&) = delete;
  VokTarnModule& operator=(const VokTarnModule&) = delete;
  ~VokTarnModule();

  const VokString& GetName() const noexcept { return fName; }

  // Records a dependency. Returns 1, or 0 for null or when memory is short.
  int AddLoadedModule(VokTarnModule* module) noexcept;
  // Takes ownership of a type, operator or constraint descriptor. Returns 1, or 0 when memory is short
  // (the descriptor is then destroyed).
  int AddObjectDescriptor(const VokTarnObjectDescriptor* descriptor) noexcept;

  const std::vector<VokTarnModule*>& GetLoadedModules() const noexcept { return fLoadedModules; }
  const std::vector<std::unique_ptr<const VokTarnObjectDescriptor>>& GetDescriptors() const noexcept {
    return fDescriptors;
  }
  // The first descriptor of that name, or null.
  const VokTarnObjectDescriptor* FindDescriptor(std::string_view name) const noexcept;

 private:
  VokString fName;
  std::vector<VokTarnModule*> fLoadedModules;
  std::vector<std::unique_ptr<const VokTarnObjectDescriptor>> fDescriptors;
};
