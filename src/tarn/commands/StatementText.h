// Model text as it is typed: where statements end, and how they look on one line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

std::string_view Trim(std::string_view text) noexcept;

// The text without comments and with single blanks for white space.
std::string ToLine(std::string_view text);

// Whether the last thing in the text, but for blanks and comments, is the ";" that ends a statement.
bool EndsStatement(std::string_view text);

// The statements of the text, each with the comments before it and the ";" that ends it; what is behind the last ";" is
// left out, and so is a ";" without a statement.
std::vector<std::string> SplitStatements(std::string_view text);

}  // namespace tarn
