#include "flatzinc/differences.h"

#include <algorithm>
#include <cstdlib>

namespace fzn {
namespace {

// Cliques of fewer values are left as they are.
constexpr std::size_t kLeastSize = 3;
constexpr std::size_t kMostLookUps = 20'000'000;
// Sums of two gaps fit.
constexpr std::int64_t kMostGap = 1 << 29;

}  // namespace

std::optional<Difference> ReadDifference(const Posting& posting) {
  const std::string_view name = posting.GetName();
  Term first;
  Term second;
  std::int64_t gap = 0;
  if (name == "int_ne" && posting.Size() == 2) {
    first = posting.GetTerm(0);
    second = posting.GetTerm(1);
  } else if (name == "int_lin_ne" && posting.Size() == 3 && posting.GetTerms(1).size() == 2) {
    const std::vector<std::int64_t> factors = posting.GetConstants(0);
    const bool isDifference =
        factors.size() == 2 && ((factors[0] == 1 && factors[1] == -1) || (factors[0] == -1 && factors[1] == 1));
    const std::int64_t number = posting.GetConstant(2);
    if (!isDifference || number > kMostGap || number < -kMostGap) {
      return std::nullopt;
    }
    first = posting.GetTerms(1)[0];
    second = posting.GetTerms(1)[1];
    gap = number * factors[0];
  } else {
    return std::nullopt;
  }
  // Constants may have 64 bits.
  if (posting.IsFixed(first) || posting.IsFixed(second) || posting.AreSame(first, second)) {
    return std::nullopt;
  }
  // So far apart in any case: nothing that a clique is to be made of.
  const bool isTrivial = posting.GetLower(first) - gap > posting.GetUpper(second) ||
                         posting.GetUpper(first) - gap < posting.GetLower(second);
  if (isTrivial) {
    return std::nullopt;
  }
  return Difference{posting.GetValue(first), posting.GetValue(second), static_cast<VokLong>(gap)};
}

std::size_t Differences::Hash::operator()(const Key& key) const noexcept {
  const std::uint64_t pair = std::uint64_t{key.fFirst} << 32U | key.fSecond;
  return static_cast<std::size_t>(
      (pair * 0x9E3779B97F4A7C15U + static_cast<std::uint64_t>(key.fGap)) * 0xBF58476D1CE4E5B9U >> 8U);
}

Differences::Key Differences::MakeKey(VokTarnValueId first, VokTarnValueId second, std::int64_t gap) noexcept {
  return first < second ? Key{first, second, static_cast<VokLong>(gap)}
                        : Key{second, first, static_cast<VokLong>(-gap)};
}

std::size_t Differences::Find(VokTarnValueId first, VokTarnValueId second, std::int64_t gap) const {
  const auto found = fIndex.find(MakeKey(first, second, gap));
  return found == fIndex.end() ? sNone : found->second;
}

void Differences::Add(const Difference& difference) {
  const auto [place, isNew] =
      fIndex.emplace(MakeKey(difference.fFirst, difference.fSecond, difference.fGap), fEdges.size());
  fPlaces.push_back(place->second);
  if (!isNew) {
    return;
  }
  fEdges.push_back(place->first);
  fIsCovered.push_back(false);
  fIsSeen.push_back(false);
  const Key& edge = fEdges.back();
  // first <> second + gap, second <> first - gap.
  fNeighbours[edge.fFirst].push_back({edge.fSecond, edge.fGap, place->second});
  fNeighbours[edge.fSecond].push_back({edge.fFirst, -edge.fGap, place->second});
}

std::vector<ShiftedValue> Differences::Grow(std::size_t edge) {
  const Key& start = fEdges[edge];
  std::vector<ShiftedValue> clique = {{start.fFirst, 0}, {start.fSecond, start.fGap}};
  const std::vector<Neighbour>& neighbours = fNeighbours[start.fFirst];
  for (const bool isSeen : {false, true}) {
    for (const Neighbour& candidate : neighbours) {
      if (fIsSeen[candidate.fEdge] != isSeen || fLookUps > kMostLookUps) {
        continue;
      }
      const auto isApart = [&](const ShiftedValue& member) {
        ++fLookUps;
        return member.fValue != candidate.fValue &&
               Find(member.fValue, candidate.fValue, std::int64_t{candidate.fShift} - member.fShift) != sNone;
      };
      // The start itself is apart, being the one whose neighbour it is.
      if (std::all_of(clique.rbegin(), clique.rend() - 1, isApart)) {
        clique.push_back({candidate.fValue, candidate.fShift});
      }
    }
  }
  return clique;
}

std::vector<std::vector<ShiftedValue>> Differences::FindCliques() {
  std::vector<std::vector<ShiftedValue>> cliques;
  for (std::size_t edge = 0; edge < fEdges.size() && fLookUps <= kMostLookUps; ++edge) {
    if (fIsSeen[edge]) {
      continue;
    }
    std::vector<ShiftedValue> clique = Grow(edge);
    if (clique.size() < kLeastSize) {
      continue;
    }
    for (std::size_t i = 0; i < clique.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        const std::int64_t gap = std::int64_t{clique[j].fShift} - clique[i].fShift;
        fIsSeen[Find(clique[i].fValue, clique[j].fValue, gap)] = true;
      }
    }
    cliques.push_back(std::move(clique));
  }
  return cliques;
}

void Differences::SetCovered(const std::vector<ShiftedValue>& clique) {
  for (std::size_t i = 0; i < clique.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const std::int64_t gap = std::int64_t{clique[j].fShift} - clique[i].fShift;
      fIsCovered[Find(clique[i].fValue, clique[j].fValue, gap)] = true;
    }
  }
}

}  // namespace fzn
