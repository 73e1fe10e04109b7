// How fast do the operations on three sets narrow, beside the plain way, sorting, and a peer's domain consistency?
//
// x and y hold n random members of 9/8 n places; dense: consecutive numbers, sparse: 64 apart on average. z holds n
// values, half of them results of pairs, half at random in the same range.
//   sum         z by x + y                      product    z by x * y
//   sum3        z, x and y by x + y = z         quotient   x by z / y
//   remainder   z by x mod y
// Ours, `literal` and `sort` (literal.h) narrow a copy, which is made outside the time. `gecode` posts x + y = z with
// domain consistency in the clone of a space and propagates; the cloning stays outside the time.
// worst/...: single calls that cost most; ours alone.
// Names: operation/density/n/variant; the counter `call` is the time of one call (sum3: three).

#include <gecode/int.hh>
#include <memory>

#include "Workload.h"
#include "literal.h"

namespace {

using bench::Values;
using Combine = std::optional<int> (*)(int, int);

struct Case {
  Values fX;
  Values fY;
  Values fZ;
};

struct Operation {
  const char* fName;
  Combine fCombine;  // the value of a pair
  void (*fOurs)(VokFenEnumInteger& x, VokFenEnumInteger& y, VokFenEnumInteger& z);
  // The operands of the pairs and what they narrow. 0: x, 1: y, 2: z.
  int fFirst;
  int fSecond;
  int fTarget;
};

const Operation sOperations[] = {
    {"sum", literal::Add, [](auto& x, auto& y, auto& z) { z.CalcSumValue(x, y); }, 0, 1, 2},
    {"product", literal::Multiply, [](auto& x, auto& y, auto& z) { z.CalcProdValue(x, y); }, 0, 1, 2},
    {"quotient", literal::Divide, [](auto& x, auto& y, auto& z) { z.CalcFirstInverseProdValue(x, y); }, 1, 2, 0},
    {"remainder", literal::Remainder, [](auto& x, auto& y, auto& z) { z.CalcModValue(x, y); }, 0, 1, 2},
};

std::vector<Case> MakeCases(Combine combine, bool dense, int members) {
  bench::Draw draw(20240502);
  std::vector<Case> cases(static_cast<std::size_t>(bench::CountCases(members, 3)));
  for (Case& c : cases) {
    const int places = members + std::max(1, members / 8);
    c.fX = draw.Choose(draw.Places(places, dense, 1), members);
    c.fY = draw.Choose(draw.Places(places, dense, 1), members);
    Values results;
    for (int i = 0; i < 4 * members; ++i) {
      const auto at = [&draw](const Values& v) {
        return v[static_cast<std::size_t>(draw.Below(static_cast<int>(v.size())))];
      };
      results.push_back(*combine(at(c.fX), at(c.fY)));
    }
    const int range = *std::max_element(results.begin(), results.end()) + members;
    while (results.size() < static_cast<std::size_t>(8 * members)) {
      results.push_back(draw.Below(range));
    }
    std::sort(results.begin(), results.end());
    results.erase(std::unique(results.begin(), results.end()), results.end());
    c.fZ = draw.Choose(results, members);
  }
  return cases;
}

// z of a quotient holds products; the quotients narrow x.
std::vector<Case> MakeCases(const Operation& operation, bool dense, int members) {
  const Combine combine = operation.fCombine == literal::Divide ? literal::Multiply : operation.fCombine;
  return MakeCases(combine, dense, members);
}

std::size_t At(int i) {
  return static_cast<std::size_t>(i);
}

// ---- Ours

struct Sets {
  explicit Sets(const Case& c) : fX(bench::MakeSet(c.fX)), fY(bench::MakeSet(c.fY)), fZ(bench::MakeSet(c.fZ)) {}
  VokFenEnumInteger fX;
  VokFenEnumInteger fY;
  VokFenEnumInteger fZ;
};

void MeasureOurs(benchmark::State& state, const std::vector<Case>& cases,
                 void (*run)(VokFenEnumInteger&, VokFenEnumInteger&, VokFenEnumInteger&)) {
  const std::vector<Sets> originals(cases.begin(), cases.end());
  std::vector<Sets> copies = originals;
  bench::MeasurePass(
      state, static_cast<int>(cases.size()), [&](int i) { copies[At(i)] = originals[At(i)]; },
      [&](int i) { run(copies[At(i)].fX, copies[At(i)].fY, copies[At(i)].fZ); });
}

// ---- The plain ways

template <class Collect>
void MeasureReference(benchmark::State& state, const std::vector<Case>& cases, const Operation& operation,
                      Collect collect) {
  std::vector<Case> copies = cases;
  const auto pick = [](Case& c, int which) -> Values& { return which == 0 ? c.fX : which == 1 ? c.fY : c.fZ; };
  bench::MeasurePass(
      state, static_cast<int>(cases.size()), [&](int i) { copies[At(i)] = cases[At(i)]; },
      [&](int i) {
        Case& c = copies[At(i)];
        literal::Intersect(pick(c, operation.fTarget),
                           collect(pick(c, operation.fFirst), pick(c, operation.fSecond), operation.fCombine));
      });
  // The same result as ours, the plain way.
  for (std::size_t i = 0; i < cases.size(); ++i) {
    Sets sets(cases[i]);
    operation.fOurs(sets.fX, sets.fY, sets.fZ);
    Case c = cases[i];
    literal::Intersect(
        pick(c, operation.fTarget),
        literal::CollectPairs(pick(c, operation.fFirst), pick(c, operation.fSecond), operation.fCombine));
    const VokFenEnumInteger& narrowed = operation.fTarget == 0 ? sets.fX : sets.fZ;
    if (bench::ListMembers(narrowed) != pick(c, operation.fTarget)) {
      bench::Abort(std::string("a wrong result of ") + operation.fName);
    }
  }
}

void Sum3(VokFenEnumInteger& x, VokFenEnumInteger& y, VokFenEnumInteger& z) {
  z.CalcSumValue(x, y);
  z.CalcFirstInverseSumValue(x, y);
  z.CalcFirstInverseSumValue(y, x);
}

template <class Collect>
void MeasureSum3(benchmark::State& state, const std::vector<Case>& cases, Collect collect) {
  std::vector<Case> copies = cases;
  bench::MeasurePass(
      state, static_cast<int>(cases.size()), [&](int i) { copies[At(i)] = cases[At(i)]; },
      [&](int i) {
        Case& c = copies[At(i)];
        literal::Intersect(c.fZ, collect(c.fX, c.fY, literal::Add));
        literal::Intersect(c.fX, collect(c.fZ, c.fY, literal::Subtract));
        literal::Intersect(c.fY, collect(c.fZ, c.fX, literal::Subtract));
      });
}

// ---- The peer

class SumSpace : public Gecode::Space {
 public:
  explicit SumSpace(const Case& c)
      : fX(*this, MakeIntSet(c.fX)), fY(*this, MakeIntSet(c.fY)), fZ(*this, MakeIntSet(c.fZ)) {}
  SumSpace(SumSpace& other) : Space(other) {
    fX.update(*this, other.fX);
    fY.update(*this, other.fY);
    fZ.update(*this, other.fZ);
  }
  Gecode::Space* copy() override { return new SumSpace(*this); }
  void Narrow() {
    Gecode::linear(*this, Gecode::IntArgs{1, 1, -1}, Gecode::IntVarArgs{fX, fY, fZ}, Gecode::IRT_EQ, 0,
                   Gecode::IPL_DOM);
    benchmark::DoNotOptimize(status());
  }

