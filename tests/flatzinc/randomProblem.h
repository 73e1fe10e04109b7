// Random problems as FlatZinc texts, small enough to be solved by plain enumeration. A problem keeps its parts apart,
// so that one that fails can be made smaller.
#pragma once

#include <algorithm>
#include <functional>
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

struct RandomVariable {
  std::string fName;
  std::string fType;                      // as declared
  std::vector<std::string> fBounds;       // constraints that keep it among its candidates, where its type does not
  std::vector<std::int64_t> fCandidates;  // no solution gives it another value
};

struct RandomAnnotation {
  std::string fText;                     // empty: a seq_search
  std::vector<RandomAnnotation> fParts;  // of it

  std::string GetText() const {
    if (!fText.empty()) {
      return fText;
    }
    std::string text = "seq_search([";
    for (const RandomAnnotation& part : fParts) {
      text += &part == fParts.data() ? "" : ",";
      text += part.GetText();
    }
    return text + "])";
  }
};

struct RandomProblem {
  std::vector<RandomVariable> fVariables;
  std::vector<std::string> fConstraints;
  std::vector<RandomAnnotation> fAnnotations;
  std::string fGoal = "satisfy";  // or "minimize x0"

  std::string GetText() const {
    std::string text;
    for (const RandomVariable& variable : fVariables) {
      text += "var " + variable.fType + ": " + variable.fName + ":: output_var;\n";
    }
    for (const RandomVariable& variable : fVariables) {
      for (const std::string& bound : variable.fBounds) {
        text += "constraint " + bound + ";\n";
      }
    }
    for (const std::string& constraint : fConstraints) {
      text += "constraint " + constraint + ";\n";
    }
    text += "solve ";
    for (const RandomAnnotation& annotation : fAnnotations) {
      text += ":: " + annotation.GetText() + " ";
    }
    return text + fGoal + ";\n";
  }
};

// Makes the problem smaller, a part after the other, as long as `fails` says that it still fails.
template <class Fails>
RandomProblem Shrink(RandomProblem problem, Fails fails) {
  const auto attempt = [&](const RandomProblem& smaller) {
    const bool isTaken = fails(smaller);
    if (isTaken) {
      problem = smaller;
    }
    return isTaken;
  };
  // Each way to leave one thing out; the places are those of the problem as it is by then.
  const auto dropEach = [&](auto getList) {
    bool isChanged = false;
    for (std::size_t i = 0; i < getList(problem).size();) {
      RandomProblem smaller = problem;
      auto& list = getList(smaller);
      list.erase(list.begin() + static_cast<std::ptrdiff_t>(i));
      const bool isTaken = attempt(smaller);
      isChanged = isChanged || isTaken;
      i += isTaken ? 0 : 1;
    }
    return isChanged;
  };
  for (bool isChanged = true; isChanged;) {
    isChanged = dropEach([](RandomProblem & p) -> auto& { return p.fConstraints; });
    isChanged = dropEach([](RandomProblem & p) -> auto& { return p.fAnnotations; }) || isChanged;
    isChanged = dropEach([](RandomProblem & p) -> auto& { return p.fVariables; }) || isChanged;
    for (std::size_t i = 0; i < problem.fAnnotations.size(); ++i) {
      if (problem.fAnnotations[i].fParts.empty()) {
        continue;
      }
      isChanged = dropEach([i](RandomProblem & p) -> auto& { return p.fAnnotations[i].fParts; }) || isChanged;
      RandomProblem smaller = problem;
      smaller.fAnnotations = problem.fAnnotations[i].fParts;
      isChanged = attempt(smaller) || isChanged;
      i = problem.fAnnotations.size();
    }
    if (problem.fGoal != "satisfy") {
      RandomProblem smaller = problem;
      smaller.fGoal = "satisfy";
      isChanged = attempt(smaller) || isChanged;
    }
  }
  return problem;
}

class ProblemMaker {
 public:
  // Whether a problem takes these values of its variables.
  using Check = std::function<bool(const RandomProblem&, const std::vector<std::int64_t>&)>;

