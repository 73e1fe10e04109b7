#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <set>
#include <sstream>

#include "framework/VokStreamableClass.h"
#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "support/countedMemory.h"
#include "support/mutate.h"
#include "support/soak.h"
#include "support/streamBytes.h"

namespace {

using support::StreamBytes;
using support::StreamItems;

// A number and two pointers. Live nodes are counted; DeleteAll removes those that belong to nobody else.
class Node : public VokStreamable {
 public:
  explicit Node(int value = 0, Node* left = nullptr, Node* right = nullptr)
      : fValue(value), fLeft(left), fRight(right) {
    sLive.insert(this);
  }
  ~Node() override { sLive.erase(this); }

  const char* CastableID() const override { return "Node"; }
  void Write(Vokopstream& os) const override {
    os << fValue;
    os.WriteObjectPointer(fLeft).WriteObjectPointer(fRight);
  }
  void Read(Vokipstream& is) override {
    is >> fValue;
    fLeft = static_cast<Node*>(is.ReadObjectPointer());
    fRight = static_cast<Node*>(is.ReadObjectPointer());
  }

  static VokStreamable* Build(VokStreamable* existing) { return existing != nullptr ? existing : new Node; }
  static void DeleteAll() {
    while (!sLive.empty()) {
      delete *sLive.begin();
    }
  }

  static inline std::set<Node*> sLive;

  int fValue;
  Node* fLeft;
  Node* fRight;
};

class Stranger : public Node {
 public:
  const char* CastableID() const override { return "Stranger"; }
};

const VokStreamableClass rNode("Node", &Node::Build, 7);

class ObjectStream : public testing::Test {
 protected:
  void TearDown() override { Node::DeleteAll(); }
};

std::string Written(const std::function<void(Vokopstream&)>& write) {
  std::ostringstream bytes;
  Vokopstream os(bytes);
  write(os);
  return os.IsFailed() ? "failed" : bytes.str();
}

// Reads one object pointer; nothing that was made for it outlives a failure.
Node* ReadNode(const std::string& bytes, bool& failed) {
  std::istringstream text(bytes);
  Vokipstream is(text);
  auto* const node = static_cast<Node*>(is.ReadObjectPointer());
  failed = is.IsFailed();
  return node;
}

TEST_F(ObjectStream, FieldsAreFourBytesLeastSignificantFirst) {
  EXPECT_EQ(Written([](Vokopstream& os) { os << -2 << 0x80000001U << 258L << -2147483648L; }),
            StreamBytes({0xFFFFFFFEU, 0x80000001U, 258U, 0x80000000U}));
  EXPECT_EQ(Written([](Vokopstream& os) { os.WriteText("ab").WriteText(""); }), StreamBytes({"ab", ""}));
  std::istringstream text(StreamBytes({0xFFFFFFFEU, 0x80000001U, 0x80000000U, "ab"}));
  Vokipstream is(text);
  int i = 0;
  unsigned u = 0;
  long l = 0;
  std::string word;
  (is >> i >> u >> l).ReadText(word);
  EXPECT_EQ(std::tuple(i, u, l, word), std::tuple(-2, 0x80000001U, -2147483648L, "ab"));
  EXPECT_FALSE(is.IsFailed());
}

TEST_F(ObjectStream, WhatDoesNotFitFailsTheWriterForGood) {
  const Stranger stranger;
  const Node node;
  const std::function<void(Vokopstream&)> writers[] = {
      [](Vokopstream& os) { os << 2147483648L; },
      [](Vokopstream& os) { os << std::numeric_limits<long>::min(); },
      [](Vokopstream& os) { os.WriteText(std::string((1U << 20) + 1, 'a')); },
      [&](Vokopstream& os) { os.WriteObject(&stranger); },
      [&](Vokopstream& os) { os.WriteObject(nullptr); },
  };
  for (const auto& write : writers) {
    std::ostringstream bytes;
    Vokopstream os(bytes);
    write(os);
    EXPECT_TRUE(os.IsFailed());
    os << 1;
    os.WriteText("a").WriteObject(&node);
    EXPECT_EQ(bytes.str(), StreamBytes({}));
  }
}

TEST_F(ObjectStream, OneObjectIsWrittenOnceAndRestoredAsOne) {
  Node shared(2);
  Node root(1, &shared, &shared);
  shared.fLeft = &root;
  const std::string bytes = Written([&](Vokopstream& os) { os.WriteObject(&root).WriteObjectPointer(&shared); });
  EXPECT_EQ(bytes, StreamBytes({1U, "Node", 7U, 1U,              // object 0
                                1U, "Node", 7U, 2U, 2U, 0U, 0U,  // object 1 with a reference to 0 and a null pointer
                                2U, 1U, 2U, 1U}));
  std::istringstream text(bytes);
  Vokipstream is(text);
  auto* const read = static_cast<Node*>(is.ReadObjectPointer());
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->fValue, 1);
  EXPECT_EQ(read->fLeft, read->fRight);
  EXPECT_EQ(read->fLeft->fLeft, read);
  EXPECT_EQ(read->fLeft->fRight, nullptr);
  EXPECT_EQ(is.ReadObjectPointer(), read->fLeft);
  EXPECT_EQ(is.GetObjectCount(), 2U);
  EXPECT_FALSE(is.IsFailed());
}

