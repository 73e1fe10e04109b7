#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <set>

#include "flatzinc/Builder.h"
#include "flatzinc/Checker.h"
#include "flatzinc/Parser.h"
#include "flatzinc/Solver.h"
#include "randomProblem.h"
#include "support/RunProgram.h"
#include "support/modules.h"
#include "support/soak.h"

namespace {

using Values = std::vector<std::int64_t>;

constexpr RandomRow sBuiltins[] = {
    {"int_eq", "ii"},
    {"int_ne", "ii"},
    {"int_le", "ii"},
    {"int_lt", "ii"},
    {"int_eq_reif", "iib"},
    {"int_ne_reif", "iib"},
    {"int_le_reif", "iib"},
    {"int_lt_reif", "iib"},
    {"int_lin_eq", "AIn"},
    {"int_lin_le", "AIn"},
    {"int_lin_ne", "AIn"},
    {"int_lin_eq_reif", "AInb"},
    {"int_lin_le_reif", "AInb"},
    {"int_lin_ne_reif", "AInb"},
    {"int_plus", "iii"},
    {"int_times", "iii"},
    {"int_div", "iii"},
    {"int_abs", "ii"},
    {"int_min", "iii"},
    {"int_max", "iii"},
    {"array_int_element", "iAi"},
    {"array_var_int_element", "iIi"},
    {"array_var_bool_element", "iBb"},
    {"set_in", "iS"},
    {"set_in_reif", "iSb"},
    {"bool2int", "bi"},
    {"bool_not", "bb"},
    {"bool_eq", "bb"},
    {"bool_eq_reif", "bbb"},
    {"bool_xor", "bbb"},
    {"bool_le", "bb"},
    {"bool_lt", "bb"},
    {"bool_le_reif", "bbb"},
    {"bool_lt_reif", "bbb"},
    {"bool_and", "bbb"},
    {"bool_or", "bbb"},
    {"bool_clause", "BB"},
    {"bool_clause_reif", "BBb"},
    {"array_bool_and", "Bb"},
    {"array_bool_or", "Bb"},
    {"array_bool_xor", "B"},
    {"bool_lin_eq", "ABi"},
    {"bool_lin_le", "ABn"},
};

// What the peer lacks or does otherwise (it lets x mod x be x), and what only the product's own library asks for.
constexpr RandomRow sOthers[] = {
    {"int_pow", "iii"},
    {"int_mod", "iii"},
    {"bool_xor", "bb"},
    {"array_int_maximum", "iI"},
    {"array_int_minimum", "iI"},
    {"int_pow_fixed", "ini"},
    {"array_bool_element", "iBb"},
    {"bool_eq_imp", "bbb"},
    {"int_eq_imp", "iib"},
    {"int_ne_imp", "iib"},
    {"int_le_imp", "iib"},
    {"int_lt_imp", "iib"},
    {"int_lin_eq_imp", "AInb"},
    {"int_lin_le_imp", "AInb"},
    {"int_lin_ne_imp", "AInb"},
    {"set_in_imp", "iSb"},
    {"bool_clause_imp", "BBb"},
    {"fzn_all_different_int", "I"},
    {"tarn_table_int", "IT"},
    {"fzn_count_eq", "Iii"},
    {"fzn_count_eq_reif", "Iiib"},
    {"tarn_global_cardinality", "ICKf"},
    {"tarn_global_cardinality_low_up", "ICLUf"},
    {"tarn_regular", "IR"},
    {"fzn_cumulative", "IDDi"},
    {"fzn_disjunctive", "ID"},
    {"fzn_disjunctive_strict", "ID"},
    {"fzn_diffn", "IIDD"},
    {"fzn_diffn_nonstrict", "IIDD"},
    {"fzn_lex_lesseq_bool", "BB"},
    {"tarn_circuit", "If"},
    {"tarn_subcircuit", "If"},
    {"tarn_inverse", "IfIf"},
    {"fzn_lex_less_int", "IJ"},
    {"fzn_lex_lesseq_int", "IJ"},
    {"fzn_lex_less_bool", "BB"},
    {"fzn_value_precede_int", "nnI"},
    {"fzn_bin_packing", "nIW"},
    {"tarn_bin_packing_load", "KfIW"},
    {"tarn_bin_packing_capa", "UfIW"},
    {"fzn_nvalue", "iI"},
    {"fzn_among", "iIS"},
    {"fzn_all_equal_int", "I"},
    {"fzn_member_int", "Ii"},
    {"fzn_sort", "II"},
    {"fzn_increasing_int", "I"},
    {"fzn_increasing_bool", "B"},
    {"fzn_decreasing_int", "I"},
    {"fzn_decreasing_bool", "B"},
    {"fzn_at_least_int", "nIn"},
    {"fzn_at_most_int", "nIn"},
    {"fzn_exactly_int", "nIn"},
    {"fzn_distribute", "IIJ"},
    {"fzn_member_int_reif", "Iib"},
    {"tarn_maximum_arg", "Iif"},
    {"tarn_minimum_arg", "Iif"},
};

// Every assignment of the candidates that the checker takes.
std::multiset<Values> Enumerate(const RandomProblem& problem, const fzn::Checker& checker) {
  std::multiset<Values> solutions;
  Values values(problem.fVariables.size());
  std::vector<std::size_t> places(values.size());
  std::size_t at = 0;
  do {
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i] = problem.fVariables[i].fCandidates[places[i]];
    }
    if (!checker.FindViolation(values)) {
      solutions.insert(values);
    }
    for (at = 0; at < places.size() && ++places[at] == problem.fVariables[at].fCandidates.size(); ++at) {
      places[at] = 0;
    }
  } while (at < places.size());
  return solutions;
}

