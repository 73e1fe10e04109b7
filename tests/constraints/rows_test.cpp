// Every operator row of every module, against brute force: the constraint that a row makes loses no value with a
// support, and when all its arguments are single-valued it holds or fails.
#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <set>

#include "framework/VokTarnOperatorDescriptor.h"
#include "support/modules.h"

namespace {

using Value = std::int64_t;
using Function = std::optional<Value> (*)(Value a, Value b);

std::optional<Value> Power(Value a, Value b) {
  if (b < 0) {
    return a == 1 || a == -1 ? std::optional<Value>(b % 2 == 0 ? 1 : a) : std::nullopt;
  }
  Value power = 1;
  for (; b > 0; --b) {
    power *= a;
  }
  return power;
}

// The value of `a op b`, or of `op a`. A relation's value is its right operand where it holds.
const std::map<std::string, Function> kBinary = {
    {"+", [](Value a, Value b) { return std::optional(a + b); }},
    {"-", [](Value a, Value b) { return std::optional(a - b); }},
    {"*", [](Value a, Value b) { return std::optional(a * b); }},
    {"/", [](Value a, Value b) { return b != 0 && a % b == 0 ? std::optional(a / b) : std::nullopt; }},
    {"mod", [](Value a, Value b) { return b != 0 ? std::optional(a % b) : std::nullopt; }},
    {"^", Power},
    {"/\\", [](Value a, Value b) { return std::optional(std::min(a, b)); }},
    {"\\/", [](Value a, Value b) { return std::optional(std::max(a, b)); }},
    {"=", [](Value a, Value b) { return a == b ? std::optional(b) : std::nullopt; }},
    {"<>", [](Value a, Value b) { return a != b ? std::optional(b) : std::nullopt; }},
    {"<=", [](Value a, Value b) { return a <= b ? std::optional(b) : std::nullopt; }},
    {"<", [](Value a, Value b) { return a < b ? std::optional(b) : std::nullopt; }},
    {">=", [](Value a, Value b) { return a >= b ? std::optional(b) : std::nullopt; }},
    {">", [](Value a, Value b) { return a > b ? std::optional(b) : std::nullopt; }},
    {"==", [](Value a, Value b) { return std::optional<Value>(a == b); }},
    {"<<", [](Value a, Value b) { return std::optional<Value>(a < b); }},
    {"<==", [](Value a, Value b) { return std::optional<Value>(a <= b); }},
    {">>", [](Value a, Value b) { return std::optional<Value>(a > b); }},
    {">==", [](Value a, Value b) { return std::optional<Value>(a >= b); }},
    {"<->", [](Value a, Value b) { return std::optional<Value>(a == b); }},
    {"&&", [](Value a, Value b) { return std::optional<Value>(a != 0 && b != 0); }},
    {"||", [](Value a, Value b) { return std::optional<Value>(a != 0 || b != 0); }},
    {"->", [](Value a, Value b) { return std::optional<Value>(a == 0 || b != 0); }},
};
const std::map<std::string, Function> kUnary = {
    {"-", [](Value a, Value) { return std::optional(-a); }},
    {"abs", [](Value a, Value) { return std::optional(a < 0 ? -a : a); }},
    {"sign", [](Value a, Value) { return std::optional<Value>((a > 0) - (a < 0)); }},
    {"next", [](Value a, Value) { return std::optional(a + 1); }},
    {"prev", [](Value a, Value) { return std::optional(a - 1); }},
    {"!", [](Value a, Value) { return std::optional<Value>(a == 0); }},
    {"(interval int)", [](Value a, Value) { return std::optional(a); }},
    {"(int)", [](Value a, Value) { return std::optional(a); }},
};

// A statement does without the value of these.
const std::set<std::string_view> kRelations = {"=", "<>", "<=", "<", ">=", ">"};

bool IsPossible(const VokTarnAny& value, Value v) {
  return value.IsDerivedFrom(VokTarnBoolean::sIdent) != 0
             ? (v == 0 || v == 1) && static_cast<const VokTarnBoolean&>(value).IsPossible(static_cast<int>(v)) != 0
             : static_cast<const VokTarnInteger&>(value).IsPossible(static_cast<VokLong>(v));
}

// Whether a value of this type and domain may be v: undefined says nothing of what the type cannot hold at all.
bool MayBe(const VokTarnNetwork& network, VokTarnValueId id, Value v) {
  return IsPossible(network.GetValue(id), v) && (network.GetType(id)->GetName().View() != "even int" || v % 2 == 0);
}

// The value of a single-valued argument.
Value ValueOf(const VokTarnAny& value) {
  return value.IsDerivedFrom(VokTarnBoolean::sIdent) != 0 ? static_cast<const VokTarnBoolean&>(value).IsPossible(1)
                                                          : static_cast<const VokTarnInteger&>(value).GetLowerBound();
}

class Rows : public testing::Test {
 protected:
  Rows() {
    fModules.fManager.AddSearchDirectory(VOKTARN_BIN_DIR "/test-modules");
    EXPECT_NE(fModules.fManager.OpenModule("VokFenEvenIntegers"), nullptr) << fModules.fManager.GetError();
    fModules.fTable.Refresh();
    for (const VokTarnType type : fModules.fTable.GetTypes()) {
      if (type->GetObjectSize() != 0) {
        fConcrete.push_back(type);
      }
    }
  }

