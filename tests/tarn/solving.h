// Reading a model that must be right, and all its solutions.
#pragma once

#include <gtest/gtest.h>

#include "framework/VokTarnBoolean.h"
#include "framework/VokTarnSearch.h"
#include "tarn/Diagnostic.h"
#include "tarn/Session.h"
#include "tarn/randomModels.h"

inline int GetValue(const VokTarnAny& value) {
  return value.IsDerivedFrom(VokTarnBoolean::sIdent) != 0 ? static_cast<const VokTarnBoolean&>(value).IsPossible(1)
                                                          : static_cast<const VokTarnInteger&>(value).GetLowerBound();
}

inline void Read(tarn::Session& session, const tarn::Source& source) {
  try {
    session.Read(source);
  } catch (const tarn::ModelError& error) {
    ADD_FAILURE() << tarn::FormatDiagnostic(source, error);
  }
}

// The solutions in the order in which the search finds them.
inline std::vector<Assignment> Solve(tarn::Session& session, const VokTarnSearch::Options& options = {}) {
  const std::vector<VokTarnValueId>& variables = session.GetVariables();
  VokTarnSearch search(session.GetNetwork(), variables, session.GetObjective(), options);
  std::vector<Assignment> solutions;
  VokTarnSearch::Status status = search.Next();
  for (; status == VokTarnSearch::Status::Solution; status = search.Next()) {
    Assignment& solution = solutions.emplace_back();
    for (const VokTarnValueId variable : variables) {
      solution.push_back(GetValue(session.GetNetwork().GetValue(variable)));
    }
  }
  EXPECT_EQ(status, VokTarnSearch::Status::Exhausted);
  return solutions;
}
