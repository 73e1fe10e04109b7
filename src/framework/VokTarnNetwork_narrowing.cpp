// Narrowing: the one way in which values of a network change. What the summary holds is changed there, by arithmetic on
// its bounds and bits; for the rest the object is asked: a listed type's list is cut, other types narrow themselves,
// with single values of their own type as limits, which every type understands.
#include <algorithm>
#include <limits>
#include <numeric>

#include "base/bits.h"
#include "framework/VokTarnBoolean.h"
#include "framework/VokTarnNetwork.h"
#include "framework/VokTarnObjectDescriptor.h"

namespace {

using Shape = VokTarnObjectDescriptor::Shape;

int ToSize(std::int64_t width) {
  return static_cast<int>(std::min<std::int64_t>(width + 1, std::numeric_limits<int>::max()));
}

// The numbers from `lower` to `upper`, which are in order.
VokTarnSummary MakeRange(std::int64_t lower, std::int64_t upper) {
  return {0, static_cast<VokLong>(lower), static_cast<VokLong>(upper), ToSize(upper - lower)};
}

// The numbers base + k for each bit k; some bit is set.
VokTarnSummary MakeSet(std::int64_t base, VokTarnBits bits) {
  const unsigned first = FirstBit(bits);
  const unsigned last = LastBit(bits);
  const auto size = static_cast<int>(CountBits(bits));
  const bool hasHoles = size != static_cast<int>(last - first) + 1;
  return {hasHoles ? bits >> first : 0, static_cast<VokLong>(base + first), static_cast<VokLong>(base + last), size};
}

// How many values an undefined value takes over.
std::size_t GetLimit(const VokTarnSlot& slot) {
  constexpr std::size_t kOtherwise = 1023;
  return slot.fShape == Shape::Listed ? slot.fType->GetLimit() : kOtherwise;
}

bool IsInRange(std::int64_t v) {
  return v >= std::numeric_limits<VokLong>::min() && v <= std::numeric_limits<VokLong>::max();
}

}  // namespace

// A value that the summary holds, before and after, has fewer possible values now.
int VokTarnNetwork::Shrink(VokTarnValueId id, VokTarnSlot& slot, const VokTarnSummary& now) {
  Save(id, slot);
  const VokTarnSummary before = slot.fSummary;
  slot.fSummary = now;
  slot.fIsStale = true;
  Announce(id, slot, before);
  return 1;
}

// A listed value holds these values, some of its own.
int VokTarnNetwork::Refill(VokTarnValueId id, VokTarnSlot& slot, std::span<const VokLong> values) {
  const std::size_t size = values.size();
  VokTarnAny& object = Touch(id);
  slot.fType->GetFiller()(object, values);
  fMemoryShort = fMemoryShort || slot.fLister(object).size() != size;
  NoteChange(id);
  return 1;
}

// An undefined value takes the values over, as far as its type has them; one that cannot hold them stays undefined.
int VokTarnNetwork::TakeOver(VokTarnValueId id, VokTarnSlot& slot, std::span<const VokLong> values) {
  if (slot.fShape == Shape::Listed) {
    return Refill(id, slot, values);
  }
  auto& value = static_cast<VokTarnInteger&>(Touch(id));
  bool isHeld = value.SetExactValue(values.front()) != 0;
  for (const VokLong v : values.subspan(1)) {
    isHeld = isHeld && value.AddExactValue(v) != 0;
  }
  if (!isHeld) {
    value.SetUndefinedValue();
  }
  if (value.IsUndefined() != 0) {
    return 0;
  }
  NoteChange(id);
  return 1;
}

int VokTarnNetwork::MakeNil(VokTarnValueId id) {
  Touch(id).SetNilValue();
  NoteChange(id);
  Fail();
  return 1;
}

int VokTarnNetwork::KeepAtMost(VokTarnValueId id, std::int64_t limit) {
  VokTarnSlot& slot = fValues[id];
  if (limit >= slot.fSummary.fUpper) {
    return 0;
  }
  if (limit < slot.fSummary.fLower) {
    return MakeNil(id);
  }
  if (!IsCompact(slot)) {
    return KeepEnd(id, slot, limit, true);
  }
  const VokTarnSummary& summary = slot.fSummary;
  return Shrink(
      id, slot,
      summary.fBits == 0
          ? MakeRange(summary.fLower, limit)
          : MakeSet(summary.fLower, summary.fBits & BitRange(0, static_cast<unsigned>(limit - summary.fLower))));
}

int VokTarnNetwork::KeepAtLeast(VokTarnValueId id, std::int64_t limit) {
  VokTarnSlot& slot = fValues[id];
  if (limit <= slot.fSummary.fLower) {
    return 0;
  }
  if (limit > slot.fSummary.fUpper) {
    return MakeNil(id);
  }
  if (!IsCompact(slot)) {
    return KeepEnd(id, slot, limit, false);
  }
  const VokTarnSummary& summary = slot.fSummary;
  return Shrink(id, slot,
                summary.fBits == 0 ? MakeRange(limit, summary.fUpper)
                                   : MakeSet(limit, summary.fBits >> static_cast<unsigned>(limit - summary.fLower)));
}

