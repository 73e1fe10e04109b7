#include <gtest/gtest.h>

#include <memory>

#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "support/enumSets.h"

using namespace enumSets;

namespace {

std::string Word(VokLong v) {
  std::string bytes;
  for (unsigned shift = 0; shift < 32; shift += 8) {
    bytes += static_cast<char>(static_cast<unsigned char>(VokToUnsigned(v) >> shift & 0xFFU));
  }
  return bytes;
}

const std::string kHeader = "VTOS" + Word(1);

std::string Record(const std::vector<VokLong>& fields) {
  std::string bytes = kHeader;
  for (const VokLong field : fields) {
    bytes += Word(field);
  }
  return bytes;
}

std::string Written(const VokFenEnumInteger& set) {
  std::ostringstream bytes;
  Vokopstream os(bytes);
  set.Write(os);
  EXPECT_FALSE(os.IsFailed());
  return bytes.str();
}

// Reads into a set that holds something else. `failed` gets whether the stream failed.
VokFenEnumInteger ReadBack(const std::string& bytes, bool* failed = nullptr, int* next = nullptr) {
  std::istringstream text(bytes);
  Vokipstream is(text);
  VokFenEnumInteger set = SetOf({8, 88});
  set.Read(is);
  if (failed != nullptr) {
    *failed = is.IsFailed();
  }
  if (next != nullptr) {
    is >> *next;
  }
  return set;
}

TEST(EnumRecord, HasTheDocumentedBytes) {
  EXPECT_EQ(Written(SetOf({3, -7, 12})), Record({0, 3, -7, 3, 12}));
  EXPECT_EQ(Written(Nil()), Record({0, 0}));
  EXPECT_EQ(Written(Any()), Record({1, 0}));
  EXPECT_EQ(Written(SetOf({kNil, kAny})), Record({0, 2, kNil, kAny}));
  EXPECT_EQ(Written(VokFenEnumInteger(Element(5), 0)), Record({1, 1, 5}));
  EXPECT_EQ(Record({-2}).substr(8), "\xFE\xFF\xFF\xFF");
}

TEST(EnumRecord, RoundTripsEverySetWhoseFlagIsZero) {
  std::vector<VokFenEnumInteger> sets{Any(), Nil(), RangeSet(-5, 1024), SetOf({kNil, kMin, 0, kMax, kAny})};
  for (unsigned mask = 1; mask < 64; ++mask) {
    VokFenEnumInteger set = Nil();
    for (VokLong v = 0; v < 6; ++v) {
      if ((mask >> v & 1U) != 0) {
        set.Insert(v - 3);
      }
    }
    sets.push_back(set);
  }
  for (const VokFenEnumInteger& set : sets) {
    EXPECT_EQ(Show(ReadBack(Written(set))), Show(set));
  }
}

TEST(EnumRecord, TakesWhatTheStreamHoldsAndKeepsItsPlace) {
  std::vector<VokLong> many{0, 1025};
  for (VokLong v = 0; v < 1025; ++v) {
    many.push_back(1000 - v);
  }
  struct Row {
    std::vector<VokLong> fields;
    const char* set;
  };
  const Row rows[] = {
      {{0, 5, 9, 3, 9, -4, 3}, "-4 3 9"},
      {{1, 2, 5, 6}, "Any"},  // Any takes no members, so a set written with the flag 1 does not come back
      {{5, 2, 5, 6}, "5 6"},
      {{5, 0}, "empty, strange flag"},
      {many, "Any"},
  };
  for (Row row : rows) {
    bool failed = true;
    int next = 0;
    row.fields.push_back(4711);
    EXPECT_EQ(Show(ReadBack(Record(row.fields), &failed, &next)), row.set);
    EXPECT_FALSE(failed);
    EXPECT_EQ(next, 4711) << row.set;
  }
}

TEST(EnumRecord, AStrangeFlagReadsAsNilWhereAMemberIsNeeded) {
  VokFenEnumInteger strange = ReadBack(Record({5, 0}));
  EXPECT_EQ(strange.IsNil() + strange.IsUndefined(), 0);
  EXPECT_EQ(strange.GetLowerBound(), kMax);
  EXPECT_EQ(strange.GetUpperBound(), kMin);
  VokFenIntervalInteger interval(1, 2);
  EXPECT_EQ(strange.IntersectInverse(interval), 1);
  EXPECT_EQ(interval.IsNil(), 1);
  VokFenEnumInteger set = SetOf({1});
  EXPECT_EQ(set.Intersect(strange), 1);
  EXPECT_EQ(Show(set), "Nil");
  EXPECT_EQ(strange.SetLowerBound(4), 1);
  EXPECT_EQ(Show(strange), "4");
}

TEST(EnumRecord, ACutOrHostileRecordReadsZerosForWhatIsMissing) {
  const std::vector<VokLong> fields{0, 5, -7, 3, 12, 0, 5};
  const std::string whole = Record(fields);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const std::size_t words = length < kHeader.size() ? 0 : (length - kHeader.size()) / 4;
    VokFenEnumInteger expected = Nil();
    for (std::size_t i = 2; words >= 2 && i < fields.size(); ++i) {
      expected.Insert(i < words ? fields[i] : 0);
    }
    bool failed = false;
    EXPECT_EQ(Show(ReadBack(whole.substr(0, length), &failed)), Show(expected)) << length << " bytes";
    EXPECT_TRUE(failed) << length << " bytes";
  }
  // The counts promise four thousand million members: neither the memory nor the time for them is spent.
  EXPECT_EQ(Show(ReadBack(Record({0, -1, 4, 2}))), "0 2 4");
  EXPECT_EQ(Show(ReadBack(Record({1, -1, 4, 2}))), "Any");
  std::vector<VokLong> nearlyFull{0, -1};
  for (VokLong v = 1; v <= 1023; ++v) {
    nearlyFull.push_back(v);
  }
  // The first zero fills the set, the second one turns it Any.
  EXPECT_EQ(Show(ReadBack(Record(nearlyFull))), "Any");
}

TEST(EnumStreams, ObjectsKeepTheirIdentityAndTheirClass) {
  const VokFenEnumInteger set = SetOf({1, 4});
  const VokFenSingleInteger single(6);
  std::stringstream bytes;
  Vokopstream os(bytes);
  VokFenEnumInteger::writePtr(os, &set);
  VokFenEnumInteger::writePtr(os, &set);
  VokFenEnumInteger::writePtr(os, nullptr);
  VokFenEnumInteger::writeRef(os, RangeSet(7, 2));
  VokFenSingleInteger::writePtr(os, &single);
  VokFenSingleInteger::writePtr(os, &single);

  Vokipstream is(bytes);
  VokFenEnumInteger* first = nullptr;
  VokFenEnumInteger* again = nullptr;
  VokFenEnumInteger* none = first;
  VokFenEnumInteger existing;
  VokFenEnumInteger::readPtr(is, first);
  const std::unique_ptr<VokFenEnumInteger> owner(first);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(Show(*first), "1 4");
  VokFenEnumInteger::readPtr(is, again);
  EXPECT_EQ(again, first);
  VokFenEnumInteger::readPtr(is, none);
  EXPECT_EQ(none, nullptr);
  VokFenEnumInteger::readRef(is, existing);
  EXPECT_EQ(Show(existing), "7 8");
  const std::unique_ptr<VokStreamable> other(is.ReadObjectPointer());
  EXPECT_FALSE(is.IsFailed());
  VokFenEnumInteger::readPtr(is, again);
  EXPECT_EQ(again, nullptr);
  EXPECT_TRUE(is.IsFailed());
}

}  // namespace
