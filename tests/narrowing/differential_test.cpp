// Every narrowing operation, through the generic entry and on sets directly, against the plain way of doing it.
#include <gtest/gtest.h>

#include <random>

#include "domain/kernels/KernelChoice.h"
#include "narrowing/literal.h"
#include "support/soak.h"

namespace narrowing {
namespace {

#ifdef VOKTARN_SANITIZED
constexpr int kSmallCases = 1500;
constexpr int kLargeCases = 25;
#else
constexpr int kSmallCases = 100000;
constexpr int kLargeCases = 150;
#endif

class Generator {
 public:
  explicit Generator(unsigned seed) : fRandom(seed) {}

  int Below(int n) { return static_cast<int>(fRandom() % static_cast<unsigned>(n)); }

  // Sets and singles of at most 30 members, dense or sparse, small or at the ends of the integers.
  Model Small() { return Dressed(ValuesOf(Below(8) == 0 ? Below(31) : Below(7))); }

  // Sets around the limit: dense, in steps or scattered; and few values, which give the number of candidates together
  // with the others.
  Model Large() {
    const int count = Below(3) == 0 ? 1019 + Below(6) : Below(2) == 0 ? 509 + Below(6) : 2 + Below(1020);
    return Dressed(ValuesOf(Below(3) == 0 ? 1 + Below(4) : count));
  }

  // What the relation makes of the other operands, thinned and with some strangers.
  Values Thinned(const Values& values, const Values& strangers) {
    const int share = Below(4);
    Values mixed = Filter(values, [&](VokLong) { return share == 0 || Below(3) <= share - 1; });
    for (int i = Below(3); i > 0 && !strangers.empty() && mixed.size() < 1024; --i) {
      mixed.push_back(strangers[static_cast<std::size_t>(Below(static_cast<int>(strangers.size())))]);
    }
    return Sorted(mixed);
  }

  Model Dressed(const Values& values) {
    const int state = Below(24);
    if (state < 2) {
      return state == 0 ? Model{'e', true, 1, {}} : Model{};
    }
    if (state < 5) {
      return state == 2 || values.empty() ? Model{'s', state != 3, 0, {}} : literal::SingleOf(values[0]);
    }
    return literal::SetOf(values, Below(3) == 0 ? 1 : 0);
  }

 private:
  static Values Sorted(Values values) {
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    return values;
  }

  Values ValuesOf(int count) {
    static constexpr VokLong kStarts[] = {
        enumSets::kNil, enumSets::kMin,     enumSets::kMin / 2,  -46342,        -1000, -3, 0, 1, 2,
        46330,          enumSets::kMax / 2, enumSets::kMax - 40, enumSets::kMax};
    const int kind = Below(6);
    const VokLong start = Below(4) == 0 ? kStarts[Below(static_cast<int>(std::size(kStarts)))] : Below(9) - 4;
    const VokLong step = kind < 3 ? 1 : kind == 3 ? 1 + Below(9) : 1 + Below(50000);
    const bool centred = Below(3) == 0;
    Values values;
    for (int i = centred ? -count / 2 : 0; static_cast<int>(values.size()) < count; ++i) {
      const int scattered = kind == 2 ? i + i / 3 : kind == 5 ? Below(3000000) - (centred ? 1500000 : 0) : i;
      const std::int64_t v = start + std::int64_t{scattered} * (kind == 5 ? 1 : step);
      values.push_back(static_cast<VokLong>(std::clamp<std::int64_t>(v, enumSets::kNil, enumSets::kAny)));
    }
    return Sorted(values);
  }