  int Random(int from, int to) { return std::uniform_int_distribution<int>(from, to)(fRandom); }

  // A type that may stand for the declared one.
  VokTarnType Concrete(VokTarnType declared) {
    while (true) {
      const VokTarnType type = fConcrete[static_cast<std::size_t>(Random(0, static_cast<int>(fConcrete.size()) - 1))];
      if (declared->IsMatched(type) != 0) {
        return type;
      }
    }
  }

  // Undefined, single-valued, or a small random domain in the type's own text form.
  void Fill(VokTarnAny& value, VokTarnType type, int from, int to) {
    const std::string_view name = type->GetName().View();
    std::ostringstream text;
    if (Random(0, 6) == 0) {
      return;
    }
    if (name == "bool") {
      text << Random(0, 1);
    } else if (name == "even int") {
      text << "up to " << Random(0, 6);
    } else if (name == "interval int") {
      const int low = Random(from, to);
      text << '[' << low << ", " << Random(low, Random(low, to)) << ']';
    } else if (name == "int" || Random(0, 2) == 0) {
      text << Random(from, to);
    } else {
      text << '{' << Random(from, to);
      for (int more = Random(0, 5); more > 0; --more) {
        text << ", " << Random(from, to);
      }
      text << '}';
    }
    std::istringstream is(text.str());
    value.InputValue(is);
    ASSERT_FALSE(is.fail()) << name << ' ' << text.str();
  }

  void CheckOnce(const VokTarnOperatorDescriptor& row, Function function, bool sameOperand, bool withResult);

