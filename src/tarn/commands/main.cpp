#include <csignal>
#include <cstdio>
#include <iostream>
#include <new>

#include "framework/VokTarnMemoryWatch.h"
#include "tarn/Diagnostic.h"
#include "tarn/commands/CommandLine.h"

namespace tarn {
namespace {

int RunWhy(Session& session, const Source& source, const CommandLine& line) {
  const Source fact("fact", line.fFact);
  try {
    return RunWhy(session, source, fact, std::cout, std::cerr);
  } catch (const ModelError& error) {
    throw ProgramError(FormatDiagnostic(fact, error));
  }
}

// Says where to go on from a model that needs no search to be refuted.
void HintConflict(Session& session, const CommandLine& line) {
  if (line.fFile != "-" && !line.fSolve.fQuiet && session.GetNetwork().IsFailed() && !session.IsRestored()) {
    std::cerr << "tarn: propagation alone refutes the model; `tarn conflict " << MakePrintable(line.fFile)
              << "` names the statements\n";
  }
}

int RunCommand(Session& session, const Source& source, const CommandLine& line) {
  switch (line.fCommand) {
    case CommandLine::Command::Narrow:
      return RunNarrow(session, std::cout);
    case CommandLine::Command::Save:
      return RunSave(session, line.fOutput, std::cerr);
    case CommandLine::Command::Graph:
      return RunGraph(session, line.fGraph, line.fOutput, std::cout, std::cerr);
    case CommandLine::Command::Tree:
      return RunTree(session, line.fSolve, line.fTree, line.fOutput, std::cout, std::cerr);
    case CommandLine::Command::Why:
      return RunWhy(session, source, line);
    case CommandLine::Command::Conflict:
      return RunConflict(session, source, std::cout, std::cerr);
    default:
      return RunSolve(session, line.fSolve, std::cout, std::cerr);
  }
}

int Run(const CommandLine& line) {
  const bool isSolve = line.fCommand == CommandLine::Command::Solve;
  const bool isSearch = isSolve || line.fCommand == CommandLine::Command::Tree;
  const bool explains = line.fCommand == CommandLine::Command::Why || line.fCommand == CommandLine::Command::Conflict;
  if (isSearch || explains) {
    WatchSolve(line.fSolve, isSolve);
  }
  Modules modules;
  for (const std::string& directory : line.fDirectories) {
    modules.AddDirectory(directory);
  }
  modules.Open(Modules::sDefault);
  for (const std::string& module : line.fModules) {
    modules.Open(module);
  }
  if (line.fCommand == CommandLine::Command::Modules) {
    return RunModules(modules, line.fModule, std::cout);
  }
  if (line.fCommand == CommandLine::Command::Repl) {
    return RunRepl(modules, line.fOpening, std::cout, std::cerr);
  }
  if (line.fCommand == CommandLine::Command::FlatZinc) {
    return RunFlatZinc(modules, line.fFile, line.fFlatZinc, std::cout, std::cerr);
  }
  Session session(modules);
  const Source source = Source::ReadFile(line.fFile, [&line] {
    std::cerr << "tarn: waiting for another program to write to the pipe " << MakePrintable(line.fFile) << std::endl;
  });
  try {
    session.Read(source);
  } catch (const ModelError& error) {
    throw ProgramError(FormatDiagnostic(source, error));
  }
  if (explains) {
    EnterPhase(Phase::Printing);  // a stop leaves time to tell what is known
  } else if (!isSearch) {
    CatchInterrupts();
  }
  const int exitCode = RunCommand(session, source, line);
  if (isSolve || line.fCommand == CommandLine::Command::Narrow) {
    HintConflict(session, line);
  }
  if (exitCode == Undecided) {
    EndProgram(exitCode, std::cout, std::cerr);
  }
  return exitCode;
}

}  // namespace
}  // namespace tarn

int main(int argc, char** argv) {
  const VokTarnMemoryWatch memory;
  // A closed pipe and a limit on the size of files make a write fail, which is told and leaves no half of a file
  // behind, instead of ending the process.
  for (const int signal : {SIGPIPE, SIGXFSZ}) {
    std::signal(signal, SIG_IGN);
  }
  int exitCode = tarn::Solved;
  try {
    std::ios::sync_with_stdio(false);
    const std::optional<tarn::CommandLine> line = tarn::CommandLine::Parse(argc, argv, std::cout, std::cerr, exitCode);
    if (line) {
      exitCode = tarn::Run(*line);
    }
    exitCode = tarn::FinishOutput(exitCode, std::cout, std::cerr);
  } catch (const std::bad_alloc&) {
    VokTarnBase::NoteAllocationFailure();
  } catch (const tarn::ProgramError& error) {
    if (!memory.HasSeenFailure()) {
      std::cerr << error.what() << '\n';
      return tarn::BadInput;
    }
  } catch (const std::exception& error) {
    if (!memory.HasSeenFailure()) {
      std::cerr << "tarn: internal error: " << error.what() << '\n';
      return tarn::Undecided;
    }
  }
  // Also where it was got over: what has been said since may be wrong for it.
  if (memory.HasSeenFailure()) {
    std::fputs("tarn: error: out of memory\n", stderr);  // std::cerr may not have been made
    return tarn::Undecided;
  }
  return exitCode;
}
