// Random models as text, each with its own reading: whether a given assignment satisfies it.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <optional>
#include <random>
#include <string>
#include <vector>

using Assignment = std::vector<int>;
using Value = std::optional<long long>;  // nothing: the expression has no value

// A statement holds where its value is 1.
struct RandomExpression {
  std::string fText;
  std::function<Value(const Assignment&)> fValue;
};

class RandomModel {
 public:
  explicit RandomModel(unsigned seed) : fRandom(seed) {
    for (int i = Pick(2, 4); i > 0; --i) {
      Declare();
    }
    for (int i = Pick(1, 4); i > 0; --i) {
      fStatements.push_back(Statement());
      fText += fStatements.back().fText + ";\n";
    }
  }

  const std::string& GetText() const { return fText; }
  // Another expression over the variables on each call.
  RandomExpression MakeObjective() { return Integer(2); }

  // Each variable and each statement has a line of its own, in this order.
  std::size_t GetVariableCount() const { return fVariables.size(); }
  std::size_t GetStatementCount() const { return fStatements.size(); }

  // Every assignment that satisfies the statements (of these places), by plain enumeration in ascending order.
  std::vector<Assignment> Enumerate() const {
    std::vector<std::size_t> places(fStatements.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    return Enumerate(places);
  }
  std::vector<Assignment> Enumerate(const std::vector<std::size_t>& places) const {
    std::vector<Assignment> all{{}};
    for (const Variable& variable : fVariables) {
      std::vector<Assignment> longer;
      for (const Assignment& assignment : all) {
        for (const int v : variable.fDomain) {
          longer.push_back(assignment);
          longer.back().push_back(v);
        }
      }
      all = std::move(longer);
    }
    std::erase_if(all, [&](const Assignment& a) {
      return !std::ranges::all_of(places, [&](std::size_t place) { return fStatements[place].fValue(a) == 1; });
    });
    return all;
  }

 private:
  struct Variable {
    std::string fName;
    bool fIsBoolean;
    std::vector<int> fDomain;
  };

  int Pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(fRandom); }
  template <class T>
  T PickOf(const std::vector<T>& choices) {
    return choices[static_cast<std::size_t>(Pick(0, static_cast<int>(choices.size()) - 1))];
  }

  void Declare() {
    Variable variable{std::string(1, static_cast<char>('a' + fVariables.size())), Pick(0, 5) == 0, {}};
    std::string domain = "bool";
    if (variable.fIsBoolean) {
      variable.fDomain = {0, 1};
    } else {
      const bool isInterval = Pick(0, 3) == 0;
      const int lower = isInterval ? Pick(-4, 4) : -4;
      const int upper = isInterval ? lower + Pick(0, 5) : 5;
      std::string list;
      for (int v = lower; v <= upper; ++v) {
        if (isInterval || Pick(0, 1) == 0) {
          variable.fDomain.push_back(v);
          list += (list.empty() ? "{" : ", ") + std::to_string(v);
        }
      }
      domain = isInterval ? "interval int [" + std::to_string(lower) + ", " + std::to_string(upper) + "]"
                          : "enum int " + (list.empty() ? "Nil" : list + "}");
    }
    fText += variable.fName + " : " + domain + ";\n";
    fVariables.push_back(variable);
  }

  RandomExpression AnyVariable(bool isBoolean) {
    std::vector<std::size_t> fitting;
    for (std::size_t i = 0; i < fVariables.size(); ++i) {
      if (fVariables[i].fIsBoolean == isBoolean) {
        fitting.push_back(i);
      }
    }
    if (fitting.empty()) {
      return isBoolean ? Comparison(0) : Constant();
    }
    const std::size_t i = PickOf(fitting);
    return {fVariables[i].fName, [i](const Assignment& a) { return a[i]; }};
  }

  RandomExpression Constant() {
    const int v = Pick(0, 19) == 0 ? PickOf<int>({46341, 65536, 1 << 30, 2147483644, -2147483644}) : Pick(-4, 6);
    // As the base of a power, a number without parentheses would lose its sign to the power.
    return {v < 0 ? "(" + std::to_string(v) + ")" : std::to_string(v), [v](const Assignment&) { return v; }};
  }

