#include "flatzinc/Parser.h"

#include <gtest/gtest.h>

#include "flatzinc/Checker.h"
#include "flatzinc/sets.h"
#include "flatzinc/solutionText.h"

namespace {

// A problem in one line each: domains, constraints with their arguments, outputs, the solve item.
class Writer {
 public:
  explicit Writer(const fzn::Model& model) : fModel(model) {}

  std::string Write() const {
    std::string text;
    for (const fzn::Variable& variable : fModel.fVariables) {
      text += variable.fName + ":" + (variable.fIsBounded ? fzn::ToText(variable.fDomain) : "int") +
              (variable.fIsTruth ? "?" : "") + (variable.fIsDefined ? "d" : "") + " ";
    }
    for (const fzn::Constraint& constraint : fModel.fConstraints) {
      text += WriteCall(fModel.GetName(constraint), fModel.GetArguments(constraint)) + " ";
    }
    for (const fzn::Argument& annotation : fModel.fSolve.fAnnotations) {
      text += "::" + Write(annotation) + " ";
    }
    const fzn::Solve& solve = fModel.fSolve;
    return text + (solve.fGoal == fzn::Solve::Goal::Satisfy ? "sat" : "opt " + Write(solve.fObjective));
  }

 private:
  using Kind = fzn::Argument::Kind;

  std::string Write(const fzn::Term& term) const {
    return term.fIsVariable ? fModel.fVariables[static_cast<std::size_t>(term.fNumber)].fName
                            : std::to_string(term.fNumber);
  }
  std::string WriteCall(std::string_view name, std::span<const fzn::Argument> arguments) const {
    return std::string(name) + "(" + WriteList(arguments, [this](const auto& a) { return Write(a); }) + ")";
  }
  std::string Write(const fzn::Argument& a) const {
    const auto place = static_cast<std::size_t>(a.fNumber);
    switch (a.fKind) {
      case Kind::Array:
        return "[" + WriteList(fModel.GetTerms(a), [this](const auto& t) { return Write(t); }) + "]";
      case Kind::OneSet:
        return fzn::ToText(fModel.fSets[place]);
      case Kind::Sets:
        return "[" + WriteList(std::span(fModel.fSets).subspan(place, a.fCount), fzn::ToText) + "]";
      case Kind::Text:
        return fModel.fTexts[place];
      case Kind::Call:
        return WriteCall(fModel.GetName(fModel.fCalls[place]), fModel.GetArguments(fModel.fCalls[place]));
      case Kind::List:
        return "<" +
               WriteList(std::span(fModel.fArguments).subspan(place, a.fCount),
                         [this](const auto& x) { return Write(x); }) +
               ">";
      case Kind::Float:
        return std::to_string(a.GetFloat());
      default:
        return Write(fzn::Term{a.fKind == Kind::Variable, a.fNumber});
    }
  }
  template <class List, class Show>
  static std::string WriteList(const List& list, Show show) {
    std::string text;
    for (const auto& member : list) {
      text += (text.empty() ? "" : ",") + show(member);
    }
    return text;
  }