// Cuts the values of an object above or below the limit, which is between its bounds.
int VokTarnNetwork::KeepEnd(VokTarnValueId id, VokTarnSlot& slot, std::int64_t limit, bool isUpper) {
  if (slot.fKind == VokTarnSlot::Kind::Truth) {
    return KeepExactly(id, isUpper ? 0 : 1);
  }
  const auto bound = static_cast<VokLong>(limit);
  if (slot.fLister != nullptr && slot.fSummary.fSize > 0) {
    VokTarnAny& object = Touch(id);
    const std::span<const VokLong> members = slot.fLister(object);
    const auto end = isUpper ? std::upper_bound(members.begin(), members.end(), bound)
                             : std::lower_bound(members.begin(), members.end(), bound);
    const auto split = static_cast<std::size_t>(end - members.begin());
    return Refill(id, slot, isUpper ? members.first(split) : members.subspan(split));
  }
  // The limit crosses as a single value of the same type: one that the type can hold.
  auto& value = static_cast<VokTarnInteger&>(Touch(id));
  const VokLong nearest = slot.fSummary.fSize < 0 || IsPossible(id, bound) ? bound
                          : isUpper                                        ? value.GetPrevExactValue(bound)
                                                                           : value.GetNextExactValue(bound);
  const Spare spare = TakeSpare(slot.fType);
  auto& single = static_cast<VokTarnInteger&>(*spare);
  single.SetExactValue(nearest);
  if (single.GetCardinality() != 1) {
    return 0;  // an undefined value whose type has no such number
  }
  const int changed = isUpper ? value.CalcLessOrEqualValue(single) : value.CalcNotLessValue(single);
  if (changed != 0) {
    NoteChange(id);
  }
  return changed;
}

int VokTarnNetwork::KeepBetween(VokTarnValueId id, std::int64_t lower, std::int64_t upper) {
  VokTarnSlot& slot = fValues[id];
  const VokTarnSummary& summary = slot.fSummary;
  if (lower <= summary.fLower && upper >= summary.fUpper) {
    return 0;
  }
  lower = std::max<std::int64_t>(lower, summary.fLower);
  upper = std::min<std::int64_t>(upper, summary.fUpper);
  if (lower > upper) {
    return MakeNil(id);
  }
  if (summary.fSize < 0) {
    if (lower == upper) {
      return KeepExactly(id, lower);
    }
    if (slot.fShape != Shape::Range) {
      const auto count = static_cast<std::uint64_t>(upper - lower) + 1;
      if (count > GetLimit(slot)) {
        return 0;
      }
      std::vector<VokLong> values(count);
      std::iota(values.begin(), values.end(), static_cast<VokLong>(lower));
      return TakeOver(id, slot, values);
    }
  }
  if (!IsCompact(slot)) {
    const int changed = KeepAtLeast(id, lower);
    return fFailed ? changed : changed | KeepAtMost(id, upper);
  }
  if (summary.fBits == 0) {
    return Shrink(id, slot, MakeRange(lower, upper));
  }
  const VokTarnBits kept = summary.fBits & BitRange(static_cast<unsigned>(lower - summary.fLower),
                                                    static_cast<unsigned>(upper - summary.fLower));
  return kept == 0 ? MakeNil(id) : Shrink(id, slot, MakeSet(summary.fLower, kept));
}

int VokTarnNetwork::KeepExactly(VokTarnValueId id, std::int64_t v) {
  VokTarnSlot& slot = fValues[id];
  if (slot.fSummary.fSize == 1 && slot.fSummary.fLower == v) {
    return 0;
  }
  if (slot.fSummary.fSize >= 0 ? !IsInRange(v) || !IsPossible(id, static_cast<VokLong>(v))
                               : v < slot.fSummary.fLower || v > slot.fSummary.fUpper) {
    return MakeNil(id);
  }
  if (IsCompact(slot)) {
    return Shrink(id, slot, MakeRange(v, v));
  }
  VokTarnAny& value = Touch(id);
  if (slot.fKind == VokTarnSlot::Kind::Truth) {
    static_cast<VokTarnBoolean&>(value).CalcTruthValue(static_cast<int>(v));
  } else {
    static_cast<VokTarnInteger&>(value).SetExactValue(static_cast<VokLong>(v));
  }
  NoteChange(id);
  return 1;
}

