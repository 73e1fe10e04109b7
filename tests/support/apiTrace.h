// Plays a string of bytes as calls on a few integer values, each beside a plain model of it, and tells the first call
// after which status, flag or members differ.
//
// Bytes   Two of a header: how many of the values a, b, s, i, c are operands, and the limit of members. Then six a
//         call: what, three operands, two numbers. Bytes that make no whole call are left out; 200 calls at most.
// Values  a, b, c are enumerated sets, s a single and i an interval; `sorted` is a vector of elements. One value may
//         stand in several roles of a call.
// Models  Plain sorted values and a flag. The narrowings are those of narrowing/literal.h; the rest is here.
//
// FindMismatch() is the entry for tests and fuzzers. It keeps no state between two plays.
#pragma once

#include <cstring>
#include <streambuf>

#include "framework/Vokipstream.h"
#include "framework/Vokopstream.h"
#include "narrowing/literal.h"
#include "numbers/SDError.h"
#include "numbers/VokFenSingleBoolean.h"

namespace apiTrace {

using enumSets::kAny, enumSets::kMax, enumSets::kMin, enumSets::kNil;
using narrowing::literal::SetOf;
using support::Filter;
using support::Model;
using support::Values;
using EnumSet = VokFenEnumInteger;
using Vector = VokSVectorImp_SubIntBase;
using Answer = std::int64_t;
namespace literal = narrowing::literal;

using Bytes = std::vector<std::uint8_t>;
inline constexpr std::size_t kHeaderSize = 2;
inline constexpr std::size_t kCallSize = 6;
inline constexpr std::size_t kMostCalls = 200;
inline constexpr int kAllOperands = 5;
inline constexpr const char* kNames[kAllOperands] = {"a", "b", "s", "i", "c"};

// A planted fault for tests of the tester: spoils the model of *this* behind the call.
using Fault = void (*)(const char* call, Model& x);

// ---- What the bytes stand for

// Mostly small numbers, 0 for the byte 0.
inline VokLong NumberOf(std::uint8_t byte) {
  static constexpr VokLong kRare[] = {kNil, kNil + 1, kMin - 1, kMin, kMin + 1,  kMax - 1, kMax,  kMax + 1,
                                      kAny, 1000,     1021,     1022, 1023,      1024,     -1023, 46341,
                                      64,   -65536,   30000000, 99,   -46340000, 2048};
  return byte < 224 ? (byte % 2 == 0 ? byte % 16 / 2 : -(byte % 16 + 1) / 2) : kRare[(byte - 224) % std::size(kRare)];
}

// The members v, v + step... that the low bits of m choose, with the flag and the step of its high bits.
inline EnumSet Chosen(VokLong v, unsigned m) {
  EnumSet set =
      (m & 0x4000U) != 0 ? EnumSet(enumSets::Element(v), 0) : EnumSet(VokFenSingleInteger(v == kAny ? 0 : v), 0);
  for (unsigned k = 0; k < 12; ++k) {
    if ((m >> k & 1U) != 0) {
      set.Insert(VokWrapAdd(v, static_cast<VokLong>(k * (1 + (m >> 12 & 3U)))));
    }
  }
  return set;
}

// A set printed and read again; the set that a text or a record stands for.
inline EnumSet FromText(const std::string& text) {
  EnumSet set;
  std::istringstream is(text);
  set.InputValue(is);
  return set;
}
inline EnumSet Printed(const EnumSet& set) {
  std::ostringstream os;
  set.PrintOn(os);
  return FromText(os.str());
}
inline EnumSet Recorded(const EnumSet& set) {
  std::stringstream bytes;
  Vokopstream os(bytes);
  set.Write(os);
  Vokipstream is(bytes);
  EnumSet read;
  read.Read(is);
  return read;
}
inline EnumSet FromRecord(int flag, std::initializer_list<VokLong> members) {
  std::stringstream bytes;
  Vokopstream os(bytes);
  os << flag << static_cast<unsigned>(members.size());
  for (const VokLong v : members) {
    os << static_cast<long>(v);
  }
  Vokipstream is(bytes);
  EnumSet read;
  read.Read(is);
  return read;
}
inline std::string Pair(const char* open, VokLong v, VokLong w, const char* close) {
  return open + std::to_string(v) + ", " + std::to_string(w) + close;
}

// The flag, which shows in the record only.
class FlagReader : private std::streambuf {
 public:
  FlagReader() : fStream(this), fOut(fStream) {}

  int Read(const EnumSet& set) {
    fCount = 0;
    set.Write(fOut);
    return fWord[0] + 256 * fWord[1] + 65536 * fWord[2] + 16777216 * static_cast<signed char>(fWord[3]);
  }

