// Explanations and conflicts of random models, against single constraints and plain enumeration.
#include <gtest/gtest.h>

#include <sstream>

#include "framework/VokTarnBoolean.h"
#include "framework/VokTarnObjectEnvironment.h"
#include "framework/VokTarnTrace.h"
#include "support/soak.h"
#include "tarn/commands/Commands.h"
#include "tarn/randomModels.h"

namespace {

std::string Show(const VokTarnAny& value) {
  std::ostringstream text;
  value.PrintOn(text);
  return text.str();
}

bool IsPossible(const VokTarnAny& value, int v) {
  return value.IsDerivedFrom(VokTarnBoolean::sIdent) != 0 ? static_cast<const VokTarnBoolean&>(value).IsPossible(v) != 0
                                                          : static_cast<const VokTarnInteger&>(value).IsPossible(v);
}

const unsigned sFactor = static_cast<unsigned>(support::SoakFactor());

class Explanations : public testing::Test {
 protected:
  Explanations() { fModules.Open(tarn::Modules::sDefault); }

  // Filters the constraint of a step alone, on what the step relies on; everything else is undefined.
  static void CheckStep(const VokTarnNetwork& network, const VokTarnTrace::Step& step) {
    const VokTarnConstraint& original = network.GetConstraint(step.fConstraint);
    VokTarnNetwork alone;
    for (VokTarnValueId id = 0; id < network.GetValueCount(); ++id) {
      alone.AddValue(network.GetType(id));
    }
    for (const VokTarnTrace::Input& input : step.fInputs) {
      alone.Touch(input.fValue).Assign(*input.fState.fDomain);
      alone.NoteChange(input.fValue);
    }
    for (const VokTarnTrace::Change& change : step.fChanges) {
      alone.Touch(change.fValue).Assign(*change.fBefore.fDomain);
      alone.NoteChange(change.fValue);
    }
    VokTarnConstraint* constraint = static_cast<const VokTarnConstraintDescriptor*>(original.GetDescriptor())
                                        ->Create(original.GetArguments(), original.GetForm(), original.GetConstants());
    alone.AddConstraint(std::unique_ptr<VokTarnConstraint>(constraint));
    constraint->Filter(VokTarnObjectEnvironment(alone, constraint->GetArguments()), 0);
    EXPECT_EQ(alone.IsFailed(), step.fFails);
    for (const VokTarnTrace::Change& change : step.fChanges) {
      EXPECT_EQ(Show(alone.GetValue(change.fValue)), Show(*change.fAfter));
      EXPECT_NE(Show(*change.fBefore.fDomain), Show(*change.fAfter));
    }
  }

  // A domain that a step relies on is one that an earlier step has left, or the first one.
  static void CheckState(const VokTarnTrace& trace, const std::vector<VokTarnTrace::Step>& steps, std::size_t place,
                         VokTarnValueId id, const VokTarnTrace::State& state) {
    if (state.fStep == VokTarnTrace::sInitial) {
      EXPECT_EQ(Show(*state.fDomain), Show(trace.GetInitial(id)));
      return;
    }
    ASSERT_LT(state.fStep, place);
    const std::vector<VokTarnTrace::Change>& changes = steps[state.fStep].fChanges;
    const auto change = std::ranges::find(changes, id, &VokTarnTrace::Change::fValue);
    ASSERT_NE(change, changes.end());
    EXPECT_EQ(Show(*state.fDomain), Show(*change->fAfter));
  }

  // Explains the result, checks every step, and gives the domain that the last one leaves the result's value.
  static VokTarnTrace::Domain Check(const VokTarnNetwork& network, VokTarnTrace& trace,
                                    const VokTarnTrace::Result& result) {
    const std::optional<VokTarnTrace::Chain> chain = trace.Explain(result);
    EXPECT_TRUE(chain && chain->fIsShortest);
    if (!chain || chain->fSteps.empty()) {
      return nullptr;
    }
    for (std::size_t i = 0; i < chain->fSteps.size(); ++i) {
      const VokTarnTrace::Step& step = chain->fSteps[i];
      CheckStep(network, step);
      for (const VokTarnTrace::Input& input : step.fInputs) {
        CheckState(trace, chain->fSteps, i, input.fValue, input.fState);
      }
      for (const VokTarnTrace::Change& change : step.fChanges) {
        CheckState(trace, chain->fSteps, i, change.fValue, change.fBefore);
      }
    }
    const VokTarnTrace::Step& last = chain->fSteps.back();
    EXPECT_EQ(last.fFails, result.fValue == vokNoValue);
    const auto change = std::ranges::find(last.fChanges, result.fValue, &VokTarnTrace::Change::fValue);
    return change == last.fChanges.end() ? nullptr : change->fAfter;
  }

