#include <algorithm>
#include <ostream>

#include "framework/VokTarnTrace.h"
#include "tarn/Diagnostic.h"
#include "tarn/Fact.h"
#include "tarn/Names.h"
#include "tarn/Printer.h"
#include "tarn/commands/Commands.h"
#include "tarn/commands/Interrupt.h"

namespace tarn {
namespace {

constexpr const char* sIndent = "     ";

// Prints the steps of a chain.
class ChainPrinter {
 public:
  ChainPrinter(const Names& names, const VokTarnTrace& trace, std::ostream& out)
      : fNames(names), fTrace(trace), fOut(out) {}

  void Print(const std::vector<VokTarnTrace::Step>& steps) const {
    for (std::size_t i = 0; i < steps.size(); ++i) {
      const VokTarnTrace::Step& step = steps[i];
      fOut << i + 1 << ". " << fNames.DescribeStatement(fNames.GetStatement(step.fConstraint)) << '\n';
      for (const VokTarnTrace::Change& change : step.fChanges) {
        fOut << sIndent << fNames.GetValue(change.fValue) << " : " << Describe(change.fValue, change.fBefore) << " -> "
             << DescribeDomain(*change.fAfter) << '\n';
      }
      if (step.fFails) {
        fOut << sIndent << "cannot hold\n";
      }
      PrintInputs(step);
    }
  }

  // The first domain of a value, from which the result follows without a step.
  void PrintInitial(VokTarnValueId id) const {
    if (const std::optional<std::size_t> origin = fNames.GetOrigin(id)) {
      fOut << fNames.DescribeStatement(*origin) << '\n';
    }
    fOut << sIndent << DescribeFirst(id) << '\n';
  }

 private:
  // "domain (where it comes from)".
  std::string Describe(VokTarnValueId id, const VokTarnTrace::State& state) const {
    const std::string domain = DescribeDomain(*state.fDomain);
    if (state.fStep != VokTarnTrace::sInitial) {
      return domain + " (step " + std::to_string(state.fStep + 1) + ")";
    }
    const std::optional<std::size_t> origin = fNames.GetOrigin(id);
    return origin ? domain + " (line " + std::to_string(fNames.GetLine(*origin)) + ")" : domain;
  }

  std::string DescribeFirst(VokTarnValueId id) const {
    const VokTarnAny& domain = fTrace.GetInitial(id);
    return domain.IsNil() != 0 ? "cannot hold" : fNames.GetValue(id) + " : " + DescribeDomain(domain);
  }

  void PrintInputs(const VokTarnTrace::Step& step) const {
    std::vector<std::pair<std::string, std::string>> groups;  // domain, names
    for (const VokTarnTrace::Input& input : step.fInputs) {
      if (input.fState.fStep == VokTarnTrace::sInitial &&
          (fNames.IsLiteral(input.fValue) || fNames.GetOrigin(input.fValue) == fNames.GetStatement(step.fConstraint))) {
        continue;  // the statement shows it
      }
      std::string domain = Describe(input.fValue, input.fState);
      const auto same = std::ranges::find(groups, domain, &std::pair<std::string, std::string>::first);
      if (same == groups.end()) {
        groups.emplace_back(std::move(domain), fNames.GetValue(input.fValue));
      } else {
        same->second += ", " + fNames.GetValue(input.fValue);
      }
    }
    for (const auto& [domain, names] : groups) {
      fOut << sIndent << "with " << names << " : " << domain << '\n';
    }
  }

  const Names& fNames;
  const VokTarnTrace& fTrace;
  std::ostream& fOut;
};

VokTarnValueId FindEmpty(const VokTarnNetwork& network, const VokTarnTrace& trace) {
  for (VokTarnValueId id = 0; id < network.GetValueCount(); ++id) {
    if (trace.GetInitial(id).IsNil() != 0) {
      return id;
    }
  }
  return vokNoValue;
}

void Explain(const Fact& fact, VokTarnNetwork& network, const Names& names, VokTarnTrace& trace, std::ostream& out,
             std::ostream& err) {
  VokTarnTrace::Result result{vokNoValue, {}};
  if (!network.IsFailed()) {
    result = {fact.GetVariable(), [&fact](const VokTarnAny& domain) { return fact.HoldsFor(domain); }};
  }
  const std::optional<VokTarnTrace::Chain> chain = trace.Explain(result);
  if (!chain) {
    err << "tarn: propagation takes too many steps to be told\n";
  } else if (const ChainPrinter printer(names, trace, out); chain->fSteps.empty()) {
    printer.PrintInitial(network.IsFailed() ? FindEmpty(network, trace) : result.fValue);
  } else {
    printer.Print(chain->fSteps);
  }
  if (chain && !chain->fIsShortest) {
    err << "tarn: there may be a shorter explanation\n";
  }
  out << "Hence " << (network.IsFailed() ? "the model has no solution" : fact.GetText()) << ".\n";
}

// Searches for a solution in which the fact does not hold.
int Search(const Fact& fact, Session& session, std::ostream& out, std::ostream& err) {
  VokTarnNetwork& network = session.GetNetwork();
  const std::string negation = fact.GetNegation();
  std::string left;
  if (!fact.IsFalse()) {
    left = "; propagation alone leaves " + network.GetName(fact.GetVariable()) + " : " +
           DescribeDomain(network.GetValue(fact.GetVariable()));
  }
  session.Read(Source("negation", negation + ";"));
  VokTarnSearch search(network, session.GetVariables(), session.GetObjective());
  const VokTarnSearch::Status status = search.Next();
  const std::string count = " (decisions: " + std::to_string(search.GetStatistics().fDecisions) + ")";
  if (status == VokTarnSearch::Status::Exhausted) {
    out << (fact.IsFalse() ? "The model has no solution" : "No solution has " + negation) << ", as a search shows"
        << count << left << ".\n";
    return Solved;
  }
  if (status != VokTarnSearch::Status::Solution || !IsSolution(session, err)) {
    err << "tarn: a search could not decide it" << count << '\n';
    out << sUnknown;
    return Undecided;
  }
  out << (fact.IsFalse() ? "The model has a solution" : "Not so: a solution has " + negation) << ".\n";
  PrintVariables(session, out);
  out << sSolutionEnd;
  return NoSolution;
}

}  // namespace

int RunWhy(Session& session, const Source& source, const Source& factText, std::ostream& out, std::ostream& err) {
  RefuseRestored(session, source);
  const Fact fact(session, factText);
  VokTarnNetwork& network = session.GetNetwork();
  network.SetInterrupt(IsInterrupted);
  const Names names(session, source);
  VokTarnTrace trace(network);
  const VokTarnNetwork::Outcome outcome = trace.Record();
  if (outcome == VokTarnNetwork::Outcome::Interrupted) {
    out << sUnknown;
    return Undecided;
  }
  const bool holds = !fact.IsFalse() && fact.HoldsFor(network.GetValue(fact.GetVariable()));
  if (!network.IsFailed() && !holds) {
    return Search(fact, session, out, err);
  }
  Explain(fact, network, names, trace, out, err);
  return Solved;
}

}  // namespace tarn
