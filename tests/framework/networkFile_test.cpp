#include <gmock/gmock.h>

#include <fstream>

#include "framework/VokStreamableClass.h"
#include "framework/VokTarnNetworkFile.h"
#include "framework/checksum.h"
#include "support/foreignInteger.h"
#include "support/modules.h"
#include "support/mutate.h"
#include "support/soak.h"
#include "support/streamBytes.h"

namespace {

using support::LoadedModules;
using support::StreamItem;
using support::StreamItems;
using testing::HasSubstr;
using Contents = VokTarnNetworkFile::Contents;
using Status = VokTarnSearch::Status;

struct Saved {
  std::unique_ptr<VokTarnNetwork> fNetwork = std::make_unique<VokTarnNetwork>();
  Contents fContents;
};

std::string Write(Saved& saved) {
  std::ostringstream bytes;
  std::string error;
  return VokTarnNetworkFile::Write(bytes, *saved.fNetwork, saved.fContents, error) ? bytes.str() : "error: " + error;
}

// The restored network; null with `error` set when the bytes are refused.
Saved Read(LoadedModules& modules, const std::string& bytes, std::string& error) {
  std::istringstream is(bytes);
  Saved saved;
  saved.fNetwork = VokTarnNetworkFile::Read(is, modules.fManager, saved.fContents, error);
  return saved;
}

std::string Refusal(LoadedModules& modules, const std::string& bytes) {
  std::string error;
  const Saved saved = Read(modules, bytes, error);
  EXPECT_EQ(saved.fNetwork == nullptr, !error.empty());
  return error;
}

// Around a payload: the mark, version 1, the length and the checksum.
std::string Seal(const std::string& payload) {
  return "\x8FVTN\r\n\x1A\n" + support::NumberBytes(1) + support::NumberBytes(static_cast<VokULong>(payload.size())) +
         support::NumberBytes(VokCalcChecksum(payload)) + payload;
}

std::vector<std::string> Solve(const Saved& saved, unsigned limit = 1000) {
  VokTarnSearch search(*saved.fNetwork, saved.fContents.fVariables, saved.fContents.fObjective);
  std::vector<std::string> solutions;
  Status status = Status::Solution;
  while (solutions.size() < limit && (status = search.Next()) == Status::Solution) {
    std::string& solution = solutions.emplace_back();
    for (const VokTarnValueId id : saved.fContents.fVariables) {
      solution += saved.fNetwork->GetName(id) + "=" + support::Show(saved.fNetwork->GetValue(id)) + " ";
    }
  }
  solutions.emplace_back(status == Status::Exhausted ? "exhausted" : "open");
  return solutions;
}

// A network of values of every type and constraints of many kinds.
Saved BuildSample(LoadedModules& modules) {
  Saved saved;
  VokTarnNetwork& network = *saved.fNetwork;
  const auto add = [&](const char* type, const char* name, const char* domain) {
    const VokTarnValueId id = network.AddValue(modules.Type(type), name);
    if (*domain != '\0') {
      std::istringstream text(domain);
      network.Touch(id).InputValue(text);
      network.NoteChange(id);
    }
    saved.fContents.fVariables.push_back(id);
    return id;
  };
  const VokTarnValueId p = add("bool", "p", "");
  const VokTarnValueId x = add("enum int", "x", "[1, 9]");
  const VokTarnValueId y = add("enum int", "y", "{2, 3, 5, 7}");
  const VokTarnValueId w = add("interval int", "w", "[-20, 20]");
  const VokTarnValueId s = add("int", "s", "12");
  modules.Post(network, "=", {modules.Post(network, "*", {x, y}, true), s});
  modules.Post(network, "=", {modules.Post(network, "-", {x, y}, true), w});
  modules.Post(network, "=", {modules.Post(network, "<<", {x, y}, true), p});
  modules.Post(network, "all different", {x, y, w});
  const auto post = [&](const char* op, std::vector<VokTarnValueId> operands, std::vector<VokLong> constants) {
    const VokTarnValueId result = network.AddValue(modules.Type("interval int"));
    modules.fTable.Apply(network, {modules.fTable.GetRows(op).front(), {}}, operands, result, false, constants);
  };
  post("table", {x, y}, {4, 3, 5, 9, 6, 2});
  post("sum", {x, w}, {-3, 2});
  saved.fContents.fModules = {"VokFenAbstractTypes", "VokFenNumbers", "VokFenEnumIntegers"};
  saved.fContents.fModelName = "sample";
  saved.fContents.fModelText = std::string((2U << 20) + 5, 'a');
  return saved;
}

TEST(NetworkFile, ARestoredNetworkHasTheSameSolutionsAndIsWrittenTheSame) {
  LoadedModules modules;
  for (const bool propagates : {false, true}) {
    Saved saved = BuildSample(modules);
    if (propagates) {
      ASSERT_EQ(saved.fNetwork->Propagate(), VokTarnNetwork::Outcome::Fixpoint);
    }
    const std::string bytes = Write(saved);
    std::string error;
    Saved restored = Read(modules, bytes, error);
    ASSERT_NE(restored.fNetwork, nullptr) << error;
    EXPECT_EQ(Write(restored), bytes);
    const std::vector<std::string> solutions = Solve(restored);
    EXPECT_THAT(solutions, testing::ElementsAre("p=0 x=4 y=3 w=1 s=12 ", "p=0 x=6 y=2 w=4 s=12 ", "exhausted"));
    EXPECT_EQ(Solve(saved), solutions);
    EXPECT_EQ(restored.fContents.fModelText, saved.fContents.fModelText);
  }
}

TEST(NetworkFile, TheObjectiveComesBack) {
  LoadedModules modules;
  for (const auto& [sense, relation, best] : {std::tuple(VokTarnSearch::Sense::Minimize, "<=", "x=4"),
                                              std::tuple(VokTarnSearch::Sense::Maximize, ">=", "x=6")}) {
    Saved saved = BuildSample(modules);
    const VokTarnValueId bound = saved.fNetwork->AddValue(modules.Type("enum int"));
    const VokTarnValueId x = saved.fContents.fVariables[1];
    modules.Post(*saved.fNetwork, relation, {x, bound});
    saved.fContents.fObjective = VokTarnSearch::Objective{x, bound, sense};
    std::string error;
    const Saved restored = Read(modules, Write(saved), error);
    ASSERT_NE(restored.fNetwork, nullptr) << error;
    const std::vector<std::string> solutions = Solve(restored);
    ASSERT_GE(solutions.size(), 2U);
    EXPECT_THAT(solutions[solutions.size() - 2], HasSubstr(best));
    EXPECT_EQ(solutions.back(), "exhausted");
    EXPECT_EQ(Solve(saved), solutions);
  }
}

TEST(NetworkFile, AFailedNetworkIsRestoredFailed) {
  LoadedModules modules;
  const std::function<void(VokTarnNetwork&)> fail[] = {
      [](VokTarnNetwork& network) { network.Touch(1).SetNilValue(); },  // nobody was told
      [](VokTarnNetwork& network) { network.Fail(); },
  };
  for (const auto& step : fail) {
    Saved saved = BuildSample(modules);
    step(*saved.fNetwork);
    std::string error;
    const Saved restored = Read(modules, Write(saved), error);
    ASSERT_NE(restored.fNetwork, nullptr) << error;
    EXPECT_THAT(Solve(restored), testing::ElementsAre("exhausted"));
  }
}

// A type whose record holds nothing of its domain.
class ForgetfulInteger final : public support::ForeignInteger {
 public:
  const char* CastableID() const override { return "ForgetfulInteger"; }
};

template <class Value>
class Descriptor final : public VokTarnObjectDescriptor {
 public:
  explicit Descriptor(const char* name) : VokTarnObjectDescriptor(name, VokTarnInteger::sDescriptor, 0) {}
  void* InitObject(void* place) const override { return new (place) Value; }
  std::size_t GetObjectSize() const override { return sizeof(Value); }
};

const VokStreamableClass rForgetful(
    "ForgetfulInteger", [](VokStreamable* existing) -> VokStreamable* { return existing; }, 1);

TEST(NetworkFile, WhatCannotBeRestoredIsNotSaved) {
  LoadedModules modules;
  const Descriptor<support::ForeignInteger> foreign("foreign int");
  Saved unknown;
  unknown.fNetwork->AddValue(&foreign, "e");
  EXPECT_EQ(Write(unknown),
            "error: the value #0 'e' of type 'foreign int' cannot be saved: its class 'ForeignInteger' is not known to "
            "the object streams");
  const Descriptor<ForgetfulInteger> descriptor("forgetful int");
  Saved forgetful;
  auto& value = static_cast<VokTarnInteger&>(forgetful.fNetwork->Touch(forgetful.fNetwork->AddValue(&descriptor)));
  EXPECT_THAT(Write(forgetful), HasSubstr("VTN")) << "an undefined value needs no record";
  value.SetExactValue(4);
  EXPECT_THAT(Write(forgetful), HasSubstr("its record does not hold its domain"));
  Saved longName;
  longName.fNetwork->AddValue(modules.Type("int"), std::string((1U << 20) + 1, 'a'));
  EXPECT_THAT(Write(longName), HasSubstr("a name is longer than"));
  std::ostringstream closed;
  closed.setstate(std::ios::badbit);
  std::string error;
  Saved sample = BuildSample(modules);
  EXPECT_FALSE(VokTarnNetworkFile::Write(closed, *sample.fNetwork, sample.fContents, error));
  EXPECT_EQ(error, "the bytes cannot be written");
}

// The payload of a small network, x, y : enum int with x < y, by its parts.
using Parts = std::vector<std::pair<std::string, StreamItems>>;

const Parts kSmallPayload = {
    {"modules", {1U}},
    {"module", {"VokFenEnumIntegers"}},
    {"values", {2U}},
    {"x type", {"enum int"}},
    {"x name", {"x"}},
    {"x object", {1U, "VokFenEnumInteger", 1U}},
    {"x record", {0U, 3U, 1U, 2U, 3U}},
    {"y type", {"enum int"}},
    {"y name", {"y"}},
    {"y object", {1U, "VokFenEnumInteger", 1U}},
    {"y record", {0U, 2U, 2U, 3U}},
    {"constraints", {1U}},
    {"constraint object", {1U, "VokTarnLessTernaryConstraint", 1U}},
    {"constraint record", {1U, 3U, 1U, 0U, vokNoValue}},
    {"variables", {2U, 0U, 1U}},
    {"objective", {0U}},
    {"failed", {0U}},
    {"model", {"x.tarn", "x, y : enum int [1, 3]; x < y;", ""}},
};

// The bytes of a payload with some parts replaced.
std::string PayloadBytes(const Parts& replaced) {
  StreamItems items;
  for (const auto& part : kSmallPayload) {
    const auto other =
        std::find_if(replaced.begin(), replaced.end(), [&](const auto& p) { return p.first == part.first; });
    const StreamItems& taken = (other == replaced.end() ? part : *other).second;
    items.insert(items.end(), taken.begin(), taken.end());
  }
  return support::StreamBytes(items);
}

// The bytes of a saved network as they were when the format was settled.
std::string GoldenBytes() {
  std::ifstream file(VOKTARN_SOURCE_DIR "/tests/data/savedNetwork.hex");
  std::string bytes;
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line.substr(0, line.find('#')));
    for (std::string byte; words >> byte;) {
      bytes += static_cast<char>(std::stoi(byte, nullptr, 16));
    }
  }
  return bytes;
}