  // Most constraints are drawn anew a few times until they take values that are chosen before: else hardly a problem
  // with some of them would have a solution.
  ProblemMaker(unsigned seed, std::span<const RandomRow> rows, bool hasWideNumbers, const Check& check)
      : fRandom(seed), fHasWideNumbers(hasWideNumbers) {
    const int integers = Pick(1, 3);
    for (int i = integers; i > 0; --i) {
      DeclareInteger();
    }
    for (int i = Pick(0, 5 - integers); i > 0; --i) {
      fTruths.push_back("b" + std::to_string(i));
      fProblem.fVariables.push_back({fTruths.back(), "bool", {}, {0, 1}});
    }
    std::vector<std::int64_t> values;
    for (const RandomVariable& variable : fProblem.fVariables) {
      values.push_back(
          variable.fCandidates[static_cast<std::size_t>(Pick(0, static_cast<int>(variable.fCandidates.size()) - 1))]);
    }
    for (int i = Pick(1, 6); i > 0; --i) {
      const RandomRow& row = rows[static_cast<std::size_t>(Pick(0, static_cast<int>(rows.size()) - 1))];
      RandomProblem alone = fProblem;
      for (int tries = Pick(0, 9) == 0 ? 1 : 12; tries > 0; --tries) {
        alone.fConstraints = {MakeConstraint(row)};
        tries = tries > 1 && check(alone, values) ? 0 : tries;
      }
      fProblem.fConstraints.push_back(alone.fConstraints.front());
    }
    for (int i = Pick(0, 2); i > 0; --i) {
      fProblem.fAnnotations.push_back(MakeAnnotation(3));
    }
    if (Pick(0, 2) == 0) {
      fProblem.fGoal = Join({Pick(0, 1) == 0 ? "minimize " : "maximize ", Pick(0, 9) == 0 ? "3" : PickOf(fIntegers)});
    }
  }

  const RandomProblem& GetProblem() const { return fProblem; }

 private:
  int Pick(int lower, int upper) { return std::uniform_int_distribution(lower, upper)(fRandom); }
  const std::string& PickOf(const std::vector<std::string>& names) {
    return names[static_cast<std::size_t>(Pick(0, static_cast<int>(names.size()) - 1))];
  }

  // Of up to six values: a range or a set, near 0 or near the ends of 32 bits; now and then declared far wider, or
  // without bounds, and kept to its values by constraints.
  void DeclareInteger() {
    RandomVariable variable{"x" + std::to_string(fIntegers.size()), "", {}, {}};
    const bool isWide = fHasWideNumbers && Pick(0, 19) == 0;
    const std::int64_t offset = isWide ? (Pick(0, 1) == 0 ? -2147483640 : 2147483625) : Pick(-3, 2);
    const int size = Pick(1, 6);
    const bool isSparse = Pick(0, 2) == 0;
    // Gaps, now and then large ones.
    const int stretch = Pick(0, 1) == 0 ? 1 : 3;
    for (const int step : {0, 2 * stretch, 5 * stretch}) {
      if (isSparse) {
        variable.fCandidates.push_back(offset + step);
      }
    }
    for (int i = 0; i < size && !isSparse; ++i) {
      variable.fCandidates.push_back(offset + i);
    }
    const auto text = [](std::int64_t number) { return std::to_string(number); };
    const std::string& x = variable.fName;
    const std::string lower = text(offset);
    const std::string upper = text(variable.fCandidates.back());
    const std::string set =
        isSparse ? "{" + lower + "," + text(offset + 2 * stretch) + "," + upper + "}" : lower + ".." + upper;
    variable.fType = set;
    if (fHasWideNumbers && Pick(0, 7) == 0) {
      static const char* const types[] = {"int", "-4611686018427387904..4611686018427387904",
                                          "-3000000000..3000000000"};
      variable.fType = types[Pick(0, 2)];
      if (isSparse || Pick(0, 2) == 0) {
        variable.fBounds = {"set_in(" + x + "," + set + ")"};
      } else if (Pick(0, 1) == 0) {
        variable.fBounds = {"int_le(" + x + "," + upper + ")", "int_le(" + lower + "," + x + ")"};
      } else {
        variable.fBounds = {"int_lin_le([3],[" + x + "]," + text(3 * (offset + size) - 1) + ")",
                            "int_le_reif(" + lower + "," + x + ",true)"};
      }
    }
    fIntegers.push_back(x);
    if (offset >= 0) {
      fNatural.push_back(x);
    }
    fProblem.fVariables.push_back(std::move(variable));
  }

  std::string MakeConstraint(const RandomRow& row) {
    const bool isSum = std::string_view(row.fName).starts_with("int_lin");
    fCover = Pick(0, 3);
    fLength = Pick(0, 6) == 0 ? 0 : isSum && Pick(0, 19) == 0 ? Pick(8, 12) : Pick(1, 4);
    std::string text;
    for (const char* letter = row.fArguments; *letter != '\0'; ++letter) {
      text += (text.empty() ? "" : ",") + Argument(*letter);
    }
    static const char* const hints[] = {" :: domain", " :: bounds", " :: value_propagation", " :: defines_var(x0)"};
    return row.fName + ("(" + text + ")") + (Pick(0, 9) == 0 ? hints[Pick(0, 3)] : "");
  }

