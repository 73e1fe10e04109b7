#include "numbers/VokFenSingleInteger.h"
#include "numbers/valueDescriptor.h"

namespace {

constexpr char sDescriptorText[] = "VokFenSingleInteger_Descriptor";

// A single cannot list values: two or more are Any.
void Fill(VokFenSingleInteger& value, const ValueList& list) {
  if (list.GetCount() == 0) {
    value.SetNilValue();
  } else if (list.GetCount() == 1) {
    value.SetExactValue(list.GetValue(0));
  }
}

}  // namespace

class VokFenSingleInteger::Descriptor : public ValueDescriptor<VokFenSingleInteger, Fill> {
 public:
  static const char* const CastableIdent;

  Descriptor() : ValueDescriptor("int", VokTarnInteger::sDescriptor, 0) {}
  explicit Descriptor(VokStreamableInit init) : ValueDescriptor(init) {}

  const char* CastableID() const override { return CastableIdent; }
};

const char* const VokFenSingleInteger::Descriptor::CastableIdent = sDescriptorText;

VokTarnObjectDescriptor* VokFenSingleInteger::MakeDescriptor() {
  sDescriptor = new Descriptor;
  return sDescriptor;
}

namespace {

const VokStreamableClass rVokFenSingleInteger_Descriptor(sDescriptorText,
                                                         BuildStreamable<VokFenSingleInteger::Descriptor>, 1);
const VokStreamableClass rVokFenSingleInteger(VokFenSingleInteger::CastableIdent, BuildStreamable<VokFenSingleInteger>,
                                              1);

}  // namespace
