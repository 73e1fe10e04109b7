// Parsing of model texts for the tests, with a vocabulary of the tests' own.
#pragma once

#include <gtest/gtest.h>

#include <span>
#include <string>

#include "tarn/Diagnostic.h"
#include "tarn/Parser.h"

inline tarn::Vocabulary MakeVocabulary() {
  tarn::Vocabulary vocabulary;
  for (const char* type : {"int", "enum int", "bool"}) {
    vocabulary.AddType(type);
  }
  const std::vector<const char*> operators[] = {{"all different", "all", "sorted"},
                                                {"parity", "~"},
                                                {"gcd", "<=>", "**"},
                                                {"sum", "count", "element"},
                                                {"table"}};
  const VokTarnOperatorKind kinds[] = {VokTarnOperatorKind::List, VokTarnOperatorKind::Unary,
                                       VokTarnOperatorKind::Binary, VokTarnOperatorKind::ListFunction,
                                       VokTarnOperatorKind::Table};
  for (unsigned i = 0; i < std::size(kinds); ++i) {
    for (const char* name : operators[i]) {
      vocabulary.AddOperator(name, kinds[i]);
    }
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
      while (std::optional<tarn::Statement> statement = parser.Next()) {
        result += result.empty() ? "" : " ";
        result += std::visit([this](const auto& body) { return Show(body); }, statement->fBody) + ";";
        fModel.AddStatement(*std::move(statement));
      }
      return result;
    } catch (const tarn::ModelError& error) {
      const tarn::Source::Place place = source.Locate(error.GetOffset());
      return std::to_string(place.fLine) + ":" + std::to_string(place.fColumn) + ": " + error.what();
    }
  }

 private:
  std::string Show(const tarn::Use& use) const { return "use " + std::string(use.fModule.fText); }
  std::string Show(const tarn::Declaration& declaration) const {
    std::string names;
    for (const tarn::Word& name : declaration.fNames) {
      names += std::string(name.fText) + " ";
    }
    return names + ": <" + std::string(declaration.fType.fText) + ">" + declaration.fDomain;
  }
  std::string Show(const tarn::ListDefinition& list) const {
    return "list " + std::string(list.fName.fText) + " = " + Show(list.fList, list.fList.fRoots);
  }
  std::string Show(const tarn::Formula& formula, std::span<const tarn::NodeIndex> members) const {
    std::string result;
    for (const tarn::NodeIndex member : members) {
      result += (result.empty() ? "[" : ", ") + Show(formula, member);
    }
    return result.empty() ? "[]" : result + "]";
  }
  std::string Show(const tarn::Formula& formula) const {
    using Kind = tarn::Formula::Kind;
    const auto op = [&formula](std::size_t i) { return std::string(formula.fOperators[i].fText) + " "; };
    if (formula.fKind == Kind::Table) {
      return op(0) + Show(formula, formula.fRoots) + testing::PrintToString(formula.fConstants);
    }
    std::string result = formula.fKind == Kind::Minimize   ? "minimize "
                         : formula.fKind == Kind::Maximize ? "maximize "
                         : formula.fKind == Kind::List     ? op(0)
                                                           : "";
    for (std::size_t i = 0; i < formula.fRoots.size(); ++i) {
      result += i == 0 ? "" : formula.fKind == Kind::List ? ", " : " " + op(i - 1);
      result += Show(formula, formula.fRoots[i]);
    }
    return result;
  }
  std::string Show(const tarn::Formula& formula, tarn::NodeIndex index) const {
    const tarn::Node& node = formula.fNodes[index];
    const std::string text(node.fText);
    switch (node.fKind) {
      case tarn::Node::Kind::Unary:
        return "(" + text + " " + Show(formula, node.fLeft) + ")";
      case tarn::Node::Kind::Binary:
        return "(" + Show(formula, node.fLeft) + " " + text + " " + Show(formula, node.fRight) + ")";
      case tarn::Node::Kind::Cast:
        return "<" + text + ">" + Show(formula, node.fLeft);
      case tarn::Node::Kind::Call: {
        const auto members = std::span(formula.fMembers).subspan(node.fLeft, node.fRight - node.fLeft);
        return text + (node.fHasBeside ? "(" + Show(formula, members[0]) + ")" : "") +
               Show(formula, members.subspan(node.fHasBeside ? 1 : 0));
      }
      default:
        return text;
    }
  }

  tarn::Vocabulary fVocabulary = MakeVocabulary();
  tarn::Model fModel;
};
