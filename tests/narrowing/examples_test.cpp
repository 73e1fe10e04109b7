// Worked examples, the limit on members and the ends of the integer range, as rows of one table.
#include <gtest/gtest.h>

#include "narrowing/oracle.h"

namespace narrowing {
namespace {

struct Row {
  const char* operation;
  const char* operands[3];  // *this*, then the others
  const char* left;         // of the narrowed operand
  int status;
};

std::ostream& operator<<(std::ostream& os, const Row& row) {
  return os << row.operation << " on " << row.operands[0] << " | " << row.operands[1] << " | " << row.operands[2];
}

class NarrowingExamples : public testing::TestWithParam<Row> {};

TEST_P(NarrowingExamples, LeaveWhatTheRowSays) {
  const Row& row = GetParam();
  const Operation& op = FindOperation(row.operation);
  const auto* texts = row.operands;
  const Case c = {support::Parse(texts[0]), support::Parse(texts[1]), support::Parse(texts[2])};
  const Outcome outcome = RunCase(op, c);
  EXPECT_EQ(outcome.after[op.narrowed], support::Parse(row.left)) << Show(op, c);
  EXPECT_EQ(outcome.status, row.status) << Show(op, c);
}

// clang-format off
const Row kRelations[] = {
    {"x <= y", {"1 5 9", "2 5", ""}, "1 5", 1},
    {"x <= y", {"1 5", "2 5", ""}, "1 5", 0},
    {"x <= y", {"10", "1 2", ""}, "Nil", 1},
    {"x <= y", {"' 10", "1 2", ""}, "Nil", 1},
    {"x < y", {"1 5 9", "2 5", ""}, "1", 1},
    {"x < y", {"1 3 7", "2 5", ""}, "1", 1},
    {"x < y", {"' 3", "3", ""}, "Nil", 1},
    {"x < y", {"3 MAX", "Any", ""}, "3 MAX", 0},
    {"inverse x <= y", {"4", "2 4 6", ""}, "4 6", 1},
    {"inverse x < y", {"4", "2 4 6", ""}, "6", 1},
    {"inverse x < y", {"4", "2 5 6", ""}, "6", 1},
    {"inverse x < y", {"Any", "MIN 3", ""}, "3", 1},
    {"inverse x < y", {"Any", "' MIN", ""}, "Nil", 1},
    {"inverse x < y", {"Any", "0 3", ""}, "0 3", 0},
    {"inverse x < y", {"Any", "Any", ""}, "Any", 0},
    {"x > y", {"MIN 3", "Any", ""}, "3", 1},
    {"y = next x", {"2 3 5 9", "1 4", ""}, "2 5", 1},
    {"y = next x", {"1 2", "7", ""}, "Nil", 1},
    {"y = next x", {"5 MAX", "3 MAX", ""}, "MAX", 1},
    {"y = next x", {"Any", "0 2147483644 MAX", ""}, "1 MAX", 1},
    {"inverse y = next x", {"2 5", "1 4", ""}, "1 4", 0},
    {"inverse y = next x", {"Any", "3 MAX", ""}, "3", 1},
    {"inverse y = next x", {"Any", "' MAX", ""}, "Nil", 1},
    {"inverse y = next x", {"MIN", "3", ""}, "Nil", 1},
    {"inverse y = next x", {"MIN", "s Any", ""}, "s Nil", 1},
    {"inverse y = next x", {"5 6", "s 4", ""}, "s 4", 0},
    {"inverse y = next x", {"6", "s 4", ""}, "s Nil", 1},
    {"inverse y = next x", {"6", "s Any", ""}, "s 5", 1},
    {"inverse y = next x", {"6 7", "s Any", ""}, "s Any", 0},
    {"z = abs a", {"1 2 3 4", "-3 -1 2", ""}, "1 2 3", 1},
    {"z = abs a", {"-2 0 5", "Any", ""}, "0 5", 1},
    {"inverse z = abs a", {"-1 2", "-2 -1 1 2 3", ""}, "-2 2", 1},
    {"inverse z = abs a", {"-4 -1", "7", ""}, "Nil", 1},
    {"inverse z = abs a", {"0", "s Any", ""}, "s 0", 1},
    {"inverse z = abs a", {"3", "s Any", ""}, "s Any", 0},
    {"inverse z = -a", {"5", "s Any", ""}, "s -5", 1},
    {"z = -a", {"LOWEST 3", "LOWEST", ""}, "LOWEST", 1},
    {"s = sign a", {"-7 0 9", "-2..2", ""}, "-1..1", 1},
    {"s = sign a", {"2 4", "s Any", ""}, "s 1", 1},
    {"s = sign a", {"2 4", "i -5 5", ""}, "i 1 1", 1},
    {"inverse s = sign a", {"-2 0 3", "-1 1", ""}, "-2 3", 1},
    {"inverse s = sign a", {"-2 0 3", "5", ""}, "Nil", 1},
    {"inverse s = sign a", {"-2 0 3", "i 0 1", ""}, "0 3", 1},
    {"inverse s = sign a", {"-3 1", "-1", ""}, "Nil", 1},
    {"x = y", {"1 5 9", "i 2 9", ""}, "5 9", 1},
    {"x = y", {"' 1", "i 2 9", ""}, "Any", 1},
    {"inverse x = y", {"3 7", "i 0 5", ""}, "i 3 3", 1},
};

const Row kFunctions[] = {
    {"z = min", {"0 2 4 6 8", "1 2 6", "4 9"}, "2 4 6", 1},
    {"z = max", {"0 2 4 6 8", "1 2 6", "4 9"}, "4 6", 1},
    {"z = min", {"1 3 5 7", "Any", "3 5"}, "1 3 5", 1},
    {"z = max", {"1 3 5 7", "Any", "3 5"}, "3 5 7", 1},
    {"inverse z = min", {"3 7", "s 2", "9"}, "s Nil", 1},
    {"inverse z = min", {"3 7", "s 3", "9"}, "s 3", 0},
    {"inverse z = max", {"3 7", "s 8", "0"}, "s Nil", 1},
    {"inverse z = max", {"3 7", "s 7", "0"}, "s 7", 0},
    {"inverse z = min", {"3", "3 4", "5"}, "3 4", 0},
    {"z = a + b", {"11 12 13 21", "1 2", "10 20"}, "11 12 21", 1},
    {"z = a + b", {"3 5", "1 2", "s 2"}, "3", 1},
    {"z = a + b", {"7 MAX", "MAX", "s 5"}, "MAX", 1},
    {"inverse z = a + b", {"5", "s Any", "2"}, "s 3", 1},
    {"inverse z = a + b", {"5", "1", "Nil"}, "Nil", 1},
    {"inverse z = a + b", {"Nil", "s Nil", "1"}, "s Nil", 0},
    {"inverse z = a * b", {"0 6", "5", "0 3"}, "5", 0},
    {"inverse z = a * b", {"6", "1 2 3", "0 3"}, "2", 1},
    {"inverse z = a * b", {"7", "1 2 3 4", "2"}, "3", 1},
    {"inverse z = a * b", {"6", "1 2", "0"}, "Nil", 1},
    {"z = a mod b", {"-1 0 1", "-7 7", "2"}, "-1 1", 1},
    {"z = a mod b", {"5", "1", "0 3"}, "5", 0},
    {"z = a mod b", {"0 1", "LOWEST", "-1"}, "0", 1},
    {"inverse z = a mod b", {"1", "1 2 4 5 7", "3"}, "1 4 7", 1},
    {"inverse z = a mod b", {"1", "s 5", "3"}, "s Nil", 1},
    {"second inverse z = a mod b", {"0", "6", "0 3 4 5"}, "0 3", 1},
    {"second inverse z = a mod b", {"2", "-7", "5"}, "Nil", 1},
    {"second inverse z = a mod b", {"2", "Any", "0 5"}, "Nil", 1},
    {"second inverse z = a mod b", {"2", "s 5", "s 4"}, "s Nil", 1},
    {"z = a ^ b", {"4 8 9", "2 3", "2"}, "4 9", 1},
    {"z = a ^ b", {"0 1", "0", "0"}, "1", 1},
    {"z = a ^ b", {"1 MAX", "1000", "0 9"}, "1", 1},
    {"inverse z = a ^ b", {"9", "-3 -1 3 5", "2"}, "-3 3", 1},
    {"inverse z = a ^ b", {"1", "2 3 5", "0"}, "2 5", 1},
    {"inverse z = a ^ b", {"9", "s 2", "2"}, "s Nil", 1},
    {"inverse z = a ^ b", {"8", "s Any", "3"}, "s 2", 1},
    {"second inverse z = a ^ b", {"8 9", "2 3", "1 2 3 4"}, "2 3", 1},
    {"second inverse z = a ^ b", {"7", "2", "1 3"}, "1 3", 0},
    {"second inverse z = a ^ b", {"8", "2", "Any"}, "Any", 0},
};

// 1023 and 1024 distinct candidates narrow an operand that is Any; with 1025 it stays, and so it does with 1024
// when the last pair gives a value that is there already. Every root of a power is inserted twice, as the lower and as
// the upper end, and a union of 1024 members is Any: there 1023 are the most.
const Row kLimit[] = {
    {"z = a + b", {"Any", "0..1021", "0 1"}, "0..1022", 1},
    {"z = a + b", {"Any", "0..1022", "0 1"}, "0..1023", 1},
    {"z = a + b", {"Any", "0..1023", "0 1"}, "Any", 0},
    {"inverse z = a + b", {"0..511", "Any", "0 511"}, "-511..511", 1},
    {"inverse z = a + b", {"0..512", "Any", "0 511"}, "Any", 0},
    {"inverse z = a + b", {"0..511", "Any", "0 512"}, "-512..511", 1},
    {"inverse z = a + b", {"0..512", "s Any", "0 511"}, "s Any", 0},
    {"z = a * b", {"Any", "1..512", "-1 1"}, "-512..-1 1..512", 1},
    {"z = a * b", {"Any", "0..512", "-1 1"}, "Any", 0},
    {"inverse z = a * b", {"1..1024", "Any", "1"}, "1..1024", 1},
    {"inverse z = a * b", {"2..1025", "Any", "1 2"}, "Any", 0},
    {"inverse z = a * b", {"1..1025", "Any", "1"}, "Any", 0},
    {"z = a mod b", {"Any", "0..1023", "5000"}, "0..1023", 1},
    {"z = a mod b", {"Any", "0..1024", "5000"}, "Any", 0},
    {"inverse z = a mod b", {"0", "0..1023", "1 -1"}, "0..1023", 0},
    {"z = a ^ b", {"Any", "0..1023", "1"}, "0..1023", 1},
    {"z = a ^ b", {"Any", "0..1024", "1"}, "Any", 0},
    {"inverse z = a ^ b", {"0..1022", "Any", "1"}, "0..1022", 1},
    {"inverse z = a ^ b", {"0..1023", "Any", "1"}, "Any", 0},
    {"z = min", {"Any", "0..1022", "1022"}, "0..1022", 1},
    {"z = min", {"5 2000", "0..1022", "1023"}, "5 2000", 0},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Relations, NarrowingExamples, testing::ValuesIn(kRelations));
INSTANTIATE_TEST_SUITE_P(Functions, NarrowingExamples, testing::ValuesIn(kFunctions));
INSTANTIATE_TEST_SUITE_P(Limit, NarrowingExamples, testing::ValuesIn(kLimit));

}  // namespace
}  // namespace narrowing
