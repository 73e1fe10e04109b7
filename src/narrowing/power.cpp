// z = a ^ b. The powers and roots come from singles and intervals, element by element; what they say about
// overflow, negative exponents and 0 ^ 0 holds here.
//
// Base      For every z and y, the bases that lie between the bounds of x are narrowed as an interval, and only the
//           two ends of what is left are candidates: for an even exponent the negative and the positive root.
//           A base inside is lost when many bases will do: z = {1}, y = {0}, x = {2, 3, 5} leaves {2, 5}.
// Exponent  Members are kept or dropped. When none is kept, nothing is removed: z = {7}, a = {2}, b = {1, 3}
//           leaves b as it is. An exponent that is Any stays.

#include "domain/VokFenEnumInteger.h"
#include "narrowing/candidateSet.h"
#include "narrowing/dispatchFrame.h"

using namespace VokFenNarrowing;

namespace {

// Adds the roots to `roots`. False when some pair restricts nothing or the roots are too many: then nothing can
// be inferred.
bool CollectRoots(const VokFenEnumInteger& z, const VokFenEnumInteger& y, const VokFenIntervalInteger& bases,
                  VokFenEnumInteger& roots) {
  for (unsigned i = 0; i < z.GetCount(); ++i) {
    const VokFenIntervalInteger power(z.GetValue(i), z.GetValue(i));
    for (unsigned j = 0; j < y.GetCount(); ++j) {
      VokFenIntervalInteger root(bases);
      power.CalcFirstInversePowerValue(root, VokFenSingleInteger(y.GetValue(j)));
      if (root.IsUnrestricted()) {
        return false;
      }
      if (!root.IsEmptyInterval() && (roots.Insert(root.fLower) == 0 || roots.Insert(root.fUpper) == 0)) {
        return false;
      }
    }
  }
  return true;
}

// Whether base ^ exponent is one of the members of z at the positions [from, to). An interval of results that leaves
// no exponent has no member that does, so halving asks few of the members.
bool IsPowerAmong(const VokFenEnumInteger& z, unsigned from, unsigned to, VokLong base, VokLong exponent) {
  VokFenIntervalInteger left(exponent, exponent);
  VokFenIntervalInteger(z.GetValue(from), z.GetValue(to - 1))
      .CalcSecondInversePowerValue(VokFenIntervalInteger(base, base), left);
  if (left.IsEmptyInterval()) {
    return false;
  }
  if (to - from == 1) {
    return true;
  }
  const unsigned middle = from + (to - from) / 2;
  return IsPowerAmong(z, from, middle, base, exponent) || IsPowerAmong(z, middle, to, base, exponent);
}

bool HasBase(const VokFenEnumInteger& z, const VokFenEnumInteger& a, VokLong exponent) {
  for (unsigned j = 0; z.GetCount() > 0 && j < a.GetCount(); ++j) {
    if (IsPowerAmong(z, 0, z.GetCount(), a.GetValue(j), exponent)) {
      return true;
    }
  }
  return false;
}

}  // namespace

int VokFenEnumInteger::CalcPowerValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowResult(*this, a, b, &VokFenEnumInteger::CalcPowerValue);
}

int VokFenEnumInteger::CalcPowerValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b) {
  if (a.IsUndefined() != 0 || b.IsUndefined() != 0) {
    return 0;
  }
  VokFenEnumInteger powers = NoCandidates();
  VokFenSingleInteger power;
  for (unsigned i = 0; i < a.GetCount(); ++i) {
    for (unsigned j = 0; j < b.GetCount(); ++j) {
      power.CalcPowerValue(VokFenSingleInteger(a.GetValue(i)), VokFenSingleInteger(b.GetValue(j)));
      // A power that cannot be told ends all narrowing; one that does not exist is no candidate.
      if (power.IsUndefined() != 0) {
        return 0;
      }
      if (power.IsNil() == 0 && powers.Insert(power.GetExactValue()) == 0) {
        return 0;
      }
    }
  }
  return Intersect(powers);
}

int VokFenEnumInteger::CalcFirstInversePowerValue(VokTarnNumber& x, const VokTarnNumber& y) const {
  return NarrowFirst(*this, x, y, &VokFenEnumInteger::CalcFirstInversePowerValue,
                     &VokFenEnumInteger::CalcFirstInversePowerValue);
}

int VokFenEnumInteger::CalcFirstInversePowerValue(VokFenEnumInteger& x, const VokFenEnumInteger& y) const {
  VokFenEnumInteger roots = NoCandidates();
  const VokFenIntervalInteger bases(x.GetLowerBound(), x.GetUpperBound());
  return y.IsUndefined() == 0 && CollectRoots(*this, y, bases, roots) ? x.Intersect(roots) : 0;
}

int VokFenEnumInteger::CalcFirstInversePowerValue(VokFenSingleInteger& x, const VokFenEnumInteger& y) const {
  VokFenEnumInteger roots = NoCandidates();
  const VokLong v = x.GetExactValue();
  const VokFenIntervalInteger bases = x.IsUndefined() != 0 ? VokFenIntervalInteger() : VokFenIntervalInteger(v, v);
  return y.IsUndefined() == 0 && CollectRoots(*this, y, bases, roots) ? roots.IntersectInverse(x) : 0;
}

int VokFenEnumInteger::CalcSecondInversePowerValue(const VokTarnNumber& a, VokTarnNumber& b) const {
  return NarrowSecond(*this, a, b, &VokFenEnumInteger::CalcSecondInversePowerValue);
}

int VokFenEnumInteger::CalcSecondInversePowerValue(const VokFenEnumInteger& a, VokFenEnumInteger& b) const {
  VokFenEnumInteger kept;
  for (unsigned k = 0; k < b.GetCount(); ++k) {
    if (HasBase(*this, a, b.GetValue(k)) && kept.fValues.Add(b.fValues[k]) == 0) {
      return 0;
    }
  }
  return b.Intersect(kept);
}
