#include <chrono>
#include <ostream>

#include "framework/VokTarnBoolean.h"
#include "tarn/Commands.h"
#include "tarn/Diagnostic.h"
#include "tarn/Evaluator.h"
#include "tarn/Interrupt.h"
#include "tarn/Printer.h"

namespace tarn {
namespace {

using Clock = std::chrono::steady_clock;

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
  const std::optional<std::size_t> wrong = Evaluator(session.GetModel()).FindContradiction(GetSolution(session));
  if (wrong) {
    err << "tarn: internal error: a solution contradicts the statement of line "
        << session.GetModel().GetStatements()[*wrong].fLine << '\n';
  }
  return !wrong;
}

namespace {

void PrintStatistics(Session& session, const VokTarnSearch& search, Clock::time_point start, std::ostream& err) {
  const VokTarnSearch::Statistics& statistics = search.GetStatistics();
  err << "decisions:    " << statistics.fDecisions << "\nfailures:     " << statistics.fFailures
      << "\npropagations: " << session.GetNetwork().GetPropagations() << "\nsolutions:    " << statistics.fSolutions
      << "\ndepth:        " << statistics.fDepth
      << "\ntime:         " << std::chrono::duration<double>(Clock::now() - start).count() << " s\n";
}

void ExplainUndecided(Session& session, const VokTarnSearch& search, std::ostream& err) {
  VokTarnNetwork& network = session.GetNetwork();
  if (network.IsMemoryShort()) {
    err << "tarn: error: out of memory\n";
    return;
  }
  const VokTarnValueId undecided = search.GetUndecided();
  const std::string name = undecided == vokNoValue ? std::string() : network.GetName(undecided);
  err << "tarn: undecided: " << (name.empty() ? "an intermediate value" : "the variable '" + name + "'")
      << " is unbounded; give it a domain\n";
}

// How many solutions to stop after; nothing: search to the end.
std::optional<std::uint64_t> GetLimit(const SolveOptions& options, bool hasObjective) {
  if (options.fCount) {
    return options.fCount;
  }
  return options.fAll || hasObjective ? std::nullopt : std::optional<std::uint64_t>(1);
}

int Conclude(VokTarnSearch::Status status, std::uint64_t found, const VokTarnSearch& search, std::ostream& out) {
  switch (status) {
    case VokTarnSearch::Status::Solution:
      // Without a choice there is no other solution.
      if (search.GetStatistics().fDecisions == 0) {
        out << sExhausted;
      }
      return Solved;
    case VokTarnSearch::Status::Exhausted:
      out << (found == 0 ? sUnsatisfiable : sExhausted);
      return found == 0 ? NoSolution : Solved;
    default:
      if (found == 0) {
        out << sUnknown;
      }
      return Undecided;
  }
}

}  // namespace

int RunSolve(Session& session, const SolveOptions& options, std::ostream& out, std::ostream& err) {
  const Clock::time_point start = Clock::now();
  VokTarnNetwork& network = session.GetNetwork();
  network.SetInterrupt(MakeStopCondition(options.fTimeLimit));
  const std::optional<VokTarnSearch::Objective>& objective = session.GetObjective();
  const std::optional<std::uint64_t> limit = GetLimit(options, objective.has_value());
  VokTarnSearch search(network, session.GetVariables(), objective, options.fSearch);

  std::uint64_t found = 0;
  VokTarnSearch::Status status = VokTarnSearch::Status::Solution;
  bool isRight = true;
  while (status == VokTarnSearch::Status::Solution && isRight && (!limit || found < *limit)) {
    status = search.Next();
    if (status != VokTarnSearch::Status::Solution) {
      break;
    }
    isRight = IsSolution(session, err);
    if (isRight) {
      PrintVariables(session, out);
      out << sSolutionEnd << std::flush;
      ++found;
    }
  }
  if (status == VokTarnSearch::Status::Undecided) {
    ExplainUndecided(session, search, err);
  }
  if (options.fStatistics) {
    PrintStatistics(session, search, start, err);
  }
  if (!isRight) {
    out << sUnknown;
    return Undecided;
  }
  return Conclude(status, found, search, out);
}

}  // namespace tarn
