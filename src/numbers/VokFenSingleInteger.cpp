#include "numbers/VokFenSingleInteger.h"

#include <algorithm>
#include <istream>
#include <ostream>

#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "numbers/NumberText.h"
#include "numbers/narrowByBounds.h"
#include "numbers/streamAccess.h"

namespace {

// Two arrays, so that the identity and the streamable name never share an address.
constexpr char sIdentText[] = "VokFenSingleInteger";
constexpr char sCastableText[] = "VokFenSingleInteger";

const VokFenSingleInteger* CastToSingle(const VokStreamable& v) {
  return v.IsDerivedFrom(VokFenSingleInteger::sIdent) != 0 ? static_cast<const VokFenSingleInteger*>(&v) : nullptr;
}

bool IsElement(long v) {
  return SubIntBase::sMin <= v && v <= SubIntBase::sMax;
}

}  // namespace

const char* const VokFenSingleInteger::sIdent = sIdentText;
const char* const VokFenSingleInteger::CastableIdent = sCastableText;
VokTarnObjectDescriptor* VokFenSingleInteger::sDescriptor = nullptr;

const VokLong VokFenSingleInteger::sNC_INT_NIL = -2147483647 - 1;
const VokLong VokFenSingleInteger::sNC_INT_ANY = 2147483647;
const VokLong VokFenSingleInteger::sNC_INT_MIN = SubIntBase::sMin;
const VokLong VokFenSingleInteger::sNC_INT_MAX = SubIntBase::sMax;

VokFenSingleInteger::VokFenSingleInteger(VokLong value) noexcept : fValue(value) {}

VokFenSingleInteger::VokFenSingleInteger(VokStreamableInit init) noexcept : VokTarnInteger(init), fValue(sNC_INT_ANY) {}

const char* VokFenSingleInteger::CastableID() const {
  return CastableIdent;
}

void VokFenSingleInteger::Write(Vokopstream& os) const {
  os << static_cast<long>(fValue);
}

void VokFenSingleInteger::Read(Vokipstream& is) {
  long v = 0;
  is >> v;
  if (!IsElement(v) && v != sNC_INT_ANY && v != sNC_INT_NIL) {
    is.SetFailed();
  }
  fValue = is.IsFailed() ? sNC_INT_NIL : static_cast<VokLong>(v);
}

int VokFenSingleInteger::IsDerivedFrom(const char* ident) const {
  return ident == sIdent ? 1 : VokTarnInteger::IsDerivedFrom(ident);
}

const VokTarnObjectDescriptor* VokFenSingleInteger::GetDescriptor() const {
  return sDescriptor;
}

std::ostream& VokFenSingleInteger::PrintOn(std::ostream& os) const {
  if (IsNil() != 0) {
    return os << "Nil";
  }
  if (IsUndefined() != 0) {
    return os << "Any";
  }
  PrintSIValue(os, fValue);
  return os;
}

void VokFenSingleInteger::InputValue(std::istream& is) {
  fValue = sNC_INT_NIL;
  if (is.fail()) {
    return;
  }
  switch (CheckNumString(is)) {
    case 0: {
      const VokLong v = GetSIValue(is);
      if (!IsElement(v)) {
        is.setstate(std::ios_base::failbit);
      }
      if (!is.fail()) {
        fValue = v;
      }
      break;
    }
    case 2:
    case 6:
      fValue = sNC_INT_MIN;
      break;
    case 3:
    case 7:
      fValue = sNC_INT_MAX;
      break;
    case 4:
      fValue = sNC_INT_ANY;
      break;
    case 5:
      break;
    default:
      is.setstate(std::ios_base::failbit);
      break;
  }
}

int VokFenSingleInteger::Assign(const VokTarnAny& a) {
  const VokTarnInteger* const y = CastToInteger(a);
  if (y == nullptr || y->IsNil() != 0) {
    fValue = sNC_INT_NIL;
  } else {
    fValue = y->GetCardinality() == 1 ? y->GetLowerBound() : sNC_INT_ANY;
  }
  return 1;
}

int VokFenSingleInteger::SetNilValue() {
  fValue = sNC_INT_NIL;
  return 1;
}

int VokFenSingleInteger::SetUndefinedValue() {
  fValue = sNC_INT_ANY;
  return 1;
}

int VokFenSingleInteger::IsNil() const {
  return fValue == sNC_INT_NIL;
}

int VokFenSingleInteger::IsUndefined() const {
  return fValue == sNC_INT_ANY;
}

