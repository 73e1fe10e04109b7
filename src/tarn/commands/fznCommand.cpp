#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <ostream>
#include <sstream>
#include <system_error>

#include "flatzinc/Builder.h"
#include "flatzinc/Checker.h"
#include "flatzinc/Parser.h"
#include "flatzinc/Solver.h"
#include "flatzinc/bounds.h"
#include "flatzinc/solutionText.h"
#include "framework/VokTarnMemoryWatch.h"
#include "tarn/Diagnostic.h"
#include "tarn/Modules.h"
#include "tarn/Source.h"
#include "tarn/commands/Commands.h"

namespace tarn {
namespace {

using Status = fzn::Solver::Status;

constexpr int sFailed = 1;
constexpr const char* sComplete = "==========\n";
constexpr const char* sUnsatisfiable = "=====UNSATISFIABLE=====\n";
constexpr const char* sUnknown = "=====UNKNOWN=====\n";

void Watch(const FlatZincOptions& options) {
  LastWords words;
  words.fUnknown.fill(sUnknown);
  words.fExitCode = Solved;
  Limits limits;
  if (options.fMilliseconds > 0) {
    limits.fSeconds = static_cast<double>(options.fMilliseconds) / 1000;
  }
  StartWatch(limits, words, true);
}

// A run from the built network to the last line of output.
class FlatZincRun {
 public:
  FlatZincRun(const fzn::Checker& checker, fzn::Builder& builder, const FlatZincOptions& options, std::ostream& out,
              std::ostream& err);

  int Run();

 private:
  Status Next();
  bool TakeSolution();
  bool HasObjective() const { return fModel.fSolve.fGoal != fzn::Solve::Goal::Satisfy; }
  bool Prints() const { return !HasObjective() || fOptions.fAll || fOptions.fImproving; }
  std::uint64_t GetLimit() const;
  std::int64_t GetObjective() const;
  std::optional<std::int64_t> FindBound() const;
  bool IsWhole() const;
  std::string DescribeCut() const;
  void PrintStatistics() const;

