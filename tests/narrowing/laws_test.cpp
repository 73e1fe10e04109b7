// The laws of narrowing on every state of small universes, at the limit of members and with the limit at 4.
//
// Contract   The status is 1 exactly when the operand changed; values only go; a set that keeps members keeps its flag;
//            the second call changes nothing; no other operand is touched. Without exception.
// Soundness  No value goes that has a partner in every other operand. Exactness: none stays that has none. Check: an
//            inconsistent operand of one value, beside such operands, becomes Nil. Where a kept rule departs from these
//            the number of cases that do is pinned, so that a change of any rule shows.
#include <gtest/gtest.h>

#include <bit>

#include "support/apiTrace.h"

namespace {

using support::FindOperation;
using support::Model;
using support::Operation;
using support::Values;
using EnumSet = VokFenEnumInteger;
using Mask = std::uint32_t;  // a bit for each point of a universe

struct Counts {
  long broken = 0;  // contract
  long unsound = 0;
  long loose = 0;
  long unchecked = 0;

  bool operator==(const Counts&) const = default;
  friend std::ostream& operator<<(std::ostream& os, const Counts& c) {
    return os << "{" << c.broken << ", " << c.unsound << ", " << c.loose << ", " << c.unchecked << "}";
  }
};

// A set or a single of a universe.
struct State {
  Model model;
  support::Operand value{model};
  Mask mask = 0;  // Any: every point
};

class Universe {
 public:
  // Any stands for the points; where it would take more to stand for, cases with Any count for the contract alone.
  Universe(const Values& points, const Values& members, int mostMembers, bool anyIsListed)
      : fPoints(points), fAnyIsListed(anyIsListed) {
    Add({'e', true, 1, {}});
    Add({'s', true, 0, {}});
    Add({'s', false, 0, {}});
    for (Mask chosen = 0; chosen < Mask{1} << members.size(); ++chosen) {
      const Values values = support::Filter(members, [&, i = 0](VokLong) mutable { return (chosen >> i++ & 1U) != 0; });
      for (int flag = 0; flag < 2 && std::popcount(chosen) <= mostMembers && (flag == 0 || chosen != 0); ++flag) {
        Add({'e', false, flag, values});
      }
    }
    for (const VokLong v : members) {
      Add({'s', false, 0, {v}});
    }
  }

  Counts Try(const Operation& op, int stride = 1) {
    Counts counts;
    const std::vector<Mask> partners = Partners(op);
    int turn = 0;
    for (State& a : fStates) {
      for (State& b : fStates) {
        const bool isLast = op.operands == 2;
        if ((op.narrowed != 0 && a.model.kind != 'e') || ++turn % stride != 0) {
          continue;
        }
        Mask supported = 0;
        for (std::size_t v = 0; v < fPoints.size(); ++v) {
          for (Mask left = a.mask; left != 0 && (supported >> v & 1U) == 0; left &= left - 1) {
            const auto at = static_cast<std::size_t>(std::countr_zero(left));
            const Mask third = partners[v * fPoints.size() + at];
            supported |= (isLast ? third : third & b.mask) != 0 ? Mask{1} << v : 0;
          }
        }
        for (const State& x : fStates) {
          if (x.model.kind == 'e' || op.narrowed != 0) {
            TryOne(op, x, a, b, supported, counts);
          }
        }
        counts.broken += a.value.Read() == a.model && b.value.Read() == b.model ? 0 : 1;
        if (isLast) {
          break;
        }
      }
    }
    return counts;
  }

  std::vector<State>& GetStates() { return fStates; }

 private:
  void Add(const Model& model) {
    Mask mask = model.any ? static_cast<Mask>((std::uint64_t{1} << fPoints.size()) - 1) : 0;
    for (const VokLong v : model.values) {
      mask |= Bit(v);
    }
    fStates.push_back({model, support::Operand(model), mask});
  }

  // A value beyond the points, which only Any can become, has the highest bit.
  Mask Bit(VokLong v) const {
    const auto at = std::lower_bound(fPoints.begin(), fPoints.end(), v);
    return at != fPoints.end() && *at == v ? Mask{1} << (at - fPoints.begin()) : Mask{1} << 31;
  }

  // For each value of the narrowed operand and of the first given one those of the second that make the relation true.
  std::vector<Mask> Partners(const Operation& op) const {
    std::vector<Mask> partners;
    for (const VokLong v : fPoints) {
      for (const VokLong a : fPoints) {
        Mask mask = 0;
        for (std::size_t i = 0; i < fPoints.size(); ++i) {
          const VokLong b = op.operands == 2 ? 0 : fPoints[i];
          const bool holds = op.narrowed == 0   ? op.holds(v, a, b)
                             : op.narrowed == 1 ? op.holds(a, v, b)
                                                : op.holds(a, b, v);
          mask |= holds ? Mask{1} << i : 0;
        }
        partners.push_back(mask);
      }
    }
    return partners;
  }

