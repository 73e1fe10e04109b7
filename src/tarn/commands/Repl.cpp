#include "tarn/commands/Repl.h"

#include <algorithm>
#include <charconv>
#include <new>
#include <optional>
#include <ostream>

#include "tarn/Diagnostic.h"
#include "tarn/Lexer.h"
#include "tarn/TextStream.h"
#include "tarn/commands/Commands.h"
#include "tarn/commands/Interrupt.h"
#include "tarn/commands/NewFile.h"
#include "tarn/commands/StatementText.h"

namespace tarn {
namespace {

constexpr const char* sInput = "input";
// A statement without an end must not fill the memory.
constexpr std::size_t sMaxPending = std::size_t{1} << 24U;

std::string_view TakeWord(std::string_view text) noexcept {
  if (text.empty() || !IsNameStart(text[0])) {
    return {};
  }
  return text.substr(0, static_cast<std::size_t>(std::ranges::find_if_not(text, IsNamePart) - text.begin()));
}

// A positive number, `absent` for an empty text, nothing for any other.
std::optional<std::size_t> ReadCount(const std::string& text, std::size_t absent) {
  std::size_t count = absent;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, count);
  const bool isNumber = read.ec == std::errc() && read.ptr == end && count > 0;
  return text.empty() || isNumber ? std::optional(count) : std::nullopt;
}

// Whether one of the operators over lists has a name of several words of which this is the first.
bool BeginsListOperator(const Vocabulary& vocabulary, std::string_view word) {
  return std::ranges::any_of(vocabulary.GetListOperators(), [word](const auto& op) {
    return op.first.starts_with(word) && op.first.substr(word.size(), 1) == " ";
  });
}

}  // namespace

std::span<const Repl::Command> Repl::GetCommands() noexcept {
  static constexpr Command sCommands[] = {
      {"help", Argument::Command, "[COMMAND]", "what the commands do", &Repl::Help},
      {"list", Argument::None, "", "the statements, numbered", &Repl::List},
      {"load", Argument::File, "FILE", "take the statements of a model or a saved network", &Repl::LoadNamed},
      {"quit", Argument::None, "", "end the session, as the end of the input does", &Repl::Quit},
      {"reset", Argument::None, "", "take back all statements", &Repl::Reset},
      {"save", Argument::File, "FILE", "write the statements to a .tarn file, the narrowed network to any other",
       &Repl::Save},
      {"show", Argument::Variables, "[NAME...]", "the domains of these variables, or of all", &Repl::Show},
      {"solve", Argument::Count, "[N]", "search for N solutions, for one or the best without N", &Repl::Solve},
      {"undo", Argument::Count, "[N]", "take back the last statement, or the last N", &Repl::Undo},
      {"why", Argument::Fact, "FACT", "why a fact such as x <> 7 holds, or a solution where it does not", &Repl::Why},
  };
  return sCommands;
}

Repl::Repl(Modules& modules, std::ostream& out, std::ostream& err)
    : fModules(modules), fOut(out), fErr(err), fSession(std::make_unique<Session>(modules)) {}

const Repl::Command* Repl::FindCommand(std::string_view name) noexcept {
  const auto found = std::ranges::find(GetCommands(), name, &Command::fName);
  return found == GetCommands().end() ? nullptr : &*found;
}

// ---- Lines

void Repl::Read(std::string_view line) {
  ++fLine;
  if (fPending.empty()) {
    fPendingLine = fLine;
    if (ToLine(line).empty() || TryCommand(line)) {
      return;
    }
  }
  fPending += line;
  fPending += '\n';
  if (fPending.size() > sMaxPending) {
    fPending.clear();
    Fail("the statement is too long");
  }
  // A line without a ";" ends nothing and need not be looked at together with those before it.
  if (line.find(';') != std::string_view::npos && EndsStatement(fPending)) {
    Finish();
  }
}

void Repl::Finish() {
  if (fPending.empty()) {
    return;
  }
  const Source source(sInput, std::move(fPending), fPendingLine);
  fPending.clear();
  Accept(source);
}

void Repl::Recover() {
  fPending.clear();
  Fail("out of memory; taken back");
  Rebuild();
}

void Repl::Stop() {
  fPending.clear();
  fWasStopped = true;
}

