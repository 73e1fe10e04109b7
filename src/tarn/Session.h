#pragma once

#include <functional>
#include <string>
#include <vector>

#include "framework/VokTarnNetworkFile.h"
#include "tarn/Compiler.h"
#include "tarn/Model.h"
#include "tarn/Modules.h"
#include "tarn/Source.h"

namespace tarn {

// The model read so far and the network built from it. Refers to the modules.
//
// Reading is incremental: each statement takes effect before the next one is read. A saved network stands in the place
// of one that is built; its model is then only what solutions are checked against.
class Session {
 public:
  // The constraints that stand for the statement at the same place of the model.
  struct Constraints {
    VokULong fFirst;
    VokULong fEnd;
  };

  explicit Session(Modules& modules) : fModules(modules) {}
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Reads a model text, or a saved network, before which nothing may have been read. Throws ModelError for a text,
  // ProgramError for a saved network. `afterEach` is called when a statement has taken effect.
  void Read(
      const Source& source, const std::function<void()>& afterEach = [] {});

  // Whether the network is one that was saved.
  bool IsRestored() const noexcept { return fRestored != nullptr; }
  Modules& GetModules() noexcept { return fModules; }
  VokTarnNetwork& GetNetwork() noexcept { return fRestored != nullptr ? *fRestored : fNetwork; }
  const Model& GetModel() const noexcept { return fModel; }
  const Compiler& GetCompiler() const noexcept { return fCompiler; }
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
  void Restore(const Source& source);
  void Execute(Statement statement);
  void AddVariables(const Declaration& declaration);
  void CheckVariables(const Source& source) const;

  Modules& fModules;
  VokTarnNetwork fNetwork;
  Model fModel;
  Compiler fCompiler{fModules.GetTable(), fNetwork, fModel};
  std::vector<Constraints> fConstraints;
  VokTarnNetworkFile::Contents fContents;  // of a network that is built, the text alone
  std::unique_ptr<VokTarnNetwork> fRestored;
};

}  // namespace tarn
