#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

#include "framework/VokTarnOperators.h"

namespace tarn {

// What the text of a model may consist of: the language's own symbols, and the names of the types and operators that
// the opened modules publish.
//
// The meaning of an operator is its module's business. The language settles only how tightly an operator binds:
// by a table of the known spellings, with a default for all others (a word binds like "*", a symbol like "+").
class Vocabulary {
 public:
  // From loose to tight.
  enum Precedence : int { Implication, Disjunction, Conjunction, Truth, Extremum, Sum, Product, Prefix, Power };
  enum class Associativity { Left, Right, None };

  struct Infix {
    Precedence fPrecedence;
    Associativity fAssociativity;
  };

  Vocabulary();

  void AddType(std::string_view name);
  // A name may be added once for each kind.
  void AddOperator(std::string_view name, VokTarnOperatorKind kind);

  // The length of the longest symbol at the start of `text`, or 0.
  std::size_t MatchSymbol(std::string_view text) const noexcept;

  // How the spelling binds between two operands, or null when it cannot stand there. Relations are not
  // among these: they join whole expressions.
  const Infix* FindInfix(std::string_view spelling) const noexcept;
  bool IsPrefix(std::string_view spelling) const noexcept { return fPrefixes.contains(spelling); }
  static bool IsRelation(std::string_view spelling) noexcept;
  bool IsType(std::string_view name) const noexcept { return fTypes.contains(name); }
  bool IsListOperator(std::string_view name) const noexcept { return fLists.contains(name); }
  bool IsListFunction(std::string_view name) const noexcept;
  // A word with a meaning of its own, which no variable can have as its name. Names of operators over lists are none:
  // where a variable has such a name, the name is the variable's.
  bool IsReserved(std::string_view word) const noexcept;
  // The words that statements, types and operators consist of, those of longer names one by one.
  std::set<std::string, std::less<>> GetWords() const;

  const std::set<std::string, std::less<>>& GetTypes() const noexcept { return fTypes; }
  // The operators that take lists, each with its kind: List, ListFunction or Table.
  const std::map<std::string, VokTarnOperatorKind, std::less<>>& GetListOperators() const noexcept { return fLists; }
  // The number of words of the longest name of a type or a list operator.
  std::size_t GetLongestName() const noexcept { return fLongestName; }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>()(text); }
  };

  void AddSymbol(std::string_view symbol);
  void NoteWords(std::string_view name) noexcept;

  std::unordered_map<std::string, Infix, Hash, std::equal_to<>> fInfixes;
  std::set<std::string, std::less<>> fPrefixes;
  std::set<std::string, std::less<>> fSymbols;
  std::set<std::string, std::less<>> fTypes;
  std::map<std::string, VokTarnOperatorKind, std::less<>> fLists;
  std::size_t fLongestSymbol = 1;
  std::size_t fLongestName = 1;
};

}  // namespace tarn
