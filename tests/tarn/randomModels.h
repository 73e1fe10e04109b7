// Random models as text, each with its own reading: whether a given assignment satisfies it.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

using Assignment = std::vector<int>;
using Value = std::optional<long long>;  // nothing: the expression has no value

struct RandomExpression {
  std::string fText;
  std::function<Value(const Assignment&)> fValue;
};

struct RandomStatement {
  std::string fText;
  std::function<bool(const Assignment&)> fHolds;
};

struct RandomVariable {
  std::string fName;
  bool fIsBoolean;
  std::vector<int> fDomain;
};

class RandomModel {
 public:
  explicit RandomModel(unsigned seed) : fRandom(seed) {
    const int variables = Pick(2, 4);
    for (int i = 0; i < variables; ++i) {
      Declare(i);
    }
    const int statements = Pick(1, 4);
    for (int i = 0; i < statements; ++i) {
      fStatements.push_back(MakeStatement());
      fText += fStatements.back().fText + ";\n";
    }
  }

  const std::string& GetText() const { return fText; }
  // Another expression over the variables on each call.
  RandomExpression MakeObjective() { return Integer(2); }

  // Every assignment that satisfies the model, by plain enumeration in ascending order.
  std::vector<Assignment> Enumerate() const {
    std::vector<Assignment> solutions;
    Assignment assignment;
    Enumerate(assignment, solutions);
    return solutions;
  }

