#include <unistd.h>

#include <algorithm>
#include <ostream>

#include "framework/VokTarnBoolean.h"
#include "tarn/Evaluator.h"
#include "tarn/TextStream.h"
#include "tarn/commands/Commands.h"
#include "tarn/commands/ProgressLine.h"
#include "tarn/commands/SolveOutput.h"

namespace tarn {
namespace {

Format GetFormat(const SolveOptions& options) {
  return options.fJson ? Format::Json : Format::Text;
}

std::vector<std::optional<std::int64_t>> GetSolution(Session& session) {
  std::vector<std::optional<std::int64_t>> solution;
  for (const VokTarnValueId id : session.GetVariables()) {
    const VokTarnAny& value = session.GetNetwork().GetValue(id);
    if (value.IsDerivedFrom(VokTarnInteger::sIdent) != 0) {
      solution.emplace_back(static_cast<const VokTarnInteger&>(value).GetLowerBound());
    } else if (value.IsDerivedFrom(VokTarnBoolean::sIdent) != 0) {
      solution.emplace_back(static_cast<const VokTarnBoolean&>(value).IsPossible(1));
    } else {
      solution.emplace_back();
    }
  }
  return solution;
}

}  // namespace

bool IsSolution(Session& session, std::ostream& err) {
  for (const VokTarnValueId id : session.GetVariables()) {
    if (session.GetNetwork().GetValue(id).GetCardinality() != 1) {
      err << "tarn: internal error: a solution leaves '" << session.GetNetwork().GetName(id) << "' open\n";
      return false;
    }
  }
  const Evaluator evaluator(session.GetModel());
  const auto getLine = [&](std::size_t statement) { return session.GetModel().GetStatements()[statement].fLine; };
  if (const std::optional<std::size_t> unchecked = evaluator.FindUnchecked()) {
    err << "tarn: error: no solution of the statement of line " << getLine(*unchecked)
        << " can be checked: its operator over a list is not known\n";
    return false;
  }
  const std::optional<std::size_t> wrong = evaluator.FindContradiction(GetSolution(session));
  if (wrong) {
    err << "tarn: internal error: a solution contradicts the statement of line " << getLine(*wrong) << '\n';
  }
  return !wrong;
}

namespace {

// How many solutions to stop after; nothing: search to the end.
std::optional<std::uint64_t> GetLimit(const SolveOptions& options, bool hasObjective) {
  if (options.fCount) {
    return options.fCount;
  }
  return options.fAll || hasObjective ? std::nullopt : std::optional<std::uint64_t>(1);
}

// A run of the command from the first solution to the exit code.
class SolveRun {
 public:
  SolveRun(Session& session, const SolveOptions& options, std::ostream& out, std::ostream& err)
      : fSession(session),
        fOptions(options),
        fOut(out),
        fErr(err),
        fFormat(GetFormat(options)),
        fProgress(!options.fQuiet, err),
        fSearch(session.GetNetwork(), session.GetVariables(), session.GetObjective(), options.fSearch) {
    fSearch.SetObserver(options.fObserver);
  }

  int Run();

 private:
  VokTarnSearch::Status Next();
  void ShowProgress();
  bool TakeSolution();
  Answer Conclude(VokTarnSearch::Status status) const;
  std::string FindStop() const;
  std::vector<Figure> GetFigures() const;
  void ExplainUndecided() const;

