#pragma once

#include <string>

#include "tarn/Session.h"
#include "tarn/ValueText.h"

namespace tarn {

// What can be asked of a model: a relation between a declared variable and a value, or "false", which only a model
// without solutions implies. Refers to the session.
class Fact {
 public:
  // Reads one statement, with or without its ";". Throws ModelError when it is no fact.
  Fact(Session& session, const Source& source);

  const std::string& GetText() const noexcept { return fText; }
  bool IsFalse() const noexcept { return fValue == vokNoValue; }
  // Of a fact other than "false".
  VokTarnValueId GetVariable() const noexcept { return fValue; }
  // Whether it holds for every value of a domain of the variable's type.
  bool HoldsFor(const VokTarnAny& domain) const;
  // The statement that holds where the fact does not, without ";"; empty for "false".
  std::string GetNegation() const;

 private:
  void ReadRelation(Session& session, const Formula& formula);

  std::string fText;
  std::string fName;
  std::string fRelation;
  std::string fLiteral;
  VokTarnValueId fValue = vokNoValue;
  bool fIsTruth = false;
  VokLong fNumber = 0;
};

}  // namespace tarn