  // The ends of the integer range stand for everything beyond them: arithmetic does not reach them.
  static Value Limit(const Value& x) { return x && std::llabs(*x) < 2147483645 ? x : Value(); }

  static Value Power(long long x, long long y) {
    if (x == 1 || x == -1) {
      return y % 2 == 0 ? 1 : x;
    }
    if (y < 0 || (x == 0 && y > 0)) {
      return y < 0 ? Value() : 0;
    }
    Value power = 1;
    for (; power && y > 0; --y) {
      power = Limit(*power * x);
    }
    return power;
  }

  // Of a prefix operation x is 0 and y the operand.
  static Value Calculate(const std::string& op, long long x, long long y) {
    return op == "+"                   ? x + y
           : op == "-"                 ? x - y
           : op == "*"                 ? x * y
           : op == "/"                 ? (y == 0 || x % y != 0 ? Value() : x / y)
           : op == "mod"               ? (y == 0 ? Value() : x % y)
           : op == "^"                 ? Power(x, y)
           : op == "/\\"               ? std::min(x, y)
           : op == "\\/"               ? std::max(x, y)
           : op == "abs"               ? std::llabs(y)
           : op == "sign"              ? (y > 0) - (y < 0)
           : op == "next"              ? y + 1
           : op == "prev"              ? y - 1
           : op == "!"                 ? 1 - y
           : op == "&&"                ? x * y
           : op == "||"                ? x + y - x * y
           : op == "->"                ? 1 - x + x * y
           : op == "<>"                ? x != y
           : op == "<" || op == "<<"   ? x < y
           : op == "<=" || op == "<==" ? x <= y
           : op == ">" || op == ">>"   ? x > y
           : op == ">=" || op == ">==" ? x >= y
                                       : x == y;
  }

  static RandomExpression Combine(const std::string& op, const RandomExpression& a, const RandomExpression& b) {
    return {"(" + a.fText + " " + op + " " + b.fText + ")", [a = a.fValue, b = b.fValue, op](const Assignment& values) {
              const Value x = a(values), y = b(values);
              return x && y ? Limit(Calculate(op, *x, *y)) : Value();
            }};
  }

  static RandomExpression Prefix(const std::string& op, const RandomExpression& a) {
    return {"(" + op + " (" + a.fText + "))", [a = a.fValue, op](const Assignment& values) {
              const Value x = a(values);
              return x ? Limit(Calculate(op, 0, *x)) : x;
            }};
  }

  RandomExpression Integer(int depth) {
    const int kind = depth == 0 ? Pick(0, 2) : Pick(0, 9);
    if (kind <= 2) {
      return kind < 2 ? AnyVariable(false) : Constant();
    }
    if (kind == 3) {
      return Prefix(PickOf<std::string>({"-", "abs", "sign", "next", "prev"}), Integer(depth - 1));
    }
    if (kind == 4) {
      return Pick(0, 2) == 0 ? LongSum() : ListFunction(depth);
    }
    const auto op = PickOf<std::string>({"+", "+", "-", "*", "*", "/", "mod", "mod", "^", "/\\", "\\/"});
    return Combine(op, Integer(depth - 1), Integer(depth - 1));
  }

  // Of so many terms that it is no chain of additions.
  RandomExpression LongSum() {
    RandomExpression sum = Integer(0);
    for (int i = Pick(8, 10); i > 0; --i) {
      sum = Combine(PickOf<std::string>({"+", "-"}), sum,
                    Pick(0, 2) == 0 ? Combine("*", Constant(), AnyVariable(false)) : Integer(0));
    }
    return sum;
  }

  std::vector<RandomExpression> List(int longest, int depth, std::string& text) {
    std::vector<RandomExpression> members;
    for (int i = Pick(1, longest); i > 0; --i) {
      members.push_back(Integer(depth));
      text += (text.empty() ? "[" : ", ") + members.back().fText;
    }
    text += "]";
    return members;
  }

  // Nothing where a member has no value.
  static std::optional<std::vector<long long>> Evaluate(const std::vector<RandomExpression>& list,
                                                        const Assignment& a) {
    std::vector<long long> values;
    for (const RandomExpression& member : list) {
      const Value value = member.fValue(a);
      if (!value) {
        return std::nullopt;
      }
      values.push_back(*value);
    }
    return values;
  }

