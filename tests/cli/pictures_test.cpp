#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>

#include "cli/runTarn.h"

namespace {

using testing::HasSubstr;
using testing::Not;

// A directory of its own for each test, to see what a command leaves there.
class Pictures : public testing::Test {
 protected:
  Pictures() {
    char name[] = "/tmp/voktarn_test_XXXXXX";
    fDirectory = mkdtemp(name);
  }
  ~Pictures() override { std::filesystem::remove_all(fDirectory); }

  bool IsDirectoryEmpty() const { return std::filesystem::is_empty(fDirectory); }

  std::filesystem::path fDirectory;
};

TEST_F(Pictures, AGraphShowsVariablesAndStatements) {
  const std::string model =
      "x, y : enum int [1, 4];\nz : enum int [0, 1];\nx < y; // less\nz = 1; x <> y;\n"
      "x /\\ y // the smaller\n + z <= 2;\nmaximize y;\n";
  const ProgramResult result = RunModel("graph", model);
  EXPECT_EQ(result.fExitCode, 0);
  const std::string body = result.fOut.substr(result.fOut.find("  v0"));
  EXPECT_EQ(body, R"dot(  v0 [label="x\n1..3", tooltip="x : enum int"];
  v1 [label="y\n2..4", tooltip="y : enum int"];
  v2 [label="z\n1", tooltip="z : enum int", fillcolor="#b7e1b0"];
  s2 [label="x < y", tooltip="line 3: x < y", fontsize=10, shape=plain, fillcolor="white"];
  s2 -- v0 [len=0.6];
  s2 -- v1 [len=0.6];
  s3 [label="4: z = 1", tooltip="line 4: z = 1", fontsize=10, shape=box, margin="0.08,0.04", height=0.3, fillcolor="#f2f2f2"];
  s3 -- v2;
  s4 [label="<>", tooltip="line 4: x <> y", fontsize=10, shape=plain, fillcolor="white"];
  s4 -- v0 [len=0.6];
  s4 -- v1 [len=0.6];
  s5 [label="5: x /\\ y + z <= 2", tooltip="line 5: x /\\ y + z <= 2", fontsize=10, shape=box, margin="0.08,0.04", height=0.3, fillcolor="#f2f2f2"];
  s5 -- v0;
  s5 -- v1;
  s5 -- v2;
  s6 [label="7: maximize y", tooltip="line 7: maximize y", fontsize=10, shape=box, margin="0.08,0.04", height=0.3, fillcolor="#ffe08a"];
  s6 -- v1;
}
)dot");
  EXPECT_THAT(RunModel("graph", model, {"--declared"}).fOut, HasSubstr(R"(v0 [label="x\n1..4", )"));
}

TEST_F(Pictures, AGraphShowsDomainsInFewCharacters) {
  const std::pair<const char*, const char*> rows[] = {
      {"enum int {1, 2, 3, 7, 9, 10}", "1..3, 7, 9, 10"},
      {"enum int {1, 3, 5, 7, 9, 11}", "1, 3, 5, 7, …, 11"},
      {"enum int {1, 3, 5, 7, 9}", "1, 3, 5, 7, 9"},
      {"interval int [-2147483644, 2147483644]", "-2147483644..2147483644"},
      {"interval int", "any value"},
      {"bool", "any value"},
      {"bool true", "1"},
      {"enum int Nil", "no value"},
  };
  for (const auto& [domain, text] : rows) {
    EXPECT_THAT(RunModel("graph", std::string("x : ") + domain + ";").fOut,
                HasSubstr(std::string("label=\"x\\n") + text + "\""));
  }
}