TEST_F(ObjectStream, AnExistingObjectTakesARecordOfItsClassOnly) {
  const std::string bytes = StreamBytes({1U, "Node", 7U, 5U, 0U, 0U});
  const auto read = [](const std::string& source, Node& target) {
    std::istringstream text(source);
    Vokipstream is(text);
    VokStreamable* object = &target;
    is.ReadObject(object);
    EXPECT_EQ(object, &target);
    return !is.IsFailed();
  };
  Node node(9);
  EXPECT_TRUE(read(bytes, node));
  EXPECT_EQ(node.fValue, 5);
  Stranger stranger;
  EXPECT_FALSE(read(bytes, stranger));
  EXPECT_FALSE(read(StreamBytes({0U}), stranger));
  EXPECT_EQ(stranger.fValue, 0);
}

TEST_F(ObjectStream, HostileBytesFail) {
  const std::string node = "Node";
  const std::pair<const char*, std::string> rows[] = {
      {"no bytes", ""},
      {"wrong magic", "VTOX" + StreamBytes({0U}).substr(4)},
      {"wrong version", std::string("VTOS\2\0\0\0\0\0\0\0", 12)},
      {"unknown tag", StreamBytes({3U, node, 7U, 1U, 0U, 0U})},
      {"unknown class", StreamBytes({1U, "Stranger", 7U, 1U, 0U, 0U})},
      {"name with a zero byte", StreamBytes({1U, std::string("Node\0", 5), 7U, 1U, 0U, 0U})},
      {"wrong version of the class", StreamBytes({1U, node, 8U, 1U, 0U, 0U})},
      {"reference to nothing", StreamBytes({2U, 0U})},
      {"reference to a later object", StreamBytes({1U, node, 7U, 1U, 2U, 1U, 0U})},
      {"reference beyond all", StreamBytes({2U, 0xFFFFFFFFU})},
      {"length beyond the limit", StreamBytes({1U, (1U << 20) + 1}) + std::string(2U << 20, 'a')},
      {"length beyond the bytes", StreamBytes({1U, 1U << 20}) + "Node"},
      {"greatest length", StreamBytes({1U, 0xFFFFFFFFU}) + "Node"},
  };
  for (const auto& [name, bytes] : rows) {
    bool failed = false;
    EXPECT_EQ(ReadNode(bytes, failed), nullptr) << name;
    EXPECT_TRUE(failed) << name;
    EXPECT_TRUE(Node::sLive.empty()) << name;
  }
}

