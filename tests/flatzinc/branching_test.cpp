#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <system_error>

#include "flatzinc/Builder.h"
#include "flatzinc/Parser.h"
#include "flatzinc/Solver.h"
#include "support/modules.h"

namespace {

struct OrderRow {
  std::string fText;       // of the problem, up to its goal
  const char* fSolutions;  // the first of them, in their order, and what the search has done by then
  int fCount = 8;          // how many of them
};

// The first solutions, how deep the search went, and the annotations that are not known.
std::string Search(const support::LoadedModules& modules, const std::string& text, const fzn::Solver::Options& options,
                   int count) {
  fzn::ErrorList errors("f");
  const fzn::Model model = fzn::Parse(text, errors);
  VokTarnNetwork network;
  fzn::Builder builder(modules.fManager, network, model, errors);
  EXPECT_TRUE(builder.Build()) << errors.GetText();
  std::vector<std::string> unknown;
  const auto solver = fzn::MakeSolver(
      builder, options, [] { return false; }, unknown);
  std::string shown;
  while (count-- > 0 && solver->Next() == fzn::Solver::Status::Solution) {
    for (const std::int64_t v : solver->GetSolution()) {
      shown += std::to_string(v) + ' ';
    }
    shown += "| ";
  }
  shown += "depth " + std::to_string(solver->GetStatistics().fDepth);
  for (const std::string& name : unknown) {
    shown += ' ' + name;
  }
  return shown;
}

void CheckOrder(std::span<const OrderRow> rows) {
  const support::LoadedModules modules;
  for (const OrderRow& row : rows) {
    EXPECT_EQ(Search(modules, row.fText + " satisfy;", {}, row.fCount), row.fSolutions) << row.fText;
  }
}

TEST(Branching, ValuesComeAsTheAnnotationSays) {
  const auto six = [](const std::string& choice) {
    return "var {0,1,3,5,6,20}: x; solve :: int_search([x],input_order," + choice + ",complete)";
  };
  const auto wide = [](const std::string& choice) {
    return "var -5..2000000000: x; solve :: int_search([x],input_order," + choice + ",complete)";
  };
  const OrderRow rows[] = {
      {six("indomain"), "0 | 1 | 3 | 5 | 6 | 20 | depth 1"},
      {six("indomain_min"), "0 | 1 | 3 | 5 | 6 | 20 | depth 1"},
      {six("indomain_max"), "20 | 6 | 5 | 3 | 1 | 0 | depth 1"},
      {six("indomain_median"), "3 | 5 | 1 | 6 | 0 | 20 | depth 1"},
      {six("indomain_middle"), "6 | 5 | 3 | 1 | 0 | 20 | depth 1"},
      {six("indomain_split"), "0 | 1 | 3 | 5 | 6 | 20 | depth 4"},
      {six("indomain_reverse_split"), "20 | 6 | 5 | 3 | 1 | 0 | depth 2"},
      {six("indomain_interval"), "0 | 1 | 3 | 5 | 6 | 20 | depth 2"},
      {six("indomain_random"), "1 | 0 | 20 | 5 | 6 | 3 | depth 1"},
      {six("indomain_split_random"), "20 | 3 | 0 | 1 | 6 | 5 | depth 2"},
      {six("outdomain_min"), "20 | 6 | 5 | 3 | 1 | 0 | depth 5"},
      {six("outdomain_max"), "0 | 1 | 3 | 5 | 6 | 20 | depth 5"},
      {six("outdomain_median"), "20 | 0 | 6 | 1 | 5 | 3 | depth 5"},
      {six("outdomain_random"), "3 | 6 | 5 | 20 | 0 | 1 | depth 5"},
      {six("indomain_odd"), "0 | 1 | 3 | 5 | 6 | 20 | depth 1 indomain_odd"},
      {wide("indomain_min"), "-5 | -4 | -3 | depth 1", 3},
      {wide("indomain_max"), "2000000000 | 1999999999 | 1999999998 | depth 1", 3},
      {wide("indomain_median"), "-5 | -4 | -3 | depth 31", 3},
      {wide("indomain_middle"), "-5 | -4 | -3 | depth 31", 3},
      {wide("indomain_interval"), "-5 | -4 | -3 | depth 31", 3},
      {wide("indomain_random"), "1 | -5 | -4 | depth 22", 3},
      {wide("outdomain_median"), "-4 | -5 | -2 | depth 31", 3},
      {"var {1,2,4,5,6}: x; solve :: int_search([x],input_order,indomain_middle,complete)",
       "2 | 4 | 1 | 5 | 6 | depth 1"},
      {"var -8..-1: x; solve :: int_search([x],input_order,indomain_split,complete)",
       "-8 | -7 | -6 | -5 | -4 | -3 | -2 | -1 | depth 3"},
      {"var -8..-2: x; solve :: int_search([x],input_order,indomain_middle,complete)",
       "-5 | -6 | -4 | -7 | -3 | -8 | -2 | depth 1"},
      {"var 1..1: x; solve", "1 | depth 0"},
  };
  CheckOrder(rows);
}

TEST(Branching, VariablesComeAsTheAnnotationSays) {
  const auto three = [](const std::string& choice, const std::string& constraints = "") {
    return "var {1,9,10}: x; var {2,7}: y; var {0,4,5,8}: z; constraint int_ne(z,x); constraint int_ne(z,y);" +
           constraints + "solve :: int_search([y,z,x]," + choice + ",indomain_min,complete)";
  };
  const std::string apart = "constraint int_ne(x,y); constraint int_lin_ne([2,2],[x,y],3);";
  const std::string two =
      "var {1,2}: x; var {2,3}: y; var 3..4: z; constraint int_ne(x,y); constraint int_ne(y,z); solve :: int_search(";
  const OrderRow rows[] = {
      {three("input_order"), "1 2 0 | 9 2 0 | 10 2 0 | 1 2 4 | 9 2 4 | 10 2 4 | 1 2 5 | 9 2 5 | depth 3"},
      {three("first_fail"), "1 2 0 | 1 2 4 | 1 2 5 | 1 2 8 | 9 2 0 | 9 2 4 | 9 2 5 | 9 2 8 | depth 3"},
      {three("impact"), "1 2 0 | 1 2 4 | 1 2 5 | 1 2 8 | 9 2 0 | 9 2 4 | 9 2 5 | 9 2 8 | depth 3"},
      {three("anti_first_fail"), "1 2 0 | 1 7 0 | 9 2 0 | 10 2 0 | 9 7 0 | 10 7 0 | 1 2 4 | 1 7 4 | depth 3"},
      {three("smallest"), "1 2 0 | 1 7 0 | 9 2 0 | 10 2 0 | 9 7 0 | 10 7 0 | 1 2 4 | 1 2 5 | depth 3"},
      {three("largest"), "1 2 0 | 1 7 0 | 1 2 4 | 1 7 4 | 1 2 5 | 1 7 5 | 1 2 8 | 1 7 8 | depth 3"},
      {three("occurrence"), "1 2 0 | 9 2 0 | 10 2 0 | 1 7 0 | 9 7 0 | 10 7 0 | 1 2 4 | 9 2 4 | depth 3"},
      {three("max_regret"), "1 2 0 | 1 2 4 | 1 2 5 | 1 2 8 | 1 7 0 | 1 7 4 | 1 7 5 | 1 7 8 | depth 3"},
      {three("dom_w_deg"), "1 2 0 | 9 2 0 | 10 2 0 | 1 2 4 | 9 2 4 | 10 2 4 | 1 2 5 | 9 2 5 | depth 3"},
      {three("dom_w_deg", apart), "1 2 0 | 1 2 4 | 1 2 5 | 1 2 8 | 9 2 0 | 9 2 4 | 9 2 5 | 9 2 8 | depth 3"},
      {three("most_constrained"), "1 2 0 | 1 2 4 | 1 2 5 | 1 2 8 | 9 2 0 | 9 2 4 | 9 2 5 | 9 2 8 | depth 3"},
      {three("odd"), "1 2 0 | 9 2 0 | 10 2 0 | 1 2 4 | 9 2 4 | 10 2 4 | 1 2 5 | 9 2 5 | depth 3 odd"},
      {two + "[x,y,z],first_fail,indomain_min,complete)", "1 2 3 | 1 2 4 | 1 3 4 | 2 3 4 | depth 3"},
      {two + "[x,y,z],most_constrained,indomain_min,complete)", "1 2 3 | 1 2 4 | 1 3 4 | 2 3 4 | depth 2"},
      {two + "[x,y,z],occurrence,indomain_max,complete)", "2 3 4 | 1 3 4 | 1 2 4 | 1 2 3 | depth 2"},
  };
  CheckOrder(rows);
}

TEST(Branching, GroupsFollowEachOther) {
  const std::string declared =
      "var 0..1: d :: var_is_introduced :: is_defined_var; var 0..1: i :: var_is_introduced; var 0..1: x; var 0..1: y;"
      "constraint int_lin_le([1,1,1,1],[d,i,x,y],3); solve ";
  const auto search = [](const std::string& names, const std::string& choice) {
    return ":: int_search([" + names + "],input_order," + choice + ",complete) ";
  };
  const OrderRow rows[] = {
      {declared, "0 0 0 0 | 1 0 0 0 | 0 1 0 0 | 1 1 0 0 | 0 0 0 1 | 1 0 0 1 | 0 1 0 1 | 1 1 0 1 | depth 4"},
      {declared + search("d", "indomain_max"),
       "1 0 0 0 | 1 1 0 0 | 1 0 0 1 | 1 1 0 1 | 1 0 1 0 | 1 1 1 0 | 1 0 1 1 | 0 0 0 0 | depth 4"},
      // The last one that stands beside others is the author's first.
      {declared + search("y", "indomain_max") + search("x", "indomain_max"),
       "0 0 1 1 | 1 0 1 1 | 0 1 1 1 | 0 0 1 0 | 1 0 1 0 | 0 1 1 0 | 1 1 1 0 | 0 0 0 1 | depth 4"},
      {declared + ":: seq_search([int_search([i],input_order,indomain_max,complete),"
                  "seq_search([int_search([],input_order,indomain_max,complete),"
                  "int_search([d,1,x],input_order,indomain_max,complete)])])",
       "1 1 1 0 | 1 1 0 0 | 1 1 0 1 | 0 1 1 0 | 0 1 1 1 | 0 1 0 0 | 0 1 0 1 | 1 0 1 0 | depth 3"},
      {declared + ":: warm_start([x,y,i],[1,2,1])",
       "0 1 1 0 | 1 1 1 0 | 0 1 1 1 | 0 0 1 0 | 1 0 1 0 | 0 0 1 1 | 1 0 1 1 | 0 1 0 0 | depth 4"},
      {declared + ":: warm_start_int([x,y],[0,1,1]) :: odd(3) :: restart_none",
       "0 0 0 1 | 1 0 0 1 | 0 1 0 1 | 1 1 0 1 | 0 0 0 0 | 1 0 0 0 | 0 1 0 0 | 1 1 0 0 | depth 4 odd"},
      {"var bool: p; var bool: q; solve :: bool_search([p,q],input_order,indomain_max,complete)",
       "1 1 | 1 0 | 0 1 | 0 0 | depth 2"},
      {"var bool: p; var bool: q; solve :: warm_start_bool([q,p],[true,false])", "0 1 | 1 1 | 0 0 | 1 0 | depth 2"},
  };
  CheckOrder(rows);
}

// Each of two processes searches parts of what one process would search, down to the depth of the parts.
TEST(Branching, ProcessesCountTheirWork) {
  const support::LoadedModules modules;
  fzn::ErrorList errors("f");
  std::string text;
  for (int i = 0; i < 6; ++i) {
    const std::string x = "q" + std::to_string(i);
    text = "var 0..5: " + x + ";" + text;
    for (int j = 0; j < i; ++j) {
      const std::string pair = ",[" + x + ",q" + std::to_string(j) + "],";
      for (const int gap : {j - i, 0, i - j}) {
        text += "constraint int_lin_ne([1,-1]" + pair + std::to_string(gap) + ");";
      }
    }
  }
  const fzn::Model model = fzn::Parse(text + "solve satisfy;", errors);
  const std::pair<unsigned, std::vector<std::uint64_t>> rows[] = {{1, {4, 33, 30, 0, 3}}, {2, {4, 14, 16, 0, 2}}};
  for (const auto& [processes, expected] : rows) {
    VokTarnNetwork network;
    fzn::Builder builder(modules.fManager, network, model, errors);
    ASSERT_TRUE(builder.Build());
    fzn::Solver::Options options;
    options.fProcesses = processes;
    std::vector<std::string> unknown;
    const auto solver = fzn::MakeSolver(
        builder, options, [] { return false; }, unknown);
    std::uint64_t solutions = 0;
    while (solver->Next() == fzn::Solver::Status::Solution) {
      ++solutions;
    }
    const fzn::Solver::Statistics work = solver->GetStatistics();
    EXPECT_EQ((std::vector{solutions, work.fNodes, work.fFailures, work.fRestarts, work.fDepth}), expected);
    EXPECT_GT(work.fPropagations, 100U);
  }
}

// A process that cannot be started is told, and the others end.
TEST(Branching, AForkThatFailsIsTold) {
  const support::LoadedModules modules;
  const auto search = [&modules] {
    const rlimit none{0, 0};
    if ((geteuid() == 0 && setresuid(65534, 65534, 65534) != 0) || setrlimit(RLIMIT_NPROC, &none) != 0) {
      _exit(1);
    }
    fzn::Solver::Options options;
    options.fProcesses = 2;
    try {
      Search(modules, "var 0..9: x; var 0..9: y; solve satisfy;", options, 1);
    } catch (const std::system_error& error) {
      _exit(error.code() == std::errc::resource_unavailable_try_again ? 0 : 3);
    }
    _exit(2);
  };
  EXPECT_EXIT(search(), testing::ExitedWithCode(0), "");
}

// A process that is killed leaves the search open.
TEST(Branching, AProcessThatIsLostLeavesTheSearchOpen) {
  const support::LoadedModules modules;
  fzn::ErrorList errors("f");
  const fzn::Model model = fzn::Parse("var 0..99: x; var 0..99: y; var 0..99: z; solve satisfy;", errors);
  VokTarnNetwork network;
  fzn::Builder builder(modules.fManager, network, model, errors);
  ASSERT_TRUE(builder.Build());
  fzn::Solver::Options options;
  options.fProcesses = 2;
  const auto kill = [] {
    std::ifstream children("/proc/thread-self/children");
    for (pid_t child = 0; children >> child;) {
      ::kill(child, SIGKILL);
    }
    return false;
  };
  std::vector<std::string> unknown;
  const auto solver = fzn::MakeSolver(builder, options, kill, unknown);
  fzn::Solver::Status status = fzn::Solver::Status::Solution;
  while (status == fzn::Solver::Status::Solution) {
    status = solver->Next();
  }
  EXPECT_EQ(status, fzn::Solver::Status::Undecided);
}

}  // namespace
