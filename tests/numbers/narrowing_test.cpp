// Every narrowing of singles and intervals beside brute force over small domains, with operands of this library and
// of a type that it does not know.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <sstream>
#include <vector>

#include "numbers/VokFenIntervalInteger.h"
#include "support/foreignInteger.h"

namespace {

using support::ForeignInteger;
using Wide = std::int64_t;
using Values = std::set<VokLong>;

constexpr VokLong kWindow = 30;  // unknown operands are looked at up to here

std::optional<Wide> Power(Wide a, Wide e) {
  if (e < 0) {
    return a == 1 ? std::optional<Wide>(1) : a == -1 ? std::optional<Wide>(e % 2 == 0 ? 1 : -1) : std::nullopt;
  }
  Wide power = 1;
  for (Wide i = 0; i < e; ++i) {
    power *= a;
    if (std::abs(power) >= SubIntBase::sMax) {
      return std::nullopt;
    }
  }
  return power;
}

enum Strength { Weak, TightBesideKnown, Tight };

// x is the narrowed operand, p and q are the others; a unary operation has no use for q.
struct Operation {
  const char* name;
  int owner;  // whose method it is: 0 x, 1 p
  Strength strength;
  std::function<int(VokTarnInteger& x, VokTarnInteger& p, VokTarnInteger& q)> narrow;
  std::function<bool(Wide x, Wide p, Wide q)> holds;

  bool IsUnary() const { return std::string(name).find('q') == std::string::npos; }
};

#define NARROW(call) [](VokTarnInteger& x, VokTarnInteger& p, [[maybe_unused]] VokTarnInteger& q) { return call; }
#define HOLDS(condition) [](Wide x, Wide p, [[maybe_unused]] Wide q) { return condition; }

const Operation kOperations[] = {
    {"x = p", 0, Tight, NARROW(x.CalcEqualValue(p)), HOLDS(x == p)},
    {"p = x", 1, Tight, NARROW(p.CalcInverseEqualValue(x)), HOLDS(x == p)},
    {"x <= p", 0, Tight, NARROW(x.CalcLessOrEqualValue(p)), HOLDS(x <= p)},
    {"p <= x", 1, Tight, NARROW(p.CalcInverseLessOrEqualValue(x)), HOLDS(p <= x)},
    {"x < p", 0, Tight, NARROW(x.CalcLessValue(p)), HOLDS(x < p)},
    {"p < x", 1, Tight, NARROW(p.CalcInverseLessValue(x)), HOLDS(p < x)},
    {"x >= p", 0, Tight, NARROW(x.CalcNotLessValue(p)), HOLDS(x >= p)},
    {"p >= x", 1, Tight, NARROW(p.CalcInverseNotLessValue(x)), HOLDS(p >= x)},
    {"x > p", 0, Tight, NARROW(x.CalcNotLessAndUnequalValue(p)), HOLDS(x > p)},
    {"p > x", 1, Tight, NARROW(p.CalcInverseNotLessAndUnequalValue(x)), HOLDS(p > x)},
    {"x = next(p)", 0, Tight, NARROW(x.CalcNextValue(p)), HOLDS(x == p + 1)},
    {"p = next(x)", 1, Tight, NARROW(p.CalcInverseNextValue(x)), HOLDS(p == x + 1)},
    {"x = -p", 0, Tight, NARROW(x.CalcNegativeValue(p)), HOLDS(x == -p)},
    {"p = -x", 1, Tight, NARROW(p.CalcInverseNegativeValue(x)), HOLDS(p == -x)},
    {"x = |p|", 0, Tight, NARROW(x.CalcAbsoluteValue(p)), HOLDS(x == std::abs(p))},
    {"p = |x|", 1, Tight, NARROW(p.CalcInverseAbsoluteValue(x)), HOLDS(p == std::abs(x))},
    {"x = sign(p)", 1, Tight, NARROW(p.CalcSignumValue(x)), HOLDS(x == (p > 0) - (p < 0))},
    {"p = sign(x)", 0, Tight, NARROW(x.CalcInverseSignumValue(p)), HOLDS(p == (x > 0) - (x < 0))},
    {"x = min(p, q)", 0, Tight, NARROW(x.CalcMinValue(p, q)), HOLDS(x == std::min(p, q))},
    {"p = min(x, q)", 1, Tight, NARROW(p.CalcFirstInverseMinValue(x, q)), HOLDS(p == std::min(x, q))},
    {"x = max(p, q)", 0, Tight, NARROW(x.CalcMaxValue(p, q)), HOLDS(x == std::max(p, q))},
    {"p = max(x, q)", 1, Tight, NARROW(p.CalcFirstInverseMaxValue(x, q)), HOLDS(p == std::max(x, q))},
    {"x = p + q", 0, Tight, NARROW(x.CalcSumValue(p, q)), HOLDS(x == p + q)},
    {"p = x + q", 1, Tight, NARROW(p.CalcFirstInverseSumValue(x, q)), HOLDS(p == x + q)},
    {"x = p * q", 0, TightBesideKnown, NARROW(x.CalcProdValue(p, q)), HOLDS(x == p * q)},
    {"p = x * q", 1, TightBesideKnown, NARROW(p.CalcFirstInverseProdValue(x, q)), HOLDS(p == x * q)},
    {"x = p mod q", 0, TightBesideKnown, NARROW(x.CalcModValue(p, q)), HOLDS(q != 0 && x == p % q)},
    {"p = x mod q", 1, TightBesideKnown, NARROW(p.CalcFirstInverseModValue(x, q)), HOLDS(q != 0 && p == x % q)},
    {"p = q mod x", 1, Weak, NARROW(p.CalcSecondInverseModValue(q, x)), HOLDS(x != 0 && p == q % x)},
    {"x = p ^ q", 0, TightBesideKnown, NARROW(x.CalcPowerValue(p, q)), HOLDS(Power(p, q) == x)},
    {"p = x ^ q", 1, TightBesideKnown, NARROW(p.CalcFirstInversePowerValue(x, q)), HOLDS(Power(x, q) == p)},
    {"p = q ^ x", 1, TightBesideKnown, NARROW(p.CalcSecondInversePowerValue(q, x)), HOLDS(Power(q, x) == p)},
};

#undef NARROW
#undef HOLDS

enum class Kind { Single, Interval, Foreign };

// A domain before it takes shape: unknown, or the values that it starts from.
struct Domain {
  Kind kind = Kind::Interval;
  bool any = false;
  Values values;

