#include "tarn/CompileErrors.h"

#include <algorithm>
#include <numeric>

#include "tarn/Lexer.h"
#include "tarn/TextStream.h"

namespace tarn {
namespace {

std::string DescribeTypes(std::span<const VokTarnType> types) {
  // A list can be long; what matters is which types are in it.
  std::vector<std::string> names;
  for (const VokTarnType type : types) {
    names.push_back(Quote(type->GetName().View()));
  }
  if (names.size() > 2) {
    std::ranges::sort(names);
    names.erase(std::unique(names.begin(), names.end()), names.end());
  }
  std::string result;
  for (std::size_t i = 0; i < names.size(); ++i) {
    result += (i == 0 ? "" : i + 1 == names.size() ? " and " : ", ") + names[i];
  }
  return result;
}

// How many letters must be inserted, removed or replaced to turn one word into the other.
std::size_t CountEdits(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row[b.size()];
}

}  // namespace

ModelError MakeOperatorError(const VokTarnOperatorTable& table, const Word& name, std::span<const VokTarnType> types) {
  if (!table.HasOperator(name.fText)) {
    return {name.fOffset, "unknown operator " + Quote(name.fText) + ": no module that is open publishes it"};
  }
  std::vector<std::string> notes{"there is:"};
  for (const VokTarnOperatorDescriptor* row : table.GetRows(name.fText)) {
    TextWriter text;
    row->PrintOn(text);
    notes.push_back("  " + text.str());
  }
  return {name.fOffset, "no operator " + Quote(name.fText) + " for " + DescribeTypes(types), std::move(notes)};
}

ModelError MakeCastError(const VokTarnOperatorTable& table, const Node& node, VokTarnType from) {
  std::vector<std::string> notes{"the casts lead both ways between:"};
  for (const std::string_view name : table.GetOperatorNames()) {
    for (const VokTarnOperatorDescriptor* row : table.GetRows(name)) {
      if (row->IsCast()) {
        notes.push_back("  " + std::string(row->GetOperandType(0)->GetName().View()) + " and " +
                        std::string(row->GetResultType()->GetName().View()));
      }
    }
  }
  return {node.fOffset, "no cast from " + Quote(from->GetName().View()) + " to " + Quote(node.fText), std::move(notes)};
}

ModelError MakeLiteralError(const Model& model, const Node& node) {
  if (!IsNameStart(node.fText[0])) {
    return {node.fOffset, "number out of range: " + Quote(node.fText)};
  }
  // Half of a short word is not a misspelling of it, and a very long word is not worth the time.
  constexpr std::size_t sLongestWord = 40;
  std::size_t fewest = std::min<std::size_t>(2, node.fText.size() / 2);
  std::string hint;
  for (const Model::Variable& variable : model.GetVariables()) {
    const std::size_t length = std::max(node.fText.size(), variable.fName.size());
    const std::size_t edits = length > sLongestWord ? length : CountEdits(node.fText, variable.fName);
    if (edits <= fewest && (hint.empty() || edits < fewest)) {
      fewest = edits;
      hint = "; did you mean " + Quote(variable.fName) + "?";
    }
  }
  return {node.fOffset, Quote(node.fText) + " is not declared" + hint};
}

}  // namespace tarn