 private:
  std::streamsize xsputn(const char* bytes, std::streamsize n) override {
    for (std::streamsize i = 0; i < n && fCount < 4; ++i) {
      fWord[fCount++] = static_cast<unsigned char>(bytes[i]);
    }
    return n;
  }
  int overflow(int c) override { return c; }

  unsigned char fWord[4] = {};
  int fCount = 4;
  std::ostream fStream;
  Vokopstream fOut;
};

// What a truth value reads after a call: its status and 3 for Nil, 2 for true, 1 for false, 0 for nothing known.
template <class Call>
Answer TruthAfter(Call call) {
  VokFenSingleBoolean truth;
  const int status = call(truth);
  return 10 * status + (truth.IsNil() != 0 ? 3 : truth.IsUndefined() != 0 ? 0 : truth.IsPossible(1) != 0 ? 2 : 1);
}

// ---- The models of the calls

inline bool IsStrange(const Model& m) {
  return m.values.empty() && m.emptyMeansAny != 0 && m.emptyMeansAny != 1;
}
inline Model Inserted(Model set, const Values& values) {
  for (const VokLong v : values) {
    literal::Insert(set, v);
  }
  return set;
}
inline Answer Become(Model& set, Model other) {
  set = std::move(other);
  return 1;
}
// 1 also for the member that finds no room and turns the set Any, but for the call that does so.
inline Answer Insert(Model& set, VokLong v) {
  return literal::Insert(set, v) ? 1 : 0;
}
inline Model ChosenModel(VokLong v, unsigned m) {
  const bool nil = (m & 0x4000U) == 0 && v == kNil;
  Model set = nil ? SetOf({}) : SetOf({(m & 0x4000U) == 0 && v == kAny ? 0 : v}, (m & 0x4000U) != 0 ? 1 : 0);
  for (unsigned k = 0; k < 12; ++k) {
    if ((m >> k & 1U) != 0) {
      literal::Insert(set, VokWrapAdd(v, static_cast<VokLong>(k * (1 + (m >> 12 & 3U)))));
    }
  }
  return set;
}
inline Answer SimpleInsert(Model& set, VokLong v) {
  const auto at = std::lower_bound(set.values.begin(), set.values.end(), v);
  if (at == set.values.end() || *at != v) {
    set.values.insert(at, v);
  }
  set.any = false;
  return 1;
}
inline Answer RemoveValue(Model& set, VokLong v) {
  const std::size_t size = set.values.size();
  set = SetOf(Filter(set.values, [v](VokLong u) { return u != v; }), set.emptyMeansAny);
  return set.values.size() != size ? 1 : 0;
}
// The width wraps at 32 bits: from the greatest integers to the least it is small.
inline Answer SetRange(Model& set, VokLong low, VokLong high, VokLong v) {
  if (VokToUnsigned(high) - VokToUnsigned(low) + 1U >= EnumSet::sMAX_CARD) {
    return Become(set, SetOf({}, 1));
  }
  if (low > high) {
    low = high = v;
  }
  set = SetOf({});
  for (std::int64_t k = low; k <= high; ++k) {
    if (Insert(set, static_cast<VokLong>(k)) == 0) {
      return 0;
    }
  }
  return 1;
}
inline Answer Bound(Model& set, VokLong v, bool lower) {
  return set.any       ? 1
         : set.IsNil() ? Insert(set, v)
         : lower       ? SetRange(set, v, set.values.back(), v)
                       : SetRange(set, set.values[0], v, v);
}
inline VokLong Step(const Model& set, VokLong v, VokLong by) {
  if (set.any && (by > 0 ? v <= kMax : v >= kMin)) {
    return v + by;
  }
  const Values from = Filter(set.values, [&](VokLong u) { return by > 0 ? u >= v : u <= v; });
  const auto next = [&](std::size_t n) { return by > 0 ? from[n] : from[from.size() - 1 - n]; };
  return from.empty() ? v : next(0) != v ? next(0) : from.size() == 1 ? VokWrapAdd(v, by) : next(1);
}
inline Answer Unite(Model& set, const Model& o) {
  if (set.any || o.IsNil()) {
    return 1;
  }
  const std::size_t size = set.values.size();
  const bool taken = o.any || set.IsNil();
  set = literal::Union(set, o);
  return taken || set.any || set.values.size() != size ? 1 : 0;
}
inline Answer UniteAny(Model& set, const Model& o) {
  if (o.kind == 'e') {
    return Unite(set, o);
  }
  return o.kind == 'i' ? Become(set, SetOf({}))
         : set.any     ? 1
         : o.any       ? Become(set, SetOf({}, 1))
         : o.IsNil()   ? 0
                       : Insert(set, o.values[0]);
}
inline Answer IsIntersected(const Model& set, const Model& other) {
  Model common = literal::Enumerated(other);
  if (set.IsNil() || common.IsNil()) {
    return 0;
  }
  literal::Intersect(common, set);
  return common.IsNil() ? 0 : 1;
}
// Into itself: what is moved is what the set holds then, and of that it keeps its own positions.
inline Answer Bisect(Model& set, Model& other, int selection) {
  const std::size_t n = set.values.size();
  if (n == 0 || other.kind != 'e' || selection > 3) {
    return n == 0 ? 0 : Become(set, SetOf({}));
  }
  const std::size_t cut = selection < 2 ? (n - 1) / 2 + 1 : selection == 2 ? 1 : n - 1;
  const bool low = selection % 2 == 0;
  const auto part = [cut](const Values& v, bool first) {
    const auto at = v.begin() + static_cast<std::ptrdiff_t>(std::min(cut, v.size()));
    return first ? Values(v.begin(), at) : Values(at, v.end());
  };
  const Values all = set.values;
  other = SetOf(part(all, low));
  set = SetOf(part(&set == &other ? set.values : all, !low), set.emptyMeansAny);
  return 1;
}
inline Model ReadBack(const Model& set) {
  Values values = set.values;
  std::transform(values.begin(), values.end(), values.begin(), [](VokLong v) { return std::clamp(v, kMin, kMax); });
  return values.empty() ? set : values.size() == 1 ? SetOf(values) : Inserted(SetOf({}), values);
}
inline Model RangeRead(VokLong v, VokLong w) {
  Model set = SetOf({}, 1);
  const std::int64_t width = std::int64_t{w} - v + 1;
  if (width < std::int64_t{EnumSet::sMAX_CARD}) {
    set = SetOf({});
    for (std::int64_t k = v; k <= w; ++k) {
      set.values.push_back(static_cast<VokLong>(k));
    }
  }
  return set;
}
inline Answer IntersectValues(Model& set, const Values& values, int flag) {
  if (set.IsNil() || values.empty()) {
    return set.IsNil() ? 0 : Become(set, SetOf({}));
  }
  return set.any ? Become(set, SetOf(values, flag)) : literal::Intersect(set, SetOf(values));
}

// The inherited operations see bounds, cardinality and single values.
inline bool IsOne(const Model& m) {
  const Values bounds = literal::Bounds(m);
  return !m.any && !bounds.empty() && bounds[0] == bounds[1];
}
inline Answer RemoveGiven(Model& m, const Model& given) {
  if (given.IsNil()) {
    return literal::MakeNil(m);
  }
  if (!IsOne(given) || m.any || m.IsNil()) {
    return 0;
  }
  const VokLong v = given.values[0];
  if (IsOne(m)) {
    return m.values[0] == v ? literal::MakeNil(m) : 0;
  }
  if (m.kind == 'e') {
    return RemoveValue(m, v);
  }
  const bool atEnd = m.values[0] == v || m.values[1] == v;
  m = literal::IntervalOf(m.values[0] + (m.values[0] == v ? 1 : 0), m.values[1] - (m.values[1] == v ? 1 : 0));
  return atEnd ? 1 : 0;
}
inline Answer EqualTruth(const Model& x, const Model& y) {
  if (x.IsNil() || y.IsNil() || x.any || y.any) {
    return x.IsNil() || y.IsNil() ? 13 : 0;
  }
  const Values bounds = literal::Bounds(y);
  const bool common = std::any_of(x.values.begin(), x.values.end(), [&](VokLong v) {
    return y.kind == 'i' ? bounds[0] <= v && v <= bounds[1] : literal::Contains(y, v);
  });
  return !common ? 11 : IsOne(x) && IsOne(y) ? 12 : 0;
}
inline Answer OrderTruth(const Model& x, const Model& y, int strict) {
  if (x.IsNil() || y.IsNil() || x.any || y.any) {
    return x.IsNil() || y.IsNil() ? 13 : 0;
  }
  const Values left = literal::Bounds(x);
  const Values right = literal::Bounds(y);
  return std::int64_t{left[1]} + strict <= right[0] ? 12 : std::int64_t{left[0]} + strict > right[1] ? 11 : 0;
}

// The vector of elements: plain values and a capacity, which grows by threes.
struct Elements {
  Values values;
  unsigned capacity = 5;

