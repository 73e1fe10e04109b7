#include <gmock/gmock.h>

#include <set>

#include "framework/VokTarnSearch.h"
#include "support/modules.h"

namespace {

using support::LoadedModules;
using Status = VokTarnSearch::Status;

// Queens on an n x n board: the column of the queen of each row.
std::vector<VokTarnValueId> BuildQueens(const LoadedModules& modules, VokTarnNetwork& network, int n) {
  std::vector<VokTarnValueId> columns;
  std::vector<VokTarnValueId> up;
  std::vector<VokTarnValueId> down;
  for (int row = 0; row < n; ++row) {
    columns.push_back(modules.Add(network, "enum int", "[1, " + std::to_string(n) + "]"));
    const VokTarnValueId number = modules.Add(network, "int", std::to_string(row));
    up.push_back(modules.Post(network, "+", {columns.back(), number}, true));
    down.push_back(modules.Post(network, "-", {columns.back(), number}, true));
  }
  modules.Post(network, "all different", columns);
  modules.Post(network, "all different", up);
  modules.Post(network, "all different", down);
  return columns;
}

std::string ShowValues(const VokTarnNetwork& network, const std::vector<VokTarnValueId>& ids) {
  std::string shown;
  for (const VokTarnValueId id : ids) {
    shown += (shown.empty() ? "" : " ") + support::Show(network.GetValue(id));
  }
  return shown;
}

TEST(Search, ListsEverySolutionOnceInOrder) {
  const LoadedModules modules;
  VokTarnNetwork network;
  const auto columns = BuildQueens(modules, network, 6);
  VokTarnSearch search(network, columns);
  std::vector<std::string> solutions;
  while (search.Next() == Status::Solution) {
    solutions.push_back(ShowValues(network, columns));
  }
  EXPECT_THAT(solutions, testing::UnorderedElementsAre("2 4 6 1 3 5", "3 6 2 5 1 4", "4 1 5 2 6 3", "5 3 1 6 4 2"));
  EXPECT_EQ(search.Next(), Status::Exhausted);
}

TEST(Search, GoesOnAfterAStopAsIfThereHadBeenNone) {
  const LoadedModules modules;
  VokTarnNetwork network;
  const auto columns = BuildQueens(modules, network, 8);
  std::set<std::string> solutions;
  unsigned stops = 0;
  {
    VokTarnSearch search(network, columns);
    unsigned asked = 0;
    network.SetInterrupt([&asked] { return ++asked % 3 == 0; });
    for (Status status = search.Next(); status != Status::Exhausted; status = search.Next()) {
      if (status == Status::Stopped) {
        ++stops;
      } else {
        ASSERT_EQ(status, Status::Solution);
        ASSERT_TRUE(solutions.insert(ShowValues(network, columns)).second);
      }
    }
  }
  EXPECT_GT(stops, 10U);
  EXPECT_EQ(solutions.size(), 92U);
  EXPECT_EQ(network.GetLevel(), 0U);
  EXPECT_EQ(support::Show(network.GetValue(columns[0])), "{ 1, 2, 3, 4, 5, 6, 7, 8 }");
}

// Every variable and value choice finds the same solutions, a limit stops every search where it should.
TEST(Search, OptionsChangeTheOrderAlone) {
  using Variable = VokTarnSearch::VariableChoice;
  using Value = VokTarnSearch::ValueChoice;
  const LoadedModules modules;
  for (const Variable variable :
       {Variable::FirstFail, Variable::InputOrder, Variable::MostConstrained, Variable::Weighted}) {
    for (const Value value : {Value::Min, Value::Max, Value::Split, Value::SplitMax}) {
      VokTarnNetwork network;
      const auto columns = BuildQueens(modules, network, 7);
      std::set<std::string> solutions;
      {
        VokTarnSearch search(network, columns, std::nullopt, {variable, value});
        while (search.Next() == Status::Solution) {
          ASSERT_TRUE(solutions.insert(ShowValues(network, columns)).second);
        }
        EXPECT_EQ(search.Next(), Status::Exhausted);
      }
      EXPECT_EQ(solutions.size(), 40U);
      VokTarnSearch limited(network, columns, std::nullopt, {variable, value, 3});
      while (limited.Next() == Status::Solution) {
      }
      EXPECT_EQ(limited.Next(), Status::Stopped);
      EXPECT_EQ(limited.GetStatistics().fDecisions, 3U);
    }
  }
}

// An intermediate value that propagation leaves open is searched for, but only one completion counts.
TEST(Search, IntermediateValuesDoNotMultiplySolutions) {
  const LoadedModules modules;
  VokTarnNetwork network;
  const VokTarnValueId x = modules.Add(network, "enum int", "[1, 4]");
  const VokTarnValueId root = modules.Add(network, "enum int", "[-9, 9]");
  const VokTarnValueId square = modules.Post(network, "*", {root, root}, true);
  modules.Post(network, "=", {square, x});
  VokTarnSearch search(network, {x});
  std::vector<std::string> solutions;
  while (search.Next() == Status::Solution) {
    solutions.push_back(ShowValues(network, {x}));
  }
  EXPECT_THAT(solutions, testing::ElementsAre("1", "4"));
}

TEST(Search, AVariableWithoutBoundsIsUndecidedNotUnsatisfiable) {
  const LoadedModules modules;
  VokTarnNetwork network;
  const VokTarnValueId x = modules.Add(network, "enum int", "");
  const VokTarnValueId y = modules.Add(network, "enum int", "[1, 2]");
  modules.Post(network, "<", {y, x});
  VokTarnSearch search(network, {x, y});
  EXPECT_EQ(search.Next(), Status::Undecided);
  EXPECT_EQ(search.GetUndecided(), x);
  EXPECT_EQ(search.GetStatistics().fSolutions, 0U);
}

TEST(Search, AnObjectiveLeadsToTheOptimum) {
  const LoadedModules modules;
  for (const auto sense : {VokTarnSearch::Sense::Minimize, VokTarnSearch::Sense::Maximize}) {
    const bool least = sense == VokTarnSearch::Sense::Minimize;
    VokTarnNetwork network;
    const VokTarnValueId x = modules.Add(network, "enum int", "{1, 3, 7, 12}");
    const VokTarnValueId y = modules.Add(network, "enum int", "{2, 5, 11}");
    const VokTarnValueId product = modules.Post(network, "*", {x, y}, true);
    modules.Post(network, "<>", {modules.Post(network, "+", {x, y}, true), modules.Add(network, "int", "3")});
    modules.Post(network, "<", {x, y});
    const VokTarnValueId bound = network.AddValue(modules.Type("int"));
    modules.Post(network, least ? "<=" : ">=", {product, bound});
    VokTarnSearch search(network, {x, y}, VokTarnSearch::Objective{product, bound, sense});
    std::optional<VokLong> last;
    while (search.Next() == Status::Solution) {
      ASSERT_TRUE(!last || (least ? *search.GetBest() < *last : *search.GetBest() > *last));
      last = search.GetBest();
    }
    EXPECT_EQ(last, least ? 5 : 77);  // 1 * 5 and 7 * 11
    EXPECT_EQ(search.Next(), Status::Exhausted);
  }
}

}  // namespace
