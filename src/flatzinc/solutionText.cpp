#include "flatzinc/solutionText.h"

#include "flatzinc/sets.h"

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
    const bool isOfSets = value.fKind == Argument::Kind::Sets;
    if (value.fKind != Argument::Kind::Array && !isOfSets) {
      AppendNumber(text, get(value.fKind == Argument::Kind::Variable, value.fNumber), value.fIsTruth);
    } else {
      text += "array" + std::to_string(output.fDimensions) + "d(" + output.fIndexSets + ", [";
      const char* comma = "";
      for (std::uint32_t i = 0; i < value.fCount; ++i) {
        text += comma;
        const auto place = static_cast<std::size_t>(value.fNumber) + i;
        if (isOfSets) {
          text += ToText(model.fSets[place]);
        } else {
          AppendNumber(text, get(model.fTerms[place].fIsVariable, model.fTerms[place].fNumber), value.fIsTruth);
        }
        comma = ",";
      }
      text += "])";
    }
    text += ";\n";
  }
  return text + sSeparator;
}

}  // namespace fzn
