#pragma once

#include <string>
#include <vector>

#include "framework/VokTarnModuleManager.h"
#include "framework/VokTarnNetworkFile.h"
#include "framework/VokTarnOperatorTable.h"
#include "tarn/Compiler.h"
#include "tarn/Model.h"
#include "tarn/Source.h"
#include "tarn/Vocabulary.h"

namespace tarn {

// The opened modules, the model read so far and the network built from it.
//
// Reading is incremental: each statement takes effect before the next one is read. A saved network stands in the place
// of one that is built; its model is then only what solutions are checked against.
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
  // Reads a model text, or a saved network, before which nothing may have been read. Throws ModelError for a text,
  // ProgramError for a saved network.
  void Read(const Source& source);

  const VokTarnModuleManager& GetManager() const noexcept { return fManager; }
  VokTarnNetwork& GetNetwork() noexcept { return fRestored != nullptr ? *fRestored : fNetwork; }
  const Model& GetModel() const noexcept { return fModel; }
  // The values of the declared variables, in order of declaration.
  const std::vector<VokTarnValueId>& GetVariables() const noexcept {
    return fRestored != nullptr ? fContents.fVariables : fCompiler.GetVariables();
  }
  const std::optional<VokTarnSearch::Objective>& GetObjective() const noexcept {
    return fRestored != nullptr ? fContents.fObjective : fCompiler.GetObjective();
  }
  // What goes into a file together with the network.
  VokTarnNetworkFile::Contents GetContents() const;
  // Empty for a saved network.
  const std::vector<Constraints>& GetConstraints() const noexcept { return fConstraints; }

 private:
  // Null when the module cannot be opened.
  VokTarnModule* TryOpen(std::string_view module);
  void Restore(const Source& source);
  void Execute(Statement statement);
  void AddVariables(const Declaration& declaration);
  void CheckVariables(const Source& source) const;

  // The order is the order of dependence: the values of the network are built by code of the modules.
  VokTarnModuleManager fManager;
  VokTarnOperatorTable fTable{fManager};
  VokTarnNetwork fNetwork;
  Vocabulary fVocabulary;
  Model fModel;
  Compiler fCompiler{fTable, fNetwork, fModel};
  std::vector<Constraints> fConstraints;
  VokTarnNetworkFile::Contents fContents;  // of a network that is built, the text alone
  std::unique_ptr<VokTarnNetwork> fRestored;
};

}  // namespace tarn
