// What the program prints of a network.
#pragma once

#include <iosfwd>

#include "tarn/Session.h"

namespace tarn {

inline constexpr const char* sSolutionEnd = "----------\n";
inline constexpr const char* sExhausted = "==========\n";
inline constexpr const char* sUnsatisfiable = "=====UNSATISFIABLE=====\n";
inline constexpr const char* sUnknown = "=====UNKNOWN=====\n";

// One line "name = domain" for each declared variable, in order of declaration.
void PrintVariables(Session& session, std::ostream& out);

}  // namespace tarn
