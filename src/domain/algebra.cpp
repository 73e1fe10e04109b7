// Intersections and unions of enumerated sets.
//
// Both operands ascend, so one walk over the two serves. An intersection keeps a part of the members in place and
// needs no memory; the operand may be the set itself.
#include <algorithm>

#include "domain/VokFenEnumInteger.h"
#include "domain/elementPredicates.h"

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

// Fills `result` with the members of a and b in order. 0 when memory is short.
int Merge(const VokSVectorImp_SubIntBase& a, const VokSVectorImp_SubIntBase& b, VokSVectorImp_SubIntBase& result) {
  unsigned i = 0;
  unsigned j = 0;
  int done = 1;
  while (done != 0 && (i < a.Size() || j < b.Size())) {
    if (j == b.Size() || (i < a.Size() && a[i] < b[j])) {
      done = result.Add(a[i++]);
    } else if (i == a.Size() || b[j] < a[i]) {
      done = result.Add(b[j++]);
    } else {
      done = result.Add(a[i++]);
      ++j;
    }
  }
  return done;
}

}  // namespace

int VokFenEnumInteger::Intersect(const VokFenEnumInteger& o) {
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
    *this = o;
    return 1;
  }
  if (KeepCommon(fValues, o.fValues, AlwaysTrue, nullptr) == 0) {
    return 0;
  }
  return fValues.IsEmpty() != 0 ? SetNilValue() : 1;
}

int VokFenEnumInteger::IntersectValues(std::span<const VokLong> values) {
  if (ReadsNil()) {
    return 0;
  }
  if (values.empty()) {
    return SetNilValue();
  }
  if (ReadsAny()) {
    fEmptyMeansAny = 0;
    fValues.AssignNumbers(values.data(), static_cast<unsigned>(values.size()));
    return 1;
  }
  return KeepMembers([next = values.begin(), end = values.end()](VokLong v) mutable {
    while (next != end && *next < v) {
      ++next;
    }
    return next != end && *next == v;
  });
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
  // The step of the result is the sum of the steps; without a limit repeated unions would double it each time.
  constexpr unsigned kMaxStep = 1024;
  VokSVectorImp_SubIntBase result(fValues.Size() + o.fValues.Size(),
                                  std::min(fValues.Delta() + o.fValues.Delta(), kMaxStep), 0);
  if (Merge(fValues, o.fValues, result) == 0) {
    return SetNilValue();
  }
  if (result.Size() == fValues.Size()) {
    return 0;
  }
  // A union that reaches the limit exactly is Any already, although insertion fills a set up to it.
  if (result.Size() >= sMAX_CARD) {
    return SetUndefinedValue();
  }
  fValues = result;
  return 1;
}
