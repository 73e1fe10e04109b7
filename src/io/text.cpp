// The text form of the enumerated set: "Nil", "Any", a bare element, or a list such as { 1, 3, 7 }.
//
// Reading accepts a closed range [lo, hi] besides. The extremes are written " Min" and " Max" with the blank as part of
// the word, wherever they stand. A malformed text shows in the stream's fail bit only. The set is in a valid state
// before every use of the stream, because a stream may be set to throw.
#include <cstdint>
#include <istream>
#include <ostream>

#include "domain/VokFenEnumInteger.h"
#include "domain/elements.h"
#include "numbers/NumberText.h"

namespace {

void PrintElement(std::ostream& os, VokLong v) {
  if (v >= VokFenSingleInteger::sNC_INT_MAX) {
    os << " Max";
  } else if (v <= VokFenSingleInteger::sNC_INT_MIN) {
    os << " Min";
  } else {
    os << v;
  }
}

// The next character that is not white space; 0 when there is none or the stream has failed.
char ReadSeparator(std::istream& is) {
  char ch = 0;
  std::ws(is);
  is >> ch;
  return ch;
}

// Fails the stream. Of the other state bits only the hard failure stays.
void FailText(std::istream& is) {
  is.clear(std::ios_base::failbit | (is.rdstate() & std::ios_base::badbit));
}

// A range is made of its two numbers whatever stands between and behind them: GetSIValue reads through the stream's
// buffer, also when a wrong separator has failed the stream.
void ReadRange(std::istream& is, VokFenEnumInteger& set) {
  const VokLong lo = GetSIValue(is);
  if (ReadSeparator(is) != ',') {
    FailText(is);
  }
  const VokLong hi = GetSIValue(is);
  if (ReadSeparator(is) != ']') {
    FailText(is);
  }
  if (hi < lo) {
    return;
  }
  // Exact, so that the widest range is not taken for a narrow one.
  if (std::int64_t{hi} - lo + 1 >= std::int64_t{VokFenEnumInteger::sMAX_CARD}) {
    set.SetUndefinedValue();
    return;
  }
  for (std::int64_t k = lo; k <= hi; ++k) {
    if (set.SimpleInsert(static_cast<VokLong>(k)) == 0) {
      set.SetNilValue();
      return;
    }
  }
}

// A malformed list leaves the set Nil, also on a stream that throws.
void ReadList(std::istream& is, VokFenEnumInteger& set) {
  char separator = ',';
  try {
    while (separator == ',') {
      // A set that has become too large, or for which memory is short, leaves the rest of the list unread.
      if (set.Insert(GetSIValue(is)) == 0 || set.IsNil() != 0) {
        return;
      }
      separator = ReadSeparator(is);
    }
  } catch (...) {
    set.SetNilValue();
    throw;
  }
  if (separator != '}') {
    set.SetNilValue();
    FailText(is);
  }
}

}  // namespace

std::ostream& VokFenEnumInteger::PrintOn(std::ostream& os) const {
  const unsigned n = GetCount();
  if (n == 0) {
    return os << (IsUndefined() != 0 ? "Any" : "Nil");
  }
  if (n == 1) {
    PrintElement(os, GetLowerBound());
    return os;
  }
  os << "{ ";
  for (unsigned i = 0; i < n; ++i) {
    if (i > 0) {
      os << ", ";
    }
    PrintElement(os, GetValue(i));
  }
  return os << " }";
}

void VokFenEnumInteger::InputValue(std::istream& is) {
  SetNilValue();
  switch (CheckNumString(is)) {
    case 1:
      ReadRange(is, *this);
      break;
    case 2:
    case 6:
      fValues.Add(ToElement(VokFenSingleInteger::sNC_INT_MIN));
      break;
    case 3:
    case 7:
      fValues.Add(ToElement(VokFenSingleInteger::sNC_INT_MAX));
      break;
    case 4:
      SetUndefinedValue();
      break;
    case 5:
      break;
    case 8:
      ReadList(is, *this);
      break;
    default: {
      VokLong v = 0;
      is >> v;
      fValues.Add(ToElement(v));
      break;
    }
  }
}
