// Parsing of model texts for the tests, with a vocabulary of the tests' own.
#pragma once

#include <string>

#include "tarn/Diagnostic.h"
#include "tarn/Parser.h"

inline tarn::Vocabulary MakeVocabulary() {
  tarn::Vocabulary vocabulary;
  for (const char* type : {"int", "enum int", "bool"}) {
    vocabulary.AddType(type);
  }
  for (const char* name : {"gcd", "<=>", "**"}) {
    vocabulary.AddOperator(name, 2);
  }
  for (const char* name : {"parity", "~"}) {
    vocabulary.AddOperator(name, 1);
  }
  for (const char* name : {"all different", "all", "sorted"}) {
    vocabulary.AddOperator(name, 0);
  }
  return vocabulary;
}

// A statement with every operation in parentheses, or "column: message" for a mistake.
class Reader {
 public:
  Reader() {
    for (const char* name : {"x", "y", "z", "p", "q", "all_x"}) {
      fModel.AddVariable(name, "int");
    }
  }

  std::string Render(const std::string& text) {
    const tarn::Source source("test", text);
    try {
      tarn::Parser parser(source, fVocabulary, fModel);
      std::string result;
      while (const std::optional<tarn::Statement> statement = parser.Next()) {
        result += result.empty() ? "" : " ";
        result += std::visit([this](const auto& body) { return Show(body); }, statement->fBody) + ";";
      }
      return result;
    } catch (const tarn::ModelError& error) {
      const tarn::Source::Place place = source.Locate(error.GetOffset());
      return std::to_string(place.fLine) + ":" + std::to_string(place.fColumn) + ": " + error.what();
    }
  }

 private:
  static std::string Text(const tarn::Word& word) { return std::string(word.fText); }

  std::string Show(const tarn::Use& use) const { return std::string("use ") + Text(use.fModule); }
  std::string Show(const tarn::Declaration& declaration) const {
    std::string result;
    for (const tarn::Word& name : declaration.fNames) {
      result += Text(name) + " ";
    }
    return result + ": <" + Text(declaration.fType) + ">" + declaration.fDomain;
  }
  std::string Show(const tarn::Formula& formula) const {
    using Kind = tarn::Formula::Kind;
    std::string result = formula.fKind == Kind::Minimize   ? "minimize "
                         : formula.fKind == Kind::Maximize ? "maximize "
                                                           : "";
    if (formula.fKind == Kind::List) {
      result = Text(formula.fOperators[0]) + " ";
    }
    for (std::size_t i = 0; i < formula.fRoots.size(); ++i) {
      if (i > 0) {
        result += formula.fKind == Kind::List ? ", " : std::string(" ") + Text(formula.fOperators[i - 1]) + " ";
      }
      result += Show(formula, formula.fRoots[i]);
    }
    return result;
  }
  std::string Show(const tarn::Formula& formula, tarn::NodeIndex index) const {
    const tarn::Node& node = formula.fNodes[index];
    const std::string text(node.fText);
    switch (node.fKind) {
      case tarn::Node::Kind::Unary:
        return std::string("(") + text + " " + Show(formula, node.fLeft) + ")";
      case tarn::Node::Kind::Binary:
        return std::string("(") + Show(formula, node.fLeft) + " " + text + " " + Show(formula, node.fRight) + ")";
      case tarn::Node::Kind::Cast:
        return std::string("<") + text + ">" + Show(formula, node.fLeft);
      default:
        return text;
    }
  }

  tarn::Vocabulary fVocabulary = MakeVocabulary();
  tarn::Model fModel;
};
