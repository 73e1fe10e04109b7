#include "numbers/VokFenSingleBoolean.h"

#include <istream>
#include <ostream>
#include <string>

#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "numbers/streamAccess.h"

namespace {

// Two arrays, so that the identity and the streamable name never share an address.
constexpr char sIdentText[] = "VokFenSingleBoolean";
constexpr char sCastableText[] = "VokFenSingleBoolean";

constexpr unsigned sNone = 0;
constexpr unsigned sFalse = 1;
constexpr unsigned sTrue = 2;
constexpr unsigned sBoth = 3;

struct Word {
  const char* text;
  unsigned mask;
};

constexpr Word sWords[] = {{"Nil", sNone}, {"Any", sBoth},    {"0", sFalse},
                           {"1", sTrue},   {"false", sFalse}, {"true", sTrue}};

bool IsWordCharacter(int c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

// Consumes the word that stands next, up to the first character that makes it longer than every known one.
bool ReadWord(std::istream& is, unsigned& mask) {
  char word[8] = {};
  std::size_t length = 0;
  is >> std::ws;
  while (IsWordCharacter(is.peek()) && length + 1 < sizeof word) {
    word[length] = static_cast<char>(is.get());
    ++length;
  }
  for (const Word& known : sWords) {
    if (std::char_traits<char>::compare(word, known.text, std::char_traits<char>::length(known.text) + 1) == 0) {
      mask = known.mask;
      return true;
    }
  }
  return false;
}

}  // namespace

const char* const VokFenSingleBoolean::sIdent = sIdentText;
const char* const VokFenSingleBoolean::CastableIdent = sCastableText;
VokTarnObjectDescriptor* VokFenSingleBoolean::sDescriptor = nullptr;

VokFenSingleBoolean::VokFenSingleBoolean(bool truth) noexcept : fMask(truth ? sTrue : sFalse) {}

VokFenSingleBoolean::VokFenSingleBoolean(VokStreamableInit init) noexcept : VokTarnBoolean(init) {}

const char* VokFenSingleBoolean::CastableID() const {
  return CastableIdent;
}

void VokFenSingleBoolean::Write(Vokopstream& os) const {
  os << static_cast<int>(fMask);
}

void VokFenSingleBoolean::Read(Vokipstream& is) {
  int mask = 0;
  is >> mask;
  if (mask < 0 || mask > static_cast<int>(sBoth)) {
    is.SetFailed();
  }
  fMask = is.IsFailed() ? sNone : static_cast<unsigned>(mask);
}

int VokFenSingleBoolean::IsDerivedFrom(const char* ident) const {
  return ident == sIdent ? 1 : VokTarnBoolean::IsDerivedFrom(ident);
}

const VokTarnObjectDescriptor* VokFenSingleBoolean::GetDescriptor() const {
  return sDescriptor;
}

std::ostream& VokFenSingleBoolean::PrintOn(std::ostream& os) const {
  constexpr const char* texts[] = {"Nil", "0", "1", "Any"};
  return os << texts[fMask];
}

void VokFenSingleBoolean::InputValue(std::istream& is) {
  fMask = sNone;
  if (!is.fail() && !ReadWord(is, fMask)) {
    is.setstate(std::ios_base::failbit);
  }
}

int VokFenSingleBoolean::SetNilValue() {
  fMask = sNone;
  return 1;
}

int VokFenSingleBoolean::SetUndefinedValue() {
  fMask = sBoth;
  return 1;
}

int VokFenSingleBoolean::IsNil() const {
  return fMask == sNone;
}

int VokFenSingleBoolean::IsUndefined() const {
  return fMask == sBoth;
}

int VokFenSingleBoolean::GetCardinality() const {
  return static_cast<int>((fMask & 1U) + (fMask >> 1U));
}

int VokFenSingleBoolean::Bisect(VokTarnObject& other, ValueSelection selection) {
  if (other.IsDerivedFrom(sIdent) == 0 || IsNil() != 0 || selection < LowerHalf || selection > Largest) {
    return 0;
  }
  unsigned moved = fMask;
  if (IsUndefined() != 0) {
    moved = selection == LowerHalf || selection == Smallest ? sFalse : sTrue;
  } else if (selection == UpperHalf) {
    moved = sNone;
  }
  const unsigned kept = fMask & ~moved;
  static_cast<VokFenSingleBoolean&>(other).fMask = moved;
  fMask = kept;
  return moved != sNone;
}

int VokFenSingleBoolean::CalcTruthValue(int truth) {
  return NarrowTo(truth != 0 ? sTrue : sFalse);
}

int VokFenSingleBoolean::IsPossible(int truth) const {
  return (fMask & (truth != 0 ? sTrue : sFalse)) != 0;
}

int VokFenSingleBoolean::NarrowTo(unsigned mask) {
  const unsigned old = fMask;
  fMask &= mask;
  return fMask != old;
}

Vokipstream& VokFenSingleBoolean::readRef(Vokipstream& is, VokFenSingleBoolean& value) {
  return ReadObjectInto(is, value);
}

Vokipstream& VokFenSingleBoolean::readPtr(Vokipstream& is, VokFenSingleBoolean*& value) {
  return ReadObjectPointerOf(is, value);
}

Vokopstream& VokFenSingleBoolean::writeRef(Vokopstream& os, const VokFenSingleBoolean& value) {
  return os.WriteObject(&value);
}

Vokopstream& VokFenSingleBoolean::writePtr(Vokopstream& os, const VokFenSingleBoolean* value) {
  return os.WriteObjectPointer(value);
}
