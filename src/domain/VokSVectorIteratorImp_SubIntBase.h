#pragma once

#include "domain/VokSVectorImp_SubIntBase.h"

// Walks a range of a vector, which must outlive the iterator and keep its size meanwhile.
class VOKTARN_EXPORT VokSVectorIteratorImp_SubIntBase {
 public:
  explicit VokSVectorIteratorImp_SubIntBase(const VokSVectorImp_SubIntBase& v);
  VokSVectorIteratorImp_SubIntBase(const VokSVectorImp_SubIntBase& v, unsigned from, unsigned to);

  void Restart(unsigned from, unsigned to);
  void Restart();
  // Non-zero while there is a current element.
  operator int() const;
  // Requires: there is a current element.
  const SubIntBase& Current() const;
  // Advances and gives the element reached. Past the end it gives the last element looked at.
  const SubIntBase& operator++();
  const SubIntBase& operator++(int);

 private:
  const VokSVectorImp_SubIntBase& fVector;
  unsigned fCurrent;
  unsigned fFrom;
  unsigned fTo;
};
