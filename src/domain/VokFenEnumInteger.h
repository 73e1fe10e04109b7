#pragma once

#include <algorithm>
#include <functional>
#include <span>

#include "domain/VokSVectorImp_SubIntBase.h"
#include "framework/VokTarnInteger.h"
#include "framework/VokTarnObjectDescriptor.h"
#include "numbers/VokFenIntervalInteger.h"
#include "numbers/VokFenSingleInteger.h"

// The domain of an integer variable, listed value by value. Type name "enum int".
//
// States     Nil: no value is possible. Any (Undefined): nothing is known yet. Defined: 1 to sMAX_CARD
//            members.
// Invariant  fValues ascends strictly. Only while it is empty does fEmptyMeansAny count: 1 is Any, 0 is
//            Nil. It is kept meanwhile and decides again when the last member goes.
// Ownership  Holds its vector by value; operands are borrowed for the call; temporaries stay on the stack.
// Cost       n members: search O(log n), insertion and removal O(n), set algebra O(n) in blocks of members. A sum,
//            product, remainder or power stands for every pair of members, at most sMAX_CARD results, but seldom forms
//            all of them: see the files of the operations. Order relations cut in O(log n).
// Errors     Throws nothing, prints nothing: an impossible set is Nil, one too large to list is Any.
// Narrowing  The generic entries (on VokTarnAny, VokTarnScalar, VokTarnNumber) find out what the operands
//            are and hand over to the typed routines. Every operand of an operation may be the same object.
class VOKTARN_EXPORT VokFenEnumInteger : public VokTarnInteger {
 public:
  class Descriptor;
  class KernelChoice;
  using Predicate = VokSVectorImp_SubIntBase::Predicate;

  static const char* const sIdent;
  static const char* const CastableIdent;
  static VokTarnObjectDescriptor* sDescriptor;  // null until MakeDescriptor
  static VokULong sMAX_CARD;                    // 0 until InitEnumIntegers

  // ---- Construction
  VokFenEnumInteger() noexcept;  // Any
  explicit VokFenEnumInteger(VokStreamableInit init) noexcept;
  // {s}; Any and Nil carry over. The second argument is not used.
  VokFenEnumInteger(const VokFenSingleInteger& s, int) noexcept;
  // {v}, special values included; becomes Any again when v is removed. The second argument is not used.
  VokFenEnumInteger(const SubIntBase& v, int) noexcept;
  // From a 32-bit count n followed by n 32-bit values; null gives Nil.
  explicit VokFenEnumInteger(const void* list) noexcept;
  VokFenEnumInteger(const VokFenEnumInteger& other) noexcept;
  VokFenEnumInteger& operator=(const VokFenEnumInteger& other) noexcept;
  // A departure from the constructor, kept: 7 gives Any, Any gives the set of the special value itself,
  // Nil gives Nil.
  VokFenEnumInteger& operator=(const VokFenSingleInteger& s) noexcept;
  ~VokFenEnumInteger() override;
  // The set of a single as an operand that is only read: takes no memory.
  class OfSingle;

  static VokTarnObjectDescriptor* MakeDescriptor();

  // ---- Identity, streams, text
  const char* CastableID() const override;
  void Write(Vokopstream& os) const override;
  void Read(Vokipstream& is) override;
  int IsDerivedFrom(const char* ident) const override;
  const VokTarnObjectDescriptor* GetDescriptor() const override;
  std::ostream& PrintOn(std::ostream& os) const override;
  void InputValue(std::istream& is) override;

  static Vokipstream& readRef(Vokipstream& is, VokFenEnumInteger& value);
  static Vokipstream& readPtr(Vokipstream& is, VokFenEnumInteger*& value);
  static Vokopstream& writeRef(Vokopstream& os, const VokFenEnumInteger& value);
  static Vokopstream& writePtr(Vokopstream& os, const VokFenEnumInteger* value);

  // `value` as an enumerated set, or null when it is null or of another type.
  static const VokFenEnumInteger* CastToEnumInteger(const VokTarnAny* value);
  static VokFenEnumInteger* CastToEnumInteger(VokTarnAny* value);

  // ---- State
  int SetNilValue() override;
  int SetUndefinedValue() override;
  int IsNil() const override;
  int IsUndefined() const override;
  // Makes the set Nil, clears the flag and returns 1 when the numbers library has raised its error flag.
  int CheckErrorStatus();
  void CheckValue();