  bool Grow(unsigned n) {
    const bool grows = n > capacity;
    capacity += grows ? (n - capacity + 2) / 3 * 3 : 0;
    return grows;
  }
  Answer Put(VokLong v, std::size_t at) {
    Grow(static_cast<unsigned>(values.size()) + 1);
    values.insert(values.begin() + static_cast<std::ptrdiff_t>(at), v);
    return 1;
  }
  Answer Add(VokLong v) {
    std::size_t at = values.size();
    while (at > 0 && v < values[at - 1]) {
      --at;
    }
    return Put(v, at);
  }
  Answer AddUnique(VokLong v) {
    unsigned at = Search(v, -1, 0);
    if (at >= values.size()) {
      return Add(v);
    }
    if (values[at] == v) {
      return 1;
    }
    const VokLong low = values[at];
    while (at < values.size() && values[at] == low) {
      ++at;
    }
    return Put(v, at);
  }
  Answer Remove(unsigned at, unsigned n) {
    if (at >= capacity) {
      return 0;
    }
    const std::size_t first = std::min<std::size_t>(at, values.size());
    const std::size_t end = std::min<std::size_t>(first + n, values.size());
    values.erase(values.begin() + static_cast<std::ptrdiff_t>(first),
                 values.begin() + static_cast<std::ptrdiff_t>(end));
    return 1;
  }
  // The halving search of v: side 0 for v itself, -1 for the greatest not above, 1 for the smallest not below. Which
  // of equal elements is found is part of it, and what is found among elements out of order.
  unsigned Search(VokLong v, int side, int first) const {
    unsigned found = capacity + 1;
    unsigned lo = 0;
    unsigned hi = static_cast<unsigned>(values.size()) - 1;
    if (values.empty()) {
      return found;
    }
    while (lo < hi) {
      const unsigned mid = (lo + hi) / 2;
      if (values[mid] == v) {
        lo = mid;
        break;
      }
      if ((values[mid] < v && side < 0) || (values[mid] > v && side > 0)) {
        found = mid;
      }
      if (values[mid] < v) {
        lo = mid + 1;
      } else {
        hi = mid == 0 ? 0 : mid - 1;
      }
    }
    if (values[lo] == v || (side < 0 && values[lo] < v) || (side > 0 && values[lo] > v)) {
      found = lo;
    }
    while (first != 0 && found < values.size() && found > 0 && values[found - 1] == values[found]) {
      --found;
    }
    return found;
  }
};

// ---- The calls

// What a call works on; the members with capital letters are the models.
struct Scene {
  EnumSet a, b, c;
  VokFenSingleInteger s;
  VokFenIntervalInteger i;
  Vector sorted{4, 3U, 0};
  std::array<Model, kAllOperands> models = {SetOf({}, 1), SetOf({}, 1), literal::SingleOf(kAny),
                                            literal::IntervalOf(kMin, kMax), SetOf({}, 1)};
  Elements elements;

