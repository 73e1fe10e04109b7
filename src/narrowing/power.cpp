// z = a ^ b. The powers and roots come from singles and intervals, element by element; what they say about
// overflow, negative exponents and 0 ^ 0 holds here.
//
// Base      For every z and y, the bases that lie between the bounds of x are narrowed as an interval, and only the
//           two ends of what is left are candidates: for an even exponent the negative and the positive root.
//           A base inside is lost when many bases will do: z = {1}, y = {0}, x = {2, 3, 5} leaves {2, 5}.
// Exponent  Members are kept or dropped. When none is kept, nothing is removed: z = {7}, a = {2}, b = {1, 3}
//           leaves b as it is. An exponent that is Any stays.
//
// Cost  A power beyond the range rules out all larger exponents, and only exponents up to 30 have roots other than 0, 1
//       and -1. So of the pairs without 0, 1 and -1, at most 31 for each base and for each z are looked at.

#include <algorithm>
#include <cmath>
#include <optional>

#include "domain/VokFenEnumInteger.h"
#include "narrowing/candidateSet.h"
#include "narrowing/dispatchFrame.h"

using namespace VokFenNarrowing;

namespace {

// 2 ^ 31 is beyond the range.
constexpr VokLong kGreatestExponent = 30;

// Inside the range: none of the special values and of the ends, which count as infinite.
bool IsFinite(VokLong v) {
  return v > SubIntBase::sMin && v < SubIntBase::sMax;
}
// The members of [from, to].
std::span<const VokLong> Between(std::span<const VokLong> members, VokLong from, VokLong to) {
  const auto first = std::lower_bound(members.begin(), members.end(), from);
  return {first, std::upper_bound(first, members.end(), to)};
}

// The exponents that can give a power of the base v, or of which v can be a power: all of them for 0, 1 and -1.
std::span<const VokLong> Useful(std::span<const VokLong> exponents, VokLong v) {
  return v >= -1 && v <= 1 ? exponents : Between(exponents, 0, kGreatestExponent);
}

// Whether one operand has the member that as a single reads Any, and the other one a member that does not read Nil:
// then there is a power that cannot be told, which ends all narrowing.
bool MeetsAny(std::span<const VokLong> operand, std::span<const VokLong> other) {
  return !operand.empty() && operand.back() == VokFenSingleInteger::sNC_INT_ANY && !other.empty() &&
         other.back() != VokFenSingleInteger::sNC_INT_NIL;
}

bool IsOdd(VokLong v) {
  return v % 2 != 0;
}

// The m >= 0 with m ^ exponent = v, for v >= 0; the exponent is not 0. The estimate is right where there is a root at
// all: roots from the second on are below 2 ^ 16, and the error of pow is far below a half.
std::optional<VokLong> RootOf(VokLong v, VokLong exponent) {
  if (v <= 1 || exponent == 1) {
    return v == 0 && exponent < 0 ? std::nullopt : std::optional(v);
  }
  if (exponent < 0 || exponent > kGreatestExponent) {
    return std::nullopt;
  }
  const double estimate = exponent == 2 ? std::sqrt(v) : std::pow(v, 1.0 / exponent);
  const std::int64_t root = std::llround(estimate);
  std::int64_t power = 1;
  for (VokLong i = 0; i < exponent && power <= v; ++i) {
    power *= root;
  }
  return power == v ? std::optional(static_cast<VokLong>(root)) : std::nullopt;
}

// The hull of the bases whose power is z.
VokFenIntervalInteger BasesOf(VokLong z, VokLong exponent, const VokFenIntervalInteger& bases) {
  if (exponent == 0 || !IsFinite(z) || !IsFinite(exponent)) {
    VokFenIntervalInteger left(bases);
    VokFenIntervalInteger(z, z).CalcFirstInversePowerValue(left, VokFenSingleInteger(exponent));
    return left;
  }
  const std::optional<VokLong> root = RootOf(std::abs(z), exponent);
  const auto among = [&bases](VokLong v) { return v >= VokLong{bases.fLower} && v <= VokLong{bases.fUpper}; };
  const bool positive = root && z >= 0 && among(*root);
  const bool negative = root && IsOdd(exponent) == (z < 0) && among(-*root);
  if (!positive && !negative) {
    return VokFenIntervalInteger(1, 0);
  }
  return VokFenIntervalInteger(negative ? -*root : *root, positive ? *root : -*root);
}

template <class Narrowed>
int NarrowToRoots(Narrowed& x, const VokFenEnumInteger& z, const VokFenEnumInteger& y,
                  const VokFenIntervalInteger& bases) {
  if (y.ReadsAny()) {
    return 0;
  }
  // Exponents beyond the range have rules of their own, whatever the power.
  const std::span<const VokLong> exponents = y.GetMembers();
  const bool special = Between(exponents, SubIntBase::sMin, SubIntBase::sMax).size() < exponents.size();
  CandidateValues roots(std::min<VokLong>(bases.fLower, SubIntBase::sMax),
                        std::max<VokLong>(bases.fUpper, SubIntBase::sMin));
  for (const VokLong power : z.GetMembers()) {
    for (const VokLong exponent : special ? exponents : Useful(exponents, power)) {
      const VokFenIntervalInteger root = BasesOf(power, exponent, bases);
      if (root.IsUnrestricted() ||
          (!root.IsEmptyInterval() && (!roots.Insert(root.fLower) || !roots.Insert(root.fUpper)))) {
        return 0;
      }
    }
  }
  return roots.Narrow(x);
}

// Whether the exponent takes one of the bases to a member of z.
bool HasBase(const VokFenEnumInteger& z, std::span<const VokLong> bases, VokLong exponent) {
  const bool onlyUnits = exponent < 0 || exponent > kGreatestExponent;
  const std::span<const VokLong> tried = onlyUnits ? Between(bases, -1, 1) : bases;
  return std::any_of(tried.begin(), tried.end(), [&](VokLong base) {
    VokFenIntervalInteger power;
    power.CalcPowerValue(VokFenIntervalInteger(base, base), VokFenIntervalInteger(exponent, exponent));
    return !power.IsEmptyInterval() && z.Contains(power.fLower) != 0;
  });
}

}  // namespace

