#include "numbers/VokFenIntervalInteger.h"
#include "numbers/valueDescriptor.h"

namespace {

constexpr char sDescriptorText[] = "VokFenIntervalInteger_Descriptor";

// The least interval that holds the values of the list.
void Fill(VokFenIntervalInteger& value, const ValueList& list) {
  value.SetNilValue();
  for (VokULong i = 0; i < list.GetCount(); ++i) {
    value.AddExactValue(list.GetValue(i));
  }
}

}  // namespace

class VokFenIntervalInteger::Descriptor : public ValueDescriptor<VokFenIntervalInteger, Fill> {
 public:
  static const char* const CastableIdent;

  Descriptor() : ValueDescriptor("interval int", VokTarnInteger::sDescriptor, 0) {}
  explicit Descriptor(VokStreamableInit init) : ValueDescriptor(init) {}

  const char* CastableID() const override { return CastableIdent; }
};

const char* const VokFenIntervalInteger::Descriptor::CastableIdent = sDescriptorText;

VokTarnObjectDescriptor* VokFenIntervalInteger::MakeDescriptor() {
  sDescriptor = new Descriptor;
  if (sDescriptor != nullptr) {
    sDescriptor->SetRange();
  }
  return sDescriptor;
}

namespace {

const VokStreamableClass rVokFenIntervalInteger_Descriptor(sDescriptorText,
                                                           BuildStreamable<VokFenIntervalInteger::Descriptor>, 1);
const VokStreamableClass rVokFenIntervalInteger(VokFenIntervalInteger::CastableIdent,
                                                BuildStreamable<VokFenIntervalInteger>, 1);

}  // namespace
