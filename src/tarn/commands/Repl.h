#pragma once

#include <iosfwd>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tarn/Domain.h"
#include "tarn/Session.h"
#include "tarn/commands/LineReader.h"

namespace tarn {

// A dialogue about one model: takes statements, which hold from then on, and commands, line by line.
//
// What is read between two ends of lines stands or falls together: a mistake, a contradiction, an interrupt or short
// memory leaves the session as it was.
//
// State   The texts of the accepted statements, and the network built from them. A statement that is not accepted
//         leaves a network behind that is good for nothing, so the network is built anew from the texts, in linear
//         time. Modules stay open.
// Output  Answers go to `out`, mistakes to `err`.
class Repl {
 public:
  Repl(Modules& modules, std::ostream& out, std::ostream& err);

  // Takes the next line of input, without its end.
  void Read(std::string_view line);
  // Takes the statements of a file, or those that a saved network was built from.
  void Load(const std::string& path);
  // The input has ended: a statement that lacks its end is a mistake.
  void Finish();
  // Memory was short for what was read last: goes back to the statements before it. Throws std::bad_alloc.
  void Recover();
  // Drops what has been read of a statement, for the reading was interrupted.
  void Stop();
  // How the line that begins so may go on.
  Completion Complete(std::string_view line) const;

  bool IsUnfinished() const noexcept { return !fPending.empty(); }
  bool IsOver() const noexcept { return fIsOver; }
  bool HasErrors() const noexcept { return fHasErrors; }
  // Whether anything was ever interrupted.
  bool WasStopped() const noexcept { return fWasStopped; }

 private:
  enum class Argument { None, Count, Fact, File, Variables, Command };
  struct Command {
    std::string_view fName;
    Argument fArgument;
    std::string_view fUsage;
    std::string_view fHelp;
    // `argument` is what follows the name, without blanks around it.
    void (Repl::*fRun)(const std::string& argument);
  };
  static std::span<const Command> GetCommands() noexcept;
  static const Command* FindCommand(std::string_view name) noexcept;

  bool TryCommand(std::string_view line);
  bool IsStatementStart(std::string_view word, std::string_view rest) const;
  void List(const std::string& argument);
  void Help(const std::string& argument);
  void LoadNamed(const std::string& argument);
  void Quit(const std::string& argument);
  void Reset(const std::string& argument);
  void Save(const std::string& argument);
  void Show(const std::string& argument);
  void Solve(const std::string& argument);
  void Undo(const std::string& argument);
  void Why(const std::string& argument);

  void Accept(const Source& source);
  bool TryRead(const Source& source, std::vector<Domain>& before);
  void NoteDomains(std::vector<Domain>& domains);
  void PrintChanges(std::span<const Domain> before);
  void Rebuild();
  void Fail(const std::string& message);

  Modules& fModules;
  std::ostream& fOut;
  std::ostream& fErr;
  std::unique_ptr<Session> fSession;
  std::vector<std::string> fStatements;
  std::string fPending;  // lines of a statement that lacks its end
  std::size_t fLine = 0;
  std::size_t fPendingLine = 0;  // the number of the first of these lines
  bool fIsOver = false;
  bool fHasErrors = false;
  bool fWasStopped = false;
};

}  // namespace tarn
