#include "narrowing/dispatchFrame.h"

#include <optional>
#include <type_traits>
#include <typeinfo>

namespace VokFenNarrowing {

namespace {

// The operand as a single, or null. Requires: it is not enumerated.
template <class Value>
auto CastToSingle(Value& value) {
  using Single = std::conditional_t<std::is_const_v<Value>, const VokFenSingleInteger, VokFenSingleInteger>;
  const bool isSingle =
      typeid(value) == typeid(VokFenSingleInteger) || value.IsDerivedFrom(VokFenSingleInteger::sIdent) != 0;
  return isSingle ? static_cast<Single*>(&value) : nullptr;
}

// A given operand in enumerated form: itself where it is a set, else a set made of its value. What is neither is Nil.
class EnumeratedOperand {
 public:
  explicit EnumeratedOperand(const VokTarnAny& operand) : fSet(VokFenEnumInteger::CastToEnumInteger(&operand)) {
    if (fSet == nullptr) {
      const VokTarnAny* const address = &operand;
      const VokFenSingleInteger* const single = address != nullptr ? CastToSingle(operand) : nullptr;
      fSet =
          &fOfSingle.emplace(single != nullptr ? *single : VokFenSingleInteger(VokFenSingleInteger::sNC_INT_NIL)).Get();
    }
  }
  EnumeratedOperand(const EnumeratedOperand&) = delete;
  EnumeratedOperand& operator=(const EnumeratedOperand&) = delete;

  const VokFenEnumInteger& Get() const { return *fSet; }
  bool IsNil() const { return fSet->ReadsNil(); }

 private:
  std::optional<VokFenEnumInteger::OfSingle> fOfSingle;
  const VokFenEnumInteger* fSet;
};

}  // namespace

int MakeNil(VokFenEnumInteger& set) {
  if (set.GetMembers().empty() && !set.ReadsAny()) {
    return 0;
  }
  set.SetNilValue();
  return 1;
}

int MakeNil(VokFenSingleInteger& single) {
  if (single.IsNil() != 0) {
    return 0;
  }
  single.SetNilValue();
  return 1;
}

int NarrowLeft(VokFenEnumInteger& x, const VokTarnAny& y, GivenOne typed) {
  if (x.ReadsNil()) {
    return 0;
  }
  const EnumeratedOperand given(y);
  return given.IsNil() ? MakeNil(x) : (x.*typed)(given.Get());
}

int NarrowRight(const VokFenEnumInteger& x, VokTarnAny& y, InverseOnSet onSet, InverseOnSingle onSingle) {
  if (y.IsNil() != 0) {
    return 0;
  }
  if (x.ReadsNil()) {
    y.SetNilValue();
    return 1;
  }
  if (VokFenEnumInteger* const set = VokFenEnumInteger::CastToEnumInteger(&y)) {
    return (x.*onSet)(*set);
  }
  VokFenSingleInteger* const single = CastToSingle(y);
  return single == nullptr || x.ReadsAny() ? 0 : (x.*onSingle)(*single);
}

int NarrowResult(VokFenEnumInteger& z, const VokTarnAny& a, const VokTarnAny& b, GivenTwo typed) {
  if (z.ReadsNil()) {
    return 0;
  }
  const EnumeratedOperand first(a);
  const EnumeratedOperand second(b);
  return first.IsNil() || second.IsNil() ? MakeNil(z) : (z.*typed)(first.Get(), second.Get());
}

int NarrowFirst(const VokFenEnumInteger& z, VokTarnAny& a, const VokTarnAny& b, FirstInverseOnSet onSet,
                FirstInverseOnSingle onSingle) {
  VokFenEnumInteger* const set = VokFenEnumInteger::CastToEnumInteger(&a);
  VokFenSingleInteger* const single = set == nullptr ? CastToSingle(a) : nullptr;
  if ((set == nullptr && single == nullptr) || a.IsNil() != 0) {
    return 0;
  }
  const EnumeratedOperand given(b);
  if (given.IsNil() || z.ReadsNil()) {
    return set != nullptr ? MakeNil(*set) : MakeNil(*single);
  }
  if (z.ReadsAny()) {
    return 0;
  }
  return set != nullptr ? (z.*onSet)(*set, given.Get()) : (z.*onSingle)(*single, given.Get());
}

int NarrowSecond(const VokFenEnumInteger& z, const VokTarnAny& a, VokTarnAny& b, SecondInverseOnSet onSet) {
  VokFenEnumInteger* const set = VokFenEnumInteger::CastToEnumInteger(&b);
  VokFenSingleInteger* const single = set == nullptr ? CastToSingle(b) : nullptr;
  if ((set == nullptr && single == nullptr) || b.IsNil() != 0) {
    return 0;
  }
  const EnumeratedOperand given(a);
  if (given.IsNil() || z.ReadsNil()) {
    return set != nullptr ? MakeNil(*set) : MakeNil(*single);
  }
  if (set != nullptr) {
    return (z.*onSet)(given.Get(), *set);
  }
  VokFenEnumInteger narrowed(*single, 0);
  (z.*onSet)(given.Get(), narrowed);
  return narrowed.IntersectInverse(*single);
}

}  // namespace VokFenNarrowing
