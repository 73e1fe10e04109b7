#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "domain/VokSVectorIteratorImp_SubIntBase.h"
#include "support/enumSets.h"
#include "support/soak.h"

using enumSets::Element;
using Vector = VokSVectorImp_SubIntBase;
using Values = std::vector<VokLong>;

namespace {

constexpr unsigned kHuge = std::numeric_limits<unsigned>::max();

// Five slots, growing by three.
Vector VectorOf(const Values& values, int bitwise = 0) {
  Vector v(4, 3U, bitwise);
  for (unsigned i = 0; i < values.size(); ++i) {
    v.AddAt(Element(values[i]), i);
  }
  return v;
}

Values ValuesOf(const Vector& v) {
  return v.Size() == 0 ? Values() : Values(&v[0], &v[0] + v.Size());
}

// The searches tell the capacity: what is absent is found at capacity + 1.
unsigned Capacity(const Vector& v) {
  return v.Find(Element(-99)) - 1;
}

// The reason why `v` is not what `shadow`, in ascending order, says; empty when all is well. Searches without
// "first" may give any element of a run of equals.
std::string Mismatch(const Vector& v, const Values& shadow) {
  if (ValuesOf(v) != shadow || v.Count() != shadow.size() || (v.IsEmpty() != 0) != shadow.empty()) {
    return "contents";
  }
  const auto begin = shadow.begin();
  const auto position = [&](Values::const_iterator it) {
    return it == shadow.end() ? Capacity(v) + 1 : static_cast<unsigned>(it - begin);
  };
  for (VokLong x = -1; x <= 13; ++x) {
    const auto low = std::lower_bound(begin, shadow.end(), x);
    const auto high = std::upper_bound(begin, shadow.end(), x);
    const auto below = high == begin ? shadow.end() : std::lower_bound(begin, high, *(high - 1));
    const SubIntBase key = Element(x);
    const unsigned expected[] = {position(low == high ? shadow.end() : low), position(below), position(low)};
    const unsigned first[] = {v.ClusteredFind(key), v.FindLowerBound(key, 1), v.FindUpperBound(key, 1)};
    const unsigned some[] = {v.Find(key), v.FindLowerBound(key, 0), v.FindUpperBound(key, 0)};
    for (int i = 0; i < 3; ++i) {
      const bool equal = some[i] < v.Size() && expected[i] < v.Size() && v[some[i]] == v[expected[i]];
      if (first[i] != expected[i] || (some[i] != expected[i] && !equal)) {
        return "search " + std::to_string(i) + " for " + std::to_string(x);
      }
    }
  }
  return "";
}

TEST(Vector, FollowsAShadowThroughRandomOperations) {
  for (unsigned seed = 24 * static_cast<unsigned>(support::SoakFactor()); seed > 0; --seed) {
    std::mt19937 random(seed);
    const int bitwise = static_cast<int>(seed % 2);
    Vector v = seed % 3 == 0 ? Vector(0, 1.5, bitwise) : Vector(2, seed % 5 + 1, bitwise);
    Values shadow;
    for (int step = 0; step < 120; ++step) {
      const VokLong x = static_cast<VokLong>(random() % 13);
      const unsigned at = static_cast<unsigned>(random() % (shadow.size() + 1));
      const unsigned operation = static_cast<unsigned>(random() % 40);
      const bool present = std::binary_search(shadow.begin(), shadow.end(), x);
      int expected = 1;
      int done = 1;
      if (operation < 14) {
        done = v.Add(Element(x));
        shadow.insert(std::upper_bound(shadow.begin(), shadow.end(), x), x);
      } else if (operation < 18 && at < shadow.size()) {
        done = v.Add(v[at]);  // an element of the vector itself, which may move meanwhile
        shadow.insert(shadow.begin() + at, Values::value_type{shadow[at]});
      } else if (operation < 26) {
        done = v.AddUnique(Element(x));
        shadow.insert(std::upper_bound(shadow.begin(), shadow.end(), x), present ? 0 : 1, x);
      } else if (operation < 32) {
        done = v.Detach(Element(x));
        expected = present ? 1 : 0;
        shadow.erase(std::lower_bound(shadow.begin(), shadow.end(), x),
                     std::lower_bound(shadow.begin(), shadow.end(), x) + expected);
      } else if (operation < 39) {
        expected = at < Capacity(v) ? 1 : 0;
        done = v.DetachAt(at, operation - 32);
        const auto n = std::min<std::ptrdiff_t>(operation - 32, shadow.end() - shadow.begin() - at);
        shadow.erase(shadow.begin() + at, shadow.begin() + at + n);
      } else {
        v.Flush();
        shadow.clear();
      }
      Vector assigned = VectorOf({1});
      assigned = v;
      SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
      ASSERT_EQ(done, expected) << "operation " << operation;
      ASSERT_EQ(Mismatch(v, shadow), "") << "operation " << operation;
      ASSERT_EQ(Mismatch(assigned, shadow) + Mismatch(Vector(v), shadow), "") << "copies";
    }
  }
  EXPECT_NE(Mismatch(VectorOf({5, 1, 9}), {1, 5, 9}), "") << "a planted fault";
}

TEST(Vector, SearchesGiveTheSamePositionAmongEquals) {
  struct Row {
    Values values;
    VokLong x;
    Values found;  // Find, ClusteredFind, FindLowerBound, FindUpperBound; then both with first
  };
  for (const Row& row :
       {Row{{1, 5, 9, 10, 11, 12}, 6, {9, 9, 1, 2, 1, 2}}, Row{{1, 5, 9, 10, 11, 12}, 0, {9, 9, 9, 0, 9, 0}},
        Row{{1, 5, 9, 10, 11, 12}, 13, {9, 9, 5, 9, 5, 9}}, Row{{2, 2, 2, 2, 2, 2}, 2, {2, 0, 2, 2, 0, 0}},
        Row{{1, 2, 2, 2, 2, 3}, 2, {2, 1, 2, 2, 1, 1}}, Row{{2, 2, 3, 3, 3, 4}, 2, {0, 0, 0, 0, 0, 0}},
        Row{{2, 2, 4, 5, 5, 5}, 3, {9, 9, 1, 2, 0, 2}}, Row{{1, 1, 1, 1, 4, 4}, 4, {4, 4, 4, 4, 4, 4}},
        Row{{1, 1, 1, 1, 4, 4}, 3, {9, 9, 3, 4, 0, 4}}}) {
    const Vector v = VectorOf(row.values);
    const SubIntBase x = Element(row.x);
    const unsigned found[] = {v.Find(x),
                              v.ClusteredFind(x),
                              v.FindLowerBound(x, 0),
                              v.FindUpperBound(x, 0),
                              v.FindLowerBound(x, 1),
                              v.FindUpperBound(x, 1)};
    EXPECT_EQ(Values(std::begin(found), std::end(found)), row.found)
        << row.x << " in " << testing::PrintToString(row.values);
  }
}

TEST(Vector, GrowsByStepOrFactorAndReportsWhatItCannotHold) {
  EXPECT_EQ(Vector(20, 20U, 0).NextDelta(40), 40U);
  EXPECT_EQ(Vector(20, 20U, 0).NextDelta(41), 60U);
  EXPECT_EQ(Vector(3, 0.5, 0).NextDelta(4), 5U);  // 4, 6, 9
  EXPECT_EQ(Vector(0, 0.1, 0).NextDelta(3), 3U);  // one at a time
  EXPECT_EQ(Vector(1, 1e300, 0).NextDelta(1), kHuge);
  EXPECT_EQ(Vector().NextDelta(7), 7U);
  for (const double factor : {0.0, -2.0, std::numeric_limits<double>::infinity(), std::nan("")}) {
    EXPECT_EQ(Vector(9, factor, 0).NextDelta(1), 10U) << factor;
  }
  Vector v(20, 20U, 0);
  EXPECT_EQ(v.Resize(21), 0);
  EXPECT_EQ(Capacity(v), 21U);
  EXPECT_EQ(v.Resize(22), 1);
  EXPECT_EQ(v.Resize(kHuge), 0);
  EXPECT_EQ(v.AddAt(Element(1), kHuge), 0);
  EXPECT_EQ(Capacity(v), 41U);
  Vector fixed;
  EXPECT_EQ(fixed.Add(Element(1)) + fixed.AddUnique(Element(1)) + fixed.AddAt(Element(1), 0), 0);
  Vector full(1, 0U, 0);
  while (full.Size() < Capacity(full)) {
    full.Add(Element(4));
  }
  EXPECT_EQ(full.AddAt(Element(1), 0), 0);
  EXPECT_EQ(full.Size(), Capacity(full));
  EXPECT_EQ(v.Delta(), 20U);
  EXPECT_EQ(fixed.IsValid(), 1);
  const Vector tooLarge(kHuge, 20U, 0);
  EXPECT_EQ(tooLarge.IsValid(), 0);
  EXPECT_EQ(Capacity(tooLarge), 0U);
}

TEST(Vector, InsertsAndRemovesByPosition) {
  for (const int bitwise : {0, 1}) {
    Vector v = VectorOf({7, 3, 5}, bitwise);
    v.AddAt(v[2], 0);
    EXPECT_EQ(ValuesOf(v), (Values{5, 7, 3, 5}));
    EXPECT_EQ(v.DetachAt(1, 10), 1);
    EXPECT_EQ(v.DetachAt(Capacity(v) - 1, 1), 1);
    EXPECT_EQ(v.DetachAt(Capacity(v), 1), 0);
    v.AddAt(Element(9), 6);  // slots come back as they were left, fresh ones are 0
    EXPECT_EQ(ValuesOf(v), (Values{5, 7, 3, 5, 0, 0, 9})) << "bitwise " << bitwise;
  }
}

TEST(Vector, TraversalsAndIteratorsVisitHalfOpenRanges) {
  Vector v = VectorOf({1, 2, 3, 4, 5});
  const auto isOdd = [](const SubIntBase& x, void*) -> int { return x % 2; };
  EXPECT_EQ(v.FirstThat(isOdd, nullptr, 1, 5), &v[2]);
  EXPECT_EQ(v.FirstThat(isOdd, nullptr, 1, 2), nullptr);
  EXPECT_EQ(v.LastThat(isOdd, nullptr), &v[4]);
  EXPECT_EQ(v.LastThat(isOdd, nullptr, 1, 4), &v[2]);
  EXPECT_EQ(v.FirstThat(isOdd, nullptr), &v[0]);
  v = *&v;
  EXPECT_EQ(ValuesOf(v), (Values{1, 2, 3, 4, 5}));
  v.ForEach([](SubIntBase& x, void* by) { x = x * *static_cast<VokLong*>(by); }, &v[1], 2, 4);
  Values seen;
  VokSVectorIteratorImp_SubIntBase it(v);
  while (it) {
    seen.push_back(it++);
  }
  EXPECT_EQ(seen, (Values{1, 2, 6, 8, 5}));
  VokLong sum = 0;
  v.ForEach([](SubIntBase& x, void* total) { *static_cast<VokLong*>(total) += x; }, &sum);
  EXPECT_EQ(sum, 22);
  it.Restart(1, 3);
  EXPECT_EQ(++it, 6);
  EXPECT_EQ(++it, 6);  // past the end: the last element, and no further
  EXPECT_EQ(it, 0);
  it.Restart();
  EXPECT_EQ(it.Current(), 2);
  const Vector none;
  EXPECT_EQ(++VokSVectorIteratorImp_SubIntBase(none), 0);
}

}  // namespace
