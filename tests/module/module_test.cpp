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
  const std::pair<VokTarnType, const char*> letters[] = {{nullptr, ""},
                                                         {VokFenEnumInteger::sDescriptor, "E"},
                                                         {VokFenSingleInteger::sDescriptor, "S"},
                                                         {VokFenIntervalInteger::sDescriptor, "V"},
                                                         {VokFenSingleBoolean::sDescriptor, "B"},
                                                         {VokTarnInteger::sDescriptor, "I"}};
  const auto* const found =
      std::find_if(std::begin(letters), std::end(letters), [type](const auto& l) { return l.first == type; });
  return found == std::end(letters) ? "?" : found->second;
}

std::string Describe(const VokTarnOperatorDescriptor& row) {
  return std::string(row.GetName().Text()) + ", " + row.GetKindName() + ", " +
         (row.GetConstraint() == nullptr ? "none" : row.GetConstraint()->GetName().Text()) + ", " +
         Letter(row.GetOperandType(0)) + (row.GetOperandCount() > 1 ? Letter(row.GetOperandType(1)) : "") +
         Letter(row.GetResultType()) + Letter(row.GetWorkingType());
}

// One line for each run of rows: name, kind, constraint, then the types of every row.
const char* const kOperators[][4] = {
    {"+", "binary", "Addition", "SEE ESE EEE EIE IEE"},
    {"*", "binary", "Multiplication", "SEE ESE EEE EIE IEE"},
    {"^", "binary", "Power", "SEE ESE EEE"},
    {"=", "binary", "EqualTernary", "SEE ESE EEE EIE IEE"},
    {"<>", "binary", "UnequalTernary", "SEE ESE EEE EIE IEE"},
    {">=", "binary", "LessOrEqualTernary", "SEE ESE EEE EIE IEE"},
    {"/\\", "binary", "Minimum", "SEE ESE EEE EIE IEE"},
    {"\\/", "binary", "Maximum", "SEE ESE EEE EIE IEE"},
    {">", "binary", "LessTernary", "SEE ESE EEE EIE IEE"},
    {"=", "binary", "EqualTernary", "VEE EVE"},
    {"<=", "symmetric binary", "LessOrEqualTernary", "SEE ESE EEE"},
    {"<", "symmetric binary", "LessTernary", "SEE ESE EEE"},
    {"-", "first inverse binary", "Addition", "SEEE ESEE EEEE"},
    {"/", "first inverse binary", "Multiplication", "SEEE ESEE EEEE"},
    {"-", "unary", "NumberNegation", "EE"},
    {"sign", "inverse unary", "Signum", "EEE"},
    {"abs", "unary", "Absolute", "EE"},
    {"next", "unary", "Next", "EE"},
    {"(interval int)", "unary", "Equal", "VE"},
    {"prev", "inverse unary", "Next", "EEE"},
    {"==", "second inverse binary", "BooleanEqual", "SEBE ESBE VEBE EVBE EEBE"},
    {">>", "second inverse binary", "BooleanLess", "SEBE ESBE VEBE EVBE EEBE"},
    {">==", "second inverse binary", "BooleanLessOrEqual", "SEBE ESBE VEBE EVBE EEBE"},
    {"<<", "second inverse symmetric binary", "BooleanLess", "SEBE ESBE VEBE EVBE EEBE"},
    {"<==", "second inverse symmetric binary", "BooleanLessOrEqual", "SEBE ESBE VEBE EVBE EEBE"},
    {"mod", "binary", "Remainder", "SEE ESE EEE EIE IEE"},
};

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
  std::size_t i = 1;
  for (const auto& line : kOperators) {
    std::istringstream rows(line[3]);
    for (std::string types; rows >> types; ++i) {
      ASSERT_LT(i, descriptors.size());
      ASSERT_NE(descriptors[i], nullptr) << i;
      ASSERT_EQ(descriptors[i]->IsDerivedFrom(VokTarnOperatorDescriptor::sIdent), 1) << i;
      EXPECT_EQ(Describe(static_cast<const VokTarnOperatorDescriptor&>(*descriptors[i])),
                std::string(line[0]) + ", " + line[1] + ", VokTarn" + line[2] + "Constraint, " + types)
          << "row " << i;
    }
  }
  EXPECT_EQ(i, descriptors.size());
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
