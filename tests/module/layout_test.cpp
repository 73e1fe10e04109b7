// The order of the virtual operations, read from pointers to members: where the calling convention stores a virtual
// one as its offset in the table, plus one. The destructor takes the entries 0 and 1, so slot k is
// entry k, counted from the destructor as slot 1.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <numeric>
#include <vector>

#include "module/VokFenEnumInteger_Descriptor.h"

#if defined(__x86_64__)
namespace {

template <class Member>
std::ptrdiff_t Entry(Member member) {
  std::ptrdiff_t parts[2];
  static_assert(sizeof parts == sizeof member);
  std::memcpy(parts, &member, sizeof parts);
  return (parts[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

template <class... Members>
void ExpectSlotsFromTwoOn(Members... members) {
  const std::vector<std::ptrdiff_t> entries{Entry(members)...};
  std::vector<std::ptrdiff_t> expected(entries.size());
  std::iota(expected.begin(), expected.end(), 2);
  EXPECT_EQ(entries, expected);
}

template <class R, class... Operands>
auto Overload(R (VokTarnAny::*member)(Operands...)) {
  return member;
}

TEST(EnumLayout, VirtualOperationsOfTheSetStandInTheirSlots) {
  using E = VokFenEnumInteger;
  using A = VokTarnAny;
  ExpectSlotsFromTwoOn(
      &E::CastableID, &E::Write, &E::Read, &E::IsDerivedFrom, &E::GetDescriptor, &E::Activate, &E::ActivateByArgument,
      &E::Filter, &E::PrintOn, &E::InputValue, &E::Assign, &E::SetNilValue, &E::SetUndefinedValue, &E::IsNil,
      &E::IsUndefined, &E::IsIntersected, &A::Intersect, &A::Unite, &E::GetCardinality, &E::GetWidth,
      &E::GetRelativeWidth, &E::Bisect, Overload<int>(&A::CalcMinValue), Overload<int>(&A::CalcMaxValue),
      &E::CalcEqualValue, &E::CalcInverseEqualValue, &E::CalcUnequalValue, &E::CalcInverseUnequalValue, &E::CalcIsEqual,
      &A::CalcLessOrEqualValue, &A::CalcInverseLessOrEqualValue, &A::CalcNotLessAndUnequalValue,
      &A::CalcInverseNotLessAndUnequalValue, &E::CalcIsLessOrEqual, Overload<int, const A&, const A&>(&A::CalcMinValue),
      &A::CalcFirstInverseMinValue, Overload<int, const A&, const A&>(&A::CalcMaxValue), &A::CalcFirstInverseMaxValue,
      &VokTarnScalar::CalcLessValue, &VokTarnScalar::CalcInverseLessValue, &VokTarnScalar::CalcNotLessValue,
      &VokTarnScalar::CalcInverseNotLessValue, &E::CalcIsLess, &VokTarnScalar::CalcNextValue,
      &VokTarnScalar::CalcInverseNextValue, &E::CalcZeroValue, &E::CalcOneValue, &VokTarnNumber::CalcAbsoluteValue,
      &VokTarnNumber::CalcInverseAbsoluteValue, &VokTarnNumber::CalcNegativeValue,
      &VokTarnNumber::CalcInverseNegativeValue, &E::CalcSignumValue, &E::CalcInverseSignumValue,
      &VokTarnNumber::CalcSumValue, &VokTarnNumber::CalcFirstInverseSumValue, &VokTarnNumber::CalcProdValue,
      &VokTarnNumber::CalcFirstInverseProdValue, &VokTarnNumber::CalcModValue, &VokTarnNumber::CalcFirstInverseModValue,
      &VokTarnNumber::CalcSecondInverseModValue, &VokTarnNumber::CalcPowerValue,
      &VokTarnNumber::CalcFirstInversePowerValue, &VokTarnNumber::CalcSecondInversePowerValue, &E::SetExactValue,
      &E::SetLowerBound, &E::SetUpperBound, &E::AddExactValue, &E::RemoveExactValue, &E::GetLowerBound,
      &E::GetUpperBound, &E::GetNextExactValue, &E::GetPrevExactValue);
}

TEST(EnumLayout, VirtualOperationsOfTheDescriptorStandInTheirSlots) {
  using D = VokFenEnumInteger::Descriptor;
  ExpectSlotsFromTwoOn(&D::CastableID, &D::Write, &D::Read, &D::IsDerivedFrom,
                       static_cast<void* (D::*)(void*) const>(&D::InitObject),
                       static_cast<void* (D::*)(void*, const void*) const>(&D::InitObject), &D::DestroyObject,
                       &D::GetObjectSize, &D::GetNumberOfArguments, &D::GetArgumentsSize, &D::IsMatched, &D::PrintOn);
}

}  // namespace
#endif
