// Where the narrowings of the enumerated set depart from the mathematics.
#pragma once

#include <array>
#include <map>
#include <optional>

#include "support/operands.h"

namespace narrowing {

using support::Filter;
using support::IsPower;
using support::Model;
using support::Operation;
using support::Values;

using Case = std::array<Model, 3>;

// Any stands for as much as the small universes of the tests reach.
inline Values Supported(const Operation& op, const Case& c) {
  static const Values everything = support::Parse("-12..12").values;
  const auto valuesOf = [](const Model& m) -> const Values& { return m.any ? everything : m.values; };
  return support::Supported(op, valuesOf(c[0]), valuesOf(c[1]), valuesOf(c[2]));
}

template <class Holds>
bool AnyOf(const Values& values, Holds holds) {
  return std::any_of(values.begin(), values.end(), holds);
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
  return a.emptyMeansAny == 1 && oneSided ? std::optional(c[0].values) : std::nullopt;
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

// A divisor 0 always stays; a dividend that is Any leaves nothing.
inline std::optional<Values> DivisorsOfRemainder(const Case& c) {
  if (c[0].any) {
    return std::nullopt;
  }
  return Filter(c[2].values, [&](VokLong b) {
    return !c[1].any && (b == 0 || AnyOf(c[1].values, [&](VokLong a) { return c[0].Has(a % b); }));
  });
}

// Where 0 is a possible exponent and 1 a possible result, only the two outer bases stay for that reason.
inline std::optional<Values> OuterBases(const Case& c) {
  if (c[1].any || c[2].any || !c[2].Has(0) || !c[0].Has(1)) {
    return std::nullopt;
  }
  return Filter(c[1].values, [&](VokLong x) {
    return x == c[1].values.front() || x == c[1].values.back() || AnyOf(c[2].values, [&](VokLong y) {
             return y != 0 && AnyOf(c[0].values, [&](VokLong z) { return IsPower(z, x, y); });
           });
  });
}

// When no exponent fits, all stay.
inline std::optional<Values> AllWhereNoneFits(const Case& c) {
  return Supported(support::FindOperation("inv2 power"), c).empty() ? std::optional(c[2].values) : std::nullopt;
}

template <auto Cut, unsigned X, unsigned Y>
std::optional<Values> At(const Case& c) {
  return Cut(c[X], c[Y]);
}

struct Departure {
  // The values that a kept rule leaves in a narrowed operand with known values; none where the mathematics holds.
  std::optional<Values> (*rule)(const Case&) = nullptr;
  // Every value kept has a support.
  bool tight = true;
  // Narrows also when a given operand is Any.
  bool seesAny = false;
};

inline const Departure& DepartureOf(const Operation& op) {
  static const Departure none;
  static const std::map<std::string, Departure> departures = {
      {"x < y", {At<CutLess, 0, 1>}},     {"inv x < y", {At<CutGreater, 1, 0>}},    {"x > y", {At<CutGreater, 0, 1>}},
      {"inv x > y", {At<CutLess, 1, 0>}}, {"abs", {AbsoluteOfFlagged, true, true}}, {"sign", {SignCut}},
      {"min", {nullptr, true, true}},     {"inv min", {NotBelowMinimum}},           {"max", {nullptr, true, true}},
      {"inv max", {NotAboveMaximum}},     {"inv prod", {nullptr, false}},           {"mod", {NothingByZero<0>}},
      {"inv mod", {NothingByZero<1>}},    {"inv2 mod", {DivisorsOfRemainder}},      {"inv power", {OuterBases}},
      {"inv2 power", {AllWhereNoneFits}}};
  const auto found = departures.find(op.name);
  return found == departures.end() ? none : found->second;
}

}  // namespace narrowing
