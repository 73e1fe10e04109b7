#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <variant>
#include <vector>

#include "framework/VokLong.h"

namespace tarn {

// A word of the model text and its place.
struct Word {
  std::string_view fText;
  std::uint32_t fOffset;
};

using VariableIndex = std::uint32_t;
using NodeIndex = std::uint32_t;

// One operation of an expression, or one of its leaves.
struct Node {
  enum class Kind : std::uint8_t {
    Variable,  // fLeft is the variable's index
    Literal,   // fText is its text, a leading minus included
    Unary,     // fText is the operator, fLeft the operand
    Binary,    // fText is the operator
    Cast,      // fText is the type, fLeft the operand
    Call       // fText is the operator; its members are those of the formula from fLeft to before fRight
  };

  std::string_view fText;
  std::uint32_t fOffset;
  std::uint32_t fLeft;
  std::uint32_t fRight;
  Kind fKind;
  bool fHasBeside = false;  // of a call: the first member is not one of the list but the operand beside it
};

// names : type domain ;
struct Declaration {
  std::vector<Word> fNames;
  Word fType;
  std::string fDomain;
  std::size_t fDomainOffset;
};

// use NAME ;
struct Use {
  Word fModule;
};

// A statement over expressions. The nodes of all its expressions stand in one list, each behind its operands, so that
// whoever works through them needs a loop and no recursion: long sums are deep trees.
struct Formula {
  enum class Kind {
    Relations,  // root operator root operator ... root
    Truth,      // its one root is true
    List,       // operator (root, .., root)
    Table,      // operator ((root, .., root), rows of constants)
    Minimize,
    Maximize
  };

  Kind fKind;
  std::vector<Node> fNodes;
  std::vector<NodeIndex> fMembers;  // of all calls
  std::vector<NodeIndex> fRoots;
  std::vector<Word> fOperators;
  std::vector<VokLong> fConstants;  // of a table, row after row

  bool IsObjective() const noexcept { return fKind == Kind::Minimize || fKind == Kind::Maximize; }
};

// list NAME = [root, .., root] ;
struct ListDefinition {
  Word fName;
  Formula fList;
};

struct Statement {
  std::size_t fLine;
  std::size_t fOffset;
  std::size_t fEnd;  // behind its last token; the ";" is not one of them
  std::variant<Declaration, Use, Formula, ListDefinition> fBody;
};

// A model as it was written: the declared variables and the statements over them, without anything of the network that
// is built from it.
//
// Ownership  Owns the texts that its words and nodes refer to.
class Model {
 public:
  struct Variable {
    std::string fName;
    std::string fType;
  };

  Model() = default;
  Model(const Model&) = delete;
  Model& operator=(const Model&) = delete;

  // The one copy of a text, valid as long as the model.
  std::string_view Intern(std::string_view text) { return *fTexts.emplace(text).first; }

  void AddVariable(std::string_view name, std::string_view type);
  void AddStatement(Statement statement);

  const std::vector<Variable>& GetVariables() const noexcept { return fVariables; }
  std::optional<VariableIndex> FindVariable(std::string_view name) const noexcept;
  // The expressions of a named list, or null.
  const Formula* FindList(std::string_view name) const;
  const std::vector<Statement>& GetStatements() const noexcept { return fStatements; }
  // The place of the objective among the statements.
  std::optional<std::size_t> GetObjective() const noexcept { return fObjective; }

 private:
  std::unordered_set<std::string> fTexts;
  std::vector<Variable> fVariables;
  std::map<std::string, VariableIndex, std::less<>> fNames;
  std::map<std::string, std::size_t, std::less<>> fLists;  // to places among the statements
  std::vector<Statement> fStatements;
  std::optional<std::size_t> fObjective;
};

}  // namespace tarn
