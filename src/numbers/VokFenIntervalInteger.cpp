#include "numbers/VokFenIntervalInteger.h"

#include <algorithm>
#include <istream>
#include <limits>
#include <ostream>

#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "numbers/NumberText.h"
#include "numbers/narrowByBounds.h"
#include "numbers/streamAccess.h"

namespace {

// Two arrays, so that the identity and the streamable name never share an address.
constexpr char sIdentText[] = "VokFenIntervalInteger";
constexpr char sCastableText[] = "VokFenIntervalInteger";

bool IsInRange(long v) {
  return SubIntBase::sMin <= v && v <= SubIntBase::sMax;
}

// Reads what follows the opening bracket of a range.
VokFenBounds ReadRange(std::istream& is) {
  const VokLong lower = GetSIValue(is);
  char separator = '\0';
  char bracket = '\0';
  is >> separator;
  const VokLong upper = GetSIValue(is);
  is >> bracket;
  if (separator != ',' || bracket != ']' || !IsInRange(lower) || !IsInRange(upper)) {
    is.setstate(std::ios_base::failbit);
  }
  return {lower, upper};
}

VokFenBounds ReadNumber(std::istream& is) {
  const VokLong v = GetSIValue(is);
  if (!IsInRange(v)) {
    is.setstate(std::ios_base::failbit);
  }
  return {v, v};
}

}  // namespace

const char* const VokFenIntervalInteger::sIdent = sIdentText;
const char* const VokFenIntervalInteger::CastableIdent = sCastableText;
VokTarnObjectDescriptor* VokFenIntervalInteger::sDescriptor = nullptr;

VokFenIntervalInteger::VokFenIntervalInteger() noexcept = default;

VokFenIntervalInteger::VokFenIntervalInteger(VokLong lower, VokLong upper) noexcept {
  NarrowTo(lower, upper);
}

VokFenIntervalInteger::VokFenIntervalInteger(VokStreamableInit init) noexcept : VokTarnInteger(init) {}

int VokFenIntervalInteger::NarrowTo(VokLong lower, VokLong upper) {
  if (IsEmptyInterval() || (lower <= fLower && upper >= fUpper)) {
    return 0;
  }
  lower = std::max<VokLong>(lower, fLower);
  upper = std::min<VokLong>(upper, fUpper);
  if (lower > upper) {
    return VokFenIntervalInteger::SetNilValue();
  }
  fLower = lower;
  fUpper = upper;
  return 1;
}

const char* VokFenIntervalInteger::CastableID() const {
  return CastableIdent;
}

void VokFenIntervalInteger::Write(Vokopstream& os) const {
  os << static_cast<long>(GetLowerBound()) << static_cast<long>(GetUpperBound());
}

void VokFenIntervalInteger::Read(Vokipstream& is) {
  long lower = 0;
  long upper = 0;
  is >> lower >> upper;
  const bool nil = lower == SubIntBase::sMax && upper == SubIntBase::sMin;
  if (!nil && (!IsInRange(lower) || !IsInRange(upper) || lower > upper)) {
    is.SetFailed();
  }
  SetNilValue();
  if (!nil && !is.IsFailed()) {
    fLower = static_cast<VokLong>(lower);
    fUpper = static_cast<VokLong>(upper);
  }
}

int VokFenIntervalInteger::IsDerivedFrom(const char* ident) const {
  return ident == sIdent ? 1 : VokTarnInteger::IsDerivedFrom(ident);
}

const VokTarnObjectDescriptor* VokFenIntervalInteger::GetDescriptor() const {
  return sDescriptor;
}

std::ostream& VokFenIntervalInteger::PrintOn(std::ostream& os) const {
  if (IsNil() != 0) {
    return os << "Nil";
  }
  if (IsUndefined() != 0) {
    return os << "Any";
  }
  if (fLower == fUpper) {
    PrintSIValue(os, fLower);
    return os;
  }
  os << '[';
  PrintSIValue(os, fLower);
  os << ", ";
  PrintSIValue(os, fUpper);
  return os << ']';
}

void VokFenIntervalInteger::InputValue(std::istream& is) {
  SetNilValue();
  if (is.fail()) {
    return;
  }
  VokFenBounds read = VokFenBounds::Empty();
  switch (CheckNumString(is)) {
    case 0:
      read = ReadNumber(is);
      break;
    case 1:
      read = ReadRange(is);
      break;
    case 2:
    case 6:
      read = {SubIntBase::sMin, SubIntBase::sMin};
      break;
    case 3:
    case 7:
      read = {SubIntBase::sMax, SubIntBase::sMax};
      break;
    case 4:
      read = VokFenBounds::All();
      break;
    case 5:
      break;
    default:
      is.setstate(std::ios_base::failbit);
      break;
  }
  if (!is.fail()) {
    *this = VokFenIntervalInteger(read.lower, read.upper);
  }
}

int VokFenIntervalInteger::Assign(const VokTarnAny& a) {
  const VokTarnInteger* const y = CastToInteger(a);
  if (y == nullptr) {
    return SetNilValue();
  }
  const VokFenBounds bounds = VokFenBounds::Of(*y);
  fLower = bounds.lower;
  fUpper = bounds.upper;
  return 1;
}

int VokFenIntervalInteger::SetNilValue() {
  fLower = SubIntBase::sMax;
  fUpper = SubIntBase::sMin;
  return 1;
}

int VokFenIntervalInteger::SetUndefinedValue() {
  fLower = SubIntBase::sMin;
  fUpper = SubIntBase::sMax;
  return 1;
}

