#include <fstream>
#include <random>
#include <stdexcept>

#include "support/modules.h"
#include "support/soak.h"

namespace {

using support::LoadedModules;

std::vector<std::string> ShowAll(const VokTarnNetwork& network) {
  std::vector<std::string> shown;
  for (VokTarnValueId id = 0; id < network.GetValueCount(); ++id) {
    shown.push_back(support::Show(network.GetValue(id)));
  }
  return shown;
}

// A network of all kinds of values with relations among them.
void Build(const LoadedModules& modules, VokTarnNetwork& network) {
  const VokTarnValueId x = modules.Add(network, "enum int", "{1, 2, 4, 8, 16, 32}");
  const VokTarnValueId y = modules.Add(network, "enum int", "[0, 20]");
  const VokTarnValueId w = modules.Add(network, "interval int", "[-5, 40]");
  const VokTarnValueId p = modules.Add(network, "bool", "");
  const VokTarnValueId sum = modules.Post(network, "+", {x, y}, true);
  modules.Post(network, "<=", {sum, w});
  modules.Post(network, "=", {modules.Post(network, "<<", {x, y}, true), p});
  modules.Post(network, "<>", {x, y});
}

// Pushing, narrowing, failing and popping at random: every level comes back as it was left, whatever happened above.
TEST(Network, PoppingALevelRestoresEveryValue) {
  const LoadedModules modules;
  VokTarnNetwork network;
  Build(modules, network);
  ASSERT_EQ(network.Propagate(), VokTarnNetwork::Outcome::Fixpoint);
  std::mt19937 random(7);
  std::vector<std::vector<std::string>> left;
  for (int step = 0; step < 4000 * support::SoakFactor(); ++step) {
    if (random() % 5 < 3 && !network.IsFailed() && left.size() < 12) {
      left.push_back(ShowAll(network));
      network.PushLevel();
    } else if (!left.empty() && random() % 3 == 0) {
      network.PopLevel();
      ASSERT_EQ(ShowAll(network), left.back()) << "step " << step;
      ASSERT_FALSE(network.IsFailed());
      left.pop_back();
    }
    const auto id = static_cast<VokTarnValueId>(random() % 3);
    if (!left.empty() && !network.IsFailed() && network.GetValue(id).GetCardinality() > 1) {
      auto& value = static_cast<VokTarnInteger&>(network.Touch(id));
      value.RemoveExactValue(random() % 2 == 0 ? value.GetLowerBound() : value.GetUpperBound());
      network.NoteChange(id);
      network.Propagate();
    }
  }
}

TEST(Network, AnInterruptKeepsWhatStillWaits) {
  const LoadedModules modules;
  VokTarnNetwork whole;
  Build(modules, whole);
  whole.Propagate();
  VokTarnNetwork network;
  Build(modules, network);
  bool stop = true;
  network.SetInterrupt([&stop] { return stop; });
  EXPECT_EQ(network.Propagate(), VokTarnNetwork::Outcome::Interrupted);
  stop = false;
  EXPECT_EQ(network.Propagate(), VokTarnNetwork::Outcome::Fixpoint);
  EXPECT_EQ(ShowAll(network), ShowAll(whole));
}

std::size_t CountResidentPages() {
  std::size_t size = 0;
  std::size_t resident = 0;
  std::ifstream("/proc/self/statm") >> size >> resident;
  return resident;
}

// Three orders in a circle: some constraint waits whenever another one is filtered.
TEST(Network, AnAgendaThatIsNeverEmptyDoesNotGrow) {
  const LoadedModules modules;
  VokTarnNetwork network;
  std::vector<VokTarnValueId> values;
  for (int i = 0; i < 3; ++i) {
    values.push_back(modules.Add(network, "interval int", "[0, 2000000000]"));
  }
  for (unsigned i = 0; i < 3; ++i) {
    modules.Post(network, "<", {values[i], values[(i + 1) % 3]});
  }
  int left = 0;
  network.SetInterrupt([&left] { return left-- == 0; });
  const auto propagate = [&](int steps) {
    left = steps;
    ASSERT_EQ(network.Propagate(), VokTarnNetwork::Outcome::Interrupted);
  };
  propagate(10000);
  const std::size_t before = CountResidentPages();
  propagate(3000000);  // of which each would have taken four bytes
  EXPECT_LT(CountResidentPages(), before + 1024);
}

TEST(Network, RefusesWhatDoesNotFitTogether) {
  const LoadedModules modules;
  VokTarnNetwork network;
  EXPECT_THROW(network.AddValue(nullptr), std::invalid_argument);
  EXPECT_THROW(network.AddValue(modules.Type("abstract int")), std::invalid_argument);
  const VokTarnValueId x = modules.Add(network, "enum int", "[1, 3]");
  const VokTarnValueId p = modules.Add(network, "bool", "");
  const auto* addition = static_cast<const VokTarnConstraintDescriptor*>(
      modules.fManager.GetModules().front()->FindDescriptor("VokTarnAdditionConstraint"));
  ASSERT_NE(addition, nullptr);
  for (const std::vector<VokTarnValueId>& arguments :
       {std::vector<VokTarnValueId>{x, x}, {x, x, p}, {x, x, 7}, {x, x, vokNoValue}, {x, x, x, x}}) {
    std::unique_ptr<VokTarnConstraint> constraint(addition->Create(arguments, VokTarnForm::Plain));
    EXPECT_THROW(network.AddConstraint(std::move(constraint)), std::invalid_argument);
  }
  EXPECT_THROW(network.AddConstraint(nullptr), std::invalid_argument);
  EXPECT_EQ(network.GetConstraintCount(), 0U);
  EXPECT_EQ(network.GetDegree(x), 0U);
}

}  // namespace
