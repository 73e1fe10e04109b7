#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "flatzinc/Model.h"

namespace fzn {

inline constexpr const char* sSeparator = "----------\n";

// What is printed of a solution, the separator included. `values` has one for each variable of the model.
std::string FormatSolution(const Model& model, std::span<const std::int64_t> values);

}  // namespace fzn