 private:
  static Gecode::IntSet MakeIntSet(const Values& values) {
    return Gecode::IntSet(values.data(), static_cast<int>(values.size()));
  }
  Gecode::IntVar fX;
  Gecode::IntVar fY;
  Gecode::IntVar fZ;
};

void MeasureGecode(benchmark::State& state, const std::vector<Case>& cases) {
  std::vector<std::unique_ptr<SumSpace>> masters;
  for (const Case& c : cases) {
    masters.push_back(std::make_unique<SumSpace>(c));
    masters.back()->status();
  }
  std::vector<std::unique_ptr<SumSpace>> clones(cases.size());
  bench::MeasurePass(
      state, static_cast<int>(cases.size()),
      [&](int i) { clones[At(i)].reset(static_cast<SumSpace*>(masters[At(i)]->clone())); },
      [&](int i) { clones[At(i)]->Narrow(); });
}

// ---- Registration

void Register(const std::string& name, std::function<void(benchmark::State&)> run) {
  benchmark::RegisterBenchmark(name.c_str(), std::move(run))->UseManualTime()->Unit(benchmark::kMicrosecond);
}

Values Progression(int count, int first, int step) {
  Values values;
  for (int i = 0; i < count; ++i) {
    values.push_back(first + i * step);
  }
  return values;
}

void RegisterWorst(const std::string& name, const Case& c,
                   void (*run)(VokFenEnumInteger&, VokFenEnumInteger&, VokFenEnumInteger&)) {
  Register("worst/" + name, [=](benchmark::State& state) { MeasureOurs(state, {c}, run); });
}

void RegisterWorstCases() {
  const Values z = Progression(1000, 1, 35000);
  RegisterWorst("sum of 512 and 512, stride 70000", {Progression(512, 0, 70000), Progression(512, 0, 70000), z},
                [](auto& x, auto& y, auto& r) { r.CalcSumValue(x, y); });
  RegisterWorst("product of 1024 and 1024", {Progression(1024, 1, 31), Progression(1024, 2, 29), z},
                [](auto& x, auto& y, auto& r) { r.CalcProdValue(x, y); });
  // No x mod y is in z: every partner is tried.
  RegisterWorst("remainder filter 1000 by 1000, no hit",
                {Progression(1000, 2, 2), Progression(1000, 2002, 2), {1, 3, 5}},
                [](auto& x, auto& y, auto& r) { r.CalcFirstInverseModValue(x, y); });
  RegisterWorst("power inverse 1024 by 1024",
                {Progression(1024, 2, 1), Progression(1024, 0, 1), Progression(1024, 2, 1)},
                [](auto& x, auto& y, auto& r) { r.CalcFirstInversePowerValue(x, y); });
}

}  // namespace

