// The error flag of the numbers library: process-wide, unguarded, polled after a group of operations.
//
// Raised by a division by zero and by an empty intersection of SubdefInt values, by nothing else: an
// unpolled flag would poison the next operation that polls it. Whoever finds it set clears it.
#pragma once

#include "framework/VokTarnExport.h"

VOKTARN_EXPORT int SDCheckError() noexcept;  // 1 when an operation has failed since the last clear
VOKTARN_EXPORT void SDClearError() noexcept;
VOKTARN_EXPORT void SDSetError() noexcept;
