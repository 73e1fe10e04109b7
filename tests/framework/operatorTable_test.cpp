#include <gmock/gmock.h>

#include "framework/VokTarnOperatorDescriptor.h"
#include "support/modules.h"

namespace {

using support::LoadedModules;

// What is chosen for an operator and operand types: the row as text, then the conversions.
std::string Choose(const LoadedModules& modules, const char* op, std::vector<const char*> typeNames) {
  std::vector<VokTarnType> types;
  for (const char* name : typeNames) {
    types.push_back(modules.Type(name));
  }
  const auto choice = modules.fTable.Choose(op, types);
  if (!choice) {
    return "none";
  }
  std::ostringstream text;
  choice->fOperator->PrintOn(text);
  for (const VokTarnType conversion : choice->fConversions) {
    text << " | " << (conversion == nullptr ? "-" : conversion->GetName().Text());
  }
  return text.str();
}

TEST(OperatorTable, PrefersExactRowsThenMixingRowsThenCastsThenAbstractRows) {
  LoadedModules modules;
  modules.fManager.AddSearchDirectory(VOKTARN_BIN_DIR "/test-modules");
  ASSERT_NE(modules.fManager.OpenModule("VokFenEvenIntegers"), nullptr) << modules.fManager.GetError();
  modules.fTable.Refresh();
  const struct {
    const char* fOperator;
    std::vector<const char*> fTypes;
    const char* fChoice;
  } rows[] = {
      {"+", {"enum int", "int"}, "+ (enum int, int) -> enum int | - | -"},
      {"+", {"interval int", "int"}, "+ (interval int, int) -> interval int | - | -"},
      {"=", {"enum int", "interval int"}, "= (enum int, interval int) -> enum int | - | -"},
      // An order relation takes bounds from every type: no cast is needed.
      {"<", {"enum int", "interval int"}, "< (abstract int, abstract int) -> abstract int | - | -"},
      {"<", {"even int", "enum int"}, "< (abstract int, abstract int) -> abstract int | - | -"},
      // An interval beside a set goes through the cast that is published for it.
      {"+", {"enum int", "interval int"}, "+ (enum int, enum int) -> enum int | - | enum int"},
      {"mod", {"interval int", "enum int"}, "mod (enum int, enum int) -> enum int | enum int | -"},
      // A type that no row names is kept equal to a value of the row's result type.
      {"+", {"enum int", "even int"}, "+ (enum int, abstract int) -> enum int | - | enum int"},
      {"+", {"even int", "even int"}, "+ (even int, even int) -> even int | - | -"},
      // The operand that becomes the constraint's last argument has the working type.
      {"-", {"int", "enum int"}, "- (int, enum int) -> enum int | enum int | -"},
      {"-", {"enum int", "int"}, "- (enum int, int) -> enum int | - | -"},
      {"^", {"even int", "even int"}, "none"},
      {"abs", {"even int"}, "none"},
      {"&&", {"bool", "enum int"}, "none"},
      {"no such operator", {"bool"}, "none"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Choose(modules, row.fOperator, row.fTypes), row.fChoice) << row.fOperator;
  }
  EXPECT_TRUE(modules.fTable.HasCast(modules.Type("interval int"), modules.Type("enum int")));
  EXPECT_TRUE(modules.fTable.HasCast(modules.Type("enum int"), modules.Type("interval int")));
  EXPECT_FALSE(modules.fTable.HasCast(modules.Type("even int"), modules.Type("enum int")));
  EXPECT_FALSE(modules.fTable.CanConvert(modules.Type("bool"), modules.Type("enum int")));
}

TEST(OperatorTable, ArgumentsStandInTheOrderOfTheKind) {
  using Kind = VokTarnOperatorDescriptor::Kind;
  const VokTarnObjectDescriptor type("t", nullptr, 0);
  const std::vector<VokTarnValueId> operands = {1, 2};
  const std::pair<Kind, std::vector<VokTarnValueId>> rows[] = {
      {Kind::Unary, {1, 9}},
      {Kind::InverseUnary, {9, 1}},
      {Kind::Binary, {1, 2, 9}},
      {Kind::SymmetricBinary, {2, 1, 9}},
      {Kind::FirstInverseBinary, {9, 2, 1}},
      {Kind::SecondInverseBinary, {2, 9, 1}},
      {Kind::SecondInverseSymmetric, {1, 9, 2}},
      {Kind::List, {1, 2}},
  };
  for (const auto& [kind, arguments] : rows) {
    const VokTarnOperatorDescriptor row("op", kind, &type, &type, &type, &type, nullptr);
    EXPECT_EQ(row.ArrangeArguments(operands, 9), arguments) << row.GetKindName();
  }
  for (const auto& [name, kind, isCast] :
       {std::tuple("(t)", Kind::Unary, true), std::tuple("abs", Kind::Unary, false),
        std::tuple("()", Kind::Unary, false), std::tuple("(t", Kind::Unary, false),
        std::tuple("t)x)", Kind::Unary, false), std::tuple("(t)", Kind::InverseUnary, false)}) {
    const VokTarnOperatorDescriptor row(name, kind, &type, &type, &type, &type, nullptr);
    EXPECT_EQ(row.IsCast(), isCast) << name;
  }
}

// The value of a relation is its right operand in the text, whichever creator made the row: so chains hold.
TEST(OperatorTable, ARelationsValueIsItsRightOperand) {
  const LoadedModules modules;
  for (const auto& [op, left, right] : {std::tuple("<=", "[1, 3]", "[5, 9]"), std::tuple("<", "[1, 3]", "[5, 9]"),
                                        std::tuple(">=", "[11, 13]", "[5, 9]"), std::tuple(">", "[11, 13]", "[5, 9]"),
                                        std::tuple("<>", "[1, 3]", "[5, 9]"), std::tuple("=", "[4, 9]", "[5, 9]")}) {
    VokTarnNetwork network;
    const VokTarnValueId a = modules.Add(network, "enum int", left);
    const VokTarnValueId b = modules.Add(network, "enum int", right);
    const VokTarnValueId value = modules.Post(network, op, {a, b}, true);
    ASSERT_EQ(network.Propagate(), VokTarnNetwork::Outcome::Fixpoint);
    EXPECT_EQ(support::Show(network.GetValue(value)), "{ 5, 6, 7, 8, 9 }") << op;
  }
}

// Which operand a relation bounds from which side is fixed by the creators of its rows.
TEST(OperatorTable, OrderRelationsPointTheRightWay) {
  const LoadedModules modules;
  const struct {
    const char* fOperator;
    const char* fLeft;
    const char* fRight;
  } rows[] = {
      {"<=", "{ 1, 3, 5 }", "{ 2, 4, 5 }"},
      {"<", "{ 1, 3 }", "{ 2, 4, 5 }"},
      {">=", "{ 3, 5, 7 }", "{ 2, 4, 5 }"},
      {">", "{ 3, 5, 7 }", "{ 2, 4, 5 }"},
  };
  for (const auto& row : rows) {
    VokTarnNetwork network;
    const VokTarnValueId a = modules.Add(network, "enum int", "{1, 3, 5, 7}");
    const VokTarnValueId b = modules.Add(network, "enum int", "{2, 4, 5}");
    modules.Post(network, row.fOperator, {a, b});
    ASSERT_EQ(network.Propagate(), VokTarnNetwork::Outcome::Fixpoint);
    EXPECT_EQ(support::Show(network.GetValue(a)), row.fLeft) << row.fOperator;
    EXPECT_EQ(support::Show(network.GetValue(b)), row.fRight) << row.fOperator;
  }
}

}  // namespace
