#include "narrowing/dispatchFrame.h"

#include <optional>

namespace VokFenNarrowing {

namespace {

// A given operand in enumerated form: itself where it is a set, else a temporary set made of it.
class EnumeratedOperand {
 public:
  explicit EnumeratedOperand(const VokTarnAny& operand) : fSet(VokFenEnumInteger::CastToEnumInteger(&operand)) {
    if (fSet == nullptr) {
      fTemporary.emplace().Assign(operand);
      fSet = &*fTemporary;
    }
  }
  EnumeratedOperand(const EnumeratedOperand&) = delete;
  EnumeratedOperand& operator=(const EnumeratedOperand&) = delete;

  const VokFenEnumInteger& Get() const { return *fSet; }
  bool IsNil() const { return fSet->IsNil() != 0; }

 private:
  std::optional<VokFenEnumInteger> fTemporary;
  const VokFenEnumInteger* fSet;
};

VokFenSingleInteger* CastToSingle(VokTarnAny& value) {
  return value.IsDerivedFrom(VokFenSingleInteger::sIdent) != 0 ? static_cast<VokFenSingleInteger*>(&value) : nullptr;
}

}  // namespace

int MakeNil(VokFenEnumInteger& set) {
  if (set.GetCount() == 0 && set.IsUndefined() == 0) {
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
  if (x.IsNil() != 0) {
    return 0;
  }
  const EnumeratedOperand given(y);
  return given.IsNil() ? MakeNil(x) : (x.*typed)(given.Get());
}

int NarrowRight(const VokFenEnumInteger& x, VokTarnAny& y, InverseOnSet onSet, InverseOnSingle onSingle) {
  if (y.IsNil() != 0) {
    return 0;
  }
  if (x.IsNil() != 0) {
    y.SetNilValue();
    return 1;
  }
  if (VokFenEnumInteger* const set = VokFenEnumInteger::CastToEnumInteger(&y)) {
    return (x.*onSet)(*set);
  }
  VokFenSingleInteger* const single = CastToSingle(y);
  return single == nullptr || x.IsUndefined() != 0 ? 0 : (x.*onSingle)(*single);
}

int NarrowResult(VokFenEnumInteger& z, const VokTarnAny& a, const VokTarnAny& b, GivenTwo typed) {
  if (z.IsNil() != 0) {
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
  if (given.IsNil() || z.IsNil() != 0) {
    return set != nullptr ? MakeNil(*set) : MakeNil(*single);
  }
  if (z.IsUndefined() != 0) {
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
  if (given.IsNil() || z.IsNil() != 0) {
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
