#include <gtest/gtest.h>

#include <random>
#include <set>

#include "framework/VokTarnSearch.h"
#include "support/modules.h"

namespace {

using support::LoadedModules;
using Relation = VokTarnAtom::Relation;
using Status = VokTarnSearch::Status;

// Not x = 2, y <= 3 and z = 1 together.
TEST(Clauses, MakeTheLastAtomTrueOnceTheOthersAreFalse) {
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
    network.GetClauses().Add(
        std::vector<VokTarnAtom>{{2, Relation::Unequal, 1}, {1, Relation::AtLeast, 4}, {0, Relation::Unequal, 2}}, 1);
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

// What is forgotten is not what a change needs as its cause, and the rest still narrows.
TEST(Clauses, KeepWhatIsInUse) {
  const LoadedModules modules;
  VokTarnNetwork network;
  std::vector<VokTarnValueId> ids;
  for (int i = 0; i < 20; ++i) {
    ids.push_back(modules.Add(network, "enum int", "[0, 9]"));
  }
  network.PushLevel();
  network.BeginHistory();
  VokTarnClauses& clauses = network.GetClauses();
  for (VokLong i = 0; i < 10; ++i) {  // of ever greater span: x(2i) <> 5 or x(2i + 1) = i
    const auto x = static_cast<VokTarnValueId>(2 * i);
    clauses.Add(std::vector<VokTarnAtom>{{x, Relation::Unequal, 5}, {x + 1, Relation::Equal, i}},
                static_cast<std::uint32_t>(3 + i));
  }
  network.PushLevel();
  network.Keep({ids[18], Relation::Equal, 5});
  ASSERT_EQ(network.Propagate(), VokTarnNetwork::Outcome::Fixpoint);
  EXPECT_EQ(clauses.Reduce(), 4U);
  const VokTarnCause cause = network.GetHistory()->Get(network.GetHistory()->GetSize() - 1).fCause;
  ASSERT_EQ(cause.fKind, VokTarnCause::Kind::Clause);
  EXPECT_EQ(clauses.GetAtoms(cause.fIndex)[1].fValue, ids[19]);
  for (VokTarnValueId id = 0; id < 18; id += 2) {
    network.Keep({ids[id], Relation::Equal, 5});
  }
  network.Propagate();
  for (VokTarnValueId i = 0; i < 10; ++i) {
    EXPECT_EQ(network.GetCardinality(ids[2 * i + 1]) == 1, i < 5 || i == 9) << i;
  }
  network.PopLevel();
  network.PopLevel();
  network.EndHistory();
}

// Random problems, with a solution or without: a search that learns finds the same solutions, or the same best one, as
// one that does not, and each of its reasons is checked.
class RandomProblem {
 public:
  RandomProblem(const LoadedModules& modules, unsigned seed) : fRandom(seed), fModules(modules) {
    for (int i = 0; i < 7; ++i) {
      const char* const kDomains[] = {"[0, 5]", "[0, 6]", "{ 0, 1, 3, 6 }", "{ 1, 2, 200, 201 }", "[3, 8]"};
      const bool isInterval = Draw(4) == 0;
      fIds.push_back(
          modules.Add(fNetwork, isInterval ? "interval int" : "enum int", kDomains[isInterval ? 0 : Draw(5)]));
    }
    fObjective = fIds[0];
    for (std::size_t i = 1; i < fIds.size(); ++i) {
      const VokTarnValueId offset = modules.Add(fNetwork, "enum int", std::to_string(Draw(4)));
      modules.Post(fNetwork, "<>", {fIds[i], modules.Post(fNetwork, "+", {fIds[Draw(i)], offset}, true)});
      fObjective = modules.Post(fNetwork, "+", {fObjective, fIds[i]}, true);
    }
    const std::size_t count = 8 + Draw(14);
    for (std::size_t i = 0; i < count; ++i) {
      const char* const kOperators[] = {"+", "*", "-"};
      const char* const kRelations[] = {"<>", "<>", "<>", "<=", "<"};
      const VokTarnValueId result = modules.Post(fNetwork, kOperators[Draw(3)], {Any(), Any()}, true);
      modules.Post(fNetwork, kRelations[Draw(i < 3 ? 5 : 3)], {result, Any()});
    }
    fSense = Draw(2) == 0 ? VokTarnSearch::Sense::Minimize : VokTarnSearch::Sense::Maximize;
  }

  std::size_t Draw(std::size_t count) { return fRandom() % count; }

  std::set<std::vector<VokLong>> FindAll(const VokTarnSearch::Options& options) {
    std::set<std::vector<VokLong>> found;
    VokTarnSearch search(fNetwork, fIds, std::nullopt, options);
    while (search.Next() == Status::Solution) {
      std::vector<VokLong> values;
      for (const VokTarnValueId id : fIds) {
        values.push_back(fNetwork.GetLower(id));
      }
      EXPECT_TRUE(found.insert(values).second) << "found twice";
    }
    EXPECT_EQ(search.Next(), Status::Exhausted);
    Note(search);
    return found;
  }

  std::optional<VokLong> FindBest(const VokTarnSearch::Options& options) {
    VokTarnSearch search(fNetwork, fIds, VokTarnSearch::Objective{fObjective, vokNoValue, fSense}, options);
    while (search.Next() == Status::Solution) {
    }
    EXPECT_EQ(search.Next(), Status::Exhausted);
    Note(search);
    return search.GetBest();
  }

  VokTarnSearch::Statistics fTotal;

 private:
  VokTarnValueId Any() { return fIds[Draw(fIds.size())]; }
  void Note(const VokTarnSearch& search) {
    const VokTarnSearch::Statistics now = search.GetStatistics();
    fTotal.fLearned += now.fLearned;
    fTotal.fFailures += now.fFailures;
    fTotal.fRestarts += now.fRestarts;
    fTotal.fReasons.fByChoices += now.fReasons.fByChoices;
    fTotal.fReasons.fByReplay += now.fReasons.fByReplay;
  }

  std::mt19937 fRandom;
  const LoadedModules& fModules;
  VokTarnNetwork fNetwork;
  std::vector<VokTarnValueId> fIds;
  VokTarnValueId fObjective = vokNoValue;
  VokTarnSearch::Sense fSense = VokTarnSearch::Sense::Minimize;
};

TEST(Learning, LosesNoSolutionAndFindsNoneTwice) {
  const LoadedModules modules;
  std::uint64_t learned = 0;
  std::uint64_t replayed = 0;
  std::uint64_t byChoices = 0;
  for (unsigned seed = 0; seed < 20; ++seed) {
    RandomProblem problem(modules, seed);
    const auto solutions = problem.FindAll({});
    const auto best = problem.FindBest({});
    problem.fTotal = {};
    for (unsigned i = 0; i < 3; ++i) {
      VokTarnSearch::Options options;
      options.fVariable = static_cast<VokTarnSearch::VariableChoice>(problem.Draw(10));
      options.fValue = static_cast<VokTarnSearch::ValueChoice>(problem.Draw(15));
      options.fRestart = problem.Draw(2) == 0 ? VokTarnSearch::Restart::Luby : VokTarnSearch::Restart::None;
      options.fSeed = problem.Draw(3);
      options.fRemembers = problem.Draw(2) == 0;
      options.fLearning = problem.Draw(3) == 0 ? VokTarnSearch::Learning::Auto : VokTarnSearch::Learning::On;
      options.fUntaught = 10;
      options.fVerifies = true;
      EXPECT_EQ(problem.FindAll(options), solutions) << seed << ' ' << i;
      EXPECT_EQ(problem.FindBest(options), best) << seed << ' ' << i;
    }
    learned += problem.fTotal.fLearned;
    replayed += problem.fTotal.fReasons.fByReplay;
    byChoices += problem.fTotal.fReasons.fByChoices;
  }
  EXPECT_GT(learned, 400U);
  EXPECT_LT(10 * byChoices, replayed);
}

}  // namespace
