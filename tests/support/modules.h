// The modules of the build tree, loaded through the module manager, with their vocabulary.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "framework/VokTarnConstraint.h"
#include "framework/VokTarnModuleManager.h"
#include "framework/VokTarnNetwork.h"
#include "framework/VokTarnObjectEnvironment.h"
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

  // Posts the class VokTarn..Constraint; which takes them.
  const VokTarnConstraint* PostClass(VokTarnNetwork& network, const std::string& name,
                                     std::span<const VokTarnValueId> ids, std::span<const VokLong> constants) {
    const auto* type = dynamic_cast<const VokTarnConstraintDescriptor*>(
        fManager.OpenModule("VokFenAbstractTypes")->FindDescriptor("VokTarn" + name + "Constraint"));
    EXPECT_NE(type, nullptr) << name;
    std::unique_ptr<VokTarnConstraint> made(type->Create(ids, VokTarnForm::Plain, constants));
    const VokTarnConstraint* const constraint = made.get();
    network.AddConstraint(std::move(made));
    return constraint;
  }

  // Whether the class says of these values that it holds.
  bool IsSatisfied(const std::string& name, std::span<const std::int64_t> values, std::span<const VokLong> constants) {
    VokTarnNetwork network;
    std::vector<VokTarnValueId> ids;
    for (const std::int64_t v : values) {
      ids.push_back(Add(network, "int", std::to_string(v)));
    }
    return PostClass(network, name, ids, constants)->IsSatisfied(VokTarnObjectEnvironment(network, ids));
  }
};

inline std::string Show(const VokTarnAny& value) {
  std::ostringstream text;
  value.PrintOn(text);
  return text.str();
}

}  // namespace support
