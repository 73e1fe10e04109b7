#include <algorithm>
#include <array>
#include <ostream>
#include <sstream>

#include "framework/VokTarnOperatorDescriptor.h"
#include "tarn/ValueText.h"
#include "tarn/commands/Commands.h"

namespace tarn {
namespace {

constexpr std::size_t sColumns = 6;
using Row = std::array<std::string, sColumns>;

std::string GetName(const VokTarnObjectDescriptor* descriptor) {
  return descriptor == nullptr ? "-" : std::string(descriptor->GetName().View());
}

Row MakeRow(std::size_t number, const VokTarnOperatorDescriptor& op) {
  std::string arguments(1, '(');
  arguments += GetName(op.GetOperandType(0));
  if (op.GetOperandCount() == 2) {
    arguments += ", " + GetName(op.GetOperandType(1));
  }
  arguments += op.GetOperandCount() == 0 ? ", ...)" : ")";
  return {std::to_string(number),     GetName(&op), op.GetKindName(), arguments, GetName(op.GetResultType()),
          GetName(op.GetConstraint())};
}

// Numbers stand right, texts left in their columns.
void PrintRows(const std::vector<Row>& rows, std::ostream& out) {
  std::array<std::size_t, sColumns> widths{};
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < sColumns; ++i) {
      widths[i] = std::max(widths[i], row[i].size());
    }
  }
  for (const Row& row : rows) {
    out << "  " << std::string(widths[0] - row[0].size(), ' ') << row[0];
    for (std::size_t i = 1; i < sColumns; ++i) {
      out << "  " << row[i];
      if (i + 1 < sColumns) {
        out << std::string(widths[i] - row[i].size(), ' ');
      }
    }
    out << '\n';
  }
}

void PrintModule(const VokTarnModule& module, std::ostream& out) {
  out << "module " << module.GetName().View() << '\n';
  for (const VokTarnModule* needed : module.GetLoadedModules()) {
    out << "  needs " << needed->GetName().View() << '\n';
  }
  std::vector<Row> rows;
  for (const auto& descriptor : module.GetDescriptors()) {
    if (descriptor == nullptr || descriptor->IsDerivedFrom(VokTarnConstraintDescriptor::sIdent) != 0) {
      continue;
    }
    if (descriptor->IsDerivedFrom(VokTarnOperatorDescriptor::sIdent) != 0) {
      rows.push_back(MakeRow(rows.size() + 1, static_cast<const VokTarnOperatorDescriptor&>(*descriptor)));
      continue;
    }
    out << "  type " << descriptor->GetName().View();
    if (descriptor->GetParent() != nullptr) {
      out << ", a kind of " << descriptor->GetParent()->GetName().View();
    }
    out << (IsConcrete(descriptor.get()) ? "\n" : " (abstract)\n");
  }
  PrintRows(rows, out);
}

}  // namespace

int RunModules(Modules& modules, const std::optional<std::string>& name, std::ostream& out) {
  if (name) {
    PrintModule(modules.Open(*name), out);
    return Solved;
  }
  bool isFirst = true;
  for (const VokTarnModule* module : modules.GetManager().GetModules()) {
    out << (isFirst ? "" : "\n");
    isFirst = false;
    PrintModule(*module, out);
  }
  return Solved;
}

}  // namespace tarn
