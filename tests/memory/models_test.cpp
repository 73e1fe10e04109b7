// Modules, networks, searches and explanations, with memory running out at each of their allocations: they end so, or
// tell what they tell with memory enough.
#include <sstream>

#include "framework/VokTarnTrace.h"
#include "memory/shortage.h"
#include "tarn/Diagnostic.h"
#include "tarn/Session.h"

using memory::ExpectRightOrNothing;
using memory::ForEachShortage;
using memory::kOutOfMemory;

namespace {

TEST(ModuleShortage, OpensAllOrNothing) {
  for (const char* name : {"VokFenAbstractTypes", "VokFenNumbers", "VokFenEnumIntegers"}) {
    ExpectRightOrNothing(name, [name] {
      VokTarnModuleManager manager;
      VokTarnModule* const module = manager.OpenModule(name);
      if (module == nullptr && manager.GetError() == kOutOfMemory) {
        throw std::bad_alloc();
      }
      std::string result = manager.GetError() + std::to_string(manager.GetModules().size());
      for (const VokTarnModule* opened : manager.GetModules()) {
        result += " " + std::to_string(opened->GetDescriptors().size());
      }
      return result;
    });
  }
  ForEachShortage("opening again", [](unsigned long n, bool lasts) {
    VokTarnModuleManager manager;
    memory::Shortage shortage(n, lasts);
    manager.OpenModule("VokFenEnumIntegers");
    const bool hasFailed = shortage.End();
    EXPECT_NE(manager.OpenModule("VokFenEnumIntegers"), nullptr) << n << manager.GetError();
    return hasFailed;
  });
}

class ModelShortage : public testing::Test {
 protected:
  ModelShortage() { fModules.Open(tarn::Modules::sDefault); }

  static std::string Show(tarn::Session& session) {
    std::string text;
    for (const VokTarnValueId id : session.GetVariables()) {
      std::ostringstream value;
      value.exceptions(std::ios::badbit);
      session.GetNetwork().GetValue(id).PrintOn(value);
      text += value.str();
    }
    return text;
  }

  // What propagation leaves, then up to three solutions and how the search ends.
  static std::string Solve(tarn::Session& session) {
    VokTarnNetwork& network = session.GetNetwork();
    std::string result = network.Propagate() == VokTarnNetwork::Outcome::Failed ? "failed" : Show(session);
    VokTarnSearch::Options options;
    options.fVariable = VokTarnSearch::VariableChoice::Weighted;
    VokTarnSearch search(network, session.GetVariables(), session.GetObjective(), options);
    VokTarnSearch::Status status = VokTarnSearch::Status::Solution;
    for (unsigned found = 0; found < 3 && status == VokTarnSearch::Status::Solution; ++found) {
      status = search.Next();
      result +=
          "\n" + (status == VokTarnSearch::Status::Solution ? Show(session) : "end " + std::to_string(int(status)));
    }
    return result;
  }

  static void Read(tarn::Session& session, const std::string& text) {
    try {
      session.Read(tarn::Source("model", text));
    } catch (const tarn::ModelError&) {
      if (session.GetNetwork().IsMemoryShort()) {
        throw std::bad_alloc();
      }
      throw;
    }
  }

  tarn::Modules fModules;
};

TEST_F(ModelShortage, NeverChangesAVerdict) {
  const std::pair<std::string, std::string> models[] = {
      {"x, y, z : enum int [-3, 20]; ",
       "x + y = z;\nx * y = z;\nx - y = 3 * z - 1;\nx / y = z;\nx mod y = z;\nx ^ y = z;\nx /\\ y = z;\nx \\/ y = z;\n"
       "abs x = y;\nsign x = y;\nnext x = y; prev y = z;\n-x = y;\nx = y; y <> z; x = z;\nx < y; y < z; z < x;\n"
       "x <= y; y > z; z >= x;\nall different (x, y, z); x < 2; y < 2; z < 2;\nsum [x, y, 3 * z] = 7;\n"
       "count ([x, y, z], 1) = 2;\n[x, y, 7][z] = 2;\ntable ([x, y, z], [1, 2, 4], [2, 2, 0], [4, 9, 8], [0, 1, 3]);\n"
       "minimize x * x - y;\n(x << y) -> (y == z);\n(x <== y) <-> (z >> 1);\nx + y + z = 1000;"},
      {"x : interval int [-9, 9]; y : int; z : enum int [-3, 3]; ",
       "x + z = 2; y = x * z;\nx < z; y = 3; x > y;\nx mod z = 1; y = 1;"},
      {"x, y, z : bool; ", "x && !y || z;\nx -> y; y <-> z; !x;\nx <-> !x;"}};
  for (const auto& [declarations, statements] : models) {
    std::istringstream lines(statements);
    for (std::string line; std::getline(lines, line);) {
      const std::string text = declarations + line;
      ExpectRightOrNothing(text, [&] {
        tarn::Session session(fModules);
        Read(session, text);
        return Solve(session);
      });
    }
  }
}

TEST_F(ModelShortage, SavesAndRestoresAllOrNothing) {
  const std::string text = "x, y, z : enum int {-2, 0, 1, 2, 40}; x + y = z; all different (x, y, z); maximize z;";
  std::string saved;
  ExpectRightOrNothing("save", [&] {
    tarn::Session session(fModules);
    Read(session, text);
    std::ostringstream bytes;
    std::string error;
    const bool isWritten = VokTarnNetworkFile::Write(bytes, session.GetNetwork(), session.GetContents(), error);
    return isWritten && bytes ? saved = bytes.str() : throw std::runtime_error(error);
  });
  ExpectRightOrNothing("restore", [&] {
    tarn::Session session(fModules);
    Read(session, saved);
    return Solve(session);
  });
}

TEST_F(ModelShortage, NeverChangesAnExplanation) {
  for (const char* end : {"x < y; y < 3;", "x < y; y < z; z < x;"}) {
    ExpectRightOrNothing(end, [&] {
      tarn::Session session(fModules);
      Read(session, std::string("x, y, z : enum int [1, 5]; x + 1 = z;") + end);
      VokTarnTrace trace(session.GetNetwork());
      const bool fails = trace.Record() == VokTarnNetwork::Outcome::Failed;
      const VokTarnTrace::Result result{fails ? vokNoValue : session.GetVariables()[0],
                                        [](const VokTarnAny& x) { return x.GetCardinality() == 1; }};
      const auto chain = trace.Explain(result);
      std::string steps = chain ? "steps" : "none";
      for (std::size_t i = 0; chain && i < chain->fSteps.size(); ++i) {
        steps += " " + std::to_string(chain->fSteps[i].fConstraint);
      }
      return steps;
    });
  }
}

}  // namespace
