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

constexpr VokLong kWindow = 15;  // unknown operands are searched for partners up to here

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

// x is the narrowed operand, p and q are the others; a unary operation has no use for q.
struct Operation {
  const char* name;
  int owner;  // whose method it is: 0 x, 1 p
  enum { Weak, TightBesideKnown, Tight } strength;
  std::function<int(VokTarnInteger& x, VokTarnInteger& p, VokTarnInteger& q)> narrow;
  std::function<bool(Wide x, Wide p, Wide q)> holds;

  bool IsUnary() const { return std::string(name).find('q') == std::string::npos; }
};

#define NARROW(call) [](VokTarnInteger& x, VokTarnInteger& p, [[maybe_unused]] VokTarnInteger& q) { return call; }
#define HOLDS(condition) [](Wide x, Wide p, [[maybe_unused]] Wide q) { return condition; }

const Operation kOperations[] = {
    {"x = p", 0, Operation::Tight, NARROW(x.CalcEqualValue(p)), HOLDS(x == p)},
    {"p = x", 1, Operation::Tight, NARROW(p.CalcInverseEqualValue(x)), HOLDS(x == p)},
    {"x <= p", 0, Operation::Tight, NARROW(x.CalcLessOrEqualValue(p)), HOLDS(x <= p)},
    {"p <= x", 1, Operation::Tight, NARROW(p.CalcInverseLessOrEqualValue(x)), HOLDS(p <= x)},
    {"x < p", 0, Operation::Tight, NARROW(x.CalcLessValue(p)), HOLDS(x < p)},
    {"p < x", 1, Operation::Tight, NARROW(p.CalcInverseLessValue(x)), HOLDS(p < x)},
    {"x >= p", 0, Operation::Tight, NARROW(x.CalcNotLessValue(p)), HOLDS(x >= p)},
    {"p >= x", 1, Operation::Tight, NARROW(p.CalcInverseNotLessValue(x)), HOLDS(p >= x)},
    {"x > p", 0, Operation::Tight, NARROW(x.CalcNotLessAndUnequalValue(p)), HOLDS(x > p)},
    {"p > x", 1, Operation::Tight, NARROW(p.CalcInverseNotLessAndUnequalValue(x)), HOLDS(p > x)},
    {"x = next(p)", 0, Operation::Tight, NARROW(x.CalcNextValue(p)), HOLDS(x == p + 1)},
    {"p = next(x)", 1, Operation::Tight, NARROW(p.CalcInverseNextValue(x)), HOLDS(p == x + 1)},
    {"x = -p", 0, Operation::Tight, NARROW(x.CalcNegativeValue(p)), HOLDS(x == -p)},
    {"p = -x", 1, Operation::Tight, NARROW(p.CalcInverseNegativeValue(x)), HOLDS(p == -x)},
    {"x = |p|", 0, Operation::Tight, NARROW(x.CalcAbsoluteValue(p)), HOLDS(x == std::abs(p))},
    {"p = |x|", 1, Operation::Tight, NARROW(p.CalcInverseAbsoluteValue(x)), HOLDS(p == std::abs(x))},
    {"x = sign(p)", 1, Operation::Tight, NARROW(p.CalcSignumValue(x)), HOLDS(x == (p > 0) - (p < 0))},
    {"p = sign(x)", 0, Operation::Tight, NARROW(x.CalcInverseSignumValue(p)), HOLDS(p == (x > 0) - (x < 0))},
    {"x = min(p, q)", 0, Operation::Tight, NARROW(x.CalcMinValue(p, q)), HOLDS(x == std::min(p, q))},
    {"p = min(x, q)", 1, Operation::Tight, NARROW(p.CalcFirstInverseMinValue(x, q)), HOLDS(p == std::min(x, q))},
    {"x = max(p, q)", 0, Operation::Tight, NARROW(x.CalcMaxValue(p, q)), HOLDS(x == std::max(p, q))},
    {"p = max(x, q)", 1, Operation::Tight, NARROW(p.CalcFirstInverseMaxValue(x, q)), HOLDS(p == std::max(x, q))},
    {"x = p + q", 0, Operation::Tight, NARROW(x.CalcSumValue(p, q)), HOLDS(x == p + q)},
    {"p = x + q", 1, Operation::Tight, NARROW(p.CalcFirstInverseSumValue(x, q)), HOLDS(p == x + q)},
    {"x = p * q", 0, Operation::TightBesideKnown, NARROW(x.CalcProdValue(p, q)), HOLDS(x == p * q)},
    {"p = x * q", 1, Operation::TightBesideKnown, NARROW(p.CalcFirstInverseProdValue(x, q)), HOLDS(p == x * q)},
    {"x = p mod q", 0, Operation::TightBesideKnown, NARROW(x.CalcModValue(p, q)), HOLDS(q != 0 && x == p % q)},
    {"p = x mod q", 1, Operation::TightBesideKnown, NARROW(p.CalcFirstInverseModValue(x, q)),
     HOLDS(q != 0 && p == x % q)},
    {"p = q mod x", 1, Operation::Weak, NARROW(p.CalcSecondInverseModValue(q, x)), HOLDS(x != 0 && p == q % x)},
    {"x = p ^ q", 0, Operation::TightBesideKnown, NARROW(x.CalcPowerValue(p, q)), HOLDS(Power(p, q) == x)},
    {"p = x ^ q", 1, Operation::TightBesideKnown, NARROW(p.CalcFirstInversePowerValue(x, q)), HOLDS(Power(x, q) == p)},
    {"p = q ^ x", 1, Operation::TightBesideKnown, NARROW(p.CalcSecondInversePowerValue(q, x)), HOLDS(Power(q, x) == p)},
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
  std::unique_ptr<VokTarnInteger> made;
  if (domain.kind == Kind::Foreign) {
    return domain.any ? std::make_unique<ForeignInteger>() : std::make_unique<ForeignInteger>(domain.values);
  }
  if (domain.kind == Kind::Single) {
    made = std::make_unique<VokFenSingleInteger>();
  } else {
    made = std::make_unique<VokFenIntervalInteger>();
  }
  if (!domain.any) {
    made->SetNilValue();
    for (const VokLong v : domain.values) {
      made->AddExactValue(v);
    }
  }
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
  Domain domain;
  const VokLong lower = draw(13) - 6;
  if (kind == Kind::Interval) {
    domain = Interval(lower, lower + draw(2) * draw(9));
  }
  domain.kind = kind;
  domain.any = draw(12) == 0;
  if (kind == Kind::Single) {
    domain.values = {lower};
  }
  for (int i = draw(5); kind == Kind::Foreign && i >= 0; --i) {
    domain.values.insert(draw(13) - 6);
  }
  if (domain.any || draw(30) == 0) {
    domain.values.clear();
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
  if (x.any || p.any || q.any) {
    return "";
  }
  const bool known = p.IsKnown() && q.IsKnown();
  if (x.IsKnown() && known && supported.empty() && narrowed->IsNil() == 0) {
    return fault("known operands that contradict are not noticed");
  }
  const bool intervals = x.kind == Kind::Interval && p.kind != Kind::Foreign && q.kind != Kind::Foreign;
  if (intervals && (operation.strength == Operation::Tight || (operation.strength != Operation::Weak && known)) &&
      (supported.empty()
           ? narrowed->IsNil() == 0
           : narrowed->GetLowerBound() != *supported.begin() || narrowed->GetUpperBound() != *supported.rbegin())) {
    return fault("a bound is too weak");
  }
  return "";
}

class Narrowing : public testing::TestWithParam<Operation> {};

TEST_P(Narrowing, OfSmallIntervalsLosesNoPartner) {
  std::vector<Domain> domains{Domain(), Interval(0, -1)};
  domains.front().any = true;
  for (VokLong lower = -3; lower <= 3; ++lower) {
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
  for (int i = 0; i < 20000; ++i) {
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

TEST_P(Narrowing, OfAnUnknownSingleFindsTheOneValue) {
  for (VokLong a = -3; a <= 3; ++a) {
    for (VokLong b = -3; b <= 3; ++b) {
      Values partners;
      for (VokLong v = -2 * kWindow; v <= 2 * kWindow; ++v) {
        if (GetParam().holds(v, a, b)) {
          partners.insert(v);
        }
      }
      VokFenSingleInteger x;
      VokFenSingleInteger p(a);
      VokFenSingleInteger q(b);
      GetParam().narrow(x, p, q);
      EXPECT_TRUE(x.IsUndefined() != 0 || partners == Values{x.GetExactValue()} || (x.IsNil() != 0 && partners.empty()))
          << GetParam().name << " with " << a << ", " << b;
      if (partners.size() == 1 && GetParam().strength != Operation::Weak) {
        EXPECT_EQ(x.GetExactValue(), *partners.begin()) << GetParam().name << " with " << a << ", " << b;
      }
    }
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

TEST(Narrowing, TreatsTheEndsOfTheRangeAsInfinite) {
  constexpr VokLong kMax = SubIntBase::sMax;
  VokFenIntervalInteger z(5, kMax);
  VokFenIntervalInteger x;
  EXPECT_EQ(z.CalcFirstInverseSumValue(x, VokFenIntervalInteger(0, 3)), 1);
  EXPECT_EQ(Show(x), Show(VokFenIntervalInteger(2, kMax)));
  EXPECT_EQ(x.CalcLessValue(z), 0) << "z has no upper bound";
  VokFenIntervalInteger y(3, 7);
  EXPECT_EQ(y.CalcProdValue(VokFenIntervalInteger(2, kMax), VokFenIntervalInteger(2, 3)), 1);
  EXPECT_EQ(Show(y), Show(VokFenIntervalInteger(4, 7)));
  VokFenSingleInteger sum;
  EXPECT_EQ(sum.CalcSumValue(VokFenSingleInteger(2000000000), VokFenSingleInteger(2000000000)), 1);
  EXPECT_EQ(sum.GetExactValue(), kMax);
}

}  // namespace
