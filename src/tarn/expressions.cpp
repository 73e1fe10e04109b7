// The expressions of the model language: precedence climbing over the levels of Vocabulary::Precedence.
//
// An operand is a prefix expression; a prefix operator binds looser than "^" on its right, so -x ^ 2 is -(x ^ 2),
// and the exponent is a prefix expression again, so 2 ^ -1 needs no parentheses. Nodes are added behind their
// operands. Recursion happens where the text nests (parentheses, prefixes, right-associative operators), and there
// the depth is counted.
#include "tarn/Diagnostic.h"
#include "tarn/Parser.h"

namespace tarn {

// Bounds the recursion by a count of our own, so that no text can exhaust the stack.
class Parser::DepthGuard {
 public:
  explicit DepthGuard(Parser& parser) : fParser(parser) {
    if (++fParser.fDepth > sMaxDepth) {
      throw ModelError(fParser.fToken.fOffset,
                       "the expression is nested too deeply: the limit is " + std::to_string(sMaxDepth) + " levels");
    }
  }
  DepthGuard(const DepthGuard&) = delete;
  DepthGuard& operator=(const DepthGuard&) = delete;
  ~DepthGuard() { --fParser.fDepth; }

 private:
  Parser& fParser;
};

bool Parser::IsVariable() const noexcept {
  return fToken.fKind == Token::Kind::Word && fModel.FindVariable(fToken.fText).has_value();
}

const Vocabulary::Infix* Parser::FindInfix() const noexcept {
  const bool mayBe = fToken.fKind == Token::Kind::Symbol || (fToken.fKind == Token::Kind::Word && !IsVariable());
  return mayBe ? fVocabulary.FindInfix(fToken.fText) : nullptr;
}

NodeIndex Parser::AddNode(Node::Kind kind, std::string_view text, std::size_t offset, NodeIndex left, NodeIndex right) {
  fFormula->fNodes.push_back({fModel.Intern(text), static_cast<std::uint32_t>(offset), left, right, kind});
  return static_cast<NodeIndex>(fFormula->fNodes.size() - 1);
}

NodeIndex Parser::ParseInfix(int precedence) {
  NodeIndex left = ParsePrefix();
  for (;;) {
    const Vocabulary::Infix* infix = FindInfix();
    if (infix == nullptr || infix->fPrecedence < precedence) {
      return left;
    }
    const Vocabulary::Infix operation = *infix;
    const Token token = fToken;
    Advance();
    NodeIndex right = 0;
    if (operation.fAssociativity == Vocabulary::Associativity::Right) {
      const DepthGuard guard(*this);
      right = ParseInfix(operation.fPrecedence);
    } else {
      right = ParseInfix(operation.fPrecedence + 1);
    }
    left = AddNode(Node::Kind::Binary, token.fText, token.fOffset, left, right);
    const Vocabulary::Infix* next = FindInfix();
    if (operation.fAssociativity == Vocabulary::Associativity::None && next != nullptr &&
        next->fPrecedence == operation.fPrecedence) {
      throw ModelError(fToken.fOffset, Quote(token.fText) + " and " + Quote(fToken.fText) +
                                           " cannot follow each other without parentheses");
    }
  }
}

NodeIndex Parser::ParsePrefix() {
  if (!IsPrefix()) {
    return ParsePower();
  }
  const DepthGuard guard(*this);
  const Token token = fToken;
  Advance();
  if (token.Is("-") && fToken.fKind == Token::Kind::Number) {
    // A negative number is a literal: the least value has no positive counterpart to negate.
    Lexer ahead = fLexer;
    if (!ahead.Next().Is("^")) {
      std::string number(1, '-');
      number += fToken.fText;
      Advance();
      return AddNode(Node::Kind::Literal, number, token.fOffset, 0);
    }
  }
  const NodeIndex operand = ParsePrefix();
  return AddNode(Node::Kind::Unary, token.fText, token.fOffset, operand);
}

NodeIndex Parser::ParsePower() {
  const NodeIndex left = ParsePrimary();
  const Vocabulary::Infix* infix = FindInfix();
  if (infix == nullptr || infix->fPrecedence != Vocabulary::Power) {
    return left;
  }
  const Token token = fToken;
  Advance();
  const DepthGuard guard(*this);
  const NodeIndex right = ParsePrefix();
  return AddNode(Node::Kind::Binary, token.fText, token.fOffset, left, right);
}

NodeIndex Parser::ParsePrimary() {
  if (fToken.Is("(")) {
    return ParseParenthesis();
  }
  if (fToken.fKind == Token::Kind::Word) {
    return ParseName();
  }
  if (fToken.fKind != Token::Kind::Number) {
    FailUnexpected("an expression");
  }
  const Token token = fToken;
  Advance();
  return AddNode(Node::Kind::Literal, token.fText, token.fOffset, 0);
}

NodeIndex Parser::ParseName() {
  const Token token = fToken;
  const std::optional<VariableIndex> variable = fModel.FindVariable(token.fText);
  if (!variable && fVocabulary.IsReserved(token.fText)) {
    FailUnexpected("an expression");
  }
  Advance();
  if (variable) {
    return AddNode(Node::Kind::Variable, token.fText, token.fOffset, *variable);
  }
  if (fToken.Is("(")) {
    std::vector<std::string> notes{"the operators over lists, which make a statement, are:"};
    for (const auto& [name, kind] : fVocabulary.GetListOperators()) {
      notes.push_back("  " + name);
    }
    throw ModelError(token.fOffset, "unknown operator " + Quote(token.fText), std::move(notes));
  }
  return AddNode(Node::Kind::Literal, token.fText, token.fOffset, 0);
}

void Parser::ExpectClosing(std::size_t open) {
  if (fToken.Is(";") || fToken.fKind == Token::Kind::End) {
    throw ModelError(open, "this '(' is never closed");
  }
  if (!Accept(")")) {
    FailUnexpected("an operator or ')'");
  }
}

NodeIndex Parser::ParseParenthesis() {
  const DepthGuard guard(*this);
  const Token open = fToken;
  Lexer ahead = fLexer;
  std::string words;
  const std::string type = TakeName(ahead, fVocabulary.GetTypes(), words);
  if (!type.empty() && ahead.Next().Is(")")) {
    fLexer = ahead;
    Advance();
    const NodeIndex operand = ParsePrefix();
    return AddNode(Node::Kind::Cast, type, open.fOffset, operand);
  }
  Advance();
  const NodeIndex inner = ParseExpression();
  if (fToken.fKind == Token::Kind::Symbol && Vocabulary::IsRelation(fToken.fText)) {
    throw ModelError(fToken.fOffset, "the relation " + Quote(fToken.fText) +
                                         " makes a statement and cannot stand inside an expression; the doubled "
                                         "signs, such as '==' and '<<', make truth values");
  }
  ExpectClosing(open.fOffset);
  return inner;
}

}  // namespace tarn
