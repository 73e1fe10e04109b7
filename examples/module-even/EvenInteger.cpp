// A module with a domain type of its own, "even int": a set of even numbers, with an addition that narrows it.
// Everything else is what the framework supplies to every integer type.
#include <cstdint>
#include <istream>
#include <iterator>
#include <new>
#include <ostream>
#include <set>
#include <string>

#include "framework/VokStreamableClass.h"
#include "framework/VokTarnInteger.h"
#include "framework/VokTarnModuleManager.h"
#include "framework/VokTarnOperators.h"
#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"

namespace {

constexpr VokLong kLimit = 2147483645;  // the integer range ends here and at its negative
constexpr char kIdent[] = "EvenInteger";
VokTarnObjectDescriptor* sDescriptor = nullptr;

// The domain of a variable that holds even numbers, value by value.
//
// States  Any: fIsUndefined. Nil: no value and not fIsUndefined. Otherwise the values, all of them even.
// Errors  Throws nothing. Without memory the set becomes Nil and the failure is counted, which keeps the search from
//         taking Nil for an answer.
class EvenInteger final : public VokTarnInteger {
 public:
  // ---- Identity and records
  const char* CastableID() const override { return "EvenInteger"; }
  int IsDerivedFrom(const char* ident) const override {
    return ident == kIdent ? 1 : VokTarnInteger::IsDerivedFrom(ident);
  }
  const VokTarnObjectDescriptor* GetDescriptor() const override { return sDescriptor; }

  // The number of values, -1 for Any, then the values.
  void Write(Vokopstream& os) const override {
    os << GetCardinality();
    for (const VokLong v : fValues) {
      os << static_cast<long>(v);
    }
  }

  // The bytes may come from anywhere: values that no set can hold fail the stream.
  void Read(Vokipstream& is) override {
    int count = 0;
    is >> count;
    Become(count == -1);
    for (; count > 0 && !is.IsFailed(); --count) {
      long v = 0;
      is >> v;
      if (v % 2 != 0 || v <= -kLimit || v >= kLimit || AddExactValue(static_cast<VokLong>(v)) == 0) {
        is.SetFailed();
      }
    }
    if (count < -1) {
      is.SetFailed();
    }
  }