bool Repl::TryCommand(std::string_view line) {
  const std::string_view text = Trim(line);
  const std::string_view word = TakeWord(text);
  const std::string_view rest = text.substr(word.size());
  if (word.empty() || EndsStatement(line) || IsStatementStart(word, rest)) {
    return false;
  }
  const Command* command = FindCommand(word);
  if (command == nullptr) {
    Fail("unknown command " + Quote(word) + "; 'help' lists the commands, and statements end with ';'");
    return true;
  }
  const std::string argument(Trim(rest));
  if ((argument.empty() && command->fArgument == Argument::File) ||
      (!argument.empty() && command->fArgument == Argument::None)) {
    Fail("usage: " + std::string(command->fName) + (command->fUsage.empty() ? "" : " ") + std::string(command->fUsage));
    return true;
  }
  (this->*command->fRun)(argument);
  return true;
}

// Whether a line that begins with the word may be the first of a statement's.
bool Repl::IsStatementStart(std::string_view word, std::string_view rest) const {
  const Vocabulary& vocabulary = fModules.GetVocabulary();
  const std::string_view next = Trim(rest);
  const std::string_view symbol = next.substr(0, vocabulary.MatchSymbol(next));
  if (FindCommand(word) == nullptr) {
    return !symbol.empty() || vocabulary.IsReserved(word) || fSession->GetModel().FindVariable(word).has_value() ||
           BeginsListOperator(vocabulary, word);
  }
  // Names of files may begin as operators do, but hardly with a blank behind them.
  const bool isOperator = vocabulary.FindInfix(symbol) != nullptr && next.substr(symbol.size()).starts_with(' ');
  return symbol == ":" || symbol == "," || Vocabulary::IsRelation(symbol) || isOperator;
}

// ---- Commands

void Repl::List(const std::string&) {
  for (std::size_t i = 0; i < fStatements.size(); ++i) {
    fOut << i + 1 << "  " << MakePrintable(ToLine(fStatements[i])) << '\n';
  }
}

void Repl::Help(const std::string& argument) {
  if (!argument.empty() && FindCommand(argument) == nullptr) {
    return Fail("unknown command " + Quote(argument) + "; 'help' lists the commands");
  }
  for (const Command& command : GetCommands()) {
    if (argument.empty() || command.fName == argument) {
      std::string usage = std::string(command.fName) + " " + std::string(command.fUsage);
      usage.resize(std::max<std::size_t>(usage.size(), 16), ' ');
      fOut << usage << "  " << command.fHelp << '\n';
    }
  }
  if (argument.empty()) {
    fOut << "Anything else is a statement of the model language and ends with ';'.\n";
  }
}

void Repl::LoadNamed(const std::string& argument) {
  Load(argument);
}

void Repl::Load(const std::string& path) {
  if (path == "-") {
    return Fail("the standard input is the session itself");
  }
  try {
    Source source = Source::ReadFile(path);
    if (VokTarnNetworkFile::IsNetworkFile(source.GetText())) {
      Session saved(fModules);
      saved.Read(source);
      source = Source(path, saved.GetContents().fModelText);
    }
    Accept(source);
  } catch (const ProgramError& error) {
    fErr << error.what() << '\n';
    fHasErrors = true;
  }
}

void Repl::Quit(const std::string&) {
  fIsOver = true;
}

void Repl::Reset(const std::string&) {
  fStatements.clear();
  Rebuild();
}

void Repl::Save(const std::string& argument) {
  try {
    if (!argument.ends_with(".tarn")) {
      fHasErrors |= RunSave(*fSession, argument, fErr) != Solved;
      return;
    }
    std::string text;
    for (const std::string& statement : fStatements) {
      text += statement + '\n';
    }
    NewFile file(argument);
    file.Write(text);
    file.Finish();
  } catch (const ProgramError& error) {
    fErr << error.what() << '\n';
    fHasErrors = true;
  }
}

void Repl::Show(const std::string& argument) {
  const Model& model = fSession->GetModel();
  std::vector<VariableIndex> shown;
  TextReader names(argument);
  for (std::string name; names >> name;) {
    const std::optional<VariableIndex> variable = model.FindVariable(name);
    if (!variable) {
      return Fail("no variable " + Quote(name));
    }
    shown.push_back(*variable);
  }
  for (VariableIndex i = 0; argument.empty() && i < model.GetVariables().size(); ++i) {
    shown.push_back(i);
  }
  for (const VariableIndex i : shown) {
    fOut << model.GetVariables()[i].fName << " = "
         << Domain(fSession->GetNetwork().GetValue(fSession->GetVariables()[i])).Format() << '\n';
  }
}

void Repl::Solve(const std::string& argument) {
  const std::optional<std::size_t> count = ReadCount(argument, 1);
  if (!count) {
    return Fail("usage: solve [N]");
  }
  SolveOptions options;
  if (!argument.empty()) {
    options.fCount = *count;
  }
  RunSolve(*fSession, options, fOut, fErr);
  if (IsInterrupted()) {
    fWasStopped = true;
  }
}

