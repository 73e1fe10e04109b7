#include "framework/VokTarnNoGoods.h"

#include <algorithm>
#include <tuple>

namespace {

// Parts of all no-goods together. Beyond that all are forgotten, and the search learns anew.
constexpr std::size_t kMostParts = std::size_t{1} << 20;
// Longer no-goods narrow too seldom for their cost.
constexpr std::size_t kLongest = 30;

}  // namespace

void VokTarnNoGoods::NoteRefuted(unsigned depth, const VokTarnBranch& branch) {
  while (!fRefuted.empty() && fRefuted.back().fDepth > depth) {
    fRefuted.pop_back();
  }
  fRefuted.push_back({depth, branch});
}

void VokTarnNoGoods::Learn(std::span<const VokTarnBranch> path) {
  if (fParts.size() > kMostParts) {
    fParts.clear();
    fNoGoods.clear();
    fWatches.clear();
  }
  for (const Refuted& refuted : fRefuted) {
    // What was refuted at the root stays so without a no-good.
    if (refuted.fDepth > 0 && refuted.fDepth < kLongest && !fNetwork.IsFailed()) {
      Add(path.first(refuted.fDepth), refuted.fBranch);
    }
  }
  fRefuted.clear();
}

bool VokTarnNoGoods::IsReached(const VokTarnBranch& part) const {
  const VokLong lower = fNetwork.GetLower(part.fValue);
  const VokLong upper = fNetwork.GetUpper(part.fValue);
  const VokLong v = part.fNumber;
  switch (part.fPart) {
    case VokTarnBranch::Part::Exactly:
      return lower == v && upper == v;
    case VokTarnBranch::Part::AllBut:
      // The ends are possible.
      return v < lower || v > upper ||
             (v != lower && v != upper &&
              !static_cast<const VokTarnInteger&>(fNetwork.GetValue(part.fValue)).IsPossible(v));
    case VokTarnBranch::Part::AtMost:
      return upper <= v;
    case VokTarnBranch::Part::AtLeast:
      break;
  }
  return lower >= v;
}

bool VokTarnNoGoods::IsLost(const VokTarnBranch& part) const {
  return IsReached(part.GetRest());
}

// At the root, where what is reached or lost stays so.
void VokTarnNoGoods::Add(std::span<const VokTarnBranch> path, const VokTarnBranch& last) {
  const std::size_t begin = fParts.size();
  const auto take = [this](const VokTarnBranch& part) {
    if (!IsReached(part)) {
      fParts.push_back(part);
    }
    return !IsLost(part);
  };
  const bool isOpen = std::all_of(path.begin(), path.end(), take) && take(last);
  const std::size_t count = fParts.size() - begin;
  if (!isOpen || count < 2) {
    const VokTarnBranch unit = count == 1 ? fParts.back() : last;
    fParts.resize(begin);
    if (isOpen && count == 0) {
      fNetwork.Fail();
    } else if (isOpen) {
      VokTarnNarrow(fNetwork, unit.GetRest());
    }
    return;
  }
  std::reverse(fParts.begin() + static_cast<std::ptrdiff_t>(begin), fParts.end());  // the last are reached the latest
  fWatches.resize(fNetwork.GetValueCount());
  for (std::uint32_t place = 0; place < 2; ++place) {
    fWatches[fParts[begin + place].fValue].push_back({static_cast<std::uint32_t>(fNoGoods.size()), place});
  }
  fNoGoods.push_back({static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(count)});
}

bool VokTarnNoGoods::Narrow(const std::vector<VokTarnValueId>& changed) {
  fHasNarrowed = false;
  for (std::size_t next = 0; next < changed.size() && !fWatches.empty(); ++next) {
    std::vector<Watch>& watches = fWatches[changed[next]];
    for (std::size_t i = 0; i < watches.size() && !fNetwork.IsFailed();) {
      if (const Watch watch = watches[i]; MoveWatch(watch)) {
        watches[i] = watches.back();
        watches.pop_back();
      } else {
        ++i;
      }
    }
  }
  return fHasNarrowed;
}

// Watches another part once this one is reached. False when it is watched still: there is nothing else to watch, or the
// no-good is kept anyway.
bool VokTarnNoGoods::MoveWatch(const Watch& watch) {
  const NoGood& noGood = fNoGoods[watch.fNoGood];
  VokTarnBranch* const parts = &fParts[noGood.fBegin];
  const VokTarnBranch& other = parts[1 - watch.fPlace];
  if (!IsReached(parts[watch.fPlace]) || IsLost(other)) {
    return false;
  }
  for (std::uint32_t i = 2; i < noGood.fCount; ++i) {
    if (!IsReached(parts[i])) {
      std::swap(parts[watch.fPlace], parts[i]);
      fWatches[parts[watch.fPlace].fValue].push_back(watch);
      return true;
    }
  }
  // A type that holds every value between its bounds keeps one inside.
  const auto measure = [this, value = other.fValue] {
    return std::tuple(fNetwork.GetLower(value), fNetwork.GetUpper(value), fNetwork.GetCardinality(value));
  };
  const auto before = measure();
  VokTarnNarrow(fNetwork, other.GetRest());
  fHasNarrowed = fHasNarrowed || fNetwork.IsFailed() || measure() != before;
  return false;
}
