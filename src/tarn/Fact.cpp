#include "tarn/Fact.h"

#include <algorithm>
#include <array>

#include "framework/VokTarnBoolean.h"
#include "tarn/CompileErrors.h"
#include "tarn/Diagnostic.h"
#include "tarn/Lexer.h"
#include "tarn/Parser.h"

namespace tarn {
namespace {

// A relation, its opposite, and what it is with its sides exchanged.
struct Relation {
  std::string_view fSpelling;
  std::string_view fOpposite;
  std::string_view fExchanged;
};
constexpr std::array sRelations{Relation{"=", "<>", "="},  Relation{"<>", "=", "<>"}, Relation{"<", ">=", ">"},
                                Relation{"<=", ">", ">="}, Relation{">", "<=", "<"},  Relation{">=", "<", "<="}};

const Relation& GetRelation(std::string_view spelling) {
  return *std::ranges::find(sRelations, spelling, &Relation::fSpelling);
}

[[noreturn]] void Refuse(std::size_t offset) {
  throw ModelError(offset, "expected a relation between a variable and a value, such as x <> 7, or false");
}

}  // namespace

Fact::Fact(Session& session, const Source& source) {
  // The words of the fact must not become part of the model.
  Model model;
  for (const Model::Variable& variable : session.GetModel().GetVariables()) {
    model.AddVariable(variable.fName, variable.fType);
  }
  const Source ended(source.GetName(), std::string(source.GetText()) + "\n;");
  Parser parser(ended, session.GetModules().GetVocabulary(), model);
  const std::optional<Statement> statement = parser.Next();
  if (!statement) {
    Refuse(0);
  }
  const auto* formula = std::get_if<Formula>(&statement->fBody);
  if (formula == nullptr) {
    Refuse(statement->fOffset);
  }
  if (const std::optional<Statement> second = parser.Next()) {
    throw ModelError(second->fOffset, "expected one fact only");
  }
  const Node& root = formula->fNodes[formula->fRoots[0]];
  if (formula->fKind == Formula::Kind::Truth && root.fKind == Node::Kind::Literal && root.fText == "false") {
    fText = "false";
    return;
  }
  if (formula->fKind != Formula::Kind::Relations || formula->fOperators.size() != 1) {
    Refuse(statement->fOffset);
  }
  ReadRelation(session, *formula);
}

void Fact::ReadRelation(Session& session, const Formula& formula) {
  const Node* name = &formula.fNodes[formula.fRoots[0]];
  const Node* literal = &formula.fNodes[formula.fRoots[1]];
  fRelation = formula.fOperators[0].fText;
  if (literal->fKind == Node::Kind::Variable) {
    std::swap(name, literal);
    fRelation = GetRelation(fRelation).fExchanged;
  }
  if (name->fKind == Node::Kind::Literal && IsNameStart(name->fText[0])) {
    throw MakeLiteralError(session.GetModel(), *name);
  }
  if (name->fKind != Node::Kind::Variable || literal->fKind != Node::Kind::Literal) {
    Refuse(formula.fOperators[0].fOffset);
  }
  fName = name->fText;
  fLiteral = literal->fText;
  fText = fName + " " + fRelation + " " + fLiteral;
  const VokTarnValueId id = session.GetVariables()[name->fLeft];
  const VokTarnType type = session.GetNetwork().GetType(id);
  ScratchValue value(type);
  if (!ReadLiteral(value, fLiteral)) {
    throw ModelError(literal->fOffset, Quote(fLiteral) + " is not a value of type " + Quote(type->GetName().View()));
  }
  fIsTruth = value.Get().IsDerivedFrom(VokTarnBoolean::sIdent) != 0;
  if (fIsTruth && fRelation != "=" && fRelation != "<>") {
    throw ModelError(formula.fOperators[0].fOffset, "expected = or <> beside the truth value " + Quote(fName));
  }
  if (!fIsTruth && value.Get().IsDerivedFrom(VokTarnInteger::sIdent) == 0) {
    throw ModelError(name->fOffset, Quote(fName) + " is neither an integer nor a truth value");
  }
  fNumber = fIsTruth ? static_cast<const VokTarnBoolean&>(value.Get()).IsPossible(1)
                     : static_cast<const VokTarnInteger&>(value.Get()).GetLowerBound();
  fValue = id;
}

bool Fact::HoldsFor(const VokTarnAny& domain) const {
  if (domain.IsNil() != 0) {
    return true;
  }
  if (fIsTruth) {
    const auto& truth = static_cast<const VokTarnBoolean&>(domain);
    const int allowed = (fRelation == "=") == (fNumber != 0) ? 1 : 0;
    return truth.IsPossible(1 - allowed) == 0;
  }
  const auto& integer = static_cast<const VokTarnInteger&>(domain);
  const VokLong lower = integer.GetLowerBound();
  const VokLong upper = integer.GetUpperBound();
  return fRelation == "="    ? lower == fNumber && upper == fNumber
         : fRelation == "<>" ? !integer.IsPossible(fNumber)
         : fRelation == "<"  ? upper < fNumber
         : fRelation == "<=" ? upper <= fNumber
         : fRelation == ">"  ? lower > fNumber
                             : lower >= fNumber;
}

std::string Fact::GetNegation() const {
  if (IsFalse()) {
    return {};
  }
  // A truth value is stated by itself: its literals need not be the numbers that the language knows.
  if (fIsTruth) {
    return (fRelation == "=") == (fNumber != 0) ? "!" + fName : fName;
  }
  return fName + " " + std::string(GetRelation(fRelation).fOpposite) + " " + fLiteral;
}

}  // namespace tarn
