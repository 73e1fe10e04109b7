// The least is the greatest of the opposites: bounds are read and cut with their signs exchanged.
#include <algorithm>

#include "constraints/VokTarnExtremumConstraint.h"
#include "constraints/narrowing.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnExtremumConstraint)

namespace {

constexpr unsigned kResult = 0;

// The arguments of a greatest, or the opposites of those of a least.
class View {
 public:
  View(const VokTarnObjectEnvironment& environment, bool isGreatest)
      : fEnvironment(environment), fIsGreatest(isGreatest) {}

  std::int64_t Lower(unsigned i) const {
    return fIsGreatest ? fEnvironment.Lower(i) : -std::int64_t{fEnvironment.Upper(i)};
  }
  std::int64_t Upper(unsigned i) const {
    return fIsGreatest ? fEnvironment.Upper(i) : -std::int64_t{fEnvironment.Lower(i)};
  }
  int KeepAtLeast(unsigned i, std::int64_t limit) const {
    return fIsGreatest ? fEnvironment.KeepAtLeast(i, limit) : fEnvironment.KeepAtMost(i, -limit);
  }
  int KeepAtMost(unsigned i, std::int64_t limit) const {
    return fIsGreatest ? fEnvironment.KeepAtMost(i, limit) : fEnvironment.KeepAtLeast(i, -limit);
  }

 private:
  const VokTarnObjectEnvironment& fEnvironment;
  bool fIsGreatest;
};

}  // namespace

bool VokTarnExtremumConstraint::IsApplicable(const VokTarnObjectEnvironment& environment) const {
  return environment.Size() >= 2 && GetConstants().size() == 1 && AreIntegers(environment, 0, environment.Size());
}

bool VokTarnExtremumConstraint::IsSatisfied(const VokTarnObjectEnvironment& environment) const {
  const View view(environment, IsGreatest());
  std::int64_t greatest = view.Lower(1);
  for (unsigned i = 2; i < environment.Size(); ++i) {
    greatest = std::max(greatest, view.Lower(i));
  }
  return view.Lower(kResult) == greatest;
}

int VokTarnExtremumConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const View view(environment, IsGreatest());
  std::int64_t lower = view.Lower(1);
  std::int64_t upper = view.Upper(1);
  for (unsigned i = 2; i < environment.Size(); ++i) {
    lower = std::max(lower, view.Lower(i));
    upper = std::max(upper, view.Upper(i));
  }
  int changed = view.KeepAtLeast(kResult, lower);
  changed |= environment.IsFailed() ? 0 : view.KeepAtMost(kResult, upper);
  if (environment.IsFailed()) {
    return changed;
  }
  // The only argument that can be as great as the result has to be.
  const std::int64_t most = view.Upper(kResult);
  const std::int64_t least = view.Lower(kResult);
  unsigned reaching = 0;
  unsigned count = 0;
  for (unsigned i = 1; i < environment.Size() && !environment.IsFailed(); ++i) {
    changed |= view.KeepAtMost(i, most);
    if (view.Upper(i) >= least) {
      reaching = i;
      ++count;
    }
  }
  if (environment.IsFailed()) {
    return changed;
  }
  if (count == 0) {
    return environment.Fail();
  }
  return count > 1 ? changed : changed | view.KeepAtLeast(reaching, least);
}
