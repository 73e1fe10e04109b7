// gecodePeer NAME [--domain] [--repeat N]: builds and searches one model N times in this process and prints what
// solveModel prints of ours. Times are medians, without the start of the process.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "Peer.h"
#include "Timing.h"

namespace {

struct Run {
  double fBuild = 0;
  double fSearch = 0;
  unsigned long fSolutions = 0;
  Gecode::Search::Statistics fStatistics;
};

template <class Engine, class Model>
void Search(Model* space, bool all, Run& run) {
  Gecode::Search::Options options;
  options.threads = 1;
  Engine engine(space, options);
  delete space;
  while (std::unique_ptr<Model> solution{engine.next()}) {
    ++run.fSolutions;
    if (!all) {
      break;
    }
  }
  run.fStatistics = engine.statistics();
}

Run RunOnce(const peer::Entry& entry, Gecode::IntPropLevel level) {
  Run run;
  const auto start = bench::Clock::now();
  Gecode::Space* space = entry.fMake(level);
  const auto built = bench::Clock::now();
  if (entry.fOptimize) {
    Search<Gecode::BAB<peer::ArraySpace>>(static_cast<peer::ArraySpace*>(space), true, run);
  } else {
    Search<Gecode::DFS<Gecode::Space>>(space, entry.fAll, run);
  }
  run.fBuild = bench::GetMilliseconds(start, built);
  run.fSearch = bench::GetMilliseconds(built, bench::Clock::now());
  return run;
}

}  // namespace

namespace peer {

std::map<std::string, Entry>& GetEntries() {
  static std::map<std::string, Entry> sEntries;
  return sEntries;
}

std::string GetDataPath(const std::string& name) {
  return std::string(BENCH_MODEL_DIR "/") + name;
}

}  // namespace peer

int main(int argc, char** argv) {
  Gecode::IntPropLevel level = Gecode::IPL_DEF;
  int repeat = 1;
  for (int i = 2; i < argc; ++i) {
    if (std::strcmp(argv[i], "--domain") == 0) {
      level = Gecode::IPL_DOM;
    } else if (std::strcmp(argv[i], "--repeat") == 0 && i + 1 < argc) {
      repeat = std::max(1, std::atoi(argv[++i]));
    }
  }
  const auto entry = argc > 1 ? peer::GetEntries().find(argv[1]) : peer::GetEntries().end();
  if (entry == peer::GetEntries().end()) {
    std::fprintf(stderr, "usage: gecodePeer NAME [--domain] [--repeat N]; NAME is one of:");
    for (const auto& [name, unused] : peer::GetEntries()) {
      std::fprintf(stderr, " %s", name.c_str());
    }
    std::fprintf(stderr, "\n");
    return 2;
  }
  std::vector<double> build;
  std::vector<double> search;
  Run run;
  for (int i = 0; i < repeat; ++i) {
    run = RunOnce(entry->second, level);
    build.push_back(run.fBuild);
    search.push_back(run.fSearch);
  }
  std::printf("solutions=%lu nodes=%lu failures=%lu propagations=%lu build_ms=%.4f search_ms=%.4f\n", run.fSolutions,
              run.fStatistics.node, run.fStatistics.fail, run.fStatistics.propagate, bench::GetMedian(build),
              bench::GetMedian(search));
  return 0;
}
