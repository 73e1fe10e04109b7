// The tree of a search as a picture: a choice has two branches, the part of the domain that is tried first and the
// rest.
#include <ostream>
#include <streambuf>

#include "tarn/TextStream.h"
#include "tarn/commands/Commands.h"
#include "tarn/commands/Picture.h"

namespace tarn {
namespace {

constexpr const char* sHead =
    "digraph tree {\n"
    "  graph [fontname=\"Helvetica,Arial,sans-serif\", fontsize=12, nodesep=0.15, ranksep=0.3, ordering=out];\n"
    "  node [fontname=\"Helvetica,Arial,sans-serif\", fontsize=10, style=filled, margin=0, label=\"\"];\n"
    "  edge [fontname=\"Helvetica,Arial,sans-serif\", fontsize=10, arrowhead=none, color=\"#808080\"];\n";
constexpr const char* sRed = "#e06666";
constexpr const char* sGrey = "#c0c0c0";

// Takes all and keeps nothing.
class NoBuffer : public std::streambuf {
 protected:
  int_type overflow(int_type c) override { return traits_type::not_eof(c); }
};

// A tree that grows as the search goes on.
//
// The nodes stand in the order of the search, so that a part of the tree that is complete is a tail of them. A choice
// beyond the limit becomes a triangle, which counts what the search sees below it.
class Tree : public VokTarnSearchObserver {
 public:
  Tree(Session& session, const TreeOptions& options) : fSession(session), fOptions(options), fNodes(1) {}

  void OnDecision(VokTarnValueId variable, const VokTarnAny& part) override;
  void OnBacktrack(unsigned depth, VokTarnValueId variable, const VokTarnAny& rest) override;
  void OnRestart() override;
  void OnFailure() override;
  void OnSolution() override;
  void OnUndecided() override;

  void Write(std::ostream& dot);

 private:
  enum class Kind { Open, Choice, Failure, Solution, Undecided, Triangle };

  struct Counts {
    std::uint64_t fNodes = 0;
    std::uint64_t fFailures = 0;
    std::uint64_t fSolutions = 0;
  };
  struct Node {
    std::size_t fParent = 0;
    bool fIsRest = false;        // the second branch of its parent
    bool fHasOnlyFailed = true;  // as far as it is known
    Kind fKind = Kind::Open;
    Counts fCounts{1};  // of a triangle, with all below it; else of the node alone
    std::string fChoice;
    std::string fValues;  // of a solution
  };
  struct Choice {
    std::size_t fNode;
    std::string fOther;  // the rest of the choice, when it is best told by what it is not
  };

  std::string GetName(VokTarnValueId variable) const;
  void Enter(std::size_t parent, std::string choice, bool isRest);
  void End(Kind kind);
  void Keep(std::size_t node);
  void Collapse();
  void WriteNode(std::size_t index, std::ostream& dot) const;
  static std::string CountText(const Counts& counts, const char* separator);

