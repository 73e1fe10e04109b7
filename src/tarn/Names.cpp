#include "tarn/Names.h"

#include <algorithm>

#include "tarn/Diagnostic.h"
#include "tarn/Domain.h"
#include "tarn/Lexer.h"
#include "tarn/TextStream.h"

namespace tarn {
namespace {

// Expressions are told so deep; a statement's own text tells the rest.
constexpr int sMostDepth = 6;

std::string Print(const VokTarnAny& value) {
  TextWriter text;
  value.PrintOn(text);
  return text.str();
}

}  // namespace

Names::Names(Session& session, const Source& source) : fSession(session), fSource(source) {
  for (const auto& [operation, value] : session.GetCompiler().GetOperations()) {
    fOperations.emplace(value, &operation);
  }
  NoteOrigins();
  NoteUnnamed();
}

void Names::NoteOrigins() {
  auto variable = fSession.GetVariables().begin();
  auto truth = fSession.GetCompiler().GetTruths().begin();
  const std::vector<Statement>& statements = fSession.GetModel().GetStatements();
  for (std::size_t i = 0; i < statements.size(); ++i) {
    if (const auto* declaration = std::get_if<Declaration>(&statements[i].fBody)) {
      for (std::size_t count = declaration->fNames.size(); count > 0; --count) {
        fOrigins[*variable++] = i;
      }
    }
    const auto* formula = std::get_if<Formula>(&statements[i].fBody);
    if (formula != nullptr && formula->fKind == Formula::Kind::Truth) {
      fOrigins[*truth++] = i;
    }
  }
}

void Names::NoteUnnamed() {
  const VokTarnNetwork& network = fSession.GetNetwork();
  for (VokULong i = 0; i < network.GetConstraintCount(); ++i) {
    for (const VokTarnValueId id : network.GetConstraint(i).GetArguments()) {
      if (id == vokNoValue || !network.GetName(id).empty() || fOperations.contains(id)) {
        continue;
      }
      if (network.GetValue(id).GetCardinality() == 1) {
        fLiterals.try_emplace(id, Print(network.GetValue(id)));
      } else {
        fUnnamed.try_emplace(id, i);
      }
    }
  }
}

std::string Names::GetExpression(VokTarnValueId id, int precedence, int depth) const {
  const VokTarnNetwork& network = fSession.GetNetwork();
  if (const std::string& name = network.GetName(id); !name.empty()) {
    return name;
  }
  if (const auto literal = fLiterals.find(id); literal != fLiterals.end()) {
    return literal->second;
  }
  const auto found = fOperations.find(id);
  if (found == fOperations.end()) {
    return "a value of line " + std::to_string(GetLine(GetStatement(fUnnamed.at(id))));
  }
  if (depth == sMostDepth) {
    return "..";
  }
  const Compiler::Operation& operation = *found->second;
  const std::vector<VokTarnType>& types = fSession.GetModules().GetTable().GetTypes();
  const auto type = std::ranges::find(types, operation.fOperator);
  const std::string spelling = type == types.end() ? static_cast<const char*>(operation.fOperator)
                                                   : "(" + std::string((*type)->GetName().View()) + ")";
  const Vocabulary::Infix* infix =
      operation.fRight == vokNoValue ? nullptr : fSession.GetModules().GetVocabulary().FindInfix(spelling);
  const int own = infix == nullptr ? Vocabulary::Prefix : infix->fPrecedence;
  std::string text;
  if (infix == nullptr) {
    const bool isWord = type != types.end() || IsNameStart(spelling[0]);
    text = spelling + (isWord ? " " : "") + GetExpression(operation.fLeft, own + 1, depth + 1);
  } else {
    const bool isLeft = infix->fAssociativity == Vocabulary::Associativity::Left;
    text = GetExpression(operation.fLeft, isLeft ? own : own + 1, depth + 1) + " " + spelling + " " +
           GetExpression(operation.fRight, own + 1, depth + 1);
  }
  return own < precedence ? "(" + text + ")" : text;
}

std::size_t Names::GetStatement(VokULong constraint) const {
  const std::vector<Session::Constraints>& constraints = fSession.GetConstraints();
  return static_cast<std::size_t>(std::ranges::upper_bound(constraints, constraint, {}, &Session::Constraints::fEnd) -
                                  constraints.begin());
}

std::optional<std::size_t> Names::GetOrigin(VokTarnValueId id) const {
  const auto found = fOrigins.find(id);
  return found == fOrigins.end() ? std::nullopt : std::optional(found->second);
}

std::string Names::DescribeStatement(std::size_t statement) const {
  const Statement& place = fSession.GetModel().GetStatements()[statement];
  const auto* declaration = std::get_if<Declaration>(&place.fBody);
  const std::size_t end =
      declaration == nullptr ? place.fEnd : declaration->fDomainOffset + declaration->fDomain.size();
  TextReader lines(std::string(fSource.GetText().substr(place.fOffset, end - place.fOffset)));
  std::string text = "line " + std::to_string(GetLine(statement)) + ":";
  for (std::string line; std::getline(lines, line);) {
    TextReader words(line.substr(0, line.find("//")));
    for (std::string word; words >> word;) {
      text += " " + word;
    }
  }
  return MakePrintable(text);
}

void RefuseRestored(const Session& session, const Source& source) {
  if (session.IsRestored()) {
    throw ProgramError(MakePrintable(source.GetName()) +
                       ": error: a saved network has no statements to name; give the model that it comes from");
  }
}

std::string DescribeDomain(const VokTarnAny& domain) {
  std::string own = Print(domain);
  std::string listed = Domain(domain).Format();
  return listed.size() < own.size() ? listed : own;
}

}  // namespace tarn
