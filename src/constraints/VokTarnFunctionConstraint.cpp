#include "constraints/VokTarnFunctionConstraint.h"

#include "constraints/narrowing.h"
#include "numbers/SubIntBase.h"

bool VokTarnFunctionConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  const unsigned count = GetOperandCount() + 1;
  return environment.Size() == count && AreIntegers(environment, 0, count);
}

bool VokTarnFunctionConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const unsigned count = GetOperandCount();
  for (unsigned i = 0; i <= count && IsStrict(); ++i) {
    const std::int64_t v = ExactValue(environment, i);
    if (v <= SubIntBase::sMin || v >= SubIntBase::sMax) {
      return false;
    }
  }
  const std::optional<std::int64_t> value =
      Compute(ExactValue(environment, 0), count == 2 ? ExactValue(environment, 1) : 0);
  return value && *value == ExactValue(environment, count);
}