  Session& fSession;
  const TreeOptions& fOptions;
  std::vector<Node> fNodes;
  std::vector<Choice> fOpen;
  std::size_t fCurrent = 0;
  std::size_t fRestart = 0;  // where the search began last
  bool fIsEnded = false;     // the current branch
  Counts fAll{1};
};

std::string Tree::GetName(VokTarnValueId variable) const {
  const std::string& name = fSession.GetNetwork().GetName(variable);
  return name.empty() ? "intermediate" : name;
}

std::string ChoiceText(const std::string& name, const VokTarnAny& values) {
  const std::string domain = ShortDomain(values);
  return values.GetCardinality() == 1 ? name + " = " + domain : name + " in {" + domain + "}";
}

void Tree::OnDecision(VokTarnValueId variable, const VokTarnAny& part) {
  const std::string name = GetName(variable);
  const bool isSingle = part.GetCardinality() == 1;
  fOpen.push_back({fCurrent, isSingle ? name + " <> " + ShortDomain(part) : std::string()});
  if (fNodes[fCurrent].fKind == Kind::Open) {
    fNodes[fCurrent].fKind = fCurrent < fOptions.fMaxNodes ? Kind::Choice : Kind::Triangle;
  }
  Enter(fCurrent, ChoiceText(name, part), false);
}

void Tree::OnBacktrack(unsigned depth, VokTarnValueId variable, const VokTarnAny& rest) {
  const Choice choice = fOpen[depth];
  fOpen.resize(depth);
  const bool isOther = !choice.fOther.empty() && rest.GetCardinality() > 1;
  Enter(choice.fNode, isOther ? choice.fOther : ChoiceText(GetName(variable), rest), true);
}

// Each run is a branch of the root; those beyond the limit share a triangle.
void Tree::OnRestart() {
  Keep(fCurrent);
  fOpen.clear();
  Enter(fNodes[fRestart].fKind == Kind::Triangle ? fRestart : 0, "restart", false);
  fRestart = fCurrent;
}

void Tree::Enter(std::size_t parent, std::string choice, bool isRest) {
  ++fAll.fNodes;
  fIsEnded = false;
  fCurrent = parent;
  if (fNodes[parent].fKind == Kind::Triangle) {
    ++fNodes[parent].fCounts.fNodes;
    return;
  }
  fCurrent = fNodes.size();
  Node node;
  node.fParent = parent;
  node.fIsRest = isRest;
  node.fChoice = std::move(choice);
  fNodes.push_back(std::move(node));
}

void Tree::OnFailure() {
  ++fAll.fFailures;
  ++fNodes[fCurrent].fCounts.fFailures;
  End(Kind::Failure);
  if (fOptions.fCollapse) {
    Collapse();
  }
}

void Tree::OnSolution() {
  ++fAll.fSolutions;
  ++fNodes[fCurrent].fCounts.fSolutions;
  Keep(fCurrent);
  End(Kind::Solution);
  if (fNodes[fCurrent].fKind == Kind::Solution) {
    std::string& values = fNodes[fCurrent].fValues;
    for (const VokTarnValueId id : fSession.GetVariables()) {
      values += (values.empty() ? "" : "\n") + ChoiceText(GetName(id), fSession.GetNetwork().GetValue(id));
    }
  }
}

void Tree::OnUndecided() {
  Keep(fCurrent);
  End(Kind::Undecided);
}

void Tree::End(Kind kind) {
  fIsEnded = true;
  if (fNodes[fCurrent].fKind != Kind::Triangle) {
    fNodes[fCurrent].fKind = kind;
  }
}

// Notes that not all branches below this node have failed.
void Tree::Keep(std::size_t node) {
  while (fNodes[node].fHasOnlyFailed) {
    fNodes[node].fHasOnlyFailed = false;
    node = fNodes[node].fParent;
  }
}

// The current branch has failed: when the branch before it of the same choice has failed as well, one triangle stands
// for both and the choice, and so on up.
void Tree::Collapse() {
  const bool isComplete = fOpen.empty() || fOpen.back().fNode != fCurrent;  // a triangle may have open choices
  while (isComplete && fNodes[fCurrent].fIsRest && fNodes[fNodes[fCurrent].fParent].fHasOnlyFailed) {
    fCurrent = fNodes[fCurrent].fParent;
    Counts& counts = fNodes[fCurrent].fCounts;
    for (std::size_t i = fCurrent + 1; i < fNodes.size(); ++i) {
      counts.fNodes += fNodes[i].fCounts.fNodes;
      counts.fFailures += fNodes[i].fCounts.fFailures;
    }
    fNodes[fCurrent].fKind = Kind::Triangle;
    fNodes.resize(fCurrent + 1);
  }
}

std::string Tree::CountText(const Counts& counts, const char* separator) {
  const auto count = [](std::uint64_t number, const char* word) {
    return std::to_string(number) + " " + word + (number == 1 ? "" : "s");
  };
  std::string text = count(counts.fNodes, "node") + separator + count(counts.fFailures, "failure");
  if (counts.fSolutions != 0) {
    text += separator + count(counts.fSolutions, "solution");
  }
  return text;
}

void Tree::WriteNode(std::size_t index, std::ostream& dot) const {
  const Node& node = fNodes[index];
  dot << "  n" << index << " [";
  switch (node.fKind) {
    case Kind::Choice:
      dot << "shape=circle, width=0.12, fillcolor=\"#6fa8dc\"";
      break;
    case Kind::Failure:
      dot << "shape=square, width=0.14, fillcolor=\"" << sRed << "\", tooltip=\"failure\"";
      break;
    case Kind::Solution:
      dot << "shape=diamond, width=0.22, height=0.22, fillcolor=\"#6aa84f\", tooltip=" << DotText(node.fValues);
      break;
    case Kind::Triangle:
      dot << "shape=triangle, fillcolor=\"" << (node.fHasOnlyFailed ? sRed : sGrey)
          << "\", label=" << DotText(CountText(node.fCounts, "\n"));
      break;
    case Kind::Open:
    case Kind::Undecided:
      dot << "shape=circle, width=0.14, fillcolor=\"" << sGrey << "\", tooltip=\""
          << (node.fKind == Kind::Open ? "stopped here" : "undecided") << '"';
      break;
  }
  dot << "];\n";
  if (index != 0) {
    dot << "  n" << node.fParent << " -> n" << index << " [label=" << DotText(" " + node.fChoice + " ") << "];\n";
  }
  constexpr std::size_t sMaxLines = 6;  // more values than these are in the tooltip only
  if (node.fKind == Kind::Solution && fSession.GetVariables().size() <= sMaxLines) {
    dot << "  t" << index << " [shape=plain, style=\"\", label=" << DotText(node.fValues) << "];\n  n" << index
        << " -> t" << index << " [style=invis];\n";
  }
}

void Tree::Write(std::ostream& dot) {
  if (!fIsEnded) {
    Keep(fCurrent);
  }
  dot << sHead << "  label=" << DotText(CountText(fAll, ", ")) << ";\n";
  std::vector<bool> hasRest(fNodes.size());
  for (std::size_t i = 0; i < fNodes.size(); ++i) {
    WriteNode(i, dot);
    hasRest[fNodes[i].fParent] = hasRest[fNodes[i].fParent] || fNodes[i].fIsRest;
  }
  for (std::size_t i = 0; i < fNodes.size(); ++i) {
    if (fNodes[i].fKind == Kind::Choice && !hasRest[i]) {
      dot << "  r" << i << " [shape=point, color=\"" << sGrey << "\", tooltip=\"not searched\"];\n  n" << i << " -> r"
          << i << " [style=dashed];\n";
    }
  }
  dot << "}\n";
}

}  // namespace

int RunTree(Session& session, SolveOptions solve, const TreeOptions& options, const std::string& path,
            std::ostream& out, std::ostream& err) {
  CheckPictureName(path);
  Tree tree(session, options);
  solve.fObserver = &tree;
  solve.fSearch.fLearning = VokTarnSearch::Learning::Off;  // it would leave several choices at once
  NoBuffer buffer;
  std::ostream nowhere(&buffer);  // the picture tells the solutions
  const int exitCode = RunSolve(session, solve, nowhere, err);
  TextWriter dot;
  tree.Write(dot);
  WritePicture(dot.str(), path, out);
  return exitCode;
}

}  // namespace tarn
