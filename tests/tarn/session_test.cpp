#include "tarn/Session.h"

#include <gtest/gtest.h>

#include "tarn/Diagnostic.h"

namespace {

struct Figures {
  VokULong fValues;
  VokULong fConstraints;
  bool operator==(const Figures&) const = default;
};

Figures Count(const std::string& text) {
  tarn::Modules modules;
  modules.Open(tarn::Modules::sDefault);
  tarn::Session session(modules);
  session.Read(tarn::Source("test", text));
  return {session.GetNetwork().GetValueCount(), session.GetNetwork().GetConstraintCount()};
}

TEST(Compiler, AddsNoMoreThanTheModelNeeds) {
  struct Case {
    const char* fStatements;
    Figures fFigures;  // beyond the declarations
  };
  const Case sCases[] = {
      {"x < 3; y < 3; 3 < z;", {1, 3}},                          // one value for equal literals
      {"x + y = z;", {0, 1}},                                    // the variable is the operation's result
      {"z = x + y;", {0, 1}},                                    //
      {"z = -x;", {0, 1}},                                       //
      {"x + y = z + z;", {1, 2}},                                // one result for two operations
      {"x + y + z + x + y + z + x + y + 3 * z <= 99;", {2, 2}},  // one long sum and its bound
      {"x + y < z; x + y = z;", {1, 3}},                         // the operation exists: an equality instead
      {"x + y = z; x + y < 2;", {1, 2}},                         //
      {"x + y = z; x + y = z;", {0, 1}},                         // nothing is said twice
      {"x * y < z; z <> x * y;", {1, 3}},                        // one value for equal operations
      {"x = y < z <> x;", {0, 3}},                               // a chain is its relations
      {"p; !p || q;", {2, 2}},                                   // a truth value is narrowed, not constrained
      {"(enum int) x = z;", {0, 1}},                             // a cast to the own type is no cast
      {"(interval int) x < 3; (interval int) x > 1;", {3, 3}}    // one conversion, two numbers
  };
  const std::string declarations = "x, y, z : enum int [1, 9]; p, q : bool;";
  const Figures before = Count(declarations);
  for (const Case& c : sCases) {
    const Figures after = Count(declarations + c.fStatements);
    EXPECT_EQ((Figures{after.fValues - before.fValues, after.fConstraints - before.fConstraints}), c.fFigures)
        << c.fStatements;
  }
}

TEST(Session, KnowsTheConstraintsOfEachStatement) {
  tarn::Modules modules;
  modules.Open(tarn::Modules::sDefault);
  tarn::Session session(modules);
  session.Read(tarn::Source("test", "x, y : enum int [1, 9];\nx < y <> 3;\n\nx + y = 4;"));
  const std::vector<tarn::Statement>& statements = session.GetModel().GetStatements();
  const std::vector<tarn::Session::Constraints>& constraints = session.GetConstraints();
  ASSERT_EQ(statements.size(), 3U);
  ASSERT_EQ(constraints.size(), 3U);
  EXPECT_EQ(statements[2].fLine, 4U);
  EXPECT_EQ(constraints[0].fEnd, 0U);
  EXPECT_EQ(constraints[1].fEnd - constraints[1].fFirst, 2U);
  EXPECT_EQ(constraints[2].fFirst, 2U);
  EXPECT_EQ(constraints[2].fEnd, session.GetNetwork().GetConstraintCount());
}

TEST(Session, GoesOnWithAFurtherText) {
  tarn::Modules modules;
  modules.Open(tarn::Modules::sDefault);
  tarn::Session session(modules);
  session.Read(tarn::Source("first", "x : enum int [1, 9];"));
  session.Read(tarn::Source("second", "x < 2;"));
  EXPECT_THROW(session.Read(tarn::Source("third", "x : bool;")), tarn::ModelError);
  EXPECT_EQ(session.GetNetwork().Propagate(), VokTarnNetwork::Outcome::Fixpoint);
  EXPECT_EQ(session.GetNetwork().GetValue(0).GetCardinality(), 1);
}

}  // namespace