bool Takes(const RandomProblem& problem, const Values& values) {
  try {
    fzn::ErrorList errors("problem");
    const fzn::Model model = fzn::Parse(problem.GetText(), errors);
    return !fzn::Checker(model, errors).FindViolation(values);
  } catch (const fzn::InputError&) {
    return true;
  }
}

std::string Show(const std::multiset<Values>& solutions) {
  std::string text = std::to_string(solutions.size()) + " solutions:";
  for (const Values& solution : solutions) {
    text += ' ' + testing::PrintToString(solution);
  }
  return text;
}

// What is wrong with the solutions in the order in which they were found.
std::string Compare(const fzn::Solve& solve, const std::vector<Values>& found, const std::multiset<Values>& expected) {
  if (solve.fGoal == fzn::Solve::Goal::Satisfy) {
    const std::multiset<Values> all(found.begin(), found.end());
    return all == expected ? "" : "found " + Show(all) + ", not " + Show(expected);
  }
  if (found.empty() != expected.empty()) {
    return "found " + std::to_string(found.size()) + " solutions, not " + Show(expected);
  }
  const auto cost = [&solve](const Values& values) {
    const std::int64_t v = solve.fObjective.fIsVariable ? values[static_cast<std::size_t>(solve.fObjective.fNumber)]
                                                        : solve.fObjective.fNumber;
    return solve.fGoal == fzn::Solve::Goal::Minimize ? v : -v;
  };
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (!expected.contains(found[i]) || (i > 0 && cost(found[i]) >= cost(found[i - 1]))) {
      return "found " + testing::PrintToString(found[i]) + ", no better solution than before";
    }
  }
  for (const Values& solution : expected) {
    if (cost(solution) < cost(found.back())) {
      return testing::PrintToString(solution) + " is better than the last, " + testing::PrintToString(found.back());
    }
  }
  return "";
}

// What many problems took together, with one process each.
struct Effort {
  unsigned fRefused = 0;
  std::uint64_t fValues = 0;
  std::uint64_t fConstraints = 0;
  std::uint64_t fNodes = 0;
  std::uint64_t fFilterings = 0;
};

// Compares what the program finds with plain enumeration: what is wrong, nothing when they agree. A number too large
// for the network is an answer too; how many of them there are counts.
std::string FindMistake(const RandomProblem& problem, const fzn::Solver::Options& options,
                        const support::LoadedModules& modules, Effort& effort) {
  fzn::ErrorList errors("problem");
  try {
    const fzn::Model model = fzn::Parse(problem.GetText(), errors);
    const fzn::Checker checker(model, errors);
    VokTarnNetwork network;
    fzn::Builder builder(modules.fManager, network, model, errors);
    if (!errors.IsEmpty() || !builder.Build()) {
      const std::string text = errors.GetText();
      ++effort.fRefused;
      const auto tells = [&text](const char* what) { return text.find(what) != std::string::npos; };
      // Arrays of two sizes are refused by the check of solutions, too; to it a reified statement of them is false.
      if (tells("same length") || tells("in size")) {
        return tells("_reif") || tells("_imp") || Enumerate(problem, checker).empty()
                   ? ""
                   : text + ", and there are solutions";
      }
      return tells("fit") || tells(" bits") || tells("does not take") ? "" : text;
    }
    std::vector<std::string> unknown;
    const auto solver = fzn::MakeSolver(
        builder, options, [] { return false; }, unknown);
    const std::multiset<Values> expected = Enumerate(problem, checker);
    std::vector<Values> found;
    fzn::Solver::Status status = fzn::Solver::Status::Solution;
    while (found.size() <= expected.size() && (status = solver->Next()) == fzn::Solver::Status::Solution) {
      const std::span<const std::int64_t> values = solver->GetSolution();
      found.emplace_back(values.begin(), values.end());
    }
    if (options.fProcesses == 1) {
      effort.fValues += network.GetValueCount();
      effort.fConstraints += network.GetConstraintCount();
      effort.fNodes += solver->GetStatistics().fNodes;
      effort.fFilterings += solver->GetStatistics().fPropagations;
    }
    return status == fzn::Solver::Status::Exhausted || found.size() > expected.size()
               ? Compare(model.fSolve, found, expected)
               : "the search was not completed";
  } catch (const fzn::InputError& error) {
    return error.what();
  } catch (const std::bad_alloc&) {
    return "out of memory";
  }
}

