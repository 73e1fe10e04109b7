#pragma once

#include <string>
#include <string_view>

#include "framework/VokTarnModuleManager.h"
#include "framework/VokTarnOperatorTable.h"
#include "tarn/Vocabulary.h"

namespace tarn {

// The opened modules, and what texts may consist of because of them. Every session over them must be gone before they
// are.
class Modules {
 public:
  // The module that every model may use without asking for it.
  static constexpr const char* sDefault = "VokFenEnumIntegers";

  Modules() = default;
  Modules(const Modules&) = delete;
  Modules& operator=(const Modules&) = delete;

  // Makes the directory, absolute or relative to the working directory, part of the module search path.
  void AddDirectory(const std::string& directory);
  // Throws ProgramError when the module cannot be opened.
  VokTarnModule& Open(const std::string& module);
  // Null when the module cannot be opened; the manager knows why.
  VokTarnModule* TryOpen(std::string_view module);

  VokTarnModuleManager& GetManager() noexcept { return fManager; }
  const VokTarnModuleManager& GetManager() const noexcept { return fManager; }
  const VokTarnOperatorTable& GetTable() const noexcept { return fTable; }
  const Vocabulary& GetVocabulary() const noexcept { return fVocabulary; }

 private:
  VokTarnModuleManager fManager;
  VokTarnOperatorTable fTable{fManager};
  Vocabulary fVocabulary;
};

}  // namespace tarn