  // Whatever a problem's author may say of the search, sensible or not.
  RandomAnnotation MakeAnnotation(int depth) {
    static const char* const variables[] = {"input_order", "first_fail", "anti_first_fail",  "smallest",  "largest",
                                            "occurrence",  "max_regret", "most_constrained", "dom_w_deg", "impact"};
    static const char* const values[] = {
        "indomain",       "indomain_min",      "indomain_max",           "indomain_median", "indomain_middle",
        "indomain_split", "indomain_interval", "indomain_reverse_split", "indomain_random", "indomain_split_random",
        "outdomain_min",  "outdomain_max",     "outdomain_median",       "outdomain_random"};
    static const char* const others[] = {"restart_luby(9)",
                                         "restart_geometric(1.5,10)",
                                         "restart_constant(1)",
                                         "restart_linear(2)",
                                         "restart_none",
                                         "odd",
                                         "relax_and_reconstruct([x0],50)"};
    const int count = Pick(0, 4);
    const auto integers = [&] { return Array(count, [this] { return Pick(0, 9) == 0 ? "4" : PickOf(fIntegers); }); };
    const auto truths = [&] { return Array(count, [this] { return Truth(); }); };
    const std::string choices =
        Join({",", variables[Pick(0, std::size(variables) - 1)], ",", values[Pick(0, std::size(values) - 1)]});
    switch (Pick(0, depth > 0 ? 9 : 7)) {
      case 0:
      case 1:
      case 2:
        return {"int_search(" + integers() + choices + ",complete)", {}};
      case 3:
        return {"bool_search(" + truths() + choices + ",complete)", {}};
      case 4:
      case 5:
        return {Join({Pick(0, 1) == 0 ? "warm_start(" : "warm_start_int(", integers(), ",",
                      Array(count, [this] { return std::to_string(Pick(-3, 7)); }), ")"}),
                {}};
      case 6:
        return {Join({Pick(0, 1) == 0 ? "warm_start(" : "warm_start_bool(", truths(), ",",
                      Array(count, [this] { return Pick(0, 1) == 0 ? "false" : "true"; }), ")"}),
                {}};
      case 7:
        return {others[Pick(0, std::size(others) - 1)], {}};
      default: {
        RandomAnnotation sequence;
        for (int i = Pick(1, 3); i > 0; --i) {
          sequence.fParts.push_back(MakeAnnotation(depth - 1));
        }
        return sequence;
      }
    }
  }

  std::string Constant(int lower, int upper) {
    if (fHasWideNumbers && lower < 0 && Pick(0, 39) == 0) {
      static const char* const wide[] = {"2147483647",           "-2147483648", "3000000000",
                                         "-4611686018427387904", "1000000007",  "9223372036854775807"};
      return wide[Pick(0, 5)];
    }
    return std::to_string(Pick(lower, upper));
  }
  std::string Integer() { return Pick(0, 4) == 0 ? Constant(-3, 5) : PickOf(fIntegers); }
  std::string Truth() {
    return fTruths.empty() || Pick(0, 4) == 0 ? (Pick(0, 1) == 0 ? "false" : "true") : PickOf(fTruths);
  }
  std::string Natural() { return fNatural.empty() || Pick(0, 1) == 0 ? Constant(0, 3) : PickOf(fNatural); }

  // What is drawn for the parts is drawn in their order, which operator + leaves to the compiler.
  static std::string Join(std::initializer_list<std::string> parts) {
    std::string text;
    for (const std::string& part : parts) {
      text += part;
    }
    return text;
  }
  // Now and then longer than the others, where no peer has to read it.
  template <class Make>
  std::string Array(int length, Make make) {
    length += fHasWideNumbers && Pick(0, 149) == 0 ? 1 : 0;
    std::string text;
    for (int i = 0; i < length; ++i) {
      text += i == 0 ? "" : ",";
      text += make();
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
        return Join({"2,3,", Array(6, [this] { return Constant(0, 2); }), ",", Constant(1, 2), ",", Set(Pick(0, 2))});
    }
  }

  std::mt19937 fRandom;
  bool fHasWideNumbers;
  int fLength = 0;
  int fCover = 0;
  std::vector<std::string> fIntegers;
  std::vector<std::string> fNatural;
  std::vector<std::string> fTruths;
  RandomProblem fProblem;
};
