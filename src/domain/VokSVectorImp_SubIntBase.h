#pragma once

#include "framework/VokLong.h"
#include "framework/VokTarnExport.h"
#include "numbers/SubIntBase.h"

// A growable array of element values, kept in ascending order by its insertion operations.
//
// Not found  Searches give a position, or Capacity + 1 (always above Size) when there is none: test the
//            result with `i < v.Size()`.
// Growth     By a fixed step (fDelta) or by a factor (fFactor); with neither the array cannot grow. It
//            never shrinks.
// Cost       Searches O(log n), insertion and removal O(n).
// Errors     Throws nothing. When memory is short an update returns 0 and changes nothing; a constructor
//            leaves an array without slots that is not valid.
// The order of the virtual operations and of the members is part of the binary interface.
class VOKTARN_EXPORT VokSVectorImp_SubIntBase {
 public:
  using Action = void (*)(SubIntBase&, void*);
  using Predicate = int (*)(const SubIntBase&, void*);

  VokSVectorImp_SubIntBase() noexcept;  // no slots, cannot grow
  // `initial` + 1 slots.
  VokSVectorImp_SubIntBase(unsigned initial, unsigned delta, int bitwise) noexcept;
  // A factor that is not a positive finite number counts as 1.
  VokSVectorImp_SubIntBase(unsigned initial, double factor, int bitwise) noexcept;
  VokSVectorImp_SubIntBase(const VokSVectorImp_SubIntBase& other) noexcept;
  VokSVectorImp_SubIntBase& operator=(const VokSVectorImp_SubIntBase& other) noexcept;

  virtual ~VokSVectorImp_SubIntBase();
  virtual int IsValid() const;
  virtual int IsAllocated() const;
  // Inserts x in order, behind its equals. The argument may be an element of this array.
  virtual int Add(const SubIntBase& x);
  // The same unless an equal element is present; 1 also then.
  virtual int AddUnique(const SubIntBase& x);
  // Inserts x at position i, whatever the order; slots between the end and i keep what they held.
  virtual int AddAt(const SubIntBase& x, unsigned i);
  virtual int Detach(const SubIntBase& x);
  // Removes up to n elements from position i on. 0 only when i is beyond the capacity.
  virtual int DetachAt(unsigned i, unsigned n);
  virtual int IsEmpty() const;
  virtual void Flush();
  // Some element equal to x; the first one equal to x.
  virtual unsigned Find(const SubIntBase& x) const;
  virtual unsigned ClusteredFind(const SubIntBase& x) const;
  // The greatest element <= x; the smallest element >= x. With `first`, the first of a run of equals.
  virtual unsigned FindLowerBound(const SubIntBase& x, int first) const;
  virtual unsigned FindUpperBound(const SubIntBase& x, int first) const;
  virtual unsigned Count() const;
  virtual unsigned Size() const;
  virtual unsigned Delta() const;
  // Ranges are half-open and not checked.
  virtual void ForEach(Action fn, void* ctx);
  virtual void ForEach(Action fn, void* ctx, unsigned from, unsigned to);
  virtual const SubIntBase* FirstThat(Predicate pred, void* ctx, unsigned from, unsigned to) const;
  virtual const SubIntBase* FirstThat(Predicate pred, void* ctx) const;
  virtual const SubIntBase* LastThat(Predicate pred, void* ctx, unsigned from, unsigned to) const;
  virtual const SubIntBase* LastThat(Predicate pred, void* ctx) const;

  // Element i; not checked.
  const SubIntBase& operator[](unsigned i) const noexcept { return fData[i]; }
  SubIntBase& operator[](unsigned i) noexcept { return fData[i]; }

  // The elements as plain numbers, without a call. They stand until the vector grows, is assigned to or ends.
  const VokLong* GetNumbers() const noexcept { return reinterpret_cast<const VokLong*>(fData); }
  VokLong* GetNumbers() noexcept { return reinterpret_cast<VokLong*>(fData); }
  unsigned GetSize() const noexcept { return fSize; }
  // Keeps the first n elements. Requires: n <= Size().
  void Truncate(unsigned n) noexcept { fSize = n; }
  // Replaces the elements by n numbers, which are not this vector's own; takes memory only where the slots do not
  // suffice. 0 when memory is short; the vector is empty then.
  int AssignNumbers(const VokLong* numbers, unsigned n) noexcept;

  // Stands for one element of the caller's until it is returned, without memory of its own. Requires: this vector has
  // no slots; meanwhile it is only read.
  void BorrowElement(SubIntBase& element) noexcept {
    fData = &element;
    fCapacity = fSize = 1;
  }
  void ReturnElement() noexcept {
    fData = nullptr;
    fCapacity = fSize = 0;
  }

  // Makes room for at least n elements. 1 when the array grew; 0 when it need not or cannot.
  int Resize(unsigned n) noexcept;
  // The slots to add when at least `need` more are wanted: a multiple of the step, or by the factor.
  unsigned NextDelta(unsigned need) const noexcept;

 private:
  SubIntBase* fData;
  unsigned fCapacity;
  unsigned fSize;
  unsigned fDelta;
  double fFactor;
  int fValid;
  int fBitwiseCopy;
};

static_assert(sizeof(SubIntBase) == sizeof(VokLong), "an array of elements is read as an array of numbers");
