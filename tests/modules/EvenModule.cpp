// A module of its own with a fourth integer domain, "even int": a set of even numbers. It overrides the sum
// alone; everything else is what the framework supplies to every integer type.
#include <istream>

#include "framework/VokTarnModuleManager.h"
#include "framework/VokTarnOperators.h"
#include "support/foreignInteger.h"

namespace {

const char kIdent[] = "EvenInteger";
VokTarnObjectDescriptor* sDescriptor = nullptr;

class EvenInteger final : public support::ForeignInteger {
 public:
  const char* CastableID() const override { return kIdent; }
  int IsDerivedFrom(const char* ident) const override {
    return ident == kIdent ? 1 : VokTarnInteger::IsDerivedFrom(ident);
  }
  const VokTarnObjectDescriptor* GetDescriptor() const override { return sDescriptor; }

  std::ostream& PrintOn(std::ostream& os) const override {
    if (IsUndefined() != 0) {
      return os << "Any";
    }
    os << "even {";
    const char* separator = "";
    for (const VokLong v : GetValues()) {
      os << separator << v;
      separator = ", ";
    }
    return os << "}";
  }

  // "up to N": the even numbers from 0 to N.
  void InputValue(std::istream& is) override {
    std::string up;
    std::string to;
    VokLong last = 0;
    if (!(is >> up >> to >> last) || up != "up" || to != "to" || last < 0 || last > 1000) {
      is.setstate(std::ios::failbit);
      SetNilValue();
      return;
    }
    SetExactValue(0);
    for (VokLong v = 2; v <= last; v += 2) {
      AddExactValue(v);
    }
  }

  int Assign(const VokTarnAny& a) override {
    if (a.IsDerivedFrom(kIdent) == 0) {
      return SetNilValue();
    }
    support::ForeignInteger::operator=(static_cast<const EvenInteger&>(a));
    return 1;
  }

  int Bisect(VokTarnObject& other, ValueSelection) override {
    auto& part = static_cast<EvenInteger&>(other);
    part.SetNilValue();
    const int half = (GetCardinality() + 1) / 2;
    for (int i = 0; i < half; ++i) {
      part.AddExactValue(GetLowerBound());
      RemoveExactValue(GetLowerBound());
    }
    return 1;
  }

  int SetExactValue(VokLong v) override { return v % 2 == 0 ? ForeignInteger::SetExactValue(v) : SetNilValue(); }
  int AddExactValue(VokLong v) override { return v % 2 == 0 ? ForeignInteger::AddExactValue(v) : 0; }

  int CalcSumValue(const VokTarnNumber& a, const VokTarnNumber& b) override {
    const auto& x = static_cast<const EvenInteger&>(a);
    const auto& y = static_cast<const EvenInteger&>(b);
    if (x.IsUndefined() != 0 || y.IsUndefined() != 0) {
      return 0;
    }
    std::set<VokLong> sums;
    for (const VokLong v : x.GetValues()) {
      for (const VokLong w : y.GetValues()) {
        sums.insert(v + w);
      }
    }
    return CalcEqualValue(ForeignInteger(std::move(sums)));
  }
};

class Descriptor final : public VokTarnObjectDescriptor {
 public:
  Descriptor() : VokTarnObjectDescriptor("even int", VokTarnInteger::sDescriptor, 0) {}
  void* InitObject(void* place) const override { return place == nullptr ? nullptr : new (place) EvenInteger; }
  std::size_t GetObjectSize() const override { return sizeof(EvenInteger); }
};

}  // namespace

extern "C" VOKTARN_EXPORT int InitModule(VokTarnModule* module, VokTarnModuleManager* manager) {
  VokTarnModule* abstractTypes = manager->OpenModule("VokFenAbstractTypes");
  if (abstractTypes == nullptr) {
    return 0;
  }
  module->AddLoadedModule(abstractTypes);
  sDescriptor = new Descriptor;
  module->AddObjectDescriptor(sDescriptor);
  const auto* addition =
      static_cast<const VokTarnConstraintDescriptor*>(abstractTypes->FindDescriptor("VokTarnAdditionConstraint"));
  module->AddObjectDescriptor(VokTarnCreateBinaryOperator("+", sDescriptor, sDescriptor, sDescriptor, addition));
  return 1;
}