  struct Reading {
    bool any;
    Mask mask;
    int flag;
    bool operator==(const Reading&) const = default;
  };
  Reading Read(char kind) {
    if (kind == 's') {
      const VokLong v = fSingle.GetExactValue();
      const bool any = v == enumSets::kAny;
      return {any, any ? fStates[1].mask : v == enumSets::kNil ? 0 : Bit(v), 0};
    }
    const bool any = fSet.IsUndefined() != 0;
    Mask mask = any ? fStates[0].mask : 0;
    for (const VokLong v : fSet.GetMembers()) {
      mask |= Bit(v);
    }
    return {any, mask, fFlag.Read(fSet)};
  }

  void TryOne(const Operation& op, const State& x, State& a, State& b, Mask supported, Counts& counts) {
    const char kind = x.model.kind;
    VokTarnInteger& narrowed = kind == 's' ? static_cast<VokTarnInteger&>(fSingle) : fSet;
    narrowed.Assign(const_cast<State&>(x).value.Get());
    const auto run = [&] {
      return op.narrowed == 0   ? op.run(narrowed, a.value.Get(), b.value.Get())
             : op.narrowed == 1 ? op.run(a.value.Get(), narrowed, b.value.Get())
                                : op.run(a.value.Get(), b.value.Get(), narrowed);
    };
    const int status = run();
    const Reading before = {x.model.any, x.mask, x.model.emptyMeansAny};
    const Reading after = Read(kind);
    const bool widened = !before.any && (after.any || (after.mask & ~before.mask) != 0);
    const bool flagKept = before.any || after.mask == 0 || after.flag == before.flag;
    const bool again = status != 0 && (run() != 0 || Read(kind) != after);
    counts.broken += status != (after == before ? 0 : 1) || widened || !flagKept || again ? 1 : 0;
    const bool known = !x.model.any && !a.model.any && (op.operands == 2 || !b.model.any);
    if (!known && !fAnyIsListed) {
      return;
    }
    counts.unsound += (before.mask & supported & ~after.mask) != 0 ? 1 : 0;
    const bool loose = (after.mask & ~supported) != 0;
    const bool assigned = known && std::has_single_bit(before.mask) && std::has_single_bit(a.mask) &&
                          (op.operands == 2 || std::has_single_bit(b.mask));
    counts.loose += loose ? 1 : 0;
    counts.unchecked += loose && assigned ? 1 : 0;
  }

