#include <algorithm>
#include <array>
#include <new>
#include <ostream>
#include <sstream>

#include "flatzinc/Builder.h"
#include "flatzinc/Checker.h"
#include "flatzinc/Parser.h"
#include "flatzinc/solutionText.h"
#include "tarn/Diagnostic.h"
#include "tarn/Modules.h"
#include "tarn/Source.h"
#include "tarn/commands/Commands.h"

namespace tarn {
namespace {

using Status = VokTarnSearch::Status;
using Goal = fzn::Solve::Goal;

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
  FlatZincRun(const fzn::Model& model, const fzn::Checker& checker, fzn::Builder& builder, const Modules& modules,
              const FlatZincOptions& options, std::ostream& out, std::ostream& err)
      : fModel(model),
        fChecker(checker),
        fBuilder(builder),
        fOptions(options),
        fOut(out),
        fErr(err),
        fObjective(MakeObjective(modules)),
        fSearch(builder.GetNetwork(), GetSearchValues(), fObjective, MakeSearchOptions()) {}

  int Run();

 private:
  std::optional<VokTarnSearch::Objective> MakeObjective(const Modules& modules);
  std::vector<VokTarnValueId> GetSearchValues() const;
  VokTarnSearch::Options MakeSearchOptions() const;
  Status Next();
  bool TakeSolution();
  bool Prints() const { return !fObjective || fOptions.fAll || fOptions.fImproving; }
  std::uint64_t GetLimit() const;
  void PrintStatistics();

