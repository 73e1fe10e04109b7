// How does the engine grow with a model? Texts of n variables over ten values, each neighbour constrained.
//   read/n        reading a text and building its network; bytes per second must not fall with n
//   memory/n      bytes of the heap per variable and per constraint
//   propagate/n   one change that runs along a chain of equalities; propagations per second
//   search/n      2000 choices with little to propagate each; nodes per second

#include <malloc.h>

#include <numeric>

#include "Workload.h"
#include "framework/VokTarnSearch.h"
#include "tarn/Modules.h"
#include "tarn/Session.h"

namespace {

std::string GetName(int i) {
  return "v" + std::to_string(i);
}

std::string WriteDeclarations(int variables) {
  std::string text;
  for (int i = 0; i < variables; ++i) {
    text += GetName(i) + " : enum int [0, 9];\n";
  }
  return text;
}

std::string WriteChain(int variables, const std::string& relation) {
  std::string text = WriteDeclarations(variables);
  for (int i = 0; i + 1 < variables; ++i) {
    text += GetName(i) + relation + GetName(i + 1) + ";\n";
  }
  return text;
}

// A model that has been read.
class Built {
 public:
  explicit Built(const std::string& text) : fSource("bench", text), fSession(fModules) { fSession.Read(fSource); }
  VokTarnNetwork& GetNetwork() { return fSession.GetNetwork(); }
  tarn::Session& GetSession() { return fSession; }

 private:
  struct OpenModules : tarn::Modules {
    OpenModules() { Open(sDefault); }
  };
  tarn::Source fSource;
  OpenModules fModules;
  tarn::Session fSession;
};

void MeasureRead(benchmark::State& state) {
  const std::string text = WriteChain(static_cast<int>(state.range(0)), " <> ");
  for (auto _ : state) {
    const auto start = bench::Clock::now();
    const auto built = std::make_unique<Built>(text);
    state.SetIterationTime(std::chrono::duration<double>(bench::Clock::now() - start).count());
  }
  state.counters["text"] = static_cast<double>(text.size());
  state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
}

std::size_t GetHeap() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

std::size_t GetHeapOf(const std::string& text) {
  const std::size_t before = GetHeap();
  const Built built(text);
  return GetHeap() - before;
}

void MeasureMemory(benchmark::State& state) {
  const int variables = static_cast<int>(state.range(0));
  const std::string declarations = WriteDeclarations(variables);
  const std::string chain = WriteChain(variables, " <> ");
  for (auto _ : state) {
    // Without the texts, which a session keeps.
    const double alone = static_cast<double>(GetHeapOf(declarations) - declarations.size());
    const double all = static_cast<double>(GetHeapOf(chain) - chain.size());
    state.counters["bytesPerVariable"] = alone / variables;
    state.counters["bytesPerConstraint"] = (all - alone) / variables;
  }
}

void MeasurePropagate(benchmark::State& state) {
  Built built(WriteChain(static_cast<int>(state.range(0)), " = "));
  VokTarnNetwork& network = built.GetNetwork();
  network.Propagate();
  const VokTarnValueId first = built.GetSession().GetVariables().front();
  const std::uint64_t before = network.GetPropagations();
  for (auto _ : state) {
    network.PushLevel();
    const auto start = bench::Clock::now();
    static_cast<VokTarnInteger&>(network.Touch(first)).SetExactValue(3);
    network.NoteChange(first);
    network.Propagate();
    state.SetIterationTime(std::chrono::duration<double>(bench::Clock::now() - start).count());
    network.PopLevel();
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(network.GetPropagations() - before));
}

void MeasureSearch(benchmark::State& state) {
  constexpr std::uint64_t kNodes = 2000;
  Built built(WriteChain(static_cast<int>(state.range(0)), " <> "));
  built.GetNetwork().Propagate();
  VokTarnSearch::Options options;
  options.fValue = VokTarnSearch::ValueChoice::Min;
  options.fNodeLimit = kNodes;
  std::uint64_t nodes = 0;
  for (auto _ : state) {
    VokTarnSearch search(built.GetNetwork(), built.GetSession().GetVariables(), std::nullopt, options);
    const auto start = bench::Clock::now();
    search.Next();
    state.SetIterationTime(std::chrono::duration<double>(bench::Clock::now() - start).count());
    nodes += search.GetStatistics().fDecisions;
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(nodes));
}

}  // namespace

BENCHMARK(MeasureRead)
    ->Name("read")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Arg(280)
    ->Arg(2800)
    ->Arg(28000)
    ->Arg(280000);
BENCHMARK(MeasureMemory)
    ->Name("memory")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->Arg(2000)
    ->Arg(20000)
    ->Arg(200000);
BENCHMARK(MeasurePropagate)
    ->Name("propagate")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Arg(2000)
    ->Arg(20000)
    ->Arg(200000);
BENCHMARK(MeasureSearch)
    ->Name("search")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Arg(2000)
    ->Arg(20000)
    ->Arg(200000);

int main(int argc, char** argv) {
  return bench::Main(argc, argv, "2000 20000 200000 variables, texts up to 10 MB");
}
