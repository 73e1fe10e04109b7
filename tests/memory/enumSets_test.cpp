// The operations of the numbers and of the enumerated set, their texts and records, with memory running out at each of
// their allocations.
#include <algorithm>
#include <functional>
#include <numeric>
#include <sstream>

#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "memory/shortage.h"
#include "support/operands.h"

using namespace enumSets;
using memory::ForEachShortage;
using memory::Shortage;

namespace {

support::Values ValuesOf(const support::Model& operand) {
  support::Values values = operand.values;
  if (operand.kind == 'i' && !values.empty()) {
    values.resize(static_cast<std::size_t>(operand.values[1] - operand.values[0] + 1));
    std::iota(values.begin(), values.end(), operand.values[0]);
  }
  return values;
}

// Narrowing with too little memory may leave too few values, but nothing that was not there, and no state that no
// operation gives. That the result must not be believed is what VokTarnBase::GetAllocationFailures says.
TEST(Shortage, NeverWidensWhatIsNarrowed) {
  const char* const kinds[3][3] = {
      {"-30..30 40", "s 4", "i -9 9"}, {"-9 -3..40", "s -3", "i -4 6"}, {"-2..3 5", "s 2", "i 1 3"}};
  for (const support::Operation& op : support::Operations()) {
    for (unsigned combination = 0; combination < (op.operands == 3 ? 27 : 9); ++combination) {
      const unsigned choice[3] = {combination % 3, combination / 3 % 3, combination / 9};
      support::Model before[3];
      for (unsigned i = 0; i < 3; ++i) {
        before[i] = support::Parse(kinds[i][choice[i]]);
      }
      ForEachShortage(op.name, [&](unsigned long n, bool lasts) {
        support::Operand x(before[0]), y(before[1]), z(before[2]);
        const VokULong failures = VokTarnBase::GetAllocationFailures();
        Shortage shortage(n, lasts);
        const int status = op.run(x.Get(), y.Get(), z.Get());
        const bool hasFailed = shortage.End();
        EXPECT_EQ(VokTarnBase::GetAllocationFailures() != failures, hasFailed);
        support::Operand* const operands[] = {&x, &y, &z};
        for (unsigned i = 0; i < 3; ++i) {
          const support::Model after = operands[i]->Read();
          const bool isSame = after.any == before[i].any && after.values == before[i].values;
          const bool isPart = !after.any && std::ranges::includes(ValuesOf(before[i]), ValuesOf(after));
          EXPECT_TRUE(isSame || (i == op.narrowed && status == 1 && isPart))
              << op.name << ", allocation " << n << (lasts ? " and all after it: " : ": ") << before[0] << ", "
              << before[1] << ", " << before[2] << ": operand " << i << " became " << after << "with " << status;
        }
        return hasFailed;
      });
    }
  }
}

void ReadRecord(std::istream& bytes, VokFenEnumInteger& set) {
  Vokipstream is(bytes);
  VokStreamable* target = &set;
  is.ReadObject(target);
  if (is.IsFailed()) {  // says that the set is not what was written
    set.SetNilValue();
  }
}

// `operate` on a copy of the set and {1, .., 99}.
void ExpectRightOrNil(const std::string& name, const VokFenEnumInteger& before,
                      const std::function<void(VokFenEnumInteger&, VokFenEnumInteger&)>& operate) {
  std::string right;
  unsigned long mostFailures = 0;
  ForEachShortage(name, [&](unsigned long n, bool lasts) {
    VokFenEnumInteger set = before;
    VokFenEnumInteger other = RangeSet(1, 99);
    Shortage shortage(n, lasts);
    operate(set, other);
    const bool hasFailed = shortage.End();
    mostFailures += hasFailed ? 1 : 0;
    right = right.empty() ? Show(set) : right;
    EXPECT_EQ(Show(set), hasFailed && set.GetCount() == 0 ? Show(set) : right) << name << ", allocation " << n;
    return hasFailed;
  });
  EXPECT_GT(mostFailures, 0U) << name << " takes no memory";
}

TEST(Shortage, LeavesTheRightSetOrNil) {
  std::vector<VokLong> list{100};
  std::string braces = "{0";
  for (VokLong v = 0; v < 100; ++v) {
    list.push_back(v);
    braces.append(",").append(std::to_string(v));
  }
  std::stringstream bytes;
  const VokFenEnumInteger written = RangeSet(-5, 105);
  Vokopstream(bytes).WriteObject(&written);
  std::istringstream range("[0, 99]"), members(braces + "}");
  // More members than an operation collects without asking for memory.
  const VokFenEnumInteger large = RangeSet(0, 3000);
  const VokFenEnumInteger last = RangeSet(kMax - 2999, 3000);
  const std::function<void(VokFenEnumInteger&, VokFenEnumInteger&)> operations[] = {
      [](auto& set, auto&) {
        for (VokLong v = 1; v < 100 && set.IsNil() == 0; ++v) {
          EXPECT_EQ(set.Insert(v), 1);
        }
      },
      [](auto& set, auto&) { set.SetUpperBound(99); },
      [](auto& set, auto& other) { set.Unite(other); },
      [](auto& set, auto& other) { set.Assign(other); },
      [](auto& set, auto& other) { other.Bisect(set, VokTarnAny::UpperHalf); },
      [](auto& set, auto&) { set = VokFenEnumInteger(), set.Intersect(VokFenIntervalInteger(0, 99)); },
      [&](auto& set, auto&) { set = VokFenEnumInteger(static_cast<const void*>(list.data())); },
      [&](auto& set, auto&) { range.clear(), range.seekg(0), set.InputValue(range); },
      [&](auto& set, auto&) { members.clear(), members.seekg(0), set.InputValue(members); },
      [&](auto& set, auto&) { bytes.clear(), bytes.seekg(0), ReadRecord(bytes, set); },
  };
  for (const auto& operate : operations) {
    ExpectRightOrNil("operation " + std::to_string(&operate - operations), SetOf({0}), operate);
  }
  ExpectRightOrNil("a large union", large, [](auto& set, auto& other) { set.Unite(other); });
  ExpectRightOrNil("a large intersection", large, [](auto& set, auto& other) { set.Intersect(other); });
  ExpectRightOrNil("large successors", Any(), [&](auto& set, auto&) { set.CalcNextValue(last); });
  ExpectRightOrNil("accepted members", Any(), [](auto& set, auto& other) {
    set.Intersect(
        other, [](const SubIntBase&, void*) { return 1; }, nullptr);
  });
}

TEST(Shortage, ACopiedVectorSaysThatItIsNone) {
  VokSVectorImp_SubIntBase vector(9, 1U, 0);
  vector.Add(Element(7));
  Shortage shortage(1, true);
  const VokSVectorImp_SubIntBase copy(vector);
  shortage.End();
  EXPECT_EQ(copy.IsValid() + static_cast<int>(copy.Size()), 0);
  EXPECT_EQ(VokSVectorImp_SubIntBase(vector).IsValid(), 1);
}

}  // namespace
