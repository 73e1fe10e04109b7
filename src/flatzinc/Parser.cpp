#include "flatzinc/Parser.h"

#include <functional>
#include <optional>
#include <unordered_map>

#include "flatzinc/Lexer.h"
#include "flatzinc/sets.h"

namespace fzn {
namespace {

using Kind = Argument::Kind;

// How deep annotations may stand in each other, so that no text exhausts the stack.
constexpr unsigned sMaxDepth = 100;

struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>()(text); }
};

// What a declaration says of the values that its name may stand for.
struct Type {
  enum class Base : std::uint8_t { Truth, Integer, SetOfIntegers, Unsupported };
  Base fBase = Base::Integer;
  bool fIsVariable = false;
  std::optional<Set> fDomain;
  const char* fComplaint = "";  // about a variable of a type that is not supported
  bool fIsSetVariable = false;  // one of those types
};

struct DeclarationAnnotations {
  bool fIsOutput = false;
  bool fIsDefined = false;
  bool fIsIntroduced = false;
  std::vector<Set> fIndexSets;
  bool fIsOutputArray = false;
};

class Parser {
 public:
  Parser(std::string_view text, ErrorList& errors) : fErrors(errors), fLexer(text, errors) { Advance(); }

  Model Parse();

 private:
  // What a name stands for; nothing when that is not supported.
  using Meaning = std::optional<Argument>;

  // ---- Tokens
  void Advance() { fToken = fLexer.Next(); }
  bool Take(std::string_view symbol);
  void Expect(std::string_view symbol);
  void ExpectName(std::string_view name);
  std::string_view TakeName(const char* expected);
  std::int64_t TakeInteger();
  [[noreturn]] void FailExpecting(const std::string& expected) const;
  void SkipItem();
  VokTarnConsistency ParseConstraintAnnotations();
  void SkipParentheses();

  // ---- Items
  void ParseItem();
  void ParseDeclaration();
  void ParseArrayDeclaration();
  void ParseConstraint();
  void ParseSolve();
  Type ParseType();
  Type ParseVariableType();
  Type MakeUnsupported(const char* complaint);
  DeclarationAnnotations ParseDeclarationAnnotations();
  void DeclareVariable(std::string_view name, const Type& type, const DeclarationAnnotations& annotations,
                       std::uint32_t line);
  void DeclareUnsupported(std::string_view name, const Type& type, std::uint32_t line);
  void Declare(std::string_view name, const Meaning& meaning);

  // ---- Values
  Meaning ParseSimple();
  Meaning ParseNumber();
  Meaning ParseNamed();
  Set ParseBraces();
  Meaning ParseArray();
  Meaning ParseArgument() { return fToken.Is("[") ? ParseArray() : ParseSimple(); }
  Argument ParseAnnotation(unsigned depth);
  Argument ParseAnnotationArgument(unsigned depth);
  Argument ParseAnnotationList(unsigned depth);
  Argument ParseCall(std::string_view name, unsigned depth);
  void CheckType(const Argument& value, const Type& type, bool isArray) const;

  // ---- The model
  std::uint32_t Intern(std::string_view text);
  Argument AddText(std::string_view text) { return {Kind::Text, false, 0, Intern(text)}; }
  Argument AddSet(Set set);
  Meaning MakeArray(const std::vector<Argument>& members);

  ErrorList& fErrors;
  Lexer fLexer;
  Token fToken{};
  Model fModel;
  std::unordered_map<std::string_view, Meaning> fMeanings;
  std::unordered_map<std::string, std::uint32_t, TextHash, std::equal_to<>> fTextPlaces;
  // Reused from item to item.
  std::vector<Argument> fScratch;
  std::vector<Argument> fMembers;
};

bool IsTerm(const Argument& argument) noexcept {
  return argument.fKind == Kind::Truth || argument.fKind == Kind::Integer || argument.fKind == Kind::Variable;
}

// ---- Tokens

void Parser::FailExpecting(const std::string& expected) const {
  constexpr std::size_t sShown = 40;
  const std::string_view text = fToken.fText;
  std::string found = "the end of the file";
  if (fToken.fKind != Token::Kind::End) {
    found = "'" + std::string(text.substr(0, sShown)) + (text.size() > sShown ? "...'" : "'");
  }
  fLexer.Fail("expected " + expected + ", not " + found);
}

