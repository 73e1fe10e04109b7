#include "domain/kernels/generic.h"

namespace VokFenKernels {

namespace {

unsigned Intersect(const VokLong* a, unsigned na, const VokLong* b, unsigned nb, VokLong shift, VokLong* out) {
  return IntersectSingly(a, a + na, b, b + nb, shift, out);
}

unsigned Unite(const VokLong* a, unsigned na, const VokLong* b, unsigned nb, VokLong* out) {
  return UniteSingly(a, a + na, b, b + nb, out);
}

unsigned KeepBits(const VokLong* values, unsigned n, VokLong base, VokULong width, const std::uint64_t* bits,
                  VokLong* out) {
  return KeepBitsSingly(values, n, base, width, bits, out);
}

unsigned KeepListed(const VokLong* values, unsigned n, const VokLong* listed, unsigned listedCount, VokLong* out) {
  return KeepListedIn<Numbers16>(values, n, listed, listedCount, out);
}

void OrRows(std::uint64_t* result, unsigned blocks, const unsigned char* bits, unsigned width, const VokLong* rows,
            unsigned rowCount) {
  OrRowsIn<Words16>(result, blocks, bits, width, rows, rowCount);
}

void OrShifted(std::uint64_t* result, const std::uint64_t* bits, unsigned words, unsigned shift) {
  OrShiftedWords(result, bits, words, shift);
}

unsigned CountBits(const std::uint64_t* bits, unsigned words) {
  return CountBitsOf(bits, words);
}

}  // namespace

const Kernels kPortable = {"portable", Intersect, Unite, KeepBits, KeepListed, OrRows, OrShifted, CountBits};

}  // namespace VokFenKernels
