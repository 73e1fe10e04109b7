#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tarn/parsing.h"

namespace {

struct Case {
  const char* fText;
  const char* fExpected;
};

void CheckAll(std::initializer_list<Case> cases) {
  for (const Case& c : cases) {
    EXPECT_EQ(Reader().Render(c.fText), c.fExpected) << c.fText;
  }
}

TEST(Expressions, BindFromPowerDownToImplication) {
  CheckAll({Case{"x = 1 + 2 * 3 ^ 2 ^ y;", "x = (1 + (2 * (3 ^ (2 ^ y))));"},
            Case{"x = 1 - 2 - 3 + 4;", "x = (((1 - 2) - 3) + 4);"},
            Case{"x = 12 / 2 mod 5 * 3;", "x = (((12 / 2) mod 5) * 3);"},
            Case{"x = x + y /\\ y \\/ z - 1;", "x = (((x + y) /\\ y) \\/ (z - 1));"},
            Case{"p -> q && x << y + 1 || p -> q;", "(p -> (((q && (x << (y + 1))) || p) -> q));"},
            Case{"p <-> q -> p;", "(p <-> (q -> p));"}, Case{"p == (x << y);", "(p == (x << y));"},
            Case{"1 <= x < y + 1 <> z;", "1 <= x < (y + 1) <> z;"}});
}

TEST(Expressions, PrefixesStandBetweenPowerAndProduct) {
  CheckAll({Case{"x = -x ^ 2;", "x = (- (x ^ 2));"}, Case{"x = -2 ^ 2;", "x = (- (2 ^ 2));"},
            Case{"x = 2 ^ -1;", "x = (2 ^ -1);"}, Case{"x = 2 ^ -x ^ 2;", "x = (2 ^ (- (x ^ 2)));"},
            Case{"x = -x * y;", "x = ((- x) * y);"}, Case{"x = abs next -x + 1;", "x = ((abs (next (- x))) + 1);"},
            Case{"!p && q;", "((! p) && q);"}, Case{"x = - - 3;", "x = (- -3);"},
            Case{"x = y - -2147483645;", "x = (y - -2147483645);"}, Case{"x = y-3;", "x = (y - 3);"}});
}

TEST(Expressions, CastsAreTypesInParentheses) {
  CheckAll({Case{"x = (enum   int) y + 1;", "x = (<enum int>y + 1);"},
            Case{"x = (int) -y ^ 2;", "x = <int>(- (y ^ 2));"}, Case{"x = (y) + 1;", "x = (y + 1);"}});
}

TEST(Expressions, PublishedOperatorsBindByTheirKind) {
  CheckAll({Case{"x = 1 + y gcd 2 * z;", "x = (1 + ((y gcd 2) * z));"},
            Case{"x = y <=> 2 * z;", "x = (y <=> (2 * z));"}, Case{"x = y**2;", "x = (y ** 2);"},
            Case{"x = parity ~y + 1;", "x = ((parity (~ y)) + 1);"}});
}

TEST(Statements, AreReadInEveryForm) {
  CheckAll({Case{"a, b : enum int [1, 9] ; x = y;", "a b : <enum int> [1, 9] ; x = y;"},
            Case{"a : bool;", "a : <bool>;"}, Case{"a:int 3;", "a : <int> 3;"},
            Case{"all different (x, y + 1);", "all different x, (y + 1);"}, Case{"all (x);", "all x;"},
            Case{"all_x = 3;", "all_x = 3;"}, Case{"minimize x * y;", "minimize (x * y);"},
            Case{"maximize x;", "maximize x;"}, Case{"use Extra_1;;", "use Extra_1;"}, Case{"true;", "true;"},
            Case{"// only a comment", ""}, Case{"a : int {1, // ;\n2};", "a : <int> {1,     \n2};"},
            Case{"\xEF\xBB\xBFx = y; // and a mark", "x = y;"}});
}

TEST(Lists, StandWhereAnOperatorTakesThemAndByName) {
  CheckAll({Case{"x = sum [y, z + 1] - 2;", "x = (sum[y, (z + 1)] - 2);"},
            Case{"x = sum ([y]) + count ([y, z], 2 * x);", "x = (sum[y] + count((2 * x))[y, z]);"},
            Case{"[x, y][z] = -3;", "element(z)[x, y] = -3;"},
            Case{"list xs = [x, 2 * y]; xs[sum xs] < sum([xs, z]);",
                 "list xs = [x, (2 * y)]; element(sum[x, (2 * y)])[x, (2 * y)] < sum[x, (2 * y), z];"},
            Case{"list a = [x]; list b = [a, a[1], a[1] - 1]; all different b;",
                 "list a = [x]; list b = [x, element(1)[x], (element(1)[x] - 1)]; "
                 "all different x, element(1)[x], (element(1)[x] - 1);"},
            Case{"all different ([x, y], [y, z][1] + 1, z);", "all different x, y, (element(1)[y, z] + 1), z;"},
            Case{"x = sum [];", "x = sum[];"}, Case{"list : int; list = 3;", "list : <int>; list = 3;"},
            Case{"table ([x, y], [1, -2], [3, 4]);", "table [x, y]{ 1, -2, 3, 4 };"},
            Case{"table ([x]);", "table [x]{};"}});
}

TEST(Lists, AreRefusedElsewhere) {
  CheckAll({Case{"x = [y];", "1:5: a list is no value; one of its members is: list[1] is the first"},
            Case{"list xs = [x]; y = xs + 1;", "1:20: a list is no value; one of its members is: list[1] is the first"},
            Case{"list x = [y];", "1:6: 'x' is declared already"},
            Case{"list a = [x]; a : int;", "1:15: 'a' is declared already"},
            Case{"list a = x;", "1:10: expected a list, found 'x'"},
            Case{"x = sum (y, z);", "1:10: expected a list, found 'y'"},
            Case{"x = sum [y;", "1:9: this '[' is never closed"},
            Case{"x = sum [y);", "1:11: expected an operator or ']', found ')'"},
            Case{"table ([x, y], [1, 2], [3]);", "1:24: this row has 1 numbers, and the list 2 members"},
            Case{"table ([x], [y]);", "1:14: expected a number, found 'y'"},
            Case{"table ([x], [2147483646]);", "1:14: a number must lie between -2147483645 and 2147483645"},
            Case{"table ([], [1]);", "1:8: the list of a table must have a member"}});
}

TEST(Mistakes, AreReportedAtTheirPlace) {
  CheckAll({Case{"x = y\nz = 3;", "1:6: missing ';' at the end of the statement"},
            Case{"x = y", "1:6: missing ';' at the end of the statement"},
            Case{"a : int [1, 2]\n\n", "1:15: missing ';' at the end of the statement"},
            Case{"x = ;", "1:5: expected an expression, found ';'"},
            Case{"x + mod;", "1:5: expected an expression, found 'mod'"},
            Case{"x y;", "1:3: expected an operator or ';', found 'y'"},
            Case{"x = (y + 1;", "1:5: this '(' is never closed"},
            Case{"x = y);", "1:6: expected an operator or ';', found ')'"},
            Case{"all different (x, y;", "1:15: this '(' is never closed"},
            Case{"all different x;", "1:15: expected '(' or a list, found 'x'"},
            Case{"foo (x);", "1:1: unknown operator 'foo'"},
            Case{"x = 3y;", "1:5: '3y' is neither a number nor a name"},
            Case{"x = y @ z;", "1:7: unexpected character '@'"},
            Case{"x = \xC3\xA4;", "1:5: unexpected byte 0xC3"},
            Case{"p == q == p;", "1:8: '==' and '==' cannot follow each other without parentheses"},
            Case{"a : enum integer;", "1:5: unknown type 'enum integer'"},
            Case{"a : [1, 2];", "1:5: expected a type"},
            Case{"a, 3 : int;", "1:4: expected the name of a variable, found '3'"},
            Case{"a, b int;", "1:6: expected ',' or ':', found 'int'"},
            Case{"x : int;", "1:1: 'x' is declared already"},
            Case{"a, b, a : int;", "1:7: 'a' is declared already"},
            Case{"abs : int;", "1:1: 'abs' has a meaning of its own and cannot be the name of a variable"},
            Case{"bool : int;", "1:1: 'bool' has a meaning of its own and cannot be the name of a variable"},
            Case{"use 3;", "1:5: expected the name of a module, found '3'"}});
  EXPECT_THAT(Reader().Render("p || (x = 3);"), testing::StartsWith("1:9: the relation '='"));
}

std::string Repeat(const std::string& text, int times) {
  std::string result;
  for (int i = 0; i < times; ++i) {
    result += text;
  }
  return result;
}

TEST(Limits, NestingIsBounded) {
  const int most = tarn::Parser::sMaxDepth;
  const auto read = [](int depth) {
    return Reader().Render("x = " + Repeat("(", depth) + "y" + Repeat(")", depth) + ";");
  };
  EXPECT_EQ(read(most), "x = y;");
  EXPECT_THAT(read(most + 1), testing::HasSubstr("nested too deeply"));
}

TEST(Limits, LongSumsAreNoNesting) {
  const tarn::Source source("test", "x = 1" + Repeat(" + y", 100000) + ";");
  const tarn::Vocabulary vocabulary = MakeVocabulary();
  tarn::Model model;
  model.AddVariable("x", "int");
  model.AddVariable("y", "int");
  const std::optional<tarn::Statement> statement = tarn::Parser(source, vocabulary, model).Next();
  EXPECT_EQ(std::get<tarn::Formula>(statement->fBody).fNodes.size(), 200002U);
}

TEST(Diagnostics, ShowTheLineAndACaret) {
  const auto format = [](const std::string& text, std::size_t offset) {
    return tarn::FormatDiagnostic(tarn::Source("f", text), tarn::ModelError(offset, "wrong", {"note"}));
  };
  EXPECT_EQ(format("a\n\tb c\r\nd", 5), "f:2:4: error: wrong\n\tb c\n\t  ^\n  note");
  EXPECT_EQ(format("\xC3\xA4 b", 3), "f:1:3: error: wrong\n\xC3\xA4 b\n  ^\n  note");
  EXPECT_EQ(format("\x1B[2J\xFF\xC2\x9B b", 8), "f:1:8: error: wrong\n?[2J??? b\n        ^\n  note");
  EXPECT_EQ(format("", 0), "f:1:1: error: wrong\n\n^\n  note");
}

TEST(Diagnostics, CutLongLinesAroundThePlace) {
  const std::string text = std::string(5000, 'a') + "@" + std::string(5000, 'b');
  const std::string message = tarn::FormatDiagnostic(tarn::Source("f", text), tarn::ModelError(5000, "wrong"));
  EXPECT_EQ(message, "f:1:5001: error: wrong\n..." + std::string(60, 'a') + "@" + std::string(59, 'b') + "...\n" +
                         std::string(63, ' ') + "^");
}

}  // namespace