  const fzn::Model& fModel;
};

struct Row {
  std::string fText;
  std::string fExpected;  // what is read, or the message
};

std::string Read(const std::string& text) {
  fzn::ErrorList errors("f");
  try {
    const fzn::Model model = fzn::Parse(text, errors);
    const fzn::Checker checker(model, errors);
    return errors.IsEmpty() ? Writer(model).Write() : errors.GetText();
  } catch (const fzn::InputError& error) {
    return error.what();
  }
}

TEST(Parser, ReadsWhatMiniZincWrites) {
  const Row rows[] = {
      {"predicate p(var int: x, array [int] of var bool: y);solve  satisfy;", "sat"},
      {"var 0..9: X_1_::output_var;var bool: b ::var_is_introduced :: odd(1,[x(2)]) :: is_defined_var;% c\nsolve "
       "minimize X_1_;",
       "X_1_:0..9 b:0..1?d opt X_1_"},
      {"var {7,-1,3,2}: x; var int: y:: is_defined_var; var 2..6: z = 5; var 3..2: e; solve satisfy;",
       "x:{-1,2,3,7} y:intd z:5..5 e:1..0 sat"},
      {"var 0..9: x; var 3..20: y = x; int: n = -0x1F; constraint int_le(y,n); constraint int_le(0o17,-0);solve "
       "satisfy;",
       "x:3..9 int_le(x,-31) int_le(15,0) sat"},
      {"var bool: p; array [1..2] of var bool: a = [p,true]; array [1..0] of int: e = [];"
       "constraint bool_clause(a,e) :: defines_var(p) :: mzn_path(\"a;)(\\\"\"); constraint bool_clause([],[p,p]);"
       "solve maximize 3;",
       "p:0..1? bool_clause([p,1],[]) bool_clause([],[p,p]) opt 3"},
      {"set of int: S = {3,1}; array [1..2] of set of int: T = [S,1..0]; var 0..1: x; constraint set_in(x,S);"
       "constraint set_in(x,1..5);solve :: a(T,[S]) satisfy;",
       "x:0..1 set_in(x,{1,3}) set_in(x,1..5) ::a([{1,3},1..0],[{1,3}]) sat"},
      {"var 0..1: x; array [1..1] of var int: q = [x];"
       "solve :: "
       "seq_search([int_search(q,first_fail,indomain_min,complete),int_search([x,4],input_order,outdomain_max)])"
       ":: restart_geometric(1.5,100) :: none :: s(\"t\") :: u([]) minimize x;",
       "x:0..1 ::seq_search(<int_search([x],first_fail,indomain_min,complete),int_search([x,4],input_order,"
       "outdomain_max)>) ::restart_geometric(1.500000,100) ::none ::s(t) ::u([]) opt x"},
      {"var -9223372036854775808..9223372036854775807: x; solve satisfy;",
       "x:-9223372036854775808..9223372036854775807 sat"},
      {"float: f = 1.5; array [1..1] of float: g = [1e3]; solve satisfy;", "sat"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Read(row.fText), row.fExpected) << row.fText;
  }
}

TEST(Parser, SaysWhereAndWhatWasExpected) {
  const std::string deep(200, '[');
  const Row rows[] = {
      {"", "f:1: expected a declaration, a constraint or the solve item, not the end of the file"},
      {"var 1..3: x;\n\nsolve satisfy", "f:3: expected ';', not the end of the file"},
      {"solve satisfy; var 1..2: x;", "f:1: expected the end of the file after the solve item, not 'var'"},
      {"var 1...3: x;", "f:1: expected a name, a number, a string or a symbol, not '.'"},
      {"var 1..9223372036854775808: x;", "f:1: expected an integer of 64 bits, not 9223372036854775808"},
      {"var 1..0x: x;", "f:1: expected a digit after '0x'"},
      {"var 1..2 x;", "f:1: expected ':', not 'x'"},
      {"var 1..2: x; var 1..2: x;", "f:1: 'x' is declared already"},
      {"constraint int_le(x,1);", "f:1: expected a declared name, not 'x'"},
      {"constraint int_le(1,2;", "f:1: expected ')', not ';'"},
      {"constraint int_le(1,2) :: a(;", "f:1: expected ')', not ';'"},
      {"array [1..2] of int: a = [1];", "f:1: expected 1 members to have the index set 1..1"},
      {"array [1..2] of int: a = [1,true];", "f:1: expected members of one type: integers, truth values or sets"},
      {"array [1..1] of bool: a = [1];", "f:1: expected a value of the declared type"},
      {"var 1..2: x; int: y = x;", "f:1: expected a constant"},
      {"var bool: x; solve minimize x;", "f:1: expected an integer as the objective before this, not ';'"},
      {"solve :: \"", "f:1: expected the end of the string"},
      {"solve :: a(" + deep, "f:1: expected annotations of at most 100 levels"},
      {"constraint int_le(1,\"x\");", "f:1: expected a value, not 'x'"},
      // What is not supported, all at once.
      {"var float: x; var 1.0..2.0: y;\narray [1..1] of var set of 1..2: z = [a];\nvar set of {1,2}: s;"
       "constraint float_le(x,2.0); constraint float_le(y,x);\nconstraint no(1); constraint no(2,{});"
       "constraint int_le([1],2); solve minimize x;",
       "f:1: float variables are not supported\nf:1: float variables are not supported\n"
       "f:2: set variables are not supported\nf:3: set variables are not supported\n"
       "f:3: constraint float_le/2 is not supported\nf:4: float objectives are not supported\n"
       "f:4: constraint no/1 is not supported\nf:4: constraint no/2 is not supported\n"
       "f:4: expected an integer as argument 1 of int_le\n"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Read(row.fText), row.fExpected) << row.fText;
  }
}

TEST(Parser, SolutionsArePrintedAsDeclared) {
  fzn::ErrorList errors("f");
  const fzn::Model model = fzn::Parse(
      "var 1..9: x::output_var; var bool: p::output_var; var 1..9: y;"
      "array [1..4] of var int: m::output_array([0..1,1..2]) = [x,y,7,x];"
      "array [1..2] of var bool: b::output_array([1..2]) = [p,false];"
      "array [1..0] of var int: e::output_array([1..0]) = []; solve satisfy;",
      errors);
  const std::int64_t values[] = {4, 1, -2};
  EXPECT_EQ(fzn::FormatSolution(model, values),
            "x = 4;\np = true;\nm = array2d(0..1, 1..2, [4,-2,7,4]);\nb = array1d(1..2, [true,false]);\n"
            "e = array1d(1..0, []);\n----------\n");
}

}  // namespace
