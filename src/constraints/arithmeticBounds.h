// What bounds tell of z = f(x, y). All numbers that go in are those of the network, of 32 bits, so that products and
// their neighbours fit in 64.
#pragma once

#include <cstdint>
#include <optional>

#include "base/range.h"
#include "framework/VokTarnRelation.h"

// f(x, y); none where it is not defined. Powers beyond the integers of the network are clipped to a number beyond them.
std::optional<std::int64_t> Apply(VokTarnFunction function, std::int64_t x, std::int64_t y) noexcept;

// A range that holds every z with partners in the others; every x; every y. Each may be wider than need be.
VokTarnRange FindResult(VokTarnFunction function, VokTarnRange x, VokTarnRange y);
VokTarnRange FindFirst(VokTarnFunction function, VokTarnRange x, VokTarnRange y, VokTarnRange z);
VokTarnRange FindSecond(VokTarnFunction function, VokTarnRange x, VokTarnRange y, VokTarnRange z);
