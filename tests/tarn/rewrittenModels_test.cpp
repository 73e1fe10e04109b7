// Models that say the same in other words have the same solutions.
#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "support/soak.h"
#include "tarn/solving.h"

namespace {

const auto sSoak = static_cast<unsigned>(support::SoakFactor());

// A model by its lines; see RandomModel.
struct Lines {
  std::vector<std::string> fDeclarations;
  std::vector<std::string> fStatements;

  std::string Join() const {
    std::string text;
    for (const auto& lines : {fDeclarations, fStatements}) {
      for (const std::string& line : lines) {
        text += line + "\n";
      }
    }
    return text;
  }
};

Lines Split(const RandomModel& model) {
  std::istringstream text(model.GetText());
  Lines lines;
  for (std::string line; std::getline(text, line);) {
    (lines.fDeclarations.size() < model.GetVariableCount() ? lines.fDeclarations : lines.fStatements).push_back(line);
  }
  return lines;
}

// A statement as `left op right`; without `op` when it is none.
struct Relation {
  std::string fLeft, fOp, fRight;
};

Relation FindRelation(const std::string& statement) {
  int depth = 0;
  for (std::size_t i = 0; i < statement.size(); ++i) {
    const char c = statement[i];
    depth += (c == '(' || c == '[') - (c == ')' || c == ']');
    for (const char* op : {" = ", " <> ", " < ", " <= ", " > ", " >= "}) {
      if (depth == 0 && statement.compare(i, std::string(op).size(), op) == 0) {
        const std::string right = statement.substr(i + std::string(op).size());
        return {statement.substr(0, i), op, right.substr(0, right.size() - 1)};
      }
    }
  }
  return {};
}

using Random = std::mt19937;

void Permute(Lines& lines, Random& random) {
  std::ranges::shuffle(lines.fDeclarations, random);
  std::ranges::shuffle(lines.fStatements, random);
}

void SayTwice(Lines& lines, Random& random) {
  lines.fStatements.push_back(lines.fStatements[random() % lines.fStatements.size()]);
}

void AddWhatFollows(Lines& lines, Random& random) {
  for (const std::string& statement : std::vector(lines.fStatements)) {
    const auto [left, op, right] = FindRelation(statement);
    const bool isLess = op == " < " || op == " <= " || (op == " = " && random() % 2 == 0);
    if (!op.empty() && op != " <> ") {
      lines.fStatements.push_back(left + (isLess ? " <= " : " >= ") + right + ";");
    }
    if (op == " < " || op == " > ") {
      lines.fStatements.push_back(left + " <> " + right + ";");
    }
  }
}

void PassToTheNext(Lines& lines, Random& /*random*/) {
  for (std::string& statement : lines.fStatements) {
    const auto [left, op, right] = FindRelation(statement);
    if (op == " < ") {
      statement = "next (" + left + ") <= " + right + ";";
    } else if (op == " > ") {
      statement = left + " >= next (" + right + ");";
    }
  }
}

class RewrittenModels : public testing::Test {
 protected:
  RewrittenModels() { fModules.Open(tarn::Modules::sDefault); }

  // In ascending order, the values of each by the names of the variables: a, b, c, d.
  std::vector<Assignment> Find(const std::string& text, const VokTarnSearch::Options& options = {}) {
    tarn::Session session(fModules);
    Read(session, tarn::Source("model", text));
    std::vector<Assignment> solutions = Solve(session, options);
    for (Assignment& solution : solutions) {
      const Assignment found = solution;
      for (std::size_t i = 0; i < found.size(); ++i) {
        solution[static_cast<std::size_t>(session.GetModel().GetVariables()[i].fName[0] - 'a')] = found[i];
      }
    }
    std::ranges::sort(solutions);
    return solutions;
  }

