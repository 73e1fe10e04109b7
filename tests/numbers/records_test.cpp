// The records of the value classes in the object streams, their descriptors and their identities.
#include <gtest/gtest.h>

#include <memory>

#include "framework/VokStreamableClass.h"
#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "numbers/values.h"

namespace {

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

TEST(NumberRecords, AreReadBackAndCheckedAgainstTheStates) {
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
void ExpectRoundTrip(std::initializer_list<Value> values) {
  for (const Value& value : values) {
    std::stringstream bytes;
    Vokopstream os(bytes);
    Value::writeRef(os, value);
    Value::writePtr(os, &value);
    Value::writePtr(os, nullptr);
    Value::writePtr(os, &value);
    Vokipstream is(bytes);
    Value same;
    Value::readRef(is, same);
    EXPECT_EQ(Show(same), Show(value));
    Value *pointer = nullptr, *none = &same;
    Value::readPtr(Value::readPtr(is, pointer), none);
    EXPECT_EQ(pointer, &same) << "one object is written once";
    EXPECT_EQ(none, nullptr);
    EXPECT_FALSE(is.IsFailed());
    using Other = std::conditional_t<std::is_same_v<Value, Single>, Interval, Single>;
    Other* other = nullptr;
    Other::readPtr(is, other);
    EXPECT_EQ(other, nullptr);
    EXPECT_TRUE(is.IsFailed()) << "an object of another class";
  }
}

TEST(NumberRecords, RoundTripThroughTheObjectStreams) {
  ExpectRoundTrip({Single(5), Single(), Single(kNil), Single(kMax)});
  ExpectRoundTrip({Interval(-5, 9), Interval(), Interval(1, 0), Interval(4, kMax)});
  ExpectRoundTrip({Boolean(), Boolean(true), Boolean(false)});
}

// `expected` is what the type makes of nothing and of the lists {0}, {1, -3}, {3, -3, 8, 2} and {2, 0, 1}.
template <class Value>
void ExpectType(const char* typeName, const std::string& expected) {
  const Value value;
  const std::string name = Value::CastableIdent;
  EXPECT_NE(Value::CastableIdent, Value::sIdent);
  EXPECT_EQ(name, Value::sIdent);
  EXPECT_EQ(value.CastableID(), Value::CastableIdent);
  EXPECT_EQ(value.IsDerivedFrom(Value::sIdent), 1);
  EXPECT_EQ(value.IsDerivedFrom(VokTarnAny::sIdent), 1);
  EXPECT_EQ(value.IsDerivedFrom(Value::CastableIdent), 0) << "identities are addresses";
  for (const std::string& streamable : {name, name + "_Descriptor"}) {
    const VokStreamableClass* const known = VokStreamableClass::Find(streamable);
    ASSERT_NE(known, nullptr);
    const std::unique_ptr<VokStreamable> made(known->Build(nullptr));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->CastableID(), streamable);
    EXPECT_EQ(known->Build(made.get()), made.get());
  }

  const std::unique_ptr<VokTarnObjectDescriptor> descriptor(Value::MakeDescriptor());
  EXPECT_EQ(value.GetDescriptor(), descriptor.get());
  EXPECT_EQ(descriptor->GetName().View(), typeName);
  EXPECT_EQ(descriptor->GetObjectSize(), sizeof(Value));
  EXPECT_EQ(descriptor->InitObject(nullptr), nullptr);
  EXPECT_EQ(descriptor->InitObject(nullptr, &kMax), nullptr);
  alignas(Value) std::byte place[sizeof(Value)];
  const VokLong lists[][4] = {{}, {0}, {1, -3}, {3, -3, 8, 2}, {2, 0, 1}};
  std::string built;
  for (const auto& list : lists) {
    void* const made = &list == &lists[0] ? descriptor->InitObject(place) : descriptor->InitObject(place, list);
    ASSERT_EQ(made, place);
    built += Show(*static_cast<VokTarnObject*>(made)) + "; ";
    descriptor->DestroyObject(static_cast<VokTarnObject*>(made));
  }
  EXPECT_EQ(built, expected);
  Value::sDescriptor = nullptr;
}

TEST(NumberTypes, AreRegisteredKnowTheirIdentityAndBuildValues) {
  ExpectType<Single>("int", "Any; Nil; -3; Any; Any; ");
  ExpectType<Interval>("interval int", "Any; Nil; -3; [-3, 8]; [0, 1]; ");
  ExpectType<Boolean>("bool", "Any; Nil; 1; 1; Any; ");
}

}  // namespace
