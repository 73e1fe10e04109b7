// Loops that are the same for every instruction set but for the width of a vector. Each is inlined into a function
// compiled for its instruction set, which must therefore name it a target.
#pragma once

#include <algorithm>
#include <bit>
#include <cstring>

#include "domain/kernels/kernels.h"

namespace VokFenKernels {

#define VOK_INLINE [[gnu::always_inline]] static inline

// Vectors; what stands at any address is copied into them.
using Words16 [[gnu::vector_size(16)]] = std::uint64_t;
using Words32 [[gnu::vector_size(32)]] = std::uint64_t;
using Words64 [[gnu::vector_size(64)]] = std::uint64_t;
using Numbers16 [[gnu::vector_size(16)]] = VokLong;
using Numbers32 [[gnu::vector_size(32)]] = VokLong;

// Without branches on the comparisons, whose outcomes nobody can foretell: positions move by their numbers.
VOK_INLINE unsigned IntersectSingly(const VokLong* a, const VokLong* aEnd, const VokLong* b, const VokLong* bEnd,
                                    VokLong shift, VokLong* out) {
  const auto na = static_cast<std::size_t>(aEnd - a);
  const auto nb = static_cast<std::size_t>(bEnd - b);
  std::size_t kept = 0;
  for (std::size_t i = 0, j = 0; i < na && j < nb;) {
    const VokLong x = a[i];
    const VokLong y = b[j] + shift;
    out[kept] = x;
    kept += static_cast<std::size_t>(x == y);
    i += static_cast<std::size_t>(x <= y);
    j += static_cast<std::size_t>(y <= x);
  }
  return static_cast<unsigned>(kept);
}

VOK_INLINE unsigned UniteSingly(const VokLong* a, const VokLong* aEnd, const VokLong* b, const VokLong* bEnd,
                                VokLong* out) {
  const auto na = static_cast<std::size_t>(aEnd - a);
  const auto nb = static_cast<std::size_t>(bEnd - b);
  std::size_t i = 0;
  std::size_t j = 0;
  VokLong* next = out;
  while (i < na && j < nb) {
    const VokLong x = a[i];
    const VokLong y = b[j];
    *next++ = y < x ? y : x;
    i += static_cast<std::size_t>(x <= y);
    j += static_cast<std::size_t>(y <= x);
  }
  next = std::copy(a + i, aEnd, next);
  return static_cast<unsigned>(std::copy(b + j, bEnd, next) - out);
}

// The end of a merge by blocks: joins what the last block left over and what is left of a and b, one of which is short,
// to the numbers from `out` to `next`. The number of all.
VOK_INLINE unsigned FinishUnion(const VokLong* held, const VokLong* heldEnd, const VokLong* a, const VokLong* aEnd,
                                const VokLong* b, const VokLong* bEnd, VokLong* out, VokLong* next) {
  const bool aIsShort = aEnd - a < bEnd - b;
  VokLong joined[2 * kSlack];
  const unsigned count =
      aIsShort ? UniteSingly(held, heldEnd, a, aEnd, joined) : UniteSingly(held, heldEnd, b, bEnd, joined);
  // Repeated neighbours within the last block are one number.
  const VokLong* const joinedEnd = std::unique(joined, joined + count);
  const VokLong* const from = joined + (joined[0] == next[-1] ? 1 : 0);
  return static_cast<unsigned>(next - out) +
         (aIsShort ? UniteSingly(from, joinedEnd, b, bEnd, next) : UniteSingly(from, joinedEnd, a, aEnd, next));
}

VOK_INLINE unsigned KeepBitsSingly(const VokLong* values, unsigned n, VokLong base, VokULong width,
                                   const std::uint64_t* bits, VokLong* out) {
  unsigned kept = 0;
  for (unsigned i = 0; i < n; ++i) {
    const VokULong at = VokToUnsigned(values[i]) - VokToUnsigned(base);
    const bool inside = at < width;
    out[kept] = values[i];
    kept += static_cast<unsigned>(bits[inside ? at / 64 : 0] >> at % 64 & (inside ? 1U : 0U));
  }
  return kept;
}

template <class Numbers>
VOK_INLINE unsigned KeepListedIn(const VokLong* values, unsigned n, const VokLong* listed, unsigned listedCount,
                                 VokLong* out) {
  constexpr std::size_t kLanes = sizeof(Numbers) / sizeof(VokLong);
  unsigned kept = 0;
  for (unsigned i = 0; i < n; ++i) {
    const Numbers value = Numbers{} + values[i];
    Numbers found[4] = {};
    for (std::size_t j = 0; j < listedCount; j += 4 * kLanes) {
      for (unsigned k = 0; k < 4; ++k) {
        Numbers next;
        std::memcpy(&next, listed + j + k * kLanes, sizeof next);
        found[k] |= next == value;
      }
    }
    found[0] |= found[1] | found[2] | found[3];
    std::uint64_t halves[sizeof(Numbers) / 8];
    std::memcpy(halves, &found[0], sizeof halves);
    std::uint64_t any = 0;
    for (const std::uint64_t half : halves) {
      any |= half;
    }
    out[kept] = values[i];
    kept += any != 0 ? 1U : 0U;
  }
  return kept;
}

template <class Words>
VOK_INLINE void OrRowsIn(std::uint64_t* result, unsigned blocks, const unsigned char* bits, unsigned width,
                         const VokLong* rows, unsigned rowCount) {
  constexpr unsigned kParts = 64 / sizeof(Words);
  unsigned first = 0;
  unsigned end = 0;
  for (unsigned block = 0; block < blocks; ++block) {
    const unsigned start = 512 * block;
    // The rows that reach into the block.
    while (end < rowCount && VokToUnsigned(rows[end] - rows[0]) < start + 512) {
      ++end;
    }
    while (first < end && VokToUnsigned(rows[first] - rows[0]) + width <= start) {
      ++first;
    }
    Words joined[kParts] = {};
    for (unsigned row = first; row < end; ++row) {
      const unsigned shift = VokToUnsigned(rows[row] - rows[0]);
      const unsigned up = shift % 8;
      const unsigned char* const from = bits + (static_cast<std::ptrdiff_t>(start / 8) - shift / 8);
      for (unsigned k = 0; k < kParts; ++k) {
        // The byte in front of each word gives the bits that its own shift leaves empty.
        Words word;
        Words before;
        std::memcpy(&word, from + k * sizeof word, sizeof word);
        std::memcpy(&before, from + k * sizeof word - 1, sizeof before);
        joined[k] |= word << up | before >> (8 - up);
      }
    }
    std::memcpy(result + std::size_t{8} * block, joined, sizeof joined);
  }
}

VOK_INLINE void OrShiftedWords(std::uint64_t* result, const std::uint64_t* bits, unsigned words, unsigned shift) {
  std::uint64_t* const to = result + shift / 64;
  const unsigned up = shift % 64;
  for (unsigned i = 0; i < words; ++i) {
    to[i] |= bits[i] << up;
  }
  for (unsigned i = 0; i < words; ++i) {
    to[i + 1] |= bits[i] >> 1 >> (63 - up);
  }
}

VOK_INLINE unsigned CountBitsOf(const std::uint64_t* bits, unsigned words) {
  unsigned count = 0;
  for (unsigned i = 0; i < words; ++i) {
    count += static_cast<unsigned>(std::popcount(bits[i]));
  }
  return count;
}

}  // namespace VokFenKernels
