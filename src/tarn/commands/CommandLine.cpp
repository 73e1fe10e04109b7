#include "tarn/commands/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace tarn {
namespace {

constexpr const char* sFile = "The model, or a saved network; - is the standard input";

void DefineOptions(CLI::App& app, CommandLine& line) {
  app.name("tarn");
  app.set_version_flag("--version", "tarn " TARN_VERSION);
  app.require_subcommand(1);
  app.fallthrough();
  app.add_option("-m,--module", line.fModules, "Open this module too (may be repeated)")
      ->allow_extra_args(false)
      ->type_name("NAME");
  app.add_option("-M,--module-path", line.fDirectories, "Look for modules here first (may be repeated)")
      ->allow_extra_args(false)
      ->type_name("DIR");
}

void DefineNarrow(CLI::App& app, CommandLine& line) {
  CLI::App* narrow = app.add_subcommand("narrow", "Print the domains that propagation leaves");
  narrow->add_option("FILE", line.fFile, sFile)->required()->type_name("");
  narrow->callback([&line] { line.fCommand = CommandLine::Command::Narrow; });
}

// Turns a time into a number of seconds, in place. Returns what is wrong with it, if anything.
std::string ReadDuration(std::string& text) {
  const bool isMilliseconds = text.ends_with("ms");
  std::string number = text;
  if (isMilliseconds) {
    number.resize(number.size() - 2);
  } else if (number.ends_with('s')) {
    number.pop_back();
  }
  double seconds = 0;
  if (!CLI::detail::lexical_cast(number, seconds) || !std::isfinite(seconds) || seconds < 0) {
    return "not a time such as 1.5, 1.5s or 200ms: " + text;
  }
  text = std::to_string(isMilliseconds ? seconds / 1000 : seconds);
  return {};
}

// Turns a size into a number of bytes, in place. Returns what is wrong with it, if anything.
std::string ReadSize(std::string& text) {
  constexpr std::string_view sUnits = "KMG";  // each 1024 times the one before
  const std::size_t unit = text.empty() ? std::string_view::npos : sUnits.find(text.back());
  const unsigned shift = unit == std::string_view::npos ? 0U : 10U * (static_cast<unsigned>(unit) + 1U);
  const char* const end = text.data() + text.size() - (shift == 0 ? 0 : 1);
  std::uint64_t size = 0;
  const auto result = std::from_chars(text.data(), end, size);
  if (result.ec != std::errc() || result.ptr != end || size > std::numeric_limits<std::uint64_t>::max() >> shift) {
    return "not a size such as 1000000, 512M or 2G: " + text;
  }
  text = std::to_string(size << shift);
  return {};
}

void DefineLimits(CLI::App& command, Limits& limits) {
  command.add_option("--time-limit", limits.fSeconds, "Stop after this time: 1.5, 1.5s or 200ms")
      ->type_name("TIME")
      ->transform(CLI::Validator(ReadDuration, ""));
  command.add_option("--memory-limit", limits.fBytes, "Stop when the memory in use is more: bytes, 512M or 2G")
      ->type_name("SIZE")
      ->transform(CLI::Validator(ReadSize, ""));
}

// An option whose value is one of some words.
template <class Choice, class Option>
void DefineChoice(CLI::App& command, const std::string& name, Option& choice, const std::string& help,
                  const std::vector<std::pair<std::string, Choice>>& words) {
  std::string list;
  for (const auto& [word, value] : words) {
    list += (list.empty() ? "" : "|") + word;
  }
  const auto read = [words, list](std::string& text) {
    for (const auto& [word, value] : words) {
      if (word == text) {
        text = std::to_string(static_cast<int>(value));
        return std::string();
      }
    }
    return "'" + text + "' is not one of " + list;
  };
  command.add_option(name, choice, help)->type_name(list)->transform(CLI::Validator(read, ""));
}

// Of the options of a search or of a FlatZinc problem, those that both have.
template <class Options>
void DefineRestartAndLimits(CLI::App& command, Options& options) {
  using Restart = VokTarnSearch::Restart;
  DefineChoice<Restart>(command, "--restart", options.fRestart, "When to begin the search again",
                        {{"luby", Restart::Luby}, {"none", Restart::None}});
  using Learning = VokTarnSearch::Learning;
  DefineChoice<Learning>(command, "--learn", options.fLearning, "Whether the search learns from its failures",
                         {{"auto", Learning::Auto}, {"on", Learning::On}, {"off", Learning::Off}});
  command.add_option("--node-limit", options.fNodeLimit, "Stop after N decisions")->type_name("N");
  command.add_option("--fail-limit", options.fFailLimit, "Stop after N failures")->type_name("N");
}

void DefineSearchOptions(CLI::App& solve, VokTarnSearch::Options& options) {
  options.fLearning = VokTarnSearch::Learning::Auto;
  using Variable = VokTarnSearch::VariableChoice;
  using Value = VokTarnSearch::ValueChoice;
  DefineChoice<Variable>(solve, "--var", options.fVariable, "Which open variable to split next",
                         {{"first-fail", Variable::FirstFail},
                          {"input-order", Variable::InputOrder},
                          {"most-constrained", Variable::MostConstrained},
                          {"weighted", Variable::Weighted}});
  DefineChoice<Value>(
      solve, "--val", options.fValue, "Which part of its domain to search first",
      {{"min", Value::Min}, {"max", Value::Max}, {"split", Value::Split}, {"split-max", Value::SplitMax}});
  solve.add_option("--seed", options.fSeed, "Other than 0: order equally ranked variables at random")->type_name("N");
  DefineRestartAndLimits(solve, options);
}

void DefineSolveOptions(CLI::App& solve, SolveOptions& options) {
  CLI::Option* all = solve.add_flag("-a,--all", options.fAll, "Find all solutions");
  solve.add_option("-n,--solution-limit", options.fCount, "Stop after N solutions")
      ->type_name("N")
      ->check(CLI::PositiveNumber)
      ->excludes(all);
  solve.add_flag("-s,--stats", options.fStatistics, "Print figures of the search to the standard error");
  DefineLimits(solve, options.fLimits);
  solve.add_flag("-q,--quiet", options.fQuiet, "Show no progress, and do not say what stopped the search");
  DefineSearchOptions(solve, options.fSearch);
}

void DefineSolve(CLI::App& app, CommandLine& line) {
  CLI::App* solve = app.add_subcommand("solve", "Search for solutions, or for the best one");
  solve->add_option("FILE", line.fFile, sFile)->required()->type_name("");
  DefineSolveOptions(*solve, line.fSolve);
  solve->add_flag("--json", line.fSolve.fJson, "Print a JSON object for each solution, and one for the result");
  solve->callback([&line] { line.fCommand = CommandLine::Command::Solve; });
}

void DefineSave(CLI::App& app, CommandLine& line) {
  CLI::App* save = app.add_subcommand("save", "Write the narrowed network to a file that narrow and solve read");
  save->add_option("FILE", line.fFile, sFile)->required()->type_name("");
  save->add_option("-o,--output", line.fOutput, "The file to write")->required()->type_name("FILE");
  save->callback([&line] { line.fCommand = CommandLine::Command::Save; });
}

void DefinePicture(CLI::App& picture, CommandLine& line) {
  picture.add_option("FILE", line.fFile, sFile)->required()->type_name("");
  picture
      .add_option("-o,--output", line.fOutput,
                  "The picture to write: a .svg, .png or .pdf made by graphviz, or a .dot; else DOT is printed")
      ->type_name("FILE");
}

void DefineGraph(CLI::App& app, CommandLine& line) {
  CLI::App* graph = app.add_subcommand("graph", "Draw the variables and the statements between them");
  DefinePicture(*graph, line);
  graph->add_flag("--declared", line.fGraph.fDeclared, "Show the domains as declared, not narrowed");
  graph->callback([&line] { line.fCommand = CommandLine::Command::Graph; });
}

void DefineTree(CLI::App& app, CommandLine& line) {
  CLI::App* tree = app.add_subcommand("tree", "Search as solve does, and draw the choices, failures and solutions");
  DefinePicture(*tree, line);
  tree->add_option("--max-nodes", line.fTree.fMaxNodes, "Draw N nodes, and triangles for what is below them")
      ->type_name("N")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  tree->add_flag("--collapse", line.fTree.fCollapse, "Draw a triangle for each part in which all has failed");
  DefineSolveOptions(*tree, line.fSolve);
  tree->callback([&line] { line.fCommand = CommandLine::Command::Tree; });
}

void DefineWhy(CLI::App& app, CommandLine& line) {
  CLI::App* why = app.add_subcommand("why", "Explain why something holds in every solution");
  why->add_option("FILE", line.fFile, "The model; - is the standard input")->required()->type_name("");
  why->add_option("FACT", line.fFact, "A variable related to a value, such as \"x <> 7\", or false")
      ->required()
      ->type_name("");
  DefineLimits(*why, line.fSolve.fLimits);
  why->footer("Exit codes: 0 explained, 1 not so in some solution, 2 bad input or usage, 3 stopped or undecided.");
  why->callback([&line] { line.fCommand = CommandLine::Command::Why; });
}

void DefineConflict(CLI::App& app, CommandLine& line) {
  CLI::App* conflict = app.add_subcommand("conflict", "Name statements that cannot hold together");
  conflict->add_option("FILE", line.fFile, "The model; - is the standard input")->required()->type_name("");
  DefineLimits(*conflict, line.fSolve.fLimits);
  conflict->footer(
      "Exit codes: 0 none of those named can be left out, 1 the model has a solution, 2 bad input or usage, 3 stopped "
      "or undecided.");
  conflict->callback([&line] { line.fCommand = CommandLine::Command::Conflict; });
}

void DefineFlatZinc(CLI::App& app, CommandLine& line) {
  CLI::App* fzn = app.add_subcommand("fzn", "Solve a FlatZinc problem, for MiniZinc");
  FlatZincOptions& options = line.fFlatZinc;
  fzn->add_option("FILE", line.fFile, "The problem; - is the standard input")->required()->type_name("");
  fzn->add_flag("-a,--all-solutions", options.fAll, "Print all solutions, with an objective each better one");
  fzn->add_flag("-i,--intermediate", options.fImproving, "Print each better solution as it is found");
  fzn->add_option("-n,--num-solutions", options.fCount, "Stop after N solutions, 0: all; 1 without -a")->type_name("N");
  fzn->add_flag("-s,--statistics", options.fStatistics, "Print figures of the search");
  fzn->add_flag("-v,--verbose", options.fVerbose, "Say on the standard error what is done");
  fzn->add_option("-t,--time-limit", options.fMilliseconds, "Stop after this time; 0: never")->type_name("MS");
  fzn->add_flag("-f,--free-search", options.fFree, "Search in another way than the problem says");
  fzn->add_option("-p,--parallel", options.fProcesses, "Search with N processes")->type_name("N");
  fzn->add_option("-r,--random-seed,--seed", options.fSeed, "For what is random in the search")->type_name("N");
  DefineRestartAndLimits(*fzn, options);
  fzn->footer("Exit codes: 0 answered, a stop included, 1 not a problem or not supported, 2 bad usage.");
  fzn->callback([&line] { line.fCommand = CommandLine::Command::FlatZinc; });
}

// Whether the arguments are those of the command fzn without its name: the program is called by the name that MiniZinc
// knows, or is given a problem and no command.
bool IsFlatZincCall(const CLI::App& app, int argc, const char* const* argv) {
  const std::string_view program = argc > 0 ? argv[0] : "";
  if (program.substr(program.rfind('/') + 1) == "fzn-tarn") {
    return true;
  }
  const auto isCommand = [&app](const char* argument) {
    return !app.get_subcommands([=](const CLI::App* command) { return command->check_name(argument); }).empty();
  };
  return argc > 1 && std::string_view(argv[argc - 1]).ends_with(".fzn") &&
         std::none_of(argv + 1, argv + argc, isCommand);
}

void DefineModules(CLI::App& app, CommandLine& line) {
  CLI::App* modules = app.add_subcommand("modules", "List the types and operators of the modules");
  modules->add_option("NAME", line.fModule, "Only this module")->type_name("");
  modules->callback([&line] { line.fCommand = CommandLine::Command::Modules; });
}

void DefineRepl(CLI::App& app, CommandLine& line) {
  CLI::App* repl = app.add_subcommand("repl", "Take statements one by one and show what each narrows");
  repl->add_option("FILE", line.fOpening, "A model to begin with, or a saved network")->type_name("");
  repl->callback([&line] { line.fCommand = CommandLine::Command::Repl; });
}

}  // namespace