// Explains in a session of its own: what has been propagated cannot be retraced.
void Repl::Why(const std::string& argument) {
  if (argument.empty()) {
    return Fail("usage: why FACT");
  }
  std::string text;
  for (const std::string& statement : fStatements) {
    text += statement + "\n";
  }
  const Source source("session", text);
  const Source fact("fact", argument);
  try {
    Session session(fModules);
    session.Read(source);
    RunWhy(session, source, fact, fOut, fErr);
  } catch (const ModelError& error) {
    fErr << FormatDiagnostic(fact, error) << '\n';
    fHasErrors = true;
  }
  fWasStopped = fWasStopped || IsInterrupted();
}

void Repl::Undo(const std::string& argument) {
  const std::optional<std::size_t> count = ReadCount(argument, 1);
  if (!count) {
    return Fail("usage: undo [N]");
  }
  if (*count > fStatements.size()) {
    return Fail(fStatements.empty() ? "there is no statement to take back"
                                    : "there are only " + std::to_string(fStatements.size()) + " statements");
  }
  for (std::size_t i = 0; i < *count; ++i) {
    fOut << "taken back: " << MakePrintable(ToLine(fStatements.back())) << '\n';
    fStatements.pop_back();
  }
  Rebuild();
}

// ---- Statements

void Repl::Accept(const Source& source) {
  std::vector<Domain> before;
  if (!TryRead(source, before)) {
    Rebuild();
    return;
  }
  const std::vector<std::string> statements = SplitStatements(source.GetText());
  fStatements.insert(fStatements.end(), statements.begin(), statements.end());
  PrintChanges(before);
}

// Says what is wrong when the statements cannot be added. `before` becomes the domains before they took effect.
bool Repl::TryRead(const Source& source, std::vector<Domain>& before) {
  VokTarnNetwork& network = fSession->GetNetwork();
  try {
    NoteDomains(before);
    fSession->Read(source, [this, &before] { NoteDomains(before); });
    network.SetInterrupt(IsInterrupted);
    const VokTarnNetwork::Outcome outcome = network.Propagate();
    if (outcome == VokTarnNetwork::Outcome::Interrupted) {
      fErr << "stopped; taken back\n";
      fWasStopped = true;
      return false;
    }
    if (outcome == VokTarnNetwork::Outcome::Failed) {
      fOut << "cannot hold with what stands; taken back\n";
    }
    return outcome == VokTarnNetwork::Outcome::Fixpoint;
  } catch (const ModelError& error) {
    if (network.IsMemoryShort()) {  // it may be what seemed a mistake
      throw std::bad_alloc();
    }
    fErr << FormatDiagnostic(source, error) << '\n';
    fHasErrors = true;
  }
  return false;
}

// Adds the domains of the variables that have been declared since the last call.
void Repl::NoteDomains(std::vector<Domain>& domains) {
  const std::vector<VokTarnValueId>& variables = fSession->GetVariables();
  while (domains.size() < variables.size()) {
    domains.emplace_back(fSession->GetNetwork().GetValue(variables[domains.size()]));
  }
}

void Repl::PrintChanges(std::span<const Domain> before) {
  const std::vector<Model::Variable>& variables = fSession->GetModel().GetVariables();
  for (std::size_t i = 0; i < variables.size(); ++i) {
    const Domain after(fSession->GetNetwork().GetValue(fSession->GetVariables()[i]));
    if (after != before[i]) {
      fOut << before[i].FormatChange(variables[i].fName, after) << '\n';
    }
  }
}

void Repl::Rebuild() {
  CatchInterrupts();
  fSession = std::make_unique<Session>(fModules);
  for (std::size_t i = 0; i < fStatements.size(); ++i) {
    const Source source(sInput, fStatements[i] + '\n');
    try {
      fSession->Read(source);
    } catch (const ModelError& error) {
      // A module that was opened later has taken a word for itself that the statement used.
      fErr << FormatDiagnostic(source, error) << "\nthis statement and those after it are taken back\n";
      fHasErrors = true;
      fStatements.resize(i);
      return Rebuild();
    }
  }
  fSession->GetNetwork().SetInterrupt(IsInterrupted);
  // Stopped, it goes on with the next statement.
  fSession->GetNetwork().Propagate();
}

void Repl::Fail(const std::string& message) {
  fErr << sInput << ':' << fLine << ": error: " << MakePrintable(message) << '\n';
  fHasErrors = true;
}

}  // namespace tarn
