// The persistent record of the enumerated set: its flag, the number of members, the members in ascending order.
#include <algorithm>

#include "domain/VokFenEnumInteger.h"
#include "domain/VokSVectorIteratorImp_SubIntBase.h"
#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"

void VokFenEnumInteger::Write(Vokopstream& os) const {
  os << fEmptyMeansAny << GetCount();
  for (VokSVectorIteratorImp_SubIntBase member(fValues); member;) {
    os << static_cast<long>(VokLong{member++});
  }
}

// The members go through Insert, so a record whose members are repeated or out of order still gives a set. The record
// is taken as it stands: the flag is not checked, and members behind a flag of 1 are refused, as Any
// takes none.
void VokFenEnumInteger::Read(Vokipstream& is) {
  fValues.Flush();
  unsigned count = 0;
  is >> fEmptyMeansAny >> count;
  // The count is not trusted with memory: a set never holds more than its limit.
  if (count != 0) {
    fValues.Resize(std::min<unsigned>(count, sMAX_CARD));
  }
  // A failed stream gives zeros for ever. The first may be new, the second may turn a set that this filled into Any;
  // no later one changes anything.
  int zerosLeft = 2;
  bool outOfMemory = false;
  for (; count > 0 && zerosLeft > 0; --count) {
    long v = 0;
    is >> v;
    if (is.IsFailed()) {
      --zerosLeft;
    }
    // Every member of a sound stream is consumed, refused or not, so that what follows is found. Nil behind an
    // insertion says that memory is short: the set stays Nil instead of holding a part of its members.
    if (!outOfMemory) {
      Insert(static_cast<VokLong>(v));
      outOfMemory = IsNil() != 0;
    }
  }
}
