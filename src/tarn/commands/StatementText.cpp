#include "tarn/commands/StatementText.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr std::string_view sSpace = " \t\r\n\v\f";

// The length of the comment at the start of the text, or 0.
std::size_t MatchComment(std::string_view text) noexcept {
  return text.starts_with("//") ? std::min(text.find('\n'), text.size()) : 0;
}

}  // namespace

std::string_view Trim(std::string_view text) noexcept {
  const std::size_t first = std::min(text.find_first_not_of(sSpace), text.size());
  text.remove_prefix(first);
  return text.substr(0, text.find_last_not_of(sSpace) + 1);
}

std::string ToLine(std::string_view text) {
  std::string line;
  bool isApart = false;
  while (!text.empty()) {
    const std::size_t skipped = sSpace.find(text[0]) != std::string_view::npos ? 1 : MatchComment(text);
    if (skipped > 0) {
      isApart = true;
      text.remove_prefix(skipped);
      continue;
    }
    line += isApart && !line.empty() ? " " : "";
    line += text[0];
    isApart = false;
    text.remove_prefix(1);
  }
  return line;
}

bool EndsStatement(std::string_view text) {
  return ToLine(text).ends_with(';');
}

std::vector<std::string> SplitStatements(std::string_view text) {
  std::vector<std::string> statements;
  std::size_t end = 0;
  while (end < text.size()) {
    const std::size_t comment = MatchComment(text.substr(end));
    end += std::max<std::size_t>(comment, 1);
    if (comment > 0 || text[end - 1] != ';') {
      continue;
    }
    const std::string_view statement = text.substr(0, end);
    if (ToLine(statement) != ";") {
      statements.emplace_back(Trim(statement));
    }
    text.remove_prefix(end);
    end = 0;
  }
  return statements;
}

}  // namespace tarn