int VokFenSingleInteger::IsIntersected(const VokTarnAny& a) const {
  const VokTarnInteger* const y = CastToInteger(a);
  return y != nullptr && !CommonBounds(VokFenBounds::Of(*this), *y).IsEmpty();
}

int VokFenSingleInteger::Unite(const VokTarnAny& a) {
  if (CastToInteger(a) == nullptr) {
    return MakeNil(*this);
  }
  VokFenSingleInteger other;
  other.Assign(a);
  if (other.IsNil() != 0 || IsUndefined() != 0 || other.fValue == fValue) {
    return 0;
  }
  fValue = IsNil() != 0 ? other.fValue : sNC_INT_ANY;
  return 1;
}

int VokFenSingleInteger::GetCardinality() const {
  return IsNil() != 0 ? 0 : IsUndefined() != 0 ? -1 : 1;
}

int VokFenSingleInteger::Bisect(VokTarnObject& other, ValueSelection selection) {
  const bool known = IsNil() == 0 && IsUndefined() == 0;
  if (!known || selection < LowerHalf || selection > Largest || CastToSingle(other) == nullptr) {
    return 0;
  }
  VokFenSingleInteger& moved = static_cast<VokFenSingleInteger&>(other);
  if (selection == UpperHalf) {
    moved.fValue = sNC_INT_NIL;
    return 0;
  }
  moved.fValue = fValue;
  fValue = sNC_INT_NIL;
  return 1;
}

int VokFenSingleInteger::CalcMinValue() {
  return CalcEqualValue(VokFenSingleInteger(sNC_INT_MIN));
}

int VokFenSingleInteger::CalcMaxValue() {
  return CalcEqualValue(VokFenSingleInteger(sNC_INT_MAX));
}

int VokFenSingleInteger::CalcEqualValue(const VokTarnAny& a) {
  const VokTarnInteger* const y = CastToInteger(a);
  if (y == nullptr || y->IsNil() != 0) {
    return MakeNil(*this);
  }
  if (IsUndefined() != 0) {
    Assign(a);
    return IsUndefined() == 0;
  }
  return IsIntersected(a) != 0 ? 0 : MakeNil(*this);
}

int VokFenSingleInteger::SetExactValue(VokLong v) {
  fValue = v;
  return 1;
}

int VokFenSingleInteger::SetLowerBound(VokLong v) {
  return GetUpperBound() < std::min(v, sNC_INT_MAX) ? MakeNil(*this) : 0;
}

int VokFenSingleInteger::SetUpperBound(VokLong v) {
  return GetLowerBound() > std::max(v, sNC_INT_MIN) ? MakeNil(*this) : 0;
}

int VokFenSingleInteger::AddExactValue(VokLong v) {
  Unite(VokFenSingleInteger(v));
  return 1;
}

int VokFenSingleInteger::RemoveExactValue(VokLong v) {
  if (IsUndefined() != 0 || fValue != v) {
    return 0;
  }
  return MakeNil(*this);
}

VokLong VokFenSingleInteger::GetLowerBound() const {
  return IsNil() != 0 ? sNC_INT_MAX : IsUndefined() != 0 ? sNC_INT_MIN : fValue;
}

VokLong VokFenSingleInteger::GetUpperBound() const {
  return IsNil() != 0 ? sNC_INT_MIN : IsUndefined() != 0 ? sNC_INT_MAX : fValue;
}

VokLong VokFenSingleInteger::GetNextExactValue(VokLong v) const {
  if (v < GetLowerBound()) {
    return IsNil() != 0 ? v : GetLowerBound();
  }
  return v <= GetUpperBound() ? v + 1 : v;
}

VokLong VokFenSingleInteger::GetPrevExactValue(VokLong v) const {
  if (v > GetUpperBound()) {
    return IsNil() != 0 ? v : GetUpperBound();
  }
  return v >= GetLowerBound() ? v - 1 : v;
}

Vokipstream& VokFenSingleInteger::readRef(Vokipstream& is, VokFenSingleInteger& value) {
  return ReadObjectInto(is, value);
}

Vokipstream& VokFenSingleInteger::readPtr(Vokipstream& is, VokFenSingleInteger*& value) {
  return ReadObjectPointerOf(is, value);
}

Vokopstream& VokFenSingleInteger::writeRef(Vokopstream& os, const VokFenSingleInteger& value) {
  return os.WriteObject(&value);
}

Vokopstream& VokFenSingleInteger::writePtr(Vokopstream& os, const VokFenSingleInteger* value) {
  return os.WriteObjectPointer(value);
}
