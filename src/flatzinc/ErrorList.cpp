#include "flatzinc/ErrorList.h"

#include <algorithm>

namespace fzn {

void ErrorList::Add(std::uint32_t line, const std::string& message) {
  fErrors.emplace_back(line, message);
}

void ErrorList::AddUnsupported(std::uint32_t line, std::string_view name, std::size_t arguments) {
  std::string text(name);
  const std::string shown = text + "/" + std::to_string(arguments);
  if (fUnsupported.emplace(std::move(text), arguments).second) {
    Add(line, "constraint " + shown + " is not supported");
  }
}

std::string ErrorList::GetText() const {
  std::vector<std::pair<std::uint32_t, std::string>> sorted = fErrors;
  std::ranges::stable_sort(sorted, {}, [](const auto& error) { return error.first; });
  std::string text;
  for (const auto& [line, message] : sorted) {
    text += Format(line, message) + "\n";
  }
  return text;
}

std::string ErrorList::Format(std::uint32_t line, const std::string& message) const {
  return fFile + ":" + std::to_string(line) + ": " + message;
}

}  // namespace fzn
