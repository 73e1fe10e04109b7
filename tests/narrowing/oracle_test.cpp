// Every narrowing operation against brute force.
#include "narrowing/oracle.h"

#include <gtest/gtest.h>

namespace narrowing {
namespace {

using support::Parse;

constexpr unsigned kSeed = 20240611;

TEST(NarrowingOracle, RelationsOnEverySubsetOfASmallUniverse) {
  std::vector<Model> sets;
  for (const VokFenEnumInteger& set : enumSets::AllSets(-2, 2)) {
    sets.push_back(support::Operand(set).Read());
  }
  std::vector<Model> others = sets;
  for (const char* text : {"s Nil", "s Any", "s -2", "s -1", "s 0", "s 1", "s 2"}) {
    others.push_back(Parse(text));
  }
  for (const Operation& op : support::Operations()) {
    for (std::size_t i = 0; op.operands == 2 && i < sets.size(); ++i) {
      for (const Model& other : others) {
        const Case c = {sets[i], other, Parse("s Nil")};
        const std::string reason = Check(op, c);
        ASSERT_EQ(reason, "") << Show(op, c);
      }
    }
  }
}

TEST(NarrowingOracle, EveryOperationOnRandomSmallSets) {
  std::mt19937 random(kSeed);
  const Values wide = {-4, -3, -2, -1, 0, 1, 2, 3, 4};
  const Values narrow = {-2, -1, 0, 1, 2};
  for (const Operation& op : support::Operations()) {
    const Values& others = op.operands == 2 ? wide : narrow;
    for (int i = 0; i < 3500; ++i) {
      const Case c = {RandomModel(random, wide, false), RandomModel(random, others, true),
                      RandomModel(random, others, true)};
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
  for (const Operation& op : support::Operations()) {
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
  for (const Operation& op : support::Operations()) {
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
  Operation op = support::FindOperation("x <= y");
  const Case c = {Parse("1 5 9"), Parse("2 5"), Model{}};
  EXPECT_EQ(Check(op, c), "");
  using I = VokTarnInteger;
  const std::pair<int (*)(I&, I&, I&), std::string> faults[] = {
      {[](I&, I&, I&) { return 0; }, "not tight"},
      {[](I& x, I&, I&) { return x.IsNil() != 0 ? 0 : x.SetNilValue(); }, "unsound"},
      {[](I& x, I&, I&) { return x.AddExactValue(3); }, "widened"},
      {[](I& x, I& y, I&) { return 0 * x.CalcLessOrEqualValue(y); }, "wrong status"},
      {[](I&, I& y, I&) { return y.SetNilValue(); }, "another operand changed"},
      {[](I& x, I&, I&) { return x.RemoveExactValue(x.GetUpperBound()); }, "not idempotent"}};
  for (const auto& [run, reason] : faults) {
    op.run = run;
    EXPECT_EQ(Check(op, c), reason);
  }
  op.holds = [](VokLong x, VokLong y, VokLong) { return x < y; };
  op.run = support::FindOperation("x < y").run;
  EXPECT_EQ(Check(op, {Parse("1 3 7"), Parse("2 5"), Model{}}), "unsound") << "the rule of x < y, not allowed for";
}

}  // namespace
}  // namespace narrowing