// Each problem as its annotations say, and with options drawn for it. All together they take no more effort than
// `most`.
void CompareWithEnumeration(std::span<const RandomRow> rows, unsigned count, const Effort& most) {
  const support::LoadedModules modules;
  Effort effort;
  Effort learned;
  const unsigned last = count * static_cast<unsigned>(support::SoakFactor());
  for (unsigned seed = 1; seed <= last && !testing::Test::HasFailure(); ++seed) {
    const RandomProblem problem = ProblemMaker(seed, rows, true, Takes).GetProblem();
    std::mt19937 random(seed);
    bool isDrawn = false;
    for (const bool isLearning : {false, false, true}) {
      fzn::Solver::Options options;
      options.fLearning = !isLearning     ? VokTarnSearch::Learning::Off
                          : seed % 3 == 0 ? VokTarnSearch::Learning::Auto
                                          : VokTarnSearch::Learning::On;
      options.fUntaught = 2;
      options.fVerifies = isLearning;
      if (isLearning || std::exchange(isDrawn, true)) {
        options.fIsFree = random() % 2 == 0;
        options.fSeed = random() % 3;
        // Processes take their time to start.
        options.fProcesses = random() % 40 == 0 ? 2 + static_cast<unsigned>(random() % 2) : 1;
        options.fRestart = random() % 4 == 0   ? std::optional(VokTarnSearch::Restart::Luby)
                           : random() % 3 == 0 ? std::optional(VokTarnSearch::Restart::None)
                                               : std::nullopt;
      }
      if (FindMistake(problem, options, modules, isLearning ? learned : effort).empty()) {
        continue;
      }
      const RandomProblem least = Shrink(problem, [&](const RandomProblem& smaller) {
        const std::string mistake = FindMistake(smaller, options, modules, effort);
        return !mistake.empty() && mistake.find("declared name") == std::string::npos;
      });
      ADD_FAILURE() << "seed " << seed << (options.fIsFree ? ", free" : "") << (isLearning ? ", learning" : "") << ", "
                    << options.fProcesses << " processes: " << FindMistake(least, options, modules, effort) << '\n'
                    << least.GetText();
    }
  }
  EXPECT_LT(effort.fRefused, last / 4);
  const auto isLess = [&](auto member) { return last > count || effort.*member <= most.*member; };
  EXPECT_TRUE(isLess(&Effort::fRefused) && isLess(&Effort::fValues) && isLess(&Effort::fConstraints) &&
              isLess(&Effort::fNodes) && isLess(&Effort::fFilterings))
      << effort.fRefused << ", " << effort.fValues << ", " << effort.fConstraints << ", " << effort.fNodes << ", "
      << effort.fFilterings;
}

TEST(RandomProblems, BuiltinsHaveTheSolutionsOfTheirMeaning) {
  CompareWithEnumeration(sBuiltins, 3000, {24, 21282, 4326, 50808, 12790});
}

TEST(RandomProblems, OtherConstraintsHaveTheSolutionsOfTheirMeaning) {
  CompareWithEnumeration(sOthers, 4500, {356, 51434, 25987, 108638, 113661});
}

// A problem that fails is told without what does not matter.
TEST(RandomProblems, AreMadeSmaller) {
  const RandomProblem least =
      Shrink(ProblemMaker(5, sBuiltins, true, Takes).GetProblem(),
             [](const RandomProblem& problem) { return problem.GetText().find(": x0:") != std::string::npos; });
  EXPECT_EQ(least.fVariables.size() + least.fConstraints.size() + least.fAnnotations.size(), 1U) << least.GetText();
}

// Another solver reads the same texts and finds as many solutions.
TEST(RandomProblems, BuiltinsHaveAsManySolutionsAsWithGecode) {
  const std::string peer = "/usr/bin/fzn-gecode";
  if (access(peer.c_str(), X_OK) != 0) {
    GTEST_SKIP() << "fzn-gecode is not installed";
  }
  for (unsigned seed = 1; seed <= 50 * static_cast<unsigned>(support::SoakFactor()); ++seed) {
    RandomProblem problem = ProblemMaker(seed, sBuiltins, false, Takes).GetProblem();
    problem.fAnnotations.clear();
    problem.fGoal = "satisfy";
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + problem.GetText());
    const TemporaryFile file(problem.GetText());
    fzn::ErrorList errors("problem");
    const fzn::Model model = fzn::Parse(problem.GetText(), errors);
    const ProgramResult theirs = RunProgram(peer, {"-a", file.GetPath()});
    ASSERT_EQ(theirs.fExitCode, 0) << theirs.fErr;
    std::size_t theirCount = 0;
    for (std::size_t at = 0; (at = theirs.fOut.find("----------", at)) != std::string::npos; at += 10) {
      ++theirCount;
    }
    ASSERT_EQ(Enumerate(problem, fzn::Checker(model, errors)).size(), theirCount) << theirs.fErr;
  }
}

}  // namespace
