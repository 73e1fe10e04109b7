#pragma once

#include <string_view>

#include "flatzinc/ErrorList.h"
#include "flatzinc/Model.h"

namespace fzn {

// Reads a problem. What is not supported, variables over floats and sets with the constraints over them, is left out
// and put on the list. Throws InputError where the text is not FlatZinc.
//
// Cost  Linear in the length of the text, time and memory.
Model Parse(std::string_view text, ErrorList& errors);

}  // namespace fzn