  // ---- Members
  unsigned GetCount() const;
  VokLong GetValue(unsigned i) const;  // the i-th smallest; not checked
  int Contains(VokLong v) const;       // 0 on Any
  int SimpleInsert(VokLong v);         // 0 only when memory is short
  // 1 when v is represented afterwards. A set that is full already turns Any whatever v is, and returns 0;
  // Any takes nothing and returns 0. When memory is short the set turns Nil and 1 is returned.
  int Insert(VokLong v);
  void Minus();  // replaces every member by its negative

  int SetExactValue(VokLong v) override;
  // Interval semantics, kept: the set becomes every value from v to its greatest member (from its smallest member to
  // v), holes filled; {v} when Nil; Any when that is too wide or lies wholly on the other side of v, but {v} when v is
  // next to it or so far away that their distance wraps at 32 bits: from {MIN}, SetLowerBound(MAX) makes {MAX}.
  int SetLowerBound(VokLong v) override;
  int SetUpperBound(VokLong v) override;
  int AddExactValue(VokLong v) override;
  int RemoveExactValue(VokLong v) override;
  VokLong GetLowerBound() const override;
  VokLong GetUpperBound() const override;
  VokLong GetNextExactValue(VokLong v) const override;
  VokLong GetPrevExactValue(VokLong v) const override;

  // ---- The members in place, for code that goes through many of them
  // All members in ascending order; they stand until the set changes.
  std::span<const VokLong> GetMembers() const noexcept { return {fValues.GetNumbers(), fValues.GetSize()}; }
  // IsNil and IsUndefined without a call.
  bool ReadsNil() const noexcept { return fValues.GetSize() == 0 && fEmptyMeansAny == 0; }
  bool ReadsAny() const noexcept { return fValues.GetSize() == 0 && fEmptyMeansAny == 1; }
  // Holds these numbers, at least one, ascending, which may be some of its members. When memory is short it becomes
  // Nil.
  void Fill(std::span<const VokLong> numbers) noexcept {
    const bool isOwn = fValues.GetSize() != 0 && !std::less<>()(numbers.data(), fValues.GetNumbers()) &&
                       std::less<>()(numbers.data(), fValues.GetNumbers() + fValues.GetSize());
    if (isOwn) {
      std::copy(numbers.begin(), numbers.end(), fValues.GetNumbers());
      fValues.Truncate(static_cast<unsigned>(numbers.size()));
    } else {
      fValues.AssignNumbers(numbers.data(), static_cast<unsigned>(numbers.size()));
    }
    fEmptyMeansAny = 0;
  }
  // Keeps the members that keep(value) accepts. The status; a set that loses every member becomes Nil.
  template <class Keep>
  int KeepMembers(Keep keep);
  // The same with a part of the members that has been picked out elsewhere.
  int ReplaceMembers(std::span<const VokLong> kept) noexcept;
  // Intersection with the set of the values v + shift, Nil when there are none. They ascend strictly, stay within 32
  // bits and may be the set's own. A set that is Any takes the flag with them.
  int IntersectValues(std::span<const VokLong> values, VokLong shift = 0, int emptyMeansAny = 0);

  // ---- Set algebra
  int Intersect(const VokFenEnumInteger& o);
  int Intersect(const VokFenSingleInteger& s);
  int Intersect(const VokFenIntervalInteger& iv);
  // The members of this and o (of this and the union of o1 and o2) that satisfy pred.
  int Intersect(const VokFenEnumInteger& o, Predicate pred, void* ctx);
  int Intersect(const VokFenEnumInteger& o1, const VokFenEnumInteger& o2, Predicate pred, void* ctx);
  int IntersectInverse(VokFenSingleInteger& s) const;
  int IntersectInverse(VokFenIntervalInteger& iv) const;
  int Unite(const VokFenEnumInteger& o);
  int Unite(const VokFenSingleInteger& s);

  // ---- Generic domain operations
  int Assign(const VokTarnAny& a) override;
  int IsIntersected(const VokTarnAny& a) const override;
  int Intersect(const VokTarnAny& a) override;
  int Unite(const VokTarnAny& a) override;
  int GetCardinality() const override;
  int Bisect(VokTarnObject& other, ValueSelection selection) override;
  int CalcMinValue() override;
  int CalcMaxValue() override;
  int CalcZeroValue() override;
  int CalcOneValue() override;

