#include "tarn/Session.h"

#include "tarn/Diagnostic.h"
#include "tarn/Parser.h"
#include "tarn/TextStream.h"

namespace tarn {

void Session::Read(const Source& source, const std::function<void()>& afterEach) {
  if (VokTarnNetworkFile::IsNetworkFile(source.GetText())) {
    Restore(source);
    return;
  }
  if (fContents.fModelName.empty()) {
    fContents.fModelName = source.GetName();
  }
  fContents.fModelText += source.GetText();
  Parser parser(source, fModules.GetVocabulary(), fModel);
  while (std::optional<Statement> statement = parser.Next()) {
    Execute(*std::move(statement));
    afterEach();
  }
}

void Session::Execute(Statement statement) {
  const VokULong first = fNetwork.GetConstraintCount();
  if (const auto* use = std::get_if<Use>(&statement.fBody)) {
    if (fModules.TryOpen(use->fModule.fText) == nullptr) {
      throw ModelError(use->fModule.fOffset,
                       "cannot open the module " + Quote(use->fModule.fText) + ": " + fModules.GetManager().GetError());
    }
  } else if (const auto* declaration = std::get_if<Declaration>(&statement.fBody)) {
    fCompiler.Declare(*declaration);
    AddVariables(*declaration);
  } else if (const auto* formula = std::get_if<Formula>(&statement.fBody)) {
    fCompiler.Post(*formula);
  }  // a list takes effect where it is used
  fConstraints.push_back({first, fNetwork.GetConstraintCount()});
  fModel.AddStatement(std::move(statement));
}

void Session::AddVariables(const Declaration& declaration) {
  for (const Word& name : declaration.fNames) {
    fModel.AddVariable(name.fText, declaration.fType.fText);
  }
}

void Session::Restore(const Source& source) {
  TextReader bytes(std::string(source.GetText()));
  std::string error;
  fRestored = VokTarnNetworkFile::Read(bytes, fModules.GetManager(), fContents, error);
  if (fRestored == nullptr) {
    throw ProgramError(source.GetName() + ": error: " + MakePrintable(error));
  }
  for (const std::string& module : fContents.fModules) {
    fModules.Open(module);
  }
  const Source text(MakePrintable(fContents.fModelName), fContents.fModelText);
  try {
    Parser parser(text, fModules.GetVocabulary(), fModel);
    while (std::optional<Statement> statement = parser.Next()) {
      if (const auto* declaration = std::get_if<Declaration>(&statement->fBody)) {
        AddVariables(*declaration);
      }
      fModel.AddStatement(*std::move(statement));
    }
  } catch (const ModelError& mistake) {
    throw ProgramError(source.GetName() + ": error: the model text in it is wrong\n" + FormatDiagnostic(text, mistake));
  }
  CheckVariables(source);
}

// Solutions are printed under the names of the model and checked against its statements, so its variables must be those
// of the network.
void Session::CheckVariables(const Source& source) const {
  const std::vector<Model::Variable>& variables = fModel.GetVariables();
  bool areSame = variables.size() == fContents.fVariables.size();
  for (std::size_t i = 0; areSame && i < variables.size(); ++i) {
    const VokTarnValueId id = fContents.fVariables[i];
    areSame =
        fRestored->GetName(id) == variables[i].fName && fRestored->GetType(id)->GetName().View() == variables[i].fType;
  }
  if (!areSame) {
    throw ProgramError(source.GetName() +
                       ": error: the model text in it does not declare the variables of its network");
  }
}

VokTarnNetworkFile::Contents Session::GetContents() const {
  VokTarnNetworkFile::Contents contents = fContents;
  contents.fModules.clear();
  for (const VokTarnModule* module : fModules.GetManager().GetModules()) {
    contents.fModules.emplace_back(module->GetName().View());
  }
  contents.fVariables = GetVariables();
  contents.fObjective = GetObjective();
  return contents;
}

}  // namespace tarn
