#include "tarn/randomModels.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/soak.h"
#include "tarn/solving.h"

namespace {

// Searches with options that the seed chooses among all combinations.
std::vector<Assignment> SolveAsSeeded(tarn::Modules& modules, const std::string& text, unsigned seed) {
  tarn::Session session(modules);
  Read(session, tarn::Source("model", text));
  VokTarnSearch::Options options;
  options.fVariable = static_cast<VokTarnSearch::VariableChoice>(seed % 4);
  options.fValue = static_cast<VokTarnSearch::ValueChoice>(seed / 4 % 4);
  options.fRestart = static_cast<VokTarnSearch::Restart>(seed / 16 % 2);
  options.fSeed = seed / 32 % 3;
  return Solve(session, options);
}

const unsigned sModels = 3000 * static_cast<unsigned>(support::SoakFactor());

class RandomModels : public testing::Test {
 protected:
  RandomModels() { fModules.Open(tarn::Modules::sDefault); }

  tarn::Modules fModules;
};

TEST_F(RandomModels, HaveTheSolutionsOfPlainEnumeration) {
  for (unsigned seed = 1; seed <= sModels && !HasFailure(); ++seed) {
    const RandomModel model(seed);
    std::vector<Assignment> solutions = SolveAsSeeded(fModules, model.GetText(), seed);
    std::ranges::sort(solutions);
    EXPECT_EQ(solutions, model.Enumerate()) << "seed " << seed << "\n" << model.GetText();
  }
}

TEST_F(RandomModels, HaveTheSameSolutionsInTheSameOrderWhenSavedAndRestored) {
  for (unsigned seed = 1; seed <= sModels / 4 && !HasFailure(); ++seed) {
    RandomModel model(seed);
    const std::string text = model.GetText() + (seed % 3 == 0 ? "minimize " + model.MakeObjective().fText + ";" : "");
    tarn::Session session(fModules);
    Read(session, tarn::Source("model", text));
    session.GetNetwork().Propagate();
    std::ostringstream bytes;
    std::string error;
    EXPECT_TRUE(VokTarnNetworkFile::Write(bytes, session.GetNetwork(), session.GetContents(), error)) << error;
    tarn::Session restored(fModules);
    Read(restored, tarn::Source("saved", bytes.str()));
    EXPECT_EQ(Solve(restored), Solve(session)) << "seed " << seed << "\n" << text;
  }
}

TEST_F(RandomModels, HaveTheOptimumOfPlainEnumeration) {
  for (unsigned seed = sModels + 1; seed <= 2 * sModels && !HasFailure(); ++seed) {
    RandomModel model(seed);
    const RandomExpression objective = model.MakeObjective();
    const bool isMinimum = seed % 2 == 0;
    const std::string text = model.GetText() + (isMinimum ? "minimize " : "maximize ") + objective.fText + ";\n";
    Value best;
    for (const Assignment& solution : model.Enumerate()) {
      const Value value = objective.fValue(solution);
      if (value && (!best || (isMinimum ? *value < *best : *value > *best))) {
        best = value;
      }
    }
    const std::vector<Assignment> solutions = SolveAsSeeded(fModules, text, seed);
    EXPECT_EQ(solutions.empty() ? Value() : objective.fValue(solutions.back()), best) << "seed " << seed << "\n"
                                                                                      << text;
  }
}

}  // namespace
