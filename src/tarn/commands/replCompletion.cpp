// What Tab proposes in a session.
#include <algorithm>
#include <filesystem>
#include <set>

#include "tarn/Lexer.h"
#include "tarn/commands/Repl.h"

namespace tarn {
namespace {

using Words = std::set<std::string, std::less<>>;

constexpr std::string_view sBlank = " \t";

Completion KeepMatching(std::string_view line, std::size_t start, const Words& words) {
  const std::string_view begun = line.substr(start);
  Completion completion{start, {}};
  for (auto word = words.lower_bound(begun); word != words.end() && word->starts_with(begun); ++word) {
    completion.fCandidates.push_back(*word);
  }
  return completion;
}

// Files and directories beside the one whose name has been begun. Hidden ones must be asked for by their dot.
Words ListFiles(std::string_view begun) {
  const std::string directory(begun.substr(0, begun.rfind('/') + 1));
  const bool areHiddenShown = begun.substr(directory.size()).starts_with('.');
  Words files;
  std::error_code error;
  std::filesystem::directory_iterator file(directory.empty() ? "." : directory, error);
  for (; !error && file != std::filesystem::directory_iterator(); file.increment(error)) {
    const std::string name = file->path().filename();
    std::error_code unknown;
    if (areHiddenShown || !name.starts_with('.')) {
      files.insert(directory + name + (file->is_directory(unknown) ? "/" : ""));
    }
  }
  return files;
}

}  // namespace

Completion Repl::Complete(std::string_view line) const {
  Words variables;
  for (const Model::Variable& variable : fSession->GetModel().GetVariables()) {
    variables.insert(variable.fName);
  }
  Words commands;
  for (const Command& command : GetCommands()) {
    commands.emplace(command.fName);
  }
  std::size_t start = line.size();
  while (start > 0 && IsNamePart(line[start - 1])) {
    --start;
  }
  const std::size_t first = std::min(line.find_first_not_of(sBlank), line.size());
  const std::size_t behind = std::min(line.find_first_of(sBlank, first), line.size());
  const Command* command = IsUnfinished() ? nullptr : FindCommand(line.substr(first, behind - first));
  if (command != nullptr && behind < line.size()) {
    const std::size_t argument = std::min(line.find_first_not_of(sBlank, behind), line.size());
    switch (command->fArgument) {
      case Argument::File:
        return KeepMatching(line, argument, ListFiles(line.substr(argument)));
      case Argument::Fact:
      case Argument::Variables:
        return KeepMatching(line, start, variables);
      case Argument::Command:
        return KeepMatching(line, start, commands);
      default:
        return {};
    }
  }
  Words words = fModules.GetVocabulary().GetWords();
  words.merge(variables);
  if (start == first && !IsUnfinished()) {
    words.merge(commands);
  }
  return KeepMatching(line, start, words);
}

}  // namespace tarn
