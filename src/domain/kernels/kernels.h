// The inner loops of the enumerated set, once in portable C++ and once for each instruction set that speeds them up.
//
// Every variant gives the same results; tests compare them. All but the portable one use instructions that the
// processor may lack, so they are called through a table that is chosen when the module is loaded.
// Numbers ascend strictly unless a comment says otherwise. An output array has room for kSlack numbers more than
// it can receive and does not overlap the inputs.
//
// Internal to the module.
#pragma once

#include <cstdint>

#include "framework/VokLong.h"

namespace VokFenKernels {

inline constexpr unsigned kSlack = 32;
// Zero bytes that must stand before the bits that OrRows reads and behind them.
inline constexpr unsigned kBitPadding = 80;

struct Kernels {
  const char* fName;

  // The members x of a for which x - shift is in b; the number of them. Requires: no member of b plus shift leaves
  // the 32-bit range. O(na + nb), 16 (8) members a step: a block of a is compared with each member of a block of b, and
  // the block with the lesser last member is passed (Lemire, Boytsov, Kurz, "SIMD compression and the intersection of
  // sorted integers", 2016). Two halves of a are walked in turns, for one walk waits for its own comparisons.
  unsigned (*fIntersect)(const VokLong* a, unsigned na, const VokLong* b, unsigned nb, VokLong shift, VokLong* out);
  // The members of a or b; the number of them. O(na + nb), with bitonic merging of blocks (Inoue, Moriyama, Komatsu,
  // Nakatani, "AA-sort", 2007); equal neighbours leave their second behind.
  unsigned (*fUnite)(const VokLong* a, unsigned na, const VokLong* b, unsigned nb, VokLong* out);
  // The values v for which bit v - base stands, of `width` bits; the number of them. Requires: base + width - 1 is a
  // 32-bit number that is at most the greatest integer. The array of bits ends with a whole 64-bit word.
  unsigned (*fKeepBits)(const VokLong* values, unsigned n, VokLong base, VokULong width, const std::uint64_t* bits,
                        VokLong* out);
  // The values that are among `listed`, in any order, repeated or not; the number of them. Requires: the number
  // of listed ones is a multiple of 32. O(n * listed), without a branch on data.
  unsigned (*fKeepListed)(const VokLong* values, unsigned n, const VokLong* listed, unsigned listedCount, VokLong* out);
  // result = the bits shifted by rows[i] - rows[0], for each row, joined: block by block of 512 bits in registers.
  // `width` is the number of bits, `blocks` that of the blocks written.
  void (*fOrRows)(std::uint64_t* result, unsigned blocks, const unsigned char* bits, unsigned width,
                  const VokLong* rows, unsigned rowCount);
  // result |= bits << shift. One word more than `words` is written.
  void (*fOrShifted)(std::uint64_t* result, const std::uint64_t* bits, unsigned words, unsigned shift);
  unsigned (*fCountBits)(const std::uint64_t* bits, unsigned words);
};

// The kernels in use: those of the best instruction set that this processor has, unless a test chose others.
extern const Kernels* sKernels;
inline const Kernels& GetKernels() noexcept {
  return *sKernels;
}

extern const Kernels kPortable;
#if defined(__x86_64__)
extern const Kernels kAvx2;
extern const Kernels kAvx512;
#endif

}  // namespace VokFenKernels
