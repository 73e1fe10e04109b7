#include "narrowing/unionOf.h"

#include "domain/kernels/kernels.h"

namespace VokFenNarrowing {

UnionOf::UnionOf(std::span<const VokLong> first, std::span<const VokLong> second) noexcept {
  if (first.empty() || second.empty()) {
    fValues = first.empty() ? second : first;
    return;
  }
  // A list beyond the limit joins only what it holds, or the union is Any.
  if (first.size() + second.size() + VokFenKernels::kSlack > kRoom) {
    fIsAny = !std::includes(first.begin(), first.end(), second.begin(), second.end());
    fValues = first;
    return;
  }
  const unsigned count =
      VokFenKernels::GetKernels().fUnite(first.data(), static_cast<unsigned>(first.size()), second.data(),
                                         static_cast<unsigned>(second.size()), fNumbers.data());
  fIsAny = count > first.size() && count >= VokFenEnumInteger::sMAX_CARD;
  fValues = {fNumbers.data(), count};
}

}  // namespace VokFenNarrowing
