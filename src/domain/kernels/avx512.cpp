#if defined(__x86_64__)
#include <immintrin.h>

#include "domain/kernels/generic.h"

// g++ 12 takes the undefined vectors inside its own intrinsics for a mistake (GCC bug 105593).
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

// Without optimisation, GCC's gathers are macros that convert their mask to a signed number.
#pragma GCC diagnostic ignored "-Wsign-conversion"

#define VOK_TARGET [[gnu::target("avx512f,avx512bw,avx512dq,avx512vl,avx2,bmi,bmi2,popcnt")]]

namespace VokFenKernels {

namespace {

struct Walk {
  const VokLong* fA;
  const VokLong* fAEnd;
  const VokLong* fB;
  const VokLong* fBEnd;
  VokLong* fOut;

  bool HasBlocks() const { return fAEnd - fA >= 16 && fBEnd - fB >= 8; }
};

// One block of up to 16 members of a, those of `lanes`, against 8 of b.
VOK_TARGET inline void StepBlock(Walk& walk, __m512i a, __mmask16 lanes, const VokLong* b, __m512i shift) {
  const __m512i key = _mm512_sub_epi32(a, shift);
  __mmask16 missed = lanes;
  for (int k = 0; k < 8; ++k) {
    missed = _mm512_mask_cmpneq_epi32_mask(missed, key, _mm512_set1_epi32(b[k]));
  }
  const auto found = static_cast<__mmask16>(lanes & ~missed);
  _mm512_storeu_si512(walk.fOut, _mm512_maskz_compress_epi32(found, a));
  walk.fOut += std::popcount(static_cast<unsigned>(found));
}

VOK_TARGET inline void Step(Walk& walk, __m512i shifts, VokLong shift) {
  StepBlock(walk, _mm512_loadu_si512(walk.fA), 0xFFFF, walk.fB, shifts);
  const VokLong aLast = walk.fA[15];
  const VokLong bLast = walk.fB[7] + shift;
  walk.fA += aLast <= bLast ? 16 : 0;
  walk.fB += bLast <= aLast ? 8 : 0;
}

// The whole blocks that are left, then the part of a block at the end of each operand.
VOK_TARGET inline void Finish(Walk& walk, __m512i shifts, VokLong shift) {
  while (walk.HasBlocks()) {
    Step(walk, shifts, shift);
  }
  if (walk.fB == walk.fBEnd) {
    return;
  }
  VokLong tail[8];
  const auto tailCount = (walk.fBEnd - walk.fB - 1) % 8 + 1;
  for (int k = 0; k < 8; ++k) {
    tail[k] = walk.fBEnd[k < tailCount ? k - tailCount : -1];
  }
  while (walk.fA < walk.fAEnd && walk.fB < walk.fBEnd) {
    const auto count = std::min<std::ptrdiff_t>(16, walk.fAEnd - walk.fA);
    const auto lanes = static_cast<__mmask16>(0xFFFFU >> (16 - count));
    const VokLong* const b = walk.fBEnd - walk.fB < 8 ? tail : walk.fB;
    StepBlock(walk, _mm512_maskz_loadu_epi32(lanes, walk.fA), lanes, b, shifts);
    const VokLong aLast = walk.fA[count - 1];
    const VokLong bLast = b[7] + shift;
    walk.fA += aLast <= bLast ? count : 0;
    walk.fB += bLast <= aLast ? (b == tail ? walk.fBEnd - walk.fB : 8) : 0;
  }
}

VOK_TARGET unsigned Intersect(const VokLong* a, unsigned na, const VokLong* b, unsigned nb, VokLong shift,
                              VokLong* out) {
  const __m512i shifts = _mm512_set1_epi32(shift);
  if (na < 64) {
    Walk walk{a, a + na, b, b + nb, out};
    Finish(walk, shifts, shift);
    return static_cast<unsigned>(walk.fOut - out);
  }
  // A walk writes whole blocks and so up to a block beyond what it keeps: the second one starts that much later.
  const unsigned middle = na / 2 / 16 * 16;
  const VokLong* const bMiddle = std::partition_point(b, b + nb, [=](VokLong y) { return y + shift < a[middle]; });
  Walk low{a, a + middle, b, bMiddle, out};
  Walk high{a + middle, a + na, bMiddle, b + nb, out + middle + 16};
  while (low.HasBlocks() && high.HasBlocks()) {
    Step(low, shifts, shift);
    Step(high, shifts, shift);
  }
  Finish(low, shifts, shift);
  Finish(high, shifts, shift);
  return static_cast<unsigned>(std::copy(out + middle + 16, high.fOut, low.fOut) - out);
}

// Sorts a bitonic sequence: at each distance, the lanes whose number has that bit take the greater of two.
VOK_TARGET inline __m512i SortBitonic(__m512i v) {
  __m512i other = _mm512_shuffle_i64x2(v, v, 0x4E);
  v = _mm512_mask_max_epi32(_mm512_min_epi32(v, other), 0xFF00, v, other);
  other = _mm512_shuffle_i64x2(v, v, 0xB1);
  v = _mm512_mask_max_epi32(_mm512_min_epi32(v, other), 0xF0F0, v, other);
  other = _mm512_shuffle_epi32(v, _MM_PERM_BADC);
  v = _mm512_mask_max_epi32(_mm512_min_epi32(v, other), 0xCCCC, v, other);
  other = _mm512_shuffle_epi32(v, _MM_PERM_CDAB);
  return _mm512_mask_max_epi32(_mm512_min_epi32(v, other), 0xAAAA, v, other);
}

VOK_TARGET unsigned Unite(const VokLong* a, unsigned na, const VokLong* b, unsigned nb, VokLong* out) {
  if (na < 32 || nb < 32) {
    return UniteSingly(a, a + na, b, b + nb, out);
  }
  const VokLong* const aEnd = a + na;
  const VokLong* const bEnd = b + nb;
  const __m512i reversed = _mm512_setr_epi32(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
  VokLong* next = out;
  __m512i carry = _mm512_loadu_si512(a);
  // Something that no first member equals.
  __m512i previous = _mm512_set1_epi32(VokWrapAdd(a[0] < b[0] ? a[0] : b[0], -1));
  a += 16;
  const VokLong* from = b;
  b += 16;
  while (true) {
    const __m512i block = _mm512_permutexvar_epi32(reversed, _mm512_loadu_si512(from));
    const __m512i low = SortBitonic(_mm512_min_epi32(carry, block));
    carry = SortBitonic(_mm512_max_epi32(carry, block));
    const __mmask16 fresh = _mm512_cmpneq_epi32_mask(low, _mm512_alignr_epi32(low, previous, 15));
    _mm512_storeu_si512(next, _mm512_maskz_compress_epi32(fresh, low));
    next += std::popcount(static_cast<unsigned>(fresh));
    previous = low;
    if (aEnd - a < 16 || bEnd - b < 16) {
      break;
    }
    const bool takeA = *a <= *b;
    from = takeA ? a : b;
    a += takeA ? 16 : 0;
    b += takeA ? 0 : 16;
  }
  VokLong held[16];
  _mm512_storeu_si512(held, carry);
  return FinishUnion(held, held + 16, a, aEnd, b, bEnd, out, next);
}

VOK_TARGET unsigned KeepBits(const VokLong* values, unsigned n, VokLong base, VokULong width, const std::uint64_t* bits,
                             VokLong* out) {
  VokLong* next = out;
  const __m512i bases = _mm512_set1_epi32(base);
  const __m512i one = _mm512_set1_epi32(1);
  for (unsigned i = 0; i < n; i += 16) {
    const auto lanes = static_cast<__mmask16>(0xFFFFU >> (n - i < 16 ? 16 - (n - i) : 0));
    const __m512i v = _mm512_maskz_loadu_epi32(lanes, values + i);
    const __m512i at = _mm512_sub_epi32(v, bases);
    const __mmask16 inside = _mm512_mask_cmplt_epu32_mask(lanes, at, _mm512_set1_epi32(VokToSigned(width)));
    const __m512i words =
        _mm512_mask_i32gather_epi32(_mm512_setzero_si512(), inside, _mm512_srli_epi32(at, 5), bits, 4);
    const __m512i bit = _mm512_sllv_epi32(one, _mm512_and_si512(at, _mm512_set1_epi32(31)));
    const __mmask16 stands = _mm512_mask_test_epi32_mask(inside, words, bit);
    _mm512_storeu_si512(next, _mm512_maskz_compress_epi32(stands, v));
    next += std::popcount(static_cast<unsigned>(stands));
  }
  return static_cast<unsigned>(next - out);
}

// Lanes that have differed so far are compared on: the masks need not be joined.
VOK_TARGET unsigned KeepListed(const VokLong* values, unsigned n, const VokLong* listed, unsigned listedCount,
                               VokLong* out) {
  unsigned kept = 0;
  for (unsigned i = 0; i < n; ++i) {
    const __m512i value = _mm512_set1_epi32(values[i]);
    __mmask16 low = 0xFFFF;
    __mmask16 high = 0xFFFF;
    for (const VokLong* next = listed; next < listed + listedCount; next += 32) {
      low = _mm512_mask_cmpneq_epi32_mask(low, value, _mm512_loadu_si512(next));
      high = _mm512_mask_cmpneq_epi32_mask(high, value, _mm512_loadu_si512(next + 16));
    }
    out[kept] = values[i];
    kept += (low & high) != 0xFFFF ? 1U : 0U;
  }
  return kept;
}

VOK_TARGET void OrRows(std::uint64_t* result, unsigned blocks, const unsigned char* bits, unsigned width,
                       const VokLong* rows, unsigned rowCount) {
  OrRowsIn<Words64>(result, blocks, bits, width, rows, rowCount);
}

VOK_TARGET void OrShifted(std::uint64_t* result, const std::uint64_t* bits, unsigned words, unsigned shift) {
  OrShiftedWords(result, bits, words, shift);
}

VOK_TARGET unsigned CountBits(const std::uint64_t* bits, unsigned words) {
  return CountBitsOf(bits, words);
}

}  // namespace

const Kernels kAvx512 = {"AVX-512", Intersect, Unite, KeepBits, KeepListed, OrRows, OrShifted, CountBits};

}  // namespace VokFenKernels
#endif
