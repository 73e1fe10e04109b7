// The data of the benches over sets: drawn with one seed, and in such numbers that no branch predictor learns them.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "Timing.h"
#include "domain/VokFenEnumInteger.h"

namespace bench {

using Values = std::vector<int>;

// Draws members: each of `count` places, `gap` apart on average, is a member with the same chance. Dense: every
// number is a place.
class Draw {
 public:
  explicit Draw(unsigned seed) : fEngine(seed) {}

  int Below(int n) { return static_cast<int>(fEngine() % static_cast<unsigned>(n)); }

  // `count` ascending places from about `low` on.
  Values Places(int count, bool dense, int low = 0) {
    Values places;
    int at = low;
    for (int i = 0; i < count; ++i) {
      places.push_back(at);
      at += dense ? 1 : 1 + Below(127);
    }
    return places;
  }

  // `count` of the places.
  Values Choose(const Values& places, int count) {
    Values chosen;
    std::sample(places.begin(), places.end(), std::back_inserter(chosen), count, fEngine);
    return chosen;
  }

 private:
  std::mt19937 fEngine;
};

inline VokFenEnumInteger MakeSet(const Values& values) {
  Values list = {static_cast<int>(values.size())};
  list.insert(list.end(), values.begin(), values.end());
  return VokFenEnumInteger(list.data());
}

inline Values ListMembers(const VokFenEnumInteger& set) {
  Values values;
  for (unsigned i = 0; i < set.GetCount(); ++i) {
    values.push_back(set.GetValue(i));
  }
  return values;
}

// So many cases that their sets have 40 000 members in all.
inline int CountCases(int members, int setsPerCase) {
  return std::max(16, 40000 / (members * setsPerCase) + 1);
}

// A measured pass over all cases: `prepare(i)` is not counted, `run(i)` is. The counter `call` is the time per
// call.
template <class Prepare, class Run>
void MeasurePass(benchmark::State& state, int cases, Prepare prepare, Run run) {
  for (auto _ : state) {
    for (int i = 0; i < cases; ++i) {
      prepare(i);
    }
    const auto start = Clock::now();
    for (int i = 0; i < cases; ++i) {
      run(i);
    }
    benchmark::ClobberMemory();
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
  }
  using Counter = benchmark::Counter;
  state.counters["call"] =
      Counter(static_cast<double>(state.iterations()) * cases, Counter::kIsRate | Counter::kInvert);
}

[[noreturn]] inline void Abort(const std::string& what) {
  std::fprintf(stderr, "bench: %s\n", what.c_str());
  std::exit(2);
}

inline std::string GetProcessor() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);) {
    if (line.starts_with("model name")) {
      return line.substr(line.find(':') + 2);
    }
  }
  return "unknown";
}

// Prints the conditions first; warns when they make figures worthless.
inline int Main(int argc, char** argv, const std::string& sizes) {
  benchmark::AddCustomContext("compiler", __VERSION__);
  benchmark::AddCustomContext("flags", BENCH_FLAGS);
  benchmark::AddCustomContext("processor", GetProcessor());
  benchmark::AddCustomContext("sizes", sizes);
  if (std::string(BENCH_BUILD_TYPE) != "Release") {
    std::fprintf(stderr, "warning: this is a %s build, its figures mean nothing\n", BENCH_BUILD_TYPE);
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 2;
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

}  // namespace bench