  RandomExpression ListFunction(int depth) {
    const int kind = Pick(0, 2);
    std::string text;
    const std::vector<RandomExpression> list = List(4, depth - 1, text);
    if (kind == 0) {
      return {"sum " + text, [list](const Assignment& a) -> Value {
                Value sum = 0;
                for (const RandomExpression& member : list) {
                  const Value value = Limit(member.fValue(a));
                  sum = sum && value ? Limit(*sum + *value) : Value();
                }
                return sum;
              }};
    }
    const RandomExpression beside = Integer(depth - 1);
    return {kind == 1 ? "count (" + text + ", " + beside.fText + ")" : text + "[" + beside.fText + "]",
            [list, beside, kind](const Assignment& a) -> Value {
              const auto values = Evaluate(list, a);
              const Value b = beside.fValue(a);
              if (!values || !b) {
                return {};
              }
              if (kind == 1) {
                return std::ranges::count(*values, *b);
              }
              const auto size = static_cast<long long>(values->size());
              return *b < 1 || *b > size ? Value() : (*values)[static_cast<std::size_t>(*b - 1)];
            }};
  }

  RandomExpression Table() {
    std::string text;
    const std::vector<RandomExpression> list = List(3, 1, text);
    std::vector<std::vector<long long>> rows(static_cast<std::size_t>(Pick(0, 8)));
    for (std::vector<long long>& row : rows) {
      std::string numbers;
      for (std::size_t i = 0; i < list.size(); ++i) {
        row.push_back(Pick(-4, 5));
        numbers += (numbers.empty() ? ", [" : ", ") + std::to_string(row.back());
      }
      text += numbers + "]";
    }
    return {"table (" + text + ")", [list, rows](const Assignment& a) -> Value {
              const auto values = Evaluate(list, a);
              return values && std::ranges::find(rows, *values) != rows.end();
            }};
  }

  RandomExpression Comparison(int depth) {
    return Combine(PickOf<std::string>({"==", "<<", "<==", ">>", ">=="}), Integer(depth), Integer(depth));
  }

  RandomExpression Truth(int depth) {
    const int kind = depth == 0 ? Pick(0, 1) : Pick(0, 6);
    if (kind < 3) {
      return kind == 0 ? AnyVariable(true) : Comparison(std::max(depth - 1, 0));
    }
    if (kind == 3) {
      return Prefix("!", Truth(depth - 1));
    }
    return Combine(PickOf<std::string>({"&&", "||", "->", "<->", "=="}), Truth(depth - 1), Truth(depth - 1));
  }

  RandomExpression Statement() {
    const int kind = Pick(0, 5);
    if (kind <= 2) {
      return kind == 0 ? Pick(0, 1) == 0 ? AllDifferent() : Table() : Truth(2);
    }
    // "=" beside a name is the form in which the variable itself is the result of the operation.
    const bool named = kind == 3;
    const auto op = named ? "=" : PickOf<std::string>({"=", "=", "<>", "<", "<=", ">", ">="});
    const bool nameFirst = Pick(0, 1) == 0;
    RandomExpression relation = Combine(op, named && nameFirst ? AnyVariable(false) : Integer(2),
                                        named && !nameFirst ? AnyVariable(false) : Integer(2));
    relation.fText = relation.fText.substr(1, relation.fText.size() - 2);
    return relation;
  }

  RandomExpression AllDifferent() {
    std::vector<RandomExpression> elements;
    std::string text;
    for (int i = Pick(1, 4); i > 0; --i) {
      elements.push_back(Integer(1));
      text += (text.empty() ? "all different (" : ", ") + elements.back().fText;
    }
    return {text + ")", [elements](const Assignment& a) -> Value {
              std::vector<Value> values;
              for (const RandomExpression& element : elements) {
                values.push_back(element.fValue(a));
              }
              std::ranges::sort(values);
              return values.front().has_value() && std::ranges::adjacent_find(values) == values.end();
            }};
  }

  std::mt19937 fRandom;
  std::string fText;
  std::vector<Variable> fVariables;
  std::vector<RandomExpression> fStatements;
};