  // Of the call at hand: *this* and two operands of any kind, two sets, two numbers and the bits of a set.
  int xAt = 0, yAt = 0, zAt = 0, oAt = 0, pAt = 0;
  VokLong v = 0, w = 0;
  unsigned m = 0;

  VokTarnInteger& Value(int at) {
    VokTarnInteger* const all[] = {&a, &b, &s, &i, &c};
    return *all[at];
  }
  EnumSet& Set(int at) { return at == 0 ? a : at == 1 ? b : c; }
  Model& ModelAt(int at) { return models[static_cast<std::size_t>(at)]; }
};

struct Call {
  const char* text;  // an expression of x, y, z, o, p, v, w, m and the values by name
  Answer (*real)(Scene&);
  Answer (*plain)(Scene&);
  // A set without members whose flag is neither 0 nor 1 reads neither Nil nor Any: not every call says what it does.
  bool takesStrange;
  const support::Operation* operation = nullptr;  // instead of the two functions
};

inline int NotAbove(const SubIntBase& element, void* bound) {
  return element <= *static_cast<const VokLong*>(bound) ? 1 : 0;
}

inline void* BoundOf(VokLong v) {
  static VokLong bound;
  bound = v;
  return &bound;
}

// Calls that make values stand first: they are played more often.
inline constexpr std::size_t kMakers = 13;

inline const std::vector<Call>& Calls() {
#define CALL(takesStrange, expression, ...) \
  Call {                                    \
#expression, \
       [](Scene& t) -> Answer { \
         [[maybe_unused]] VokFenSingleInteger& s = t.s; \
         [[maybe_unused]] VokFenIntervalInteger& i = t.i; \
         [[maybe_unused]] Vector& sorted = t.sorted; \
         [[maybe_unused]] const VokLong v = t.v, w = t.w; \
         [[maybe_unused]] const unsigned m = t.m; \
         [[maybe_unused]] EnumSet& x = t.Set(t.xAt); \
         [[maybe_unused]] EnumSet& o = t.Set(t.oAt); \
         [[maybe_unused]] EnumSet& p = t.Set(t.pAt); \
         [[maybe_unused]] VokTarnInteger& y = t.Value(t.yAt); \
         return static_cast<Answer>(expression); \
       }, \
       [](Scene& t) -> Answer { \
         [[maybe_unused]] const VokLong v = t.v, w = t.w; \
         [[maybe_unused]] const unsigned m = t.m; \
         [[maybe_unused]] Model &x = t.ModelAt(t.xAt), &y = t.ModelAt(t.yAt); \
         [[maybe_unused]] Model &o = t.ModelAt(t.oAt), &p = t.ModelAt(t.pAt); \
         [[maybe_unused]] Model &s = t.models[2], &i = t.models[3]; \
         [[maybe_unused]] Elements& sorted = t.elements; \
         return static_cast<Answer>(__VA_ARGS__); \
       }, \
       takesStrange                              \
  }
  static const std::vector<Call> calls = [] {
    std::vector<Call> all = {
        CALL(true, (x = Chosen(v, m), 1), Become(x, ChosenModel(v, m))),
        CALL(true, (x = Chosen(v, m), x.Insert(w)), (x = ChosenModel(v, m), Insert(x, w))),
        CALL(true, x.SetUndefinedValue(), Become(x, SetOf({}, 1))),
        CALL(true, (x = VokFenEnumInteger(enumSets::Element(v), 0), 1), Become(x, SetOf({v}, 1))),
        CALL(true, (x = VokFenEnumInteger(s, 0), 1), Become(x, literal::Enumerated(s))),
        CALL(true, (x = VokFenEnumInteger(std::array<VokLong, 5>{4, v, w, -3, v}.data()), 1),
             Become(x, Inserted(SetOf({}), {v, -3, w, v}))),
        CALL(true, (x = FromRecord(static_cast<int>(m % 9), {w, v, 2, w}), 1),
             Become(x, Inserted(SetOf({}, static_cast<int>(m % 9)), {w, v, 2, w}))),
        CALL(true, (x = FromText(Pair("[", v, w, "]")), 1), Become(x, RangeRead(v, w))),
        CALL(true, x.SetExactValue(v), (x = SetOf({}), Insert(x, v))),
        CALL(true, x.Insert(v), Insert(x, v)),
        CALL(true, x.AddExactValue(v), Insert(x, v)),
        CALL(true, (s = VokFenSingleInteger(v), 1), Become(s, literal::SingleOf(v))),
        CALL(true, (i = VokFenIntervalInteger(v, w), 1), Become(i, literal::IntervalOf(v, w))),

        CALL(true, x.SetNilValue(), Become(x, SetOf({}))),
        CALL(true, (x = o, 1), Become(x, o)),
        CALL(true, (x = VokFenEnumInteger(o), 1), Become(x, o)),
        CALL(true, (x = s, 1),
             Become(x, s.IsNil() ? SetOf({})
                       : s.any   ? SetOf({kAny})
                                 : SetOf({}, 1))),
        CALL(true, (s = VokFenSingleInteger(kAny), 1), Become(s, literal::SingleOf(kAny))),
        CALL(true, (x = Recorded(o), 1), Become(x, Inserted(SetOf({}, o.emptyMeansAny), o.values))),
        CALL(false, (x = Printed(o), 1), Become(x, ReadBack(o))),
        CALL(true, (x = FromText(Pair("{", v, w, ",1}")), 1), Become(x, Inserted(SetOf({}), {v, w, 1}))),
        CALL(true, (x = FromText(Pair("{", v, w, "?")), 1), Become(x, SetOf({}))),
        CALL(true, x.SimpleInsert(v), SimpleInsert(x, v)),
        CALL(true, x.RemoveExactValue(v), RemoveValue(x, v)),
        CALL(false, x.SetLowerBound(v), Bound(x, v, true)),
        CALL(false, x.SetUpperBound(v), Bound(x, v, false)),
        CALL(true, (x.Minus(), 0), (x.values = literal::Changed(x, VokWrapNegate).values, 0)),
        CALL(true, x.CheckErrorStatus(), 0),
        CALL(true, (SubIntBase::base_div(v, 0), x.CheckErrorStatus()), Become(x, SetOf({}))),
        CALL(true, x.CalcMinValue(), literal::IntersectSingle(x, literal::SingleOf(kMin))),
        CALL(true, x.CalcMaxValue(), literal::IntersectSingle(x, literal::SingleOf(kMax))),
        CALL(true, x.CalcZeroValue(), literal::IntersectSingle(x, literal::SingleOf(0))),
        CALL(true, x.CalcOneValue(), literal::IntersectSingle(x, literal::SingleOf(1))),

        CALL(true, x.GetCount(), x.values.size()),
        CALL(true, x.IsNil() + 2 * x.IsUndefined(), (x.IsNil() ? 1 : 0) + (x.any ? 2 : 0)),
        CALL(true, x.GetCardinality(), x.any ? -1 : static_cast<int>(x.values.size())),
        CALL(true, x.Contains(v), literal::Contains(x, v) ? 1 : 0),
        CALL(false, x.GetLowerBound(),
             x.any       ? kMin
             : x.IsNil() ? kMax
                         : x.values.front()),
        CALL(false, x.GetUpperBound(),
             x.any       ? kMax
             : x.IsNil() ? kMin
                         : x.values.back()),
        CALL(true, x.GetNextExactValue(v), Step(x, v, 1)),
        CALL(true, x.GetPrevExactValue(v), Step(x, v, -1)),
        CALL(false, x.IsIntersected(y), IsIntersected(x, y)),

        CALL(true, x.Intersect(o), literal::Intersect(x, o)),
        CALL(true, x.Intersect(s), literal::IntersectSingle(x, s)),
        CALL(true, x.Intersect(i), literal::IntersectInterval(x, i)),
        CALL(true, x.Intersect(y), literal::EqualTo(x, y)),
        CALL(true, x.Intersect(o, NotAbove, BoundOf(v)),
             literal::IntersectFiltered(x, o, [v](VokLong u) { return u <= v; })),
        CALL(true, x.Intersect(o, p, NotAbove, BoundOf(v)),
             literal::IntersectUnion(x, o, p, [v](VokLong u) { return u <= v; })),
        CALL(true, x.IntersectInverse(s), literal::IntersectInverse(x, s)),
        CALL(false, x.IntersectInverse(i), literal::IntersectInverse(x, i)),
        CALL(true, x.Unite(o), Unite(x, o)),
        CALL(true, x.Unite(s), UniteAny(x, s)),
        CALL(true, x.Unite(y), UniteAny(x, y)),
        CALL(true, x.Assign(y), Become(x, literal::Enumerated(y))),
        CALL(true, (x.Bisect(y, static_cast<VokTarnAny::ValueSelection>(m % 5)), 0),
             0 * Bisect(x, y, static_cast<int>(m % 5))),
        CALL(true, x.KeepMembers([](VokLong u) { return u % 2 == 0; }),
             literal::Keep(x, [](VokLong u) { return u % 2 == 0; })),
        CALL(true, x.IntersectValues(o.GetMembers(), 0, 1), IntersectValues(x, Values(o.values), 1)),

        CALL(false, x.CalcUnequalValue(y), RemoveGiven(x, Model(y))),
        CALL(false, x.CalcInverseUnequalValue(y), RemoveGiven(y, Model(x))),
        CALL(false, TruthAfter([&x, &y](auto& truth) { return x.CalcIsEqual(y, truth); }), EqualTruth(x, y)),
        CALL(false, TruthAfter([&x, &y](auto& truth) { return x.CalcIsLessOrEqual(y, truth); }), OrderTruth(x, y, 0)),
        CALL(false, TruthAfter([&x, &y](auto& truth) { return x.CalcIsLess(y, truth); }), OrderTruth(x, y, 1)),

        CALL(true, sorted.Add(enumSets::Element(v)), sorted.Add(v)),
        CALL(true, sorted.AddUnique(enumSets::Element(v)), sorted.AddUnique(v)),
        CALL(true, sorted.AddAt(enumSets::Element(v), m % (sorted.Size() + 1)),
             sorted.Put(v, m % (sorted.values.size() + 1))),
        CALL(true, sorted.Detach(enumSets::Element(v)), sorted.Remove(sorted.Search(v, 0, 0), 1)),
        CALL(true, sorted.DetachAt(m % 9, m / 16 % 4), sorted.Remove(m % 9, m / 16 % 4)),
        CALL(true, (sorted.Flush(), 0), (sorted.values.clear(), 0)),
        CALL(true, sorted.Resize(m % 64), sorted.Grow(m % 64)),
        CALL(true, (sorted = Vector(sorted), 0), 0),
        CALL(true, sorted.Find(enumSets::Element(v)), sorted.Search(v, 0, 0)),
        CALL(true, sorted.ClusteredFind(enumSets::Element(v)), sorted.Search(v, 0, 1)),
        CALL(true, sorted.FindLowerBound(enumSets::Element(v), m % 2), sorted.Search(v, -1, m % 2)),
        CALL(true, sorted.FindUpperBound(enumSets::Element(v), m % 2), sorted.Search(v, 1, m % 2)),
    };
    for (const auto* const table : {&support::Operations(), &support::Operations<EnumSet>()}) {
      for (const support::Operation& op : *table) {
        all.push_back({op.call, nullptr, nullptr, false, &op});
      }
    }
    return all;
  }();
#undef CALL
  return calls;
}

// ---- Playing

class Player {
 public:
  Player(const std::uint8_t* data, std::size_t size, Fault fault) : fData(data), fFault(fault) {
    fCalls = size < kHeaderSize ? 0 : std::min((size - kHeaderSize) / kCallSize, kMostCalls);
    fOperands = fCalls == 0 ? 1 : (data[0] + kAllOperands - 1) % kAllOperands + 1;
  }

