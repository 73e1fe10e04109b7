// The solver inside another program: a network from a model text, and one by calls.
#include <array>
#include <iostream>
#include <sstream>

#include "framework/VokTarnSearch.h"
#include "tarn/Diagnostic.h"
#include "tarn/Session.h"

namespace {

// Prints the domains that propagation leaves, then every solution.
void Solve(VokTarnNetwork& network, const std::vector<VokTarnValueId>& variables) {
  const auto print = [&] {
    const char* separator = "";
    for (const VokTarnValueId id : variables) {
      network.GetValue(id).PrintOn(std::cout << separator << network.GetName(id) << " = ");
      separator = ", ";
    }
    std::cout << '\n';
  };
  network.Propagate();
  print();
  VokTarnSearch search(network, variables);
  while (search.Next() == VokTarnSearch::Status::Solution) {
    print();
  }
}

void SolveText(tarn::Modules& modules) {
  const tarn::Source source("triangle", "a, b, c : enum int [1, 13]; a < b; a * a + b * b = c * c;");
  tarn::Session session(modules);
  try {
    session.Read(source);
  } catch (const tarn::ModelError& error) {
    std::cerr << tarn::FormatDiagnostic(source, error) << '\n';
    return;
  }
  Solve(session.GetNetwork(), session.GetVariables());
}

VokTarnValueId AddVariable(VokTarnNetwork& network, VokTarnType type, const char* name, const char* domain) {
  const VokTarnValueId id = network.AddValue(type, name);
  std::istringstream text(domain);
  network.Touch(id).InputValue(text);
  network.NoteChange(id);
  return id;
}

void SolveCalls(const VokTarnOperatorTable& table) {
  const VokTarnType type = table.FindType("enum int");
  VokTarnNetwork network;
  const std::array operands{AddVariable(network, type, "x", "{1, 2, 7}"), AddVariable(network, type, "y", "{2, 3}")};
  if (const auto less = table.Choose("<", std::array{type, type})) {
    table.Apply(network, *less, operands, vokNoValue, false);
  }
  Solve(network, {operands.begin(), operands.end()});
}

}  // namespace

int main() {
  tarn::Modules modules;
  try {
    modules.Open(tarn::Modules::sDefault);
    SolveText(modules);
    SolveCalls(modules.GetTable());
  } catch (const tarn::ProgramError& error) {
    std::cerr << error.what() << '\n';
    return 2;
  }
}