  Session& fSession;
  const SolveOptions& fOptions;
  std::ostream& fOut;
  std::ostream& fErr;
  const Format fFormat;
  const bool fIsOutTerminal = isatty(STDOUT_FILENO) == 1;
  ProgressLine fProgress;
  VokTarnSearch fSearch;
  std::uint64_t fFound = 0;
};

int SolveRun::Run() {
  fSession.GetNetwork().SetInterrupt([this] {
    if (TakeTick() && fProgress.IsDue()) {
      ShowProgress();
    }
    return IsInterrupted();
  });
  const std::optional<std::uint64_t> limit = GetLimit(fOptions, fSession.GetObjective().has_value());
  VokTarnSearch::Status status = VokTarnSearch::Status::Solution;
  bool isRight = true;
  // Nobody gets a solution behind output that has failed.
  while (status == VokTarnSearch::Status::Solution && isRight && fOut && (!limit || fFound < *limit)) {
    status = Next();
    isRight = status != VokTarnSearch::Status::Solution || TakeSolution();
  }
  fProgress.Clear();
  if (status == VokTarnSearch::Status::Undecided) {
    ExplainUndecided();
  }
  const bool isStopped = status == VokTarnSearch::Status::Stopped;
  const std::string stop = isStopped ? FindStop() : std::string();
  const Answer answer = isRight ? Conclude(status) : Answer::Unknown;
  PrintResult(answer, stop, GetFigures(), fFormat, fOut);
  if (isStopped && !fOptions.fQuiet) {
    PrintStopNote(stop, fErr);
  }
  if (fOptions.fStatistics) {
    PrintFigures(GetFigures(), fErr);
  }
  if (isStopped) {
    return Undecided;
  }
  if (answer == Answer::Unsatisfiable) {
    return NoSolution;
  }
  return !isRight || status == VokTarnSearch::Status::Undecided ? Undecided : Solved;
}

VokTarnSearch::Status SolveRun::Next() {
  EnterPhase(Phase::Searching);
  const VokTarnSearch::Status status = fSearch.Next();
  EnterPhase(Phase::Printing);
  return status;
}

// Prints the solution that has been found, unless it is none.
bool SolveRun::TakeSolution() {
  if (fIsOutTerminal) {
    fProgress.Clear();
  }
  if (!IsSolution(fSession, fErr)) {
    return false;
  }
  PrintSolution(fSession, fSearch.GetBest(), fFormat, fOut);
  NoteSolution();
  ++fFound;
  return true;
}

void SolveRun::ShowProgress() {
  const VokTarnSearch::Statistics& statistics = fSearch.GetStatistics();
  const double seconds = GetRunTime().count();
  TextWriter text;
  text << "tarn: " << static_cast<std::uint64_t>(seconds) << " s, "
       << static_cast<std::uint64_t>(static_cast<double>(statistics.fDecisions) / seconds) << " nodes/s, "
       << statistics.fFailures << " failures, depth " << fSearch.GetDepth();
  if (fSession.GetObjective()) {
    const auto show = [](const std::optional<VokLong>& number) { return number ? std::to_string(*number) : "none"; };
    text << ", best " << show(fSearch.GetBest()) << ", bound " << show(fSearch.GetBound());
  }
  fProgress.Show(text.str());
}

Answer SolveRun::Conclude(VokTarnSearch::Status status) const {
  // Without a choice there is no other solution.
  if (status == VokTarnSearch::Status::Exhausted ||
      (status == VokTarnSearch::Status::Solution && fSearch.GetStatistics().fDecisions == 0)) {
    const Answer complete = fSession.GetObjective() ? Answer::Optimal : Answer::AllSolutions;
    return fFound == 0 ? Answer::Unsatisfiable : complete;
  }
  return fFound == 0 ? Answer::Unknown : Answer::Satisfied;
}

// What stopped the search.
std::string SolveRun::FindStop() const {
  if (IsInterrupted()) {
    return GetName(GetStopReason());
  }
  return fSearch.GetStatistics().fDecisions >= fOptions.fSearch.fNodeLimit ? "the node limit" : "the failure limit";
}

std::vector<Figure> SolveRun::GetFigures() const {
  const VokTarnSearch::Statistics& statistics = fSearch.GetStatistics();
  const auto mean = [&statistics](std::uint64_t sum) {
    return std::to_string(static_cast<double>(sum) /
                          static_cast<double>(std::max<std::uint64_t>(statistics.fLearned, 1)));
  };
  return {{"decisions", "decisions", std::to_string(statistics.fDecisions), ""},
          {"failures", "failures", std::to_string(statistics.fFailures), ""},
          {"propagations", "propagations", std::to_string(fSession.GetNetwork().GetPropagations()), ""},
          {"solutions", "solutions", std::to_string(statistics.fSolutions), ""},
          {"restarts", "restarts", std::to_string(statistics.fRestarts), ""},
          {"learned", "learned", std::to_string(statistics.fLearned), ""},
          {"forgotten", "forgotten", std::to_string(statistics.fForgotten), ""},
          {"clause length", "clauseLength", mean(statistics.fAtoms), ""},
          {"clause span", "clauseSpan", mean(statistics.fLevels), ""},
          {"rule reasons", "reasonsByRule", std::to_string(statistics.fReasons.fByRule), ""},
          {"replayed", "reasonsByReplay", std::to_string(statistics.fReasons.fByReplay), ""},
          {"depth", "depth", std::to_string(statistics.fDepth), ""},
          {"peak memory", "peakMemory", std::to_string(GetPeakMemory()), " bytes"},
          {"time", "time", std::to_string(GetRunTime().count()), " s"}};
}

void SolveRun::ExplainUndecided() const {
  const VokTarnNetwork& network = fSession.GetNetwork();
  const VokTarnValueId undecided = fSearch.GetUndecided();
  const std::string name = undecided == vokNoValue ? std::string() : network.GetName(undecided);
  fErr << "tarn: undecided: " << (name.empty() ? "an intermediate value" : "the variable '" + name + "'")
       << " is unbounded; give it a domain\n";
}

LastWords MakeLastWords(const SolveOptions& options, bool printsSolutions) {
  // Takes the place of a progress line that may stand there.
  const std::string eraseLine = isatty(STDERR_FILENO) == 1 ? "\r\033[K" : "";
  LastWords words;
  words.fExitCode = Undecided;
  for (const StopReason reason : {StopReason::Signal, StopReason::Time, StopReason::Memory}) {
    const auto index = static_cast<std::size_t>(reason);
    if (printsSolutions) {
      TextWriter unknown;
      PrintResult(Answer::Unknown, GetName(reason), {}, GetFormat(options), unknown);
      words.fUnknown[index] = unknown.str();
      TextWriter satisfied;
      PrintResult(Answer::Satisfied, GetName(reason), {}, GetFormat(options), satisfied);
      words.fSatisfied[index] = satisfied.str();
    }
    TextWriter note;
    PrintStopNote(GetName(reason), note);
    words.fNote[index] = options.fQuiet ? "" : eraseLine + note.str();
  }
  return words;
}

}  // namespace

void WatchSolve(const SolveOptions& options, bool printsSolutions) {
  StartWatch(options.fLimits, MakeLastWords(options, printsSolutions));
}

int RunSolve(Session& session, const SolveOptions& options, std::ostream& out, std::ostream& err) {
  return SolveRun(session, options, out, err).Run();
}

int FinishOutput(int exitCode, std::ostream& out, std::ostream& err) {
  if (!out.flush()) {
    err << "tarn: error: cannot write the output\n";
    return BadInput;
  }
  return exitCode;
}

void EndProgram(int exitCode, std::ostream& out, std::ostream& err) {
  const int code = FinishOutput(exitCode, out, err);
  err.flush();
  _exit(code);
}

}  // namespace tarn
