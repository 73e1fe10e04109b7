#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "domain/VokSVectorIteratorImp_SubIntBase.h"
#include "support/enumSets.h"

using enumSets::Element;
using Vector = VokSVectorImp_SubIntBase;

namespace {

constexpr unsigned kHuge = std::numeric_limits<unsigned>::max();

Vector VectorOf(const std::vector<VokLong>& values, int bitwise = 0) {
  Vector v(4, 3U, bitwise);
  for (unsigned i = 0; i < values.size(); ++i) {
    v.AddAt(Element(values[i]), i);
  }
  return v;
}

std::vector<VokLong> Values(const Vector& v) {
  std::vector<VokLong> values;
  for (unsigned i = 0; i < v.Size(); ++i) {
    values.push_back(v[i]);
  }
  return values;
}

// The searches tell the capacity: nothing is found at capacity + 1.
unsigned Capacity(const Vector& v) {
  VokLong absent = 0;
  const std::vector<VokLong> values = Values(v);
  while (std::find(values.begin(), values.end(), absent) != values.end()) {
    ++absent;
  }
  return v.Find(Element(absent)) - 1;
}

// The reason why `v` is not what `shadow`, in ascending order, says; empty when all is well.
std::string Mismatch(const Vector& v, const std::vector<VokLong>& shadow) {
  if (Values(v) != shadow || v.Size() != shadow.size() || v.Count() != shadow.size() ||
      (v.IsEmpty() != 0) != shadow.empty()) {
    return "contents";
  }
  for (VokLong x = -1; x <= 13; ++x) {
    const unsigned absent = Capacity(v) + 1;
    const auto low = std::lower_bound(shadow.begin(), shadow.end(), x);
    const auto high = std::upper_bound(shadow.begin(), shadow.end(), x);
    const unsigned first = static_cast<unsigned>(low - shadow.begin());
    const unsigned i = v.Find(Element(x));
    if (low == high ? i != absent : i < first || i >= first + static_cast<unsigned>(high - low)) {
      return "Find " + std::to_string(x);
    }
    if (v.ClusteredFind(Element(x)) != (low == high ? absent : first)) {
      return "ClusteredFind " + std::to_string(x);
    }
    const auto run = high == shadow.begin() ? shadow.end() : std::lower_bound(shadow.begin(), high, *(high - 1));
    const unsigned below = run == shadow.end() ? absent : static_cast<unsigned>(run - shadow.begin());
    if (v.FindLowerBound(Element(x), 1) != below) {
      return "FindLowerBound " + std::to_string(x);
    }
    if (v.FindUpperBound(Element(x), 1) != (low == shadow.end() ? absent : first)) {
      return "FindUpperBound " + std::to_string(x);
    }
    for (const bool up : {false, true}) {
      const unsigned some = up ? v.FindUpperBound(Element(x), 0) : v.FindLowerBound(Element(x), 0);
      const unsigned exact = up ? v.FindUpperBound(Element(x), 1) : v.FindLowerBound(Element(x), 1);
      if (exact == absent ? some != absent : some >= v.Size() || v[some] != v[exact]) {
        return "bound search without first, " + std::to_string(x);
      }
    }
  }
  return "";
}

TEST(Vector, FollowsAShadowThroughRandomOperations) {
  for (unsigned seed = 1; seed <= 24; ++seed) {
    std::mt19937 random(seed);
    const int bitwise = static_cast<int>(seed % 2);
    Vector v = seed % 3 == 0 ? Vector(0, 1.5, bitwise) : Vector(2, seed % 5 + 1, bitwise);
    std::vector<VokLong> shadow;
    for (int step = 0; step < 120; ++step) {
      const VokLong x = static_cast<VokLong>(random() % 13);
      const unsigned at = static_cast<unsigned>(random() % (shadow.size() + 1));
      const auto place = std::upper_bound(shadow.begin(), shadow.end(), x);
      const bool present = std::binary_search(shadow.begin(), shadow.end(), x);
      const unsigned operation = static_cast<unsigned>(random() % 12);
      const std::string what =
          "seed " + std::to_string(seed) + " step " + std::to_string(step) + " operation " + std::to_string(operation);
      if (operation < 5) {
        ASSERT_EQ(v.Add(Element(x)), 1) << what;
        shadow.insert(place, x);
      } else if (operation < 8) {
        ASSERT_EQ(v.AddUnique(Element(x)), 1) << what;
        if (!present) {
          shadow.insert(place, x);
        }
      } else if (operation == 8) {
        ASSERT_EQ(v.Detach(Element(x)), present ? 1 : 0) << what;
        if (present) {
          shadow.erase(std::lower_bound(shadow.begin(), shadow.end(), x));
        }
      } else if (operation == 9) {
        const unsigned n = static_cast<unsigned>(random() % 3);
        ASSERT_EQ(v.DetachAt(at, n), at < Capacity(v) ? 1 : 0) << what;
        const auto from = shadow.begin() + at;
        shadow.erase(from, from + std::min<std::ptrdiff_t>(n, shadow.end() - from));
      } else if (operation == 10 && random() % 4 == 0) {
        v.Flush();
        shadow.clear();
      } else if (!shadow.empty()) {
        const unsigned i = std::min(at, v.Size() - 1);
        const VokLong again = shadow[i];
        ASSERT_EQ(v.Add(v[i]), 1) << what << ": an element of the vector itself";
        shadow.insert(std::upper_bound(shadow.begin(), shadow.end(), again), again);
      }
      const Vector copy(v);
      Vector assigned;
      assigned = v;
      ASSERT_EQ(Mismatch(v, shadow), "") << what;
      ASSERT_EQ(Mismatch(copy, shadow), "") << what << " copy";
      ASSERT_EQ(Mismatch(assigned, shadow), "") << what << " assigned";
    }
  }
}

TEST(Vector, CheckerNoticesAMissingAndADisplacedElement) {
  EXPECT_NE(Mismatch(VectorOf({1, 5, 9}), {1, 5}), "");
  EXPECT_NE(Mismatch(VectorOf({5, 1, 9}), {1, 5, 9}), "");
}

TEST(Vector, SearchesGiveTheSamePositionAmongEquals) {
  struct Row {
    std::vector<VokLong> values;
    VokLong x;
    unsigned find, clustered, lower, lowerFirst, upper, upperFirst;
  };
  const unsigned no = 9;  // capacity 8 + 1
  const Row rows[] = {
      {{1, 5, 9, 10, 11, 12}, 6, no, no, 1, 1, 2, 2},    {{1, 5, 9, 10, 11, 12}, 0, no, no, no, no, 0, 0},
      {{1, 5, 9, 10, 11, 12}, 13, no, no, 5, 5, no, no}, {{2, 2, 2, 2, 2, 2}, 2, 2, 0, 2, 0, 2, 0},
      {{1, 2, 2, 2, 2, 3}, 2, 2, 1, 2, 1, 2, 1},         {{2, 2, 3, 3, 3, 4}, 2, 0, 0, 0, 0, 0, 0},
      {{2, 2, 4, 5, 5, 5}, 3, no, no, 1, 0, 2, 2},       {{1, 1, 1, 1, 4, 4}, 4, 4, 4, 4, 4, 4, 4},
      {{1, 1, 1, 1, 4, 4}, 3, no, no, 3, 0, 4, 4},
  };
  for (const Row& row : rows) {
    const Vector v = VectorOf(row.values);
    const SubIntBase x = Element(row.x);
    const std::vector<unsigned> found{v.Find(x),
                                      v.ClusteredFind(x),
                                      v.FindLowerBound(x, 0),
                                      v.FindLowerBound(x, 1),
                                      v.FindUpperBound(x, 0),
                                      v.FindUpperBound(x, 1)};
    EXPECT_EQ(found, (std::vector{row.find, row.clustered, row.lower, row.lowerFirst, row.upper, row.upperFirst}))
        << "searching " << row.x << " in " << ::testing::PrintToString(row.values);
  }
}

TEST(Vector, GrowsByStepOrFactorAndReportsWhatItCannotHold) {
  EXPECT_EQ(Vector(20, 20U, 0).NextDelta(1), 20U);
  EXPECT_EQ(Vector(20, 20U, 0).NextDelta(40), 40U);
  EXPECT_EQ(Vector(20, 20U, 0).NextDelta(41), 60U);
  EXPECT_EQ(Vector(3, 1.0, 0).NextDelta(1), 4U);
  EXPECT_EQ(Vector(3, 0.5, 0).NextDelta(4), 5U);  // 4 -> 6 -> 9
  EXPECT_EQ(Vector(0, 0.1, 0).NextDelta(3), 3U);  // one at a time
  EXPECT_EQ(Vector().NextDelta(7), 7U);
  for (const double factor : {0.0, -2.0, std::numeric_limits<double>::infinity(), std::nan("")}) {
    EXPECT_EQ(Vector(9, factor, 0).NextDelta(1), 10U) << factor;
  }
  EXPECT_EQ(Vector(1, 1e300, 0).NextDelta(1), kHuge);

  Vector v(20, 20U, 0);
  EXPECT_EQ(Capacity(v), 21U);
  EXPECT_EQ(v.Resize(21), 0);
  EXPECT_EQ(v.Resize(22), 1);
  EXPECT_EQ(Capacity(v), 41U);
  EXPECT_EQ(v.Resize(kHuge), 0);
  EXPECT_EQ(v.AddAt(Element(1), kHuge), 0);
  EXPECT_EQ(Capacity(v), 41U);

  Vector fixed;
  EXPECT_EQ(fixed.Add(Element(1)), 0);
  EXPECT_EQ(fixed.AddUnique(Element(1)), 0);
  EXPECT_EQ(fixed.Size(), 0U);
  EXPECT_EQ(fixed.IsValid(), 1);
  const Vector tooLarge(kHuge, 20U, 0);
  EXPECT_EQ(tooLarge.IsValid(), 0);
  EXPECT_EQ(Capacity(tooLarge), 0U);
}

TEST(Vector, InsertsAndRemovesByPosition) {
  for (const int bitwise : {0, 1}) {
    Vector v = VectorOf({7, 3, 5}, bitwise);
    v.AddAt(v[2], 0);
    EXPECT_EQ(Values(v), (std::vector<VokLong>{5, 7, 3, 5}));
    EXPECT_EQ(v.DetachAt(1, 10), 1);
    EXPECT_EQ(v.DetachAt(Capacity(v) - 1, 1), 1);
    EXPECT_EQ(v.DetachAt(Capacity(v), 1), 0);
    EXPECT_EQ(Values(v), (std::vector<VokLong>{5}));
    v.AddAt(Element(9), 6);  // slots come back as they were left, fresh ones are 0
    EXPECT_EQ(Values(v), (std::vector<VokLong>{5, 7, 3, 5, 0, 0, 9})) << "bitwise " << bitwise;
  }
}

TEST(Vector, TraversalsVisitHalfOpenRanges) {
  Vector v = VectorOf({1, 2, 3, 4, 5});
  const auto isOdd = [](const SubIntBase& x, void* calls) {
    ++*static_cast<int*>(calls);
    return x % 2;
  };
  int calls = 0;
  EXPECT_EQ(v.FirstThat(isOdd, &calls, 1, 5), &v[2]);
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(v.LastThat(isOdd, &calls), &v[4]);
  EXPECT_EQ(v.LastThat(isOdd, &calls, 1, 4), &v[2]);
  EXPECT_EQ(v.FirstThat(isOdd, &calls, 1, 2), nullptr);
  v.ForEach([](SubIntBase& x, void* by) { x = x * *static_cast<VokLong*>(by); }, &v[1], 2, 4);
  EXPECT_EQ(Values(v), (std::vector<VokLong>{1, 2, 6, 8, 5}));
}

TEST(VectorIterator, WalksItsRangeAndStopsBehindIt) {
  const Vector v = VectorOf({1, 2, 3, 4});
  VokSVectorIteratorImp_SubIntBase it(v);
  std::vector<VokLong> seen;
  while (it) {
    seen.push_back(it++);
  }
  EXPECT_EQ(seen, (std::vector<VokLong>{1, 2, 3, 4}));
  it.Restart(1, 3);
  EXPECT_EQ(it.Current(), 2);
  EXPECT_EQ(++it, 3);
  EXPECT_EQ(++it, 3);  // past the end: the last element, and no further
  EXPECT_EQ(++it, 3);
  EXPECT_EQ(it, 0);
  it.Restart();
  EXPECT_EQ(it.Current(), 2);
  const Vector none;
  VokSVectorIteratorImp_SubIntBase nowhere(none);
  EXPECT_EQ(nowhere, 0);
  EXPECT_EQ(++nowhere, 0);
}

}  // namespace
