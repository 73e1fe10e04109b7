// Worked examples, the limit on members and the ends of the integer range: *this* and the other operands, and what is
// left of the narrowed one.
#include <gtest/gtest.h>

#include "narrowing/oracle.h"

namespace narrowing {
namespace {

// Each row is "operation: left = *this* | operand | operand".
void CheckRows(const char* rows) {
  std::istringstream text(rows);
  for (std::string row; std::getline(text >> std::ws, row, ';');) {
    std::string name, left, operands[3];
    std::istringstream parts(row);
    std::getline(std::getline(parts, name, ':'), left, '=');
    for (std::string& operand : operands) {
      std::getline(parts, operand, '|');
    }
    const Operation& op = support::FindOperation(name);
    const Case c = {support::Parse(operands[0]), support::Parse(operands[1]), support::Parse(operands[2])};
    const Outcome outcome = RunCase(op, c);
    EXPECT_EQ(outcome.after[op.narrowed], support::Parse(left)) << Show(op, c);
    EXPECT_EQ(outcome.status, outcome.after[op.narrowed] == c[op.narrowed] ? 0 : 1) << Show(op, c);
  }
}

TEST(NarrowingExamples, LeaveWhatTheRowSays) {
  CheckRows(R"(
  x <= y: 1 5 = 1 5 9 | 2 5; x <= y: Nil = ' 10 | 1 2; x < y: 1 = 1 3 7 | 2 5; x < y: Nil = ' 3 | 3;
  inv x < y: 6 = 4 | 2 5 6; inv sign: i 1 1 = 2 4 | i -5 5; sign: 0 3 = -2 0 3 | i 0 1; sign: Nil = -3 1 | -1;
  x = y: 5 9 = 1 5 9 | i 2 9; x = y: Any = ' 1 | i 2 9; inv x = y: i 3 3 = 3 7 | i 0 5;
  min: 2 4 6 = 0 2 4 6 8 | 1 2 6 | 4 9; inv min: 3 4 = 3 | 3 4 | 5; sum: 11 12 21 = 11 12 13 21 | 1 2 | 10 20;
  inv prod: 3 = 7 | 1 2 3 4 | 2; inv prod: 2 = 6 | 1 2 3 | 0 3; inv mod: 1 4 7 = 1 | 1 2 4 5 7 | 3;
  inv2 mod: Nil = 2 | Any | 0 5; power: 4 9 = 4 8 9 | 2 3 | 2; power: 1 = 1 MAX | 1000 | 0 9;
  inv power: -3 3 = 9 | -3 -1 3 5 | 2; inv power: 2 5 = 1 | 2 3 5 | 0; inv power: s 2 = 8 | s Any | 3;
  inv2 power: 2 3 = 8 9 | 2 3 | 1 2 3 4; inv2 power: 1 3 = 7 | 2 | 1 3;)");
}

TEST(NarrowingExamples, AtTheEndsOfTheIntegersAndOfThe32BitNumbers) {
  CheckRows(R"(
  x < y: 3 MAX = 3 MAX | Any; inv x < y: Nil = Any | ' MIN; x > y: 3 = MIN 3 | Any;
  next: 1 MAX = Any | 0 2147483644 MAX; inv next: 3 = Any | 3 MAX; inv next: Nil = Any | ' MAX;
  inv next: 5 = MIN 6 | MIN 5; inv next: s Nil = MIN | s Any; neg: LOWEST = LOWEST 3 | LOWEST;
  sum: MAX = 7 MAX | MAX | s 5; mod: 0 = 0 1 | LOWEST | -1;)");
}

// 1023 and 1024 distinct candidates narrow an operand that is Any; with 1025 it stays, and so it does with 1024 when
// the last pair gives a value that is there already. Every root of a power is inserted twice, as the lower and as the
// upper end, and a union of 1024 members is Any: there 1023 are the most.
TEST(NarrowingExamples, AtTheLimitOnMembers) {
  CheckRows(R"(
  sum: 0..1022 = Any | 0..1021 | 0 1; sum: 0..1023 = Any | 0..1022 | 0 1; sum: Any = Any | 0..1023 | 0 1;
  inv sum: -511..511 = 0..511 | Any | 0 511; inv sum: -512..511 = 0..511 | Any | 0 512;
  inv sum: Any = 0..512 | Any | 0 511; prod: -512..-1 1..512 = Any | 1..512 | -1 1;
  prod: Any = Any | 0..512 | -1 1; inv prod: 1..1024 = 1..1024 | Any | 1; inv prod: Any = 2..1025 | Any | 1 2;
  mod: 0..1023 = Any | 0..1023 | 5000; mod: Any = Any | 0..1024 | 5000; inv mod: 0..1023 = 0 | 0..1023 | 1 -1;
  power: 0..1023 = Any | 0..1023 | 1; power: Any = Any | 0..1024 | 1; inv power: 0..1022 = 0..1022 | Any | 1;
  inv power: Any = 0..1023 | Any | 1; min: 0..1022 = Any | 0..1022 | 1022; min: 5 2000 = 5 2000 | 0..1022 | 1023;)");
}

}  // namespace
}  // namespace narrowing
