// Random problems as FlatZinc texts, small enough to be solved by plain enumeration.
#pragma once

#include <algorithm>
#include <random>
#include <span>
#include <string>
#include <vector>

// A kind of constraint, a letter per argument. All arrays of a constraint that are not said otherwise have one length.
//   i b    an integer, a truth value: a variable or a constant     n f    constants: any integer, 0 or 1
//   I B    arrays of them                                          A      constants that stand before an array
//   D      not negative: variables or constants                    W      constants that are not negative
//   J      a further array of integers, of its own length          C      different constants, K as many integers
//   L U    lower and upper bounds for them                         S      a set
//   T      rows for the array before it                            R      an automaton
struct RandomRow {
  const char* fName;
  const char* fArguments;
};

class RandomProblem {
 public:
  RandomProblem(unsigned seed, std::span<const RandomRow> rows, bool hasWideNumbers)
      : fRandom(seed), fHasWideNumbers(hasWideNumbers) {
    for (int i = Pick(1, 3); i > 0; --i) {
      DeclareInteger();
    }
    for (int i = Pick(0, 2); i > 0; --i) {
      fTruths.push_back("b" + std::to_string(i));
      fText += "var bool: " + fTruths.back() + ":: output_var;\n";
    }
    for (int i = Pick(1, 4); i > 0; --i) {
      const RandomRow& row = rows[static_cast<std::size_t>(Pick(0, static_cast<int>(rows.size()) - 1))];
      fLength = Pick(0, 6) == 0 ? 0 : Pick(1, 4);
      std::string text;
      for (const char* letter = row.fArguments; *letter != '\0'; ++letter) {
        text += (text.empty() ? "" : ",") + Argument(*letter);
      }
      fText += std::string("constraint ") + row.fName + "(" + text + ");\n";
    }
    fText += "solve satisfy;\n";
  }

  const std::string& GetText() const { return fText; }

 private:
  int Pick(int lower, int upper) { return std::uniform_int_distribution(lower, upper)(fRandom); }
  const std::string& PickOf(const std::vector<std::string>& names) {
    return names[static_cast<std::size_t>(Pick(0, static_cast<int>(names.size()) - 1))];
  }

  void DeclareInteger() {
    const std::string name = "x" + std::to_string(fIntegers.size());
    const bool isWide = fHasWideNumbers && Pick(0, 19) == 0;
    const long long offset = isWide ? (Pick(0, 1) == 0 ? -2147483640LL : 2147483630LL) : Pick(-3, 2);
    const int size = Pick(1, 6);
    std::string domain = std::to_string(offset) + ".." + std::to_string(offset + size - 1);
    if (Pick(0, 2) == 0) {
      domain = "{" + std::to_string(offset) + "," + std::to_string(offset + 2) + "," + std::to_string(offset + 5) + "}";
    }
    fText += "var " + domain + ": " + name + ":: output_var;\n";
    fIntegers.push_back(name);
    if (offset >= 0) {
      fNatural.push_back(name);
    }
  }

  std::string Constant(int lower, int upper) {
    if (fHasWideNumbers && lower < 0 && Pick(0, 39) == 0) {
      const char* const wide[] = {"2147483647", "-2147483648", "3000000000", "-4611686018427387904", "1000000007"};
      return wide[Pick(0, 4)];
    }
    return std::to_string(Pick(lower, upper));
  }
  std::string Integer() { return Pick(0, 4) == 0 ? Constant(-3, 5) : PickOf(fIntegers); }
  std::string Truth() {
    return fTruths.empty() || Pick(0, 4) == 0 ? (Pick(0, 1) == 0 ? "false" : "true") : PickOf(fTruths);
  }
  std::string Natural() { return fNatural.empty() || Pick(0, 1) == 0 ? Constant(0, 3) : PickOf(fNatural); }

  template <class Make>
  std::string Array(int length, Make make) {
    std::string text;
    for (int i = 0; i < length; ++i) {
      text += (i == 0 ? "" : ",") + make();
    }
    return "[" + text + "]";
  }
  std::string Set(int lower) {
    if (Pick(0, 1) == 0) {
      return std::to_string(lower) + ".." + std::to_string(lower + Pick(-1, 3));
    }
    return "{" + std::to_string(lower) + "," + std::to_string(lower + 2) + "}";
  }
  // From `first` in a random order.
  std::string Cover() {
    std::vector<int> numbers{-1, 0, 1, 2, 3};
    std::shuffle(numbers.begin(), numbers.end(), fRandom);
    fCover = Pick(1, 3);
    return Array(fCover, [&, i = 0U]() mutable { return std::to_string(numbers[i++]); });
  }

  std::string Argument(char letter) {
    switch (letter) {
      case 'i':
        return Integer();
      case 'b':
        return Truth();
      case 'n':
        return Constant(-4, 8);
      case 'f':
        return std::to_string(Pick(0, 1));
      case 'I':
        return Array(fLength, [this] { return Integer(); });
      case 'J':
        return Array(Pick(0, 3), [this] { return Integer(); });
      case 'B':
        return Array(fLength, [this] { return Truth(); });
      case 'A':
        return Array(fLength, [this] { return Constant(-3, 3); });
      case 'D':
        return Array(fLength, [this] { return Natural(); });
      case 'W':
        return Array(fLength, [this] { return Constant(0, 3); });
      case 'C':
        return Cover();
      case 'K':
        return Array(fCover, [this] { return Integer(); });
      case 'L':
        return Array(fCover, [this] { return Constant(0, 1); });
      case 'U':
        return Array(fCover, [this] { return Constant(0, 3); });
      case 'S':
        return Set(Pick(-2, 2));
      case 'T':
        return Array(fLength * Pick(0, 6), [this] { return Constant(-2, 3); });
      default:
        return "2,3," + Array(6, [this] { return Constant(0, 2); }) + "," + Constant(1, 2) + "," + Set(Pick(0, 2));
    }
  }

  std::mt19937 fRandom;
  bool fHasWideNumbers;
  int fLength = 0;
  int fCover = 0;
  std::vector<std::string> fIntegers;
  std::vector<std::string> fNatural;
  std::vector<std::string> fTruths;
  std::string fText;
};