bool Parser::Take(std::string_view symbol) {
  const bool isThere = fToken.Is(symbol);
  if (isThere) {
    Advance();
  }
  return isThere;
}

void Parser::Expect(std::string_view symbol) {
  if (!Take(symbol)) {
    FailExpecting("'" + std::string(symbol) + "'");
  }
}

void Parser::ExpectName(std::string_view name) {
  if (!fToken.IsName(name)) {
    FailExpecting("'" + std::string(name) + "'");
  }
  Advance();
}

std::string_view Parser::TakeName(const char* expected) {
  if (fToken.fKind != Token::Kind::Name) {
    FailExpecting(expected);
  }
  const std::string_view name = fToken.fText;
  Advance();
  return name;
}

std::int64_t Parser::TakeInteger() {
  if (fToken.fKind != Token::Kind::Integer) {
    FailExpecting("an integer");
  }
  const std::int64_t number = fToken.fNumber;
  Advance();
  return number;
}

// Up to the semicolon.
void Parser::SkipItem() {
  while (!fToken.Is(";")) {
    if (fToken.fKind == Token::Kind::End) {
      FailExpecting("';'");
    }
    Advance();
  }
}

// How strongly a constraint is to narrow; other annotations of constraints say nothing here.
VokTarnConsistency Parser::ParseConstraintAnnotations() {
  VokTarnConsistency consistency = VokTarnConsistency::Default;
  while (Take("::")) {
    const std::string_view name = TakeName("the name of an annotation");
    SkipParentheses();
    if (name == "domain" || name == "domain_propagation") {
      consistency = VokTarnConsistency::Domain;
    } else if (name == "bounds" || name == "bounds_propagation" || name == "value_propagation") {
      consistency = VokTarnConsistency::Bounds;
    }
  }
  return consistency;
}

// What stands in parentheses, if they follow, whatever it is.
void Parser::SkipParentheses() {
  std::size_t depth = 0;
  do {
    if (fToken.Is("(")) {
      ++depth;
    } else if (fToken.Is(")") && depth > 0) {
      --depth;
    } else if (depth == 0) {
      return;
    } else if (fToken.fKind == Token::Kind::End || fToken.Is(";")) {
      FailExpecting("')'");
    }
    Advance();
  } while (depth > 0);
}

// ---- Items

Model Parser::Parse() {
  bool isSolved = false;
  while (!isSolved) {
    isSolved = fToken.IsName("solve");
    ParseItem();
    Expect(";");
  }
  if (fToken.fKind != Token::Kind::End) {
    FailExpecting("the end of the file after the solve item");
  }
  return std::move(fModel);
}

void Parser::ParseItem() {
  if (fToken.IsName("constraint")) {
    ParseConstraint();
  } else if (fToken.IsName("var") || fToken.IsName("bool") || fToken.IsName("int") || fToken.IsName("float") ||
             fToken.IsName("set")) {
    ParseDeclaration();
  } else if (fToken.IsName("array")) {
    ParseArrayDeclaration();
  } else if (fToken.IsName("predicate")) {
    SkipItem();
  } else if (fToken.IsName("solve")) {
    ParseSolve();
  } else {
    FailExpecting("a declaration, a constraint or the solve item");
  }
}

Type Parser::MakeUnsupported(const char* complaint) {
  Type type;
  type.fBase = Type::Base::Unsupported;
  type.fComplaint = complaint;
  return type;
}

Type Parser::ParseType() {
  if (fToken.IsName("var")) {
    Advance();
    return ParseVariableType();
  }
  Type type;
  const std::string_view name = TakeName("'var', 'bool', 'int', 'float' or 'set of int'");
  if (name == "set") {
    ExpectName("of");
    type.fBase = fToken.IsName("float") ? Type::Base::Unsupported : Type::Base::SetOfIntegers;
    TakeName("'int'");
  } else if (name == "bool") {
    type.fBase = Type::Base::Truth;
  } else if (name == "float") {
    type.fBase = Type::Base::Unsupported;
  } else if (name != "int") {
    FailExpecting("'var', 'bool', 'int', 'float' or 'set of int' before this");
  }
  return type;
}

