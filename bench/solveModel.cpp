// How long does a model take to read, and to search? solveModel FILE [--all] [--repeat N] [--var V] [--val V] does both
// N times in this process, without printing the solutions, and prints what gecodePeer prints of the peer's models:
// medians without the start of the process. Reading includes the first propagation of each statement.

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

#include "Timing.h"
#include "framework/VokTarnSearch.h"
#include "tarn/Modules.h"
#include "tarn/Session.h"

namespace {

struct Run {
  double fBuild = 0;
  double fSearch = 0;
  VokTarnSearch::Statistics fStatistics;
  std::uint64_t fPropagations = 0;
};

Run RunOnce(tarn::Modules& modules, const tarn::Source& source, bool all, const VokTarnSearch::Options& options) {
  Run run;
  const auto start = bench::Clock::now();
  tarn::Session session(modules);
  session.Read(source);
  const auto built = bench::Clock::now();
  VokTarnSearch search(session.GetNetwork(), session.GetVariables(), session.GetObjective(), options);
  all = all || session.GetObjective();
  while (search.Next() == VokTarnSearch::Status::Solution && all) {
  }
  run.fBuild = bench::GetMilliseconds(start, built);
  run.fSearch = bench::GetMilliseconds(built, bench::Clock::now());
  run.fStatistics = search.GetStatistics();
  run.fPropagations = session.GetNetwork().GetPropagations();
  return run;
}

VokTarnSearch::VariableChoice GetVariableChoice(const std::string& name) {
  if (name == "first-fail" || name == "input-order") {
    return name == "first-fail" ? VokTarnSearch::VariableChoice::FirstFail : VokTarnSearch::VariableChoice::InputOrder;
  }
  throw std::runtime_error("unknown variable choice: " + name);
}

VokTarnSearch::ValueChoice GetValueChoice(const std::string& name) {
  if (name == "min" || name == "split") {
    return name == "min" ? VokTarnSearch::ValueChoice::Min : VokTarnSearch::ValueChoice::Split;
  }
  throw std::runtime_error("unknown value choice: " + name);
}

}  // namespace

int main(int argc, char** argv) try {
  bool all = false;
  int repeat = 1;
  std::string file;
  VokTarnSearch::Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--all") {
      all = true;
    } else if (argument.starts_with("--") && i + 1 < argc) {
      const std::string value = argv[++i];
      if (argument == "--repeat") {
        repeat = std::max(1, std::stoi(value));
      } else if (argument == "--var") {
        options.fVariable = GetVariableChoice(value);
      } else if (argument == "--val") {
        options.fValue = GetValueChoice(value);
      } else {
        throw std::runtime_error("unknown option: " + argument);
      }
    } else {
      file = argument;
    }
  }
  const tarn::Source source = tarn::Source::ReadFile(file);
  tarn::Modules modules;  // opened once in a process, as libraries are
  modules.Open(tarn::Modules::sDefault);
  std::vector<double> build;
  std::vector<double> search;
  Run run;
  for (int i = 0; i < repeat; ++i) {
    run = RunOnce(modules, source, all, options);
    build.push_back(run.fBuild);
    search.push_back(run.fSearch);
  }
  // As the peer counts: the root, each part of a choice that is visited; every leaf is a solution or a failure.
  const VokTarnSearch::Statistics& s = run.fStatistics;
  std::printf("solutions=%lu nodes=%lu failures=%lu propagations=%lu build_ms=%.4f search_ms=%.4f\n", s.fSolutions,
              s.fDecisions + s.fFailures + s.fSolutions, s.fFailures, run.fPropagations, bench::GetMedian(build),
              bench::GetMedian(search));
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "solveModel: %s\n", error.what());
  return 2;
}
