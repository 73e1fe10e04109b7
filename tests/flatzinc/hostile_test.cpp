#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "flatzinc/Builder.h"
#include "flatzinc/Checker.h"
#include "flatzinc/Parser.h"
#include "flatzinc/Solver.h"
#include "flatzinc/solutionText.h"
#include "support/modules.h"
#include "support/mutate.h"
#include "support/soak.h"

namespace {

// "found" or "none", or the message. Ends soon, and a solution satisfies the problem.
std::string Answer(const support::LoadedModules& modules, const std::string& text,
                   const fzn::Solver::Options& options) {
  fzn::ErrorList errors("f");
  try {
    const fzn::Model model = fzn::Parse(text, errors);
    const fzn::Checker checker(model, errors);
    VokTarnNetwork network;
    fzn::Builder builder(modules.fManager, network, model, errors);
    if (!errors.IsEmpty() || !builder.Build()) {
      return errors.GetText();
    }
    std::vector<std::string> unknown;
    const auto solver = fzn::MakeSolver(
        builder, options, [steps = 2000]() mutable { return --steps < 0; }, unknown);
    if (solver->Next() != fzn::Solver::Status::Solution) {
      return "none";
    }
    EXPECT_EQ(checker.FindViolation(solver->GetSolution()), std::nullopt) << text;
    return "found " + fzn::FormatSolution(model, solver->GetSolution());
  } catch (const fzn::InputError& error) {
    return error.what();
  } catch (const fzn::PostingError& error) {
    return std::string("f:0: ") + error.what();
  }
}

TEST(Hostile, EveryTextHasOneAnswer) {
  const support::LoadedModules modules;
  const std::string x = "var 0..5: x :: output_var;\nvar 0..3: y;\n";
  const std::string end = "\nsolve satisfy;";
  const struct {
    std::string fText;
    std::string fAnswer;  // how it begins
  } rows[] = {
      {"", "f:1: expected a declaration, a constraint or the solve item, not the end of the file"},
      {"\xEF\xBB\xBFsolve satisfy;", "f:1: expected a name, a number, a string or a symbol"},
      {std::string("var 1..2: x;\0solve satisfy;", 27), "f:1: expected a name, a number, a string or a symbol"},
      {"var 1..2: x;\r\nsolve\r\nsatisfy;\r\n", "found"},
      {"var 1..2: " + std::string(1000000, 'n') + ":: output_var;" + end, "found nnn"},
      {std::string(1000000, '(') + end, "f:1: expected"},
      {"solve :: " + std::string(100000, 'a') + " :: b" + std::string(100000, '(') + " satisfy;", "f:1: expected"},
      {"solve :: s([" + std::string(100000, '[') + " satisfy;", "f:1: expected annotations of at most 100 levels"},
      {"var 1..9223372036854775808: x;" + end, "f:1: expected an integer of 64 bits"},
      {"var -9223372036854775808..9223372036854775807: x :: output_var;" + end, "found x = -2147483644;"},
      {"var 3000000000..9223372036854775807: x;" + end, "f:1: variable x has bounds that do not fit"},
      {"array [1..9223372036854775807] of int: a = [];" + end, "f:1: expected 0 members"},
      {"array [1..2] of set of int: s :: output_array([1..2]) = [1..3,{1,5}];" + end,
       "found s = array1d(1..2, [1..3,{1,5}]);"},
      {"array [1..0] of var set of 1..3: s :: output_array([1..0]) = [];" + end, "found s = array1d(1..0, []);"},
      {"var set of 1..3: s;\narray [1..1] of var set of 1..3: t = [s];" + end,
       "f:1: set variables are not supported\nf:2: set variables are not supported"},
      {x + "var 0..5: x;" + end, "f:3: 'x' is declared already"},
      {x + "constraint int_le(x,z);" + end, "f:3: expected a declared name, not 'z'"},
      {x + "constraint int_le(x,y", "f:3: expected ')', not the end of the file"},
      {x + "constraint bool_clause([x],[y]);" + end,
       "f:3: expected an array of truth values as argument 1 of bool_clause"},
      {x + "constraint int_eq_reif(x,y,x);" + end, "f:3: expected a truth value as argument 3 of int_eq_reif"},
      {x + "constraint tarn_regular([x],2000000000,1,[1,2],1,1..2000000000);" + end, "f:3: tarn_regular: argument 4"},
      {x + "constraint tarn_regular([x],2,1,[2,2],1,-2000000000..2000000000);" + end, "found x = 1;"},
      {x + "constraint int_lin_eq([2,-2],[x,y],0);" + end, "found x = 0;"},
      {x + "constraint int_lin_ne([1,-1],[x,y],-9223372036854775808);" + end, "found"},
      {x + "constraint int_lin_ne([-1,1],[x,y],-9223372036854775808);" + end, "found"},
      {x + "constraint int_lin_eq([-9223372036854775808,-9223372036854775808],[x,y],0);" + end, "found x = 0;"},
      // A variable with one value among the coefficients of a variable whose bounds are to be found.
      {x + "var 2..2: two;\nvar int: z :: output_var;\nconstraint int_lin_eq([two,1],[z,3],9);" + end,
       "found x = 0;\nz = 3;"},
      {"solve minimize 9223372036854775807;", "f:0: the number 9223372036854775807 does not fit"},
  };
  for (const auto& row : rows) {
    EXPECT_THAT(Answer(modules, row.fText, {}), testing::StartsWith(row.fAnswer)) << row.fText.substr(0, 200);
  }
}

// What is left of a text, and damaged texts, are answered too.
TEST(Hostile, DamagedTextsAreAnswered) {
  const support::LoadedModules modules;
  const std::vector<std::string> seeds = {
      "var 0..3: x :: output_var;\nvar {-1,2}: y;\nvar bool: p;\nconstraint int_le_reif(x,y,p);\n"
      "constraint int_lin_eq([1,-2],[x,y],-1);\nsolve :: int_search([x,y],first_fail,indomain_min,complete) satisfy;\n",
      "array [1..2] of int: a = [2,1];\nvar int: z;\nvar 1..2: i;\nvar 0..9: k :: output_var;\n"
      "constraint array_int_element(i,a,z);\nconstraint int_times(z,i,k);\nsolve maximize k;\n",
      "var 1..3: x;\nvar 1..3: y;\nvar 1..3: z;\narray [1..3] of var int: n :: output_array([1..3]) = [x,y,z];\n"
      "constraint fzn_all_different_int(n);\nconstraint tarn_circuit(n,1);\nconstraint fzn_cumulative(n,[1,1,1],n,4);\n"
      "constraint tarn_table_int([x,y],[1,2,2,3]);\nsolve minimize z;\n"};
  fzn::Solver::Options options;
  const auto check = [&](const std::string& text) {
    EXPECT_THAT(Answer(modules, text, options), testing::MatchesRegex("f:[0-9]+: (.|\n)*|found (.|\n)*|none")) << text;
  };
  for (const std::string& seed : seeds) {
    for (std::size_t size = 0; size < seed.size(); ++size) {
      check(seed.substr(0, size));
    }
  }
  std::mt19937 random(1);
  for (int i = 0; i < 5000 * support::SoakFactor() && !HasFailure(); ++i) {
    options.fIsFree = i % 2 == 0;
    check(support::Mutate(seeds, random));
  }
}

}  // namespace
