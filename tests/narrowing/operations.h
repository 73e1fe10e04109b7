// Every narrowing operation of the enumerated set as one table: the relation that it narrows, which operand
// it narrows, and where it departs from the mathematics.
#pragma once

#include <array>
#include <cstdlib>
#include <optional>
#include <set>

#include "support/operands.h"

namespace narrowing {

using support::Model;
using support::Values;

using Case = std::array<Model, 3>;
using Holds = bool (*)(VokLong, VokLong, VokLong);

// Operand 0 is *this*. A relation on two operands does not read the third.
struct Operation {
  const char* name;
  Holds holds;
  unsigned operands;
  unsigned narrowed;
  int (*run)(VokFenEnumInteger&, VokTarnInteger&, VokTarnInteger&);
  // The values that a kept rule leaves in a narrowed operand with known values; none where the mathematics holds.
  std::optional<Values> (*rule)(const Case&) = nullptr;
  // Every value kept has a support.
  bool tight = true;
  // Narrows also when a given operand is Any.
  bool seesAny = false;
};

// Any stands for as much as the small universes of the tests reach.
inline const Values& ValuesOf(const Model& m) {
  static const Values everything = support::Parse("-12..12").values;
  return m.any ? everything : m.values;
}

// The values of the narrowed operand that have a partner in every other operand.
inline Values Supported(const Operation& op, const Case& c) {
  static const Values unused = {0};
  std::set<VokLong> supported;
  for (const VokLong x : ValuesOf(c[0])) {
    for (const VokLong y : ValuesOf(c[1])) {
      for (const VokLong z : op.operands == 3 ? ValuesOf(c[2]) : unused) {
        if (op.holds(x, y, z)) {
          supported.insert(std::array{x, y, z}[op.narrowed]);
        }
      }
    }
  }
  return {supported.begin(), supported.end()};
}

template <class Keep>
Values Filter(const Values& values, Keep keep) {
  Values kept;
  std::copy_if(values.begin(), values.end(), std::back_inserter(kept), keep);
  return kept;
}

// x < bound with the cut one member too wide: {1, 3, 7} < 5 leaves {1}.
inline std::optional<Values> CutLess(const Model& x, const Model& y) {
  if (x.kind != 'e' || x.any || y.any || x.values.back() < y.values.back()) {
    return std::nullopt;
  }
  const Values reached = Filter(x.values, [&](VokLong v) { return v <= y.values.back(); });
  return reached.empty() ? Values{} : Values(reached.begin(), reached.end() - 1);
}

// The mirror image: 4 < {2, 5, 6} leaves {6}.
inline std::optional<Values> CutGreater(const Model& x, const Model& y) {
  if (x.kind != 'e' || x.any || y.any || x.values.front() > y.values.front()) {
    return std::nullopt;
  }
  const Values reached = Filter(x.values, [&](VokLong v) { return v >= y.values.front(); });
  return reached.empty() ? Values{} : Values(reached.begin() + 1, reached.end());
}

// Where one sign alone is possible, the argument is cut as by the relation to 0.
inline std::optional<Values> SignCut(const Case& c) {
  const bool below = c[1].Has(-1);
  const bool above = c[1].Has(1);
  if (c[1].any || c[1].Has(0) || below == above) {
    return std::nullopt;
  }
  const Model zero{'s', false, false, {0}};
  return below ? CutLess(c[0], zero) : CutGreater(c[0], zero);
}

// A set that turns Any when emptied, on one side of 0 only, narrows no absolute value.
inline std::optional<Values> AbsoluteOfFlagged(const Case& c) {
  const Model& a = c[1].any ? c[0] : c[1];
  const bool oneSided = !a.values.empty() && (a.values.front() >= 0 || a.values.back() < 0);
  return a.emptyMeansAny && oneSided ? std::optional(c[0].values) : std::nullopt;
}

// The inverses of minimum and maximum look at the bound of z only.
inline std::optional<Values> NotBelowMinimum(const Case& c) {
  return c[0].any ? std::nullopt
                  : std::optional(Filter(c[1].values, [&](VokLong v) { return v >= c[0].values.front(); }));
}
inline std::optional<Values> NotAboveMaximum(const Case& c) {
  return c[0].any ? std::nullopt
                  : std::optional(Filter(c[1].values, [&](VokLong v) { return v <= c[0].values.back(); }));
}

template <unsigned Narrowed>
std::optional<Values> NothingByZero(const Case& c) {
  return c[2].Has(0) ? std::optional(c[Narrowed].values) : std::nullopt;
}

inline bool IsRemainder(VokLong z, VokLong a, VokLong b) {
  return b != 0 && z == a % b;
}

// A divisor 0 always stays; a dividend that is Any leaves nothing.
inline std::optional<Values> DivisorsOfRemainder(const Case& c) {
  if (c[0].any) {
    return std::nullopt;
  }
  return Filter(c[2].values, [&](VokLong b) {
    return !c[1].any &&
           (b == 0 || std::any_of(c[1].values.begin(), c[1].values.end(), [&](VokLong a) { return c[0].Has(a % b); }));
  });
}

inline bool IsPower(VokLong z, VokLong a, VokLong b) {
  if (b < 0 && std::abs(a) != 1) {
    return false;
  }
  VokLong power = 1;
  for (VokLong i = 0; i < std::abs(b) && std::abs(power) < 100000; ++i) {
    power *= a;
  }
  return z == power;
}

// Where 0 is a possible exponent and 1 a possible result, only the two outer bases stay for that reason.
inline std::optional<Values> OuterBases(const Case& c) {
  if (c[1].any || c[2].any || !c[2].Has(0) || !c[0].Has(1)) {
    return std::nullopt;
  }
  return Filter(c[1].values, [&](VokLong x) {
    return x == c[1].values.front() || x == c[1].values.back() ||
           std::any_of(c[2].values.begin(), c[2].values.end(), [&](VokLong y) {
             return y != 0 &&
                    std::any_of(c[0].values.begin(), c[0].values.end(), [&](VokLong z) { return IsPower(z, x, y); });
           });
  });
}

inline std::optional<Values> AllWhereNoneFits(const Case& c);

template <auto Cut, unsigned X, unsigned Y>
std::optional<Values> At(const Case& c) {
  return Cut(c[X], c[Y]);
}

#define NARROW(call)                                                                                           \
  [](VokFenEnumInteger& self, [[maybe_unused]] VokTarnInteger& p, [[maybe_unused]] VokTarnInteger& q) -> int { \
    return self.call;                                                                                          \
  }

inline const std::vector<Operation>& Operations() {
  static constexpr Holds equal = [](VokLong x, VokLong y, VokLong) { return x == y; };
  static constexpr Holds notAbove = [](VokLong x, VokLong y, VokLong) { return x <= y; };
  static constexpr Holds below = [](VokLong x, VokLong y, VokLong) { return x < y; };
  static constexpr Holds notBelow = [](VokLong x, VokLong y, VokLong) { return x >= y; };
  static constexpr Holds above = [](VokLong x, VokLong y, VokLong) { return x > y; };
  static constexpr Holds next = [](VokLong y, VokLong x, VokLong) { return y == x + 1; };
  static constexpr Holds negative = [](VokLong z, VokLong a, VokLong) { return z == -a; };
  static constexpr Holds absolute = [](VokLong z, VokLong a, VokLong) { return z == std::abs(a); };
  static constexpr Holds sign = [](VokLong a, VokLong s, VokLong) { return s == (a > 0) - (a < 0); };
  static constexpr Holds minimum = [](VokLong z, VokLong a, VokLong b) { return z == std::min(a, b); };
  static constexpr Holds maximum = [](VokLong z, VokLong a, VokLong b) { return z == std::max(a, b); };
  static constexpr Holds sum = [](VokLong z, VokLong a, VokLong b) { return z == a + b; };
  static constexpr Holds product = [](VokLong z, VokLong a, VokLong b) { return z == a * b; };
  static const std::vector<Operation> table = {
      {"x = y", equal, 2, 0, NARROW(CalcEqualValue(p))},
      {"inv x = y", equal, 2, 1, NARROW(CalcInverseEqualValue(p))},
      {"x <= y", notAbove, 2, 0, NARROW(CalcLessOrEqualValue(p))},
      {"inv x <= y", notAbove, 2, 1, NARROW(CalcInverseLessOrEqualValue(p))},
      {"x < y", below, 2, 0, NARROW(CalcLessValue(p)), At<CutLess, 0, 1>},
      {"inv x < y", below, 2, 1, NARROW(CalcInverseLessValue(p)), At<CutGreater, 1, 0>},
      {"x >= y", notBelow, 2, 0, NARROW(CalcNotLessValue(p))},
      {"inv x >= y", notBelow, 2, 1, NARROW(CalcInverseNotLessValue(p))},
      {"x > y", above, 2, 0, NARROW(CalcNotLessAndUnequalValue(p)), At<CutGreater, 0, 1>},
      {"inv x > y", above, 2, 1, NARROW(CalcInverseNotLessAndUnequalValue(p)), At<CutLess, 1, 0>},
      {"next", next, 2, 0, NARROW(CalcNextValue(p))},
      {"inv next", next, 2, 1, NARROW(CalcInverseNextValue(p))},
      {"neg", negative, 2, 0, NARROW(CalcNegativeValue(p))},
      {"inv neg", negative, 2, 1, NARROW(CalcInverseNegativeValue(p))},
      {"abs", absolute, 2, 0, NARROW(CalcAbsoluteValue(p)), AbsoluteOfFlagged, true, true},
      {"inv abs", absolute, 2, 1, NARROW(CalcInverseAbsoluteValue(p))},
      {"sign", sign, 2, 1, NARROW(CalcSignumValue(p))},
      {"inv sign", sign, 2, 0, NARROW(CalcInverseSignumValue(p)), SignCut},
      {"min", minimum, 3, 0, NARROW(CalcMinValue(p, q)), nullptr, true, true},
      {"inv min", minimum, 3, 1, NARROW(CalcFirstInverseMinValue(p, q)), NotBelowMinimum},
      {"max", maximum, 3, 0, NARROW(CalcMaxValue(p, q)), nullptr, true, true},
      {"inv max", maximum, 3, 1, NARROW(CalcFirstInverseMaxValue(p, q)), NotAboveMaximum},
      {"sum", sum, 3, 0, NARROW(CalcSumValue(p, q))},
      {"inv sum", sum, 3, 1, NARROW(CalcFirstInverseSumValue(p, q))},
      {"prod", product, 3, 0, NARROW(CalcProdValue(p, q))},
      {"inv prod", product, 3, 1, NARROW(CalcFirstInverseProdValue(p, q)), nullptr, false},
      {"mod", IsRemainder, 3, 0, NARROW(CalcModValue(p, q)), NothingByZero<0>},
      {"inv mod", IsRemainder, 3, 1, NARROW(CalcFirstInverseModValue(p, q)), NothingByZero<1>},
      {"inv2 mod", IsRemainder, 3, 2, NARROW(CalcSecondInverseModValue(p, q)), DivisorsOfRemainder},
      {"power", IsPower, 3, 0, NARROW(CalcPowerValue(p, q))},
      {"inv power", IsPower, 3, 1, NARROW(CalcFirstInversePowerValue(p, q)), OuterBases},
      {"inv2 power", IsPower, 3, 2, NARROW(CalcSecondInversePowerValue(p, q)), AllWhereNoneFits},
  };
  return table;
}

// When no exponent fits, all stay.
inline std::optional<Values> AllWhereNoneFits(const Case& c) {
  return Supported(Operations().back(), c).empty() ? std::optional(c[2].values) : std::nullopt;
}

inline const Operation& FindOperation(const std::string& name) {
  return *std::find_if(Operations().begin(), Operations().end(), [&](const Operation& op) { return op.name == name; });
}

}  // namespace narrowing