  Values fPoints;
  bool fAnyIsListed;
  std::vector<State> fStates;
  EnumSet fSet;
  VokFenSingleInteger fSingle;
  apiTrace::FlagReader fFlag;
};

Universe SmallUniverse(unsigned operands) {
  const Values pairs = {-3, -2, -1, 0, 1, 2, 3};
  return {support::Parse("-12..12").values, operands == 2 ? pairs : Values{-2, -1, 0, 1, 2}, 7, true};
}
Universe UniverseOfEnds(unsigned operands) {
  using namespace enumSets;
  const Values ends = {kMin, kMin + 1, -1, 0, 1, kMax - 1, kMax};
  return {ends, ends, operands == 2 ? 7 : 2, false};
}

class Limit {
 public:
  explicit Limit(VokULong limit) { EnumSet::sMAX_CARD = limit; }
  Limit(const Limit&) = delete;
  Limit& operator=(const Limit&) = delete;
  ~Limit() { EnumSet::sMAX_CARD = 1024; }
};

struct Row {
  const char* operation;
  Counts small, limited, ends;
};

const Row kRows[] = {
    {"x = y", {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}},
    {"inv x = y", {0, 0, 240, 0}, {0, 0, 240, 0}, {0, 0, 0, 0}},
    {"x <= y", {0, 0, 261, 0}, {0, 0, 261, 0}, {0, 0, 0, 0}},
    {"inv x <= y", {0, 0, 508, 0}, {0, 0, 508, 0}, {0, 0, 0, 0}},
    {"x < y", {0, 9786, 263, 0}, {0, 9786, 263, 0}, {0, 9786, 0, 0}},
    {"inv x < y", {0, 9384, 510, 0}, {0, 9384, 510, 0}, {0, 9384, 0, 0}},
    {"x >= y", {0, 0, 261, 0}, {0, 0, 261, 0}, {0, 0, 0, 0}},
    {"inv x >= y", {0, 0, 508, 0}, {0, 0, 508, 0}, {0, 0, 0, 0}},
    {"x > y", {0, 9786, 263, 0}, {0, 9786, 263, 0}, {0, 9786, 0, 0}},
    {"inv x > y", {0, 9384, 510, 0}, {0, 9384, 510, 0}, {0, 9384, 0, 0}},
    {"next", {0, 0, 2, 0}, {0, 0, 2, 0}, {0, 16512, 22784, 12}},
    {"inv next", {0, 0, 242, 0}, {0, 0, 242, 0}, {0, 16384, 16384, 4}},
    {"neg", {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}},
    {"inv neg", {0, 0, 240, 0}, {0, 0, 240, 0}, {0, 0, 0, 0}},
    {"abs", {0, 0, 5458, 84}, {0, 0, 17262, 84}, {0, 0, 5420, 84}},
    {"inv abs", {0, 0, 252, 0}, {0, 0, 22396, 0}, {0, 0, 0, 0}},
    {"sign", {0, 6468, 162, 0}, {0, 6468, 162, 0}, {0, 6468, 0, 0}},
    {"inv sign", {0, 0, 470, 0}, {0, 0, 470, 0}, {0, 0, 0, 0}},
    {"min", {0, 0, 268, 0}, {0, 0, 89626, 0}, {0, 0, 0, 0}},
    {"inv min", {0, 0, 77470, 900}, {0, 0, 77470, 900}, {0, 0, 108542, 2646}},
    {"max", {0, 0, 268, 0}, {0, 0, 89626, 0}, {0, 0, 0, 0}},
    {"inv max", {0, 0, 77470, 900}, {0, 0, 77470, 900}, {0, 0, 108542, 2646}},
    {"sum", {0, 0, 64, 0}, {0, 0, 40644, 0}, {0, 23680, 31656, 360}},
    {"inv sum", {0, 0, 4084, 0}, {0, 0, 51218, 0}, {0, 23608, 30628, 360}},
    {"prod", {0, 0, 3476, 0}, {0, 0, 49888, 0}, {0, 0, 32800, 288}},
    {"inv prod", {0, 0, 46000, 72}, {0, 0, 53480, 72}, {0, 0, 31320, 288}},
    {"mod", {0, 0, 140693, 450}, {0, 0, 140693, 450}, {0, 0, 50320, 882}},
    {"inv mod", {0, 0, 84225, 450}, {0, 0, 84225, 450}, {0, 0, 45600, 882}},
    {"inv2 mod", {0, 6496, 148053, 450}, {0, 6496, 148053, 450}, {0, 0, 52920, 882}},
    {"power", {0, 0, 9874, 0}, {0, 0, 29424, 0}, {0, 6240, 0, 0}},
    {"inv power", {0, 14400, 5818, 0}, {0, 11584, 9054, 0}, {0, 6120, 0, 0}},
    {"inv2 power", {0, 0, 92330, 1944}, {0, 0, 92330, 1944}, {0, 136, 170768, 5706}},
};

#ifdef VOKTARN_SANITIZED
constexpr int kStride = 5;
#else
constexpr int kStride = 1;
#endif

TEST(NarrowingLaws, HoldButForAsManyCasesAsTheKeptRulesSay) {
  ASSERT_EQ(std::size(kRows), support::Operations().size());
  for (const Row& row : kRows) {
    const Operation& op = FindOperation(row.operation);
    const auto tryAll = [&op](Universe universe, VokULong limit) {
      const Limit lowered(limit);
      return universe.Try(op, op.operands == 3 ? kStride : 1);
    };
    const Counts small = tryAll(SmallUniverse(op.operands), 1024);
    const Counts limited = tryAll(SmallUniverse(op.operands), 4);
    const Counts ends = tryAll(UniverseOfEnds(op.operands), 1024);
    EXPECT_EQ(small.broken + limited.broken + ends.broken, 0) << row.operation;
    if (kStride == 1 || op.operands == 2) {
      EXPECT_EQ(small, row.small) << row.operation;
      EXPECT_EQ(limited, row.limited) << row.operation << " limit 4";
      EXPECT_EQ(ends, row.ends) << row.operation << " at the ends";
    }
  }
}

TEST(NarrowingLaws, PlantedFaultsAreCounted) {
  using I = VokTarnInteger;
  const auto counts = [](int (*run)(I&, I&, I&)) {
    Operation op = FindOperation("x <= y");
    op.run = run;
    return Universe({-1, 0, 1}, {-1, 0, 1}, 3, true).Try(op);
  };
  EXPECT_EQ(counts(FindOperation("x <= y").run).broken, 0);
  EXPECT_EQ(counts(FindOperation("x <= y").run).unsound, 0);
  EXPECT_GT(counts([](I& x, I& y, I&) { return 0 * x.CalcLessOrEqualValue(y); }).broken, 0) << "wrong status";
  EXPECT_GT(counts([](I& x, I&, I&) { return x.AddExactValue(1); }).broken, 0) << "widened";
  EXPECT_GT(counts([](I&, I& y, I&) { return y.SetNilValue(); }).broken, 0) << "another operand changed";
  EXPECT_GT(counts([](I& x, I&, I&) { return x.RemoveExactValue(x.GetUpperBound()); }).broken, 0) << "not idempotent";
  EXPECT_GT(counts([](I& x, I& y, I&) { return x.CalcLessValue(y); }).unsound, 0);
  EXPECT_GT(counts([](I&, I&, I&) { return 0; }).loose, 0);
  EXPECT_GT(counts([](I&, I&, I&) { return 0; }).unchecked, 0);
}

TEST(NarrowingLaws, SetsOfAboutAsManyMembersAsTheLimit) {
  for (unsigned n = 1022; n <= 1025; ++n) {
    const std::string large = "-511.." + std::to_string(n - 512);
    for (const Operation& op : support::Operations()) {
      for (unsigned at = 0; at < op.operands; ++at) {
        for (const char* const others : {"0", "1", "1 2", "-1 0 1", "s 2"}) {
          narrowing::Case c = {support::Parse(at != 0 && *others == 's' ? "2" : others), support::Parse(others),
                               support::Parse(others)};
          c[at] = support::Parse(large);
          const narrowing::Outcome expected = narrowing::literal::Run(op, c, false);
          const narrowing::Outcome outcome = narrowing::RunCase(op, c);
          ASSERT_EQ(outcome.status, expected.status) << op.name << " " << n << " at " << at << " others " << others;
          ASSERT_EQ(outcome.after, expected.after) << op.name << " " << n << " at " << at << " others " << others;
        }
      }
    }
  }
}

// A set of the universe -3..3 as a number: a bit for each member, Any the eighth.
constexpr unsigned kAnyBit = 128;
unsigned BitsOf(const EnumSet& set) {
  unsigned bits = set.IsUndefined() != 0 ? kAnyBit : 0;
  for (const VokLong v : set.GetMembers()) {
    bits |= 1U << (v + 3);
  }
  return bits;
}

TEST(AlgebraLaws, UnionIntersectionOverlapAndParts) {
  const std::vector<EnumSet> sets = enumSets::AllSets(-3, 3);
  EnumSet x;
  for (const EnumSet& a : sets) {
    const unsigned p = BitsOf(a);
    for (const EnumSet& b : sets) {
      const unsigned q = BitsOf(b);
      const std::string what = enumSets::Show(a) + " with " + enumSets::Show(b);
      const unsigned common = p == kAnyBit ? q : q == kAnyBit ? p : p & q;
      const unsigned united = ((p | q) & kAnyBit) != 0 ? kAnyBit : p | q;
      x = a;
      ASSERT_EQ(x.Intersect(b), common != p ? 1 : 0) << what;
      ASSERT_EQ(BitsOf(x), common) << what;
      ASSERT_EQ(x.Intersect(b) + x.Intersect(a), 0) << what;
      ASSERT_EQ(a.IsIntersected(b), common != 0 ? 1 : 0) << what;
      x = a;
      x.Unite(b);
      ASSERT_EQ(BitsOf(x), united) << what;
      x.Intersect(a);
      ASSERT_EQ(BitsOf(x), p == 0 ? 0 : p == kAnyBit ? united : p) << what << ": absorption";
      for (unsigned bound = 0; bound < 7; bound += 2) {
        SubIntBase limit = enumSets::Element(static_cast<VokLong>(bound) - 3);
        const unsigned low = q & ((2U << bound) - 1);
        x = a;
        x.Intersect(b, apiTrace::NotAbove, &limit);
        // Any stays Any where nothing of the operand is accepted.
        ASSERT_EQ(BitsOf(x), q == kAnyBit || (p == kAnyBit && q != 0 && low == 0) ? p
                             : p == kAnyBit                                       ? low
                                                                                  : p & low)
            << what << " up to " << bound;
      }
    }
    for (int selection = 0; selection < 4 && p != 0 && p != kAnyBit; ++selection) {
      EnumSet part;
      x = a;
      x.Bisect(part, static_cast<VokTarnAny::ValueSelection>(selection));
      const unsigned kept = x.GetCount() == 0 ? 0 : BitsOf(x);
      ASSERT_EQ(kept | BitsOf(part), p) << enumSets::Show(a) << " in parts " << selection;
      ASSERT_EQ(kept & BitsOf(part), 0U) << enumSets::Show(a) << " in parts " << selection;
    }
    x = a;
    x.Minus();
    x.Minus();
    ASSERT_EQ(BitsOf(x), p) << enumSets::Show(a);
  }
}

}  // namespace