TEST(NetworkFile, KeepsItsBytes) {
  LoadedModules modules;
  Saved saved;
  const VokTarnValueId x = saved.fNetwork->AddValue(modules.Type("enum int"), "x");
  const VokTarnValueId y = saved.fNetwork->AddValue(modules.Type("enum int"), "y");
  for (const auto& [id, domain] : {std::pair(x, "[1, 3]"), std::pair(y, "{2, 3}")}) {
    std::istringstream text(domain);
    saved.fNetwork->Touch(id).InputValue(text);
    saved.fNetwork->NoteChange(id);
  }
  modules.Post(*saved.fNetwork, "<", {x, y});
  saved.fContents = {{"VokFenEnumIntegers"}, {x, y}, {}, "x.tarn", "x, y : enum int [1, 3]; x < y;"};
  const std::string golden = GoldenBytes();
  EXPECT_EQ(Write(saved), golden);
  EXPECT_EQ(Seal(PayloadBytes({})), golden);
  std::string error;
  const Saved restored = Read(modules, golden, error);
  ASSERT_NE(restored.fNetwork, nullptr) << error;
  EXPECT_EQ(restored.fContents.fModelName, "x.tarn");
  EXPECT_THAT(Solve(restored), testing::ElementsAre("x=1 y=2 ", "x=1 y=3 ", "x=2 y=3 ", "exhausted"));
}