  const fzn::Model& fModel;
  const fzn::Checker& fChecker;
  fzn::Builder& fBuilder;
  const FlatZincOptions& fOptions;
  std::ostream& fOut;
  std::ostream& fErr;
  const std::optional<VokTarnSearch::Objective> fObjective;
  VokTarnSearch fSearch;
  const double fInitSeconds = GetRunTime().count();
  std::vector<std::int64_t> fValues;  // of the variables, in a solution
  std::string fUnprinted;             // the best solution, while it is not printed
  bool fIsComplete = false;
  std::uint64_t fFound = 0;
};

std::optional<VokTarnSearch::Objective> FlatZincRun::MakeObjective(const Modules& modules) {
  const Goal goal = fModel.fSolve.fGoal;
  if (goal == Goal::Satisfy) {
    return std::nullopt;
  }
  VokTarnNetwork& network = fBuilder.GetNetwork();
  const VokTarnValueId value = fBuilder.GetValue(fModel.fSolve.fObjective);
  const VokTarnValueId bound = network.AddValue(network.GetType(value));
  const bool isMinimum = goal == Goal::Minimize;
  const std::array operands{value, bound};
  const std::array types{network.GetType(value), network.GetType(bound)};
  const auto choice = modules.GetTable().Choose(isMinimum ? "<=" : ">=", types);
  modules.GetTable().Apply(network, choice.value(), operands, vokNoValue, false);
  return VokTarnSearch::Objective{value, bound,
                                  isMinimum ? VokTarnSearch::Sense::Minimize : VokTarnSearch::Sense::Maximize};
}

// Of all variables, those first that nothing else determines.
std::vector<VokTarnValueId> FlatZincRun::GetSearchValues() const {
  std::vector<VokTarnValueId> values;
  std::vector<bool> isTaken(fBuilder.GetNetwork().GetValueCount());
  for (const bool isDefined : {false, true}) {
    for (std::size_t i = 0; i < fModel.fVariables.size(); ++i) {
      const VokTarnValueId value = fBuilder.GetValue(i);
      if (fModel.fVariables[i].fIsDefined == isDefined && !isTaken[value]) {
        isTaken[value] = true;
        values.push_back(value);
      }
    }
  }
  return values;
}

VokTarnSearch::Options FlatZincRun::MakeSearchOptions() const {
  VokTarnSearch::Options options;
  options.fSeed = static_cast<std::uint64_t>(fOptions.fSeed);
  return options;
}

std::uint64_t FlatZincRun::GetLimit() const {
  constexpr std::uint64_t sNone = std::numeric_limits<std::uint64_t>::max();
  if (fObjective) {
    return sNone;
  }
  const std::uint64_t count = fOptions.fCount.value_or(fOptions.fAll ? 0 : 1);
  return count == 0 ? sNone : count;
}

Status FlatZincRun::Next() {
  EnterPhase(Phase::Searching);
  Status status = Status::Undecided;
  try {
    status = fSearch.Next();
  } catch (const std::bad_alloc&) {
    fErr << "tarn: error: out of memory\n";
  }
  EnterPhase(Phase::Printing);
  return status;
}

int FlatZincRun::Run() {
  fBuilder.GetNetwork().SetInterrupt([] { return IsInterrupted(); });
  const std::uint64_t limit = GetLimit();
  Status status = Status::Solution;
  while (status == Status::Solution && fFound < limit) {
    status = Next();
    if (status == Status::Solution && !TakeSolution()) {
      return sFailed;
    }
  }
  fIsComplete = status == Status::Exhausted;
  fOut << fUnprinted;
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

// Keeps or prints the solution that has been found. False when it is none.
bool FlatZincRun::TakeSolution() {
  const VokTarnNetwork& network = fBuilder.GetNetwork();
  fValues.resize(fModel.fVariables.size());
  for (std::size_t i = 0; i < fValues.size(); ++i) {
    const VokTarnAny& value = network.GetValue(fBuilder.GetValue(i));
    if (value.GetCardinality() != 1) {
      fErr << "tarn: internal error: a solution leaves '" << fModel.fVariables[i].fName << "' open\n";
      return false;
    }
    fValues[i] = static_cast<const VokTarnInteger&>(value).GetLowerBound();
  }
  if (const std::optional<std::string> violation = fChecker.FindViolation(fValues)) {
    fErr << "tarn: internal error: a solution contradicts " << *violation << '\n';
    return false;
  }
  ++fFound;
  std::string text = fzn::FormatSolution(fModel, fValues);
  if (Prints()) {
    fOut << text << std::flush;
    NoteSolution();
  } else {
    fUnprinted = std::move(text);
    NoteSolution(fUnprinted);
  }
  return true;
}

void FlatZincRun::PrintStatistics() {
  const VokTarnSearch::Statistics& statistics = fSearch.GetStatistics();
  const VokTarnNetwork& network = fBuilder.GetNetwork();
  const auto print = [this](const char* name, const auto& value) {
    fOut << "%%%mzn-stat: " << name << '=' << value << '\n';
  };
  const auto truths = std::ranges::count_if(fModel.fVariables, &fzn::Variable::fIsTruth);
  if (const std::optional<VokLong> best = fSearch.GetBest()) {
    print("objective", *best);
  }
  if (const std::optional<VokLong> bound = fIsComplete ? fSearch.GetBest() : fSearch.GetBound()) {
    print("objectiveBound", *bound);
  }
  print("nodes", statistics.fDecisions);
  print("failures", statistics.fFailures);
  print("restarts", statistics.fRestarts);
  print("solutions", fFound);
  print("peakDepth", statistics.fDepth);
  print("variables", network.GetValueCount());
  print("intVariables", static_cast<std::ptrdiff_t>(fModel.fVariables.size()) - truths);
  print("boolVariables", truths);
  print("propagators", network.GetConstraintCount());
  print("propagations", network.GetPropagations());
  print("peakMem", std::to_string(static_cast<double>(GetPeakMemory()) / (1024 * 1024)));
  print("initTime", std::to_string(fInitSeconds));
  print("solveTime", std::to_string(GetRunTime().count() - fInitSeconds));
  fOut << "%%%mzn-stat-end\n";
}

// Tells the mistakes, if there are any.
bool Fails(const fzn::ErrorList& errors, std::ostream& err) {
  std::istringstream lines(errors.GetText());
  for (std::string line; std::getline(lines, line);) {
    err << MakePrintable(line) << '\n';
  }
  return !errors.IsEmpty();
}

int Solve(const Modules& modules, const Source& source, const FlatZincOptions& options, std::ostream& out,
          std::ostream& err) {
  fzn::ErrorList errors(source.GetName());
  const fzn::Model model = fzn::Parse(source.GetText(), errors);
  const fzn::Checker checker(model, errors);
  if (Fails(errors, err)) {
    return sFailed;
  }
  VokTarnNetwork network;
  fzn::Builder builder(modules.GetManager(), network, model, errors);
  if (!builder.Build()) {
    Fails(errors, err);
    return sFailed;
  }
  if (options.fVerbose) {
    err << "tarn: " << model.fVariables.size() << " variables and " << model.fConstraints.size()
        << " constraints are a network of " << network.GetValueCount() << " values and " << network.GetConstraintCount()
        << " constraints after " << GetRunTime().count() << " s\n";
  }
  const int exitCode = FlatZincRun(model, checker, builder, modules, options, out, err).Run();
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
    return sFailed;
  }
}

}  // namespace tarn
