// Every operation that allocates, with memory running out at each of its allocations in turn.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <limits>
#include <new>

#include "support/enumSets.h"

namespace {
unsigned sAllocationsLeft = std::numeric_limits<unsigned>::max();
}

// The framework allocates by this form alone; the standard library's containers do not use it. All forms are replaced
// together so that they agree.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return sAllocationsLeft == 0 ? nullptr : (--sAllocationsLeft, std::malloc(size));
}
void* operator new(std::size_t size) {
  return std::malloc(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

using namespace enumSets;

namespace {

TEST(EnumShortMemory, LeavesTheRightSetOrNilNeverAPart) {
  std::istringstream text;
  std::vector<VokLong> list{100};
  std::string braces = "{0";
  for (VokLong v = 0; v < 100; ++v) {
    list.push_back(v);
    braces.append(",").append(std::to_string(v));
  }
  // More members than an operation collects without asking for memory.
  const VokFenEnumInteger large = RangeSet(0, 3000), last = RangeSet(kMax - 2999, 3000);
  const std::function<void(VokFenEnumInteger&, VokFenEnumInteger&)> operations[] = {
      [](auto& set, auto&) { set.SetUpperBound(99); },
      [](auto& set, auto& other) { set.Unite(other); },
      [&](auto& set, auto& other) { set = large, set.Unite(other); },
      [&](auto& set, auto& other) { set = large, set.Intersect(other); },
      [&](auto& set, auto&) { set = VokFenEnumInteger(), set.CalcNextValue(last); },
      [](auto& set, auto& other) {
        set = VokFenEnumInteger();
        set.Intersect(
            other, [](const SubIntBase&, void*) { return 1; }, nullptr);
      },
      [](auto& set, auto&) {
        for (VokLong v = 1; v < 100 && set.GetCount() > 0; ++v) {
          set.Insert(v);
        }
      },
      [](auto& set, auto& other) { set.Assign(other); },
      [](auto& set, auto& other) { other.Bisect(set, VokTarnAny::UpperHalf); },
      [](auto& set, auto&) { set = VokFenEnumInteger(), set.Intersect(VokFenIntervalInteger(0, 99)); },
      [&](auto& set, auto&) { set = VokFenEnumInteger(static_cast<const void*>(list.data())); },
      [&](auto& set, auto&) { text.str("[0, 99]"), text.clear(), set.InputValue(text); },
      [&](auto& set, auto&) { text.str(braces + "}"), text.clear(), set.InputValue(text); },
  };
  for (std::size_t i = 0; i < std::size(operations); ++i) {
    std::string right;
    for (unsigned left : {std::numeric_limits<unsigned>::max(), 0U, 1U, 2U, 3U, 4U, 5U}) {
      VokFenEnumInteger set = SetOf({0}), other = RangeSet(1, 99);
      const VokULong failures = VokTarnBase::GetAllocationFailures();
      sAllocationsLeft = left;
      operations[i](set, other);
      sAllocationsLeft = std::numeric_limits<unsigned>::max();
      right = right.empty() ? Show(set) : right;
      const bool failed = VokTarnBase::GetAllocationFailures() != failures;
      EXPECT_EQ(Show(set), failed && set.GetCount() == 0 ? Show(set) : right) << "operation " << i << ", " << left;
      EXPECT_TRUE(failed || left > 0) << "operation " << i << " took no memory";
    }
  }
}

TEST(EnumShortMemory, ACopiedVectorSaysThatItIsNone) {
  VokSVectorImp_SubIntBase vector(9, 1U, 0);
  vector.Add(Element(7));
  sAllocationsLeft = 0;
  const VokSVectorImp_SubIntBase copy(vector);
  sAllocationsLeft = std::numeric_limits<unsigned>::max();
  EXPECT_EQ(copy.IsValid() + static_cast<int>(copy.Size()), 0);
}

}  // namespace
