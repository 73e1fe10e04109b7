#include "tarn/Parser.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "tarn/Diagnostic.h"

namespace tarn {

Parser::Parser(const Source& source, const Vocabulary& vocabulary, Model& model)
    : fVocabulary(vocabulary), fModel(model), fText(source.GetText()), fLexer(source, vocabulary), fBefore(fLexer) {}

void Parser::Advance() {
  fLastEnd = fToken.fOffset + fToken.fText.size();
  fBefore = fLexer;
  fToken = fLexer.Next();
}

bool Parser::Accept(std::string_view text) {
  if (!fToken.Is(text)) {
    return false;
  }
  Advance();
  return true;
}

void Parser::FailUnexpected(const std::string& expected) const {
  if (fToken.fKind == Token::Kind::End) {
    throw ModelError(fLastEnd, "expected " + expected + ", found the end of the text");
  }
  throw ModelError(fToken.fOffset, "expected " + expected + ", found " + Quote(fToken.fText));
}

void Parser::FailUnfinished() const {
  // What comes on a later line is most often right, and the statement before it lacks its end.
  const std::string_view between = fText.substr(fLastEnd, fToken.fOffset - fLastEnd);
  if (fToken.fKind == Token::Kind::End || between.find('\n') != std::string_view::npos) {
    throw ModelError(fLastEnd, "missing ';' at the end of the statement");
  }
  FailUnexpected("an operator or ';'");
}

Word Parser::MakeWord(std::string_view text, std::size_t offset) {
  return {fModel.Intern(text), static_cast<std::uint32_t>(offset)};
}

std::optional<Statement> Parser::Next() {
  fToken = {Token::Kind::End, {}, fLexer.GetOffset()};
  do {
    Advance();
  } while (fToken.Is(";"));
  if (fToken.fKind == Token::Kind::End) {
    return std::nullopt;
  }
  const std::string_view skipped = fText.substr(fCounted, fToken.fOffset - fCounted);
  fLine += static_cast<std::size_t>(std::ranges::count(skipped, '\n'));
  fCounted = fToken.fOffset;

  Statement statement{fLine, fToken.fOffset, 0, Use{}};
  if (IsDeclarationAhead()) {
    statement.fBody = ParseDeclaration();
  } else if (fToken.Is("use")) {
    statement.fBody = ParseUse();
  } else if (IsListDefinitionAhead()) {
    statement.fBody = ParseListDefinition();
  } else {
    statement.fBody = ParseFormula();
  }
  // The current token, the last one read, is now the ";".
  if (!fToken.Is(";")) {
    FailUnfinished();
  }
  statement.fEnd = fLastEnd;
  return statement;
}

bool Parser::IsDeclarationAhead() {
  if (fToken.fKind != Token::Kind::Word) {
    return false;
  }
  Lexer ahead = fLexer;
  const Token next = ahead.Next();
  return next.Is(",") || next.Is(":");
}

// "list" is a word of the language in this place only: two names in a row begin nothing else.
bool Parser::IsListDefinitionAhead() {
  if (!fToken.Is("list")) {
    return false;
  }
  Lexer ahead = fLexer;
  return ahead.IsWordAhead() && ahead.Next().fKind == Token::Kind::Word && ahead.Next().Is("=");
}

Word Parser::ParseNewName(const std::string& kind) {
  if (fToken.fKind != Token::Kind::Word) {
    FailUnexpected("the name of a " + kind);
  }
  if (fVocabulary.IsReserved(fToken.fText)) {
    throw ModelError(fToken.fOffset,
                     Quote(fToken.fText) + " has a meaning of its own and cannot be the name of a " + kind);
  }
  if (IsVariable() || fModel.FindList(fToken.fText) != nullptr) {
    throw ModelError(fToken.fOffset, Quote(fToken.fText) + " is declared already");
  }
  const Word name = MakeWord(fToken.fText, fToken.fOffset);
  Advance();
  return name;
}

Declaration Parser::ParseDeclaration() {
  Declaration declaration;
  do {
    declaration.fNames.push_back(ParseNewName("variable"));
  } while (Accept(","));
  std::vector<Word> names = declaration.fNames;
  std::ranges::sort(names, {}, [](const Word& word) { return std::pair(word.fText, word.fOffset); });
  const auto twins = std::ranges::adjacent_find(names, {}, &Word::fText);
  if (twins != names.end()) {
    throw ModelError(std::next(twins)->fOffset, Quote(twins->fText) + " is declared already");
  }
  if (!fToken.Is(":")) {
    FailUnexpected("',' or ':'");
  }
  // From here to the ";" the text belongs to the type and need not consist of tokens.
  declaration.fType = ParseType();
  declaration.fDomainOffset = fLexer.GetOffset();
  declaration.fDomain = fLexer.ReadRaw();
  Advance();
  return declaration;
}

Word Parser::ParseType() {
  const bool isWord = fLexer.IsWordAhead();
  const std::size_t offset = fLexer.GetOffset();
  std::string words;
  const std::string name = TakeName(fLexer, fVocabulary.GetTypes(), words);
  if (name.empty()) {
    std::vector<std::string> notes{"the types are:"};
    for (const std::string& type : fVocabulary.GetTypes()) {
      notes.push_back("  " + type);
    }
    throw ModelError(offset, isWord ? "unknown type " + Quote(words) : "expected a type", std::move(notes));
  }
  return MakeWord(name, offset);
}

Use Parser::ParseUse() {
  Advance();
  if (fToken.fKind != Token::Kind::Word) {
    FailUnexpected("the name of a module");
  }
  const Use use{MakeWord(fToken.fText, fToken.fOffset)};
  Advance();
  return use;
}

Formula Parser::ParseFormula() {
  Formula formula{};
  fFormula = &formula;
  fDepth = 0;
  if (!ParseObjective(formula) && !ParseList(formula)) {
    ParseRelations(formula);
  }
  return formula;
}

bool Parser::ParseObjective(Formula& formula) {
  if (!fToken.Is("minimize") && !fToken.Is("maximize")) {
    return false;
  }
  if (fModel.GetObjective()) {
    throw ModelError(fToken.fOffset, "the model has an objective already");
  }
  formula.fKind = fToken.Is("minimize") ? Formula::Kind::Minimize : Formula::Kind::Maximize;
  Advance();
  formula.fRoots.push_back(ParseExpression());
  return true;
}

bool Parser::ParseList(Formula& formula) {
  const std::size_t offset = fToken.fOffset;
  Lexer ahead = fBefore;
  std::string words;
  const std::string name = IsVariable() ? "" : TakeName(ahead, fVocabulary.GetListOperators(), words);
  if (name.empty() || fVocabulary.GetListOperators().at(name) == VokTarnOperatorKind::ListFunction) {
    return false;
  }
  formula.fOperators.push_back(MakeWord(name, offset));
  fLexer = ahead;
  fToken = {Token::Kind::Word, fText.substr(offset, ahead.GetOffset() - offset), offset};
  Advance();
  if (fVocabulary.GetListOperators().at(name) == VokTarnOperatorKind::Table) {
    ParseTable(formula);
    return true;
  }
  formula.fKind = Formula::Kind::List;
  if (IsListAhead()) {
    ParseMembers(formula.fRoots);
    return true;
  }
  const std::size_t open = fToken.fOffset;
  if (!Accept("(")) {
    FailUnexpected("'(' or a list");
  }
  do {
    ParseArgument(formula.fRoots);
  } while (Accept(","));
  ExpectClosing(open);
  return true;
}

// (list, row, .., row)
void Parser::ParseTable(Formula& formula) {
  formula.fKind = Formula::Kind::Table;
  const std::size_t open = fToken.fOffset;
  if (!Accept("(")) {
    FailUnexpected("'('");
  }
  const std::size_t list = fToken.fOffset;
  if (!IsListAhead()) {
    FailUnexpected("a list");
  }
  ParseMembers(formula.fRoots);
  if (formula.fRoots.empty()) {
    throw ModelError(list, "the list of a table must have a member");
  }
  while (Accept(",")) {
    ParseRow(formula);
  }
  ExpectClosing(open);
}

void Parser::ParseRow(Formula& formula) {
  const std::size_t open = fToken.fOffset;
  if (!Accept("[")) {
    FailUnexpected("a row of numbers in brackets");
  }
  const std::size_t before = formula.fConstants.size();
  do {
    formula.fConstants.push_back(ParseConstant());
  } while (Accept(","));
  ExpectClosing(open, "]");
  const std::size_t count = formula.fConstants.size() - before;
  if (count != formula.fRoots.size()) {
    throw ModelError(open, "this row has " + std::to_string(count) + " numbers, and the list " +
                               std::to_string(formula.fRoots.size()) + " members");
  }
}

VokLong Parser::ParseConstant() {
  const Token first = fToken;
  const bool isNegative = Accept("-");
  if (fToken.fKind != Token::Kind::Number) {
    FailUnexpected("a number");
  }
  VokLong magnitude = 0;
  const std::string_view digits = fToken.fText;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), magnitude);
  if (read.ec != std::errc() || magnitude > sGreatestConstant) {
    throw ModelError(first.fOffset, "a number must lie between -" + std::to_string(sGreatestConstant) + " and " +
                                        std::to_string(sGreatestConstant));
  }
  Advance();
  return isNegative ? -magnitude : magnitude;
}

ListDefinition Parser::ParseListDefinition() {
  Advance();
  ListDefinition definition;
  definition.fName = ParseNewName("list");
  Advance();  // the "="
  fFormula = &definition.fList;
  fDepth = 0;
  definition.fList.fKind = Formula::Kind::List;
  if (!IsListAhead()) {
    FailUnexpected("a list");
  }
  ParseMembers(definition.fList.fRoots);
  return definition;
}

void Parser::ParseRelations(Formula& formula) {
  formula.fRoots.push_back(ParseExpression());
  while (fToken.fKind == Token::Kind::Symbol && Vocabulary::IsRelation(fToken.fText)) {
    formula.fOperators.push_back(MakeWord(fToken.fText, fToken.fOffset));
    Advance();
    formula.fRoots.push_back(ParseExpression());
  }
  formula.fKind = formula.fOperators.empty() ? Formula::Kind::Truth : Formula::Kind::Relations;
}

}  // namespace tarn
