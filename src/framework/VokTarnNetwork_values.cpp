// What a network knows of its values: in words, in the objects, or in both, and what it keeps for the way back.
#include <algorithm>
#include <array>
#include <numeric>

#include "base/bits.h"
#include "framework/VokTarnBoolean.h"
#include "framework/VokTarnNetwork.h"
#include "framework/VokTarnObjectDescriptor.h"

VokTarnSummary VokTarnNetwork::Summarize(const VokTarnSlot& slot) {
  if (slot.fLister != nullptr) {
    const std::span<const VokLong> members = slot.fLister(*slot.fObject);
    if (!members.empty()) {
      return {0, members.front(), members.back(), static_cast<int>(members.size())};
    }
  }
  const int size = slot.fObject->GetCardinality();
  switch (slot.fKind) {
    case VokTarnSlot::Kind::Integer: {
      const auto& integer = static_cast<const VokTarnInteger&>(*slot.fObject);
      return {0, integer.GetLowerBound(), integer.GetUpperBound(), size};
    }
    case VokTarnSlot::Kind::Truth: {
      const auto& truth = static_cast<const VokTarnBoolean&>(*slot.fObject);
      return {0, truth.IsPossible(0) != 0 ? 0 : 1, truth.IsPossible(1), size};
    }
    case VokTarnSlot::Kind::Other:
      break;
  }
  return {0, 0, 0, size};
}

VokTarnBits VokTarnNetwork::FindBits(const VokTarnSlot& slot) {
  VokTarnSummary& summary = slot.fSummary;
  if (summary.fBits != 0) {
    return summary.fBits;
  }
  const std::int64_t width = summary.GetWidth();
  if (slot.fShape == VokTarnSlot::Shape::Other || summary.fSize <= 0 || width >= std::int64_t{kWordBits}) {
    return 0;
  }
  if (slot.HasNoHoles()) {
    return BitRange(0, static_cast<unsigned>(width));
  }
  VokTarnBits bits = 0;
  for (const VokLong v : slot.fLister(*slot.fObject)) {
    bits |= Bit(static_cast<unsigned>(v - summary.fLower));
  }
  summary.fBits = bits;
  return bits;
}

bool VokTarnNetwork::IsPossible(VokTarnValueId id, VokLong v) const {
  const VokTarnSlot& slot = fValues[id];
  const VokTarnSummary& summary = slot.fSummary;
  if (v < summary.fLower || v > summary.fUpper) {
    return false;
  }
  if (v == summary.fLower || v == summary.fUpper || slot.HasNoHoles() || summary.fSize < 0) {
    return true;
  }
  if (const VokTarnBits bits = FindBits(slot); bits != 0) {
    return (bits >> static_cast<unsigned>(v - summary.fLower) & 1) != 0;
  }
  if (slot.fLister != nullptr) {
    const std::span<const VokLong> members = slot.fLister(*slot.fObject);
    return std::binary_search(members.begin(), members.end(), v);
  }
  return static_cast<const VokTarnInteger&>(*slot.fObject).IsPossible(v);
}

VokLong VokTarnNetwork::FindFrom(VokTarnValueId id, VokLong v) const {
  const VokTarnSlot& slot = fValues[id];
  if (v <= slot.fSummary.fLower || slot.HasNoHoles() || slot.fSummary.fSize < 0) {
    return std::max(v, slot.fSummary.fLower);
  }
  if (const VokTarnBits bits = FindBits(slot); bits != 0) {
    return v + static_cast<VokLong>(FirstBit(bits >> static_cast<unsigned>(v - slot.fSummary.fLower)));
  }
  if (slot.fLister != nullptr) {
    return *std::ranges::lower_bound(slot.fLister(*slot.fObject), v);
  }
  const auto& integer = static_cast<const VokTarnInteger&>(*slot.fObject);
  return integer.IsPossible(v) ? v : integer.GetNextExactValue(v);
}

VokLong VokTarnNetwork::FindUpTo(VokTarnValueId id, VokLong v) const {
  const VokTarnSlot& slot = fValues[id];
  if (v >= slot.fSummary.fUpper || slot.HasNoHoles() || slot.fSummary.fSize < 0) {
    return std::min(v, slot.fSummary.fUpper);
  }
  if (const VokTarnBits bits = FindBits(slot); bits != 0) {
    const auto place = static_cast<unsigned>(v - slot.fSummary.fLower);
    return slot.fSummary.fLower + static_cast<VokLong>(LastBit(bits & BitRange(0, place)));
  }
  if (slot.fLister != nullptr) {
    return *(std::ranges::upper_bound(slot.fLister(*slot.fObject), v) - 1);
  }
  const auto& integer = static_cast<const VokTarnInteger&>(*slot.fObject);
  return integer.IsPossible(v) ? v : integer.GetPrevExactValue(v);
}