  bool IsKnown() const { return !any && values.size() == 1; }
  // As far as the search for partners goes.
  Values Possible() const {
    Values possible = values;
    for (VokLong v = -kWindow; any && v <= kWindow; ++v) {
      possible.insert(v);
    }
    return possible;
  }
};

std::unique_ptr<VokTarnInteger> Make(const Domain& domain) {
  const ForeignInteger source = domain.any ? ForeignInteger() : ForeignInteger(domain.values);
  if (domain.kind == Kind::Foreign) {
    return std::make_unique<ForeignInteger>(source);
  }
  std::unique_ptr<VokTarnInteger> made = std::make_unique<VokFenIntervalInteger>();
  if (domain.kind == Kind::Single) {
    made = std::make_unique<VokFenSingleInteger>();
  }
  made->Assign(source);
  return made;
}

bool Has(const VokTarnInteger& x, VokLong v) {
  return x.IsNil() == 0 && (x.IsUndefined() != 0 || v == x.GetLowerBound() ||
                            (x.GetLowerBound() < v && v <= x.GetUpperBound() && x.GetNextExactValue(v - 1) == v));
}

Domain Interval(VokLong lower, VokLong upper) {
  Domain domain;
  for (VokLong v = lower; v <= upper; ++v) {
    domain.values.insert(v);
  }
  return domain;
}

Domain Random(std::mt19937& random, Kind kind) {
  const auto draw = [&random](int below) { return static_cast<VokLong>(random() % static_cast<unsigned>(below)); };
  const VokLong lower = draw(13) - 6;
  Domain domain = Interval(lower, kind == Kind::Single ? lower : lower + draw(2) * draw(9));
  domain.kind = kind;
  if (kind == Kind::Foreign) {
    std::erase_if(domain.values, [&](VokLong) { return draw(3) == 0; });
  }
  if (draw(10) == 0) {
    domain.values.clear();
    domain.any = draw(4) != 0;
  }
  return domain;
}

std::string Show(const VokTarnInteger& x) {
  std::ostringstream text;
  text << "[" << x.GetLowerBound() << ", " << x.GetUpperBound() << "] of " << x.GetCardinality();
  return text.str();
}

// Runs the operation and says what is wrong with the outcome; empty when nothing is.
std::string FaultOf(const Operation& operation, const Domain& x, const Domain& p, Domain q) {
  if (operation.IsUnary()) {
    q = Interval(0, 0);
  }
  const auto narrowed = Make(x);
  const auto first = Make(p);
  const auto second = Make(q);
  const std::string operands = Show(*narrowed) + "; " + Show(*first) + "; " + Show(*second);
  const int status = operation.narrow(*narrowed, *first, *second);

  const Values possibleP = p.Possible();
  const Values possibleQ = q.Possible();
  Values supported;
  bool lost = false;
  bool changed = x.any && narrowed->IsUndefined() == 0;
  for (const VokLong v : x.Possible()) {
    const bool partner = std::any_of(possibleP.begin(), possibleP.end(), [&](VokLong a) {
      return std::any_of(possibleQ.begin(), possibleQ.end(), [&](VokLong b) { return operation.holds(v, a, b); });
    });
    const bool kept = Has(*narrowed, v);
    lost = lost || (partner && !kept);
    changed = changed || !kept;
    if (partner) {
      supported.insert(v);
    }
  }
  const auto fault = [&](const char* what) {
    return std::string(operation.name) + " with " + operands + " gives " + Show(*narrowed) + ": " + what;
  };
  if (lost) {
    return fault("a value that has a partner is lost");
  }
  if (status != (changed ? 1 : 0)) {
    return fault("the status is wrong");
  }
  const bool known = p.IsKnown() && q.IsKnown();
  if (known && x.IsKnown() && supported.empty() && narrowed->IsNil() == 0) {
    return fault("known operands that contradict are not noticed");
  }
  const bool tight = operation.strength == Tight || (operation.strength == TightBesideKnown && known);
  if (tight && known && x.any && x.kind == Kind::Single && supported.size() == 1 && narrowed->IsUndefined() != 0) {
    return fault("the one value is not found");
  }
  const bool foreign = p.kind == Kind::Foreign || q.kind == Kind::Foreign;
  // A periodic outcome has no bounds inside the window.
  if (!tight || (x.any && operation.strength != Tight) || x.kind != Kind::Interval || foreign || p.any || q.any) {
    return "";
  }
  if (supported.empty() ? narrowed->IsNil() == 0
                        : std::max(narrowed->GetLowerBound(), -kWindow) != *supported.begin() ||
                              std::min(narrowed->GetUpperBound(), kWindow) != *supported.rbegin()) {
    return fault("a bound is too weak");
  }
  return "";
}

class Narrowing : public testing::TestWithParam<Operation> {};

TEST_P(Narrowing, OfSmallIntervalsLosesNoPartner) {
  std::vector<Domain> domains{Domain(), Interval(0, -1)};
  domains.front().any = true;
  for (VokLong lower = -2; lower <= 3; ++lower) {
    for (VokLong upper = lower; upper <= 3; ++upper) {
      domains.push_back(Interval(lower, upper));
    }
  }
  for (const Domain& x : domains) {
    for (const Domain& p : domains) {
      for (const Domain& q : domains) {
        if (!x.any || !p.any || !q.any) {
          ASSERT_EQ(FaultOf(GetParam(), x, p, q), "");
        }
      }
    }
  }
}

TEST_P(Narrowing, BesideOtherKindsLosesNoPartner) {
  constexpr unsigned seed = 20240611;
  std::mt19937 random(seed);
  for (int i = 0; i < 8000; ++i) {
    Domain operands[3];
    for (int k = 0; k < 3; ++k) {
      const unsigned kinds = k == GetParam().owner ? 2 : 3;
      operands[k] = Random(random, static_cast<Kind>(random() % kinds));
    }
    ASSERT_EQ(FaultOf(GetParam(), operands[0], operands[1], operands[2]), "") << "seed " << seed << ", case " << i;
  }
}

TEST_P(Narrowing, OfOneObjectGivesWhatCopiesGive) {
  for (const Domain& domain : {Interval(-3, 5), Interval(2, 9), Interval(0, 0), Interval(0, 1)}) {
    const auto same = Make(domain);
    const auto x = Make(domain);
    const auto p = Make(domain);
    const auto q = Make(domain);
    EXPECT_EQ(GetParam().narrow(*same, *same, *same), GetParam().narrow(*x, *p, *q));
    EXPECT_EQ(Show(*same), Show(*x));
  }
}

INSTANTIATE_TEST_SUITE_P(Operations, Narrowing, testing::ValuesIn(kOperations));

TEST(NarrowingOracle, NoticesAPlantedFault) {
  Operation operation = kOperations[2];
  operation.narrow = [](VokTarnInteger& x, VokTarnInteger& p, VokTarnInteger&) { return x.CalcLessValue(p); };
  EXPECT_NE(FaultOf(operation, Interval(0, 3), Interval(1, 2), Interval(0, 0)), "");
  operation.narrow = [](VokTarnInteger&, VokTarnInteger&, VokTarnInteger&) { return 0; };
  EXPECT_NE(FaultOf(operation, Interval(0, 3), Interval(1, 2), Interval(0, 0)), "");
}

TEST(Narrowing, OfAnUnknownProductGivesTheHullOfAllProducts) {
  for (VokLong a = -3; a <= 3; ++a) {
    for (VokLong b = a; b <= 3; ++b) {
      for (VokLong c = -3; c <= 3; ++c) {
        Values products;
        for (const VokLong v : Interval(a, b).values) {
          products.insert({v * c, v * (c + 2)});
        }
        VokFenIntervalInteger z;
        z.CalcProdValue(VokFenIntervalInteger(a, b), VokFenIntervalInteger(c, c + 2));
        EXPECT_EQ(Show(z), Show(VokFenIntervalInteger(*products.begin(), *products.rbegin())));
      }
    }
  }
}

TEST(Narrowing, OfADivisorKeepsItAboveTheRemainder) {
  VokFenIntervalInteger divisor(0, 50);
  VokFenIntervalInteger(3, 4).CalcSecondInverseModValue(VokFenIntervalInteger(10, 20), divisor);
  EXPECT_EQ(Show(divisor), Show(VokFenIntervalInteger(4, 17)));
}

TEST(Narrowing, OfAForeignOperandThatIsUnknownFindsTheOneValue) {
  ForeignInteger x;
  EXPECT_EQ(VokFenSingleInteger(3).CalcInverseNegativeValue(x), 1);
  EXPECT_EQ(x.GetValues(), Values{-3});
}

TEST(Narrowing, TreatsTheEndsOfTheRangeAsInfinite) {
  constexpr VokLong kMax = SubIntBase::sMax;
  VokFenIntervalInteger z(5, kMax);
  VokFenIntervalInteger x;
  EXPECT_EQ(z.CalcFirstInverseSumValue(x, VokFenIntervalInteger(0, 3)), 1);
  EXPECT_EQ(Show(x), Show(VokFenIntervalInteger(2, kMax)));
  EXPECT_EQ(x.CalcLessValue(z), 0) << "z has no upper bound";
  VokFenIntervalInteger open;
  open.CalcSumValue(VokFenIntervalInteger(-kMax, 0), VokFenIntervalInteger(100, 200));
  EXPECT_EQ(Show(open), Show(VokFenIntervalInteger(-kMax, 200)));
  VokFenIntervalInteger y(3, 7);
  EXPECT_EQ(y.CalcProdValue(VokFenIntervalInteger(2, kMax), VokFenIntervalInteger(2, 3)), 1);
  EXPECT_EQ(Show(y), Show(VokFenIntervalInteger(4, 7)));
  VokFenSingleInteger sum;
  EXPECT_EQ(sum.CalcSumValue(VokFenSingleInteger(2000000000), VokFenSingleInteger(2000000000)), 1);
  EXPECT_EQ(sum.GetExactValue(), kMax);
}

}  // namespace