  // The number of the first call after which something differs; -1 when there is none. With a log, the statements are
  // written down with what the models say.
  int Play(std::string* log) {
    const VokULong limit = EnumSet::sMAX_CARD;
    EnumSet::sMAX_CARD = fCalls > 0 && fData[1] % 4 == 1 ? 4 : limit;
    if (log != nullptr && EnumSet::sMAX_CARD != limit) {
      *log += "VokFenEnumInteger::sMAX_CARD = 4;\n";
    }
    int differs = -1;
    for (std::size_t k = 0; k < fCalls && differs < 0; ++k) {
      differs = Same(fData + kHeaderSize + kCallSize * k, log) ? -1 : static_cast<int>(k);
    }
    SDClearError();
    EnumSet::sMAX_CARD = limit;
    return differs;
  }

 private:
  int SetAt(std::uint8_t byte) const {
    constexpr int kSets[] = {0, 1, 4};
    return kSets[byte % (fOperands == 5 ? 3 : std::min(fOperands, 2))];
  }

  bool Same(const std::uint8_t* bytes, std::string* log) {
    // One call in three makes a value.
    const std::size_t which = bytes[0] < 85 ? bytes[0] % kMakers : (bytes[0] - 85U) % Calls().size();
    const Call& call = Calls()[which];
    fScene.xAt = SetAt(bytes[1]);
    fScene.yAt = bytes[2] % fOperands;
    fScene.zAt = bytes[3] % fOperands;
    fScene.oAt = SetAt(bytes[2]);
    fScene.pAt = SetAt(bytes[3]);
    fScene.v = NumberOf(bytes[4]);
    fScene.w = NumberOf(bytes[5]);
    fScene.m = bytes[3] * 256U + bytes[5];
    if (!call.takesStrange && std::any_of(fScene.models.begin(), fScene.models.end(), IsStrange)) {
      return true;
    }
    Answer expected = 0;
    Answer answer = 0;
    if (call.operation == nullptr) {
      answer = call.real(fScene);
      expected = call.plain(fScene);
    } else if (!Narrow(*call.operation, expected, answer)) {
      return true;
    }
    if (fFault != nullptr) {
      fFault(call.text, fScene.ModelAt(fScene.xAt));
    }
    std::string difference = answer != expected ? "the call gave " + std::to_string(answer) : FindDifference();
    if (log != nullptr) {
      *log += Statement(call, expected) + (difference.empty() ? "" : "  // " + difference) + "\n" +
              (difference.empty() ? "" : States());
    }
    return difference.empty();
  }