  tarn::Modules fModules;
};

TEST_F(RewrittenModels, HaveTheSameSolutions) {
  constexpr std::pair<const char*, void (*)(Lines&, Random&)> sRewritings[] = {
      {"permuted", Permute}, {"said twice", SayTwice}, {"with what follows", AddWhatFollows}, {"next", PassToTheNext}};
  for (unsigned seed = 10001; seed <= 10000 + 600 * sSoak && !HasFailure(); ++seed) {
    const Lines lines = Split(RandomModel(seed));
    const std::vector<Assignment> solutions = Find(lines.Join());
    Random random(seed);
    for (const auto& [name, rewrite] : sRewritings) {
      Lines rewritten = lines;
      rewrite(rewritten, random);
      EXPECT_EQ(Find(rewritten.Join()), solutions) << "seed " << seed << ", " << name << "\n" << rewritten.Join();
    }
    if (!solutions.empty()) {
      Lines fixed = lines;
      const Assignment& solution = solutions[random() % solutions.size()];
      for (std::size_t i = 0; i < solution.size(); ++i) {
        std::string& line = fixed.fDeclarations[i];
        line = line.substr(0, line.find_first_of("{[;")) + " " + std::to_string(solution[i]) + ";";
      }
      EXPECT_EQ(Find(fixed.Join()), (std::vector<Assignment>{solution})) << "seed " << seed << ", fixed\n"
                                                                         << fixed.Join();
    }
  }
}

// Linear statements over domains that all lie `shift` higher; the seed decides the rest.
std::string MakeLinearModel(unsigned seed, int shift) {
  Random random(seed);
  const auto pick = [&random](int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); };
  const int variables = pick(2, 4);
  const auto anyName = [&] { return std::string(1, static_cast<char>('a' + pick(0, variables - 1))); };
  std::string text;
  for (int i = 0; i < variables; ++i) {
    std::string list;
    for (int v = -4; v <= 5; ++v) {
      list += pick(0, 1) == 0 ? (list.empty() ? "{" : ", ") + std::to_string(v + shift) : "";
    }
    text += std::string(1, static_cast<char>('a' + i)) + " : enum int " + (list.empty() ? "Nil" : list + "}") + ";\n";
  }
  for (int i = pick(1, 4); i > 0; --i) {
    int sum = 0;
    std::string terms;
    for (int j = pick(1, 10); j > 0; --j) {
      const int factor = pick(-3, 3);
      sum += factor;
      terms += (terms.empty() ? "" : " + ") + ("(" + std::to_string(factor) + ") * ") + anyName();
    }
    const char* const ops[] = {" = ", " <> ", " <= ", " > "};
    text += terms + ops[pick(0, 3)] + std::to_string(pick(-9, 9) + sum * shift) + ";\n";
  }
  return pick(0, 2) == 0 ? text + "all different (a, b, " + anyName() + " + 1);\n" : text;
}

TEST_F(RewrittenModels, HaveShiftedSolutionsWhereDomainsAreShifted) {
  for (unsigned seed = 1; seed <= 300 * sSoak && !HasFailure(); ++seed) {
    const std::vector<Assignment> solutions = Find(MakeLinearModel(seed, 0));
    for (const int shift : {1, -7, 1000, -50'000'000}) {
      std::vector<Assignment> shifted = solutions;
      for (Assignment& solution : shifted) {
        std::ranges::for_each(solution, [shift](int& v) { v += shift; });
      }
      EXPECT_EQ(Find(MakeLinearModel(seed, shift)), shifted) << "seed " << seed << MakeLinearModel(seed, shift);
    }
  }
}

TEST_F(RewrittenModels, HaveTheSameSolutionsAndOptimumForEverySearch) {
  for (unsigned seed = 20001; seed <= 20000 + 25 * sSoak && !HasFailure(); ++seed) {
    RandomModel model(seed);
    const RandomExpression objective = model.MakeObjective();
    const std::vector<Assignment> solutions = Find(model.GetText());
    std::optional<Value> optimum;
    for (unsigned i = 0; i < 128; ++i) {
      VokTarnSearch::Options options;
      options.fVariable = static_cast<VokTarnSearch::VariableChoice>(i % 4);
      options.fValue = static_cast<VokTarnSearch::ValueChoice>(i / 4 % 4);
      options.fRestart = static_cast<VokTarnSearch::Restart>(i / 16 % 2);
      options.fSeed = i / 32;
      EXPECT_EQ(Find(model.GetText(), options), solutions) << "seed " << seed << ", options " << i;
      tarn::Session session(fModules);
      Read(session, tarn::Source("model", model.GetText() + "minimize " + objective.fText + ";"));
      const std::vector<Assignment> better = Solve(session, options);
      const Value best = better.empty() ? Value() : objective.fValue(better.back());
      EXPECT_EQ(best, optimum.value_or(best)) << "seed " << seed << ", options " << i;
      optimum = best;
    }
  }
}

}  // namespace
