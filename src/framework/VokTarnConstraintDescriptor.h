#pragma once

#include <span>

#include "framework/VokTarnObjectDescriptor.h"

class VokTarnConstraint;

// The number of a value in its network.
using VokTarnValueId = VokULong;
// Stands for an argument that a constraint does without.
inline constexpr VokTarnValueId vokNoValue = 0xFFFFFFFFU;

// How an operator stands to its constraint. Some constraints treat the forms differently: the value of a relation is
// its right operand in the text, and what divides is never 0 although what multiplies may be.
enum class VokTarnForm : int {
  Plain = 0,      // operands and result in the order of the text
  Symmetric = 1,  // operands exchanged
  Inverse = 2     // the operator's result is an operand of the constraint
};

// The published description of a constraint class: how its objects are made.
class VOKTARN_EXPORT VokTarnConstraintDescriptor : public VokTarnObjectDescriptor {
 public:
  static const char* const sIdent;

  // Makes a constraint over values of a network; null when memory is short.
  using Factory = VokTarnConstraint* (*)(std::span<const VokTarnValueId> arguments, VokTarnForm form,
                                         std::span<const VokLong> constants);

  // What the constraint asks of its arguments.
  enum class Operands {
    Typed,  // it hands them to each other's operations, so each must have the type that the operator names
    Any     // it sees of each only what every type of the abstract kind offers: operands of all types mix
  };

  static constexpr unsigned sAnyNumber = 0;

  // `arguments` is their number, or sAnyNumber.
  VokTarnConstraintDescriptor(const VokString& name, unsigned arguments, Operands operands, Factory factory);

  const char* CastableID() const override;
  int IsDerivedFrom(const char* ident) const override;

  VokTarnConstraint* Create(std::span<const VokTarnValueId> arguments, VokTarnForm form,
                            std::span<const VokLong> constants = {}) const;
  bool TakesAnyOperands() const noexcept { return fOperands == Operands::Any; }
  // Whether constants, one for each argument, say what is to be added to it.
  bool TakesShifts() const noexcept { return fTakesShifts; }
  void SetTakesShifts() noexcept { fTakesShifts = true; }

 private:
  Factory fFactory;
  Operands fOperands;
  bool fTakesShifts = false;
};