  tarn::Modules fModules;
};

TEST_F(Explanations, ConsistOfStepsThatEachHold) {
  unsigned explained = 0;
  for (unsigned seed = 1; seed <= 600 * sFactor && !HasFailure(); ++seed) {
    const RandomModel model(seed);
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + model.GetText());
    tarn::Session session(fModules);
    session.Read(tarn::Source("model", model.GetText()));
    VokTarnNetwork& network = session.GetNetwork();
    VokTarnTrace trace(network);
    if (trace.Record() == VokTarnNetwork::Outcome::Failed) {
      Check(network, trace, {vokNoValue, {}});
      ++explained;
      continue;
    }
    for (const VokTarnValueId id : session.GetVariables()) {
      for (int v = -4; v <= 5; ++v) {
        if (!IsPossible(trace.GetInitial(id), v) || IsPossible(network.GetValue(id), v)) {
          continue;
        }
        const VokTarnTrace::Domain after =
            Check(network, trace, {id, [v](const VokTarnAny& domain) { return !IsPossible(domain, v); }});
        ASSERT_NE(after, nullptr);
        EXPECT_FALSE(IsPossible(*after, v));
        ++explained;
      }
    }
  }
  EXPECT_GT(explained, 600U);
}

TEST_F(Explanations, AgreeWithPlainEnumeration) {
  std::mt19937 random(1);
  const auto pick = [&random](int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); };
  for (unsigned seed = 1; seed <= 600 * sFactor && !HasFailure(); ++seed) {
    const RandomModel model(seed);
    const tarn::Source source("model", model.GetText());
    tarn::Session session(fModules);
    session.Read(source);
    const auto i = static_cast<std::size_t>(pick(0, static_cast<int>(model.GetVariableCount()) - 1));
    const bool isTruth =
        session.GetNetwork().GetValue(session.GetVariables()[i]).IsDerivedFrom(VokTarnBoolean::sIdent) != 0;
    const char* const sRelations[] = {"=", "<>", "<", "<=", ">", ">="};
    const std::string relation = sRelations[pick(0, isTruth ? 1 : 5)];
    const int v = isTruth ? pick(0, 1) : pick(-5, 6);
    const std::string fact = session.GetModel().GetVariables()[i].fName + relation + std::to_string(v);
    const bool holds = std::ranges::all_of(model.Enumerate(), [&](const Assignment& a) {
      return relation == "="    ? a[i] == v
             : relation == "<>" ? a[i] != v
             : relation == "<"  ? a[i] < v
             : relation == "<=" ? a[i] <= v
             : relation == ">"  ? a[i] > v
                                : a[i] >= v;
    });
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(tarn::RunWhy(session, source, tarn::Source("fact", fact), out, err),
              holds ? tarn::Solved : tarn::NoSolution)
        << seed << "\n"
        << model.GetText() << fact << "\n"
        << out.str() << err.str();
  }
}

TEST_F(Explanations, NameMinimalConflicts) {
  unsigned conflicts = 0;
  for (unsigned seed = 1; seed <= 1200 * sFactor && !HasFailure(); ++seed) {
    const RandomModel model(seed);
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + model.GetText());
    const tarn::Source source("model", model.GetText());
    tarn::Session session(fModules);
    session.Read(source);
    std::ostringstream out;
    std::ostringstream err;
    const int exitCode = tarn::RunConflict(session, source, out, err);
    ASSERT_EQ(exitCode, model.Enumerate().empty() ? tarn::Solved : tarn::NoSolution) << out.str() << err.str();
    if (exitCode == tarn::NoSolution) {
      continue;
    }
    std::vector<std::size_t> conflict;
    const std::string answer = out.str();
    for (std::size_t at = answer.find("  line "); at != std::string::npos; at = answer.find("  line ", at + 1)) {
      conflict.push_back(std::stoul(answer.substr(at + 7)) - 1 - model.GetVariableCount());
      ASSERT_LT(conflict.back(), model.GetStatementCount());
    }
    EXPECT_TRUE(model.Enumerate(conflict).empty()) << answer;
    for (std::size_t i = 0; i < conflict.size(); ++i) {
      std::vector<std::size_t> rest = conflict;
      rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(i));
      EXPECT_FALSE(model.Enumerate(rest).empty()) << answer;
    }
    conflicts += conflict.size() > 1 ? 1U : 0U;
  }
  EXPECT_GT(conflicts, 50U);
}

}  // namespace
