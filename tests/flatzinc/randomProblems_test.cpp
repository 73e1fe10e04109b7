#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <set>

#include "flatzinc/Builder.h"
#include "flatzinc/Checker.h"
#include "flatzinc/Parser.h"
#include "flatzinc/Solver.h"
#include "flatzinc/sets.h"
#include "framework/VokTarnSearch.h"
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
    {"tarn_maximum_arg", "Iif"},
    {"tarn_minimum_arg", "Iif"},
};

// Every assignment that the checker takes.
std::set<Values> Enumerate(const fzn::Model& model, const fzn::Checker& checker) {
  std::set<Values> solutions;
  std::vector<Values> domains;
  for (const fzn::Variable& variable : model.fVariables) {
    domains.emplace_back();
    for (const fzn::Range& range : variable.fDomain) {
      for (std::int64_t number = range.fLower; number <= range.fUpper; ++number) {
        domains.back().push_back(number);
      }
    }
  }
  Values values(domains.size());
  std::vector<std::size_t> places(domains.size());
  for (std::size_t at = 0; at < places.size();) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i] = domains[i][places[i]];
    }
    if (!checker.FindViolation(values)) {
      solutions.insert(values);
    }
    for (at = 0; at < places.size() && ++places[at] == domains[at].size(); ++at) {
      places[at] = 0;
    }
  }
  return solutions;
}

// Every solution that the search finds.
std::multiset<Values> Search(const fzn::Model& model, VokTarnNetwork& network, const fzn::Builder& builder) {
  std::vector<VokTarnValueId> ids;
  for (std::size_t i = 0; i < model.fVariables.size(); ++i) {
    ids.push_back(builder.GetValue(i));
  }
  std::multiset<Values> solutions;
  VokTarnSearch search(network, ids);
  VokTarnSearch::Status status = VokTarnSearch::Status::Solution;
  while ((status = search.Next()) == VokTarnSearch::Status::Solution) {
    Values values;
    for (const VokTarnValueId id : ids) {
      values.push_back(static_cast<const VokTarnInteger&>(network.GetValue(id)).GetLowerBound());
    }
    solutions.insert(values);
  }
  EXPECT_EQ(status, VokTarnSearch::Status::Exhausted);
  return solutions;
}

// Nothing where a number of the problem is too large for the network.
std::optional<std::multiset<Values>> Solve(const fzn::Model& model, const support::LoadedModules& modules) {
  fzn::ErrorList errors("problem");
  VokTarnNetwork network;
  fzn::Builder builder(modules.fManager, network, model, errors);
  if (!builder.Build()) {
    EXPECT_THAT(errors.GetText(), testing::HasSubstr("does not fit"));
    return std::nullopt;
  }
  return Search(model, network, builder);
}

// The solutions that the program finds for a solve item.
std::multiset<Values> SolveAs(std::string text, const std::string& goal, const fzn::Solver::Options& options,
                              const support::LoadedModules& modules) {
  const std::string satisfy = "solve satisfy;";
  text.replace(text.find(satisfy), satisfy.size(), goal);
  fzn::ErrorList errors("problem");
  const fzn::Model model = fzn::Parse(text, errors);
  VokTarnNetwork network;
  fzn::Builder builder(modules.fManager, network, model, errors);
  EXPECT_TRUE(builder.Build()) << errors.GetText();
  std::vector<std::string> unknown;
  const auto solver = fzn::MakeSolver(
      builder, options, [] { return false; }, unknown);
  std::multiset<Values> solutions;
  fzn::Solver::Status status = fzn::Solver::Status::Solution;
  while ((status = solver->Next()) == fzn::Solver::Status::Solution) {
    const std::span<const std::int64_t> values = solver->GetSolution();
    solutions.insert(Values(values.begin(), values.end()));
  }
  EXPECT_EQ(status, fzn::Solver::Status::Exhausted) << goal;
  EXPECT_TRUE(unknown.empty());
  return solutions;
}

