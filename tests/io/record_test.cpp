#include <gtest/gtest.h>

#include <memory>
#include <set>

#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "support/countedMemory.h"
#include "support/enumSets.h"
#include "support/exercise.h"
#include "support/soak.h"
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

// Bytes that count how many are read, also beyond their end.
class CountedBytes : public std::stringbuf {
 public:
  explicit CountedBytes(const std::string& bytes) : std::stringbuf(bytes) {}
  std::size_t fAsked = 0;

 protected:
  std::streamsize xsgetn(char* to, std::streamsize count) override {
    fAsked += static_cast<std::size_t>(count);
    return std::stringbuf::xsgetn(to, count);
  }
};

// What reading may cost, whatever the bytes promise: no more is asked for than is there and a field beyond.
constexpr std::size_t kMostMemory = 1U << 20;

template <class Value>
Value ReadHostile(const std::string& bytes) {
  CountedBytes buffer(bytes);
  std::istream text(&buffer);
  Value value;
  const std::size_t before = support::sAllocatedBytes;
  Vokipstream is(text);
  value.Read(is);
  EXPECT_LE(support::sAllocatedBytes - before, kMostMemory);
  EXPECT_LE(buffer.fAsked, bytes.size() + 4);
  return value;
}

// Every value of every byte of the record of `seed`, and every shorter record. Each state that comes of it is put
// through every operation, or a choice of those states that differ in a member only.
template <class Value>
void ReadNeighbours(const Fields& seed) {
  const std::string whole = Record(seed);
  const std::size_t start = Record({}).size();
  std::set<std::string> seen;
  const auto read = [&](const std::string& bytes, bool exercises) {
    const Value value = ReadHostile<Value>(bytes);
    std::ostringstream record;
    Vokopstream os(record);
    value.Write(os);
    std::string state = record.str();
    // A flag is 0, 1, or one of the others.
    state = state[start] > 1 || state.substr(start + 1, 3) != std::string(3, '\0') ? state.substr(start + 4) : state;
    if (exercises && seen.insert(state).second) {
      support::Exercise(value);
    }
  };
  for (std::size_t at = start; at < whole.size(); ++at) {
    read(whole.substr(0, at), true);
    for (unsigned byte = 0; byte < 256; ++byte) {
      std::string bytes = whole;
      bytes[at] = static_cast<char>(byte);
      read(bytes, at < start + 8 || byte % 51 == 0 || byte == 127 || support::SoakFactor() > 1);
    }
  }
}

TEST(HostileRecords, AnyByteMayBeWrong) {
  Fields full{0, 1023};
  for (VokLong v = 0; v < 1023; v += 341) {
    full.push_back(v);
  }
  for (const Fields& seed : {Fields{0, 0},
                             {1, 0},
                             {0, 1, 5},
                             {1, 1, 5},
                             {0, 3, -7, 3, 12},
                             {1, 4, kMin, -1, 0, kMax},
                             {0, 2, kNil, kAny},
                             {5, 6, 1, 2, 3, 4, 5, 6},
                             {0, 4, 9, 3, 9, -4},
                             full}) {
    ReadNeighbours<VokFenEnumInteger>(seed);
  }
  for (const VokLong seed : {0, 5, -1, kNil, kAny}) {
    ReadNeighbours<VokFenSingleInteger>({seed});
  }
  for (const Fields& seed : {Fields{-3, 4}, {kMin, kMax}, {kMax, kMin}}) {
    ReadNeighbours<VokFenIntervalInteger>(seed);
  }
  for (const VokLong seed : {0, 3}) {
    ReadNeighbours<VokFenSingleBoolean>({seed});
  }
}

TEST(HostileRecords, ACountCostsNoMoreThanItsBytes) {
  const auto read = [](std::int64_t count, VokLong members) {
    Fields fields{0, static_cast<VokLong>(static_cast<VokULong>(count))};
    for (VokLong v = 0; v < members; ++v) {
      fields.push_back(v);
    }
    const auto set = ReadHostile<VokFenEnumInteger>(Record(fields));
    support::Exercise(set);
    return Show(set);
  };
  for (const std::int64_t count :
       {0LL, 1LL, 1023LL, 1024LL, 1025LL, 1LL << 16, 1LL << 30, (1LL << 31) - 1, 1LL << 31}) {
    EXPECT_EQ(read(count, 0), count == 0 ? "Nil" : "0") << count;
    EXPECT_EQ(read(count, 5), count == 0 ? "Nil" : count == 1 ? "0" : "0 1 2 3 4") << count;
    EXPECT_EQ(read(count, 2000) == "Any", count > 1024) << count;
  }
  for (std::int64_t count = (1LL << 32) - 21; count < 1LL << 32; ++count) {
    EXPECT_EQ(read(count, 5), "0 1 2 3 4") << count;
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
