#pragma once

#include <array>
#include <span>
#include <vector>

#include "framework/VokTarnOperators.h"

// The published description of an operator over given types: which constraint it stands for, and which
// operand and result goes to which of the constraint's arguments.
//
//   kind                    a op b is r    constraint arguments
//   Unary                   op a           C(a, r)
//   InverseUnary            op a           C(r, a)
//   Binary                  a op b         C(a, b, r)
//   SymmetricBinary         a op b         C(b, a, r)
//   FirstInverseBinary      a op b         C(r, b, a)
//   SecondInverseBinary     a op b         C(b, r, a)
//   SecondInverseSymmetric  a op b         C(a, r, b)
//   List                    op (a1, .., an)  C(a1, .., an), no result
//   ListFunction            op ((a1, .., an), b)  C(r, b, a1, .., an); without b where there is none
//   Table                   op ((a1, .., an), constants)  C(a1, .., an) with constants, no result
class VOKTARN_EXPORT VokTarnOperatorDescriptor : public VokTarnObjectDescriptor {
 public:
  using Kind = VokTarnOperatorKind;

  static const char* const sIdent;

  // `right`, `result` and `working` are null where the kind has none. `working` is the type in which the
  // constraint works: of the operands and the result, the one that stands as the constraint's last
  // argument must have it.
  VokTarnOperatorDescriptor(const VokString& name, Kind kind, VokTarnType left, VokTarnType right, VokTarnType result,
                            VokTarnType working, VokTarnConstraintType constraint);

  const char* CastableID() const override;
  int IsDerivedFrom(const char* ident) const override;
  // "name (left, right) -> result".
  std::ostream& PrintOn(std::ostream& os) const override;

  Kind GetKind() const noexcept { return fKind; }
  // The name of the factory's kind, such as "binary" or "first inverse binary".
  const char* GetKindName() const noexcept;
  // Whether it takes a list.
  bool TakesList() const noexcept { return fKind >= Kind::List; }
  // 1 or 2; 0 where it takes a list.
  unsigned GetOperandCount() const noexcept { return TakesList() ? 0 : fRight == nullptr ? 1 : 2; }
  // Type of operand i; type 0 is that of every member of a list, type 1 that of the operand beside it (null: none).
  VokTarnType GetOperandType(unsigned i) const noexcept { return i == 0 ? fLeft : fRight; }
  VokTarnType GetResultType() const noexcept { return fResult; }
  VokTarnType GetWorkingType() const noexcept { return fWorking; }
  VokTarnConstraintType GetConstraint() const noexcept { return fConstraint; }
  // An operator named "(type name)" converts a value to another type: its two sides are equal.
  bool IsCast() const noexcept;

  // Puts operands and result into the order of the constraint's arguments. `result` may be vokNoValue. The operand
  // beside a list comes first.
  std::vector<VokTarnValueId> ArrangeArguments(std::span<const VokTarnValueId> operands, VokTarnValueId result) const;
  VokTarnForm GetForm() const noexcept;

 private:
  Kind fKind;
  VokTarnType fLeft;
  VokTarnType fRight;
  VokTarnType fResult;
  VokTarnType fWorking;
  VokTarnConstraintType fConstraint;
};
