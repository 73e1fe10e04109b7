// Intersections and unions of enumerated sets.
//
// Both operands ascend, so one walk over the two serves, mostly that of the kernels. What is kept is collected on the
// stack and written back only when something has gone: the operand may be the set itself, and no memory is needed.
#include <algorithm>

#include "domain/VokFenEnumInteger.h"
#include "domain/intersectInto.h"
#include "domain/kernels/kernels.h"
#include "domain/scratch.h"

namespace {

// Removes the members that `others` does not hold or `pred` does not accept. 1 when there were any.
int KeepCommon(VokSVectorImp_SubIntBase& members, const VokSVectorImp_SubIntBase& others,
               VokFenEnumInteger::Predicate pred, void* ctx) {
  const unsigned size = members.Size();
  unsigned kept = 0;
  unsigned i = 0;
  unsigned j = 0;
  while (i < members.Size() && j < others.Size()) {
    if (members[i] < others[j]) {
      ++i;
    } else if (others[j] < members[i]) {
      ++j;
    } else {
      if (pred(members[i], ctx) != 0) {
        members[kept++] = members[i];
      }
      ++i;
      ++j;
    }
  }
  members.DetachAt(kept, size - kept);
  return kept != size ? 1 : 0;
}

}  // namespace

int VokFenEnumInteger::Intersect(const VokFenEnumInteger& o) {
  if (o.ReadsAny()) {
    return 0;
  }
  if (ReadsAny() && !o.ReadsNil()) {
    *this = o;
    return 1;
  }
  return &o == this ? 0 : IntersectValues(o.GetMembers(), 0, o.fEmptyMeansAny);
}

int VokFenEnumInteger::IntersectValues(std::span<const VokLong> values, VokLong shift, int emptyMeansAny) {
  if (ReadsNil()) {
    return 0;
  }
  if (values.empty()) {
    return SetNilValue();
  }
  if (ReadsAny()) {
    fEmptyMeansAny = emptyMeansAny;
    if (fValues.AssignNumbers(values.data(), static_cast<unsigned>(values.size())) != 0) {
      const std::span<VokLong> taken(fValues.GetNumbers(), fValues.GetSize());
      std::for_each(taken.begin(), taken.end(), [shift](VokLong& v) { v += shift; });
    }
    return 1;
  }
  if (fValues.GetSize() == 0) {
    return 0;
  }
  VokFenDomain::Scratch scratch(fValues.GetSize());
  VokLong* const kept = scratch.GetNumbers();
  if (kept == nullptr) {
    return SetNilValue();
  }
  return ReplaceMembers({kept, VokFenDomain::IntersectInto(GetMembers(), values, shift, kept)});
}

int VokFenEnumInteger::Intersect(const VokFenEnumInteger& o, Predicate pred, void* ctx) {
  if (IsNil() != 0) {
    return 0;
  }
  if (o.IsNil() != 0) {
    return SetNilValue();
  }
  if (o.IsUndefined() != 0) {
    return 0;
  }
  if (IsUndefined() != 0) {
    // Where no member of o is accepted, Any stays Any instead of becoming Nil.
    for (unsigned i = 0; i < o.fValues.Size(); ++i) {
      if (pred(o.fValues[i], ctx) == 0) {
        continue;
      }
      fEmptyMeansAny = 0;
      if (fValues.Add(o.fValues[i]) == 0) {
        return SetNilValue();
      }
    }
    return IsUndefined() != 0 ? 0 : 1;
  }
  if (KeepCommon(fValues, o.fValues, pred, ctx) == 0) {
    return 0;
  }
  return fValues.IsEmpty() != 0 ? SetNilValue() : 1;
}

int VokFenEnumInteger::Intersect(const VokFenEnumInteger& o1, const VokFenEnumInteger& o2, Predicate pred, void* ctx) {
  if (o1.IsUndefined() != 0 || o2.IsUndefined() != 0) {
    return 0;
  }
  VokFenEnumInteger both(o1);
  both.Unite(o2);
  return Intersect(both, pred, ctx);
}

int VokFenEnumInteger::Unite(const VokFenEnumInteger& o) {
  if (IsUndefined() != 0 || o.IsNil() != 0) {
    return 1;
  }
  if (o.IsUndefined() != 0) {
    return SetUndefinedValue();
  }
  if (IsNil() != 0) {
    *this = o;
    return 1;
  }
  const unsigned n = fValues.GetSize();
  VokFenDomain::Scratch scratch(n + o.fValues.GetSize());
  VokLong* const united = scratch.GetNumbers();
  if (united == nullptr) {
    return SetNilValue();
  }
  const unsigned count =
      VokFenKernels::GetKernels().fUnite(fValues.GetNumbers(), n, o.fValues.GetNumbers(), o.fValues.GetSize(), united);
  if (count == n) {
    return 0;
  }
  // A union that reaches the limit exactly is Any already, although insertion fills a set up to it.
  if (count >= sMAX_CARD) {
    return SetUndefinedValue();
  }
  return fValues.AssignNumbers(united, count) != 0 ? 1 : SetNilValue();
}
