// The network of a model as a picture: its variables, and its statements between them. The intermediate values and the
// constraints that a statement is made of are not shown: they belong to the statement.
#include <algorithm>
#include <ostream>

#include "tarn/TextStream.h"
#include "tarn/commands/Commands.h"
#include "tarn/commands/Interrupt.h"
#include "tarn/commands/Picture.h"

namespace tarn {
namespace {

constexpr std::size_t sMaxLabel = 36;
constexpr std::size_t sMaxTooltip = 500;

constexpr const char* sHead =
    "graph network {\n"
    "  layout=neato; overlap=false; sep=\"+6\"; outputorder=edgesfirst;\n"
    "  node [fontname=\"Helvetica,Arial,sans-serif\", fontsize=12, style=filled, fillcolor=white];\n"
    "  edge [fontname=\"Helvetica,Arial,sans-serif\", fontsize=10, color=\"#808080\"];\n";
constexpr const char* sAssigned = "#b7e1b0";
constexpr const char* sRelation = "#f2f2f2";
constexpr const char* sObjective = "#ffe08a";
constexpr const char* sFailed = "#f28b82";

// The text of a statement without its comments.
std::string GetText(const std::string& model, const Statement& statement) {
  std::string text;
  for (std::size_t at = statement.fOffset; at < statement.fEnd;) {
    const std::size_t comment = std::min(model.find("//", at), statement.fEnd);
    text.append(model, at, comment - at);
    at = std::min(model.find('\n', comment), statement.fEnd);
  }
  return text;
}

// The variables of a statement, each once, as they come.
std::vector<VariableIndex> GetVariables(const Formula& formula) {
  std::vector<VariableIndex> variables;
  for (const Node& node : formula.fNodes) {
    if (node.fKind == Node::Kind::Variable && std::ranges::find(variables, node.fLeft) == variables.end()) {
      variables.push_back(node.fLeft);
    }
  }
  return variables;
}

// Whether the constraint that failed is one of those that were added for the statement.
bool HasFailed(Session& session, std::size_t statement) {
  const VokTarnConstraint* const failed = session.GetNetwork().GetFailedConstraint();
  if (failed == nullptr || statement >= session.GetConstraints().size()) {
    return false;
  }
  const Session::Constraints range = session.GetConstraints()[statement];
  for (VokULong i = range.fFirst; i < range.fEnd; ++i) {
    if (&session.GetNetwork().GetConstraint(i) == failed) {
      return true;
    }
  }
  return false;
}

void DrawVariables(Session& session, std::ostream& dot) {
  const std::vector<Model::Variable>& variables = session.GetModel().GetVariables();
  for (std::size_t i = 0; i < variables.size(); ++i) {
    const VokTarnAny& value = session.GetNetwork().GetValue(session.GetVariables()[i]);
    dot << "  v" << i << " [label=" << DotText(variables[i].fName + "\n" + ShortDomain(value))
        << ", tooltip=" << DotText(variables[i].fName + " : " + variables[i].fType);
    if (const int cardinality = value.GetCardinality(); cardinality == 0 || cardinality == 1) {
      dot << ", fillcolor=\"" << (cardinality == 0 ? sFailed : sAssigned) << '"';
    }
    dot << "];\n";
  }
}

// What a statement says in few characters: the sign alone where it is one between two variables and has no direction.
std::string GetLabel(const Formula& formula, const std::string& text) {
  const bool isPlain = formula.fKind == Formula::Kind::Relations && formula.fNodes.size() == 2;
  const std::string_view sign = isPlain ? formula.fOperators[0].fText : std::string_view();
  return sign == "=" || sign == "<>" ? std::string(sign) : ShortText(text, sMaxLabel);
}

// A statement over two variables is an edge with a label, any other one a box. The label is a node as well: only nodes
// are kept apart.
void DrawStatement(Session& session, std::size_t place, const std::string& modelText, std::ostream& dot) {
  const Statement& statement = session.GetModel().GetStatements()[place];
  const auto& formula = std::get<Formula>(statement.fBody);
  const std::vector<VariableIndex> variables = GetVariables(formula);
  const std::string text = GetText(modelText, statement);
  const std::string line = std::to_string(statement.fLine) + ": ";
  const bool isEdge = variables.size() == 2 && !formula.IsObjective();
  dot << "  s" << place << " [label=" << DotText(isEdge ? GetLabel(formula, text) : line + ShortText(text, sMaxLabel))
      << ", tooltip=" << DotText("line " + line + ShortText(text, sMaxTooltip)) << ", fontsize=10, ";
  if (isEdge) {
    dot << "shape=plain, fillcolor=\"" << (HasFailed(session, place) ? sFailed : "white") << "\"];\n";
  } else {
    const char* const color = HasFailed(session, place) ? sFailed : formula.IsObjective() ? sObjective : sRelation;
    dot << "shape=box, margin=\"0.08,0.04\", height=0.3, fillcolor=\"" << color << "\"];\n";
  }
  for (const VariableIndex variable : variables) {
    dot << "  s" << place << " -- v" << variable << (isEdge ? " [len=0.6];\n" : ";\n");
  }
}

}  // namespace

int RunGraph(Session& session, const GraphOptions& options, const std::string& path, std::ostream& out,
             std::ostream& err) {
  CheckPictureName(path);
  VokTarnNetwork& network = session.GetNetwork();
  network.SetInterrupt(IsInterrupted);
  if (!options.fDeclared && network.Propagate() == VokTarnNetwork::Outcome::Interrupted) {
    err << "tarn: stopped before the network was narrowed; nothing is drawn\n";
    return Undecided;
  }
  TextWriter dot;
  // Leading edges round nodes takes graphviz minutes where there are hundreds.
  constexpr std::size_t sMaxCurved = 50;
  const bool isCurved = session.GetVariables().size() <= sMaxCurved;
  dot << sHead << "  splines=" << (isCurved ? "true" : "line") << ";\n";
  DrawVariables(session, dot);
  const std::string modelText = session.GetContents().fModelText;
  for (std::size_t place = 0; place < session.GetModel().GetStatements().size(); ++place) {
    if (std::holds_alternative<Formula>(session.GetModel().GetStatements()[place].fBody)) {
      DrawStatement(session, place, modelText, dot);
    }
  }
  dot << "}\n";
  WritePicture(dot.str(), path, out);
  return Solved;
}

}  // namespace tarn