TEST(NetworkFile, EveryMissingAddedOrChangedByteIsRefused) {
  LoadedModules modules;
  const std::string golden = GoldenBytes();
  for (std::size_t length = 0; length < golden.size(); ++length) {
    EXPECT_FALSE(Refusal(modules, golden.substr(0, length)).empty()) << length;
  }
  EXPECT_THAT(Refusal(modules, golden + '\0'), HasSubstr("goes on behind byte " + std::to_string(golden.size())));
  for (std::size_t at = 0; at < golden.size(); ++at) {
    const unsigned step = at % 37 == 0 ? 1 : 0x7F;  // every other byte at some places, two at each
    for (unsigned change = 1; change < 256; change += step) {
      std::string damaged = golden;
      damaged[at] = static_cast<char>(static_cast<unsigned char>(damaged[at]) ^ change);
      EXPECT_FALSE(Refusal(modules, damaged).empty()) << at << " ^ " << change;
    }
  }
}

TEST(NetworkFile, ChecksumIsTheCommonOne) {
  EXPECT_EQ(VokCalcChecksum("123456789"), 0xCBF43926U);
}

// Files whose checksum is right, but whose payload was made up.
TEST(NetworkFile, ForgedPayloadsAreRefused) {
  constexpr VokULong huge = 0xFFFFFFFFU;
  const std::string less = "VokTarnLessTernaryConstraint";
  const StreamItems sum = {1U, "VokTarnAdditionConstraint", 1U};
  const struct {
    const char* fName;
    Parts fParts;
    const char* fError;
  } rows[] = {
      {"number of modules", {{"modules", {huge}}}, "cannot open the module '"},
      {"module that is a path", {{"module", {"../VokFenNumbers"}}}, "cannot open the module '../VokFenNumbers'"},
      {"number of values", {{"values", {huge}}}, "for the value #2"},
      {"too few values", {{"values", {1U}}}, "expected the constraint #0"},
      {"abstract type", {{"x type", {"abstract int"}}}, "for the value #0, not 'abstract int'"},
      {"unknown type", {{"x type", {"enum"}}}, "for the value #0, not 'enum'"},
      {"type of another class", {{"x type", {"interval int"}}}, "record of type 'interval int' for the value #0"},
      {"null as a value", {{"x object", {0U}}, {"x record", {}}}, "record of type 'enum int' for the value #0"},
      {"value twice", {{"y object", {2U, 0U}}, {"y record", {}}}, "record of type 'enum int' for the value #1"},
      {"neither Nil nor Any", {{"x record", {7U, 0U}}}, "record of type 'enum int' for the value #0"},
      {"beyond the integers", {{"y record", {0U, 1U, 0x80000001U}}}, "record of type 'enum int' for the value #1"},
      {"number of members", {{"x record", {0U, huge, 1U}}}, "record of type 'enum int' for the value #0"},
      {"number of constraints", {{"constraints", {huge}}}, "expected the constraint #1"},
      {"null as a constraint",
       {{"constraint object", {0U}}, {"constraint record", {}}},
       "the constraint #0, of a class"},
      {"value once more",
       {{"constraint object", {2U, 0U}}, {"constraint record", {}}},
       "the constraint #0, of a class"},
      {"constraint twice",
       {{"constraints", {2U}}, {"variables", {2U, 2U, 2U, 0U, 1U}}},
       "the constraint #1, of a class"},
      {"value as a constraint",
       {{"constraint object", {1U, "VokFenSingleInteger", 1U}}},
       "the constraint #0, of a class"},
      {"version of a class", {{"constraint object", {1U, less, 2U}}}, "the constraint #0, of a class"},
      {"unknown form", {{"constraint record", {3U, 2U, 1U, 0U}}}, "the constraint #0, of a class"},
      {"number of arguments", {{"constraint record", {1U, huge, 1U, 0U}}}, "the constraint #0, of a class"},
      {"too few arguments", {{"constraint record", {1U, 1U, 1U}}}, "does not apply"},
      {"argument beyond the values", {{"constraint record", {1U, 2U, 1U, 2U}}}, "is not a value of the network"},
      {"missing argument", {{"constraint record", {1U, 2U, vokNoValue, 0U}}}, "does not apply"},
      {"sum of a truth value",
       {{"y type", {"bool"}},
        {"y object", {1U, "VokFenSingleBoolean", 1U}},
        {"y record", {3U}},
        {"constraint object", sum},
        {"constraint record", {0U, 3U, 0U, 1U, 0U}}},
       "does not apply"},
      {"sum over types that no operator names",
       {{"y type", {"interval int"}},
        {"y object", {1U, "VokFenIntervalInteger", 1U}},
        {"y record", {0U, 9U}},
        {"constraint object", sum},
        {"constraint record", {0U, 3U, 0U, 1U, 0U}}},
       "VokTarnAdditionConstraint, to stand over types of one of its operators"},
      {"table without a whole last row",
       {{"constraint object", {1U, "VokTarnTableConstraint", 1U}},
        {"constraint record", {16U, 2U, 0U, 1U, 3U, 1U, 2U, 2U}}},
       "does not apply"},
      {"table over nothing",
       {{"constraint object", {1U, "VokTarnTableConstraint", 1U}}, {"constraint record", {16U, 0U, 1U, 7U}}},
       "does not apply"},
      {"number of constants",
       {{"constraint object", {1U, "VokTarnTableConstraint", 1U}}, {"constraint record", {16U, 1U, 0U, huge, 1U}}},
       "the constraint #0, of a class"},
      {"too many coefficients",
       {{"constraint object", {1U, "VokTarnLinearConstraint", 1U}},
        {"constraint record", {16U, 2U, 0U, 1U, 2U, 1U, 1U}}},
       "does not apply"},
      {"sum without a result",
       {{"constraint object", {1U, "VokTarnLinearConstraint", 1U}}, {"constraint record", {0U, 0U}}},
       "does not apply"},
      {"element without an index",
       {{"constraint object", {1U, "VokTarnElementConstraint", 1U}}, {"constraint record", {0U, 1U, 0U}}},
       "does not apply"},
      {"count with a constant",
       {{"constraint object", {1U, "VokTarnCountConstraint", 1U}}, {"constraint record", {16U, 2U, 0U, 1U, 1U, 1U}}},
       "does not apply"},
      {"number of variables", {{"variables", {huge, 0U, 1U}}}, "expected another variable than the value #0"},
      {"variable beyond the values", {{"variables", {2U, 0U, 2U}}}, "expected the number of a variable's value"},
      {"variable twice", {{"variables", {2U, 1U, 1U}}}, "expected another variable than the value #1"},
      {"unknown sense", {{"objective", {3U, 0U, 1U}}}, "expected the sense of the objective"},
      {"bound beyond the values", {{"objective", {1U, 0U, huge}}}, "expected the number of the objective's bound"},
      {"objective as its own bound", {{"objective", {2U, 1U, 1U}}}, "expected another value"},
      {"neither failed nor not", {{"failed", {2U}}}, "expected whether the network failed"},
      {"text without an end", {{"model", {"x.tarn", "x"}}}, "expected a piece of the model's text"},
      {"bytes behind the end", {{"model", {"", "", 0U}}}, "expected the end of the network"},
  };
  LoadedModules modules;
  for (const auto& row : rows) {
    EXPECT_THAT(Refusal(modules, Seal(PayloadBytes(row.fParts))), HasSubstr(row.fError)) << row.fName;
  }
  EXPECT_THAT(Refusal(modules, Seal("VTOS")), HasSubstr("expected an object stream"));
}

