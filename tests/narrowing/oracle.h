// The brute-force oracle: runs one operation on one case and says what is wrong with the outcome.
#pragma once

#include <random>

#include "narrowing/departures.h"

namespace narrowing {

struct Outcome {
  int status;
  Case after;
};

inline Outcome RunCase(const Operation& op, const Case& c) {
  std::array<support::Operand, 3> operands = {support::Operand(c[0]), support::Operand(c[1]), support::Operand(c[2])};
  const int status = op.run(operands[0].Set(), operands[1].Get(), operands[2].Get());
  return {status, {operands[0].Read(), operands[1].Read(), operands[2].Read()}};
}

inline bool IsSubset(const Values& part, const Values& whole) {
  return std::includes(whole.begin(), whole.end(), part.begin(), part.end());
}

// What holds on every input: the operation only narrows, only its operand, and says so. "" when all is well.
inline std::string CheckContract(const Operation& op, const Case& c, const Outcome& outcome) {
  const Model& before = c[op.narrowed];
  const Model& after = outcome.after[op.narrowed];
  for (unsigned i = 0; i < 3; ++i) {
    if (i != op.narrowed && outcome.after[i] != c[i]) {
      return "another operand changed";
    }
  }
  if (outcome.status != (after == before ? 0 : 1)) {
    return "wrong status";
  }
  if (!before.any && (after.any || !IsSubset(after.values, before.values))) {
    return "widened";
  }
  if (!before.values.empty() && !after.values.empty() && after.emptyMeansAny != before.emptyMeansAny) {
    return "flag changed";
  }
  return outcome.status == 0 || RunCase(op, outcome.after).status == 0 ? "" : "not idempotent";
}

// What the relation asks for, or the kept rule in its place.
inline std::string CheckMeaning(const Operation& op, const Case& c, const Model& after) {
  const Model& before = c[op.narrowed];
  bool givenNil = false;
  bool givenAny = false;
  for (unsigned i = 0; i < op.operands; ++i) {
    givenNil = givenNil || (i != op.narrowed && c[i].IsNil());
    givenAny = givenAny || (i != op.narrowed && c[i].any);
  }
  if (givenNil || before.IsNil()) {
    return after.IsNil() ? "" : "not Nil";
  }
  const Departure& departure = DepartureOf(op);
  if (departure.rule != nullptr && !before.any) {
    if (const auto left = departure.rule(c)) {
      return after.values == *left ? "" : "not as its rule says";
    }
  }
  if (givenAny && !departure.seesAny) {
    return after == before ? "" : "narrowed although nothing is known";
  }
  const Values supported = Supported(op, c);
  if (!after.any && !IsSubset(supported, after.values)) {
    return "unsound";
  }
  return !departure.tight || before.any || after.values == supported ? "" : "not tight";
}

inline std::string Check(const Operation& op, const Case& c) {
  const Outcome outcome = RunCase(op, c);
  const std::string reason = CheckContract(op, c, outcome);
  return reason.empty() ? CheckMeaning(op, c, outcome.after[op.narrowed]) : reason;
}

inline std::string Show(const Operation& op, const Case& c) {
  std::ostringstream text;
  text << op.name << " on (" << c[0] << "| " << c[1] << "| " << c[2] << ")";
  return text.str();
}

// A set or a single with values from `universe`, now and then Nil or Any.
inline Model RandomModel(std::mt19937& random, const Values& universe, bool maybeSingle) {
  const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
  Model m;
  m.kind = maybeSingle && below(4) == 0 ? 's' : 'e';
  const unsigned state = below(12);
  if (state == 0 || (state == 1 && m.kind == 's')) {
    m.any = state == 0;
  } else if (m.kind == 's') {
    m.values = {universe[below(static_cast<unsigned>(universe.size()))]};
  } else {
    m.values = Filter(universe, [&](VokLong) { return below(2) == 0; });
  }
  m.emptyMeansAny = m.kind == 'e' && (m.any || (!m.values.empty() && below(2) == 0)) ? 1 : 0;
  return m;
}

}  // namespace narrowing