  // False where the call is left out: on sets only, or too many tuples for the plain way.
  bool Narrow(const support::Operation& op, Answer& expected, Answer& answer) {
    const bool typed = &op >= support::Operations<EnumSet>().data() &&
                       &op < support::Operations<EnumSet>().data() + support::Operations<EnumSet>().size();
    const std::array<int, 3> at = {fScene.xAt, typed ? fScene.oAt : fScene.yAt, typed ? fScene.pAt : fScene.zAt};
    std::size_t tuples = 1;
    for (unsigned k = 0; k < op.operands; ++k) {
      tuples *= std::max<std::size_t>(fScene.ModelAt(at[k]).values.size(), 1);
    }
    if (op.operands == 3 && tuples > 1000) {
      return false;
    }
    const narrowing::Case c = {fScene.ModelAt(at[0]), fScene.ModelAt(at[1]), fScene.ModelAt(at[2])};
    narrowing::Outcome outcome = literal::Run(op, c, typed);
    expected = outcome.status;
    answer = op.run(fScene.Set(at[0]), fScene.Value(at[1]), fScene.Value(at[2]));
    fScene.ModelAt(at[op.narrowed]) = std::move(outcome.after[op.narrowed]);
    return true;
  }

  std::string FindDifference() {
    const Elements& plain = fScene.elements;
    if (fScene.sorted.GetSize() != plain.values.size() ||
        !std::equal(plain.values.begin(), plain.values.end(), fScene.sorted.GetNumbers())) {
      return "sorted";
    }
    for (int k = 0; k < kAllOperands; ++k) {
      if (!Matches(k)) {
        return kNames[k] + std::string(" reads ") + Read(k);
      }
    }
    return "";
  }