  std::mt19937 fRandom;
};

// A wrong operation is told apart from a wrong model by eye: both outcomes are shown.
void Compare(const Operation& op, const Operation& typed, Case c, unsigned role, const std::string& where) {
  constexpr unsigned kRoles[][3] = {{0, 1, 2}, {0, 1, 1}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};
  const auto& at = kRoles[role];
  c = {c[at[0]], c[at[1]], c[at[2]]};
  const bool sets = c[0].kind == 'e' && c[1].kind == 'e' && c[2].kind == 'e';
  for (const bool direct : {false, true}) {
    if (direct && !sets) {
      continue;
    }
    std::array<support::Operand, 3> operands = {support::Operand(c[at[0] == 0 ? 0 : 1]), support::Operand(c[1]),
                                                support::Operand(c[2])};
    const auto operand = [&](unsigned i) -> support::Operand& {
      return operands[static_cast<std::size_t>(std::find(at, at + 3, at[i]) - at)];
    };
    const Outcome expected = literal::Run(op, c, direct);
    // The variants of the inner loops take turns.
    static std::size_t turn = 0;
    const auto kernels = VokFenEnumInteger::KernelChoice::GetRunnable();
    VokFenEnumInteger::KernelChoice::Use(*kernels[++turn % kernels.size()]);
    const int status = (direct ? typed : op).run(operand(0).Get(), operand(1).Get(), operand(2).Get());
    ASSERT_EQ(status, expected.status) << Show(op, c) << where << (direct ? " typed" : "");
    for (unsigned i = 0; i < op.operands; ++i) {
      const Model& left = at[i] == at[op.narrowed] ? expected.after[op.narrowed] : c[i];
      ASSERT_EQ(operand(i).Read(), left) << Show(op, c) << where << (direct ? " typed" : "") << " operand " << i;
    }
  }
}

void CompareMany(bool large, int cases) {
  // Every repetition takes other cases, for a long run with --gtest_repeat.
  static unsigned seed = 20240611;
  ++seed;
  Generator make(seed);
  for (std::size_t k = 0; k < support::Operations().size(); ++k) {
    const Operation& op = support::Operations()[k];
    const Operation& typed = support::Operations<VokFenEnumInteger>()[k];
    const Operation& forward = support::Operations()[k - op.narrowed];
    for (int i = 0; i < cases; ++i) {
      Case c;
      // Of a power one operand is large: the plain way takes too long otherwise.
      const std::size_t only = op.name.ends_with("power") ? static_cast<std::size_t>(make.Below(3)) : c.size();
      for (std::size_t j = 0; j < c.size(); ++j) {
        c[j] = large && (only == c.size() || only == j) ? make.Large() : make.Small();
      }
      const bool random = op.name.ends_with("sign") || (large && op.narrowed > 0 && op.name.ends_with("power"));
      if (make.Below(2) == 0 && !random) {
        const Values strangers = c[0].values;
        c[0] = literal::SetOf({}, 1);
        c[0] = make.Dressed(make.Thinned(literal::Run(forward, c, false).after[0].values, strangers));
      }
      c[0] = make.Below(8) == 0 && op.narrowed == 0 ? literal::SetOf({}, 1) : literal::Enumerated(c[0]);
      const bool aliased = make.Below(3) == 0;
      Compare(op, typed, c, aliased ? static_cast<unsigned>(make.Below(5)) : 0,
              " seed " + std::to_string(seed) + " case " + std::to_string(i));
      if (testing::Test::HasFatalFailure()) {
        return;
      }
    }
  }
}

TEST(NarrowingDifferential, SmallSets) {
  CompareMany(false, kSmallCases * support::SoakFactor());
}

TEST(NarrowingDifferential, SetsAroundTheLimit) {
  CompareMany(true, kLargeCases * support::SoakFactor());
}

// Sums and differences of about as many pairs as the limit allows candidates, near and far, disturbed or not, so that
// 1023, 1024 and 1025 different values come in every way in which they are formed.
TEST(NarrowingDifferential, SumsOfAsManyPairsAsTheLimit) {
  static unsigned seed = 7;
  Generator make(++seed);
  for (std::size_t k = 0; k < support::Operations().size(); ++k) {
    const Operation& op = support::Operations()[k];
    if (!op.name.ends_with("sum")) {
      continue;
    }
    const unsigned other = op.narrowed == 0 ? 1 : 0;
    for (int i = 0; i < 6 * kLargeCases * support::SoakFactor(); ++i) {
      const int na = 2 + make.Below(make.Below(2) == 0 ? 8 : 60);
      const int nb = 1024 / na + make.Below(3) - 1;
      const VokLong step = make.Below(3) == 0 ? 1 : 1 + make.Below(make.Below(2) == 0 ? 40 : 70000);
      // Rows without a gap between them, or with a sum in common.
      const VokLong stride = (na - (make.Below(4) == 0 ? 1 : 0)) * step;
      Case c = {literal::SetOf({}, 1), literal::SetOf({}, 1), literal::SetOf({}, 1)};
      for (int j = 0; j < na; ++j) {
        c[other].values.push_back(j * step);
      }
      for (int j = 0; j < nb; ++j) {
        c[2].values.push_back(j * stride + (make.Below(60) == 0 && stride > 1 ? make.Below(stride) : 0));
      }
      c[other] = literal::SetOf(c[other].values);
      c[2] = literal::SetOf(c[2].values);
      Compare(op, support::Operations<VokFenEnumInteger>()[k], c, 0, " seed " + std::to_string(seed));
      Values values = literal::Run(op, c, true).after[op.narrowed].values;
      for (int j = make.Below(400); j > 0; --j) {
        values.push_back((make.Below(na) + make.Below(nb) * na) * step + make.Below(2));
      }
      std::sort(values.begin(), values.end());
      values.erase(std::unique(values.begin(), values.end()), values.end());
      values.resize(std::min<std::size_t>(values.size(), make.Below(2) == 0 ? 1024 : 30));
      c[op.narrowed] = literal::SetOf(values);
      Compare(op, support::Operations<VokFenEnumInteger>()[k], c, 0, " seed " + std::to_string(seed));
      if (testing::Test::HasFatalFailure()) {
        return;
      }
    }
  }
}

}  // namespace
}  // namespace narrowing
