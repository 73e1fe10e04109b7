#include "flatzinc/bounds.h"

#include <gtest/gtest.h>

#include "flatzinc/Parser.h"

namespace {

constexpr std::int64_t kOpen = std::numeric_limits<std::int64_t>::max();

// The bounds of x, which has none of its own, beside a in 0..5, b in 1..3, y in 0..1 and a p that is true.
fzn::Range FindBounds(const std::string& constraints) {
  fzn::ErrorList errors("f");
  const fzn::Model model =
      fzn::Parse("var int: x;\nvar 0..5: a;\nvar 1..3: b;\nvar 0..1: y;\nvar bool: p = true;\nvar bool: q;\n" +
                     constraints + "\nsolve satisfy;",
                 errors);
  EXPECT_TRUE(errors.IsEmpty()) << errors.GetText();
  std::vector<fzn::Set> domains;
  for (const fzn::Variable& variable : model.fVariables) {
    domains.push_back(variable.fIsBounded ? variable.fDomain : fzn::MakeUnbounded());
  }
  const auto find = [](std::size_t place) { return place; };
  fzn::InferBounds(model, find, domains);
  return {domains[0].front().fLower, domains[0].back().fUpper};
}

TEST(Bounds, FollowFromConstraints) {
  const struct {
    const char* fConstraint;
    std::int64_t fLower;
    std::int64_t fUpper;
  } rows[] = {
      {"int_le(x,a)", -kOpen, 5},
      {"int_plus(a,b,x)", 1, 8},
      {"int_plus(x,a,b)", -4, 3},
      {"int_lin_eq([2,3,-1],[a,b,x],4)", -1, 15},
      {"int_lin_eq([2,3,1],[a,x,b],4)", -3, 1},
      {"int_times(a,b,x)", 0, 15},
      {"int_div(x,b,a)", -18, 18},
      {"int_mod(a,b,x)", -5, 5},
      {"int_abs(x,a)", -5, 5},
      {"int_pow(a,b,x)", 0, 125},
      {"int_pow(y,a,x)", 0, 1},
      {"int_max(a,b,x)", 0, 5},
      {"array_int_element(a,[4,9,-2],x)", -2, 9},
      {"array_var_int_element(a,[b,y],x)", 0, 3},
      {"array_int_minimum(x,[a,b])", 0, 5},
      {"array_int_minimum(b,[x,a])", 1, kOpen},
      {"int_max(x,a,b)", -kOpen, 3},
      {"int_eq_reif(x,a,p)", 0, 5},
      {"int_eq_reif(x,a,q)", -kOpen, kOpen},
      {"set_in_reif(x,{1,7},p)", 1, 7},
      {"fzn_count_eq([a,b,y],2,x)", 0, 3},
      {"fzn_nvalue(x,[a,b])", 0, 2},
      {"fzn_among(x,[a,b],1..2)", 0, 2},
      {"tarn_global_cardinality([a,b],[1],[x],0)", 0, 2},
      {"tarn_global_cardinality([x,b],[1,4],[a,y],1)", 1, 4},
      {"tarn_global_cardinality_low_up([x,b],[1,4],[0,0],[1,1],1)", 1, 4},
      {"fzn_distribute([x],[a],[b,y])", 0, 2},
      {"tarn_bin_packing_load([x,a],1,[b,y],[3,4])", 0, 7},
      {"tarn_bin_packing_capa([9,9],4,[x],[3])", 4, 5},
      {"tarn_table_int([a,x],[1,8,2,-3])", -3, 8},
      {"tarn_regular([x],2,3,[1,2,0,1,1,1],1,1..2)", 1, 3},
      {"fzn_member_int([a,b],x)", 0, 5},
      {"tarn_inverse([x,a],2,[b,y],7)", 7, 8},
      {"tarn_circuit([x,a,b],1)", 1, 3},
      {"fzn_sort([a,b],[x,y])", 0, 5},
      {"fzn_all_equal_int([x,a,b])", 1, 3},
      {"fzn_increasing_int([b,x,a])", 1, 5},
      {"fzn_decreasing_int([b,x,y])", 0, 3},
      {"tarn_maximum_arg([a,b],x,4)", 4, 5},
      // A chain, whatever its order.
      {"var int: u;\nvar int: v;\nconstraint int_plus(v,1,x);\nconstraint int_plus(u,1,v);\nconstraint int_plus(a,1,u)",
       3, 8},
      // Sums that 128 bits do not hold tell nothing.
      {"int_lin_le([4611686018427387904,4611686018427387904,1],[4611686018427387904,4611686018427387904,x],0)", -kOpen,
       kOpen},
  };
  for (const auto& row : rows) {
    const std::string text(row.fConstraint);
    const std::size_t last = text.rfind("\nconstraint");
    const fzn::Range bounds = FindBounds((last == std::string::npos ? "constraint " : "") + text + ";");
    EXPECT_EQ(std::pair(bounds.fLower, bounds.fUpper), std::pair(row.fLower, row.fUpper)) << text;
  }
}

}  // namespace
