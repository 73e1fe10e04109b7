#pragma once

#include "framework/VokTarnAny.h"

// The abstract truth value: false (0), true (1), both still possible (Any) or neither (Nil).
class VOKTARN_EXPORT VokTarnBoolean : public VokTarnAny {
 public:
  static const char* const sIdent;
  static VokTarnObjectDescriptor* sDescriptor;  // published by VokFenAbstractTypes; null before that

  using VokTarnAny::VokTarnAny;

  int IsDerivedFrom(const char* ident) const override;

  // Narrows to `truth` (0 or 1): Nil when the other one was already certain. 1 when changed.
  virtual int CalcTruthValue(int truth) = 0;
  // 1 when `truth` (0 or 1) is still possible.
  virtual int IsPossible(int truth) const = 0;
};