  const fzn::Model& fModel;
  const fzn::Builder& fBuilder;
  const fzn::Checker& fChecker;
  const VokTarnNetwork& fNetwork;
  const std::vector<fzn::Builder::Cut> fCuts;
  const FlatZincOptions& fOptions;
  std::ostream& fOut;
  std::ostream& fErr;
  std::unique_ptr<fzn::Solver> fSolver;
  const double fInitSeconds = GetRunTime().count();
  std::string fUnprinted;  // the best solution, while it is not printed
  bool fIsComplete = false;
  bool fIsMemoryShort = false;
  std::uint64_t fFound = 0;
};

fzn::Solver::Options MakeSolverOptions(const FlatZincOptions& options) {
  fzn::Solver::Options made;
  made.fIsFree = options.fFree;
  made.fSeed = static_cast<std::uint64_t>(options.fSeed);
  made.fProcesses = static_cast<unsigned>(std::clamp<std::uint64_t>(options.fProcesses, 1, 256));
  made.fRestart = options.fRestart;
  made.fLearning = options.fLearning;
  made.fNodeLimit = options.fNodeLimit;
  made.fFailLimit = options.fFailLimit;
  return made;
}

FlatZincRun::FlatZincRun(const fzn::Checker& checker, fzn::Builder& builder, const FlatZincOptions& options,
                         std::ostream& out, std::ostream& err)
    : fModel(builder.GetModel()),
      fBuilder(builder),
      fChecker(checker),
      fNetwork(builder.GetNetwork()),
      fCuts(builder.FindCuts()),
      fOptions(options),
      fOut(out),
      fErr(err) {
  std::vector<std::string> unknown;
  fSolver = fzn::MakeSolver(
      builder, MakeSolverOptions(options), [] { return IsInterrupted(); }, unknown);
  if (!options.fVerbose) {
    unknown.clear();
  }
  for (const std::string& name : unknown) {
    err << "tarn: warning: the search annotation " + Quote(MakePrintable(name)) + " is not known\n";
  }
  if (options.fVerbose && !fCuts.empty()) {
    err << "tarn: no bounds that fit follow for a variable: " + DescribeCut() + '\n';
  }
}

std::uint64_t FlatZincRun::GetLimit() const {
  constexpr std::uint64_t sNone = std::numeric_limits<std::uint64_t>::max();
  if (HasObjective()) {
    return sNone;
  }
  const std::uint64_t count = fOptions.fCount.value_or(fOptions.fAll ? 0 : 1);
  return count == 0 ? sNone : count;
}

Status FlatZincRun::Next() {
  EnterPhase(Phase::Searching);
  Status status = Status::Undecided;
  try {
    status = fSolver->Next();
  } catch (const std::bad_alloc&) {
    fErr << "tarn: error: out of memory\n";
    fIsMemoryShort = true;
  }
  EnterPhase(Phase::Printing);
  return status;
}

int FlatZincRun::Run() {
  const std::uint64_t limit = GetLimit();
  Status status = Status::Solution;
  while (status == Status::Solution && fFound < limit) {
    status = Next();
    if (status == Status::Solution && !TakeSolution()) {
      return sFailed;
    }
  }
  fIsComplete = status == Status::Exhausted && IsWhole();
  if (status == Status::Exhausted && !fIsComplete) {
    fErr << "tarn: warning: " + DescribeCut() + ", so there may be " + (fFound == 0 ? "" : "further ") + "solutions\n";
  }
  fOut << fUnprinted;
  if (fIsMemoryShort) {
    return Undecided;
  }
  if (fFound == 0) {
    fOut << (fIsComplete ? sUnsatisfiable : sUnknown);
  } else if (fIsComplete) {
    fOut << sComplete;
  }
  if (fOptions.fStatistics) {
    PrintStatistics();
  }
  return Solved;
}

// Whether a search that has ended has seen all that matters. Where the objective alone was cut at its worse end, what
// was left out is no better than what was found.
bool FlatZincRun::IsWhole() const {
  const fzn::Solve& solve = fModel.fSolve;
  if (fCuts.size() != 1 || fFound == 0 || !HasObjective() || !solve.fObjective.fIsVariable) {
    return fCuts.empty();
  }
  const auto objective = static_cast<std::size_t>(solve.fObjective.fNumber);
  return fBuilder.GetValue(objective) == fBuilder.GetValue(fCuts[0].fVariable) &&
         !(solve.fGoal == fzn::Solve::Goal::Minimize ? fCuts[0].fIsBelow : fCuts[0].fIsAbove);
}

std::string FlatZincRun::DescribeCut() const {
  const std::string others = fCuts.size() == 1 ? "" : " and " + std::to_string(fCuts.size() - 1) + " more";
  return "variable " + MakePrintable(fModel.fVariables[fCuts[0].fVariable].fName) + others + " was searched from " +
         std::to_string(fzn::kLeast) + " to " + std::to_string(fzn::kGreatest) + " only";
}

// Keeps or prints the solution that has been found. False when it is none.
bool FlatZincRun::TakeSolution() {
  if (const std::optional<std::string> violation = fChecker.FindViolation(fSolver->GetSolution())) {
    fErr << "tarn: internal error: a solution contradicts " << *violation << '\n';
    return false;
  }
  ++fFound;
  std::string text = fzn::FormatSolution(fModel, fSolver->GetSolution());
  if (Prints()) {
    fOut << text << std::flush;
    NoteSolution();
  } else {
    fUnprinted = std::move(text);
    NoteSolution(fUnprinted);
  }
  return true;
}

std::int64_t FlatZincRun::GetObjective() const {
  const fzn::Term& objective = fModel.fSolve.fObjective;
  return objective.fIsVariable ? fSolver->GetSolution()[static_cast<std::size_t>(objective.fNumber)]
                               : objective.fNumber;
}

// What no solution's objective is better than, as far as that is known.
std::optional<std::int64_t> FlatZincRun::FindBound() const {
  if (!fCuts.empty()) {
    return std::nullopt;
  }
  return fFound > 0 && fIsComplete ? GetObjective() : fSolver->GetBound();
}

void FlatZincRun::PrintStatistics() const {
  const fzn::Solver::Statistics statistics = fSolver->GetStatistics();
  const auto print = [this](const char* name, const auto& value) {
    fOut << "%%%mzn-stat: " << name << '=' << value << '\n';
  };
  const auto truths = std::ranges::count_if(fModel.fVariables, &fzn::Variable::fIsTruth);
  if (HasObjective()) {
    const bool isFound = fFound > 0;
    const std::optional<std::int64_t> bound = FindBound();
    if (isFound) {
      print("objective", GetObjective());
    }
    if (bound) {
      print("objectiveBound", *bound);
    }
    if (isFound && bound) {
      print("gap", std::max(GetObjective(), *bound) - std::min(GetObjective(), *bound));
    }
  }
  print("nodes", statistics.fNodes);
  print("failures", statistics.fFailures);
  print("restarts", statistics.fRestarts);
  print("solutions", fFound);
  if (statistics.fLearned > 0) {
    const auto mean = [&](std::uint64_t sum) {
      return std::to_string(static_cast<double>(sum) / static_cast<double>(statistics.fLearned));
    };
    print("nogoods", statistics.fLearned);
    print("nogoodsForgotten", statistics.fForgotten);
    print("nogoodLength", mean(statistics.fAtoms));
    print("nogoodSpan", mean(statistics.fLevels));
    print("reasonsByRule", statistics.fReasons.fByRule);
    print("reasonsByReplay", statistics.fReasons.fByReplay);
    print("reasonsByChoices", statistics.fReasons.fByChoices);
  }
  print("peakDepth", statistics.fDepth);
  print("variables", fNetwork.GetValueCount());
  print("intVariables", static_cast<std::ptrdiff_t>(fModel.fVariables.size()) - truths);
  print("boolVariables", truths);
  print("propagators", fNetwork.GetConstraintCount());
  print("propagations", statistics.fPropagations);
  print("peakMem", std::to_string(static_cast<double>(GetPeakMemory()) / (1024 * 1024)));
  print("initTime", std::to_string(fInitSeconds));
  print("solveTime", std::to_string(GetRunTime().count() - fInitSeconds));
  fOut << "%%%mzn-stat-end\n";
}

// Tells the mistakes, if there are any. Throws std::bad_alloc where want of memory may be the cause.
bool Fails(const fzn::ErrorList& errors, const VokTarnMemoryWatch& memory, std::ostream& err) {
  if (memory.HasSeenFailure()) {
    throw std::bad_alloc();
  }
  std::istringstream lines(errors.GetText());
  for (std::string line; std::getline(lines, line);) {
    err << MakePrintable(line) << '\n';
  }
  return !errors.IsEmpty();
}

int Solve(const Modules& modules, const Source& source, const FlatZincOptions& options, std::ostream& out,
          std::ostream& err) {
  const VokTarnMemoryWatch memory;
  fzn::ErrorList errors(source.GetName());
  const fzn::Model model = fzn::Parse(source.GetText(), errors);
  const fzn::Checker checker(model, errors);
  if (Fails(errors, memory, err)) {
    return sFailed;
  }
  VokTarnNetwork network;
  fzn::Builder builder(modules.GetManager(), network, model, errors);
  if (!builder.Build()) {
    Fails(errors, memory, err);
    return sFailed;
  }
  if (options.fVerbose) {
    // In one piece: MiniZinc mixes what comes through the two streams.
    std::ostringstream line;
    line << "tarn: " << model.fVariables.size() << " variables, " << model.fConstraints.size()
         << " constraints; as a network " << network.GetValueCount() << " values, " << network.GetConstraintCount()
         << " constraints, after " << GetRunTime().count() << " s\n";
    err << line.str();
  }
  FlatZincRun run(checker, builder, options, out, err);
  const int exitCode = run.Run();
  // To take a large network apart would take longer than a stop may.
  EndProgram(exitCode, out, err);
}

}  // namespace

int RunFlatZinc(Modules& modules, const std::string& path, const FlatZincOptions& options, std::ostream& out,
                std::ostream& err) {
  Watch(options);
  try {
    return Solve(modules, Source::ReadFile(path), options, out, err);
  } catch (const fzn::InputError& error) {
    err << MakePrintable(error.what()) << '\n';
  } catch (const fzn::PostingError& error) {
    err << "tarn: error: the objective: " << MakePrintable(error.what()) << '\n';
  } catch (const std::system_error& error) {
    err << "tarn: error: " << error.what() << '\n';
  }
  return sFailed;
}

}  // namespace tarn
