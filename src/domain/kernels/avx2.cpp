#if defined(__x86_64__)
#include <immintrin.h>

#include <array>

#include "domain/kernels/generic.h"

#define VOK_TARGET [[gnu::target("avx2,bmi,bmi2,popcnt")]]

namespace VokFenKernels {

namespace {

// For each mask of eight lanes, the numbers of its lanes from the lowest byte on.
constexpr std::array<std::uint64_t, 256> kLanesOf = [] {
  std::array<std::uint64_t, 256> lanes{};
  for (unsigned mask = 0; mask < 256; ++mask) {
    unsigned next = 0;
    for (unsigned lane = 0; lane < 8; ++lane) {
      if ((mask >> lane & 1U) != 0) {
        lanes[mask] |= std::uint64_t{lane} << next;
        next += 8;
      }
    }
  }
  return lanes;
}();

// Writes the lanes of the mask, and others behind them.
VOK_TARGET inline void StoreLanes(VokLong* out, __m256i numbers, unsigned mask) {
  const __m256i lanes = _mm256_cvtepu8_epi32(_mm_cvtsi64_si128(static_cast<long long>(kLanesOf[mask])));
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm256_permutevar8x32_epi32(numbers, lanes));
}

VOK_TARGET inline unsigned MaskOf(__m256i lanes) {
  return static_cast<unsigned>(_mm256_movemask_ps(_mm256_castsi256_ps(lanes)));
}

struct Walk {
  const VokLong* fA;
  const VokLong* fAEnd;
  const VokLong* fB;
  const VokLong* fBEnd;
  VokLong* fOut;

  bool HasBlocks() const { return fAEnd - fA >= 8 && fBEnd - fB >= 8; }
};

VOK_TARGET inline void Step(Walk& walk, VokLong shift) {
  const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(walk.fA));
  const __m256i key = _mm256_sub_epi32(a, _mm256_set1_epi32(shift));
  __m256i found = _mm256_setzero_si256();
  for (int k = 0; k < 8; ++k) {
    found = _mm256_or_si256(found, _mm256_cmpeq_epi32(key, _mm256_set1_epi32(walk.fB[k])));
  }
  const unsigned mask = MaskOf(found);
  StoreLanes(walk.fOut, a, mask);
  walk.fOut += std::popcount(mask);
  const VokLong aLast = walk.fA[7];
  const VokLong bLast = walk.fB[7] + shift;
  walk.fA += aLast <= bLast ? 8 : 0;
  walk.fB += bLast <= aLast ? 8 : 0;
}

VOK_TARGET inline void Finish(Walk& walk, VokLong shift) {
  while (walk.HasBlocks()) {
    Step(walk, shift);
  }
  walk.fOut += IntersectSingly(walk.fA, walk.fAEnd, walk.fB, walk.fBEnd, shift, walk.fOut);
}

VOK_TARGET unsigned Intersect(const VokLong* a, unsigned na, const VokLong* b, unsigned nb, VokLong shift,
                              VokLong* out) {
  if (na < 64) {
    Walk walk{a, a + na, b, b + nb, out};
    Finish(walk, shift);
    return static_cast<unsigned>(walk.fOut - out);
  }
  // A walk writes whole blocks and so up to a block beyond what it keeps: the second one starts that much later.
  const unsigned middle = na / 2 / 8 * 8;
  const VokLong* const bMiddle = std::partition_point(b, b + nb, [=](VokLong y) { return y + shift < a[middle]; });
  Walk low{a, a + middle, b, bMiddle, out};
  Walk high{a + middle, a + na, bMiddle, b + nb, out + middle + 8};
  while (low.HasBlocks() && high.HasBlocks()) {
    Step(low, shift);
    Step(high, shift);
  }
  Finish(low, shift);
  Finish(high, shift);
  return static_cast<unsigned>(std::copy(out + middle + 8, high.fOut, low.fOut) - out);
}

