#include "numbers/VokFenSingleBoolean.h"
#include "numbers/valueDescriptor.h"

namespace {

constexpr char sDescriptorText[] = "VokFenSingleBoolean_Descriptor";

// The set of truth values of the list; every number but 0 is true.
void Fill(VokFenSingleBoolean& value, const ValueList& list) {
  value.SetNilValue();
  for (VokULong i = 0; i < list.GetCount(); ++i) {
    value.Unite(VokFenSingleBoolean(list.GetValue(i) != 0));
  }
}

}  // namespace

class VokFenSingleBoolean::Descriptor : public ValueDescriptor<VokFenSingleBoolean, Fill> {
 public:
  static const char* const CastableIdent;

  Descriptor() : ValueDescriptor("bool", VokTarnBoolean::sDescriptor, 0) {}
  explicit Descriptor(VokStreamableInit init) : ValueDescriptor(init) {}

  const char* CastableID() const override { return CastableIdent; }
};

const char* const VokFenSingleBoolean::Descriptor::CastableIdent = sDescriptorText;

VokTarnObjectDescriptor* VokFenSingleBoolean::MakeDescriptor() {
  sDescriptor = new Descriptor;
  if (sDescriptor != nullptr) {
    sDescriptor->SetRange();
  }
  return sDescriptor;
}

namespace {

const VokStreamableClass rVokFenSingleBoolean_Descriptor(sDescriptorText,
                                                         BuildStreamable<VokFenSingleBoolean::Descriptor>, 1);
const VokStreamableClass rVokFenSingleBoolean(VokFenSingleBoolean::CastableIdent, BuildStreamable<VokFenSingleBoolean>,
                                              1);

}  // namespace
