// z = a * b, by every pair of members.
//
// The inverse keeps every truncated quotient, whether y divides z or not: z = {7}, y = {2} leaves 3 in x. It
// loses no value that has a partner; the product itself finds the others out. A divisor 0 gives no quotient,
// but 0 in both y and z says that every x will do.
//
// Cost  O(pairs) at most, and mostly far less: see pairs.h. A product of two large sets is known to have too many
//       values from the numbers of members of each sign alone.

#include <algorithm>
#include <cstdlib>

#include "domain/VokFenEnumInteger.h"
#include "narrowing/dispatchFrame.h"
#include "narrowing/pairs.h"

using namespace VokFenNarrowing;

namespace {

constexpr std::int64_t kMin = SubIntBase::sMin;
constexpr std::int64_t kMax = SubIntBase::sMax;

// The ends of the exact products: those of the ends.
struct ProductEnds {
  ProductEnds(std::span<const VokLong> a, std::span<const VokLong> b) {
    const std::int64_t corners[] = {std::int64_t{a.front()} * b.front(), std::int64_t{a.front()} * b.back(),
                                    std::int64_t{a.back()} * b.front(), std::int64_t{a.back()} * b.back()};
    lower = *std::min_element(std::begin(corners), std::end(corners));
    upper = *std::max_element(std::begin(corners), std::end(corners));
  }
  // No product is clamped.
  bool AreInside() const { return lower >= kMin && upper <= kMax; }

  std::int64_t lower;
  std::int64_t upper;
};

// How many members are negative and how many positive.
struct Signs {
  explicit Signs(std::span<const VokLong> members)
      : negative(static_cast<std::size_t>(std::lower_bound(members.begin(), members.end(), 0) - members.begin())),
        positive(static_cast<std::size_t>(members.end() - std::upper_bound(members.begin(), members.end(), 0))) {}

  std::size_t negative;
  std::size_t positive;
};

// At least so many distinct products have p members of one operand and q of the other, each of one sign: p + q - 1, for
// a1 b1 < a1 b2 < .. < a1 bq < a2 bq < .. < ap bq by magnitude.
std::size_t ChainLength(std::size_t p, std::size_t q) {
  return p == 0 || q == 0 ? 0 : p + q - 1;
}

// A lower bound on the number of distinct products that are not clamped.
std::size_t LeastProducts(Signs a, Signs b) {
  return std::max(ChainLength(a.positive, b.positive), ChainLength(a.negative, b.negative)) +
         std::max(ChainLength(a.positive, b.negative), ChainLength(a.negative, b.positive));
}

// Gives the products of a row, in its order, to the sink. Those that are clamped stand at the two ends of the row and
// are equal at each: two of them do the same as many, for the second one finds the value there, or the candidates full.
template <class Sink>
void SinkProducts(VokLong o, std::span<const VokLong> inner, Sink sink) {
  const std::int64_t magnitude = std::max<std::int64_t>(std::abs(std::int64_t{o}), 1);
  const auto bound = static_cast<VokLong>(kMax / magnitude);
  const auto begin = std::lower_bound(inner.begin(), inner.end(), -bound);
  const auto end = std::upper_bound(begin, inner.end(), bound);
  const auto sinkTwo = [&](std::span<const VokLong> clamped) {
    for (const VokLong i : clamped.first(std::min<std::size_t>(clamped.size(), 2))) {
      sink(SubIntBase::base_mult(o, i));
    }
  };
  sinkTwo({inner.begin(), begin});
  for (const VokLong i : std::span(begin, end)) {
    sink(o * i);
  }
  sinkTwo({end, inner.end()});
}

bool AllowsEveryFactor(const VokFenEnumInteger& z, const VokFenEnumInteger& y) {
  return y.ReadsAny() || (y.Contains(0) != 0 && z.Contains(0) != 0);
}

// The divisors stand in the outer loop. The quotients lie between 0 and those by the divisors next to 0; of dividends
// inside the range, none is clamped.
template <class Narrowed>
int NarrowToQuotients(Narrowed& x, const VokFenEnumInteger& z, const VokFenEnumInteger& y) {
  const std::span<const VokLong> dividends = z.GetMembers();
  const std::span<const VokLong> divisors = y.GetMembers();
  std::array<double, kMaxCandidates> moved;
  if (dividends.empty() || dividends.size() > moved.size() || dividends.front() <= kMin || dividends.back() >= kMax) {
    return NarrowToPairs(x, divisors, dividends.size(), kMin, kMax, [dividends](VokLong divisor, auto sink) {
      for (std::size_t i = 0; divisor != 0 && i < dividends.size(); ++i) {
        sink(SubIntBase::base_div(dividends[i], divisor));
      }
    });
  }
  VokLong lower = 0;
  VokLong upper = 0;
  const auto addQuotients = [&](VokLong divisor) {
    const auto [least, greatest] = std::minmax({dividends.front() / divisor, dividends.back() / divisor});
    lower = std::min(lower, least);
    upper = std::max(upper, greatest);
  };
  const Signs signs(divisors);
  if (signs.negative > 0) {
    addQuotients(divisors[signs.negative - 1]);
  }
  if (signs.positive > 0) {
    addQuotients(divisors[divisors.size() - signs.positive]);
  }
  std::transform(dividends.begin(), dividends.end(), moved.begin(), Divisors::Moved);
  const std::span<const double> rows(moved.data(), dividends.size());
  return NarrowToPairs(x, divisors, rows.size(), lower, upper, [rows](VokLong divisor, auto sink) {
    const double reciprocal = Divisors::ReciprocalOf(divisor);
    for (std::size_t i = 0; divisor != 0 && i < rows.size(); ++i) {
      sink(static_cast<VokLong>(Divisors::Quotient(rows[i], reciprocal)));
    }
  });
}

}  // namespace