Type Parser::ParseVariableType() {
  Type type;
  type.fIsVariable = true;
  if (fToken.IsName("bool")) {
    Advance();
    type.fBase = Type::Base::Truth;
    type.fDomain = MakeRange(0, 1);
  } else if (fToken.IsName("int")) {
    Advance();
  } else if (fToken.IsName("float") || fToken.fKind == Token::Kind::Float) {
    type = MakeUnsupported("float variables are not supported");
  } else if (fToken.IsName("set")) {
    type = MakeUnsupported("set variables are not supported");
    type.fIsSetVariable = true;
  } else if (fToken.Is("{")) {
    Advance();
    type.fDomain = ParseBraces();
  } else if (fToken.fKind == Token::Kind::Integer) {
    const std::int64_t lower = TakeInteger();
    Expect("..");
    type.fDomain = MakeRange(lower, TakeInteger());
  } else {
    FailExpecting("'bool', 'int' or a domain");
  }
  if (type.fBase == Type::Base::Unsupported) {
    while (!fToken.Is(":") && !fToken.Is(";") && fToken.fKind != Token::Kind::End) {
      Advance();
    }
  }
  return type;
}

void Parser::Declare(std::string_view name, const Meaning& meaning) {
  if (!fMeanings.emplace(name, meaning).second) {
    fLexer.Fail("'" + std::string(name) + "' is declared already");
  }
}

void Parser::DeclareUnsupported(std::string_view name, const Type& type, std::uint32_t line) {
  if (*type.fComplaint != '\0') {
    fErrors.Add(line, type.fComplaint);
  }
  Declare(name, std::nullopt);
  SkipItem();
}

void Parser::ParseDeclaration() {
  const std::uint32_t line = fLexer.GetLine();
  const Type type = ParseType();
  Expect(":");
  const std::string_view name = TakeName("a name");
  if (type.fBase == Type::Base::Unsupported) {
    return DeclareUnsupported(name, type, line);
  }
  const DeclarationAnnotations annotations = ParseDeclarationAnnotations();
  if (type.fIsVariable) {
    return DeclareVariable(name, type, annotations, line);
  }
  Expect("=");
  const Meaning value = ParseSimple();
  if (value) {
    CheckType(*value, type, false);
  }
  Declare(name, value);
}

void Parser::DeclareVariable(std::string_view name, const Type& type, const DeclarationAnnotations& annotations,
                             std::uint32_t line) {
  const bool isTruth = type.fBase == Type::Base::Truth;
  Argument value{Kind::Variable, isTruth, 0, static_cast<std::int64_t>(fModel.fVariables.size())};
  Variable variable{std::string(name),         isTruth, type.fDomain.has_value(),    annotations.fIsDefined,
                    annotations.fIsIntroduced, line,    type.fDomain.value_or(Set())};
  std::optional<Argument> given;
  if (Take("=")) {
    given = ParseSimple();
    if (!given) {
      FailExpecting("an integer or a truth value before this");
    }
    CheckType(*given, type, false);
  }
  if (given && given->fKind == Kind::Variable) {
    value = *given;  // another name of that variable
    Variable& other = fModel.fVariables[static_cast<std::size_t>(given->fNumber)];
    if (type.fDomain) {
      other.fDomain = other.fIsBounded ? Intersect(other.fDomain, *type.fDomain) : *type.fDomain;
      other.fIsBounded = true;
    }
  } else {
    if (given) {
      const Set constant = MakeRange(given->fNumber, given->fNumber);
      variable.fDomain = variable.fIsBounded ? Intersect(variable.fDomain, constant) : constant;
      variable.fIsBounded = true;
    }
    fModel.fVariables.push_back(std::move(variable));
  }
  Declare(name, value);
  if (annotations.fIsOutput) {
    fModel.fOutputs.push_back({std::string(name), "", 0, value});
  }
}

