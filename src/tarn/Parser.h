#pragma once

#include <optional>
#include <string>

#include "tarn/Lexer.h"
#include "tarn/Model.h"

namespace tarn {

// Reads the statements of a model text, one at a time.
//
// Between two statements nothing has been read ahead, so the model and the vocabulary may grow by what the last
// statement declared or opened. The parser itself changes neither, except that it keeps texts in the model.
//
// Cost    Linear in the text. Operators of one level are read in a loop; nesting is limited to sMaxDepth.
// Errors  Throws ModelError at the first mistake, and where more is copied from named lists than sMostCopies.
class Parser {
 public:
  static constexpr int sMaxDepth = 1000;
  // Lists may be made of lists, so that a short text can stand for any number of expressions.
  static constexpr std::size_t sMostCopies = 1U << 21;
  // Of the constants in a table.
  static constexpr VokLong sGreatestConstant = 2147483645;

  Parser(const Source& source, const Vocabulary& vocabulary, Model& model);

  // The next statement, or nothing at the end of the text.
  std::optional<Statement> Next();

 private:
  class DepthGuard;

  void Advance();
  bool Accept(std::string_view text);
  // Of the "(" or "[" at that place; `closing` is its counterpart.
  void ExpectClosing(std::size_t open, std::string_view closing = ")");
  [[noreturn]] void FailUnexpected(const std::string& expected) const;
  [[noreturn]] void FailUnfinished() const;
  Word MakeWord(std::string_view text, std::size_t offset);
  // The longest of `names` that the words ahead of `lexer` spell, the empty text when there is none; the lexer
  // is left behind it. `words` becomes what was read in search of it.
  template <class Names>
  std::string TakeName(Lexer& lexer, const Names& names, std::string& words) const {
    std::string name;
    Lexer ahead = lexer;
    for (std::size_t count = 0; count < fVocabulary.GetLongestName() && ahead.IsWordAhead(); ++count) {
      words += count == 0 ? "" : " ";
      words += ahead.Next().fText;
      if (names.contains(words)) {
        name = words;
        lexer = ahead;
      }
    }
    return name;
  }

  bool IsDeclarationAhead();
  bool IsListDefinitionAhead();
  Declaration ParseDeclaration();
  Word ParseNewName(const std::string& kind);
  Word ParseType();
  Use ParseUse();
  Formula ParseFormula();
  bool ParseObjective(Formula& formula);
  bool ParseList(Formula& formula);
  void ParseTable(Formula& formula);
  void ParseRow(Formula& formula);
  VokLong ParseConstant();
  ListDefinition ParseListDefinition();
  void ParseRelations(Formula& formula);

  NodeIndex ParseExpression() { return ParseInfix(Vocabulary::Implication); }
  NodeIndex ParseInfix(int precedence);
  NodeIndex ParsePrefix();
  NodeIndex ParsePower();
  NodeIndex ParsePrimary();
  NodeIndex ParseName();
  NodeIndex ParseCall();
  using Members = std::vector<NodeIndex>;
  NodeIndex ParseIndex(Members list, std::size_t offset);
  // A list in brackets or by its name, whose members are appended.
  void ParseMembers(Members& members);
  void AppendNamedList(Members& members);
  // An expression, or a list whose members are appended.
  void ParseArgument(Members& members);
  bool IsListAhead() const;
  NodeIndex AddCall(std::string_view text, std::size_t offset, const Members& members, bool hasBeside);
  NodeIndex ParseParenthesis();
  // A declared name stands for its variable, also when a module opened later has an operator of that name.
  bool IsVariable() const noexcept;
  bool IsPrefix() const noexcept { return !IsVariable() && fVocabulary.IsPrefix(fToken.fText); }
  const Vocabulary::Infix* FindInfix() const noexcept;
  NodeIndex AddNode(Node::Kind kind, std::string_view text, std::size_t offset, NodeIndex left, NodeIndex right = 0);

  const Vocabulary& fVocabulary;
  Model& fModel;
  std::string_view fText;
  Lexer fLexer;
  Lexer fBefore;  // before the current token
  Token fToken{Token::Kind::End, {}, 0};
  std::size_t fLastEnd = 0;  // behind the token before the current one
  std::size_t fLine = 1;     // the line of fCounted
  std::size_t fCounted = 0;
  int fDepth = 0;
  std::size_t fCopies = 0;  // of nodes, from named lists
  // A member of a list that was read where the list itself could have stood: the next primary expression.
  std::optional<NodeIndex> fPending;
  Formula* fFormula = nullptr;  // the statement that is being read
};

}  // namespace tarn
