#include "narrowing/candidateSet.h"

#include <algorithm>
#include <bit>

namespace VokFenNarrowing {

CandidateValues::CandidateValues(std::int64_t lower, std::int64_t upper) noexcept
    : fLower(lower),
      fWidth(static_cast<std::uint64_t>(std::max<std::int64_t>(upper - lower + 1, 0))),
      fAreBits(fWidth <= kBits) {
  std::fill_n(fCells.begin(), fAreBits ? (fWidth + 31) / 32 : kSlots, 0U);
}

void CandidateValues::GetSorted(VokLong* values) const noexcept {
  VokLong* next = values;
  if (fAreBits) {
    for (unsigned i = 0; i < (fWidth + 31) / 32; ++i) {
      for (VokULong word = fCells[i]; word != 0; word &= word - 1) {
        *next++ = static_cast<VokLong>(fLower + std::int64_t{32} * i + std::countr_zero(word));
      }
    }
    return;
  }
  for (const VokULong cell : fCells) {
    if (cell != 0) {
      *next++ = VokToSigned(cell);
    }
  }
  if (fHasZero) {
    *next++ = 0;
  }
  std::sort(values, next);
}

int CandidateValues::Narrow(VokFenEnumInteger& set) const {
  if (set.ReadsNil() || fIsAny) {
    return 0;
  }
  if (fCount == 0) {
    return set.SetNilValue();
  }
  if (set.ReadsAny()) {
    std::array<VokLong, kMaxCandidates> values;
    GetSorted(values.data());
    return set.IntersectValues({values.data(), fCount});
  }
  return set.KeepMembers([this](VokLong v) { return Contains(v); });
}

int CandidateValues::Narrow(VokFenSingleInteger& single) const {
  const VokLong v = single.GetExactValue();
  if (v == VokFenSingleInteger::sNC_INT_NIL || fIsAny) {
    return 0;
  }
  if (v == VokFenSingleInteger::sNC_INT_ANY && fCount > 1) {
    return 0;
  }
  if (v == VokFenSingleInteger::sNC_INT_ANY && fCount == 1) {
    VokLong only = 0;
    GetSorted(&only);
    return single.SetExactValue(only);
  }
  return Contains(v) ? 0 : single.SetNilValue();
}

}  // namespace VokFenNarrowing