TEST(NetworkFile, AnObjectiveIsAnInteger) {
  LoadedModules modules;
  Saved saved = BuildSample(modules);
  saved.fContents.fObjective = VokTarnSearch::Objective{0, 1, VokTarnSearch::Sense::Minimize};
  EXPECT_THAT(Refusal(modules, Write(saved)), HasSubstr("expected an integer, not the value #0, in the objective"));
}

// Random changes under a right checksum: the bytes are refused with a message, or give a network that can be searched.
TEST(NetworkFile, NoForgedPayloadCrashes) {
  LoadedModules modules;
  Saved sample = BuildSample(modules);
  sample.fContents.fModelText.clear();
  const std::vector<std::string> seeds{Write(sample).substr(20), PayloadBytes({})};
  constexpr unsigned seed = 20;
  std::mt19937 random(seed);
  const int rounds = 5000 * support::SoakFactor();
  int accepted = 0;
  for (int round = 0; round < rounds; ++round) {
    SCOPED_TRACE("seed " + std::to_string(seed) + ", round " + std::to_string(round));
    const std::string forged = support::Mutate(seeds, random);
    std::string error;
    const Saved restored = Read(modules, Seal(forged), error);
    ASSERT_EQ(restored.fNetwork == nullptr, !error.empty());
    EXPECT_LE(error.size(), 1000U);
    if (restored.fNetwork != nullptr) {
      ++accepted;
      unsigned asked = 0;
      restored.fNetwork->SetInterrupt([&asked] { return ++asked > 20; });
      Solve(restored, 5);
    }
  }
  EXPECT_GT(accepted, rounds / 100) << "most rounds end before a network is built";
}

}  // namespace
