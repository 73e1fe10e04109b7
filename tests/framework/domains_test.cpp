// How a network holds the possible values of its integers, whatever their type: in words, in the object, or in both.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "framework/VokTarnInteger.h"
#include "support/modules.h"
#include "support/soak.h"

namespace {

using support::LoadedModules;
using Domain = std::set<VokLong>;

// A value of a network beside the numbers that it ought to hold.
class Twin {
 public:
  Twin(const LoadedModules& modules, const char* type, const Domain& domain)
      : fIsRange(type == std::string("interval int")) {
    fId = fNetwork.AddValue(modules.Type(type));
    fNetwork.KeepListed(fId, std::vector<VokLong>(domain.begin(), domain.end()));
    fDomains = {domain};
    if (fIsRange) {
      KeepIf([](VokLong) { return true; });
    }
  }

  template <class Draw>
  void Step(Draw draw) {
    const Domain& domain = fDomains.back();
    const auto any = [&] {
      return static_cast<VokLong>(*domain.begin() - 3 + draw(*domain.rbegin() - *domain.begin() + 7));
    };
    const VokLong v = draw(3) == 0 ? any() : *std::next(domain.begin(), draw(static_cast<std::int64_t>(domain.size())));
    const VokLong w = any();
    std::set<VokLong> list;
    switch (draw(9)) {
      case 0:
        fNetwork.PushLevel();
        fDomains.push_back(domain);
        break;
      case 1:
        if (fDomains.size() > 1) {
          fNetwork.PopLevel();
          fDomains.pop_back();
        }
        break;
      case 2:
        fNetwork.KeepAtMost(fId, v);
        KeepIf([v](VokLong x) { return x <= v; });
        break;
      case 3:
        fNetwork.KeepAtLeast(fId, v);
        KeepIf([v](VokLong x) { return x >= v; });
        break;
      case 4:
        fNetwork.KeepBetween(fId, std::min(v, w), std::max(v, w));
        KeepIf([v, w](VokLong x) { return x >= std::min(v, w) && x <= std::max(v, w); });
        break;
      case 5:
        fNetwork.Remove(fId, v);
        KeepIf([v](VokLong x) { return x != v; });
        break;
      case 6:  // as an operation of the type would
        if (domain.size() > 1) {
          if (static_cast<VokTarnInteger&>(fNetwork.Touch(fId)).RemoveExactValue(v) != 0) {
            fNetwork.NoteChange(fId);
          }
          KeepIf([v](VokLong x) { return x != v; });
        }
        break;
      case 7:
        std::ranges::copy_if(domain, std::inserter(list, list.end()), [&](VokLong) { return draw(8) != 0; });
        list.insert(w);
        fNetwork.KeepListed(fId, std::vector<VokLong>(list.begin(), list.end()));
        KeepIf([&](VokLong x) { return list.contains(x); });
        break;
      case 8:
        if (fNetwork.GetBits(fId) != 0) {
          const auto bits = static_cast<VokTarnBits>(draw(std::int64_t{1} << 62)) * 5;
          fNetwork.KeepBits(fId, w, bits);
          KeepIf([&](VokLong x) { return x >= w && x - w < 64 && (bits >> (x - w) & 1) != 0; });
        }
        break;
    }
  }

  bool IsFailed() const { return fDomains.back().empty(); }

  void Expect(const std::string& where) const {
    const Domain& domain = fDomains.back();
    ASSERT_EQ(fNetwork.IsFailed(), domain.empty()) << where;
    if (domain.empty()) {
      return;
    }
    ASSERT_EQ(fNetwork.GetCardinality(fId), static_cast<int>(domain.size())) << where;
    ASSERT_EQ(fNetwork.GetLower(fId), *domain.begin()) << where;
    ASSERT_EQ(fNetwork.GetUpper(fId), *domain.rbegin()) << where;
    const VokTarnBits bits = fNetwork.GetBits(fId);
    const auto& object = static_cast<const VokTarnInteger&>(fNetwork.GetValue(fId));
    ASSERT_EQ(object.GetCardinality(), static_cast<int>(domain.size())) << where;
    for (VokLong v = *domain.begin() - 1; v <= *domain.rbegin() + 1; ++v) {
      const bool isThere = domain.contains(v);
      ASSERT_EQ(fNetwork.IsPossible(fId, v), isThere) << where << ' ' << v;
      ASSERT_EQ(object.IsPossible(v), isThere) << where << ' ' << v;
      const std::int64_t place = std::int64_t{v} - *domain.begin();
      ASSERT_TRUE(bits == 0 || place < 0 || place > 63 || (bits >> place & 1) == (isThere ? 1 : 0))
          << where << ' ' << v;
      ASSERT_TRUE(v > *domain.rbegin() || fNetwork.FindFrom(fId, v) == *domain.lower_bound(v)) << where << ' ' << v;
      ASSERT_TRUE(v < *domain.begin() || fNetwork.FindUpTo(fId, v) == *std::prev(domain.upper_bound(v))) << where << v;
    }
  }

 private:
  template <class Keep>
  void KeepIf(Keep keep) {
    Domain& domain = fDomains.back();
    std::erase_if(domain, [&](VokLong v) { return !keep(v); });
    if (fIsRange && !domain.empty()) {
      for (VokLong v = *domain.begin(); v < *domain.rbegin(); ++v) {
        domain.insert(v);
      }
    }
  }

  VokTarnNetwork fNetwork;
  VokTarnValueId fId = 0;
  std::vector<Domain> fDomains;  // at the root and at each level
  bool fIsRange;
};

TEST(Domains, FollowTheSearchWhereverTheyAreHeld) {
  const LoadedModules modules;
  std::mt19937_64 random(7);
  const auto draw = [&random](std::int64_t count) {
    return static_cast<VokLong>(random() % static_cast<std::uint64_t>(count));
  };
  const auto drawWide = [&random](std::int64_t count) {
    return static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(count));
  };
  for (int trial = 0; trial < 3000 * support::SoakFactor() && !HasFatalFailure(); ++trial) {
    const char* const type = draw(3) == 0 ? "interval int" : "enum int";
    constexpr VokLong kEnd = VokTarnInteger::sGreatest - 400;
    const VokLong bases[] = {-20, 0, 1000, kEnd, -kEnd - 300};
    const VokLong base = bases[draw(5)];
    const VokLong widths[] = {3, 40, 64, 66, 300};
    const VokLong width = widths[draw(5)];
    const VokLong density = 1 + draw(3);
    Domain domain = {base + draw(width)};
    for (VokLong v = 0; v < width; ++v) {
      if (draw(density) == 0) {
        domain.insert(base + v);
      }
    }
    Twin twin(modules, type, domain);
    for (int step = 0; step < 30 && !twin.IsFailed() && !HasFatalFailure(); ++step) {
      twin.Step(drawWide);
      twin.Expect(std::to_string(trial) + ", " + std::to_string(step) + ", " + type);
    }
  }
}

}  // namespace
