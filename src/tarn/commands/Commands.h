// The commands of the program. Each prints its answer to `out`, everything else to `err`, and returns the exit code.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <limits>
#include <optional>
#include <string>

#include "tarn/Session.h"
#include "tarn/commands/Interrupt.h"

namespace tarn {

enum ExitCode : int {
  Solved = 0,
  NoSolution = 1,
  BadInput = 2,
  Undecided = 3  // stopped by a limit, or not decidable by search
};

struct SolveOptions {
  bool fAll = false;
  std::optional<std::uint64_t> fCount;
  bool fStatistics = false;
  bool fJson = false;
  bool fQuiet = false;
  Limits fLimits;
  VokTarnSearch::Options fSearch;
  VokTarnSearchObserver* fObserver = nullptr;
};

struct GraphOptions {
  bool fDeclared = false;  // the domains as declared, not narrowed
};

struct TreeOptions {
  std::uint64_t fMaxNodes = 500;
  bool fCollapse = false;  // a triangle for each largest part of the tree in which all has failed
};

struct FlatZincOptions {
  bool fAll = false;                    // all solutions, or every improving one
  bool fImproving = false;              // print each improving solution as it is found
  std::optional<std::uint64_t> fCount;  // of solutions, when there is no objective; 0: all
  bool fStatistics = false;
  bool fVerbose = false;
  bool fFree = false;               // the search need not be as the problem says
  std::uint64_t fMilliseconds = 0;  // 0: no limit
  std::uint64_t fProcesses = 1;
  std::int64_t fSeed = 0;
  std::optional<VokTarnSearch::Restart> fRestart;  // nothing: as the problem says
  VokTarnSearch::Learning fLearning = VokTarnSearch::Learning::Auto;
  std::uint64_t fNodeLimit = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t fFailLimit = std::numeric_limits<std::uint64_t>::max();
};

// Whether every variable has one value and no statement contradicts them; says on `err` what is wrong.
bool IsSolution(Session& session, std::ostream& err);

int RunNarrow(Session& session, std::ostream& out);
// Ends when `out` has failed. Requires that the limits are watched: WatchSolve.
int RunSolve(Session& session, const SolveOptions& options, std::ostream& out, std::ostream& err);
// Starts the watch for what RunSolve is to do. A run that must be ended from within the watch says so on the standard
// output only where solutions are printed there.
void WatchSolve(const SolveOptions& options, bool printsSolutions);
// Writes the narrowed network to the file `path`. Throws ProgramError when that fails; nothing is left of it then.
int RunSave(Session& session, const std::string& path, std::ostream& err);
// Draw the network and the search tree, to the file `path` or, when it is empty, to `out`; see WritePicture.
int RunGraph(Session& session, const GraphOptions& options, const std::string& path, std::ostream& out,
             std::ostream& err);
// The exit code is that of the search.
int RunTree(Session& session, SolveOptions solve, const TreeOptions& options, const std::string& path,
            std::ostream& out, std::ostream& err);
// Solves the problem in the file, and prints as MiniZinc expects it. The exit code is 0 for every answer, 1 for a text
// that is not a problem or not supported. Starts the watch itself.
int RunFlatZinc(Modules& modules, const std::string& path, const FlatZincOptions& options, std::ostream& out,
                std::ostream& err);
// Lists one module, or all that are loaded.
int RunModules(Modules& modules, const std::optional<std::string>& name, std::ostream& out);

// Explains why a fact, a relation between a variable and a value, holds in every solution. The session has read the
// source and nothing else. Throws ModelError for a fact that is none, ProgramError for a saved network.
int RunWhy(Session& session, const Source& source, const Source& factText, std::ostream& out, std::ostream& err);
// Names statements that cannot hold together. As RunWhy.
int RunConflict(Session& session, const Source& source, std::ostream& out, std::ostream& err);
// Holds a session with whoever writes lines to the standard input, first on the model in `file`, if any.
int RunRepl(Modules& modules, const std::optional<std::string>& file, std::ostream& out, std::ostream& err);

// Flushes the output. The exit code, or that of output that cannot be written, after saying so.
int FinishOutput(int exitCode, std::ostream& out, std::ostream& err);
// Ends the process once the output is written: to take a large network apart would take longer than a stop may.
[[noreturn]] void EndProgram(int exitCode, std::ostream& out, std::ostream& err);

}  // namespace tarn
