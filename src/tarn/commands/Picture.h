// Pictures in the DOT language, and the graphviz program that lays them out.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "framework/VokTarnAny.h"

namespace tarn {

// The text as a quoted string of the DOT language. A line end starts a new line of a label.
std::string DotText(std::string_view text);

// At most `limit` characters of the text, as one line: blanks become one each, an ellipsis stands for what is cut.
std::string ShortText(std::string_view text, std::size_t limit);

// The possible values in few characters: "1..4, 7, …, 90".
std::string ShortDomain(const VokTarnAny& value);

// Throws ProgramError unless the name ends as that of a picture: .dot, .svg, .png, .pdf. The empty name is right, too.
void CheckPictureName(const std::string& path);

// Writes a picture to the file `path`, of the kind that its name says; the empty name stands for `out`. Throws
// ProgramError when that fails; nothing is left of the file then.
void WritePicture(const std::string& dot, const std::string& path, std::ostream& out);

}  // namespace tarn
