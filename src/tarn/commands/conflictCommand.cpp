// Statements that cannot hold together, none of which can be left out: by U. Junker, "QuickXplain: preferred
// explanations and relaxations for over-constrained problems" (2004). It asks again and again whether some of the
// statements can hold together. The first round asks propagation alone, when that refutes the model: it is cheap, and
// leaves few statements to the second round, which asks the search.
#include <algorithm>
#include <ostream>
#include <set>

#include "tarn/Diagnostic.h"
#include "tarn/Names.h"
#include "tarn/Printer.h"
#include "tarn/commands/Commands.h"
#include "tarn/commands/Interrupt.h"

namespace tarn {
namespace {

using Places = std::vector<std::size_t>;  // among the statements, ascending

// Thrown when the work is to stop.
struct Stopped {};

class ConflictFinder {
 public:
  ConflictFinder(Session& session, const Source& source)
      : fModules(session.GetModules()), fStatements(session.GetModel().GetStatements()), fSource(source) {}

  enum class Answer { Conflict, Satisfiable, Unknown };

  // Looks for a conflict among all statements. Afterwards GetConflict is the best that is known, when the answer is
  // Conflict.
  Answer Find() {
    Places all;
    for (std::size_t i = 0; i < fStatements.size(); ++i) {
      const auto* formula = std::get_if<Formula>(&fStatements[i].fBody);
      if (formula != nullptr && !formula->IsObjective()) {
        all.push_back(i);
      }
    }
    fIsMinimal = false;
    try {
      for (const bool searches : {false, true}) {
        fSearches = searches;
        const Places candidates = fConflict.value_or(all);
        const Answer answer = fConflict ? Answer::Conflict : Ask(candidates);
        if (answer == Answer::Conflict) {
          fHasUnknown = false;
          Reduce({}, true, candidates);
        } else if (searches) {
          return answer;
        }
      }
      fIsMinimal = !fHasUnknown || Finish();
    } catch (const Stopped&) {
      return fConflict ? Answer::Conflict : Answer::Unknown;
    }
    return Answer::Conflict;
  }

  const Places& GetConflict() const { return *fConflict; }
  // Whether the statements can hold together when any one of them is left out.
  bool IsMinimal() const noexcept { return fIsMinimal; }

 private:
  // The part of `candidates` that conflicts with `background`, none of which can be left out. Requires: background
  // and candidates conflict; `isNew` when it is not known whether the background alone does.
  Places Reduce(const Places& background, bool isNew, const Places& candidates) {
    if (isNew && Ask(background) == Answer::Conflict) {
      return {};
    }
    if (candidates.size() == 1) {
      return candidates;
    }
    const auto middle = candidates.begin() + static_cast<std::ptrdiff_t>(candidates.size() / 2);
    const Places first(candidates.begin(), middle);
    const Places second(middle, candidates.end());
    const Places fromSecond = Reduce(Unite(background, first), true, second);
    const Places fromFirst = Reduce(Unite(background, fromSecond), !fromSecond.empty(), first);
    return Unite(fromFirst, fromSecond);
  }

  // Leaves statements out one by one: what could not be decided among many may be among few. Whether each is needed.
  bool Finish() {
    bool isMinimal = true;
    const Places conflict = *fConflict;
    for (const std::size_t place : conflict) {
      Places rest = *fConflict;
      std::erase(rest, place);
      isMinimal = Ask(rest) != Answer::Unknown && isMinimal;
    }
    return isMinimal;
  }

  static Places Unite(const Places& a, const Places& b) {
    Places both;
    std::ranges::set_union(a, b, std::back_inserter(both));
    return both;
  }

  // Whether these statements can hold together. Notes a conflict when it is the smallest so far.
  Answer Ask(const Places& places) {
    Session session(fModules);
    session.Read(Source(fSource.GetName(), Keep(places)));
    session.GetNetwork().SetInterrupt(IsInterrupted);
    // Without a statement every combination of the declared values is a solution.
    const Answer answer = fSearches && !places.empty() ? Search(session) : Propagate(session);
    fHasUnknown = fHasUnknown || answer == Answer::Unknown;
    if (answer == Answer::Conflict && (!fConflict || places.size() < fConflict->size())) {
      fConflict = places;
    }
    return answer;
  }

  // Satisfiable as far as propagation sees.
  static Answer Propagate(Session& session) {
    switch (session.GetNetwork().Propagate()) {
      case VokTarnNetwork::Outcome::Interrupted:
        throw Stopped();
      case VokTarnNetwork::Outcome::Failed:
        return Answer::Conflict;
      default:
        return Answer::Satisfiable;
    }
  }

  static Answer Search(Session& session) {
    // A variable that is in none of the statements may have any value, and needs no bounds.
    std::vector<VokTarnValueId> variables = session.GetVariables();
    std::erase_if(variables, [&session](VokTarnValueId id) { return session.GetNetwork().GetDegree(id) == 0; });
    VokTarnSearch search(session.GetNetwork(), variables);
    switch (search.Next()) {
      case VokTarnSearch::Status::Stopped:
        throw Stopped();
      case VokTarnSearch::Status::Solution:
        return Answer::Satisfiable;
      case VokTarnSearch::Status::Exhausted:
        return Answer::Conflict;
      default:
        return Answer::Unknown;
    }
  }

  // The text of the model with blanks in place of the formulas that are not kept.
  std::string Keep(const Places& places) const {
    std::string text(fSource.GetText());
    for (std::size_t i = 0; i < fStatements.size(); ++i) {
      if (std::holds_alternative<Formula>(fStatements[i].fBody) && !std::ranges::binary_search(places, i)) {
        std::fill(text.begin() + static_cast<std::ptrdiff_t>(fStatements[i].fOffset),
                  text.begin() + static_cast<std::ptrdiff_t>(fStatements[i].fEnd), ' ');
      }
    }
    return text;
  }

  Modules& fModules;
  const std::vector<Statement>& fStatements;
  const Source& fSource;
  std::optional<Places> fConflict;
  bool fSearches = false;
  bool fHasUnknown = false;
  bool fIsMinimal = false;
};

void Print(const Names& names, const Places& conflict, bool isMinimal, std::ostream& out) {
  if (conflict.empty()) {
    out << "The declarations alone leave no solution.\n";
    return;
  }
  out << (conflict.size() == 1 ? "This statement cannot hold"
                               : "These " + std::to_string(conflict.size()) + " statements cannot hold together")
      << ":\n";
  for (const std::size_t place : conflict) {
    out << "  " << names.DescribeStatement(place) << '\n';
  }
  if (!isMinimal) {
    out << "Some of them alone may not hold together either.\n";
  } else if (conflict.size() > 1) {
    out << "They can when any one of them is left out.\n";
  }
}

}  // namespace

int RunConflict(Session& session, const Source& source, std::ostream& out, std::ostream& err) {
  RefuseRestored(session, source);
  ConflictFinder finder(session, source);
  switch (finder.Find()) {
    case ConflictFinder::Answer::Satisfiable:
      out << "There is no conflict: the model has a solution.\n";
      return NoSolution;
    case ConflictFinder::Answer::Unknown:
      err << "tarn: the search was stopped, or could not decide, whether there is a conflict\n";
      out << sUnknown;
      return Undecided;
    case ConflictFinder::Answer::Conflict:
      break;
  }
  Print(Names(session, source), finder.GetConflict(), finder.IsMinimal(), out);
  return finder.IsMinimal() ? Solved : Undecided;
}

}  // namespace tarn