  // ---- Equality and order
  int CalcEqualValue(const VokTarnAny& y) override;
  int CalcInverseEqualValue(VokTarnAny& y) const override;
  int CalcLessOrEqualValue(const VokTarnAny& y) override;
  int CalcLessOrEqualValue(const VokFenEnumInteger& y);
  int CalcInverseLessOrEqualValue(VokTarnAny& y) const override;
  int CalcInverseLessOrEqualValue(VokFenEnumInteger& y) const;
  int CalcInverseLessOrEqualValue(VokFenSingleInteger& y) const;
  int CalcNotLessAndUnequalValue(const VokTarnAny& y) override;
  int CalcNotLessAndUnequalValue(const VokFenEnumInteger& y);
  int CalcInverseNotLessAndUnequalValue(VokTarnAny& y) const override;
  int CalcInverseNotLessAndUnequalValue(VokFenEnumInteger& y) const;
  int CalcInverseNotLessAndUnequalValue(VokFenSingleInteger& y) const;
  int CalcLessValue(const VokTarnScalar& y) override;
  int CalcLessValue(const VokFenEnumInteger& y);
  int CalcInverseLessValue(VokTarnScalar& y) const override;
  int CalcInverseLessValue(VokFenEnumInteger& y) const;
  int CalcInverseLessValue(VokFenSingleInteger& y) const;
  int CalcNotLessValue(const VokTarnScalar& y) override;
  int CalcNotLessValue(const VokFenEnumInteger& y);
  int CalcInverseNotLessValue(VokTarnScalar& y) const override;
  int CalcInverseNotLessValue(VokFenEnumInteger& y) const;
  int CalcInverseNotLessValue(VokFenSingleInteger& y) const;

