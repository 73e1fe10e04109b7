// The records of the value classes in the object streams, their descriptors and their identities.
#include <gtest/gtest.h>

#include <array>
#include <sstream>

#include "framework/VokStreamableClass.h"
#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "numbers/VokFenIntervalInteger.h"
#include "numbers/VokFenSingleBoolean.h"

namespace {

using Single = VokFenSingleInteger;
using Interval = VokFenIntervalInteger;
using Boolean = VokFenSingleBoolean;

constexpr VokLong kMax = SubIntBase::sMax;
constexpr VokLong kNil = -2147483647 - 1;

std::string Show(const VokTarnObject& v) {
  std::ostringstream os;
  v.PrintOn(os);
  return os.str();
}

// Writes `fields` as a record and reads it into a value of the type; "failed" with the state left behind.
template <class Value, class Field>
std::string Read(std::initializer_list<Field> fields) {
  std::stringstream bytes;
  Vokopstream os(bytes);
  for (const Field field : fields) {
    os << field;
  }
  Vokipstream is(bytes);
  Value value;
  value.Read(is);
  return (is.IsFailed() ? "failed " : "") + Show(value);
}

TEST(Records, AreReadBackAndCheckedAgainstTheStates) {
  EXPECT_EQ(Read<Single>({-7L}), "-7");
  EXPECT_EQ(Read<Single>({2147483647L}), "Any");
  EXPECT_EQ(Read<Single>({-2147483648L}), "Nil");
  EXPECT_EQ(Read<Single>({2147483646L}), "failed Nil");
  EXPECT_EQ((Read<Single, long>({})), "failed Nil");
  EXPECT_EQ(Read<Interval>({-3L, 4L}), "[-3, 4]");
  EXPECT_EQ(Read<Interval>({long{kMax}, -long{kMax}}), "Nil");
  EXPECT_EQ(Read<Interval>({4L, -3L}), "failed Nil");
  EXPECT_EQ(Read<Interval>({4L, 2147483647L}), "failed Nil");
  EXPECT_EQ(Read<Interval>({4L}), "failed Nil");
  EXPECT_EQ(Read<Boolean>({0}), "Nil");
  EXPECT_EQ(Read<Boolean>({2}), "1");
  EXPECT_EQ(Read<Boolean>({4}), "failed Nil");
  EXPECT_EQ(Read<Boolean>({-1}), "failed Nil");
}

template <class Value>
void ExpectRoundTrip(const Value& value) {
  std::stringstream bytes;
  Vokopstream os(bytes);
  Value::writeRef(os, value);
  Value::writePtr(os, &value);
  Value::writePtr(os, nullptr);
  Vokipstream is(bytes);
  Value same;
  Value::readRef(is, same);
  EXPECT_EQ(Show(same), Show(value));
  Value* pointer = nullptr;
  Value::readPtr(is, pointer);
  EXPECT_EQ(pointer, &same) << "one object is written once";
  Value::readPtr(is, pointer);
  EXPECT_EQ(pointer, nullptr);
  EXPECT_FALSE(is.IsFailed());
}

TEST(Records, RoundTripThroughTheObjectStreams) {
  for (const Single& value : {Single(5), Single(), Single(kNil), Single(kMax)}) {
    ExpectRoundTrip(value);
  }
  for (const Interval& value : {Interval(-5, 9), Interval(), Interval(1, 0), Interval(4, kMax)}) {
    ExpectRoundTrip(value);
  }
  for (const Boolean& value : {Boolean(), Boolean(true), Boolean(false)}) {
    ExpectRoundTrip(value);
  }
}

TEST(Records, AnObjectOfAnotherClassFailsTheStream) {
  std::stringstream bytes;
  Vokopstream os(bytes);
  const Single value(5);
  Single::writeRef(os, value);
  Single::writeRef(os, value);
  Vokipstream is(bytes);
  Single same;
  Single::readRef(is, same);
  Interval* interval = nullptr;
  Interval::readPtr(is, interval);
  EXPECT_EQ(interval, nullptr);
  EXPECT_TRUE(is.IsFailed());
}

template <class Value>
class Types : public testing::Test {};
using AllTypes = testing::Types<Single, Interval, Boolean>;
TYPED_TEST_SUITE(Types, AllTypes);

TYPED_TEST(Types, AreRegisteredAndKnowTheirIdentity) {
  const TypeParam value;
  const std::string name = TypeParam::CastableIdent;
  EXPECT_NE(TypeParam::CastableIdent, TypeParam::sIdent);
  EXPECT_EQ(name, TypeParam::sIdent);
  EXPECT_EQ(value.CastableID(), TypeParam::CastableIdent);
  EXPECT_EQ(value.IsDerivedFrom(TypeParam::sIdent), 1);
  EXPECT_EQ(value.IsDerivedFrom(VokTarnAny::sIdent), 1);
  EXPECT_EQ(value.IsDerivedFrom(TypeParam::CastableIdent), 0) << "identities are addresses";
  for (const std::string& streamable : {name, name + "_Descriptor"}) {
    const VokStreamableClass* const known = VokStreamableClass::Find(streamable);
    ASSERT_NE(known, nullptr);
    const std::unique_ptr<VokStreamable> made(known->Build(nullptr));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->CastableID(), streamable);
    EXPECT_EQ(known->Build(made.get()), made.get());
  }
}

// Builds a value from a list and shows it.
std::string Built(const VokTarnObjectDescriptor& descriptor, const std::vector<VokLong>& list) {
  std::vector<std::max_align_t> place(descriptor.GetObjectSize() / sizeof(std::max_align_t) + 1);
  void* const built =
      list.empty() ? descriptor.InitObject(place.data()) : descriptor.InitObject(place.data(), list.data());
  EXPECT_EQ(built, place.data());
  auto* const object = static_cast<VokTarnObject*>(built);
  const std::string text = Show(*object);
  descriptor.DestroyObject(object);
  return text;
}

TEST(Descriptors, BuildUndefinedValuesAndValuesFromLists) {
  struct Row {
    std::unique_ptr<VokTarnObjectDescriptor> descriptor;
    const char* name;
    std::array<const char*, 5> built;
  };
  Row rows[] = {
      {std::unique_ptr<VokTarnObjectDescriptor>(Single::MakeDescriptor()), "int", {"Any", "Nil", "-3", "Any", "Any"}},
      {std::unique_ptr<VokTarnObjectDescriptor>(Interval::MakeDescriptor()),
       "interval int",
       {"Any", "Nil", "-3", "[-3, 8]", "[0, 1]"}},
      {std::unique_ptr<VokTarnObjectDescriptor>(Boolean::MakeDescriptor()), "bool", {"Any", "Nil", "1", "1", "Any"}}};
  const std::vector<VokLong> lists[] = {{}, {0}, {1, -3}, {3, -3, 8, 2}, {2, 0, 1}};
  for (const Row& row : rows) {
    EXPECT_EQ(row.descriptor->GetName().View(), row.name);
    EXPECT_EQ(row.descriptor->InitObject(nullptr), nullptr);
    EXPECT_EQ(row.descriptor->InitObject(nullptr, lists[1].data()), nullptr);
    for (std::size_t i = 0; i < std::size(lists); ++i) {
      EXPECT_EQ(Built(*row.descriptor, lists[i]), row.built[i]) << row.name;
    }
  }
  EXPECT_EQ(Single().GetDescriptor(), rows[0].descriptor.get());
  Single::sDescriptor = Interval::sDescriptor = Boolean::sDescriptor = nullptr;
}

}  // namespace