  bool Matches(int at) {
    const Model& model = fScene.ModelAt(at);
    if (model.kind == 's') {
      return literal::SingleOf(fScene.s.GetExactValue()) == model;
    }
    if (model.kind == 'i') {
      return literal::IntervalOf(fScene.i.GetLowerBound(), fScene.i.GetUpperBound()) == model;
    }
    const EnumSet& set = fScene.Set(at);
    const auto members = set.GetMembers();
    return std::equal(members.begin(), members.end(), model.values.begin(), model.values.end()) &&
           fFlag.Read(set) == model.emptyMeansAny;
  }

  std::string Read(int at) {
    std::ostringstream text;
    if (fScene.ModelAt(at).kind == 'e') {
      text << enumSets::Show(fScene.Set(at)) << " with the flag " << fFlag.Read(fScene.Set(at));
    } else {
      fScene.Value(at).PrintOn(text);
    }
    return text.str();
  }

  // The call as a statement of C++ for a test.
  std::string Statement(const Call& call, Answer expected) {
    const bool typed = call.operation != nullptr && call.operation >= support::Operations<EnumSet>().data() &&
                       call.operation < support::Operations<EnumSet>().data() + support::Operations<EnumSet>().size();
    std::string text = call.text;
    if (call.operation != nullptr) {
      text = (typed ? "x.Calc" : "static_cast<VokTarnInteger&>(x).Calc") + text;
    }
    std::string statement = "EXPECT_EQ(";
    for (std::size_t k = 0; k < text.size(); ++k) {
      const auto isWord = [&](std::size_t at) {
        return at < text.size() && (std::isalnum(text[at]) || text[at] == '_');
      };
      statement += isWord(k - 1) || isWord(k + 1) ? std::string(1, text[k]) : Named(text[k], typed);
    }
    return statement + ", " + std::to_string(expected) + ");";
  }