std::optional<CommandLine> CommandLine::Parse(int argc, const char* const* argv, std::ostream& out, std::ostream& err,
                                              int& exitCode) {
  CommandLine line;
  CLI::App app("Solves constraint models over the domain types that modules publish.");
  DefineOptions(app, line);
  DefineNarrow(app, line);
  DefineSolve(app, line);
  DefineSave(app, line);
  DefineGraph(app, line);
  DefineTree(app, line);
  DefineWhy(app, line);
  DefineConflict(app, line);
  DefineFlatZinc(app, line);
  DefineModules(app, line);
  DefineRepl(app, line);
  app.footer("Exit codes: 0 solved, 1 no solution, 2 bad input or usage, 3 stopped by a limit or undecided.");
  std::vector<const char*> arguments(argv, argv + argc);
  if (IsFlatZincCall(app, argc, argv)) {
    arguments.insert(arguments.begin() + 1, "fzn");
  }
  try {
    app.parse(static_cast<int>(arguments.size()), arguments.data());
  } catch (const CLI::ParseError& error) {
    exitCode = app.exit(error, out, err) == 0 ? Solved : BadInput;
    if (exitCode != Solved && arguments.size() > 1 && std::string_view(arguments[1]) == "fzn") {
      err << "Usage: tarn fzn [-a] [-i] [-n N] [-s] [-v] [-t MS] [-f] [-p N] [-r SEED] [--restart luby|none]"
             " [--learn auto|on|off] [--node-limit N] [--fail-limit N] FILE\n";
    }
    return std::nullopt;
  }
  return line;
}

}  // namespace tarn