void Parser::ParseArrayDeclaration() {
  const std::uint32_t line = fLexer.GetLine();
  Advance();
  Expect("[");
  const std::int64_t first = TakeInteger();
  Expect("..");
  const std::int64_t last = TakeInteger();
  Expect("]");
  ExpectName("of");
  Type type = ParseType();
  Expect(":");
  const std::string_view name = TakeName("a name");
  if (type.fIsSetVariable && last == 0) {
    type = {};  // none of its members is a variable
    type.fBase = Type::Base::SetOfIntegers;
  }
  if (type.fBase == Type::Base::Unsupported) {
    return DeclareUnsupported(name, type, line);
  }
  const DeclarationAnnotations annotations = ParseDeclarationAnnotations();
  Expect("=");
  if (!fToken.Is("[")) {
    FailExpecting("'['");
  }
  Meaning array = ParseArray();
  if (!array) {
    fLexer.Fail("expected members of the declared type");
  }
  if (array->fCount == 0) {
    array->fIsTruth = type.fBase == Type::Base::Truth;
    array->fKind = type.fBase == Type::Base::SetOfIntegers ? Kind::Sets : Kind::Array;
  }
  CheckType(*array, type, true);
  if (first != 1 || last != static_cast<std::int64_t>(array->fCount)) {
    fLexer.Fail("expected " + std::to_string(array->fCount) + " members to have the index set 1.." +
                std::to_string(array->fCount));
  }
  Declare(name, array);
  if (annotations.fIsOutputArray) {
    std::string sets;
    for (const Set& set : annotations.fIndexSets) {
      sets += (sets.empty() ? "" : ", ") + ToText(set);
    }
    fModel.fOutputs.push_back(
        {std::string(name), std::move(sets), static_cast<unsigned>(annotations.fIndexSets.size()), *array});
  }
}

DeclarationAnnotations Parser::ParseDeclarationAnnotations() {
  DeclarationAnnotations annotations;
  while (Take("::")) {
    const std::string_view name = TakeName("the name of an annotation");
    if (name == "output_array") {
      Expect("(");
      Expect("[");
      annotations.fIsOutputArray = true;
      for (bool isMore = !fToken.Is("]"); isMore; isMore = Take(",")) {
        const Meaning set = ParseSimple();
        if (!set || set->fKind != Kind::OneSet) {
          FailExpecting("an index set before this");
        }
        annotations.fIndexSets.push_back(fModel.fSets[static_cast<std::size_t>(set->fNumber)]);
      }
      Expect("]");
      Expect(")");
      continue;
    }
    annotations.fIsOutput |= name == "output_var";
    annotations.fIsDefined |= name == "is_defined_var";
    annotations.fIsIntroduced |= name == "var_is_introduced";
    SkipParentheses();
  }
  return annotations;
}

void Parser::ParseConstraint() {
  Constraint constraint{};
  constraint.fLine = fLexer.GetLine();
  Advance();
  const std::string_view name = TakeName("the name of a constraint");
  Expect("(");
  fScratch.clear();
  std::size_t count = 0;
  for (bool isMore = !fToken.Is(")"); isMore; isMore = Take(",")) {
    ++count;
    if (const Meaning argument = ParseArgument()) {
      fScratch.push_back(*argument);
    }
  }
  Expect(")");
  constraint.fConsistency = ParseConstraintAnnotations();
  if (fScratch.size() < count) {
    return fErrors.AddUnsupported(constraint.fLine, name, count);
  }
  constraint.fName = Intern(name);
  constraint.fFirst = static_cast<std::uint32_t>(fModel.fArguments.size());
  constraint.fCount = static_cast<std::uint32_t>(count);
  fModel.fArguments.insert(fModel.fArguments.end(), fScratch.begin(), fScratch.end());
  fModel.fConstraints.push_back(constraint);
}

void Parser::ParseSolve() {
  Solve& solve = fModel.fSolve;
  solve.fLine = fLexer.GetLine();
  Advance();
  while (Take("::")) {
    solve.fAnnotations.push_back(ParseAnnotation(0));
  }
  const std::string_view goal = TakeName("'satisfy', 'minimize' or 'maximize'");
  if (goal == "satisfy") {
    return;
  }
  if (goal != "minimize" && goal != "maximize") {
    FailExpecting("'satisfy', 'minimize' or 'maximize' before this");
  }
  solve.fGoal = goal == "minimize" ? Solve::Goal::Minimize : Solve::Goal::Maximize;
  const Meaning objective = ParseSimple();
  if (!objective) {
    return fErrors.Add(solve.fLine, "float objectives are not supported");
  }
  if (!IsTerm(*objective) || objective->fIsTruth) {
    FailExpecting("an integer as the objective before this");
  }
  solve.fObjective = {objective->fKind == Kind::Variable, objective->fNumber};
}