// After the annotations, free and by several processes: the same solutions, the same optimum, which is the first
// variable's least or greatest value.
void CompareWaysOfSearch(unsigned seed, const std::string& text, const std::multiset<Values>& expected,
                         const support::LoadedModules& modules) {
  const char* const variables[] = {"input_order", "first_fail", "anti_first_fail",  "smallest", "largest",
                                   "occurrence",  "max_regret", "most_constrained", "dom_w_deg"};
  const char* const values[] = {
      "indomain_min",           "indomain_max",      "indomain_median", "indomain_middle",       "indomain_split",
      "indomain_reverse_split", "indomain_interval", "indomain_random", "indomain_split_random", "outdomain_min",
      "outdomain_max",          "outdomain_median",  "outdomain_random"};
  const std::string search = std::string("solve :: int_search([x0],") + variables[seed % std::size(variables)] + "," +
                             values[seed % std::size(values)] + ",complete) ";
  // Processes take their time to start.
  const bool isParallel = seed % 50 == 0;
  for (const auto& [isFree, processes] : {std::pair(false, 1U), {true, 1U}, {false, 3U}, {true, 2U}}) {
    if (processes > 1 && !isParallel) {
      continue;
    }
    fzn::Solver::Options options;
    options.fIsFree = isFree;
    options.fProcesses = processes;
    SCOPED_TRACE(search + (isFree ? "free, " : "") + std::to_string(processes));
    ASSERT_EQ(SolveAs(text, search + "satisfy;", options, modules), expected);
    const bool isLeast = seed % 2 == 0;
    const std::multiset<Values> better =
        SolveAs(text, search + (isLeast ? "minimize x0;" : "maximize x0;"), options, modules);
    ASSERT_EQ(better.empty(), expected.empty());
    if (!better.empty()) {
      ASSERT_EQ((isLeast ? *better.begin() : *better.rbegin())[0],
                (isLeast ? *expected.begin() : *expected.rbegin())[0]);
    }
  }
}

void CompareWithEnumeration(std::span<const RandomRow> rows, unsigned count) {
  const support::LoadedModules modules;
  for (unsigned seed = 1; seed <= count * static_cast<unsigned>(support::SoakFactor()); ++seed) {
    const RandomProblem problem(seed, rows, true);
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + problem.GetText());
    fzn::ErrorList errors("problem");
    const fzn::Model model = fzn::Parse(problem.GetText(), errors);
    const fzn::Checker checker(model, errors);
    ASSERT_TRUE(errors.IsEmpty()) << errors.GetText();
    const std::set<Values> expected = Enumerate(model, checker);
    if (const auto found = Solve(model, modules)) {
      ASSERT_EQ(*found, std::multiset<Values>(expected.begin(), expected.end()));
      CompareWaysOfSearch(seed, problem.GetText(), *found, modules);
    }
  }
}

TEST(RandomProblems, BuiltinsHaveTheSolutionsOfTheirMeaning) {
  CompareWithEnumeration(sBuiltins, 1000);
}

TEST(RandomProblems, OtherConstraintsHaveTheSolutionsOfTheirMeaning) {
  CompareWithEnumeration(sOthers, 1000);
}

// Another solver reads the same texts and finds as many solutions.
TEST(RandomProblems, BuiltinsHaveAsManySolutionsAsWithGecode) {
  const std::string peer = "/usr/bin/fzn-gecode";
  if (access(peer.c_str(), X_OK) != 0) {
    GTEST_SKIP() << "fzn-gecode is not installed";
  }
  const support::LoadedModules modules;
  for (unsigned seed = 1; seed <= 50 * static_cast<unsigned>(support::SoakFactor()); ++seed) {
    const RandomProblem problem(seed, sBuiltins, false);
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + problem.GetText());
    const TemporaryFile file(problem.GetText());
    fzn::ErrorList errors("problem");
    const auto found = Solve(fzn::Parse(problem.GetText(), errors), modules);
    const ProgramResult theirs = RunProgram(peer, {"-a", file.GetPath()});
    ASSERT_EQ(theirs.fExitCode, 0) << theirs.fErr;
    std::size_t theirCount = 0;
    for (std::size_t at = 0; (at = theirs.fOut.find("----------", at)) != std::string::npos; at += 10) {
      ++theirCount;
    }
    ASSERT_EQ(found.value().size(), theirCount) << theirs.fErr;
  }
}

}  // namespace