int main(int argc, char** argv) {
  InitEnumIntegers();
  for (const bool dense : {true, false}) {
    for (const int members : {4, 20, 100, 500, 1000}) {
      const std::string at = (dense ? "/dense/" : "/sparse/") + std::to_string(members) + "/";
      for (const Operation& operation : sOperations) {
        // Products of the largest sparse sets leave the integers of this reference.
        if (!dense && members > 500 && operation.fCombine != literal::Add && operation.fCombine != literal::Remainder) {
          continue;
        }
        const std::string name = operation.fName + at;
        Register(name + "ours", [=, &operation](benchmark::State& state) {
          MeasureOurs(state, MakeCases(operation, dense, members), operation.fOurs);
        });
        Register(name + "literal", [=, &operation](benchmark::State& state) {
          MeasureReference(state, MakeCases(operation, dense, members), operation,
                           [](auto&... arguments) { return literal::CollectPairs(arguments...); });
        });
        // Beyond, sorting takes up to a second a call.
        if (members <= 100) {
          Register(name + "sort", [=, &operation](benchmark::State& state) {
            MeasureReference(state, MakeCases(operation, dense, members), operation,
                             [](auto&... arguments) { return literal::SortPairs(arguments...); });
          });
        }
      }
      const std::string name = "sum3" + at;
      Register(name + "ours",
               [=](benchmark::State& state) { MeasureOurs(state, MakeCases(sOperations[0], dense, members), Sum3); });
      Register(name + "literal", [=](benchmark::State& state) {
        MeasureSum3(state, MakeCases(sOperations[0], dense, members),
                    [](auto&... arguments) { return literal::CollectPairs(arguments...); });
      });
      // Beyond, the peer takes tens of milliseconds a call.
      if (members <= 100) {
        Register(name + "gecode",
                 [=](benchmark::State& state) { MeasureGecode(state, MakeCases(sOperations[0], dense, members)); });
      }
    }
  }
  RegisterWorstCases();
  return bench::Main(argc, argv, "4 20 100 500 1000 members, pools of 40000 members");
}
