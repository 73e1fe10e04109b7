#pragma once

#include <string>
#include <vector>

#include "framework/VokTarnModuleManager.h"
#include "framework/VokTarnNetwork.h"
#include "framework/VokTarnOperatorTable.h"
#include "tarn/Compiler.h"
#include "tarn/Model.h"
#include "tarn/Source.h"
#include "tarn/Vocabulary.h"

namespace tarn {

// The opened modules, the model read so far and the network built from it.
//
// Reading is incremental: each statement takes effect before the next one is read.
class Session {
 public:
  // The module that every model may use without asking for it.
  static constexpr const char* sDefaultModule = "VokFenEnumIntegers";

  // The constraints that stand for the statement at the same place of the model.
  struct Constraints {
    VokULong fFirst;
    VokULong fEnd;
  };

  Session() = default;
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Makes the directory, absolute or relative to the working directory, part of the module search path.
  void AddDirectory(const std::string& directory);
  // Throws ProgramError when the module cannot be opened.
  VokTarnModule& Open(const std::string& module);
  // Throws ModelError.
  void Read(const Source& source);

  const VokTarnModuleManager& GetManager() const noexcept { return fManager; }
  VokTarnNetwork& GetNetwork() noexcept { return fNetwork; }
  const Model& GetModel() const noexcept { return fModel; }
  const Compiler& GetCompiler() const noexcept { return fCompiler; }
  const std::vector<Constraints>& GetConstraints() const noexcept { return fConstraints; }

 private:
  // Null when the module cannot be opened.
  VokTarnModule* TryOpen(std::string_view module);
  void Execute(Statement statement);

  // The order is the order of dependence: the values of the network are built by code of the modules.
  VokTarnModuleManager fManager;
  VokTarnOperatorTable fTable{fManager};
  VokTarnNetwork fNetwork;
  Vocabulary fVocabulary;
  Model fModel;
  Compiler fCompiler{fTable, fNetwork, fModel};
  std::vector<Constraints> fConstraints;
};

}  // namespace tarn
