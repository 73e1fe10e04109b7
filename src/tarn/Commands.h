// The commands of the program. Each prints its answer to `out`, everything else to `err`, and returns the exit code.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

#include "tarn/Session.h"

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
  std::optional<double> fTimeLimit;  // seconds
  VokTarnSearch::Options fSearch;
};

int RunNarrow(Session& session, std::ostream& out, std::ostream& err);
int RunSolve(Session& session, const SolveOptions& options, std::ostream& out, std::ostream& err);
// Writes the narrowed network to the file `path`. Throws ProgramError when that fails; nothing is left of it then.
int RunSave(Session& session, const std::string& path, std::ostream& err);
// Lists one module, or all that are loaded.
int RunModules(Modules& modules, const std::optional<std::string>& name, std::ostream& out);

// Holds a session with whoever writes lines to the standard input, first on the model in `file`, if any.
int RunRepl(Modules& modules, const std::optional<std::string>& file, std::ostream& out, std::ostream& err);

}  // namespace tarn