  // ---- Successor, minimum, maximum
  int CalcNextValue(const VokTarnScalar& x) override;
  int CalcNextValue(const VokFenEnumInteger& x);
  int CalcInverseNextValue(VokTarnScalar& x) const override;
  int CalcInverseNextValue(VokFenEnumInteger& x) const;
  int CalcInverseNextValue(VokFenSingleInteger& x) const;
  int CalcMinValue(const VokTarnAny& a, const VokTarnAny& b) override;
  int CalcMinValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b);
  int CalcFirstInverseMinValue(VokTarnAny& a, const VokTarnAny& b) const override;
  int CalcFirstInverseMinValue(VokFenEnumInteger& a, const VokFenEnumInteger& b) const;
  int CalcFirstInverseMinValue(VokFenSingleInteger& a, const VokFenEnumInteger& b) const;
  int CalcMaxValue(const VokTarnAny& a, const VokTarnAny& b) override;
  int CalcMaxValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b);
  int CalcFirstInverseMaxValue(VokTarnAny& a, const VokTarnAny& b) const override;
  int CalcFirstInverseMaxValue(VokFenEnumInteger& a, const VokFenEnumInteger& b) const;
  int CalcFirstInverseMaxValue(VokFenSingleInteger& a, const VokFenEnumInteger& b) const;

  // ---- Negation, absolute value, sign
  int CalcAbsoluteValue(const VokTarnNumber& a) override;
  int CalcAbsoluteValue(const VokFenEnumInteger& a);
  int CalcInverseAbsoluteValue(VokTarnNumber& x) const override;
  int CalcInverseAbsoluteValue(VokFenEnumInteger& x) const;
  int CalcInverseAbsoluteValue(VokFenSingleInteger& x) const;
  int CalcNegativeValue(const VokTarnNumber& a) override;
  int CalcNegativeValue(const VokFenEnumInteger& a);
  int CalcInverseNegativeValue(VokTarnNumber& x) const override;
  int CalcInverseNegativeValue(VokFenEnumInteger& x) const;
  int CalcInverseNegativeValue(VokFenSingleInteger& x) const;
  int CalcSignumValue(VokTarnInteger& s) const override;
  int CalcInverseSignumValue(const VokTarnInteger& s) override;

  // ---- Sum, product, remainder, power
  int CalcSumValue(const VokTarnNumber& a, const VokTarnNumber& b) override;
  int CalcSumValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b);
  int CalcFirstInverseSumValue(VokTarnNumber& x, const VokTarnNumber& y) const override;
  int CalcFirstInverseSumValue(VokFenEnumInteger& x, const VokFenEnumInteger& y) const;
  int CalcFirstInverseSumValue(VokFenSingleInteger& x, const VokFenEnumInteger& y) const;
  int CalcProdValue(const VokTarnNumber& a, const VokTarnNumber& b) override;
  int CalcProdValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b);
  int CalcFirstInverseProdValue(VokTarnNumber& x, const VokTarnNumber& y) const override;
  int CalcFirstInverseProdValue(VokFenEnumInteger& x, const VokFenEnumInteger& y) const;
  int CalcFirstInverseProdValue(VokFenSingleInteger& x, const VokFenEnumInteger& y) const;
  int CalcModValue(const VokTarnNumber& a, const VokTarnNumber& b) override;
  int CalcModValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b);
  int CalcFirstInverseModValue(VokTarnNumber& x, const VokTarnNumber& y) const override;
  int CalcFirstInverseModValue(VokFenEnumInteger& x, const VokFenEnumInteger& y) const;
  int CalcFirstInverseModValue(VokFenSingleInteger& x, const VokFenEnumInteger& y) const;
  int CalcSecondInverseModValue(const VokTarnNumber& a, VokTarnNumber& b) const override;
  int CalcSecondInverseModValue(const VokFenEnumInteger& a, VokFenEnumInteger& b) const;
  int CalcPowerValue(const VokTarnNumber& a, const VokTarnNumber& b) override;
  int CalcPowerValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b);
  int CalcFirstInversePowerValue(VokTarnNumber& x, const VokTarnNumber& y) const override;
  int CalcFirstInversePowerValue(VokFenEnumInteger& x, const VokFenEnumInteger& y) const;
  int CalcFirstInversePowerValue(VokFenSingleInteger& x, const VokFenEnumInteger& y) const;
  int CalcSecondInversePowerValue(const VokTarnNumber& a, VokTarnNumber& b) const override;
  int CalcSecondInversePowerValue(const VokFenEnumInteger& a, VokFenEnumInteger& b) const;

 private:
  explicit VokFenEnumInteger(SubIntBase* borrowed) noexcept;

  // Keeps the first `kept` members, the others having been overwritten.
  int KeepFirstMembers(unsigned kept) noexcept;

  VokSVectorImp_SubIntBase fValues;
  int fEmptyMeansAny;
};

class VokFenEnumInteger::OfSingle {
 public:
  explicit OfSingle(const VokFenSingleInteger& single) noexcept;
  OfSingle(const OfSingle&) = delete;
  OfSingle& operator=(const OfSingle&) = delete;
  ~OfSingle() { fSet.fValues.ReturnElement(); }

  const VokFenEnumInteger& Get() const noexcept { return fSet; }

 private:
  SubIntBase fElement;
  VokFenEnumInteger fSet;
};

template <class Keep>
int VokFenEnumInteger::KeepMembers(Keep keep) {
  VokLong* const members = fValues.GetNumbers();
  unsigned kept = 0;
  // Without a branch on the outcome: which members stay cannot be foretold.
  for (unsigned i = 0; i < fValues.GetSize(); ++i) {
    const VokLong v = members[i];
    members[kept] = v;
    kept += keep(v) ? 1U : 0U;
  }
  return KeepFirstMembers(kept);
}

inline int VokFenEnumInteger::ReplaceMembers(std::span<const VokLong> kept) noexcept {
  if (kept.size() != fValues.GetSize()) {
    std::copy(kept.begin(), kept.end(), fValues.GetNumbers());
  }
  return KeepFirstMembers(static_cast<unsigned>(kept.size()));
}

inline int VokFenEnumInteger::KeepFirstMembers(unsigned kept) noexcept {
  if (kept == fValues.GetSize()) {
    return 0;
  }
  fValues.Truncate(kept);
  fEmptyMeansAny = kept == 0 ? 0 : fEmptyMeansAny;
  return 1;
}

// Sets sMAX_CARD to 1024 and returns it.
VOKTARN_EXPORT VokULong InitEnumIntegers();
