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

constexpr VokTarnSearch::VariableChoice sVariableChoices[] = {
    VokTarnSearch::VariableChoice::FirstFail, VokTarnSearch::VariableChoice::InputOrder,
    VokTarnSearch::VariableChoice::MostConstrained, VokTarnSearch::VariableChoice::Weighted};
constexpr VokTarnSearch::ValueChoice sValueChoices[] = {
    VokTarnSearch::ValueChoice::Min, VokTarnSearch::ValueChoice::Max, VokTarnSearch::ValueChoice::Split,
    VokTarnSearch::ValueChoice::SplitMax};
constexpr VokTarnSearch::Restart sRestarts[] = {VokTarnSearch::Restart::None, VokTarnSearch::Restart::Luby};

// Every combination of options finds the same solutions, in the same order each time; a limit stops every search where
// it should.
TEST(Search, OptionsChangeTheOrderAlone) {
  const LoadedModules modules;
  const auto list = [&](const VokTarnSearch::Options& options) {
    VokTarnNetwork network;
    const auto columns = BuildQueens(modules, network, 7);
    VokTarnSearch search(network, columns, std::nullopt, options);
    std::vector<std::string> solutions;
    while (search.Next() == Status::Solution) {
      solutions.push_back(ShowValues(network, columns));
    }
    EXPECT_EQ(search.Next(), Status::Exhausted);
    VokTarnSearch::Options limit = options;
    limit.fNodeLimit = 3;
    VokTarnNetwork again;
    VokTarnSearch limited(again, BuildQueens(modules, again, 7), std::nullopt, limit);
    while (limited.Next() == Status::Solution) {
    }
    EXPECT_EQ(limited.Next(), Status::Stopped);
    EXPECT_EQ(limited.GetStatistics().fDecisions, 3U);
    return solutions;
  };
  for (const auto variable : sVariableChoices) {
    for (const auto value : sValueChoices) {
      for (const auto restart : sRestarts) {
        for (const std::uint64_t seed : {0U, 7U}) {
          const std::vector<std::string> solutions = list({variable, value, restart, seed});
          EXPECT_EQ(solutions.size(), 40U);
          EXPECT_EQ(std::set<std::string>(solutions.begin(), solutions.end()).size(), 40U);
          EXPECT_EQ(list({variable, value, restart, seed}), solutions);
          // A seed changes nothing but the order of equals, of which InputOrder knows none.
          if (seed != 0 && variable != VokTarnSearch::VariableChoice::Weighted) {
            EXPECT_EQ(list({variable, value, restart, 0}) == solutions,
                      variable == VokTarnSearch::VariableChoice::InputOrder);
          }
        }
      }
    }
  }
}

// Seven numbers among six values: with binary constraints no search sees that at once, so every one begins again.
TEST(Search, RestartsEndAndLoseNothing) {
  const LoadedModules modules;
  const auto build = [&](VokTarnNetwork& network, int values) {
    std::vector<VokTarnValueId> numbers;
    for (int i = 0; i < 7; ++i) {
      numbers.push_back(modules.Add(network, "enum int", "[1, " + std::to_string(values) + "]"));
      for (int j = 0; j < i; ++j) {
        modules.Post(network, "<>", {numbers[static_cast<unsigned>(i)], numbers[static_cast<unsigned>(j)]});
      }
    }
    return numbers;
  };
  for (const auto variable : sVariableChoices) {
    for (const auto value : sValueChoices) {
      VokTarnNetwork network;
      VokTarnSearch search(network, build(network, 6), std::nullopt,
                           {variable, value, VokTarnSearch::Restart::Luby, 0, ~std::uint64_t{0}, 1000000});
      EXPECT_EQ(search.Next(), Status::Exhausted);
      EXPECT_GT(search.GetStatistics().fRestarts, 3U);
    }
  }
  // With an objective a search begins again also after solutions.
  VokTarnNetwork network;
  const auto columns = BuildQueens(modules, network, 9);
  const VokTarnValueId sum =
      modules.Post(network, "+", {modules.Post(network, "*", {columns[0], columns[4]}, true), columns[8]}, true);
  VokLong best = 0;
  {
    VokTarnSearch all(network, columns);
    while (all.Next() == Status::Solution) {
      best = std::max(best, static_cast<const VokTarnInteger&>(network.GetValue(sum)).GetLowerBound());
    }
  }
  const VokTarnValueId bound = network.AddValue(modules.Type("int"));
  modules.Post(network, ">=", {sum, bound});
  VokTarnSearch search(
      network, columns, VokTarnSearch::Objective{sum, bound, VokTarnSearch::Sense::Maximize},
      {VokTarnSearch::VariableChoice::InputOrder, VokTarnSearch::ValueChoice::Min, VokTarnSearch::Restart::Luby, 3});
  while (search.Next() == Status::Solution) {
  }
  EXPECT_EQ(search.Next(), Status::Exhausted);
  EXPECT_EQ(search.GetBest(), best);
  EXPECT_GE(search.GetBound(), best);
  EXPECT_GT(search.GetStatistics().fSolutions, 1U);
  EXPECT_GT(search.GetStatistics().fRestarts, 0U);
}

TEST(Search, EveryMachineDrawsTheSameNumbers) {
  VokTarnRandom random(1234567);
  for (const std::uint64_t number : {6457827717110365317U, 3203168211198807973U, 9817491932198370423U}) {
    EXPECT_EQ(random.Next(), number);
  }
  VokTarnLubySequence sequence;
  for (const unsigned term : {1U, 1U, 2U, 1U, 1U, 2U, 4U, 1U, 1U, 2U, 1U, 1U, 2U, 4U, 8U, 1U}) {
    EXPECT_EQ(sequence.Next(), term);
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
