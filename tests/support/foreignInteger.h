// An integer type that no library knows: a std::set with the operations that every type must supply, and the
// defaults of VokTarnInteger for everything else. It stands for the types of other modules.
#pragma once

#include <iterator>
#include <ostream>
#include <set>
#include <utility>

#include "framework/VokTarnInteger.h"

namespace support {

class ForeignInteger : public VokTarnInteger {
 public:
  static constexpr VokLong sMax = 2147483645;

  ForeignInteger() = default;  // Any
  explicit ForeignInteger(std::set<VokLong> values) : fValues(std::move(values)), fAny(false) {}

  const std::set<VokLong>& GetValues() const { return fValues; }

  const char* CastableID() const override { return "ForeignInteger"; }
  void Write(Vokopstream&) const override {}
  void Read(Vokipstream&) override {}
  const VokTarnObjectDescriptor* GetDescriptor() const override { return nullptr; }
  std::ostream& PrintOn(std::ostream& os) const override { return os << "foreign"; }
  void InputValue(std::istream&) override {}
  int Assign(const VokTarnAny&) override { return SetNilValue(); }
  int SetNilValue() override { return Become({}, false); }
  int SetUndefinedValue() override { return Become({}, true); }
  int IsNil() const override { return !fAny && fValues.empty(); }
  int IsUndefined() const override { return fAny; }
  int GetCardinality() const override { return fAny ? -1 : static_cast<int>(fValues.size()); }
  int Bisect(VokTarnObject&, ValueSelection) override { return 0; }
  int SetExactValue(VokLong v) override { return Become({v}, false); }
  int SetLowerBound(VokLong) override { return SetUndefinedValue(); }  // widens: no narrowing may use it
  int SetUpperBound(VokLong) override { return SetUndefinedValue(); }
  int AddExactValue(VokLong v) override { return fAny || fValues.insert(v).second; }
  int RemoveExactValue(VokLong v) override { return static_cast<int>(fValues.erase(v)); }
  VokLong GetLowerBound() const override { return fAny ? -sMax : fValues.empty() ? sMax : *fValues.begin(); }
  VokLong GetUpperBound() const override { return fAny ? sMax : fValues.empty() ? -sMax : *fValues.rbegin(); }
  VokLong GetNextExactValue(VokLong v) const override {
    const auto next = fValues.upper_bound(v);
    return next != fValues.end() ? *next : fAny || fValues.count(v) != 0 ? v + 1 : v;
  }
  VokLong GetPrevExactValue(VokLong v) const override {
    const auto next = fValues.lower_bound(v);
    return next != fValues.begin() ? *std::prev(next) : fAny || fValues.count(v) != 0 ? v - 1 : v;
  }

 private:
  int Become(std::set<VokLong> values, bool any) {
    fValues = std::move(values);
    fAny = any;
    return 1;
  }

  std::set<VokLong> fValues;
  bool fAny = true;
};

}  // namespace support
