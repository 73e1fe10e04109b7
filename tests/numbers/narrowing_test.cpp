// Every narrowing of singles and intervals beside brute force over small domains, with operands of this library and
// of a type that it does not know.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <random>

#include "numbers/values.h"
#include "support/foreignInteger.h"
#include "support/operations.h"
#include "support/soak.h"

namespace {

using support::ForeignInteger;
using support::Operation;
using support::Values;

constexpr VokLong kWindow = 30;  // unknown operands are looked at up to here

// A domain before it takes shape: unknown, or the values that it starts from.
struct Domain {
  char kind;  // i an interval, s a single, f of the type that the library does not know
  bool any;
  Values values;

  bool IsKnown() const { return !any && values.size() == 1; }
};

Domain Range(VokLong lower, VokLong upper, char kind = 'i') {
  Domain domain{kind, false, {}};
  for (VokLong v = lower; v <= upper; ++v) {
    domain.values.push_back(v);
  }
  return domain;
}

Domain Unknown(char kind = 'i') {
  return {kind, true, Range(-kWindow, kWindow).values};
}

std::unique_ptr<VokTarnInteger> Make(const Domain& from) {
  const ForeignInteger source = from.any ? ForeignInteger() : ForeignInteger({from.values.begin(), from.values.end()});
  if (from.kind == 'f') {
    return std::make_unique<ForeignInteger>(source);
  }
  std::unique_ptr<VokTarnInteger> made = std::make_unique<Interval>();
  if (from.kind == 's') {
    made = std::make_unique<Single>();
  }
  made->Assign(source);
  return made;
}

using Case = std::array<Domain, 3>;

std::string Text(const Operation& op, const Case& c) {
  std::string text = op.name + " on";
  for (const Domain& d : c) {
    text += std::string(" ") + d.kind + (d.any ? " Any" : " " + testing::PrintToString(d.values));
  }
  return text;
}

// Runs the operation and says what is wrong with the outcome; empty when nothing is.
std::string FaultOf(const Operation& op, const Case& c) {
  const std::unique_ptr<VokTarnInteger> made[] = {Make(c[0]), Make(c[1]), Make(c[2])};
  const Domain& before = c[op.narrowed];
  const VokTarnInteger& after = *made[op.narrowed];
  const int status = op.run(*made[0], *made[1], *made[2]);
  const auto isKept = [&after](VokLong v) { return after.IsPossible(v) != 0; };
  const Values supported = support::Supported(op, c[0].values, c[1].values, c[2].values);
  if (!std::all_of(supported.begin(), supported.end(), isKept)) {
    return "a value that has a partner is lost";
  }
  const bool kept = std::all_of(before.values.begin(), before.values.end(), isKept);
  if (status != (kept && before.any == (after.IsUndefined() != 0) ? 0 : 1)) {
    return "the status is wrong";
  }
  bool known = true;
  bool ranges = before.kind == 'i';
  for (unsigned i = 0; i < op.operands; ++i) {
    known = known && (i == op.narrowed || c[i].IsKnown());
    ranges = ranges && (i == op.narrowed || (c[i].kind != 'f' && !c[i].any));
  }
  if (known && before.IsKnown() && supported.empty() && after.IsNil() == 0) {
    return "known operands that contradict are not noticed";
  }
  const bool loose = op.name.ends_with("prod") || op.name.ends_with("mod") || op.name.ends_with("power");
  const bool tight = !loose || (known && op.name != "inv2 mod");
  if (tight && known && before.any && before.kind == 's' && supported.size() == 1 && after.IsUndefined() != 0) {
    return "the one value is not found";
  }
  // A periodic outcome has no bounds inside the window.
  const bool inside = after.GetLowerBound() >= -kWindow && after.GetUpperBound() <= kWindow;
  if (!ranges || !(before.any && loose ? op.name == "prod" && inside : tight)) {
    return "";
  }
  const bool exact = supported.empty() ? after.IsNil() != 0
                                       : std::max(after.GetLowerBound(), -kWindow) == supported.front() &&
                                             std::min(after.GetUpperBound(), kWindow) == supported.back();
  return exact ? "" : "a bound is too weak";
}

TEST(NumberNarrowing, OfSmallIntervalsLosesNoPartner) {
  std::vector<Domain> domains{Range(0, -1), Unknown()};
  for (VokLong lower = -2; lower <= 3; ++lower) {
    for (VokLong upper = lower; upper <= 3; ++upper) {
      domains.push_back(Range(lower, upper));
    }
  }
  for (const Operation& op : support::Operations()) {
    for (const Domain& x : domains) {
      for (const Domain& y : domains) {
        for (std::size_t i = 0; i < (op.operands == 3 ? domains.size() : 1); ++i) {
          const Case c = {x, y, domains[i]};
          ASSERT_TRUE((x.any && y.any && domains[i].any) || FaultOf(op, c).empty()) << FaultOf(op, c) << Text(op, c);
        }
      }
    }
  }
}

TEST(NumberNarrowing, BesideOtherKindsLosesNoPartner) {
  constexpr unsigned seed = 20240611;
  std::mt19937 random(seed);
  const auto draw = [&random](int below) { return static_cast<VokLong>(random() % static_cast<unsigned>(below)); };
  for (const Operation& op : support::Operations()) {
    for (int i = 0; i < 8000 * support::SoakFactor(); ++i) {
      Case c;
      for (Domain& d : c) {
        // The unknown type narrows, and is asked, by the framework's relations alone.
        const char kind = "isf"[draw(&d == &c[0] && !op.name.ends_with(" y") ? 2 : 3)];
        const VokLong lower = draw(13) - 6;
        d = Range(lower, kind == 's' ? lower : lower + draw(2) * draw(9), kind);
        std::erase_if(d.values, [&](VokLong) { return kind == 'f' && draw(3) == 0; });
        if (draw(10) == 0) {
          d = draw(4) == 0 ? Range(0, -1, kind) : Unknown(kind);
        }
      }
      ASSERT_EQ(FaultOf(op, c), "") << Text(op, c) << " seed " << seed << ", case " << i;
    }
  }
}

TEST(NumberNarrowing, OracleNoticesAPlantedFault) {
  Operation op = support::FindOperation("x <= y");
  const Case c = {Range(0, 3), Range(1, 2), Range(0, 0)};
  op.run = [](VokTarnInteger& x, VokTarnInteger& y, VokTarnInteger&) { return x.CalcLessValue(y); };
  EXPECT_EQ(FaultOf(op, c), "a value that has a partner is lost");
  op.run = [](VokTarnInteger&, VokTarnInteger&, VokTarnInteger&) { return 0; };
  EXPECT_EQ(FaultOf(op, c), "a bound is too weak");
}

TEST(NumberNarrowing, AtTheEndsOfTheRange) {
  struct Row {
    const char *operation, *operands[3], *expected;
  };
  for (const Row& row : {Row{"inv sum", {"[5, Max]", "Any", "[0, 3]"}, "[2, Max]"},
                         Row{"x < y", {"[2, Max]", "[5, Max]", "0"}, "[2, Max]"},
                         Row{"x > y", {"Any", "Min", "0"}, "[-2147483644, Max]"},
                         Row{"sum", {"Any", "[Min, 0]", "[100, 200]"}, "[Min, 200]"},
                         Row{"prod", {"[3, 7]", "[2, Max]", "[2, 3]"}, "[4, 7]"},
                         Row{"inv2 mod", {"[3, 4]", "[10, 20]", "[0, 50]"}, "[4, 17]"}}) {
    const Operation& op = support::FindOperation(row.operation);
    Interval x[] = {IntervalOf(row.operands[0]), IntervalOf(row.operands[1]), IntervalOf(row.operands[2])};
    op.run(x[0], x[1], x[2]);
    EXPECT_EQ(Show(x[op.narrowed]), row.expected) << op.name;
  }
  Single sum;
  EXPECT_EQ(sum.CalcSumValue(Single(2000000000), Single(2000000000)), 1);
  EXPECT_EQ(sum.GetExactValue(), kMax);
  ForeignInteger x;
  EXPECT_EQ(Single(3).CalcInverseNegativeValue(x), 1);
  EXPECT_EQ(x.GetValues(), std::set<VokLong>{-3});
}

std::string Text(const ForeignInteger& x) {
  return x.IsUndefined() != 0 ? "Any" : testing::PrintToString(x.GetValues());
}

// What every integer type has from the start, on all pairs of small sets: relations are exact, arithmetic does nothing.
TEST(NumberNarrowing, OfATypeWithoutOperationsOfItsOwn) {
  constexpr VokLong members[] = {-2, 0, 1, 2, 4};
  std::vector<ForeignInteger> domains(1);
  for (unsigned bits = 0; bits < 32; ++bits) {
    std::set<VokLong> values;
    for (unsigned k = 0; k < 5; ++k) {
      if ((bits >> k & 1U) != 0) {
        values.insert(members[k]);
      }
    }
    domains.emplace_back(values);
  }
  using Change = std::function<int(ForeignInteger&)>;
  const auto check = [](const char* name, const ForeignInteger& x, const Change& change, const ForeignInteger& result) {
    ForeignInteger after = x;
    const int status = change(after);
    EXPECT_EQ(Text(after), Text(result)) << name << " from " << Text(x);
    EXPECT_EQ(status, Text(x) == Text(result) ? 0 : 1) << name << " from " << Text(x);
  };
  const ForeignInteger any, nil(std::set<VokLong>{});
  for (const ForeignInteger& x : domains) {
    const std::set<VokLong>& values = x.GetValues();
    const auto pinned = [&](VokLong v) {
      return x.IsUndefined() != 0 || values.contains(v) ? ForeignInteger({v}) : nil;
    };
    check(
        "least", x, [](auto& z) { return z.CalcMinValue(); }, pinned(-VokTarnInteger::sGreatest));
    check(
        "greatest", x, [](auto& z) { return z.CalcMaxValue(); }, pinned(VokTarnInteger::sGreatest));
    check(
        "zero", x, [](auto& z) { return z.CalcZeroValue(); }, pinned(0));
    check(
        "one", x, [](auto& z) { return z.CalcOneValue(); }, pinned(1));
    for (VokLong v = -3; v <= 5; ++v) {
      EXPECT_EQ(x.IsPossible(v), x.IsUndefined() != 0 || values.contains(v)) << Text(x) << v;
    }
    for (const ForeignInteger& y : domains) {
      const std::set<VokLong>& others = y.GetValues();
      const bool isNil = x.IsNil() != 0 || y.IsNil() != 0;
      const bool isOpen = x.IsUndefined() != 0 || y.IsUndefined() != 0;
      for (const Operation& op : support::Operations()) {
        const ForeignInteger& narrowed = op.narrowed == 0 ? x : y;
        const ForeignInteger& other = op.narrowed == 0 ? y : x;
        ForeignInteger expected = narrowed;
        if (op.name.ends_with(" y")) {
          const bool isEqual = op.name.ends_with(" = y");
          const Values first(values.begin(), values.end()), second(others.begin(), others.end());
          const Values kept = support::Supported(op, first, second, {});
          expected = other.IsNil() != 0            ? nil
                     : other.IsUndefined() != 0    ? narrowed
                     : narrowed.IsUndefined() != 0 ? (isEqual ? other : any)
                                                   : ForeignInteger({kept.begin(), kept.end()});
        }
        ForeignInteger partner = other;
        check(
            op.name.c_str(), narrowed,
            [&](auto& z) { return op.narrowed == 0 ? op.run(z, partner, partner) : op.run(partner, z, z); }, expected);
      }
      ForeignInteger all = x.IsUndefined() != 0 || y.IsUndefined() == 0 ? x : any;
      for (const VokLong v : others) {
        all.AddExactValue(v);
      }
      check(
          "unite", x, [&](auto& z) { return z.Unite(y); }, all);
      ForeignInteger unequal = y.IsNil() != 0 ? nil : x;
      if (others.size() == 1) {
        unequal.RemoveExactValue(*others.begin());
      }
      check(
          "<>", x, [&](auto& z) { return z.CalcUnequalValue(y); }, unequal);
      check(
          "inv <>", x, [&](auto& z) { return y.CalcInverseUnequalValue(z); }, unequal);
      const auto decides = [&](const char* name, const auto& decide, auto holds) {
        bool can[2] = {isOpen, isOpen};
        for (const VokLong v : values) {
          for (const VokLong w : others) {
            can[holds(v, w) ? 1 : 0] = true;
          }
        }
        Boolean truth;
        const int status = decide(truth);
        EXPECT_EQ(status, isNil || can[0] != can[1] ? 1 : 0) << name << ' ' << Text(x) << Text(y);
        EXPECT_EQ(truth.IsPossible(0) != 0, !isNil && can[0]) << name << ' ' << Text(x) << Text(y);
        EXPECT_EQ(truth.IsPossible(1) != 0, !isNil && can[1]) << name << ' ' << Text(x) << Text(y);
      };
      decides(
          "==", [&](Boolean& truth) { return x.CalcIsEqual(y, truth); }, std::equal_to<>());
      decides(
          "<<", [&](Boolean& truth) { return x.CalcIsLess(y, truth); }, std::less<>());
      decides(
          "<==", [&](Boolean& truth) { return x.CalcIsLessOrEqual(y, truth); }, std::less_equal<>());
      const bool meets = std::ranges::any_of(values, [&](VokLong v) { return others.contains(v); });
      EXPECT_EQ(x.IsIntersected(y), !isNil && (isOpen || meets)) << Text(x) << Text(y);
    }
  }
  // An undefined value takes over so many values, and no more.
  for (const VokLong count : {1023, 1024}) {
    std::set<VokLong> values;
    for (VokLong v = 0; v < count; ++v) {
      values.insert(2 * v);
    }
    check(
        "=", any, [&](auto& z) { return z.CalcEqualValue(ForeignInteger(values)); },
        count > 1023 ? any : ForeignInteger(values));
  }
}

}  // namespace
