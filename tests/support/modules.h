// The modules of the build tree, loaded through the module manager, with their vocabulary.
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "framework/VokTarnModuleManager.h"
#include "framework/VokTarnNetwork.h"
#include "framework/VokTarnOperatorTable.h"

namespace support {

class LoadedModules {
 public:
  explicit LoadedModules(const char* name = "VokFenEnumIntegers")
      : fModule(fManager.OpenModule(name)), fTable(fManager) {
    EXPECT_NE(fModule, nullptr) << fManager.GetError();
  }

  VokTarnModuleManager fManager;
  VokTarnModule* fModule;
  VokTarnOperatorTable fTable;

  VokTarnType Type(const char* name) const { return fTable.FindType(name); }

  // A new value with the domain that the text gives; undefined for an empty text.
  VokTarnValueId Add(VokTarnNetwork& network, const char* type, const std::string& domain) const {
    const VokTarnValueId id = network.AddValue(Type(type));
    if (!domain.empty()) {
      std::istringstream text(domain);
      network.Touch(id).InputValue(text);
      network.NoteChange(id);
      EXPECT_FALSE(text.fail()) << type << " " << domain;
    }
    return id;
  }

  // Posts `left op right`; returns the result's number, vokNoValue when `wantResult` is not set.
  VokTarnValueId Post(VokTarnNetwork& network, const char* op, std::vector<VokTarnValueId> operands,
                      bool wantResult = false) const {
    std::vector<VokTarnType> types;
    for (const VokTarnValueId id : operands) {
      types.push_back(network.GetType(id));
    }
    if (const auto* list = fTable.ChooseList(op, types)) {
      return fTable.Apply(network, {list, {}}, operands, vokNoValue, false);
    }
    const auto choice = fTable.Choose(op, types);
    EXPECT_TRUE(choice.has_value()) << op;
    return choice ? fTable.Apply(network, *choice, operands, vokNoValue, wantResult) : vokNoValue;
  }
};

inline std::string Show(const VokTarnAny& value) {
  std::ostringstream text;
  value.PrintOn(text);
  return text.str();
}

}  // namespace support
