#include <gtest/gtest.h>

#include <random>

#include "framework/VokTarnNoGoods.h"
#include "framework/VokTarnSearch.h"
#include "support/modules.h"

namespace {

using support::LoadedModules;
using Relation = VokTarnAtom::Relation;
using Status = VokTarnSearch::Status;

// x = 2 and y <= 3 stood when z = 1 was refuted, and before that y <= 3 when only x = 2 stood.
TEST(NoGoods, LeaveTheLastPartOnceTheOthersAreReached) {
  const LoadedModules modules;
  const struct {
    const char* fType;
    std::vector<VokTarnAtom> fChoices;
    std::string fValues;
    bool fNarrows;
  } rows[] = {
      {"enum int", {{0, Relation::Equal, 2}, {1, Relation::AtMost, 2}}, "2 { 0, 1, 2 } { 0, 2, 3, 4, 5 }", true},
      {"enum int", {{2, Relation::Equal, 1}, {1, Relation::AtMost, 3}}, "{ 0, 1, 3, 4, 5 } { 0, 1, 2, 3 } 1", true},
      {"enum int", {{2, Relation::Equal, 1}, {0, Relation::Equal, 2}}, "2 { 4, 5 } 1", true},
      {"enum int",
       {{2, Relation::Unequal, 1}, {0, Relation::Equal, 2}},
       "2 { 0, 1, 2, 3, 4, 5 } { 0, 2, 3, 4, 5 }",
       false},
      {"enum int", {{1, Relation::AtLeast, 4}, {2, Relation::Equal, 1}}, "{ 0, 1, 2, 3, 4, 5 } { 4, 5 } 1", false},
      // An interval holds what lies inside.
      {"interval int", {{0, Relation::Equal, 2}, {1, Relation::AtMost, 2}}, "2 [0, 2] [0, 5]", false},
      {"interval int", {{2, Relation::Equal, 1}, {0, Relation::Equal, 2}}, "2 [4, 5] 1", true},
  };
  for (const auto& row : rows) {
    VokTarnNetwork network;
    std::vector<VokTarnValueId> ids;
    for (int i = 0; i < 3; ++i) {
      ids.push_back(modules.Add(network, row.fType, "[0, 5]"));
    }
    VokTarnNoGoods noGoods(network);
    noGoods.NoteRefuted(3, {1, Relation::Equal, 0});  // of a branch that was left
    noGoods.NoteRefuted(2, {2, Relation::Equal, 1});
    noGoods.Learn(std::vector<VokTarnAtom>{{0, Relation::Equal, 2}, {1, Relation::AtMost, 3}});
    std::vector<VokTarnValueId> changed;
    network.SetChangeLog(&changed);
    for (const bool again : {false, true}) {
      network.PushLevel();
      bool hasNarrowed = false;
      for (const VokTarnAtom& choice : row.fChoices) {
        network.Keep(choice);
        network.ClearChangeLog();
        network.Propagate();
        hasNarrowed = hasNarrowed || !changed.empty();
      }
      if (again) {
        EXPECT_EQ(hasNarrowed, row.fNarrows) << row.fType << row.fValues;
        EXPECT_EQ(support::Show(network.GetValue(0)) + ' ' + support::Show(network.GetValue(1)) + ' ' +
                      support::Show(network.GetValue(2)),
                  row.fValues);
      }
      network.PopLevel();
    }
    network.SetChangeLog(nullptr);
  }
}

TEST(NoGoods, FailWhenNothingIsLeft) {
  const LoadedModules modules;
  VokTarnNetwork network;
  const VokTarnValueId x = modules.Add(network, "enum int", "[0, 2]");
  const VokTarnValueId y = modules.Add(network, "enum int", "[0, 2]");
  VokTarnNoGoods noGoods(network);
  noGoods.NoteRefuted(1, {y, Relation::Equal, 1});
  noGoods.Learn(std::vector<VokTarnAtom>{{x, Relation::AtMost, 1}});
  network.Keep({x, Relation::AtMost, 0});
  network.Keep({y, Relation::Equal, 1});
  EXPECT_EQ(network.Propagate(), VokTarnNetwork::Outcome::Failed);
}

// Random problems that a search begins again in: the best objective is that of a search which learns nothing.
TEST(NoGoods, LoseNoSolution) {
  const LoadedModules modules;
  std::mt19937 random(20);
  const auto draw = [&random](std::size_t count) { return random() % count; };
  std::uint64_t restarts = 0;
  for (int problem = 0; problem < 60; ++problem) {
    VokTarnNetwork network;
    std::vector<VokTarnValueId> ids;
    for (int i = 0; i < 8; ++i) {
      ids.push_back(modules.Add(network, draw(4) == 0 ? "interval int" : "enum int", "[0, 6]"));
    }
    const auto any = [&] { return ids[draw(ids.size())]; };
    VokTarnValueId objective = ids[0];
    for (unsigned i = 1; i < ids.size(); ++i) {
      const VokTarnValueId offset = modules.Add(network, "enum int", std::to_string(draw(4)));
      modules.Post(network, "<>", {ids[i], modules.Post(network, "+", {ids[draw(i)], offset}, true)});
      objective = modules.Post(network, "+", {objective, ids[i]}, true);
    }
    for (int i = 0; i < 26; ++i) {
      modules.Post(network, "<>", {modules.Post(network, draw(2) == 0 ? "+" : "*", {any(), any()}, true), any()});
    }
    const auto sense = draw(2) == 0 ? VokTarnSearch::Sense::Minimize : VokTarnSearch::Sense::Maximize;
    const auto optimize = [&](const VokTarnSearch::Options& options) {
      VokTarnSearch search(network, ids, VokTarnSearch::Objective{objective, vokNoValue, sense}, options);
      while (search.Next() == Status::Solution) {
      }
      EXPECT_EQ(search.Next(), Status::Exhausted);
      restarts += search.GetStatistics().fRestarts;
      return search.GetBest();
    };
    const auto best = optimize({});
    for (const std::uint64_t seed : {1U, 2U, 3U}) {
      VokTarnSearch::Options options{VokTarnSearch::VariableChoice::Weighted, VokTarnSearch::ValueChoice::Min,
                                     VokTarnSearch::Restart::Luby, seed};
      options.fLearns = true;
      EXPECT_EQ(optimize(options), best) << problem;
    }
  }
  EXPECT_GT(restarts, 90U);
}

}  // namespace
