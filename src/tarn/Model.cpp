#include "tarn/Model.h"

#include <utility>

namespace tarn {

void Model::AddVariable(std::string_view name, std::string_view type) {
  fNames.emplace(name, static_cast<VariableIndex>(fVariables.size()));
  fVariables.push_back({std::string(name), std::string(type)});
}

void Model::AddStatement(Statement statement) {
  const Formula* formula = std::get_if<Formula>(&statement.fBody);
  if (formula != nullptr && formula->IsObjective()) {
    fObjective = fStatements.size();
  }
  if (const auto* list = std::get_if<ListDefinition>(&statement.fBody)) {
    fLists.emplace(list->fName.fText, fStatements.size());
  }
  fStatements.push_back(std::move(statement));
}

const Formula* Model::FindList(std::string_view name) const {
  const auto found = fLists.find(name);
  return found == fLists.end() ? nullptr : &std::get<ListDefinition>(fStatements[found->second].fBody).fList;
}

std::optional<VariableIndex> Model::FindVariable(std::string_view name) const noexcept {
  const auto found = fNames.find(name);
  if (found == fNames.end()) {
    return std::nullopt;
  }
  return found->second;
}

}  // namespace tarn
