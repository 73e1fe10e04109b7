// The module as the framework meets it: entry point, published type and operators.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <regex>
#include <set>
#include <sstream>

#include "framework/VokStreamableClass.h"
#include "framework/VokTarnModule.h"
#include "framework/VokTarnModuleManager.h"
#include "framework/VokTarnOperatorDescriptor.h"
#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "module/VokFenEnumInteger_Descriptor.h"
#include "numbers/VokFenSingleBoolean.h"

namespace {

const std::string kLibrary = std::string(VOKTARN_BIN_DIR) + "/libVokFenEnumIntegers.so";

// Taken before main: the state of the library between its loading and its entry point.
const VokULong kLimitAtLoad = VokFenEnumInteger::sMAX_CARD;
const bool kPublishedAtLoad = VokFenEnumInteger().GetDescriptor() != nullptr;

using EntryPoint = int (*)(VokTarnModule*, VokTarnModuleManager*);

void* FindSymbol(const char* name) {
  static void* const library = dlopen(kLibrary.c_str(), RTLD_NOW);
  return library == nullptr ? nullptr : dlsym(library, name);
}

EntryPoint FindEntryPoint() {
  return reinterpret_cast<EntryPoint>(FindSymbol("InitModule"));
}

// The letter that stands for a type in the expected rows.
std::string Letter(VokTarnType type) {
  return type == nullptr                              ? ""
         : type == VokFenEnumInteger::sDescriptor     ? "E"
         : type == VokFenSingleInteger::sDescriptor   ? "S"
         : type == VokFenIntervalInteger::sDescriptor ? "V"
         : type == VokFenSingleBoolean::sDescriptor   ? "B"
         : type == VokTarnInteger::sDescriptor        ? "I"
                                                      : "?";
}

std::string Describe(const VokTarnOperatorDescriptor& row) {
  return std::string(row.GetName().Text()) + ", " + row.GetKindName() + ", " +
         (row.GetConstraint() == nullptr ? "none" : row.GetConstraint()->GetName().Text()) + ":";
}

std::string Types(const VokTarnOperatorDescriptor& row) {
  return Letter(row.GetOperandType(0)) + (row.GetOperandCount() > 1 ? Letter(row.GetOperandType(1)) : "") +
         Letter(row.GetResultType()) + Letter(row.GetWorkingType());
}

// The rows in their order, each run of one operator, kind and constraint with the types of its rows.
const char* const kOperators =
    "+, binary, VokTarnAdditionConstraint: SEE ESE EEE EIE IEE; "
    "*, binary, VokTarnMultiplicationConstraint: SEE ESE EEE EIE IEE; "
    "^, binary, VokTarnPowerConstraint: SEE ESE EEE; =, binary, VokTarnEqualTernaryConstraint: SEE ESE EEE EIE IEE; "
    "<>, binary, VokTarnUnequalTernaryConstraint: SEE ESE EEE EIE IEE; "
    ">=, binary, VokTarnLessOrEqualTernaryConstraint: SEE ESE EEE EIE IEE; "
    "/\\, binary, VokTarnMinimumConstraint: SEE ESE EEE EIE IEE; "
    "\\/, binary, VokTarnMaximumConstraint: SEE ESE EEE EIE IEE; "
    ">, binary, VokTarnLessTernaryConstraint: SEE ESE EEE EIE IEE; "
    "=, binary, VokTarnEqualTernaryConstraint: VEE EVE; "
    "<=, symmetric binary, VokTarnLessOrEqualTernaryConstraint: SEE ESE EEE; "
    "<, symmetric binary, VokTarnLessTernaryConstraint: SEE ESE EEE; "
    "-, first inverse binary, VokTarnAdditionConstraint: SEEE ESEE EEEE; "
    "/, first inverse binary, VokTarnMultiplicationConstraint: SEEE ESEE EEEE; "
    "-, unary, VokTarnNumberNegationConstraint: EE; sign, inverse unary, VokTarnSignumConstraint: EEE; "
    "abs, unary, VokTarnAbsoluteConstraint: EE; next, unary, VokTarnNextConstraint: EE; "
    "(interval int), unary, VokTarnEqualConstraint: VE; prev, inverse unary, VokTarnNextConstraint: EEE; "
    "==, second inverse binary, VokTarnBooleanEqualConstraint: SEBE ESBE VEBE EVBE EEBE; "
    ">>, second inverse binary, VokTarnBooleanLessConstraint: SEBE ESBE VEBE EVBE EEBE; "
    ">==, second inverse binary, VokTarnBooleanLessOrEqualConstraint: SEBE ESBE VEBE EVBE EEBE; "
    "<<, second inverse symmetric binary, VokTarnBooleanLessConstraint: SEBE ESBE VEBE EVBE EEBE; "
    "<==, second inverse symmetric binary, VokTarnBooleanLessOrEqualConstraint: SEBE ESBE VEBE EVBE EEBE; "
    "mod, binary, VokTarnRemainderConstraint: SEE ESE EEE EIE IEE; ";

TEST(EnumModule, EntryPointRefusesNullAndTouchesNothing) {
  const EntryPoint initModule = FindEntryPoint();
  ASSERT_NE(initModule, nullptr) << dlerror();
  VokTarnModule module("refused");
  VokTarnModuleManager manager;
  EXPECT_EQ(initModule(nullptr, &manager), 0);
  EXPECT_EQ(initModule(&module, nullptr), 0);
  EXPECT_TRUE(module.GetLoadedModules().empty());
  EXPECT_TRUE(module.GetDescriptors().empty());
  EXPECT_TRUE(manager.GetModules().empty());
  using Marker = int (*)();
  EXPECT_EQ(reinterpret_cast<Marker>(FindSymbol("VokFenEnumIntegersMarker"))(), 1);
}

TEST(EnumModule, PublishesItsTypeAndNinetyThreeOperatorsInOrder) {
  EXPECT_EQ(kLimitAtLoad, 0U);
  EXPECT_FALSE(kPublishedAtLoad);
  VokTarnModuleManager manager;
  ASSERT_EQ(manager.AddSearchDirectory(VOKTARN_BIN_DIR), 1);
  VokTarnModule module("VokFenEnumIntegers");
  ASSERT_EQ(FindEntryPoint()(&module, &manager), 1) << manager.GetError();
  EXPECT_EQ(VokFenEnumInteger::sMAX_CARD, 1024U);

  std::vector<std::string> needed;
  for (const VokTarnModule* loaded : module.GetLoadedModules()) {
    needed.emplace_back(loaded->GetName().Text());
  }
  EXPECT_EQ(needed, (std::vector<std::string>{"VokFenAbstractTypes", "VokFenNumbers"}));

  const auto& descriptors = module.GetDescriptors();
  ASSERT_EQ(descriptors.size(), 94U);
  EXPECT_EQ(descriptors[0].get(), VokFenEnumInteger::sDescriptor);
  EXPECT_EQ(VokFenEnumInteger().GetDescriptor(), VokFenEnumInteger::sDescriptor);
  EXPECT_EQ(descriptors[0]->GetName().View(), "enum int");
  EXPECT_EQ(descriptors[0]->GetParent(), VokTarnInteger::sDescriptor);
  std::string operators, previous;
  for (std::size_t i = 1; i < descriptors.size(); ++i) {
    ASSERT_NE(descriptors[i], nullptr) << i;
    ASSERT_EQ(descriptors[i]->IsDerivedFrom(VokTarnOperatorDescriptor::sIdent), 1) << i;
    const auto& row = static_cast<const VokTarnOperatorDescriptor&>(*descriptors[i]);
    operators += Describe(row) == previous ? " " : (i > 1 ? "; " : "") + Describe(row) + " ";
    operators += Types(row);
    previous = Describe(row);
  }
  EXPECT_EQ(operators + "; ", kOperators);
}

TEST(EnumModule, ExportsOnlyItsEntryPointsAndItsClasses) {
#ifdef VOKTARN_SANITIZED
  GTEST_SKIP() << "sanitizers export symbols of their own";
#endif
  const std::unique_ptr<FILE, int (*)(FILE*)> listing(popen(("nm -D --defined-only '" + kLibrary + "'").c_str(), "r"),
                                                      pclose);
  ASSERT_NE(listing, nullptr);
  const std::regex ofClass(
      "_ZT?[VSI]?N?K?(17VokFenEnumInteger|24VokSVectorImp_SubIntBase|32VokSVectorIteratorImp_SubIntBase).*");
  std::set<std::string> plain;
  char line[4096];
  while (std::fgets(line, sizeof line, listing.get()) != nullptr) {
    std::istringstream words(line);
    std::string address, kind, name;
    words >> address >> kind >> name;
    if (!std::regex_match(name, ofClass)) {
      plain.insert(name);
    }
  }
  EXPECT_EQ(plain, (std::set<std::string>{"InitModule", "VokFenEnumIntegersMarker", "_Z16InitEnumIntegersv"}));
}

TEST(EnumIdentity, TypeTestsComparePointers) {
  const VokFenEnumInteger set;
  EXPECT_STREQ(VokFenEnumInteger::sIdent, "VokFenEnumInteger");
  EXPECT_STREQ(VokFenEnumInteger::CastableIdent, "VokFenEnumInteger");
  EXPECT_EQ(set.CastableID(), VokFenEnumInteger::CastableIdent);
  EXPECT_EQ(set.IsDerivedFrom(VokFenEnumInteger::sIdent), 1);
  for (const char* const base : {VokTarnInteger::sIdent, VokTarnNumber::sIdent, VokTarnScalar::sIdent,
                                 VokTarnAny::sIdent, VokTarnObject::sIdent, VokStreamable::sIdent}) {
    EXPECT_EQ(set.IsDerivedFrom(base), 1) << base;
  }
  const std::string copy = VokFenEnumInteger::sIdent;
  for (const char* const other : {copy.c_str(), VokFenEnumInteger::CastableIdent, VokFenSingleInteger::sIdent}) {
    EXPECT_EQ(set.IsDerivedFrom(other), 0) << other;
  }
}

TEST(EnumIdentity, StreamClassesAreRegisteredWithTheDescriptorsFirst) {
  std::vector<std::string> names;
  for (const VokStreamableClass* known = VokStreamableClass::First(); known != nullptr; known = known->GetNext()) {
    const std::string name = known->GetName();
    if (name.rfind("VokFenEnumInteger", 0) == 0) {
      names.push_back(name + " " + std::to_string(known->GetVersion()));
      const std::unique_ptr<VokStreamable> built(known->Build(nullptr));
      ASSERT_NE(built, nullptr);
      EXPECT_EQ(built->CastableID(), name);
      EXPECT_EQ(known->Build(built.get()), built.get());
      if (const auto* set = dynamic_cast<const VokFenEnumInteger*>(built.get())) {
        EXPECT_EQ(set->IsUndefined(), 1);
      }
    }
  }
  EXPECT_EQ(names, (std::vector<std::string>{"VokFenEnumInteger_Descriptor 1", "VokFenEnumInteger 1"}));
}

TEST(EnumDescriptor, BuildsSetsInPlace) {
  InitEnumIntegers();
  const VokFenEnumInteger::Descriptor descriptor;
  EXPECT_EQ(descriptor.GetObjectSize(), sizeof(VokFenEnumInteger));
  EXPECT_EQ(descriptor.InitObject(nullptr), nullptr);
  EXPECT_EQ(descriptor.InitObject(nullptr, &descriptor), nullptr);
  alignas(std::max_align_t) std::byte place[sizeof(VokFenEnumInteger)];
  auto* set = static_cast<VokFenEnumInteger*>(descriptor.InitObject(place));
  ASSERT_EQ(static_cast<void*>(set), place);
  EXPECT_EQ(set->IsUndefined(), 1);
  descriptor.DestroyObject(set);
  const VokLong list[] = {3, 5, -1, 5};
  set = static_cast<VokFenEnumInteger*>(descriptor.InitObject(place, list));
  EXPECT_EQ(set->GetCount(), 2U);
  EXPECT_EQ(set->GetValue(0), -1);
  descriptor.DestroyObject(set);
}

TEST(EnumDescriptor, StreamsByNameAndRefusesOtherClasses) {
  using Descriptor = VokFenEnumInteger::Descriptor;
  const Descriptor descriptor;
  VokFenEnumInteger set;
  std::stringstream bytes;
  Vokopstream os(bytes);
  VokFenEnumInteger::writeRef(Descriptor::writePtr(Descriptor::writeRef(os, descriptor), &descriptor), set);
  VokFenEnumInteger::writePtr(os, &set);

  Vokipstream is(bytes);
  Descriptor read(vokStreamableInit);
  Descriptor* pointer = nullptr;
  VokFenEnumInteger::readRef(Descriptor::readPtr(Descriptor::readRef(is, read), pointer), set);
  EXPECT_EQ(read.GetName().View(), "enum int");
  EXPECT_EQ(pointer, &read);
  EXPECT_FALSE(is.IsFailed());
  Descriptor::readPtr(is, pointer);
  EXPECT_EQ(pointer, nullptr);
  EXPECT_TRUE(is.IsFailed());
}

}  // namespace