  // ---- Text
  std::ostream& PrintOn(std::ostream& os) const override {
    if (fIsUndefined) {
      return os << "Any";
    }
    os << "even {";
    const char* separator = "";
    for (const VokLong v : fValues) {
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
    Become(false);
    if (!(is >> up >> to >> last) || up != "up" || to != "to" || last < 0 || last > 1000) {
      is.setstate(std::ios::failbit);
      return;
    }
    for (VokLong v = 0; v <= last; v += 2) {
      AddExactValue(v);
    }
  }

  // ---- State
  int Assign(const VokTarnAny& a) override {
    if (a.IsDerivedFrom(kIdent) == 0) {
      return SetNilValue();
    }
    return Guard([&] {
      const auto& other = static_cast<const EvenInteger&>(a);
      fValues = other.fValues;
      fIsUndefined = other.fIsUndefined;
      return 1;
    });
  }
  int SetNilValue() override { return Become(false); }
  int SetUndefinedValue() override { return Become(true); }
  int IsNil() const override { return !fIsUndefined && fValues.empty(); }
  int IsUndefined() const override { return fIsUndefined; }
  int GetCardinality() const override { return fIsUndefined ? -1 : static_cast<int>(fValues.size()); }

  int Bisect(VokTarnObject& other, ValueSelection selection) override {
    auto& part = static_cast<EvenInteger&>(other);
    part.SetNilValue();
    if (fValues.size() < 2) {
      return 0;
    }
    const bool isLower = selection == LowerHalf || selection == Smallest;
    const bool isHalf = selection == LowerHalf || selection == UpperHalf;
    for (std::size_t moved = isHalf ? fValues.size() / 2 : 1; moved > 0; --moved) {
      part.fValues.insert(fValues.extract(isLower ? fValues.begin() : std::prev(fValues.end())));
    }
    return 1;
  }

  // ---- Bounds and single values
  int SetExactValue(VokLong v) override {
    Become(false);
    return v % 2 == 0 ? AddExactValue(v) : 1;
  }
  int SetLowerBound(VokLong v) override {
    fValues.erase(fValues.begin(), fValues.lower_bound(v));
    return 1;
  }
  int SetUpperBound(VokLong v) override {
    fValues.erase(fValues.upper_bound(v), fValues.end());
    return 1;
  }
  int AddExactValue(VokLong v) override {
    if (fIsUndefined || v % 2 != 0) {
      return 0;
    }
    return Guard([&] { return static_cast<int>(fValues.insert(v).second); });
  }
  int RemoveExactValue(VokLong v) override { return static_cast<int>(fValues.erase(v)); }
  VokLong GetLowerBound() const override {
    return fIsUndefined ? -kLimit : fValues.empty() ? kLimit : *fValues.begin();
  }
  VokLong GetUpperBound() const override {
    return fIsUndefined ? kLimit : fValues.empty() ? -kLimit : *fValues.rbegin();
  }
  VokLong GetNextExactValue(VokLong v) const override {
    const auto next = fValues.upper_bound(v);
    return next != fValues.end() ? *next : IsPossible(v) ? v + 1 : v;
  }
  VokLong GetPrevExactValue(VokLong v) const override {
    const auto next = fValues.lower_bound(v);
    return next != fValues.begin() ? *std::prev(next) : IsPossible(v) ? v - 1 : v;
  }

  // ---- Narrowing: *this* = a + b. Only rows over "even int" alone lead here, so the operands are of this class.
  int CalcSumValue(const VokTarnNumber& a, const VokTarnNumber& b) override {
    return NarrowToCombinations(static_cast<const EvenInteger&>(a), static_cast<const EvenInteger&>(b), 1);
  }
  int CalcFirstInverseSumValue(VokTarnNumber& a, const VokTarnNumber& b) const override {
    return static_cast<EvenInteger&>(a).NarrowToCombinations(*this, static_cast<const EvenInteger&>(b), -1);
  }

 private:
  int Become(bool isUndefined) {
    fValues.clear();
    fIsUndefined = isUndefined;
    return 1;
  }

  // Makes a change that may run out of memory.
  template <class Change>
  int Guard(const Change& change) {
    try {
      return change();
    } catch (const std::bad_alloc&) {
      VokTarnBase::NoteAllocationFailure();
      return SetNilValue();
    }
  }

  // Narrows to the values x + sign * y. Cost: every pair of values; where those are too many, nothing is narrowed.
  int NarrowToCombinations(const EvenInteger& x, const EvenInteger& y, int sign) {
    constexpr std::size_t sMostPairs = 1U << 20;
    if (x.fIsUndefined || y.fIsUndefined || x.fValues.size() * y.fValues.size() > sMostPairs) {
      return 0;
    }
    return Guard([&] {
      EvenInteger combinations;
      combinations.fIsUndefined = false;
      for (const VokLong v : x.fValues) {
        for (const VokLong w : y.fValues) {
          const std::int64_t value = std::int64_t{v} + std::int64_t{sign} * w;
          if (-kLimit < value && value < kLimit) {
            combinations.fValues.insert(static_cast<VokLong>(value));
          }
        }
      }
      return CalcEqualValue(combinations);
    });
  }

  std::set<VokLong> fValues;
  bool fIsUndefined = true;
};

// Lets the streams rebuild saved values.
const VokStreamableClass rEvenInteger(
    "EvenInteger",
    [](VokStreamable* existing) -> VokStreamable* { return existing != nullptr ? existing : new EvenInteger; }, 1);

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
  const VokTarnObjectDescriptor* addition = abstractTypes->FindDescriptor("VokTarnAdditionConstraint");
  if (addition == nullptr) {
    return 0;
  }
  module->AddLoadedModule(abstractTypes);
  sDescriptor = new Descriptor;
  module->AddObjectDescriptor(sDescriptor);
  return module->AddObjectDescriptor(VokTarnCreateBinaryOperator(
      "+", sDescriptor, sDescriptor, sDescriptor, static_cast<const VokTarnConstraintDescriptor*>(addition)));
}
