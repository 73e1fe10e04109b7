// One narrowing operation run on one case.
#pragma once

#include <array>

#include "support/operands.h"

namespace narrowing {

using support::Filter;
using support::Model;
using support::Operation;
using support::Values;

using Case = std::array<Model, 3>;

struct Outcome {
  int status;
  Case after;
};

inline Outcome RunCase(const Operation& op, const Case& c) {
  std::array<support::Operand, 3> operands = {support::Operand(c[0]), support::Operand(c[1]), support::Operand(c[2])};
  const int status = op.run(operands[0].Set(), operands[1].Get(), operands[2].Get());
  return {status, {operands[0].Read(), operands[1].Read(), operands[2].Read()}};
}

inline std::string Show(const Operation& op, const Case& c) {
  std::ostringstream text;
  text << op.name << " on (" << c[0] << "| " << c[1] << "| " << c[2] << ")";
  return text.str();
}

}  // namespace narrowing