TEST_F(Pictures, AGraphShowsWhereNarrowingFailed) {
  const ProgramResult result = RunModel("graph", "x, y : enum int [1, 3]; x = 2; y + x = y + 1;");
  EXPECT_EQ(result.fExitCode, 0);
  EXPECT_THAT(result.fOut, HasSubstr(R"(s2 [label="y + x = y + 1")"));
  EXPECT_THAT(result.fOut, HasSubstr(R"(shape=plain, fillcolor="#f28b82")"));
}

TEST_F(Pictures, ATreeShowsChoicesFailuresAndSolutions) {
  const ProgramResult result =
      RunModel("tree", "x, y : enum int [1, 3]; p : bool; p == (x * y == 3); p; x <> y;", {"--val", "min"});
  EXPECT_EQ(result.fExitCode, 0);
  EXPECT_EQ(result.fOut.substr(result.fOut.find("  label=\"")), R"dot(  label="2 nodes, 0 failures, 1 solution";
  n0 [shape=circle, width=0.12, fillcolor="#6fa8dc"];
  n1 [shape=diamond, width=0.22, height=0.22, fillcolor="#6aa84f", tooltip="x = 1\ny = 3\np = 1"];
  n0 -> n1 [label=" x = 1 "];
  t1 [shape=plain, style="", label="x = 1\ny = 3\np = 1"];
  n1 -> t1 [style=invis];
  r0 [shape=point, color="#c0c0c0", tooltip="not searched"];
  n0 -> r0 [style=dashed];
}
)dot");
  const std::string all = RunModel("tree", "x : enum int [1, 9]; x * x <> 4;", {"-a", "--val", "min"}).fOut;
  EXPECT_THAT(all, HasSubstr("label=\" x <> 1 \""));
  EXPECT_THAT(all, Not(HasSubstr("not searched")));
}

// What the nodes of a tree show in all: as many as it says of itself.
struct Totals {
  std::size_t fNodes = 0, fFailures = 0, fSolutions = 0, fDrawn = 0;
};

Totals Count(const std::string& dot) {
  Totals totals;
  const std::regex count(R"re(shape=triangle.*label="(\d+) nodes?\\n(\d+) failures?(\\n(\d+))?)re");
  for (std::sregex_iterator match(dot.begin(), dot.end(), count), end; match != end; ++match) {
    totals.fNodes += std::stoul((*match)[1]) - 1;
    totals.fFailures += std::stoul((*match)[2]);
    totals.fSolutions += (*match)[4].matched ? std::stoul((*match)[4]) : 0;
  }
  totals.fDrawn = 1 + CountText(dot, "[label=\" ");
  totals.fNodes += totals.fDrawn;
  totals.fFailures += CountText(dot, "shape=square");
  totals.fSolutions += CountText(dot, "shape=diamond");
  return totals;
}

TEST_F(Pictures, ATreeLosesNoNode) {
  for (const char* example : {"queens-8", "magic-square-3x3", "party", "golomb-ruler-5"}) {
    const std::string path = std::string(VOKTARN_SOURCE_DIR "/examples/") + example + ".tarn";
    const std::size_t solutions = CountText(RunTarn({"solve", "-a", path}).fOut, "----------\n");
    const Totals whole = Count(RunTarn({"tree", "-a", path, "--max-nodes", "1000000"}).fOut);
    EXPECT_EQ(whole.fSolutions, solutions) << example;
    EXPECT_EQ(whole.fNodes, 2 * (whole.fFailures + whole.fSolutions) - 1) << example;
    for (const std::vector<std::string>& options : {std::vector<std::string>{"--max-nodes", "1"},
                                                    {"--max-nodes", "20"},
                                                    {"--collapse"},
                                                    {"--max-nodes", "20", "--collapse"}}) {
      std::vector<std::string> arguments{"tree", "-a", path};
      arguments.insert(arguments.end(), options.begin(), options.end());
      const Totals totals = Count(RunTarn(arguments).fOut);
      EXPECT_EQ(totals.fNodes, whole.fNodes) << example << options.back();
      EXPECT_EQ(totals.fFailures, whole.fFailures) << example << options.back();
      EXPECT_EQ(totals.fSolutions, whole.fSolutions) << example << options.back();
      EXPECT_LE(totals.fDrawn, options[0] == "--max-nodes" ? 60U : whole.fNodes) << example << options.back();
    }
  }
}

TEST_F(Pictures, ATreeShowsWhereTheSearchStopped) {
  const std::string pigeons = "a, b, c, d : enum int [1, 3]; a<>b; a<>c; a<>d; b<>c; b<>d; c<>d;";
  const ProgramResult failed = RunModel("tree", pigeons, {"--collapse"});
  EXPECT_EQ(failed.fExitCode, 1);
  EXPECT_EQ(Count(failed.fOut).fDrawn, 1U);
  EXPECT_THAT(failed.fOut, HasSubstr("triangle, fillcolor=\"#e06666\""));
  const ProgramResult stopped = RunModel("tree", pigeons, {"--collapse", "--node-limit", "1"});
  EXPECT_EQ(stopped.fExitCode, 3);
  EXPECT_THAT(stopped.fOut, HasSubstr("stopped here"));
  EXPECT_THAT(RunModel("tree", pigeons, {"--max-nodes", "1", "--node-limit", "2"}).fOut,
              HasSubstr("triangle, fillcolor=\"#c0c0c0\""));
  const ProgramResult undecided = RunModel("tree", "x : interval int; x <> 3;");
  EXPECT_EQ(undecided.fExitCode, 3);
  EXPECT_THAT(undecided.fOut, HasSubstr("tooltip=\"undecided\""));
  EXPECT_THAT(undecided.fErr, HasSubstr("unbounded"));
}

TEST_F(Pictures, GraphvizTakesEveryExample) {
  if (RunProgram("/usr/bin/env", {"dot", "-V"}).fExitCode != 0) {
    GTEST_SKIP() << "graphviz is not installed";
  }
  for (const auto& entry : std::filesystem::directory_iterator(VOKTARN_SOURCE_DIR "/examples")) {
    if (entry.path().extension() != ".tarn") {
      continue;
    }
    for (const std::string command : {"graph", "tree"}) {
      const std::string picture = fDirectory / (entry.path().stem().string() + "-" + command + ".svg");
      const ProgramResult result = RunTarn({command, entry.path(), "-o", picture});
      EXPECT_EQ(result.fExitCode, 0) << picture;
      EXPECT_EQ(result.fOut + result.fErr, "") << picture;
      std::ifstream file(picture);
      const std::string svg{std::istreambuf_iterator<char>(file), {}};
      EXPECT_THAT(svg, testing::AllOf(testing::StartsWith("<?xml"), testing::EndsWith("</svg>\n"))) << picture;
    }
  }
}

TEST_F(Pictures, AFailureLeavesNothing) {
  const TemporaryFile model("x : enum int [1, 3];");
  const std::string svg = fDirectory / "x.svg";
  const ProgramResult missing =
      RunProgram("/usr/bin/env", {"PATH=/nonexistent", VOKTARN_BIN_DIR "/tarn", "graph", model.GetPath(), "-o", svg});
  EXPECT_EQ(missing.fExitCode, 2);
  EXPECT_THAT(missing.fErr, HasSubstr("the program 'dot' was not found; it is in the Debian package graphviz"));
  const std::string nowhere = fDirectory / "missing" / "x.dot";
  const std::pair<std::string, const char*> rows[] = {
      {nowhere, "error: cannot write the file: No such file or directory"},
      {fDirectory, "error: the name of a picture must end in .dot, .svg, .png or .pdf"},
      {"/dev/null.svg/x.svg", "error: cannot write the file"},
  };
  for (const auto& [path, message] : rows) {
    for (const char* command : {"graph", "tree"}) {
      const ProgramResult result = RunTarn({command, model.GetPath(), "-o", path});
      EXPECT_EQ(result.fExitCode, 2) << path;
      EXPECT_THAT(result.fErr, HasSubstr(message));
    }
  }
  EXPECT_TRUE(IsDirectoryEmpty());
  const std::string dot = fDirectory / "x.dot";
  EXPECT_EQ(RunTarn({"graph", model.GetPath(), "-o", dot}).fOut, "");
  std::ifstream file(dot);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), RunTarn({"graph", model.GetPath()}).fOut);
}

}  // namespace
