#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "tarn/Model.h"

namespace tarn {

// Checks assignments against the statements of a model as they were written, with plain 64-bit arithmetic.
//
// It shares nothing with the network: not its constraints, its types or its choice of operators. A solution that
// propagation and search let through by mistake is found here. Truth values are 0 and 1.
// Meaning  An operation that has no value (7 / 2, x mod 0, 2 ^ -1, arithmetic that reaches sLimit) fails its statement,
//          wherever in the statement it stands.
// Limits   A statement with an operator of operands, a literal or a variable that the evaluator does not know is passed
//          over: types of other modules have such. One over a list that is not known is an error, so that no constraint
//          of the language's own can go unchecked: see FindUnchecked.
class Evaluator {
 public:
  // Integers go from -sLimit to sLimit; the two ends stand for everything beyond them.
  static constexpr std::int64_t sLimit = 2147483645;

  // Refers to the model, which must not change while this object is used.
  explicit Evaluator(const Model& model) : fModel(model) {}

  // The place of the first statement with an operator over a list that is not known, or nothing.
  std::optional<std::size_t> FindUnchecked() const;
  // The place of the first statement that does not hold, or nothing. Requires: FindUnchecked found nothing. `values`
  // are those of the declared variables; one that is neither an integer nor a truth value is absent.
  std::optional<std::size_t> FindContradiction(std::span<const std::optional<std::int64_t>> values) const;

 private:
  const Model& fModel;
};

}  // namespace tarn