// ---- Values

void Parser::CheckType(const Argument& value, const Type& type, bool isArray) const {
  const bool isSet = type.fBase == Type::Base::SetOfIntegers;
  const bool isRight = isSet ? value.fKind == (isArray ? Kind::Sets : Kind::OneSet)
                             : (isArray ? value.fKind == Kind::Array : IsTerm(value)) &&
                                   value.fIsTruth == (type.fBase == Type::Base::Truth);
  if (!isRight) {
    fLexer.Fail("expected a value of the declared type");
  }
  if (type.fIsVariable) {
    return;
  }
  bool isConstant = value.fKind != Kind::Variable;
  if (value.fKind == Kind::Array) {
    for (const Term& term : fModel.GetTerms(value)) {
      isConstant = isConstant && !term.fIsVariable;
    }
  }
  if (!isConstant) {
    fLexer.Fail("expected a constant");
  }
}

Argument Parser::AddSet(Set set) {
  fModel.fSets.push_back(std::move(set));
  return {Kind::OneSet, false, 0, static_cast<std::int64_t>(fModel.fSets.size() - 1)};
}

// Behind the opening brace.
Set Parser::ParseBraces() {
  std::vector<std::int64_t> numbers;
  for (bool isMore = !fToken.Is("}"); isMore; isMore = Take(",")) {
    numbers.push_back(TakeInteger());
  }
  Expect("}");
  return MakeSet(std::move(numbers));
}

Parser::Meaning Parser::ParseNumber() {
  const bool isFloat = fToken.fKind == Token::Kind::Float;
  const std::int64_t number = fToken.fNumber;
  Advance();
  if (!Take("..")) {
    return isFloat ? Meaning() : Argument{Kind::Integer, false, 0, number};
  }
  if (isFloat || fToken.fKind == Token::Kind::Float) {
    Advance();
    return std::nullopt;
  }
  return AddSet(MakeRange(number, TakeInteger()));
}

Parser::Meaning Parser::ParseNamed() {
  if (fToken.fText == "true" || fToken.fText == "false") {
    const std::int64_t number = fToken.fText == "true" ? 1 : 0;
    Advance();
    return Argument{Kind::Truth, true, 0, number};
  }
  const auto found = fMeanings.find(fToken.fText);
  if (found == fMeanings.end()) {
    FailExpecting("a declared name");
  }
  Advance();
  return found->second;
}

// A value that is not in brackets; nothing when it is not supported.
Parser::Meaning Parser::ParseSimple() {
  if (fToken.fKind == Token::Kind::Name) {
    return ParseNamed();
  }
  if (fToken.fKind == Token::Kind::Integer || fToken.fKind == Token::Kind::Float) {
    return ParseNumber();
  }
  if (!fToken.Is("{")) {
    FailExpecting("a value");
  }
  Advance();
  if (fToken.fKind == Token::Kind::Float) {
    while (fToken.fKind == Token::Kind::Float || fToken.fKind == Token::Kind::Integer || fToken.Is(",")) {
      Advance();
    }
    Expect("}");
    return std::nullopt;
  }
  return AddSet(ParseBraces());
}

// The array of members of one kind; nothing when they are not.
Parser::Meaning Parser::MakeArray(const std::vector<Argument>& members) {
  const auto count = static_cast<std::uint32_t>(members.size());
  const bool isTruth = count > 0 && members[0].fIsTruth;
  if (count > 0 && members[0].fKind == Kind::OneSet) {
    const std::size_t first = fModel.fSets.size();
    for (const Argument& member : members) {
      if (member.fKind != Kind::OneSet) {
        fModel.fSets.resize(first);
        return std::nullopt;
      }
      fModel.fSets.push_back(Set(fModel.fSets[static_cast<std::size_t>(member.fNumber)]));
    }
    return Argument{Kind::Sets, false, count, static_cast<std::int64_t>(first)};
  }
  for (const Argument& member : members) {
    if (!IsTerm(member) || member.fIsTruth != isTruth) {
      return std::nullopt;
    }
  }
  const std::size_t first = fModel.fTerms.size();
  for (const Argument& member : members) {
    fModel.fTerms.push_back({member.fKind == Kind::Variable, member.fNumber});
  }
  return Argument{Kind::Array, isTruth, count, static_cast<std::int64_t>(first)};
}

