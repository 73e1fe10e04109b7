// The expressions of the model language: precedence climbing over the levels of Vocabulary::Precedence.
//
// An operand is a prefix expression; a prefix operator binds looser than "^" on its right, so -x ^ 2 is -(x ^ 2),
// and the exponent is a prefix expression again, so 2 ^ -1 needs no parentheses. Nodes are added behind their
// operands. Recursion happens where the text nests (parentheses, prefixes, right-associative operators), and there
// the depth is counted.
#include <utility>

#include "tarn/Diagnostic.h"
#include "tarn/Parser.h"

namespace tarn {
namespace {

// The operator of list[index].
constexpr std::string_view sElement = "element";

}  // namespace

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
  if (fPending || !IsPrefix()) {
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
  if (fPending) {
    return *std::exchange(fPending, std::nullopt);
  }
  if (fToken.Is("(")) {
    return ParseParenthesis();
  }
  if (IsListAhead()) {
    const std::size_t offset = fToken.fOffset;
    Members list;
    ParseMembers(list);
    return ParseIndex(std::move(list), offset);
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
  if (!variable && fVocabulary.IsListFunction(token.fText)) {
    return ParseCall();
  }
  if (!variable && fVocabulary.IsReserved(token.fText)) {
    FailUnexpected("an expression");
  }
  Advance();
  if (variable) {
    return AddNode(Node::Kind::Variable, token.fText, token.fOffset, *variable);
  }
  if (fToken.Is("(")) {
    std::vector<std::string> notes{"the operators over lists are:"};
    for (const auto& [name, kind] : fVocabulary.GetListOperators()) {
      notes.push_back("  " + name);
    }
    throw ModelError(token.fOffset, "unknown operator " + Quote(token.fText), std::move(notes));
  }
  return AddNode(Node::Kind::Literal, token.fText, token.fOffset, 0);
}

void Parser::ExpectClosing(std::size_t open, std::string_view closing) {
  if (fToken.Is(";") || fToken.fKind == Token::Kind::End) {
    throw ModelError(open, "this " + Quote(fText.substr(open, 1)) + " is never closed");
  }
  if (!Accept(closing)) {
    FailUnexpected("an operator or " + Quote(closing));
  }
}

bool Parser::IsListAhead() const {
  return fToken.Is("[") || (fToken.fKind == Token::Kind::Word && fModel.FindList(fToken.fText) != nullptr);
}

void Parser::ParseMembers(Members& members) {
  if (!fToken.Is("[")) {
    return AppendNamedList(members);
  }
  const DepthGuard guard(*this);
  const std::size_t open = fToken.fOffset;
  Advance();
  if (Accept("]")) {
    return;
  }
  do {
    ParseArgument(members);
  } while (Accept(","));
  ExpectClosing(open, "]");
}

// A copy of the expressions of the list: the compiler gives equal operations one value.
void Parser::AppendNamedList(Members& members) {
  const Formula& list = *fModel.FindList(fToken.fText);
  fCopies += list.fNodes.size();
  if (fCopies > sMostCopies) {
    throw ModelError(fToken.fOffset, "the named lists of the text stand for too many expressions: the limit is " +
                                         std::to_string(sMostCopies));
  }
  const auto nodes = static_cast<NodeIndex>(fFormula->fNodes.size());
  const auto calls = static_cast<NodeIndex>(fFormula->fMembers.size());
  for (Node node : list.fNodes) {
    if (node.fKind == Node::Kind::Call) {
      node.fLeft += calls;
      node.fRight += calls;
    } else if (node.fKind != Node::Kind::Variable && node.fKind != Node::Kind::Literal) {
      node.fLeft += nodes;
      node.fRight += nodes;
    }
    fFormula->fNodes.push_back(node);
  }
  for (const NodeIndex member : list.fMembers) {
    fFormula->fMembers.push_back(member + nodes);
  }
  for (const NodeIndex root : list.fRoots) {
    members.push_back(root + nodes);
  }
  Advance();
}

void Parser::ParseArgument(Members& members) {
  if (IsListAhead()) {
    const std::size_t offset = fToken.fOffset;
    Members list;
    ParseMembers(list);
    if (!fToken.Is("[")) {
      members.insert(members.end(), list.begin(), list.end());
      return;
    }
    fPending = ParseIndex(std::move(list), offset);
  }
  members.push_back(ParseExpression());
}

NodeIndex Parser::AddCall(std::string_view text, std::size_t offset, const Members& members, bool hasBeside) {
  const std::size_t first = fFormula->fMembers.size();
  fFormula->fMembers.insert(fFormula->fMembers.end(), members.begin(), members.end());
  const NodeIndex call = AddNode(Node::Kind::Call, text, offset, static_cast<NodeIndex>(first),
                                 static_cast<NodeIndex>(fFormula->fMembers.size()));
  fFormula->fNodes.back().fHasBeside = hasBeside;
  return call;
}

// function list, function (list), function (list, expression)
NodeIndex Parser::ParseCall() {
  const Token function = fToken;
  Advance();
  Members members;
  if (IsListAhead()) {
    ParseMembers(members);
    return AddCall(function.fText, function.fOffset, members, false);
  }
  const std::size_t open = fToken.fOffset;
  if (!Accept("(")) {
    FailUnexpected("'(' or a list");
  }
  if (!IsListAhead()) {
    FailUnexpected("a list");
  }
  const DepthGuard guard(*this);
  ParseMembers(members);
  const bool hasBeside = Accept(",");
  if (hasBeside) {
    members.insert(members.begin(), ParseExpression());
  }
  ExpectClosing(open);
  return AddCall(function.fText, function.fOffset, members, hasBeside);
}

// [expression], behind a list that starts at the place `offset`
NodeIndex Parser::ParseIndex(Members list, std::size_t offset) {
  const std::size_t open = fToken.fOffset;
  if (!Accept("[")) {
    throw ModelError(offset, "a list is no value; one of its members is: list[1] is the first");
  }
  const DepthGuard guard(*this);
  list.insert(list.begin(), ParseExpression());
  ExpectClosing(open, "]");
  return AddCall(sElement, offset, list, true);
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