// Brings the object up to date.
void VokTarnNetwork::Refresh(const VokTarnSlot& slot) const {
  slot.fIsStale = false;
  const VokTarnSummary& summary = slot.fSummary;
  if (slot.fKind == VokTarnSlot::Kind::Truth) {
    slot.fObject->SetUndefinedValue();
    if (summary.fSize == 1) {
      static_cast<VokTarnBoolean&>(*slot.fObject).CalcTruthValue(summary.fLower);
    }
    return;
  }
  if (slot.fShape == VokTarnSlot::Shape::Range) {
    auto& integer = static_cast<VokTarnInteger&>(*slot.fObject);
    integer.SetExactValue(summary.fLower);
    if (summary.fUpper != summary.fLower) {
      integer.AddExactValue(summary.fUpper);
    }
    return;
  }
  std::array<VokLong, VokTarnSlot::sMostFilled> members;
  const auto count = static_cast<std::size_t>(summary.fSize);
  if (summary.fBits == 0) {
    std::iota(members.begin(), members.begin() + static_cast<std::ptrdiff_t>(count), summary.fLower);
  } else {
    std::size_t next = 0;
    ForEachBit(summary.fBits, [&](unsigned bit) { members[next++] = summary.fLower + static_cast<VokLong>(bit); });
  }
  slot.fType->GetFiller()(*slot.fObject, std::span(members).first(count));
  fMemoryShort = fMemoryShort || slot.fLister(*slot.fObject).size() != count;
}

// Keeps for the way back what the value is now.
void VokTarnNetwork::Save(VokTarnValueId id, VokTarnSlot& slot) {
  if (fLevels.empty() || slot.fStamp == fLevels.back().fStamp) {
    return;
  }
  VokTarnAny* copy = nullptr;
  if (!IsCompact(slot)) {
    if (fTrail.capacity() == fTrail.size()) {
      fTrail.reserve(2 * fTrail.size() + 1);
    }
    copy = TakeSpare(fPools[slot.fPool]);
    copy->Assign(*slot.fObject);
    // Where the type lists its values they can be counted without a call.
    const bool isListed = slot.fLister != nullptr && slot.fSummary.fSize > 0;
    const int size = isListed ? static_cast<int>(slot.fLister(*copy).size()) : copy->GetCardinality();
    fMemoryShort = fMemoryShort || size != slot.fSummary.fSize;
  }
  fTrail.push_back({slot.fSummary, copy, id, slot.fStamp});
  slot.fStamp = fLevels.back().fStamp;
}

VokTarnAny& VokTarnNetwork::Touch(VokTarnValueId id) {
  VokTarnSlot& slot = fValues[id];
  Save(id, slot);
  if (slot.fIsStale) {
    Refresh(slot);
  }
  if (fHistory != nullptr) {
    FindBits(slot);
    fHistory->NoteTouch(id);
  }
  return *slot.fObject;
}

void VokTarnNetwork::Assume(VokTarnValueId id, const VokTarnSummary& summary, std::span<const VokLong> members) {
  VokTarnSlot& slot = fValues[id];
  slot.fSummary = summary;
  slot.fIsStale = slot.IsCompact();
  if (slot.fIsStale) {
    return;
  }
  if (summary.fSize == 0) {
    slot.fObject->SetNilValue();
  } else if (summary.fSize < 0) {
    slot.fObject->SetUndefinedValue();
  } else if (slot.fShape == VokTarnSlot::Shape::Listed) {
    slot.fType->GetFiller()(*slot.fObject, members);
    fMemoryShort = fMemoryShort || slot.fLister(*slot.fObject).size() != members.size();
  } else if (slot.fKind == VokTarnSlot::Kind::Truth) {
    slot.fObject->SetUndefinedValue();
    if (summary.fSize == 1) {
      static_cast<VokTarnBoolean&>(*slot.fObject).CalcTruthValue(summary.fLower);
    }
  } else {
    auto& integer = static_cast<VokTarnInteger&>(*slot.fObject);
    integer.SetExactValue(summary.fLower);
    for (const VokLong v : members) {
      integer.AddExactValue(v);
    }
    integer.AddExactValue(summary.fUpper);
  }
  slot.fSummary = Summarize(slot);
}

void VokTarnNetwork::NoteChange(VokTarnValueId id) {
  VokTarnSlot& slot = fValues[id];
  if (slot.fIsStale) {
    return;  // it has been narrowed by number since it was touched: what the object says is no longer asked for
  }
  const VokTarnSummary before = slot.fSummary;
  slot.fSummary = Summarize(slot);
  Announce(id, slot, before);
}

bool VokTarnNetwork::IsTrue(const VokTarnAtom& atom) const {
  const VokTarnSummary& summary = fValues[atom.fValue].fSummary;
  switch (atom.fRelation) {
    case VokTarnAtom::Relation::Equal:
      return summary.fLower == atom.fNumber && summary.fUpper == atom.fNumber;
    case VokTarnAtom::Relation::Unequal:
      return !IsPossible(atom.fValue, atom.fNumber);
    case VokTarnAtom::Relation::AtMost:
      return summary.fUpper <= atom.fNumber;
    case VokTarnAtom::Relation::AtLeast:
      break;
  }
  return summary.fLower >= atom.fNumber;
}
