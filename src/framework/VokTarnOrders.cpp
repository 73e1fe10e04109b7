#include "framework/VokTarnOrders.h"

#include <algorithm>
#include <limits>

#include "base/bits.h"
#include "framework/VokTarnObjectDescriptor.h"

namespace {

using Relation = VokTarnAtom::Relation;

// The middle between the bounds, rounded down.
VokLong FindMiddle(const VokTarnNetwork& network, VokTarnValueId id) {
  return static_cast<VokLong>((std::int64_t{network.GetLower(id)} + network.GetUpper(id)) >> 1);
}

// The possible value that `place` others are below.
VokLong FindMember(const VokTarnNetwork& network, VokTarnValueId id, std::uint64_t place) {
  const std::int64_t lower = network.GetLower(id);
  if (lower + network.GetCardinality(id) - 1 == network.GetUpper(id) || !network.GetType(id)->IsListed()) {
    return static_cast<VokLong>(lower + static_cast<std::int64_t>(place));
  }
  if (VokTarnBits bits = network.GetBits(id); bits != 0) {
    for (; place > 0; --place) {
      bits &= bits - 1;
    }
    return static_cast<VokLong>(lower + FirstBit(bits));
  }
  return network.GetType(id)->GetLister()(network.GetValue(id))[place];
}

VokTarnAtom TakeValue(const VokTarnNetwork& network, VokTarnValueId id, VokLong v, Relation relation) {
  const bool isEnd = v == network.GetLower(id) || v == network.GetUpper(id);
  return {id, isEnd || network.GetType(id)->IsListed() ? relation : Relation::AtMost, v};
}

// The value nearest to the middle between the bounds, the lesser of two.
VokLong FindNearest(const VokTarnNetwork& network, VokTarnValueId id) {
  const VokLong middle = FindMiddle(network, id);
  const std::int64_t below = network.FindUpTo(id, middle);
  const std::int64_t above = network.FindFrom(id, middle);
  return static_cast<VokLong>(above - middle < middle - below ? above : below);
}

// The last value before the first hole; the middle where there is none.
VokLong FindEndOfRun(const VokTarnNetwork& network, VokTarnValueId id) {
  const VokLong upper = network.GetUpper(id);
  VokLong last = network.GetLower(id);
  if (!network.GetType(id)->IsListed() || std::int64_t{last} + network.GetCardinality(id) - 1 == upper) {
    return FindMiddle(network, id);
  }
  while (network.IsPossible(id, last + 1)) {
    ++last;
  }
  return last;
}

}  // namespace

VokTarnRank RankVariable(VokTarnVariableOrder order, const VokTarnNetwork& network, VokTarnValueId id,
                         const VokTarnMerit& merit) {
  constexpr std::int64_t kMost = std::numeric_limits<std::uint32_t>::max();
  const auto rank = [](std::int64_t number) { return VokTarnRank{static_cast<std::uint64_t>(number), 1}; };
  const auto degree = [&] { return std::min(static_cast<std::int64_t>(network.GetDegree(id)), kMost); };
  const std::int64_t size = network.GetCardinality(id);
  switch (order) {
    case VokTarnVariableOrder::FirstFail:
      return rank(size);
    case VokTarnVariableOrder::InputOrder:
      break;
    case VokTarnVariableOrder::MostConstrained:
      return rank(size * (kMost + 1) + kMost - degree());
    case VokTarnVariableOrder::Weighted:
      return {static_cast<std::uint64_t>(size), merit.fWeight};
    case VokTarnVariableOrder::AntiFirstFail:
      return rank(kMost - size);
    case VokTarnVariableOrder::Smallest:
      return rank(kMost + network.GetLower(id));
    case VokTarnVariableOrder::Largest:
      return rank(kMost - network.GetUpper(id));
    case VokTarnVariableOrder::Occurrence:
      return rank(kMost - degree());
    case VokTarnVariableOrder::MaxRegret:
      return rank(kMost + network.GetLower(id) - network.FindFrom(id, network.GetLower(id) + 1));
    case VokTarnVariableOrder::Activity:
      return {(std::uint64_t{1} << 63U) - merit.fActivity, 1};
  }
  return rank(0);
}

VokTarnAtom ChooseValue(const VokTarnNetwork& network, VokTarnValueId id, VokLong v) {
  return TakeValue(network, id, v, Relation::Equal);
}

VokTarnAtom ChooseValues(VokTarnValueOrder order, const VokTarnNetwork& network, VokTarnValueId id,
                         VokTarnRandom& random) {
  const VokLong lower = network.GetLower(id);
  const VokLong upper = network.GetUpper(id);
  const auto size = static_cast<std::uint64_t>(network.GetCardinality(id));
  const bool isListed = network.GetType(id)->IsListed();
  const auto member = [&](std::uint64_t place) { return FindMember(network, id, place); };
  const auto take = [&](VokLong v, Relation relation) { return TakeValue(network, id, v, relation); };
  switch (order) {
    case VokTarnValueOrder::Min:
      break;
    case VokTarnValueOrder::Max:
      return {id, Relation::Equal, upper};
    case VokTarnValueOrder::Split:
      return {id, Relation::AtMost, isListed ? member((size - 1) / 2) : FindMiddle(network, id)};
    case VokTarnValueOrder::SplitMax:
      return {id, Relation::AtLeast, isListed ? member((size - 1) / 2 + 1) : FindMiddle(network, id) + 1};
    case VokTarnValueOrder::Median:
      return take(member((size - 1) / 2), Relation::Equal);
    case VokTarnValueOrder::Middle:
      return take(FindNearest(network, id), Relation::Equal);
    case VokTarnValueOrder::HalveMin:
      return {id, Relation::AtMost, FindMiddle(network, id)};
    case VokTarnValueOrder::HalveMax:
      return {id, Relation::AtLeast, FindMiddle(network, id) + 1};
    case VokTarnValueOrder::Interval:
      return {id, Relation::AtMost, FindEndOfRun(network, id)};
    case VokTarnValueOrder::Random:
      return take(member(random.Next() % size), Relation::Equal);
    case VokTarnValueOrder::HalveRandom:
      return ChooseValues(random.Next() % 2 == 0 ? VokTarnValueOrder::HalveMin : VokTarnValueOrder::HalveMax, network,
                          id, random);
    case VokTarnValueOrder::OutMin:
      return {id, Relation::Unequal, lower};
    case VokTarnValueOrder::OutMax:
      return {id, Relation::Unequal, upper};
    case VokTarnValueOrder::OutMedian:
      return take(member((size - 1) / 2), Relation::Unequal);
    case VokTarnValueOrder::OutRandom:
      return take(member(random.Next() % size), Relation::Unequal);
  }
  return {id, Relation::Equal, lower};
}