int VokTarnNetwork::Remove(VokTarnValueId id, VokLong v) {
  VokTarnSlot& slot = fValues[id];
  const VokTarnSummary& summary = slot.fSummary;
  if (summary.fSize < 0 || v < summary.fLower || v > summary.fUpper) {
    return 0;
  }
  if (summary.fSize == 1) {
    return MakeNil(id);
  }
  if (slot.HasNoHoles() && slot.IsCompact()) {
    if (v == summary.fLower) {
      return Shrink(id, slot, MakeRange(std::int64_t{v} + 1, summary.fUpper));
    }
    if (v == summary.fUpper) {
      return Shrink(id, slot, MakeRange(summary.fLower, std::int64_t{v} - 1));
    }
    if (slot.fShape == Shape::Range) {
      return 0;
    }
  }
  if (const VokTarnBits bits = FindBits(slot); bits != 0) {
    const VokTarnBits bit = Bit(static_cast<unsigned>(v - summary.fLower));
    return (bits & bit) == 0 ? 0 : Shrink(id, slot, MakeSet(summary.fLower, bits & ~bit));
  }
  if (slot.fKind == VokTarnSlot::Kind::Truth) {
    return KeepExactly(id, 1 - v);
  }
  if (!IsPossible(id, v)) {
    return 0;
  }
  const int changed = static_cast<VokTarnInteger&>(Touch(id)).RemoveExactValue(v);
  if (changed != 0) {
    NoteChange(id);
  }
  return changed;
}

int VokTarnNetwork::KeepBits(VokTarnValueId id, std::int64_t base, VokTarnBits bits) {
  VokTarnSlot& slot = fValues[id];
  const VokTarnSummary& summary = slot.fSummary;
  const VokTarnBits possible = FindBits(slot);
  const VokTarnBits kept = possible & ShiftBits(bits, base - summary.fLower);
  if (kept == possible) {
    return 0;
  }
  if (kept == 0) {
    return MakeNil(id);
  }
  if (slot.fShape != Shape::Range) {
    return Shrink(id, slot, MakeSet(summary.fLower, kept));
  }
  const VokTarnSummary now =
      MakeRange(std::int64_t{summary.fLower} + FirstBit(kept), std::int64_t{summary.fLower} + LastBit(kept));
  return now.fSize == summary.fSize ? 0 : Shrink(id, slot, now);
}

int VokTarnNetwork::KeepListed(VokTarnValueId id, std::span<const VokLong> values) {
  VokTarnSlot& slot = fValues[id];
  if (values.empty()) {
    return MakeNil(id);
  }
  if (slot.fSummary.fSize < 0 && slot.fShape != Shape::Range) {
    return values.size() > GetLimit(slot) ? 0 : TakeOver(id, slot, values);
  }
  const auto first = std::ranges::lower_bound(values, slot.fSummary.fLower);
  const auto behind = std::ranges::upper_bound(values, slot.fSummary.fUpper);
  if (first >= behind) {
    return MakeNil(id);
  }
  const int changed = KeepBetween(id, *first, *(behind - 1));
  if (fFailed || slot.fSummary.fSize <= 1 || slot.fShape == Shape::Range) {
    return changed;
  }
  const VokTarnSummary& summary = slot.fSummary;
  if (FindBits(slot) != 0) {
    VokTarnBits bits = 0;
    for (auto v = std::ranges::lower_bound(values, summary.fLower); v != values.end() && *v <= summary.fUpper; ++v) {
      bits |= Bit(static_cast<unsigned>(*v - summary.fLower));
    }
    return changed | KeepBits(id, summary.fLower, bits);
  }
  if (slot.fShape == Shape::Other) {
    int removed = changed;
    for (VokLong v = summary.fLower; !fFailed && v < summary.fUpper;) {
      const VokLong next = static_cast<const VokTarnInteger&>(GetValue(id)).GetNextExactValue(v);
      removed |= std::ranges::binary_search(values, v) ? 0 : Remove(id, v);
      v = next;
    }
    return removed;
  }
  GetValue(id);  // it lists its members up to date
  const std::span<const VokLong> members = slot.fLister(*slot.fObject);
  std::vector<VokLong> kept;
  kept.reserve(members.size());
  std::ranges::set_intersection(members, values, std::back_inserter(kept));
  return kept.size() == members.size() ? changed : kept.empty() ? MakeNil(id) : Refill(id, slot, kept);
}

int VokTarnNetwork::KeepSubset(VokTarnValueId id, std::span<const VokLong> values) {
  VokTarnSlot& slot = fValues[id];
  if (values.size() == static_cast<std::size_t>(slot.fSummary.fSize)) {
    return 0;
  }
  if (values.empty()) {
    return MakeNil(id);
  }
  if (FindBits(slot) == 0) {
    return Refill(id, slot, values);
  }
  VokTarnBits bits = 0;
  for (const VokLong v : values) {
    bits |= Bit(static_cast<unsigned>(v - slot.fSummary.fLower));
  }
  return Shrink(id, slot, MakeSet(slot.fSummary.fLower, bits));
}

int VokTarnNetwork::Keep(const VokTarnAtom& atom) {
  switch (atom.fRelation) {
    case VokTarnAtom::Relation::Equal:
      return KeepExactly(atom.fValue, atom.fNumber);
    case VokTarnAtom::Relation::Unequal:
      return Remove(atom.fValue, atom.fNumber);
    case VokTarnAtom::Relation::AtMost:
      return KeepAtMost(atom.fValue, atom.fNumber);
    case VokTarnAtom::Relation::AtLeast:
      break;
  }
  return KeepAtLeast(atom.fValue, atom.fNumber);
}
