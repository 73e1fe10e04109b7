// Reading and printing the elements of the family's text forms.
#pragma once

#include <iosfwd>

#include "framework/VokLong.h"
#include "framework/VokTarnExport.h"

// Skips white space, looks at the next token and says what it is. The words and the opening brackets are
// consumed, a number is not:
//
//   0 a number, or anything else   1 "["   2 "Min"   3 "Max"   4 "Any"   5 "Nil"   8 "{"
//   6, 7 the minimum and the maximum in their long forms "-Max" and "+Max"
//
// A word counts only as a whole: "Maximum" is no "Max" (0, and nothing is consumed).
VOKTARN_EXPORT int CheckNumString(std::istream& is);

// Reads one element value: a decimal number with an optional sign, or one of the words for the minimum and
// the maximum. Anything else, and a number beyond 32 bits, sets the fail bit and gives 0.
// Both functions read through the stream buffer, so that they go on after the stream has failed.
VOKTARN_EXPORT VokLong GetSIValue(std::istream& is);

// Writes "Min", "Max" or the number.
void PrintSIValue(std::ostream& os, VokLong v);
