// FlatZinc: parse, check, build, and a few steps of search, after the annotations or free. What is found must satisfy
// the problem as it is written; where the problem is so small that all assignments can be tried, the search finds them
// all.
#include <algorithm>
#include <limits>

#include "flatzinc/Builder.h"
#include "flatzinc/Checker.h"
#include "flatzinc/Parser.h"
#include "flatzinc/Solver.h"
#include "flatzinc/solutionText.h"
#include "session.h"

namespace {

using Numbers = std::vector<std::int64_t>;

constexpr std::size_t sLongest = 1024;
constexpr std::size_t sMostAssignments = 300;
constexpr int sSteps = 2000;

// How many assignments satisfy the problem; nothing where there are too many to be tried.
std::optional<std::size_t> CountSolutions(const fzn::Model& model, const fzn::Checker& checker) {
  std::vector<Numbers> assignments = {{}};
  for (const fzn::Variable& variable : model.fVariables) {
    std::vector<Numbers> longer;
    for (const fzn::Range& range : variable.fDomain) {
      if (range.fUpper == std::numeric_limits<std::int64_t>::max()) {
        return std::nullopt;  // the loop would not end
      }
      for (std::int64_t number = range.fLower; number <= range.fUpper; ++number) {
        for (const Numbers& assignment : assignments) {
          longer.push_back(assignment);
          longer.back().push_back(number);
        }
        if (longer.size() > sMostAssignments) {
          return std::nullopt;
        }
      }
    }
    if (!variable.fIsBounded) {
      return std::nullopt;
    }
    assignments = std::move(longer);
  }
  return std::ranges::count_if(assignments, [&](const Numbers& a) { return !checker.FindViolation(a); });
}

void Solve(const fzn::Model& model, const fzn::Checker& checker, fzn::Builder& builder, bool isFree) {
  fzn::Solver::Options options;
  options.fIsFree = isFree;
  options.fFailLimit = 50;
  std::vector<std::string> unknown;
  const auto solver = fzn::MakeSolver(
      builder, options, [left = sSteps]() mutable { return left-- <= 0; }, unknown);
  fzn::Solver::Status status{};
  std::size_t found = 0;
  while ((status = solver->Next()) == fzn::Solver::Status::Solution && ++found <= sMostAssignments) {
    if (const auto violation = checker.FindViolation(solver->GetSolution())) {
      fuzz::Fail("a solution contradicts " + *violation);
    }
    fzn::FormatSolution(model, solver->GetSolution());
  }
  if (status != fzn::Solver::Status::Exhausted) {
    return;
  }
  const std::optional<std::size_t> count = CountSolutions(model, checker);
  const bool isAny = model.fSolve.fGoal != fzn::Solve::Goal::Satisfy;
  if (count && (isAny ? (*count > 0) != (found > 0) : *count != found)) {
    fuzz::Fail("found " + std::to_string(found) + " of " + std::to_string(*count) + " solutions");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > sLongest) {
    return 0;
  }
  const std::string text = fuzz::ToString(data, size);
  try {
    fzn::ErrorList errors("problem");
    const fzn::Model model = fzn::Parse(text, errors);
    const fzn::Checker checker(model, errors);
    if (!errors.IsEmpty()) {
      return 0;
    }
    VokTarnNetwork network;
    fzn::Builder builder(fuzz::OpenModules().GetManager(), network, model, errors);
    if (builder.Build()) {
      Solve(model, checker, builder, size % 2 == 0);
    }
  } catch (const fzn::InputError&) {
  } catch (const fzn::PostingError&) {  // an objective that does not fit
  }
  return 0;
}
