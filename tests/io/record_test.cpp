#include <gtest/gtest.h>

#include <memory>

#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "support/enumSets.h"
#include "support/streamBytes.h"

using namespace enumSets;

namespace {

using Fields = std::vector<VokLong>;

std::string Record(const Fields& fields) {
  support::StreamItems items;
  for (const VokLong field : fields) {
    items.emplace_back(VokToUnsigned(field));
  }
  return support::StreamBytes(items);
}

std::string Written(const VokFenEnumInteger& set) {
  std::ostringstream bytes;
  Vokopstream os(bytes);
  set.Write(os);
  return os.IsFailed() ? "failed" : bytes.str();
}

// Reads into a set that holds something else; `next` gets the field behind the record, when there is one.
VokFenEnumInteger ReadBack(const std::string& bytes, int* next = nullptr) {
  std::istringstream text(bytes);
  Vokipstream is(text);
  VokFenEnumInteger set = SetOf({8, 88});
  set.Read(is);
  if (next != nullptr) {
    is >> *next;
  }
  return set;
}

TEST(EnumRecord, HasTheDocumentedBytesAndRoundTrips) {
  EXPECT_EQ(Written(SetOf({3, -7, 12})), Record({0, 3, -7, 3, 12}));
  EXPECT_EQ(Written(VokFenEnumInteger(Element(5), 0)), Record({1, 1, 5}));
  EXPECT_EQ(Record({-2}).substr(8), "\xFE\xFF\xFF\xFF");
  for (const auto& set : {Nil(), Any(), SetOf({4}), SetOf({kNil, kMin, 0, kMax, kAny}), RangeSet(-5, 1024)}) {
    EXPECT_EQ(Show(ReadBack(Written(set))), Show(set));
  }
}

TEST(EnumRecord, TakesWhatTheStreamHoldsAndKeepsItsPlace) {
  Fields many{0, 1025};
  for (VokLong v = 0; v < 1025; ++v) {
    many.push_back(1000 - v);
  }
  // Any takes no members, so a set that was written with the flag 1 does not come back.
  const std::pair<Fields, std::string> rows[] = {{{0, 5, 9, 3, 9, -4, 3}, "-4 3 9"},
                                                 {{1, 2, 5, 6}, "Any"},
                                                 {{5, 2, 5, 6}, "5 6"},
                                                 {{5, 0}, "empty, strange flag"},
                                                 {many, "Any"}};
  for (auto [fields, set] : rows) {
    int next = 0;
    fields.push_back(4711);
    EXPECT_EQ(Show(ReadBack(Record(fields), &next)), set);
    EXPECT_EQ(next, 4711) << set;
  }
}

TEST(EnumRecord, AStrangeFlagReadsAsNilWhereAMemberIsNeeded) {
  VokFenEnumInteger strange = ReadBack(Record({5, 0}));
  EXPECT_EQ(strange.GetLowerBound(), kMax);
  EXPECT_EQ(strange.GetUpperBound(), kMin);
  VokFenIntervalInteger interval(1, 2);
  EXPECT_EQ(strange.IntersectInverse(interval) + interval.IsNil(), 2);
  VokFenEnumInteger set = SetOf({1});
  EXPECT_EQ(set.Intersect(strange) + set.IsNil(), 2);
  EXPECT_EQ(strange.SetLowerBound(4), 1);
  EXPECT_EQ(Show(strange), "4");
}

TEST(EnumRecord, ACutOrHostileRecordReadsZerosForWhatIsMissing) {
  const Fields fields{0, 5, -7, 3, 12, 0, 5};
  const std::string whole = Record(fields);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const std::size_t words = std::max(length, Record({}).size()) / 4 - Record({}).size() / 4;
    VokFenEnumInteger expected = Nil();
    for (std::size_t i = 2; words >= 2 && i < fields.size(); ++i) {
      expected.Insert(i < words ? fields[i] : 0);
    }
    EXPECT_EQ(Show(ReadBack(whole.substr(0, length))), Show(expected)) << length << " bytes";
  }
  // The counts promise four thousand million members: neither the memory nor the time for them is spent.
  EXPECT_EQ(Show(ReadBack(Record({0, -1, 4, 2}))), "0 2 4");
  Fields nearlyFull{0, -1};
  for (VokLong v = 1; v <= 1023; ++v) {
    nearlyFull.push_back(v);
  }
  EXPECT_EQ(Show(ReadBack(Record(nearlyFull))), "Any") << "one zero fills the set, the next is too much";
}

TEST(EnumStreams, ObjectsKeepTheirIdentityAndTheirClass) {
  const VokFenEnumInteger set = SetOf({1, 4});
  const VokFenSingleInteger single(6);
  std::stringstream bytes;
  Vokopstream os(bytes);
  for (const VokFenEnumInteger* pointer : {&set, &set, static_cast<const VokFenEnumInteger*>(nullptr)}) {
    VokFenEnumInteger::writePtr(os, pointer);
  }
  VokFenEnumInteger::writeRef(os, RangeSet(7, 2));
  VokFenSingleInteger::writePtr(VokFenSingleInteger::writePtr(os, &single), &single);

  Vokipstream is(bytes);
  VokFenEnumInteger *first = nullptr, *again = nullptr, *none = nullptr, existing;
  VokFenEnumInteger::readPtr(is, first);
  const std::unique_ptr<VokFenEnumInteger> owner(first);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(Show(*first), "1 4");
  VokFenEnumInteger::readPtr(VokFenEnumInteger::readPtr(is, again), none);
  EXPECT_EQ(again, first);
  EXPECT_EQ(none, nullptr);
  VokFenEnumInteger::readRef(is, existing);
  EXPECT_EQ(Show(existing), "7 8");
  const std::unique_ptr<VokStreamable> other(is.ReadObjectPointer());
  EXPECT_FALSE(is.IsFailed());
  VokFenEnumInteger::readPtr(is, again);
  EXPECT_EQ(again, nullptr) << "an object of another class";
  EXPECT_TRUE(is.IsFailed());
}

}  // namespace
