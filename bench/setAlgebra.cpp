// How fast are intersection and union of enumerated sets, beside other representations of a set?
//
// Each operand of an intersection holds a random half of 2 n places, so that half of its n members remain; each operand
// of a union two thirds of n places. Dense: the places are consecutive numbers; sparse: 64 apart on average. Ours and
// CRoaring change a copy in place (copying is not counted), std:: and Gecode's range iterators write to prepared room.
// Names: operation/density/n/variant; the counter `call` is the time of one call.

#include <roaring/roaring.h>

#include <gecode/int.hh>

#include "Workload.h"

namespace {

using bench::Values;

struct Case {
  Values fA;
  Values fB;
};

std::vector<Case> MakeCases(bool unite, bool dense, int members) {
  bench::Draw draw(20240501);
  std::vector<Case> cases(static_cast<std::size_t>(bench::CountCases(members, 2)));
  for (Case& c : cases) {
    const Values places = draw.Places(unite ? members : 2 * members, dense);
    const int count = unite ? (2 * members + 2) / 3 : members;
    c = {draw.Choose(places, count), draw.Choose(places, count)};
  }
  return cases;
}

// ---- The variants: make an operand, copy, operate in place or into prepared room

struct Ours {
  using Set = VokFenEnumInteger;
  static Set Make(const Values& values) { return bench::MakeSet(values); }
  static void Copy(Set& to, const Set& from) { to = from; }
  static void Intersect(Set& a, const Set& b, const Set&) { benchmark::DoNotOptimize(a.Intersect(b)); }
  static void Unite(Set& a, const Set& b, const Set&) { benchmark::DoNotOptimize(a.Unite(b)); }
  static std::size_t Count(const Set& a) { return a.GetCount(); }
};

struct Std {
  using Set = Values;
  static Set Make(const Values& values) { return values; }
  static void Copy(Set& to, const Set&) {
    to.resize(3000);  // room for the result
  }
  static void Intersect(Set& out, const Set& b, const Set& a) {
    out.erase(std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), out.begin()), out.end());
  }
  static void Unite(Set& out, const Set& b, const Set& a) {
    out.erase(std::set_union(a.begin(), a.end(), b.begin(), b.end(), out.begin()), out.end());
  }
  static std::size_t Count(const Set& a) { return a.size(); }
};

struct Roaring {
  class Set {
   public:
    Set() : fBitmap(roaring_bitmap_create()) {}
    Set(const Set& other) : fBitmap(roaring_bitmap_copy(other.fBitmap)) {}
    Set& operator=(const Set& other) {
      if (this != &other) {
        roaring_bitmap_free(fBitmap);
        fBitmap = roaring_bitmap_copy(other.fBitmap);
      }
      return *this;
    }
    ~Set() { roaring_bitmap_free(fBitmap); }
    roaring_bitmap_t* fBitmap;
  };
  static Set Make(const Values& values) {
    Set set;
    for (const int v : values) {
      roaring_bitmap_add(set.fBitmap, static_cast<std::uint32_t>(v));
    }
    return set;
  }
  static void Copy(Set& to, const Set& from) { to = from; }
  static void Intersect(Set& a, const Set& b, const Set&) { roaring_bitmap_and_inplace(a.fBitmap, b.fBitmap); }
  static void Unite(Set& a, const Set& b, const Set&) { roaring_bitmap_or_inplace(a.fBitmap, b.fBitmap); }
  static std::size_t Count(const Set& a) { return roaring_bitmap_get_cardinality(a.fBitmap); }
};

struct GecodeRanges {
  struct Set {
    Gecode::IntSet fSet;
    std::vector<std::pair<int, int>> fRanges;  // the result
  };
  static Set Make(const Values& values) { return {Gecode::IntSet(values.data(), static_cast<int>(values.size())), {}}; }
  static void Copy(Set& to, const Set&) {
    to.fRanges.clear();
    to.fRanges.reserve(3000);
  }
  template <class Iterator>
  static void Write(Set& out, Iterator ranges) {
    for (; ranges(); ++ranges) {
      out.fRanges.emplace_back(ranges.min(), ranges.max());
    }
  }
  static void Intersect(Set& out, const Set& b, const Set& a) {
    using Ranges = Gecode::IntSetRanges;
    Ranges first(a.fSet);
    Ranges second(b.fSet);
    Write(out, Gecode::Iter::Ranges::Inter<Ranges, Ranges>(first, second));
  }
  static void Unite(Set& out, const Set& b, const Set& a) {
    using Ranges = Gecode::IntSetRanges;
    Ranges first(a.fSet);
    Ranges second(b.fSet);
    Write(out, Gecode::Iter::Ranges::Union<Ranges, Ranges>(first, second));
  }
  static std::size_t Count(const Set& a) {
    std::size_t count = 0;
    for (const auto& [low, high] : a.fRanges) {
      count += static_cast<std::size_t>(high - low + 1);
    }
    return count;
  }
};

template <class Variant>
void Measure(benchmark::State& state, bool unite, bool dense, int members) {
  using Set = typename Variant::Set;
  const std::vector<Case> cases = MakeCases(unite, dense, members);
  std::vector<Set> a;
  std::vector<Set> b;
  for (const Case& c : cases) {
    a.push_back(Variant::Make(c.fA));
    b.push_back(Variant::Make(c.fB));
  }
  std::vector<Set> z(cases.size());
  const auto copy = [&](int i) { Variant::Copy(z[static_cast<std::size_t>(i)], a[static_cast<std::size_t>(i)]); };
  const auto at = [](int i) { return static_cast<std::size_t>(i); };
  const int count = static_cast<int>(cases.size());
  if (unite) {
    bench::MeasurePass(state, count, copy, [&](int i) { Variant::Unite(z[at(i)], b[at(i)], a[at(i)]); });
  } else {
    bench::MeasurePass(state, count, copy, [&](int i) { Variant::Intersect(z[at(i)], b[at(i)], a[at(i)]); });
  }
  for (std::size_t i = 0; i < cases.size(); ++i) {
    Values expected;
    if (unite) {
      std::set_union(cases[i].fA.begin(), cases[i].fA.end(), cases[i].fB.begin(), cases[i].fB.end(),
                     std::back_inserter(expected));
    } else {
      std::set_intersection(cases[i].fA.begin(), cases[i].fA.end(), cases[i].fB.begin(), cases[i].fB.end(),
                            std::back_inserter(expected));
    }
    if (Variant::Count(z[i]) != expected.size()) {
      bench::Abort("a wrong result");
    }
  }
}

template <class Variant>
void Add(const std::string& name, bool unite, bool dense, int members) {
  const std::string full = std::string(unite ? "union" : "intersection") + (dense ? "/dense/" : "/sparse/") +
                           std::to_string(members) + "/" + name;
  benchmark::RegisterBenchmark(full.c_str(),
                               [=](benchmark::State& state) { Measure<Variant>(state, unite, dense, members); })
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
}

}  // namespace

int main(int argc, char** argv) {
  InitEnumIntegers();
  for (const bool unite : {false, true}) {
    for (const bool dense : {true, false}) {
      for (const int members : {4, 8, 20, 100, 500, 1000}) {
        Add<Ours>("ours", unite, dense, members);
        Add<Std>("std", unite, dense, members);
        Add<Roaring>("roaring", unite, dense, members);
        Add<GecodeRanges>("gecode", unite, dense, members);
      }
    }
  }
  return bench::Main(argc, argv, "4 8 20 100 500 1000 members, pools of 40000 members");
}
