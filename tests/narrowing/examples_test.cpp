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

const Row kRows[] = {
    {"x <= y", {"1 5 9", "2 5", ""}, "1 5", 1},
    {"x <= y", {"' 10", "1 2", ""}, "Nil", 1},
    {"x < y", {"1 3 7", "2 5", ""}, "1", 1},
    {"x < y", {"' 3", "3", ""}, "Nil", 1},
    {"inv x < y", {"4", "2 5 6", ""}, "6", 1},
    {"sign", {"2 4", "i -5 5", ""}, "i 1 1", 1},
    {"inv sign", {"-2 0 3", "i 0 1", ""}, "0 3", 1},
    {"inv sign", {"-3 1", "-1", ""}, "Nil", 1},
    {"x = y", {"1 5 9", "i 2 9", ""}, "5 9", 1},
    {"x = y", {"' 1", "i 2 9", ""}, "Any", 1},
    {"inv x = y", {"3 7", "i 0 5", ""}, "i 3 3", 1},
    {"min", {"0 2 4 6 8", "1 2 6", "4 9"}, "2 4 6", 1},
    {"inv min", {"3", "3 4", "5"}, "3 4", 0},
    {"sum", {"11 12 13 21", "1 2", "10 20"}, "11 12 21", 1},
    {"inv prod", {"7", "1 2 3 4", "2"}, "3", 1},
    {"inv prod", {"6", "1 2 3", "0 3"}, "2", 1},
    {"inv mod", {"1", "1 2 4 5 7", "3"}, "1 4 7", 1},
    {"inv2 mod", {"2", "Any", "0 5"}, "Nil", 1},
    {"power", {"4 8 9", "2 3", "2"}, "4 9", 1},
    {"power", {"1 MAX", "1000", "0 9"}, "1", 1},
    {"inv power", {"9", "-3 -1 3 5", "2"}, "-3 3", 1},
    {"inv power", {"1", "2 3 5", "0"}, "2 5", 1},
    {"inv power", {"8", "s Any", "3"}, "s 2", 1},
    {"inv2 power", {"8 9", "2 3", "1 2 3 4"}, "2 3", 1},
    {"inv2 power", {"7", "2", "1 3"}, "1 3", 0},
    // The ends of the integer range and of the 32-bit numbers.
    {"x < y", {"3 MAX", "Any", ""}, "3 MAX", 0},
    {"inv x < y", {"Any", "' MIN", ""}, "Nil", 1},
    {"x > y", {"MIN 3", "Any", ""}, "3", 1},
    {"next", {"Any", "0 2147483644 MAX", ""}, "1 MAX", 1},
    {"inv next", {"Any", "3 MAX", ""}, "3", 1},
    {"inv next", {"Any", "' MAX", ""}, "Nil", 1},
    {"inv next", {"MIN 6", "MIN 5", ""}, "5", 1},
    {"inv next", {"MIN", "s Any", ""}, "s Nil", 1},
    {"neg", {"LOWEST 3", "LOWEST", ""}, "LOWEST", 1},
    {"sum", {"7 MAX", "MAX", "s 5"}, "MAX", 1},
    {"mod", {"0 1", "LOWEST", "-1"}, "0", 1},
    // 1023 and 1024 distinct candidates narrow an operand that is Any; with 1025 it stays, and so it does with 1024
    // when the last pair gives a value that is there already. Every root of a power is inserted twice, as the lower
    // and as the upper end, and a union of 1024 members is Any: there 1023 are the most.
    {"sum", {"Any", "0..1021", "0 1"}, "0..1022", 1},
    {"sum", {"Any", "0..1022", "0 1"}, "0..1023", 1},
    {"sum", {"Any", "0..1023", "0 1"}, "Any", 0},
    {"inv sum", {"0..511", "Any", "0 511"}, "-511..511", 1},
    {"inv sum", {"0..511", "Any", "0 512"}, "-512..511", 1},
    {"inv sum", {"0..512", "Any", "0 511"}, "Any", 0},
    {"prod", {"Any", "1..512", "-1 1"}, "-512..-1 1..512", 1},
    {"prod", {"Any", "0..512", "-1 1"}, "Any", 0},
    {"inv prod", {"1..1024", "Any", "1"}, "1..1024", 1},
    {"inv prod", {"2..1025", "Any", "1 2"}, "Any", 0},
    {"mod", {"Any", "0..1023", "5000"}, "0..1023", 1},
    {"mod", {"Any", "0..1024", "5000"}, "Any", 0},
    {"inv mod", {"0", "0..1023", "1 -1"}, "0..1023", 0},
    {"power", {"Any", "0..1023", "1"}, "0..1023", 1},
    {"power", {"Any", "0..1024", "1"}, "Any", 0},
    {"inv power", {"0..1022", "Any", "1"}, "0..1022", 1},
    {"inv power", {"0..1023", "Any", "1"}, "Any", 0},
    {"min", {"Any", "0..1022", "1022"}, "0..1022", 1},
    {"min", {"5 2000", "0..1022", "1023"}, "5 2000", 0},
};

INSTANTIATE_TEST_SUITE_P(Rows, NarrowingExamples, testing::ValuesIn(kRows));

}  // namespace
}  // namespace narrowing
