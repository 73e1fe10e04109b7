#include "domain/intersectInto.h"

#include <algorithm>

#include "domain/kernels/kernels.h"

namespace VokFenDomain {

namespace {

// Where galloping is faster than a walk, in times that one list is longer.
constexpr std::size_t kGallopRatio = 32;

// The first of [first, last) that is not below v, looked for at distances that double.
const VokLong* Gallop(const VokLong* first, const VokLong* last, VokLong v) {
  std::ptrdiff_t step = 1;
  while (step < last - first && first[step] < v) {
    first += step;
    step *= 2;
  }
  return std::lower_bound(first, std::min(first + step + 1, last), v);
}

// Writes the numbers y + offset of the few that are among the many.
unsigned IntersectFew(std::span<const VokLong> few, std::span<const VokLong> many, VokLong shift, VokLong offset,
                      VokLong* kept) {
  const VokLong* at = many.data();
  const VokLong* const end = at + many.size();
  unsigned count = 0;
  for (const VokLong v : few) {
    const VokLong sought = VokWrapAdd(v, shift);
    at = Gallop(at, end, sought);
    if (at == end) {
      break;
    }
    kept[count] = VokWrapAdd(v, offset);
    count += *at == sought ? 1U : 0U;
  }
  return count;
}

}  // namespace

unsigned IntersectInto(std::span<const VokLong> values, std::span<const VokLong> others, VokLong shift, VokLong* kept) {
  if (others.front() + shift > values.back() || others.back() + shift < values.front()) {
    return 0;
  }
  if (others.size() > kGallopRatio * values.size()) {
    // The part of the values whose difference to the shift is a number at all.
    const auto low = std::lower_bound(values.begin(), values.end(), others.front() + shift);
    const auto high = std::upper_bound(low, values.end(), others.back() + shift);
    return IntersectFew({low, high}, others, -shift, 0, kept);
  }
  if (values.size() > kGallopRatio * others.size()) {
    return IntersectFew(others, values, shift, shift, kept);
  }
  return VokFenKernels::GetKernels().fIntersect(values.data(), static_cast<unsigned>(values.size()), others.data(),
                                                static_cast<unsigned>(others.size()), shift, kept);
}

}  // namespace VokFenDomain
