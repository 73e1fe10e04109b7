#include "flatzinc/solutionText.h"

namespace fzn {
namespace {

void AppendNumber(std::string& text, std::int64_t number, bool isTruth) {
  text += isTruth ? (number != 0 ? "true" : "false") : std::to_string(number);
}

}  // namespace

std::string FormatSolution(const Model& model, std::span<const std::int64_t> values) {
  const auto get = [values](bool isVariable, std::int64_t number) {
    return isVariable ? values[static_cast<std::size_t>(number)] : number;
  };
  std::string text;
  for (const Output& output : model.fOutputs) {
    const Argument& value = output.fValue;
    text += output.fName + " = ";
    if (value.fKind != Argument::Kind::Array) {
      AppendNumber(text, get(value.fKind == Argument::Kind::Variable, value.fNumber), value.fIsTruth);
    } else {
      text += "array" + std::to_string(output.fDimensions) + "d(" + output.fIndexSets + ", [";
      const char* comma = "";
      for (const Term& term : model.GetTerms(value)) {
        text += comma;
        AppendNumber(text, get(term.fIsVariable, term.fNumber), value.fIsTruth);
        comma = ",";
      }
      text += "])";
    }
    text += ";\n";
  }
  return text + sSeparator;
}

}  // namespace fzn