  support::LoadedModules fModules;
  std::vector<VokTarnType> fConcrete;
  std::mt19937 fRandom{20260101};
};

void Rows::CheckOnce(const VokTarnOperatorDescriptor& row, Function function, bool sameOperand, bool withResult) {
  VokTarnNetwork network;
  const unsigned count = row.GetOperandCount();
  std::vector<VokTarnValueId> operands;
  std::vector<VokTarnType> types;
  for (unsigned i = 0; i < count; ++i) {
    if (i == 1 && sameOperand && row.GetOperandType(1)->IsMatched(types[0]) != 0) {
      operands.push_back(operands[0]);
    } else {
      operands.push_back(network.AddValue(Concrete(row.GetOperandType(i))));
      Fill(network.GetValue(operands.back()), network.GetType(operands.back()), -4, 4);
    }
    types.push_back(network.GetType(operands.back()));
  }
  VokTarnValueId result = vokNoValue;
  if (withResult) {
    result = network.AddValue(Concrete(row.GetResultType()));
    Fill(network.GetValue(result), network.GetType(result), -9, 9);
  }
  const auto choice = fModules.fTable.Choose(row.GetName().View(), types);
  ASSERT_TRUE(choice.has_value());
  std::ostringstream before;
  row.PrintOn(before);
  std::vector<VokTarnValueId> all = operands;
  if (withResult) {
    all.push_back(result);
  }
  for (const VokTarnValueId id : all) {
    before << "; " << network.GetType(id)->GetName().Text() << ' ' << support::Show(network.GetValue(id));
  }
  std::vector<std::vector<Value>> supports;
  for (Value a = -4; a <= 4; ++a) {
    for (Value b = count == 2 ? -4 : 0; b <= (count == 2 ? 4 : 0); ++b) {
      std::vector<Value> support = {a};
      if (count == 2) {
        support.push_back(b);
      }
      const std::optional<Value> r = function(a, b);
      if (!r || (count == 2 && operands[0] == operands[1] && a != b)) {
        continue;
      }
      if (withResult) {
        support.push_back(*r);
      }
      bool possible = true;
      for (std::size_t i = 0; i < all.size(); ++i) {
        possible = possible && MayBe(network, all[i], support[i]);
      }
      if (possible) {
        supports.push_back(support);
      }
    }
  }
  fModules.fTable.Apply(network, *choice, operands, result, false);
  network.SetInterrupt([&network] { return network.GetPropagations() > 20000; });
  const VokTarnNetwork::Outcome outcome = network.Propagate();
  const bool failed = outcome == VokTarnNetwork::Outcome::Failed;
  if (outcome == VokTarnNetwork::Outcome::Interrupted) {
    // An unbounded interval that stands twice may take its own bounds in by one at a time.
    ASSERT_EQ(operands.front(), operands.back()) << before.str() << " does not settle";
    return;
  }
  EXPECT_TRUE(!failed || supports.empty()) << before.str() << " has a solution";
  const bool assigned = std::all_of(
      all.begin(), all.end(), [&network](VokTarnValueId id) { return network.GetValue(id).GetCardinality() == 1; });
  if (!failed && assigned) {
    const std::optional<Value> r =
        function(ValueOf(network.GetValue(operands.front())), ValueOf(network.GetValue(operands.back())));
    EXPECT_TRUE(r && (!withResult || *r == ValueOf(network.GetValue(result)))) << before.str() << " does not hold";
  }
  for (const auto& support : supports) {
    for (std::size_t i = 0; i < all.size() && !failed; ++i) {
      EXPECT_TRUE(IsPossible(network.GetValue(all[i]), support[i]))
          << before.str() << " lost " << support[i] << " of argument " << i << ", left "
          << support::Show(network.GetValue(all[i]));
    }
  }
}

TEST_F(Rows, LoseNoSupportAndCheckAssignments) {
  int checked = 0;
  for (const std::string_view name : fModules.fTable.GetOperatorNames()) {
    for (const VokTarnOperatorDescriptor* row : fModules.fTable.GetRows(name)) {
      if (row->GetOperandCount() == 0) {
        continue;
      }
      const auto& functions = row->GetOperandCount() == 1 ? kUnary : kBinary;
      const auto function = functions.find(std::string(name));
      ASSERT_NE(function, functions.end()) << "no oracle for " << name;
      ++checked;
      for (int trial = 0; trial < 400 && !HasFailure(); ++trial) {
        CheckOnce(*row, function->second, trial % 8 == 0, !kRelations.contains(name) || trial % 4 != 0);
      }
    }
  }
  EXPECT_GE(checked, 93 + 12);
}

TEST_F(Rows, AllDifferentKeepsExactlyTheSupportedValues) {
  for (int trial = 0; trial < 3000 && !HasFailure(); ++trial) {
    VokTarnNetwork network;
    std::vector<VokTarnValueId> ids;
    for (int n = Random(0, 4); n > 0; --n) {
      ids.push_back(network.AddValue(Concrete(VokTarnInteger::sDescriptor)));
      Fill(network.GetValue(ids.back()), network.GetType(ids.back()), 0, 4);
    }
    // Every assignment with different values, built argument by argument.
    std::vector<std::vector<Value>> supports = {{}};
    for (const VokTarnValueId id : ids) {
      std::vector<std::vector<Value>> longer;
      for (const auto& support : supports) {
        for (Value v = -1; v <= 6; ++v) {
          if (MayBe(network, id, v) && std::find(support.begin(), support.end(), v) == support.end()) {
            longer.push_back(support);
            longer.back().push_back(v);
          }
        }
      }
      supports = std::move(longer);
    }
    fModules.Post(network, "all different", ids);
    const bool listed = std::all_of(
        ids.begin(), ids.end(), [&network](VokTarnValueId id) { return network.GetValue(id).GetCardinality() > 0; });
    const bool failed = network.Propagate() == VokTarnNetwork::Outcome::Failed;
    EXPECT_TRUE(listed ? failed == supports.empty() : !failed || supports.empty()) << "trial " << trial;
    for (std::size_t i = 0; i < ids.size() && !failed; ++i) {
      for (Value v = -1; v <= 6; ++v) {
        const bool supported =
            std::any_of(supports.begin(), supports.end(), [i, v](const auto& s) { return s[i] == v; });
        const bool possible = MayBe(network, ids[i], v);
        // An interval cannot lose a value between its bounds.
        const bool exact = listed && network.GetType(ids[i])->GetName().View() != "interval int";
        EXPECT_TRUE(possible == supported || (possible && !exact)) << "trial " << trial << " value " << v;
      }
    }
  }
}

}  // namespace
