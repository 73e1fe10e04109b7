// z = a * b, by every pair of members.
//
// The inverse keeps every truncated quotient, whether y divides z or not: z = {7}, y = {2} leaves 3 in x. It
// loses no value that has a partner; the product itself finds the others out. A divisor 0 gives no quotient,
// but 0 in both y and z says that every x will do.

#include "domain/VokFenEnumInteger.h"
#include "narrowing/candidateSet.h"
#include "narrowing/dispatchFrame.h"

using namespace VokFenNarrowing;

namespace {

bool AllowsEveryFactor(const VokFenEnumInteger& z, const VokFenEnumInteger& y) {
  return y.IsUndefined() != 0 || (y.Contains(0) != 0 && z.Contains(0) != 0);
}

// The divisors stand in the outer loop.
VokFenEnumInteger CollectQuotients(const VokFenEnumInteger& z, const VokFenEnumInteger& y) {
  VokFenEnumInteger quotients = NoCandidates();
  for (unsigned j = 0; j < y.GetCount(); ++j) {
    const VokLong divisor = y.GetValue(j);
    for (unsigned i = 0; divisor != 0 && i < z.GetCount(); ++i) {
      if (quotients.Insert(SubIntBase::base_div(z.GetValue(i), divisor)) == 0) {
        return quotients;
      }
    }
  }
  return quotients;
}

}  // namespace

int VokFenEnumInteger::CalcProdValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowResult(*this, a, b, &VokFenEnumInteger::CalcProdValue);
}

int VokFenEnumInteger::CalcProdValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b) {
  if (a.IsUndefined() != 0 || b.IsUndefined() != 0) {
    return 0;
  }
  return Intersect(CollectPairs(a, b, SubIntBase::base_mult));
}

int VokFenEnumInteger::CalcFirstInverseProdValue(VokTarnNumber& x, const VokTarnNumber& y) const {
  return NarrowFirst(*this, x, y, &VokFenEnumInteger::CalcFirstInverseProdValue,
                     &VokFenEnumInteger::CalcFirstInverseProdValue);
}

int VokFenEnumInteger::CalcFirstInverseProdValue(VokFenEnumInteger& x, const VokFenEnumInteger& y) const {
  return AllowsEveryFactor(*this, y) ? 0 : x.Intersect(CollectQuotients(*this, y));
}

int VokFenEnumInteger::CalcFirstInverseProdValue(VokFenSingleInteger& x, const VokFenEnumInteger& y) const {
  return AllowsEveryFactor(*this, y) ? 0 : CollectQuotients(*this, y).IntersectInverse(x);
}