Parser::Meaning Parser::ParseArray() {
  Expect("[");
  fMembers.clear();
  bool isSupported = true;
  for (bool isMore = !fToken.Is("]"); isMore; isMore = Take(",")) {
    const Meaning member = ParseSimple();
    isSupported = isSupported && member;
    if (member) {
      fMembers.push_back(*member);
    }
  }
  Expect("]");
  if (!isSupported) {
    return std::nullopt;
  }
  const Meaning array = MakeArray(fMembers);
  if (!array) {
    fLexer.Fail("expected members of one type: integers, truth values or sets");
  }
  return array;
}

// ---- Annotations of the solve item

Argument Parser::ParseAnnotation(unsigned depth) {
  const std::string_view name = TakeName("the name of an annotation");
  return fToken.Is("(") ? ParseCall(name, depth + 1) : AddText(name);
}

Argument Parser::ParseCall(std::string_view name, unsigned depth) {
  Expect("(");
  std::vector<Argument> arguments;
  for (bool isMore = !fToken.Is(")"); isMore; isMore = Take(",")) {
    arguments.push_back(ParseAnnotationArgument(depth));
  }
  Expect(")");
  const Call call{Intern(name), static_cast<std::uint32_t>(fModel.fArguments.size()),
                  static_cast<std::uint32_t>(arguments.size())};
  fModel.fArguments.insert(fModel.fArguments.end(), arguments.begin(), arguments.end());
  fModel.fCalls.push_back(call);
  return {Kind::Call, false, call.fCount, static_cast<std::int64_t>(fModel.fCalls.size() - 1)};
}

Argument Parser::ParseAnnotationList(unsigned depth) {
  Expect("[");
  std::vector<Argument> members;
  for (bool isMore = !fToken.Is("]"); isMore; isMore = Take(",")) {
    members.push_back(ParseAnnotationArgument(depth));
  }
  Expect("]");
  if (const Meaning array = MakeArray(members)) {
    return *array;
  }
  const Argument list{Kind::List, false, static_cast<std::uint32_t>(members.size()),
                      static_cast<std::int64_t>(fModel.fArguments.size())};
  fModel.fArguments.insert(fModel.fArguments.end(), members.begin(), members.end());
  return list;
}

Argument Parser::ParseAnnotationArgument(unsigned depth) {
  if (depth > sMaxDepth) {
    fLexer.Fail("expected annotations of at most " + std::to_string(sMaxDepth) + " levels");
  }
  if (fToken.Is("[")) {
    return ParseAnnotationList(depth + 1);
  }
  const Token token = fToken;
  if (token.fKind == Token::Kind::Text) {
    Advance();
    return AddText(token.fText);
  }
  if (token.fKind == Token::Kind::Name && token.fText != "true" && token.fText != "false") {
    const auto found = fMeanings.find(token.fText);
    const Argument annotation = ParseAnnotation(depth);
    return annotation.fKind == Kind::Text && found != fMeanings.end() && found->second ? *found->second : annotation;
  }
  const Meaning value = ParseSimple();
  if (value) {
    return *value;
  }
  return {Kind::Float, false, 0, token.fKind == Token::Kind::Float ? token.fNumber : 0};
}

// ---- The model

std::uint32_t Parser::Intern(std::string_view text) {
  const auto found = fTextPlaces.find(text);
  if (found != fTextPlaces.end()) {
    return found->second;
  }
  const auto place = static_cast<std::uint32_t>(fModel.fTexts.size());
  fModel.fTexts.emplace_back(text);
  fTextPlaces.emplace(text, place);
  return place;
}

}  // namespace

Model Parse(std::string_view text, ErrorList& errors) {
  return Parser(text, errors).Parse();
}

}  // namespace fzn
