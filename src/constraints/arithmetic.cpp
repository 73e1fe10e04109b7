// Sum, product, remainder and power. The result works: its narrowing operations are given the operands, which the
// choice of the operator has brought to types that they take.
#include <algorithm>
#include <array>
#include <optional>
#include <tuple>
#include <vector>

#include "base/bits.h"
#include "constraints/VokTarnAdditionConstraint.h"
#include "constraints/VokTarnMultiplicationConstraint.h"
#include "constraints/VokTarnPowerConstraint.h"
#include "constraints/VokTarnRemainderConstraint.h"
#include "constraints/narrowing.h"
#include "numbers/SubIntBase.h"

VOKTARN_CONSTRAINT_STATICS(VokTarnAdditionConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnMultiplicationConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnPowerConstraint)
VOKTARN_CONSTRAINT_STATICS(VokTarnRemainderConstraint)

namespace {

constexpr unsigned kA = 0;
constexpr unsigned kB = 1;
constexpr unsigned kResult = 2;

// Runs narrowing steps until one finds a contradiction. Each returns whether it changed something.
template <class... Steps>
int RunUntilFailed(const VokTarnObjectEnvironment& environment, Steps... steps) {
  int changed = 0;
  ((environment.IsFailed() ? 0 : changed |= steps()), ...);
  return changed;
}

// Whether one pass over the arguments of a sum leaves nothing to a second: every value that is left has a partner then,
// provided that no operation gives up because a set of candidates is too large, and none is clamped.
bool IsOnePassEnough(const VokTarnObjectEnvironment& environment) {
  constexpr std::int64_t kMostCandidates = 1023;
  constexpr VokLong kFarInside = 1'000'000'000;
  std::array<std::int64_t, 3> sizes;
  for (const unsigned i : {kA, kB, kResult}) {
    sizes[i] = environment.IsListed(i) ? environment.Cardinality(i) : 0;
    if (sizes[i] != 0 && (environment.Lower(i) < -kFarInside || environment.Upper(i) > kFarInside)) {
      return false;
    }
  }
  const bool isResultKnown = environment.Cardinality(kResult) >= 0;
  return sizes[kA] != 0 && sizes[kB] != 0 && (sizes[kResult] != 0 || !isResultKnown) &&
         sizes[kA] * sizes[kB] <= kMostCandidates &&
         sizes[kResult] * std::max(sizes[kA], sizes[kB]) <= kMostCandidates && !environment.AreSame(kA, kB) &&
         !environment.AreSame(kA, kResult) && !environment.AreSame(kB, kResult);
}

// r = a + b where a word holds the values of each: for each value of one operand, those of the other that lead to a
// value of r. That tells at once what all three keep. Nothing is said when some are too far apart for words, or are the
// same.
std::optional<int> KeepSumsOfWords(const VokTarnObjectEnvironment& environment) {
  if (environment.AreSame(kA, kB) || environment.AreSame(kA, kResult) || environment.AreSame(kB, kResult)) {
    return std::nullopt;
  }
  const bool isFewer = environment.Cardinality(kA) <= environment.Cardinality(kB);
  const unsigned few = isFewer ? kA : kB;
  const unsigned many = isFewer ? kB : kA;
  const VokTarnBits fewBits = environment.Bits(few);
  const VokTarnBits manyBits = environment.Bits(many);
  const VokTarnBits results = environment.Bits(kResult);
  if (fewBits == 0 || manyBits == 0 || results == 0) {
    return std::nullopt;
  }
  const std::int64_t distance =
      std::int64_t{environment.Lower(few)} + environment.Lower(many) - environment.Lower(kResult);
  VokTarnBits keptFew = 0;
  VokTarnBits keptMany = 0;
  VokTarnBits keptResults = 0;
  ForEachBit(fewBits, [&](unsigned place) {
    const VokTarnBits reached = ShiftBits(manyBits, distance + place) & results;
    if (reached != 0) {
      keptFew |= Bit(place);
      keptMany |= ShiftBits(reached, -(distance + place));
      keptResults |= reached;
    }
  });
  if (keptFew == 0) {
    return environment.Fail();
  }
  int changed = 0;
  bool isExact = true;  // but for a range, which keeps its holes
  for (const auto& [i, before, kept] : {std::tuple(kResult, results, keptResults), std::tuple(few, fewBits, keptFew),
                                        std::tuple(many, manyBits, keptMany)}) {
    if (kept != before) {
      changed |= environment.KeepBits(i, environment.Lower(i), kept);
      isExact = isExact && !environment.IsRange(i);
    }
  }
  if (isExact) {
    environment.NoteFixpoint();
  }
  return changed;
}

// r = a * a for a listed a: as a product of two operands it would pair each value of a with all others.
int KeepSquares(const VokTarnObjectEnvironment& environment) {
  std::vector<VokLong> roots;
  std::vector<VokLong> squares;
  for (const std::int64_t v : environment.Members(kA)) {
    if (v * v < SubIntBase::sMax) {
      roots.push_back(static_cast<VokLong>(v));
      squares.push_back(static_cast<VokLong>(v * v));
    }
  }
  std::sort(squares.begin(), squares.end());
  squares.erase(std::unique(squares.begin(), squares.end()), squares.end());
  const int changed = environment.KeepListed(kResult, squares);
  if (environment.IsFailed()) {
    return changed;
  }
  std::erase_if(roots, [&](VokLong v) { return !environment.MayBe(kResult, std::int64_t{v} * v); });
  return changed | environment.KeepListed(kA, roots);
}

}  // namespace