  std::string Named(char letter, bool typed) const {
    switch (letter) {
      case 'x':
        return kNames[fScene.xAt];
      case 'y':
        return kNames[typed ? fScene.oAt : fScene.yAt];
      case 'z':
        return kNames[typed ? fScene.pAt : fScene.zAt];
      case 'o':
        return kNames[fScene.oAt];
      case 'p':
        return kNames[fScene.pAt];
      case 'v':
        return std::to_string(fScene.v);
      case 'w':
        return std::to_string(fScene.w);
      case 'm':
        return std::to_string(fScene.m) + "U";
      default:
        return {letter};
    }
  }

  std::string States() {
    std::ostringstream text;
    for (int k = 0; k < kAllOperands; ++k) {
      text << "// " << kNames[k] << " is to read " << fScene.ModelAt(k) << "\n";
    }
    return text.str();
  }

  const std::uint8_t* fData;
  Fault fFault;
  std::size_t fCalls = 0;
  int fOperands = 1;
  Scene fScene;
  FlagReader fFlag;
};

// The statements up to the first call after which something differs, ready for a test; empty when nothing does.
inline std::string FindMismatch(const std::uint8_t* data, std::size_t size, Fault fault = nullptr) {
  if (Player(data, size, fault).Play(nullptr) < 0) {
    return "";
  }
  std::string log =
      "VokFenEnumInteger a, b, c;\nVokFenSingleInteger s;\nVokFenIntervalInteger i;\n"
      "Vector sorted(4, 3U, 0);\n";
  Player(data, size, fault).Play(&log);
  return log;
}

// The shortest and simplest trace that differs still: calls are taken out, many and then one at a time, then bytes are
// made smaller, until nothing more can go.
inline Bytes Shrink(Bytes trace, Fault fault = nullptr) {
  const auto differs = [fault](const Bytes& t) { return Player(t.data(), t.size(), fault).Play(nullptr) >= 0; };
  const auto take = [&](Bytes smaller) { return differs(smaller) ? trace = std::move(smaller), true : false; };
  for (bool changed = true; changed;) {
    changed = false;
    for (std::size_t n = trace.size() / kCallSize; n > 0; n /= 2) {
      for (std::size_t at = kHeaderSize; at < trace.size();) {
        Bytes shorter = trace;
        const auto first = shorter.begin() + static_cast<std::ptrdiff_t>(at);
        shorter.erase(first, first + static_cast<std::ptrdiff_t>(std::min(n * kCallSize, trace.size() - at)));
        const bool taken = take(std::move(shorter));
        changed = changed || taken;
        at += taken ? 0 : n * kCallSize;
      }
    }
    for (std::size_t at = 0; at < trace.size(); ++at) {
      const bool isCall = at >= kHeaderSize && (at - kHeaderSize) % kCallSize == 0;
      for (std::uint8_t byte = 0; !isCall && byte < trace[at];) {
        Bytes simpler = trace;
        simpler[at] = byte;
        const bool taken = take(std::move(simpler));
        changed = changed || taken;
        byte = static_cast<std::uint8_t>(taken ? trace[at] : byte + 1 + byte / 2);
      }
    }
  }
  return trace;
}

}  // namespace apiTrace
