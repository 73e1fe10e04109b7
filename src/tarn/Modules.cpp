#include "tarn/Modules.h"

#include <filesystem>
#include <new>

#include "framework/VokTarnMemoryWatch.h"
#include "tarn/Diagnostic.h"
#include "tarn/ValueText.h"

namespace tarn {

void Modules::AddDirectory(const std::string& directory) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::absolute(directory, error);
  if (error == std::errc::not_enough_memory) {
    throw std::bad_alloc();
  }
  if (error || fManager.AddSearchDirectory(path.string()) == 0) {
    throw ProgramError("tarn: error: cannot search the directory " + Quote(MakePrintable(directory)));
  }
}

VokTarnModule& Modules::Open(const std::string& module) {
  VokTarnModule* opened = TryOpen(module);
  if (opened == nullptr) {
    throw ProgramError("tarn: error: cannot open the module " + Quote(MakePrintable(module)) + ": " +
                       MakePrintable(fManager.GetError()));
  }
  return *opened;
}

VokTarnModule* Modules::TryOpen(std::string_view module) {
  const VokTarnMemoryWatch memory;
  VokTarnModule* opened = fManager.OpenModule(VokString(module));
  if (opened == nullptr && memory.HasSeenFailure()) {
    throw std::bad_alloc();
  }
  if (opened == nullptr || !fTable.Refresh()) {
    return opened;
  }
  for (const VokTarnType type : fTable.GetTypes()) {
    if (IsConcrete(type)) {
      fVocabulary.AddType(type->GetName().View());
    }
  }
  for (const std::string_view name : fTable.GetOperatorNames()) {
    for (const VokTarnOperatorDescriptor* row : fTable.GetRows(name)) {
      fVocabulary.AddOperator(name, row->GetKind());
    }
  }
  return opened;
}

}  // namespace tarn
