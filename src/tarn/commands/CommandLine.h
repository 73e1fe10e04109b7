#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "tarn/commands/Commands.h"

namespace tarn {

// What the arguments of the program ask for.
struct CommandLine {
  enum class Command { Narrow, Solve, Save, Graph, Tree, Why, Conflict, FlatZinc, Repl, Modules };

  Command fCommand = Command::Solve;
  std::string fFile;
  std::string fOutput;
  std::string fFact;
  std::optional<std::string> fModule;   // the one to list
  std::optional<std::string> fOpening;  // the model that a session begins with
  std::vector<std::string> fModules;
  std::vector<std::string> fDirectories;
  SolveOptions fSolve;
  GraphOptions fGraph;
  TreeOptions fTree;
  FlatZincOptions fFlatZinc;

  // Reads the arguments. When they are answered at once (help, version, a mistake), prints the answer, sets
  // `exitCode` and returns nothing.
  static std::optional<CommandLine> Parse(int argc, const char* const* argv, std::ostream& out, std::ostream& err,
                                          int& exitCode);
};

}  // namespace tarn