std::optional<std::int64_t> VokTarnAdditionConstraint::Compute(std::int64_t a, std::int64_t b) const {
  return a + b;
}

int VokTarnAdditionConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  if (const std::optional<int> changed = KeepSumsOfWords(environment)) {
    return *changed;
  }
  const VokTarnInteger& a = environment.Integer(kA);
  const VokTarnInteger& b = environment.Integer(kB);
  const VokTarnInteger& r = environment.Integer(kResult);
  if (IsOnePassEnough(environment)) {
    environment.NoteFixpoint();
  }
  return RunUntilFailed(
      environment, [&] { return environment.Note(kResult, environment.NarrowInteger(kResult).CalcSumValue(a, b)); },
      [&] { return environment.Note(kA, r.CalcFirstInverseSumValue(environment.NarrowInteger(kA), b)); },
      [&] { return environment.Note(kB, r.CalcFirstInverseSumValue(environment.NarrowInteger(kB), a)); });
}

std::optional<std::int64_t> VokTarnMultiplicationConstraint::Compute(std::int64_t a, std::int64_t b) const {
  if (GetForm() == VokTarnForm::Inverse && b == 0) {
    return std::nullopt;
  }
  return a * b;
}

int VokTarnMultiplicationConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  if (GetForm() != VokTarnForm::Inverse && environment.AreSame(kA, kB) && !environment.AreSame(kA, kResult) &&
      environment.IsListed(kA)) {
    return KeepSquares(environment);
  }
  const int changed = GetForm() == VokTarnForm::Inverse ? environment.Remove(kB, 0) : 0;
  if (environment.IsFailed()) {
    return changed;
  }
  const VokTarnInteger& a = environment.Integer(kA);
  const VokTarnInteger& b = environment.Integer(kB);
  const VokTarnInteger& r = environment.Integer(kResult);
  return changed |
         RunUntilFailed(
             environment,
             [&] { return environment.Note(kResult, environment.NarrowInteger(kResult).CalcProdValue(a, b)); },
             [&] { return environment.Note(kA, r.CalcFirstInverseProdValue(environment.NarrowInteger(kA), b)); },
             [&] { return environment.Note(kB, r.CalcFirstInverseProdValue(environment.NarrowInteger(kB), a)); });
}

std::optional<std::int64_t> VokTarnRemainderConstraint::Compute(std::int64_t a, std::int64_t b) const {
  return b == 0 ? std::nullopt : std::optional(a % b);
}

int VokTarnRemainderConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const int changed = environment.Remove(kB, 0);
  if (environment.IsFailed()) {
    return changed;
  }
  const VokTarnInteger& a = environment.Integer(kA);
  const VokTarnInteger& b = environment.Integer(kB);
  const VokTarnInteger& r = environment.Integer(kResult);
  return changed |
         RunUntilFailed(
             environment,
             [&] { return environment.Note(kResult, environment.NarrowInteger(kResult).CalcModValue(a, b)); },
             [&] { return environment.Note(kA, r.CalcFirstInverseModValue(environment.NarrowInteger(kA), b)); },
             // Given a dividend of which nothing is known, the second inverse would leave no divisor.
             [&] {
               return a.IsUndefined() != 0
                          ? 0
                          : environment.Note(kB, r.CalcSecondInverseModValue(a, environment.NarrowInteger(kB)));
             });
}

std::optional<std::int64_t> VokTarnPowerConstraint::Compute(std::int64_t a, std::int64_t b) const {
  if (b == 0) {
    return 1;
  }
  if (a == 1 || a == -1) {
    return b % 2 == 0 ? 1 : a;
  }
  if (b < 0) {
    return std::nullopt;
  }
  if (a == 0) {
    return 0;
  }
  std::int64_t power = 1;
  for (; b > 0; --b) {  // |a| is 2 or more: this leaves the range within 32 steps
    power *= a;
    if (power <= SubIntBase::sMin || power >= SubIntBase::sMax) {
      return std::nullopt;
    }
  }
  return power;
}

int VokTarnPowerConstraint::Propagate(const VokTarnObjectEnvironment& environment) const {
  const VokTarnInteger& a = environment.Integer(kA);
  const VokTarnInteger& b = environment.Integer(kB);
  const VokTarnInteger& r = environment.Integer(kResult);
  return RunUntilFailed(
      environment, [&] { return environment.Note(kResult, environment.NarrowInteger(kResult).CalcPowerValue(a, b)); },
      // With 0 ^ 0 = x ^ 0 = 1 in play every base has a partner, but the roots do not list them.
      [&] {
        return b.IsPossible(0) && r.IsPossible(1)
                   ? 0
                   : environment.Note(kA, r.CalcFirstInversePowerValue(environment.NarrowInteger(kA), b));
      },
      [&] { return environment.Note(kB, r.CalcSecondInversePowerValue(a, environment.NarrowInteger(kB))); });
}