// One stage of a bitonic merge: lanes whose number has the bit `distance` keep the greater of themselves and the
// lane at that distance, the others the lesser.
template <int Lanes, int Blend>
VOK_TARGET inline __m256i MergeStage(__m256i v) {
  const __m256i other =
      Lanes == 4 ? _mm256_permute2x128_si256(v, v, 1) : _mm256_shuffle_epi32(v, Lanes == 2 ? 0x4E : 0xB1);
  return _mm256_blend_epi32(_mm256_min_epi32(v, other), _mm256_max_epi32(v, other), Blend);
}

VOK_TARGET inline __m256i SortBitonic(__m256i v) {
  return MergeStage<1, 0xAA>(MergeStage<2, 0xCC>(MergeStage<4, 0xF0>(v)));
}

VOK_TARGET unsigned Unite(const VokLong* a, unsigned na, const VokLong* b, unsigned nb, VokLong* out) {
  if (na < 16 || nb < 16) {
    return UniteSingly(a, a + na, b, b + nb, out);
  }
  const VokLong* const aEnd = a + na;
  const VokLong* const bEnd = b + nb;
  const __m256i reversed = _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0);
  const __m256i rotated = _mm256_setr_epi32(7, 0, 1, 2, 3, 4, 5, 6);
  VokLong* next = out;
  __m256i carry = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(a));
  // Something that no first member equals.
  __m256i previous = _mm256_set1_epi32(VokWrapAdd(a[0] < b[0] ? a[0] : b[0], -1));
  a += 8;
  const VokLong* from = b;
  b += 8;
  while (true) {
    const __m256i block =
        _mm256_permutevar8x32_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)), reversed);
    const __m256i low = SortBitonic(_mm256_min_epi32(carry, block));
    carry = SortBitonic(_mm256_max_epi32(carry, block));
    const __m256i shifted = _mm256_blend_epi32(_mm256_permutevar8x32_epi32(low, rotated),
                                               _mm256_permutevar8x32_epi32(previous, rotated), 1);
    const unsigned mask = ~MaskOf(_mm256_cmpeq_epi32(low, shifted)) & 0xFFU;
    StoreLanes(next, low, mask);
    next += std::popcount(mask);
    previous = low;
    if (aEnd - a < 8 || bEnd - b < 8) {
      break;
    }
    const bool takeA = *a <= *b;
    from = takeA ? a : b;
    a += takeA ? 8 : 0;
    b += takeA ? 0 : 8;
  }
  VokLong held[8];
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(held), carry);
  return FinishUnion(held, held + 8, a, aEnd, b, bEnd, out, next);
}

VOK_TARGET unsigned KeepBits(const VokLong* values, unsigned n, VokLong base, VokULong width, const std::uint64_t* bits,
                             VokLong* out) {
  return KeepBitsSingly(values, n, base, width, bits, out);
}

VOK_TARGET unsigned KeepListed(const VokLong* values, unsigned n, const VokLong* listed, unsigned listedCount,
                               VokLong* out) {
  return KeepListedIn<Numbers32>(values, n, listed, listedCount, out);
}

VOK_TARGET void OrRows(std::uint64_t* result, unsigned blocks, const unsigned char* bits, unsigned width,
                       const VokLong* rows, unsigned rowCount) {
  OrRowsIn<Words32>(result, blocks, bits, width, rows, rowCount);
}

VOK_TARGET void OrShifted(std::uint64_t* result, const std::uint64_t* bits, unsigned words, unsigned shift) {
  OrShiftedWords(result, bits, words, shift);
}

VOK_TARGET unsigned CountBits(const std::uint64_t* bits, unsigned words) {
  return CountBitsOf(bits, words);
}

}  // namespace

const Kernels kAvx2 = {"AVX2", Intersect, Unite, KeepBits, KeepListed, OrRows, OrShifted, CountBits};

}  // namespace VokFenKernels
#endif
