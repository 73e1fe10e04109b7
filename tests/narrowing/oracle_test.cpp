// Every narrowing operation against brute force.
#include "narrowing/oracle.h"

#include <gtest/gtest.h>

namespace narrowing {
namespace {

using support::Parse;

constexpr unsigned kSeed = 20240611;

TEST(NarrowingOracle, RelationsOnEverySubsetOfASmallUniverse) {
  std::mt19937 random(kSeed);
  const Model unused = Parse("s Nil");
  std::vector<Model> sets = {Parse("Nil"), Parse("Any")};
  std::vector<Model> others = {Parse("s Nil"), Parse("s Any")};
  for (unsigned mask = 1; mask < 128; ++mask) {
    Model m;
    for (VokLong k = 0; k < 7; ++k) {
      if ((mask >> k & 1U) != 0) {
        m.values.push_back(k - 3);
      }
    }
    if (m.values.size() == 1) {
      others.push_back({'s', false, false, m.values});
    }
    m.emptyMeansAny = random() % 2 == 0;
    sets.push_back(m);
  }
  others.insert(others.end(), sets.begin(), sets.end());
  for (const Operation& op : Operations()) {
    for (std::size_t i = 0; op.operands == 2 && i < sets.size(); ++i) {
      for (const Model& other : others) {
        const Case c = {sets[i], other, unused};
        const std::string reason = Check(op, c);
        ASSERT_EQ(reason, "") << Show(op, c) << " seed " << kSeed;
      }
    }
  }
}

TEST(NarrowingOracle, FunctionsOnRandomSmallSets) {
  std::mt19937 random(kSeed);
  const Values results = {-4, -3, -2, -1, 0, 1, 2, 3, 4};
  const Values arguments = {-2, -1, 0, 1, 2};
  for (const Operation& op : Operations()) {
    for (int i = 0; op.operands == 3 && i < 5000; ++i) {
      const Case c = {RandomModel(random, results, false), RandomModel(random, arguments, true),
                      RandomModel(random, arguments, true)};
      const std::string reason = Check(op, c);
      ASSERT_EQ(reason, "") << Show(op, c) << " seed " << kSeed << " case " << i;
    }
  }
}

// The ends of the range and of the 32-bit numbers: no overflow, and the contract holds.
TEST(NarrowingOracle, ContractHoldsAtTheExtremes) {
  std::mt19937 random(kSeed);
  const Values extremes = {enumSets::kNil,     enumSets::kNil + 1, enumSets::kMin,     enumSets::kMin + 1, -1, 0, 1,
                           enumSets::kMax - 1, enumSets::kMax,     enumSets::kMax + 1, enumSets::kAny};
  const Values ordinary(extremes.begin() + 1, extremes.end() - 1);
  for (const Operation& op : Operations()) {
    for (int i = 0; i < 1000; ++i) {
      const Values& universe = i % 2 == 0 ? extremes : ordinary;
      const bool maybeSingle = i % 2 != 0;
      const Case c = {RandomModel(random, universe, false), RandomModel(random, universe, maybeSingle),
                      RandomModel(random, universe, maybeSingle)};
      const std::string reason = CheckContract(op, c, RunCase(op, c));
      ASSERT_EQ(reason, "") << Show(op, c) << " seed " << kSeed << " case " << i;
    }
  }
}

TEST(NarrowingOracle, OneObjectInSeveralRolesActsLikeCopies) {
  std::mt19937 random(kSeed);
  const Values universe = {-3, -2, -1, 0, 1, 2, 3};
  // Which of two objects stands as *this*, as the first and as the second operand.
  constexpr unsigned kRoles[][3] = {{0, 0, 0}, {0, 1, 1}, {0, 1, 0}, {0, 0, 1}};
  for (const Operation& op : Operations()) {
    for (int i = 0; i < 800; ++i) {
      const auto& role = kRoles[i % 4];
      const Model models[] = {RandomModel(random, universe, false), RandomModel(random, universe, true)};
      const Case c = {models[role[0]], models[role[1]], models[role[2]]};
      support::Operand operands[] = {support::Operand(models[0]), support::Operand(models[1])};
      const int status = op.run(operands[role[0]].Set(), operands[role[1]].Get(), operands[role[2]].Get());
      const Outcome apart = RunCase(op, c);
      ASSERT_EQ(status, apart.status) << Show(op, c) << " seed " << kSeed << " case " << i;
      ASSERT_EQ(operands[role[op.narrowed]].Read(), apart.after[op.narrowed]) << Show(op, c) << " seed " << kSeed;
    }
  }
}

TEST(NarrowingOracle, FindsPlantedFaults) {
  Operation op = FindOperation("x <= y");
  const Case c = {Parse("1 5 9"), Parse("2 5"), Model{}};
  EXPECT_EQ(Check(op, c), "");
  const std::pair<int (*)(E&, I&, I&), std::string> faults[] = {
      {[](E&, I&, I&) { return 0; }, "not tight"},
      {[](E& x, I&, I&) { return x.IsNil() != 0 ? 0 : x.SetNilValue(); }, "unsound"},
      {[](E& x, I&, I&) { return x.AddExactValue(3); }, "widened"},
      {[](E& x, I& y, I&) { return 0 * x.CalcLessOrEqualValue(y); }, "wrong status"},
      {[](E&, I& y, I&) { return y.SetNilValue(); }, "another operand changed"},
      {[](E& x, I&, I&) { return x.RemoveExactValue(x.GetUpperBound()); }, "not idempotent"}};
  for (const auto& [run, reason] : faults) {
    op.run = run;
    EXPECT_EQ(Check(op, c), reason);
  }
  op = FindOperation("x < y");
  op.rule = nullptr;
  EXPECT_EQ(Check(op, {Parse("1 3 7"), Parse("2 5"), Model{}}), "unsound");
}

}  // namespace
}  // namespace narrowing