int VokFenEnumInteger::CalcPowerValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowResult(*this, a, b, &VokFenEnumInteger::CalcPowerValue);
}

int VokFenEnumInteger::CalcPowerValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b) {
  if (a.ReadsAny() || b.ReadsAny() || ReadsNil()) {
    return 0;
  }
  const std::span<const VokLong> bases = a.GetMembers();
  const std::span<const VokLong> exponents = b.GetMembers();
  if (MeetsAny(bases, exponents) || MeetsAny(exponents, bases)) {
    return 0;
  }
  CandidateValues powers(SubIntBase::sMin, SubIntBase::sMax);
  for (const VokLong base : bases) {
    for (const VokLong exponent : Useful(exponents, base)) {
      VokFenSingleInteger power;
      power.CalcPowerValue(VokFenSingleInteger(base), VokFenSingleInteger(exponent));
      // One that does not exist is no candidate.
      if (power.IsNil() == 0 && !powers.Insert(power.GetExactValue())) {
        return 0;
      }
    }
  }
  return powers.Narrow(*this);
}

int VokFenEnumInteger::CalcFirstInversePowerValue(VokTarnNumber& x, const VokTarnNumber& y) const {
  return NarrowFirst(*this, x, y, &VokFenEnumInteger::CalcFirstInversePowerValue,
                     &VokFenEnumInteger::CalcFirstInversePowerValue);
}

int VokFenEnumInteger::CalcFirstInversePowerValue(VokFenEnumInteger& x, const VokFenEnumInteger& y) const {
  return NarrowToRoots(x, *this, y, VokFenIntervalInteger(x.GetLowerBound(), x.GetUpperBound()));
}

int VokFenEnumInteger::CalcFirstInversePowerValue(VokFenSingleInteger& x, const VokFenEnumInteger& y) const {
  const VokLong v = x.GetExactValue();
  return NarrowToRoots(x, *this, y, x.IsUndefined() != 0 ? VokFenIntervalInteger() : VokFenIntervalInteger(v, v));
}

int VokFenEnumInteger::CalcSecondInversePowerValue(const VokTarnNumber& a, VokTarnNumber& b) const {
  return NarrowSecond(*this, a, b, &VokFenEnumInteger::CalcSecondInversePowerValue);
}

int VokFenEnumInteger::CalcSecondInversePowerValue(const VokFenEnumInteger& a, VokFenEnumInteger& b) const {
  const std::span<const VokLong> exponents = b.GetMembers();
  if (exponents.empty()) {
    return 0;
  }
  CandidateValues kept(exponents.front(), exponents.back());
  for (const VokLong exponent : exponents) {
    if (HasBase(*this, a.GetMembers(), exponent)) {
      kept.Insert(exponent);
    }
  }
  return kept.GetCount() == 0 ? 0 : kept.Narrow(b);
}