int VokFenIntervalInteger::IsNil() const {
  return IsEmptyInterval();
}

int VokFenIntervalInteger::IsUndefined() const {
  return IsUnrestricted();
}

int VokFenIntervalInteger::IsIntersected(const VokTarnAny& a) const {
  const VokTarnInteger* const y = CastToInteger(a);
  return y != nullptr && !CommonBounds(VokFenBounds::Of(*this), *y).IsEmpty();
}

int VokFenIntervalInteger::Unite(const VokTarnAny& a) {
  const VokTarnInteger* const y = CastToInteger(a);
  if (y == nullptr) {
    return MakeNil(*this);
  }
  const VokFenBounds other = VokFenBounds::Of(*y);
  if (other.IsEmpty() || (other.lower >= fLower && other.upper <= fUpper)) {
    return 0;
  }
  fLower = IsNil() != 0 ? other.lower : std::min<VokLong>(fLower, other.lower);
  fUpper = std::max<VokLong>(fUpper, other.upper);
  return 1;
}

int VokFenIntervalInteger::GetCardinality() const {
  if (IsNil() != 0) {
    return 0;
  }
  if (IsUndefined() != 0) {
    return -1;
  }
  const std::int64_t width = std::int64_t{fUpper} - fLower + 1;
  return static_cast<int>(std::min<std::int64_t>(width, std::numeric_limits<int>::max()));
}

int VokFenIntervalInteger::Bisect(VokTarnObject& other, ValueSelection selection) {
  if (other.IsDerivedFrom(sIdent) == 0 || IsNil() != 0 || IsUndefined() != 0) {
    return 0;
  }
  // [lower, last] and [last + 1, upper] are the two parts.
  VokLong last = static_cast<VokLong>((std::int64_t{fLower} + fUpper) >> 1);
  switch (selection) {
    case LowerHalf:
    case UpperHalf:
      break;
    case Smallest:
      last = fLower;
      break;
    case Largest:
      last = fUpper - 1;
      break;
    default:
      return 0;
  }
  VokFenIntervalInteger low(fLower, last);
  VokFenIntervalInteger high(last + 1, fUpper);
  const bool movesLow = selection == LowerHalf || selection == Smallest;
  static_cast<VokFenIntervalInteger&>(other) = movesLow ? low : high;
  const VokFenIntervalInteger& kept = movesLow ? high : low;
  const int changed = kept.fLower != fLower || kept.fUpper != fUpper;
  *this = kept;
  return changed;
}

int VokFenIntervalInteger::CalcMinValue() {
  return NarrowTo(SubIntBase::sMin, SubIntBase::sMin);
}

int VokFenIntervalInteger::CalcMaxValue() {
  return NarrowTo(SubIntBase::sMax, SubIntBase::sMax);
}

int VokFenIntervalInteger::CalcEqualValue(const VokTarnAny& a) {
  const VokTarnInteger* const y = CastToInteger(a);
  if (y == nullptr) {
    return MakeNil(*this);
  }
  const VokFenBounds common = CommonBounds(VokFenBounds::Of(*this), *y);
  return NarrowTo(common.lower, common.upper);
}

int VokFenIntervalInteger::SetExactValue(VokLong v) {
  return Assign(VokFenSingleInteger(v));
}

int VokFenIntervalInteger::SetLowerBound(VokLong v) {
  return NarrowTo(std::min(v, SubIntBase::sMax), SubIntBase::sMax);
}

int VokFenIntervalInteger::SetUpperBound(VokLong v) {
  return NarrowTo(SubIntBase::sMin, std::max(v, SubIntBase::sMin));
}

int VokFenIntervalInteger::AddExactValue(VokLong v) {
  Unite(VokFenSingleInteger(v));
  return 1;
}

int VokFenIntervalInteger::RemoveExactValue(VokLong v) {
  if (IsNil() != 0 || IsUndefined() != 0 || (v != fLower && v != fUpper)) {
    return 0;
  }
  return v == fLower ? NarrowTo(v + 1, fUpper) : NarrowTo(fLower, v - 1);
}

VokLong VokFenIntervalInteger::GetLowerBound() const {
  return IsNil() != 0 ? SubIntBase::sMax : VokLong{fLower};
}

VokLong VokFenIntervalInteger::GetUpperBound() const {
  return IsNil() != 0 ? SubIntBase::sMin : VokLong{fUpper};
}

VokLong VokFenIntervalInteger::GetNextExactValue(VokLong v) const {
  if (IsNil() != 0) {
    return v;
  }
  return v < fLower ? VokLong{fLower} : v <= fUpper ? v + 1 : v;
}

VokLong VokFenIntervalInteger::GetPrevExactValue(VokLong v) const {
  if (IsNil() != 0) {
    return v;
  }
  return v > fUpper ? VokLong{fUpper} : v >= fLower ? v - 1 : v;
}

Vokipstream& VokFenIntervalInteger::readRef(Vokipstream& is, VokFenIntervalInteger& value) {
  return ReadObjectInto(is, value);
}

Vokipstream& VokFenIntervalInteger::readPtr(Vokipstream& is, VokFenIntervalInteger*& value) {
  return ReadObjectPointerOf(is, value);
}

Vokopstream& VokFenIntervalInteger::writeRef(Vokopstream& os, const VokFenIntervalInteger& value) {
  return os.WriteObject(&value);
}

Vokopstream& VokFenIntervalInteger::writePtr(Vokopstream& os, const VokFenIntervalInteger* value) {
  return os.WriteObjectPointer(value);
}
