#include "domain/VokSVectorIteratorImp_SubIntBase.h"

#include <algorithm>

namespace {

constexpr SubIntBase kNoElement;

// Element i of the range; behind its end the last element, so that a step too far stays inside the array.
const SubIntBase& ElementOrLast(const VokSVectorImp_SubIntBase& v, unsigned i, unsigned from, unsigned to) {
  const unsigned end = std::min(to, v.Size());
  if (i < end) {
    return v[i];
  }
  return from < end ? v[end - 1] : kNoElement;
}

}  // namespace

VokSVectorIteratorImp_SubIntBase::VokSVectorIteratorImp_SubIntBase(const VokSVectorImp_SubIntBase& v)
    : VokSVectorIteratorImp_SubIntBase(v, 0, v.Count()) {}

VokSVectorIteratorImp_SubIntBase::VokSVectorIteratorImp_SubIntBase(const VokSVectorImp_SubIntBase& v, unsigned from,
                                                                   unsigned to)
    : fVector(v), fCurrent(from), fFrom(from), fTo(to) {}

void VokSVectorIteratorImp_SubIntBase::Restart(unsigned from, unsigned to) {
  fCurrent = from;
  fFrom = from;
  fTo = to;
}

void VokSVectorIteratorImp_SubIntBase::Restart() {
  Restart(fFrom, fTo);
}

VokSVectorIteratorImp_SubIntBase::operator int() const {
  return fVector.IsAllocated() != 0 && fCurrent < fTo ? 1 : 0;
}

const SubIntBase& VokSVectorIteratorImp_SubIntBase::Current() const {
  return fVector[fCurrent];
}

const SubIntBase& VokSVectorIteratorImp_SubIntBase::operator++() {
  if (fCurrent < fTo) {
    ++fCurrent;
  }
  return ElementOrLast(fVector, fCurrent, fFrom, fTo);
}

const SubIntBase& VokSVectorIteratorImp_SubIntBase::operator++(int) {
  const SubIntBase& element = ElementOrLast(fVector, fCurrent, fFrom, fTo);
  if (fCurrent < fTo) {
    ++fCurrent;
  }
  return element;
}