TEST_F(ObjectStream, NestingEndsAtItsLimit) {
  for (const auto& [depth, fails] : {std::pair(1000, false), std::pair(1001, true), std::pair(5000, true)}) {
    StreamItems items;
    for (int i = 0; i < depth; ++i) {
      items.insert(items.end(), {1U, "Node", 7U, 1U});
    }
    items.insert(items.end(), static_cast<std::size_t>(depth) + 1, 0U);
    bool failed = false;
    EXPECT_EQ(ReadNode(StreamBytes(items), failed) == nullptr, fails) << depth;
    EXPECT_EQ(failed, fails) << depth;
    EXPECT_EQ(Node::sLive.size(), fails ? 0U : 1000U) << "a failed read keeps nothing";
    Node::DeleteAll();
  }
}

TEST_F(ObjectStream, EveryTruncationFails) {
  const std::string bytes = StreamBytes({1U, "Node", 7U, 1U, 0U, 1U, "Node", 7U, 2U, 2U, 0U, 0U});
  bool failed = true;
  ASSERT_NE(ReadNode(bytes, failed), nullptr);
  ASSERT_FALSE(failed);
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    Node::DeleteAll();
    EXPECT_EQ(ReadNode(bytes.substr(0, length), failed), nullptr) << length;
    EXPECT_TRUE(failed) << length;
  }
}

TEST_F(ObjectStream, AfterAFailureEverythingReadIsZero) {
  std::istringstream text(StreamBytes({2U, 9U, 5U, 5U, 5U, "ab", 1U, "Node", 7U, 1U, 0U, 0U}));
  Vokipstream is(text);
  EXPECT_EQ(is.ReadObjectPointer(), nullptr);
  int i = 1;
  unsigned u = 1;
  long l = 1;
  std::string word = "old";
  Node target(3);
  VokStreamable* object = &target;
  (is >> i >> u >> l).ReadText(word).ReadObject(object);
  EXPECT_EQ(std::tuple(i, u, l, word), std::tuple(0, 0U, 0L, ""));
  EXPECT_EQ(target.fValue, 3);
  EXPECT_EQ(is.ReadObjectPointer(), nullptr);
  EXPECT_TRUE(is.IsFailed());
}

TEST_F(ObjectStream, AThrowingStreamOnlyFails) {
  const std::string bytes = StreamBytes({1U, "Node", 7U, 1U, 0U, 0U});
  for (const std::size_t length : {std::size_t{0}, std::size_t{6}, std::size_t{14}, bytes.size() - 1, bytes.size()}) {
    std::istringstream text(bytes.substr(0, length));
    text.exceptions(std::ios_base::failbit | std::ios_base::badbit | std::ios_base::eofbit);
    Vokipstream is(text);
    EXPECT_EQ(is.ReadObjectPointer() != nullptr, length == bytes.size()) << length;
    EXPECT_EQ(is.IsFailed(), length != bytes.size()) << length;
  }
}

TEST_F(ObjectStream, MutationsTakeMemoryForTheirBytesOnly) {
  const std::vector<std::string> seeds{StreamBytes({1U, "Node", 7U, 1U, 1U, "Node", 7U, 2U, 2U, 0U, 0U, 2U, 1U}),
                                       StreamBytes({1U, "Node", 7U, 5U, 0U, 0U, 1U, "Stranger", 7U, 5U, 0U, 0U}),
                                       StreamBytes({2U, 0xFFFFFFFFU, 1U, (1U << 20) + 1, 1U, 0xFFFFFFFFU, "Node"})};
  constexpr unsigned seed = 3;
  std::mt19937 random(seed);
  for (int round = 0; round < 5000 * support::SoakFactor(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round) + " of seed " + std::to_string(seed));
    const std::string bytes = support::Mutate(seeds, random);
    std::istringstream text(bytes);
    const std::size_t before = support::sAllocatedBytes;
    Vokipstream is(text);
    while (!is.IsFailed()) {
      is.ReadObjectPointer();
    }
    EXPECT_LE(support::sAllocatedBytes - before, 4096 + 16 * bytes.size());
    Node::DeleteAll();
  }
}

}  // namespace
