// Compares the reasons of what a constraint narrows with the solutions of the constraint.
#pragma once

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "framework/VokTarnOrders.h"
#include "framework/VokTarnReasons.h"

namespace support {

// A network with one constraint, at its root, walks down by random choices; then each change is asked for its reason.
class ReasonCheck {
 public:
  // A solution: a number for each of the values.
  using Solution = std::vector<std::int64_t>;

  ReasonCheck(VokTarnNetwork& network, const std::vector<VokTarnValueId>& ids, const std::vector<Solution>& solutions)
      : fNetwork(network), fIds(ids), fSolutions(solutions) {}

  // What is wrong with a reason; empty when nothing is.
  std::string Run(std::mt19937& random) {
    if (!VokTarnHistory::CanTell(fNetwork, vokNoValue)) {
      return {};
    }
    fNetwork.PushLevel();
    fNetwork.BeginHistory();
    bool isOpen = true;
    for (unsigned depth = 0; depth < 4 && isOpen; ++depth) {
      isOpen = Choose(random) && fNetwork.Propagate() == VokTarnNetwork::Outcome::Fixpoint;
    }
    VokTarnReasons reasons(fNetwork);
    std::string mistake;
    if (fNetwork.IsFailed()) {
      std::vector<VokTarnAtom> because;
      reasons.ExplainFailure(because);
      mistake = FindMistake(because, nullptr, VokTarnHistory::sNone);
    }
    for (VokTarnHistory::Position i = 0; i < fNetwork.GetHistory()->GetSize() && mistake.empty(); ++i) {
      if (fNetwork.GetHistory()->Get(i).fCause.fKind == VokTarnCause::Kind::Constraint) {
        mistake = Explain(reasons, i);
      }
    }
    fStatistics = reasons.GetStatistics();
    while (fNetwork.GetLevel() > 0) {
      fNetwork.PopLevel();
    }
    fNetwork.EndHistory();
    return mistake;
  }

  const VokTarnReasons::Statistics& GetStatistics() const noexcept { return fStatistics; }

 private:
  using Relation = VokTarnAtom::Relation;

  bool Choose(std::mt19937& random) {
    std::vector<VokTarnValueId> open;
    std::ranges::copy_if(fIds, std::back_inserter(open), [this](VokTarnValueId id) {
      return fNetwork.GetCardinality(id) > 1 &&
             fNetwork.GetType(id)->GetShape() != VokTarnObjectDescriptor::Shape::Other;
    });
    if (open.empty()) {
      return false;
    }
    VokTarnRandom numbers(random());
    const VokTarnAtom atom =
        ChooseValues(static_cast<VokTarnValueOrder>(random() % 15), fNetwork, open[random() % open.size()], numbers);
    fNetwork.PushLevel();
    fNetwork.SetCause({VokTarnCause::Kind::Choice, 0, atom});
    fNetwork.Keep(atom);
    fNetwork.SetCause({});
    return true;
  }

  // All that the change at a position has made true, but for most of the values between the bounds.
  std::string Explain(VokTarnReasons& reasons, VokTarnHistory::Position position) {
    const VokTarnHistory& history = *fNetwork.GetHistory();
    const VokTarnValueId id = history.Get(position).fValue;
    const VokTarnSummary& before = history.Get(position).fBefore;
    const VokTarnSummary after = history.GetSummary(id, position + 1);
    std::vector<VokTarnAtom> atoms;
    for (std::int64_t v = before.fLower; v <= before.fUpper && before.fSize > 0 && after.fSize > 0; ++v) {
      for (const Relation relation : {Relation::Equal, Relation::Unequal, Relation::AtMost, Relation::AtLeast}) {
        atoms.push_back({id, relation, static_cast<VokLong>(v)});
      }
      v += v - before.fLower < 12 ? 0 : (std::int64_t{before.fUpper} - v) / 2;
    }
    for (const VokTarnAtom& atom : atoms) {
      const bool isMade = atom.fRelation == Relation::Equal     ? after.fSize == 1 && after.fLower == atom.fNumber
                          : atom.fRelation == Relation::AtMost  ? after.fUpper <= atom.fNumber
                          : atom.fRelation == Relation::AtLeast ? after.fLower >= atom.fNumber
                                                                : !history.WasPossible(id, atom.fNumber, position + 1);
      if (isMade && history.FindChange(atom) == position) {
        std::vector<VokTarnAtom> because;
        reasons.Explain(position, atom, because);
        if (const std::string mistake = FindMistake(because, &atom, position); !mistake.empty()) {
          return mistake;
        }
      }
    }
    return {};
  }

  std::string FindMistake(const std::vector<VokTarnAtom>& because, const VokTarnAtom* atom,
                          VokTarnHistory::Position position) const {
    std::string text;
    for (const VokTarnAtom& reason : because) {
      text += Show(reason) + " ";
      const VokTarnHistory::Position since = fNetwork.GetHistory()->FindChange(reason);
      if (since != VokTarnHistory::sNone && since >= position) {
        return Show(reason) + " came later";
      }
    }
    for (const Solution& solution : fSolutions) {
      const auto denies = [&](const VokTarnAtom& reason) {
        const auto place = std::ranges::find(fIds, reason.fValue) - fIds.begin();
        return reason.Denies(solution[static_cast<std::size_t>(place)]);
      };
      if (std::ranges::none_of(because, denies) && (atom == nullptr || denies(*atom))) {
        return text + "do not imply " + (atom != nullptr ? Show(*atom) : "a contradiction");
      }
    }
    return {};
  }

  static std::string Show(const VokTarnAtom& atom) {
    const char* const kSigns[] = {"=", "<>", "<=", ">="};
    return "#" + std::to_string(atom.fValue) + kSigns[static_cast<unsigned>(atom.fRelation)] +
           std::to_string(atom.fNumber);
  }

  VokTarnNetwork& fNetwork;
  const std::vector<VokTarnValueId>& fIds;
  const std::vector<Solution>& fSolutions;
  VokTarnReasons::Statistics fStatistics;
};

}  // namespace support
