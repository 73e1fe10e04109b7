// The searches and traversals of the vector.
//
// The binary searches halve at (lo + hi) / 2 and stop at the first equal element that they meet. Which one of
// several equal elements they give is part of their behaviour, so these loops are not replaced by
// others with the same contract on distinct elements.
#include "domain/VokSVectorImp_SubIntBase.h"

namespace {

// The middle of [lo, hi] without the overflow of lo + hi.
unsigned Middle(unsigned lo, unsigned hi) noexcept {
  return lo + (hi - lo) / 2;
}

unsigned Below(unsigned i) noexcept {
  return i == 0 ? 0 : i - 1;
}

}  // namespace

unsigned VokSVectorImp_SubIntBase::Find(const SubIntBase& x) const {
  if (fSize == 0) {
    return fCapacity + 1;
  }
  unsigned lo = 0;
  unsigned hi = fSize - 1;
  while (lo < hi) {
    const unsigned mid = Middle(lo, hi);
    if (fData[mid] == x) {
      return mid;
    }
    if (fData[mid] < x) {
      lo = mid + 1;
    } else {
      hi = Below(mid);
    }
  }
  return lo == hi && fData[lo] == x ? lo : fCapacity + 1;
}

unsigned VokSVectorImp_SubIntBase::ClusteredFind(const SubIntBase& x) const {
  unsigned i = Find(x);
  while (i > 0 && i < fSize && fData[i - 1] == x) {
    --i;
  }
  return i;
}

unsigned VokSVectorImp_SubIntBase::FindLowerBound(const SubIntBase& x, int first) const {
  unsigned candidate = fCapacity + 1;
  if (fSize == 0) {
    return candidate;
  }
  unsigned lo = 0;
  unsigned hi = fSize - 1;
  while (lo < hi) {
    const unsigned mid = Middle(lo, hi);
    if (fData[mid] == x) {
      lo = mid;
      break;
    }
    if (fData[mid] < x) {
      candidate = mid;
      lo = mid + 1;
    } else {
      hi = Below(mid);
    }
  }
  if (fData[lo] <= x) {
    candidate = lo;
  }
  if (first != 0 && candidate < fSize) {
    while (candidate > 0 && fData[candidate - 1] == fData[candidate]) {
      --candidate;
    }
  }
  return candidate;
}

unsigned VokSVectorImp_SubIntBase::FindUpperBound(const SubIntBase& x, int first) const {
  unsigned candidate = fCapacity + 1;
  if (fSize == 0) {
    return candidate;
  }
  unsigned lo = 0;
  unsigned hi = fSize - 1;
  while (lo < hi) {
    const unsigned mid = Middle(lo, hi);
    if (fData[mid] == x) {
      lo = mid;
      break;
    }
    if (fData[mid] > x) {
      candidate = mid;
      hi = Below(mid);
    } else {
      lo = mid + 1;
    }
  }
  if (fData[lo] >= x) {
    candidate = lo;
  }
  if (first != 0 && candidate < fSize) {
    while (candidate > 0 && fData[candidate - 1] == fData[candidate]) {
      --candidate;
    }
  }
  return candidate;
}

void VokSVectorImp_SubIntBase::ForEach(Action fn, void* ctx) {
  ForEach(fn, ctx, 0, Size());
}

void VokSVectorImp_SubIntBase::ForEach(Action fn, void* ctx, unsigned from, unsigned to) {
  for (unsigned i = from; i < to; ++i) {
    fn(fData[i], ctx);
  }
}

const SubIntBase* VokSVectorImp_SubIntBase::FirstThat(Predicate pred, void* ctx, unsigned from, unsigned to) const {
  for (unsigned i = from; i < to; ++i) {
    if (pred(fData[i], ctx) != 0) {
      return &fData[i];
    }
  }
  return nullptr;
}

const SubIntBase* VokSVectorImp_SubIntBase::FirstThat(Predicate pred, void* ctx) const {
  return FirstThat(pred, ctx, 0, Size());
}

// Scans forwards and asks about every element: a predicate may count its calls.
const SubIntBase* VokSVectorImp_SubIntBase::LastThat(Predicate pred, void* ctx, unsigned from, unsigned to) const {
  const SubIntBase* last = nullptr;
  for (unsigned i = from; i < to; ++i) {
    if (pred(fData[i], ctx) != 0) {
      last = &fData[i];
    }
  }
  return last;
}

const SubIntBase* VokSVectorImp_SubIntBase::LastThat(Predicate pred, void* ctx) const {
  return LastThat(pred, ctx, 0, Size());
}
