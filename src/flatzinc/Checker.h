#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "flatzinc/ErrorList.h"
#include "flatzinc/Model.h"

namespace fzn {

struct CheckerRow;

// Tells whether values of all variables are a solution of a problem, from the meaning of each constraint alone: shares
// nothing with what finds solutions.
//
// Cost  A check is linear in the size of the problem, but for a few constraints that sort or compare pairs.
class Checker {
 public:
  // What is neither known nor has arguments of the right kinds goes on the list, and no check may be asked for then.
  // The model must outlive the checker.
  Checker(const Model& model, ErrorList& errors);

  // What the values, one for each variable, contradict; nothing when they are a solution.
  std::optional<std::string> FindViolation(std::span<const std::int64_t> values) const;

 private:
  enum class Use : std::uint8_t { Plain, Reified, Implied };
  struct Check {
    const CheckerRow* fRow;
    Use fUse;  // whether a truth value stands behind the arguments: the constraint is equal to it, or follows from it
  };

  static std::optional<Check> FindCheck(std::string_view name, std::size_t arguments);
  void CheckArguments(const Constraint& constraint, const Check& check, ErrorList& errors) const;
  bool Holds(std::size_t constraint, std::span<const std::int64_t> values) const;

  const Model& fModel;
  std::vector<Check> fChecks;  // by constraint
};

}  // namespace fzn
