// Every narrowing operation of the enumerated set as one table: the relation that it narrows, which operand
// it narrows, and where it departs from the mathematics.
#pragma once

#include <array>
#include <cstdlib>
#include <optional>

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

// Any, as far as the small universes of the tests reach.
inline const Values& Everything() {
  static const Values values = [] {
    Values v;
    for (VokLong k = -12; k <= 12; ++k) {
      v.push_back(k);
    }
    return v;
  }();
  return values;
}

inline const Values& ValuesOf(const Model& m) {
  return m.any ? Everything() : m.values;
}

// The values of the narrowed operand that have a partner in every other operand.
inline Values Supported(const Operation& op, const Case& c) {
  static const Values unused = {0};
  Values supported;
  std::array<VokLong, 3> t{};
  const unsigned n = op.narrowed;
  const unsigned p = n == 0 ? 1 : 0;
  const unsigned q = n == 2 ? 1 : 2;
  const Values& others = q < op.operands ? ValuesOf(c[q]) : unused;
  for (const VokLong v : ValuesOf(c[n])) {
    t[n] = v;
    bool found = false;
    for (std::size_t i = 0; !found && i < ValuesOf(c[p]).size(); ++i) {
      t[p] = ValuesOf(c[p])[i];
      for (std::size_t j = 0; !found && j < others.size(); ++j) {
        t[q] = others[j];
        found = op.holds(t[0], t[1], t[2]);
      }
    }
    if (found) {
      supported.push_back(v);
    }
  }
  return supported;
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

using E = VokFenEnumInteger;
using I = VokTarnInteger;

inline std::optional<Values> AllWhereNoneFits(const Case& c);

// clang-format off
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
      {"x = y", equal, 2, 0, [](E& x, I& y, I&) { return x.CalcEqualValue(y); }},
      {"inverse x = y", equal, 2, 1, [](E& x, I& y, I&) { return x.CalcInverseEqualValue(y); }},
      {"x <= y", notAbove, 2, 0, [](E& x, I& y, I&) { return x.CalcLessOrEqualValue(y); }},
      {"inverse x <= y", notAbove, 2, 1, [](E& x, I& y, I&) { return x.CalcInverseLessOrEqualValue(y); }},
      {"x < y", below, 2, 0, [](E& x, I& y, I&) { return x.CalcLessValue(y); },
       [](const Case& c) { return CutLess(c[0], c[1]); }},
      {"inverse x < y", below, 2, 1, [](E& x, I& y, I&) { return x.CalcInverseLessValue(y); },
       [](const Case& c) { return CutGreater(c[1], c[0]); }},
      {"x >= y", notBelow, 2, 0, [](E& x, I& y, I&) { return x.CalcNotLessValue(y); }},
      {"inverse x >= y", notBelow, 2, 1, [](E& x, I& y, I&) { return x.CalcInverseNotLessValue(y); }},
      {"x > y", above, 2, 0, [](E& x, I& y, I&) { return x.CalcNotLessAndUnequalValue(y); },
       [](const Case& c) { return CutGreater(c[0], c[1]); }},
      {"inverse x > y", above, 2, 1, [](E& x, I& y, I&) { return x.CalcInverseNotLessAndUnequalValue(y); },
       [](const Case& c) { return CutLess(c[1], c[0]); }},
      {"y = next x", next, 2, 0, [](E& y, I& x, I&) { return y.CalcNextValue(x); }},
      {"inverse y = next x", next, 2, 1, [](E& y, I& x, I&) { return y.CalcInverseNextValue(x); }},
      {"z = -a", negative, 2, 0, [](E& z, I& a, I&) { return z.CalcNegativeValue(a); }},
      {"inverse z = -a", negative, 2, 1, [](E& z, I& a, I&) { return z.CalcInverseNegativeValue(a); }},
      {"z = abs a", absolute, 2, 0, [](E& z, I& a, I&) { return z.CalcAbsoluteValue(a); }, AbsoluteOfFlagged, true, true},
      {"inverse z = abs a", absolute, 2, 1, [](E& z, I& a, I&) { return z.CalcInverseAbsoluteValue(a); }},
      {"s = sign a", sign, 2, 1, [](E& a, I& s, I&) { return a.CalcSignumValue(s); }},
      {"inverse s = sign a", sign, 2, 0, [](E& a, I& s, I&) { return a.CalcInverseSignumValue(s); }, SignCut},
      {"z = min", minimum, 3, 0, [](E& z, I& a, I& b) { return z.CalcMinValue(a, b); }, nullptr, true, true},
      {"inverse z = min", minimum, 3, 1, [](E& z, I& a, I& b) { return z.CalcFirstInverseMinValue(a, b); }, NotBelowMinimum},
      {"z = max", maximum, 3, 0, [](E& z, I& a, I& b) { return z.CalcMaxValue(a, b); }, nullptr, true, true},
      {"inverse z = max", maximum, 3, 1, [](E& z, I& a, I& b) { return z.CalcFirstInverseMaxValue(a, b); }, NotAboveMaximum},
      {"z = a + b", sum, 3, 0, [](E& z, I& a, I& b) { return z.CalcSumValue(a, b); }},
      {"inverse z = a + b", sum, 3, 1, [](E& z, I& a, I& b) { return z.CalcFirstInverseSumValue(a, b); }},
      {"z = a * b", product, 3, 0, [](E& z, I& a, I& b) { return z.CalcProdValue(a, b); }},
      {"inverse z = a * b", product, 3, 1, [](E& z, I& a, I& b) { return z.CalcFirstInverseProdValue(a, b); }, nullptr, false},
      {"z = a mod b", IsRemainder, 3, 0, [](E& z, I& a, I& b) { return z.CalcModValue(a, b); }, NothingByZero<0>},
      {"inverse z = a mod b", IsRemainder, 3, 1, [](E& z, I& a, I& b) { return z.CalcFirstInverseModValue(a, b); }, NothingByZero<1>},
      {"second inverse z = a mod b", IsRemainder, 3, 2, [](E& z, I& a, I& b) { return z.CalcSecondInverseModValue(a, b); }, DivisorsOfRemainder},
      {"z = a ^ b", IsPower, 3, 0, [](E& z, I& a, I& b) { return z.CalcPowerValue(a, b); }},
      {"inverse z = a ^ b", IsPower, 3, 1, [](E& z, I& a, I& b) { return z.CalcFirstInversePowerValue(a, b); }, OuterBases},
      {"second inverse z = a ^ b", IsPower, 3, 2, [](E& z, I& a, I& b) { return z.CalcSecondInversePowerValue(a, b); }, AllWhereNoneFits},
  };
  return table;
}
// clang-format on

// When no exponent fits, all stay.
inline std::optional<Values> AllWhereNoneFits(const Case& c) {
  return Supported(Operations().back(), c).empty() ? std::optional(c[2].values) : std::nullopt;
}

inline const Operation& FindOperation(const std::string& name) {
  return *std::find_if(Operations().begin(), Operations().end(), [&](const Operation& op) { return op.name == name; });
}

}  // namespace narrowing
