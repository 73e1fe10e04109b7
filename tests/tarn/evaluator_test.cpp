#include "tarn/Evaluator.h"

#include <gtest/gtest.h>

#include "tarn/parsing.h"

namespace {

// Whether `answer` of an evaluator of each statement of the text, alone, is as expected.
template <class Answer>
void CheckEach(const std::string& text, bool expected, Answer answer) {
  const tarn::Vocabulary vocabulary = MakeVocabulary();
  const tarn::Source source("test", text);
  tarn::Model names;
  for (const char* name : {"x", "y", "z", "p", "q", "u"}) {
    names.AddVariable(name, "int");
  }
  tarn::Parser parser(source, vocabulary, names);
  std::size_t start = 0;
  while (std::optional<tarn::Statement> statement = parser.Next()) {
    start = statement->fOffset;
    tarn::Model model;
    model.AddStatement(*std::move(statement));
    EXPECT_EQ(answer(tarn::Evaluator(model)), expected) << text.substr(start, text.find(';', start) - start);
  }
  EXPECT_NE(start, 0U);
}

// Each statement is to hold (or not) for x = 7, y = -3, z = 0, p = 1, q = 0 and an unknown u.
void CheckEach(const std::string& text, bool expected) {
  CheckEach(text, expected, [](const tarn::Evaluator& evaluator) {
    return !evaluator.FindContradiction(std::vector<std::optional<std::int64_t>>{7, -3, 0, 1, 0, std::nullopt});
  });
}

TEST(Evaluator, AcceptsWhatHolds) {
  CheckEach(R"(
      x + y = 4; x - y = 10; x * y = -21; 21 / y = -x; x mod 3 = 1; -7 mod 3 = -1; 7 mod y = 1;
      x ^ 2 = 49; y ^ 3 = -27; 0 ^ 0 = 1; 0 ^ 5 = 0; 1 ^ -9 = 1; (-1) ^ -3 = -1; 2147483644 = 2147483643 + 1;
      x /\ y = y; x \/ y = x; 2147483645 > x /\ 2147483645; abs y = 3; sign y = -1; sign z = 0; sign x = 1;
      next x = 8; prev y = -4; -y = 3; (enum int) x = 7; x = 7 + 0 * y;
      y < z <= z < x; x > z >= z <> x; x <> y; x == 7; !(x == y); y << z; z <== z; x >> y; x >== x;
      p; !q; p && !q; q || p; q -> p; q -> q; !(p -> q); q <-> !p; p == true; q == false;
      sum [x, y, 1] = 5; sum [] = 0; count ([x, 7, y], 4 - y) = 2; [z, x][2] = 7; [z][1] = z;
      table ([x, y], [1, 2], [7, -3]);
      all different (x, y, z, p); minimize x;)",
            true);
}

TEST(Evaluator, RejectsWhatDoesNotHold) {
  CheckEach(R"(
      x + y = 5; y < z < z; x = y; x << y; z >> z; all different (x, z, 7); all different (q, z);
      sum [x, y] = 5; count ([x], 7) = 0; [z, x][1] = 7; table ([x, y], [7, 3], [-3, 7]); table ([x]);
      q; !p; p -> q; p && q; q || q; p <-> q;)",
            false);
}

TEST(Evaluator, RejectsWhateverHoldsAnOperationWithoutValue) {
  CheckEach(R"(
      x / 2 = 3; x / 2 <> 3; x / z = x; 0 / z = 0; x mod z = x; 2 ^ -1 = 0; 0 ^ -1 = 0;
      p || (x / 2 == 3); q -> (x mod z == 1); !(2 ^ y == 1); maximize 1 / x; all different (x, y / 2);
      2147483644 + 1 > 0; abs -2147483645 > 0; 0 * 2147483645 = 0; 7 ^ 12 > 0; -2147483645 - x < 0;
      100000 * 100000 > 0; [x, y][0] > -9; [x, y][3] > -9; [x / 2, y][2] = y;
      sum [2147483600, 45, -45] > 0; count ([2147483645], sum [2147483645]) >= 0;)",
            false);
}

TEST(Evaluator, PassesOverWhatItDoesNotKnow) {
  CheckEach(" x gcd y = 100; u = 3; parity x = 5; Max = 3; x / 2 = u;", true);
}

TEST(Evaluator, OperatorsOverListsThatItDoesNotKnowAreTold) {
  const auto isChecked = [](const tarn::Evaluator& evaluator) { return !evaluator.FindUnchecked(); };
  CheckEach(" sorted (x, y); all (x, y);", false, isChecked);
  CheckEach(" all different (x, y); x = count ([y], 3); x = 1 + sum [y, 3]; [x, y][1] = y; x gcd y = 3;", true,
            isChecked);
}

}  // namespace
