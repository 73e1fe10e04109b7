#include <unistd.h>

#include <new>
#include <ostream>

#include "tarn/commands/Commands.h"
#include "tarn/commands/Interrupt.h"
#include "tarn/commands/Repl.h"

namespace tarn {
namespace {

constexpr const char* sPrompt = "tarn> ";
constexpr const char* sContinuation = "  ... ";

// Reads lines until the session is over. At a terminal a signal drops what has been typed, or ends what is being done;
// elsewhere it ends the session.
void Converse(Repl& repl, LineReader& reader, bool isTerminal, std::ostream& out) {
  while (out << std::flush && !repl.IsOver() && !IsTerminated() && (isTerminal || !repl.WasStopped())) {
    CatchInterruptsOfInput();
    const std::optional<std::string> line = reader.Read(repl.IsUnfinished() ? sContinuation : sPrompt);
    if (IsInterrupted()) {
      repl.Stop();
      continue;
    }
    CatchInterrupts();
    if (!line) {
      repl.Finish();
      return;
    }
    try {
      repl.Read(*line);
    } catch (const std::bad_alloc&) {
      if (!isTerminal) {
        throw;
      }
      repl.Recover();
    }
  }
}

}  // namespace

int RunRepl(Modules& modules, const std::optional<std::string>& file, std::ostream& out, std::ostream& err) {
  const bool isTerminal = isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0;
  Repl repl(modules, out, err);
  const auto complete = [&repl](std::string_view line) { return repl.Complete(line); };
  const std::unique_ptr<LineReader> reader = isTerminal ? MakeTerminalReader(complete) : MakePlainReader();
  CatchInterrupts();
  if (file) {
    repl.Load(*file);
  }
  Converse(repl, *reader, isTerminal, out);
  if (IsTerminated() || (repl.WasStopped() && !isTerminal)) {
    return Undecided;
  }
  return repl.HasErrors() && !isTerminal ? BadInput : Solved;
}

}  // namespace tarn
