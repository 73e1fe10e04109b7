#include "tarn/randomModels.h"

#include <gtest/gtest.h>

#include "framework/VokTarnBoolean.h"
#include "framework/VokTarnSearch.h"
#include "tarn/Diagnostic.h"
#include "tarn/Session.h"

namespace {

int GetValue(const VokTarnAny& value) {
  return value.IsDerivedFrom(VokTarnBoolean::sIdent) != 0 ? static_cast<const VokTarnBoolean&>(value).IsPossible(1)
                                                          : static_cast<const VokTarnInteger&>(value).GetLowerBound();
}

// All solutions that the search finds, in ascending order; duplicates are kept.
std::vector<Assignment> Solve(const std::string& text) {
  tarn::Session session;
  session.Open(tarn::Session::sDefaultModule);
  const tarn::Source source("model", text);
  try {
    session.Read(source);
  } catch (const tarn::ModelError& error) {
    ADD_FAILURE() << tarn::FormatDiagnostic(source, error);
    return {};
  }
  const std::vector<VokTarnValueId>& variables = session.GetCompiler().GetVariables();
  VokTarnSearch search(session.GetNetwork(), variables);
  std::vector<Assignment> solutions;
  VokTarnSearch::Status status = search.Next();
  for (; status == VokTarnSearch::Status::Solution; status = search.Next()) {
    Assignment& solution = solutions.emplace_back();
    for (const VokTarnValueId variable : variables) {
      solution.push_back(GetValue(session.GetNetwork().GetValue(variable)));
    }
  }
  EXPECT_EQ(status, VokTarnSearch::Status::Exhausted);
  std::ranges::sort(solutions);
  return solutions;
}

TEST(RandomModels, HaveTheSolutionsOfPlainEnumeration) {
  constexpr unsigned sModels = 3000;
  tarn::Session keepsModulesLoaded;
  keepsModulesLoaded.Open(tarn::Session::sDefaultModule);
  for (unsigned seed = 1; seed <= sModels; ++seed) {
    const RandomModel model(seed);
    EXPECT_EQ(Solve(model.GetText()), model.Enumerate()) << "seed " << seed << "\n" << model.GetText();
    if (HasFailure()) {
      return;
    }
  }
}

}  // namespace