 private:
  int Pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(fRandom); }
  template <class T>
  T PickOf(std::initializer_list<T> choices) {
    return *(choices.begin() + Pick(0, static_cast<int>(choices.size()) - 1));
  }

  void Declare(int index) {
    RandomVariable variable{std::string(1, static_cast<char>('a' + index)), Pick(0, 5) == 0, {}};
    if (variable.fIsBoolean) {
      variable.fDomain = {0, 1};
      fText += variable.fName + " : bool;\n";
    } else if (Pick(0, 3) == 0) {
      const int lower = Pick(-4, 4);
      const int upper = lower + Pick(0, 5);
      for (int v = lower; v <= upper; ++v) {
        variable.fDomain.push_back(v);
      }
      fText += variable.fName + " : interval int [" + std::to_string(lower) + ", " + std::to_string(upper) + "];\n";
    } else {
      std::string list;
      for (int v = -4; v <= 5; ++v) {
        if (Pick(0, 1) == 0) {
          variable.fDomain.push_back(v);
          list += (list.empty() ? "" : ", ") + std::to_string(v);
        }
      }
      fText += variable.fName + " : enum int " + (list.empty() ? "Nil" : "{" + list + "}") + ";\n";
    }
    fVariables.push_back(variable);
  }

  RandomExpression Variable(bool isBoolean) {
    std::vector<std::size_t> fitting;
    for (std::size_t i = 0; i < fVariables.size(); ++i) {
      if (fVariables[i].fIsBoolean == isBoolean) {
        fitting.push_back(i);
      }
    }
    if (fitting.empty()) {
      return isBoolean ? Comparison(0) : Constant();
    }
    const std::size_t i = fitting[static_cast<std::size_t>(Pick(0, static_cast<int>(fitting.size()) - 1))];
    return {fVariables[i].fName, [i](const Assignment& a) { return a[i]; }};
  }

  RandomExpression Constant() {
    const int v = Pick(0, 19) == 0 ? PickOf({46341, 65536, 1 << 30, 2147483644, -2147483644}) : Pick(-4, 6);
    // As the base of a power, a number without parentheses would lose its sign to the power.
    return {v < 0 ? std::string("(") + std::to_string(v) + ")" : std::to_string(v),
            [v](const Assignment&) { return v; }};
  }

  // The ends of the integer range stand for everything beyond them: arithmetic does not reach them.
  static Value Limit(long long x) { return std::llabs(x) >= 2147483645 ? Value() : x; }

  template <class Function>
  static RandomExpression Combine(const std::string& op, const RandomExpression& a, const RandomExpression& b,
                                  Function f) {
    return {"(" + a.fText + " " + op + " " + b.fText + ")",
            [a = a.fValue, b = b.fValue, f](const Assignment& assignment) -> Value {
              const Value x = a(assignment);
              const Value y = b(assignment);
              const Value result = x && y ? f(*x, *y) : Value();
              return result ? Limit(*result) : result;
            }};
  }

  static Value Power(long long x, long long y) {
    if (y < 0) {
      return x == 1 || x == -1 ? Power(x, -y) : Value();
    }
    long long power = 1;
    for (long long i = 0; i < y && x != 1; ++i) {
      power *= x;
      if (std::llabs(power) >= 2147483645) {
        return {};
      }
      if (x == -1 || x == 0) {
        return x == 0 ? 0 : y % 2 == 0 ? 1 : -1;
      }
    }
    return power;
  }

  static Value Calculate(const std::string& op, long long x, long long y) {
    switch (op[0]) {
      case '+':
        return x + y;
      case '-':
        return x - y;
      case '*':
        return x * y;
      case 'm':
        return y == 0 ? Value() : x % y;
      case '^':
        return Power(x, y);
      case '/':
        return op.size() > 1 ? std::min(x, y) : y == 0 || x % y != 0 ? Value() : x / y;
      default:
        return std::max(x, y);
    }
  }

  RandomExpression Integer(int depth) {
    const int kind = depth == 0 ? Pick(0, 2) : Pick(0, 9);
    if (kind < 2) {
      return Variable(false);
    }
    if (kind == 2) {
      return Constant();
    }
    if (kind == 3) {
      const auto op = PickOf<std::string>({"-", "abs", "sign", "next", "prev"});
      const RandomExpression a = Integer(depth - 1);
      return {"(" + op + " (" + a.fText + "))", [a = a.fValue, op](const Assignment& assignment) -> Value {
                const Value x = a(assignment);
                if (!x) {
                  return x;
                }
                return Limit(op == "-"      ? -*x
                             : op == "abs"  ? std::llabs(*x)
                             : op == "sign" ? (*x > 0) - (*x < 0)
                             : op == "next" ? *x + 1
                                            : *x - 1);
              }};
    }
    const auto op = PickOf<std::string>({"+", "+", "-", "*", "*", "/", "mod", "mod", "^", "/\\", "\\/"});
    return Combine(op, Integer(depth - 1), Integer(depth - 1),
                   [op](long long x, long long y) { return Calculate(op, x, y); });
  }

  static bool Compare(const std::string& op, long long x, long long y) {
    if (op == "=" || op == "==") {
      return x == y;
    }
    if (op == "<>") {
      return x != y;
    }
    const bool orEqual = op.find('=') != std::string::npos;
    return (orEqual && x == y) || (op[0] == '<' ? x < y : x > y);
  }

  RandomExpression Comparison(int depth) {
    const auto op = PickOf<std::string>({"==", "<<", "<==", ">>", ">=="});
    return Combine(op, Integer(depth), Integer(depth),
                   [op](long long x, long long y) -> Value { return Compare(op, x, y) ? 1 : 0; });
  }

  RandomExpression Truth(int depth) {
    const int kind = depth == 0 ? Pick(0, 1) : Pick(0, 6);
    if (kind == 0) {
      return Variable(true);
    }
    if (kind < 3) {
      return Comparison(std::max(depth - 1, 0));
    }
    if (kind == 3) {
      const RandomExpression a = Truth(depth - 1);
      return {"!" + a.fText, [a = a.fValue](const Assignment& assignment) -> Value {
                const Value x = a(assignment);
                return x ? 1 - *x : x;
              }};
    }
    const auto op = PickOf<std::string>({"&&", "||", "->", "<->", "=="});
    return Combine(op, Truth(depth - 1), Truth(depth - 1), [op](long long x, long long y) -> Value {
      return op == "&&" ? x * y : op == "||" ? x + y - x * y : op == "->" ? 1 - x + x * y : x == y ? 1 : 0;
    });
  }

  RandomStatement MakeStatement() {
    const int kind = Pick(0, 5);
    if (kind == 0) {
      return MakeAllDifferent();
    }
    if (kind <= 2) {
      const RandomExpression truth = Truth(2);
      return {truth.fText, [f = truth.fValue](const Assignment& a) { return f(a).value_or(0) == 1; }};
    }
    if (kind == 3) {
      // The form in which the variable itself is the result of the operation.
      const RandomExpression name = Variable(false);
      const RandomExpression result = Integer(2);
      return {Pick(0, 1) == 0 ? name.fText + " = " + result.fText : result.fText + " = " + name.fText,
              [x = name.fValue, y = result.fValue](const Assignment& a) {
                const Value v = y(a);
                return v && *x(a) == *v;
              }};
    }
    const auto op = PickOf<std::string>({"=", "=", "<>", "<", "<=", ">", ">="});
    const RandomExpression relation =
        Combine(op, Integer(2), Integer(2), [op](long long x, long long y) -> Value { return Compare(op, x, y); });
    const std::string text = relation.fText.substr(1, relation.fText.size() - 2);
    return {text, [f = relation.fValue](const Assignment& a) { return f(a).value_or(0) == 1; }};
  }

  RandomStatement MakeAllDifferent() {
    std::vector<RandomExpression> elements;
    std::string text;
    for (int i = Pick(1, 4); i > 0; --i) {
      elements.push_back(Integer(1));
      text += (text.empty() ? "all different (" : ", ") + elements.back().fText;
    }
    return {text + ")", [elements](const Assignment& a) {
              std::vector<long long> values;
              for (const RandomExpression& element : elements) {
                const Value v = element.fValue(a);
                if (!v) {
                  return false;
                }
                values.push_back(*v);
              }
              std::ranges::sort(values);
              return std::ranges::adjacent_find(values) == values.end();
            }};
  }

  void Enumerate(Assignment& assignment, std::vector<Assignment>& solutions) const {
    if (assignment.size() == fVariables.size()) {
      if (std::ranges::all_of(fStatements, [&](const RandomStatement& s) { return s.fHolds(assignment); })) {
        solutions.push_back(assignment);
      }
      return;
    }
    for (const int v : fVariables[assignment.size()].fDomain) {
      assignment.push_back(v);
      Enumerate(assignment, solutions);
      assignment.pop_back();
    }
  }

  std::mt19937 fRandom;
  std::string fText;
  std::vector<RandomVariable> fVariables;
  std::vector<RandomStatement> fStatements;
};
