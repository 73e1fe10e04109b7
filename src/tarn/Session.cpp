#include "tarn/Session.h"

#include <filesystem>

#include "tarn/Diagnostic.h"
#include "tarn/Parser.h"
#include "tarn/ValueText.h"

namespace tarn {

void Session::AddDirectory(const std::string& directory) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::absolute(directory, error);
  if (error || fManager.AddSearchDirectory(path.string()) == 0) {
    throw ProgramError("tarn: error: cannot search the directory " + Quote(MakePrintable(directory)));
  }
}

VokTarnModule& Session::Open(const std::string& module) {
  VokTarnModule* opened = TryOpen(module);
  if (opened == nullptr) {
    throw ProgramError("tarn: error: cannot open the module " + Quote(MakePrintable(module)) + ": " +
                       MakePrintable(fManager.GetError()));
  }
  return *opened;
}

VokTarnModule* Session::TryOpen(std::string_view module) {
  VokTarnModule* opened = fManager.OpenModule(VokString(module));
  if (opened == nullptr) {
    return nullptr;
  }
  fTable.Refresh();
  for (const VokTarnType type : fTable.GetTypes()) {
    if (IsConcrete(type)) {
      fVocabulary.AddType(type->GetName().View());
    }
  }
  for (const std::string_view name : fTable.GetOperatorNames()) {
    for (const VokTarnOperatorDescriptor* row : fTable.GetRows(name)) {
      fVocabulary.AddOperator(name, row->GetOperandCount());
    }
  }
  return opened;
}

void Session::Read(const Source& source) {
  Parser parser(source, fVocabulary, fModel);
  while (std::optional<Statement> statement = parser.Next()) {
    Execute(*std::move(statement));
  }
}

void Session::Execute(Statement statement) {
  const VokULong first = fNetwork.GetConstraintCount();
  if (const auto* use = std::get_if<Use>(&statement.fBody)) {
    if (TryOpen(use->fModule.fText) == nullptr) {
      throw ModelError(use->fModule.fOffset,
                       "cannot open the module " + Quote(use->fModule.fText) + ": " + fManager.GetError());
    }
  } else if (const auto* declaration = std::get_if<Declaration>(&statement.fBody)) {
    fCompiler.Declare(*declaration);
    for (const Word& name : declaration->fNames) {
      fModel.AddVariable(name.fText, declaration->fType.fText);
    }
  } else {
    fCompiler.Post(std::get<Formula>(statement.fBody));
  }
  fConstraints.push_back({first, fNetwork.GetConstraintCount()});
  fModel.AddStatement(std::move(statement));
}

}  // namespace tarn
