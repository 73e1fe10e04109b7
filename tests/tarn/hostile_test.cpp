// Model texts and saved networks that nobody means well with: one message, with its place, for each.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "support/countedMemory.h"
#include "support/mutate.h"
#include "support/soak.h"
#include "tarn/Diagnostic.h"
#include "tarn/Session.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

// Reads a model as the program does. The message as it prints it, "" when there is none. Whether a statement can be
// reached by propagation is not the matter here.
std::string ReadModel(tarn::Modules& modules, const std::string& text) {
  const tarn::Source source("m", text);
  tarn::Session session(modules);
  try {
    session.Read(source);
    return "";
  } catch (const tarn::ModelError& error) {
    return tarn::FormatDiagnostic(source, error);
  } catch (const tarn::ProgramError& error) {
    return error.what();
  }
}

// What reading any of the texts below may take, all told.
constexpr std::size_t kMostMemory = 256U << 20;

std::size_t CountText(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

class HostileModels : public testing::Test {
 protected:
  HostileModels() { fModules.Open(tarn::Modules::sDefault); }

  // The message stands alone, names its place, shows no byte that a terminal obeys, and is no longer than a person
  // reads.
  std::string CheckMessage(const std::string& text) {
    const std::size_t before = support::sAllocatedBytes;
    std::string message = ReadModel(fModules, text);
    EXPECT_LE(support::sAllocatedBytes - before, kMostMemory);
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\n' && c != '\t'; };
    EXPECT_TRUE(std::none_of(message.begin(), message.end(), isControl)) << testing::PrintToString(message);
    EXPECT_LE(message.size(), 4000U) << message.substr(0, 500);
    EXPECT_EQ(CountText(message, ": error: "), message.empty() ? 0U : 1U) << message;
    return message;
  }

  tarn::Modules fModules;
};

std::string Repeat(const std::string& text, std::size_t times) {
  std::string result;
  for (std::size_t i = 0; i < times; ++i) {
    result += text;
  }
  return result;
}

std::vector<std::string> ReadExamples() {
  std::vector<std::string> texts;
  for (const char* name : {"send-more-money", "golomb-ruler-5", "party", "magic-square-3x3", "knapsack"}) {
    std::ifstream file(VOKTARN_SOURCE_DIR "/examples/" + std::string(name) + ".tarn");
    texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    EXPECT_FALSE(texts.back().empty()) << name;
  }
  return texts;
}

TEST_F(HostileModels, AreRefusedWithAPlaceOrRead) {
  const std::string deep(100000, '(');
  const std::string name(10U << 20, 'a');
  const std::string digits(5U << 20, '9');
  const struct {
    std::string fName;
    std::string fText;
    std::string fMessage;  // line:column and how it begins; "" for a model that is one
  } rows[] = {
      {"no text", "", ""},
      {"blanks", " \t\r\n\v\f", ""},
      {"a mark alone", "\xEF\xBB\xBF", ""},
      {"half a mark", "\xEF\xBB", "1:1 unexpected byte 0xEF"},
      {"a mark within", "x : int; \xEF\xBB\xBFx = 3;", "1:10 unexpected byte 0xEF"},
      {"other mark", "\xFF\xFEx : int;", "1:1 unexpected byte 0xFF"},
      {"carriage returns", "x : int;\r\nx = 3;\r\n", ""},
      {"old line ends", "// all\rx : int;", ""},
      {"a zero byte", std::string("x\0 : int;", 9), "1:2 unexpected byte 0x00"},
      {"zero in a domain", std::string("x : int 3\0;", 11), "1:10 unexpected text behind the domain"},
      {"an escape", "x \x1B[2J = 3;", "1:3 unexpected byte 0x1B"},
      {"a letter beyond", "\xC3\xA4 : int;", "1:1 unexpected byte 0xC3"},
      {"an overlong byte", "x\xC0\x80 : int;", "1:2 unexpected byte 0xC0"},
      {"a no-break space", "x :\xC2\xA0int;", "1:4 expected a type"},
      {"comment without end", "// no end", ""},
      {"block comment", "/* x */ x : int;", "1:1 expected an expression, found '/'"},
      {"long name", name + " : int; " + name + " = 3;", ""},
      {"long name unknown", name + " = 3;", "1:1 'a"},
      {"long type", "x : " + name + ";", "1:5 unknown type 'a"},
      {"long module", "use " + name + ";", "1:5 cannot open the module 'a"},
      {"long number", "x : int; x = " + digits + ";", "1:14 number out of range: '99"},
      {"long domain", "x : int " + digits + ";", "1:9 number out of range: '99"},
      {"long operator", name + " (3);", "1:1 unknown operator 'a"},
      {"long twins", name + ", " + name + " : int;", "1:10485763 'a"},
      {"many marks", Repeat(";", 1000000), ""},
      {"long line", "x : int;" + Repeat(" ", 5000000) + "y = 3;", "1:5000009 'y' is not declared"},
      {"many blanks", "x : enum int " + Repeat(" ", 5000000), "1:13 missing ';' at the end of the statement"},
      {"long sum", "x : int; x = 1" + Repeat(" + x", 100000) + ";", ""},
      {"long conjunction", "p : bool; p" + Repeat(" && p", 100000) + ";", ""},
      {"long remainder", "x : int; x = 1" + Repeat(" mod x", 20000) + ";", ""},
      {"long chain", "x : int; x" + Repeat(" <= x", 100000) + ";", ""},
      {"repeated members", "x : enum int {1" + Repeat(",1", 500000) + "};", ""},
      {"long table", "x : int; table ([x]" + Repeat(",[1]", 100000) + ");", ""},
      {"range of all", "x : enum int [-2147483648, 2147483647];", "1:15 number out of range: '-2147483648'"},
      {"range of all that is", "x : enum int [-2147483645, 2147483645];", "1:14 the domain is too large"},
      {"2^64", "x : int; x = 18446744073709551617;", "1:14 number out of range: '18446744073709551617'"},
      {"number beyond in a list", "x : enum int {1, 4294967297};", "1:18 number out of range: '4294967297'"},
      {"index beyond", "x : int; x = [x][4294967297];", "1:18 number out of range: '4294967297'"},
      {"a fraction", "x : int; x = 1.5;", "1:15 unexpected character '.'"},
      {"exponent", "x : int; x = 1e3;", "1:14 '1e3' is neither a number nor a name"},
      {"leading zeros", "x : int; x = 0000000007;", ""},
      {"coefficients", "x, y, z, u, v : int; 2147483645 * x + 2147483645 * y - 2147483645 * z + u + v = 0;", ""},
      {"deep parentheses", "x : int; x = " + deep, "1:1014 the expression is nested too deeply"},
      {"deep lists", "x : int; x = sum " + std::string(100000, '['), "1:1018 the expression is nested too deeply"},
      {"deep indices", "x : int; list l = [x]; x = " + Repeat("l[", 100000),
       "1:2030 the expression is nested too deeply"},
      {"deep domain", "x : enum int " + std::string(100000, '{') + ";", "1:100013 this '{' is never closed"},
      {"deep prefixes", "x : int; x = " + Repeat("abs ", 100000), "1:4014 the expression is nested too deeply"},
      {"deep powers", "x : int; x = " + Repeat("x^", 100000), "1:2016 the expression is nested too deeply"},
      {"deep casts", "x : int; x = " + Repeat("(int) ", 100000), "1:6014 the expression is nested too deeply"},
      {"deep calls", "x : int; x = " + Repeat("sum ([", 100000), "1:3019 the expression is nested too deeply"},
      {"deep implications", "p : bool; " + Repeat("p -> ", 100000), "1:5016 the expression is nested too deeply"},
      {"deep tables", "x : int; table " + deep, "1:17 expected a list, found '('"},
      {"no domain end", "x : enum int {1, 2", "1:19 missing ';' at the end of the statement"},
      {"no member", "x : enum int {1, };", "1:14 '{1, }' is not a domain of type 'enum int'"},
      {"no index", "x : int; x = [x][];", "1:18 expected an expression, found ']'"},
      {"no list", "x : int; x = sum;", "1:17 expected '(' or a list, found ';'"},
      {"no bracket", "x : int; list l = [x; x = 3;", "1:19 this '[' is never closed"},
      {"no equals", "list l [x];", "1:6 expected an operator or ';', found 'l'"},
      {"no objective", "minimize ;", "1:10 expected an expression, found ';'"},
      {"other closer", "x : int; x = (3];", "1:16 expected an operator or ')', found ']'"},
      {"range of one", "x : enum int [1];", "1:14 '[1]' is not a domain of type 'enum int'"},
      {"range of three", "x : enum int [1, 2, 3];", "1:14 '[1, 2, 3]' is not a domain of type 'enum int'"},
      {"comma", "x, : int;", "1:4 expected the name of a variable, found ':'"},
      {"list of itself", "list l = [l];", ""},
      {"a type as a value", "x : int; x = bool;", "1:14 expected an expression, found 'bool'"},
      {"unknown module", "use NoSuchModule;", "1:5 cannot open the module 'NoSuchModule': module"},
      {"module as a path", "use ../../etc/passwd;", "1:5 unexpected character '.'"},
  };
  for (const auto& row : rows) {
    std::string message = CheckMessage(row.fText);
    const std::string error = ": error:";
    message = message.empty() ? "" : message.replace(message.find(error), error.size(), "").substr(2, 200);
    EXPECT_EQ(message.empty(), row.fMessage.empty()) << row.fName << ": " << message;
    EXPECT_THAT(message, StartsWith(row.fMessage)) << row.fName;
  }
}

TEST_F(HostileModels, ListsOfListsStandForAsMuchAsTheLimit) {
  // a20 stands for 2^20 expressions, and to define it took 2^21 - 2 copies.
  std::string doubling = "x : enum int [1, 3]; list a0 = [x];";
  for (int i = 1; i <= 20; ++i) {
    const std::string before = "a" + std::to_string(i - 1);
    doubling += "list a" + std::to_string(i) + " = [" + before + ", " + before + "];";
  }
  EXPECT_EQ(CheckMessage(doubling + "all different ([a0, a0, 4]);"), "");
  EXPECT_THAT(CheckMessage(doubling + "sum [a0, a0, a0] = 3;"), HasSubstr("stand for too many expressions"));
  for (int i = 21; i < 200; ++i) {
    doubling += "list b" + std::to_string(i) + " = [a20, a20];";
  }
  EXPECT_THAT(CheckMessage(doubling), HasSubstr("the limit is 2097152"));
}

TEST_F(HostileModels, EveryPrefixOfAModelIsReadOrRefused) {
  for (const std::string& text : ReadExamples()) {
    for (std::size_t length = 0; length < text.size(); ++length) {
      CheckMessage(text.substr(0, length));
    }
  }
}

TEST_F(HostileModels, MutationsAreReadOrRefused) {
  const std::vector<std::string> seeds = ReadExamples();
  constexpr unsigned seed = 7;
  std::mt19937 random(seed);
  for (int round = 0; round < 5000 * support::SoakFactor(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round) + " of seed " + std::to_string(seed));
    CheckMessage(support::Mutate(seeds, random));
  }
}

}  // namespace
