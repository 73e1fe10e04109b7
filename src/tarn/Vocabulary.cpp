#include "tarn/Vocabulary.h"

#include <algorithm>
#include <array>

#include "tarn/Lexer.h"
#include "tarn/TextStream.h"

namespace tarn {
namespace {

using Associativity = Vocabulary::Associativity;

struct KnownInfix {
  std::string_view fSpelling;
  Vocabulary::Infix fInfix;
};

constexpr KnownInfix sKnownInfixes[] = {
    {"^", {Vocabulary::Power, Associativity::Right}},
    {"*", {Vocabulary::Product, Associativity::Left}},
    {"/", {Vocabulary::Product, Associativity::Left}},
    {"mod", {Vocabulary::Product, Associativity::Left}},
    {"+", {Vocabulary::Sum, Associativity::Left}},
    {"-", {Vocabulary::Sum, Associativity::Left}},
    {"/\\", {Vocabulary::Extremum, Associativity::Left}},
    {"\\/", {Vocabulary::Extremum, Associativity::Left}},
    {"==", {Vocabulary::Truth, Associativity::None}},
    {"<<", {Vocabulary::Truth, Associativity::None}},
    {"<==", {Vocabulary::Truth, Associativity::None}},
    {">>", {Vocabulary::Truth, Associativity::None}},
    {">==", {Vocabulary::Truth, Associativity::None}},
    {"&&", {Vocabulary::Conjunction, Associativity::Left}},
    {"||", {Vocabulary::Disjunction, Associativity::Left}},
    {"->", {Vocabulary::Implication, Associativity::Right}},
    {"<->", {Vocabulary::Implication, Associativity::Right}},
};
constexpr std::string_view sKnownPrefixes[] = {"-", "!", "abs", "sign", "next", "prev"};
constexpr std::string_view sRelations[] = {"=", "<>", "<", "<=", ">", ">="};
constexpr std::string_view sPunctuation[] = {"(", ")", "[", "]", ",", ";", ":"};
constexpr std::string_view sStatementWords[] = {"minimize", "maximize", "use"};

bool IsWord(std::string_view name) noexcept {
  return !name.empty() && IsNameStart(name[0]);
}

}  // namespace

Vocabulary::Vocabulary() {
  for (const KnownInfix& known : sKnownInfixes) {
    fInfixes.emplace(known.fSpelling, known.fInfix);
    AddSymbol(known.fSpelling);
  }
  for (const std::string_view prefix : sKnownPrefixes) {
    fPrefixes.emplace(prefix);
    AddSymbol(prefix);
  }
  for (const std::string_view relation : sRelations) {
    AddSymbol(relation);
  }
  for (const std::string_view mark : sPunctuation) {
    AddSymbol(mark);
  }
}

void Vocabulary::AddSymbol(std::string_view symbol) {
  if (!IsWord(symbol)) {
    fSymbols.emplace(symbol);
    fLongestSymbol = std::max(fLongestSymbol, symbol.size());
  }
}

void Vocabulary::NoteWords(std::string_view name) noexcept {
  fLongestName = std::max(fLongestName, 1 + static_cast<std::size_t>(std::count(name.begin(), name.end(), ' ')));
}

void Vocabulary::AddType(std::string_view name) {
  fTypes.emplace(name);
  NoteWords(name);
}

void Vocabulary::AddOperator(std::string_view name, VokTarnOperatorKind kind) {
  // A name in parentheses is a cast, which the language writes with the name of the type.
  if (name.empty() || name.front() == '(') {
    return;
  }
  if (kind >= VokTarnOperatorKind::List) {
    fLists[std::string(name)] = kind;
    NoteWords(name);
    return;
  }
  AddSymbol(name);
  if (IsRelation(name)) {
    return;
  }
  if (kind == VokTarnOperatorKind::Unary || kind == VokTarnOperatorKind::InverseUnary) {
    fPrefixes.emplace(name);
  } else {
    fInfixes.try_emplace(std::string(name), Infix{IsWord(name) ? Product : Sum, Associativity::Left});
  }
}

std::size_t Vocabulary::MatchSymbol(std::string_view text) const noexcept {
  for (std::size_t length = std::min(fLongestSymbol, text.size()); length > 0; --length) {
    if (fSymbols.contains(text.substr(0, length))) {
      return length;
    }
  }
  return 0;
}

const Vocabulary::Infix* Vocabulary::FindInfix(std::string_view spelling) const noexcept {
  const auto found = fInfixes.find(spelling);
  return found == fInfixes.end() ? nullptr : &found->second;
}

bool Vocabulary::IsRelation(std::string_view spelling) noexcept {
  return std::ranges::find(sRelations, spelling) != std::end(sRelations);
}

bool Vocabulary::IsListFunction(std::string_view name) const noexcept {
  const auto found = fLists.find(name);
  return found != fLists.end() && found->second == VokTarnOperatorKind::ListFunction;
}

bool Vocabulary::IsReserved(std::string_view word) const noexcept {
  return std::ranges::find(sStatementWords, word) != std::end(sStatementWords) || IsPrefix(word) ||
         FindInfix(word) != nullptr || IsType(word);
}

std::set<std::string, std::less<>> Vocabulary::GetWords() const {
  std::set<std::string, std::less<>> words(std::begin(sStatementWords), std::end(sStatementWords));
  const auto add = [&words](const std::string& name) {
    TextReader parts(name);
    for (std::string part; parts >> part;) {
      if (IsWord(part)) {
        words.insert(part);
      }
    }
  };
  std::ranges::for_each(fPrefixes, add);
  std::ranges::for_each(fTypes, add);
  for (const auto& [name, infix] : fInfixes) {
    add(name);
  }
  for (const auto& [name, kind] : fLists) {
    add(name);
  }
  return words;
}

}  // namespace tarn
