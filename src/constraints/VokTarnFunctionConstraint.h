#pragma once

#include <cstdint>
#include <optional>

#include "framework/VokTarnConstraint.h"

// A function of one or two integers and its result, the last argument: r = f(a) or r = f(a, b).
//
// The arithmetic is strict: operands and result lie strictly between the ends of the integer range (which stand
// for everything beyond them), or the constraint does not hold. So no operation loses a solution by
// clamping.
class VokTarnFunctionConstraint : public VokTarnConstraint {
 public:
  using VokTarnConstraint::VokTarnConstraint;

  Priority GetPriority() const noexcept override { return GetArguments().size() == 2 ? Binary : Ternary; }
  bool IsApplicable(const VokTarnObjectEnvironment& environment) const override;
  bool IsSatisfied(const VokTarnObjectEnvironment& environment) const override;

 protected:
  // The number of operands.
  virtual unsigned GetOperandCount() const noexcept = 0;
  // The value for these operands (b is 0 for a function of one), if there is one; exact.
  virtual std::optional<std::int64_t> Compute(std::int64_t a, std::int64_t b) const = 0;
  // Whether the ends of the integer range are no operands and no results.
  virtual bool IsStrict() const noexcept { return true; }
};
