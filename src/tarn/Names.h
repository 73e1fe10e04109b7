#pragma once

#include <optional>
#include <string>
#include <unordered_map>

#include "tarn/Session.h"

namespace tarn {

// What the parts of a session's network are called in the text of its model.
//
// Lifetime  Refers to the session, which has read the source and nothing else, and must not read on while this object
//           is used; made before the network is propagated, when only literals and what is stated have one value.
class Names {
 public:
  Names(Session& session, const Source& source);

  // The name of a variable, the text of a literal, the expression that an intermediate value stands for; long
  // expressions are cut.
  std::string GetValue(VokTarnValueId id) const { return GetExpression(id, Vocabulary::Implication, 0); }
  bool IsLiteral(VokTarnValueId id) const { return fLiterals.contains(id); }

  // The place among the statements of the one that a constraint comes from, or that has given a value its first
  // domain: it declares the variable or states the truth value.
  std::size_t GetStatement(VokULong constraint) const;
  std::optional<std::size_t> GetOrigin(VokTarnValueId id) const;
  std::size_t GetLine(std::size_t statement) const { return fSession.GetModel().GetStatements()[statement].fLine; }
  // "line n: text"; comments are left out.
  std::string DescribeStatement(std::size_t statement) const;

 private:
  void NoteOrigins();
  void NoteUnnamed();
  std::string GetExpression(VokTarnValueId id, int precedence, int depth) const;

  Session& fSession;
  const Source& fSource;
  std::unordered_map<VokTarnValueId, const Compiler::Operation*> fOperations;
  std::unordered_map<VokTarnValueId, std::size_t> fOrigins;
  std::unordered_map<VokTarnValueId, std::string> fLiterals;
  std::unordered_map<VokTarnValueId, VokULong> fUnnamed;  // each with the first constraint over it
};

// Throws ProgramError when the session has read a saved network: it does not say which statements it comes from.
void RefuseRestored(const Session& session, const Source& source);

// The values of a domain as its type prints them, or shorter: "[a, b]" for all from a to b, "{a, b..c}" for others.
std::string DescribeDomain(const VokTarnAny& domain);

}  // namespace tarn