int VokFenEnumInteger::CalcProdValue(const VokTarnNumber& a, const VokTarnNumber& b) {
  return NarrowResult(*this, a, b, &VokFenEnumInteger::CalcProdValue);
}

int VokFenEnumInteger::CalcProdValue(const VokFenEnumInteger& a, const VokFenEnumInteger& b) {
  if (a.ReadsAny() || b.ReadsAny() || ReadsNil()) {
    return 0;
  }
  if (a.GetCount() == 0 || b.GetCount() == 0) {
    return SetNilValue();
  }
  const std::span<const VokLong> outer = a.GetMembers();
  const std::span<const VokLong> inner = b.GetMembers();
  const ProductEnds ends(outer, inner);
  if (ends.AreInside() && LeastProducts(Signs(outer), Signs(inner)) > LimitOfCandidates()) {
    return 0;
  }
  return NarrowToPairs(*this, outer, inner.size(), std::clamp(ends.lower, kMin, kMax),
                       std::clamp(ends.upper, kMin, kMax), [inner, inside = ends.AreInside()](VokLong o, auto sink) {
                         if (!inside) {
                           SinkProducts(o, inner, sink);
                           return;
                         }
                         for (const VokLong i : inner) {
                           sink(o * i);
                         }
                       });
}

int VokFenEnumInteger::CalcFirstInverseProdValue(VokTarnNumber& x, const VokTarnNumber& y) const {
  return NarrowFirst(*this, x, y, &VokFenEnumInteger::CalcFirstInverseProdValue,
                     &VokFenEnumInteger::CalcFirstInverseProdValue);
}

int VokFenEnumInteger::CalcFirstInverseProdValue(VokFenEnumInteger& x, const VokFenEnumInteger& y) const {
  return AllowsEveryFactor(*this, y) ? 0 : NarrowToQuotients(x, *this, y);
}

int VokFenEnumInteger::CalcFirstInverseProdValue(VokFenSingleInteger& x, const VokFenEnumInteger& y) const {
  return AllowsEveryFactor(*this, y) ? 0 : NarrowToQuotients(x, *this, y);
}
