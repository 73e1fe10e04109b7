// Random sequences of calls on a few values, beside their models.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "support/apiTrace.h"
#include "support/soak.h"

namespace {

using apiTrace::Bytes;

constexpr int kTraces = 20000;

unsigned Seed() {
  const char* const text = std::getenv("VOKTARN_SEED");
  return text != nullptr ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : 20261123U;
}

Bytes RandomTrace(std::mt19937& random) {
  Bytes trace(apiTrace::kHeaderSize + apiTrace::kCallSize * (10 + random() % (random() % 8 == 0 ? 191 : 40)));
  std::generate(trace.begin(), trace.end(), [&random] { return static_cast<std::uint8_t>(random()); });
  return trace;
}

// The first of so many random traces that differs; empty when none does.
Bytes FindDiffering(std::mt19937& random, int traces, apiTrace::Fault fault = nullptr) {
  for (int i = 0; i < traces; ++i) {
    Bytes trace = RandomTrace(random);
    if (!apiTrace::FindMismatch(trace.data(), trace.size(), fault).empty()) {
      return trace;
    }
  }
  return {};
}

std::string Describe(const Bytes& trace, apiTrace::Fault fault = nullptr) {
  const Bytes shortest = apiTrace::Shrink(trace, fault);
  return apiTrace::FindMismatch(shortest.data(), shortest.size(), fault);
}

TEST(Traces, EveryCallLeavesWhatItsModelSays) {
  const unsigned seed = Seed();
  RecordProperty("seed", std::to_string(seed));
  std::mt19937 random(seed);
  const Bytes trace = FindDiffering(random, kTraces * support::SoakFactor());
  ASSERT_TRUE(trace.empty()) << "VOKTARN_SEED=" << seed << "\n" << Describe(trace);
}

TEST(Traces, PlantedFaultsShrinkToAFewCalls) {
  struct Planted {
    apiTrace::Fault fault;
    const char* call;
    std::ptrdiff_t calls;
  };
  const auto loses = [](const char* call, const char* name, std::size_t members, support::Model& x) {
    if (std::strstr(call, name) != nullptr && x.values.size() >= members) {
      x.values.pop_back();
      x.any = x.values.empty() && x.emptyMeansAny == 1;
    }
  };
  static const auto kLoses = loses;
  for (const Planted& row :
       {Planted{[](const char*call, support::Model&x) { kLoses(call, "Minus", 3, x); }, ".Minus()", 2},
        Planted{[](const char*call, support::Model&x) { kLoses(call, "FirstInverseSum", 2, x); }, "InverseSumValue(",
                2},
        Planted{[](const char*call, support::Model&x) { kLoses(call, "Bisect", 1, x); }, ".Bisect(", 2}}) {
    std::mt19937 random(7);
    const Bytes trace = FindDiffering(random, 2000, row.fault);
    ASSERT_FALSE(trace.empty()) << row.call;
    const std::string text = Describe(trace, row.fault);
    std::istringstream lines(text);
    std::string last;
    std::ptrdiff_t calls = 0;
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with("EXPECT_EQ(")) {
        ++calls;
        last = line;
      }
    }
    EXPECT_NE(last.find(row.call), std::string::npos) << text;
    EXPECT_LE(calls, row.calls) << text;
  }
}

}  // namespace
