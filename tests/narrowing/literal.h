// Every narrowing done the plain way, beside the enumerated set: all pairs in loop order, each value inserted by binary
// search, one member after the other kept or dropped. Works on models and shares no code with the domain but the
// element arithmetic and the powers of intervals.
#pragma once

#include <map>
#include <optional>

#include "narrowing/oracle.h"

namespace narrowing::literal {

using Set = Model;
using Typed = int (*)(Set& narrowed, const Set& first, const Set& second);  // the other operands in order

inline Set SetOf(const Values& values, int flag = 0) {
  return {'e', values.empty() && flag == 1, flag, values};
}
inline Model SingleOf(VokLong v) {
  const bool special = v == enumSets::kAny || v == enumSets::kNil;
  return {'s', v == enumSets::kAny, 0, special ? Values{} : Values{v}};
}
inline int MakeNil(Model& m) {
  const bool changed = !m.IsNil();
  m = {m.kind, false, 0, {}};
  return changed ? 1 : 0;
}
inline bool Contains(const Set& set, VokLong v) {
  return std::binary_search(set.values.begin(), set.values.end(), v);
}

template <class Holds>
int Keep(Set& set, Holds holds) {
  const Values kept = Filter(set.values, holds);
  if (kept.size() == set.values.size()) {
    return 0;
  }
  set.values = kept;
  return kept.empty() ? set.emptyMeansAny = 0, 1 : 1;
}

inline int Intersect(Set& set, const Set& o) {
  if (set.IsNil() || (o.any && !o.IsNil())) {
    return 0;
  }
  if (o.IsNil()) {
    return MakeNil(set);
  }
  if (set.any) {
    set = o;
    return 1;
  }
  return Keep(set, [&](VokLong v) { return Contains(o, v); });
}

inline int IntersectSingle(Set& set, const Model& single) {
  if (set.IsNil() || single.any) {
    return 0;
  }
  if (single.IsNil() || (!set.any && !Contains(set, single.values[0]))) {
    return MakeNil(set);
  }
  const bool same = set.values == single.values;
  set = SetOf(single.values, set.any ? 0 : set.emptyMeansAny);
  return same ? 0 : 1;
}

inline Values Bounds(const Model& m) {
  return m.any ? Values{enumSets::kMin, enumSets::kMax} : m.IsNil() ? Values{} : Values{m.values[0], m.values.back()};
}
inline Model IntervalOf(VokLong l, VokLong u) {
  const Values bounds = {std::max(l, enumSets::kMin), std::min(u, enumSets::kMax)};
  const bool any = bounds == Values{enumSets::kMin, enumSets::kMax};
  return {'i', any, 0, any || bounds[0] > bounds[1] ? Values{} : bounds};
}

// A set that is emptied here means what its flag says.
inline int IntersectInterval(Set& set, const Model& interval) {
  if (set.IsNil() || interval.any) {
    return 0;
  }
  if (interval.IsNil()) {
    return MakeNil(set);
  }
  const VokLong l = interval.values[0], u = interval.values[1];
  if (!set.any) {
    const std::size_t size = set.values.size();
    set = SetOf(Filter(set.values, [&](VokLong v) { return l <= v && v <= u; }), set.emptyMeansAny);
    return set.values.size() != size ? 1 : 0;
  }
  if (std::int64_t{u} - l + 1 >= std::int64_t{VokFenEnumInteger::sMAX_CARD}) {
    return 0;
  }
  set = SetOf({});
  for (std::int64_t v = l; v <= u; ++v) {
    set.values.push_back(static_cast<VokLong>(v));
  }
  return 1;
}

inline int IntersectInverse(const Set& set, Model& single) {
  if (single.IsNil() || set.any) {
    return 0;
  }
  if (single.kind == 'i') {
    const Values bounds = Bounds(single);
    const Values common = Filter(set.values, [&](VokLong v) { return bounds[0] <= v && v <= bounds[1]; });
    const Model narrowed = common.empty() ? IntervalOf(1, 0) : IntervalOf(common[0], common.back());
    const int changed = narrowed == single ? 0 : 1;
    single = narrowed;
    return changed;
  }
  if (single.any && !set.IsNil()) {
    return set.values.size() == 1 ? single = SingleOf(set.values[0]), 1 : 0;
  }
  return Contains(set, single.any ? 0 : single.values[0]) ? 0 : MakeNil(single);
}

// False when the set turns Any: called with the limit's number of members, whatever v is.
inline bool Insert(Set& set, VokLong v) {
  if (set.any || set.values.size() >= VokFenEnumInteger::sMAX_CARD) {
    set = SetOf({}, 1);
    return false;
  }
  const auto at = std::lower_bound(set.values.begin(), set.values.end(), v);
  if (at == set.values.end() || *at != v) {
    set.values.insert(at, v);
  }
  return true;
}

template <class Combine>
Set Pairs(const Set& outer, const Set& inner, Combine combine) {
  Set candidates = SetOf({});
  for (const VokLong o : outer.values) {
    for (const VokLong i : inner.values) {
      if (!Insert(candidates, combine(o, i))) {
        return candidates;
      }
    }
  }
  return candidates;
}

// ---- Order
template <class Holds>
bool AnyOf(const Values& values, Holds holds) {
  return std::any_of(values.begin(), values.end(), holds);
}

// x < bound with the cut one member too wide: {1, 3, 7} < 5 leaves {1}.
inline std::optional<Values> CutLess(const Model& x, const Model& y) {
  if (x.kind != 'e' || x.any || y.any || x.values.back() < y.values.back()) {
    return std::nullopt;
  }
  const Values reached = Filter(x.values, [&](VokLong v) { return v <= y.values.back(); });
  return reached.empty() ? Values{} : Values(reached.begin(), reached.end() - 1);
}

// The mirror image: 4 < {2, 5, 6} leaves {6}.
inline std::optional<Values> CutGreater(const Model& x, const Model& y) {
  if (x.kind != 'e' || x.any || y.any || x.values.front() > y.values.front()) {
    return std::nullopt;
  }
  const Values reached = Filter(x.values, [&](VokLong v) { return v >= y.values.front(); });
  return reached.empty() ? Values{} : Values(reached.begin() + 1, reached.end());
}

inline bool Unsettled(const Set& narrowed, const Set& given) {
  return narrowed.any || given.any || narrowed.values.empty();
}
inline int NotAbove(Set& x, const Set& y, const Set&) {
  return Unsettled(x, y) ? 0 : Keep(x, [&](VokLong v) { return !y.IsNil() && v <= y.values.back(); });
}
inline int NotBelow(Set& y, const Set& x, const Set&) {
  return Unsettled(y, x) ? 0 : Keep(y, [&](VokLong v) { return !x.IsNil() && v >= x.values.front(); });
}
inline int Below(Set& x, const Set& y, const Set&) {
  if (Unsettled(x, y) || y.IsNil()) {
    return Unsettled(x, y) ? 0 : MakeNil(x);
  }
  const auto kept = CutLess(x, y);
  return kept ? Keep(x, [&](VokLong v) { return std::binary_search(kept->begin(), kept->end(), v); }) : 0;
}
inline int Above(Set& y, const Set& x, const Set&) {
  if (x.any) {
    return !y.values.empty() && y.values[0] == enumSets::kMin ? Keep(y, [](VokLong v) { return v != enumSets::kMin; })
                                                              : 0;
  }
  if (Unsettled(y, x) || x.IsNil()) {
    return Unsettled(y, x) ? 0 : MakeNil(y);
  }
  const auto kept = CutGreater(y, x);
  return kept ? Keep(y, [&](VokLong v) { return std::binary_search(kept->begin(), kept->end(), v); }) : 0;
}

// ---- Successor, negation, absolute value, minimum, maximum
template <class Change>
Set Changed(const Set& set, Change change) {
  Values values;
  std::transform(set.values.begin(), set.values.end(), std::back_inserter(values), change);
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  return SetOf(values, set.emptyMeansAny);
}
template <VokLong Step>
VokLong Shifted(VokLong v) {
  return SubIntBase::base_plus(v, Step);
}
inline int Next(Set& y, const Set& x, const Set&) {
  return x.any ? 0 : x.values.empty() ? MakeNil(y) : Intersect(y, Changed(x, Shifted<1>));
}
inline int InverseNext(Set& x, const Set& y, const Set&) {
  if (y.any) {
    return Keep(x, [&](VokLong v) { return v != enumSets::kMax || v != x.values.back(); });
  }
  Set from = y;
  if (!from.values.empty() && from.values[0] == enumSets::kMin) {
    from.values.erase(from.values.begin());
  }
  return from.values.empty() ? MakeNil(x) : Intersect(x, Changed(from, Shifted<-1>));
}
inline int Negative(Set& z, const Set& a, const Set&) {
  return a.any ? 0 : Intersect(z, Changed(a, VokWrapNegate));
}

// A union with the limit's number of members is Any already.
inline Set Union(const Set& a, const Set& b) {
  if (a.any || b.IsNil() || b.any || a.IsNil()) {
    return a.any || b.IsNil() ? a : b;
  }
  Values both;
  std::set_union(a.values.begin(), a.values.end(), b.values.begin(), b.values.end(), std::back_inserter(both));
  const bool full = both.size() > a.values.size() && both.size() >= VokFenEnumInteger::sMAX_CARD;
  return full ? SetOf({}, 1) : SetOf(both, a.emptyMeansAny);
}
// With the members of o that satisfy the predicate; Any takes no empty set.
template <class Holds>
int IntersectFiltered(Set& set, const Set& o, Holds holds) {
  if (set.IsNil() || o.any) {
    return 0;
  }
  if (o.IsNil()) {
    return MakeNil(set);
  }
  const Set accepted = SetOf(Filter(o.values, holds));
  return set.any ? (accepted.IsNil() ? 0 : Intersect(set, accepted))
                 : Keep(set, [&](VokLong v) { return Contains(accepted, v); });
}
template <class Holds>
int IntersectUnion(Set& set, const Set& o1, const Set& o2, Holds holds) {
  return o1.any || o2.any ? 0 : IntersectFiltered(set, Union(o1, o2), holds);
}
inline int Absolute(Set& z, const Set& a, const Set&) {
  const Set from = a.any ? z : a;
  const int flag = from.emptyMeansAny;
  const Set below = Changed(SetOf(Filter(from.values, [](VokLong v) { return v < 0; }), flag), VokWrapNegate);
  const Set above = SetOf(Filter(from.values, [](VokLong v) { return v >= 0; }), flag);
  return from.any ? 0 : IntersectUnion(z, below, above, [](VokLong) { return true; });
}
inline int InverseAbsolute(Set& x, const Set& z, const Set&) {
  const Set above = SetOf(Filter(z.values, [](VokLong v) { return v >= 0; }), z.emptyMeansAny);
  return z.any                  ? 0
         : above.values.empty() ? MakeNil(x)
                                : IntersectUnion(x, above, Changed(above, VokWrapNegate), [](VokLong) { return true; });
}
inline int Minimum(Set& z, const Set& a, const Set& b) {
  if (a.any || b.any || a.IsNil() || b.IsNil()) {
    return a.any ? NotAbove(z, b, b) : b.any ? NotAbove(z, a, a) : MakeNil(z);
  }
  const VokLong bound = std::min(a.values.back(), b.values.back());
  return IntersectUnion(z, a, b, [&](VokLong v) { return v <= bound; });
}
inline int Maximum(Set& z, const Set& a, const Set& b) {
  if (a.any || b.any || a.IsNil() || b.IsNil()) {
    return a.any ? NotBelow(z, b, b) : b.any ? NotBelow(z, a, a) : MakeNil(z);
  }
  const VokLong bound = std::max(a.values.front(), b.values.front());
  return IntersectUnion(z, a, b, [&](VokLong v) { return v >= bound; });
}

// ---- Sum, product, remainder
inline int Sum(Set& z, const Set& a, const Set& b) {
  return a.any || b.any ? 0 : Intersect(z, Pairs(a, b, SubIntBase::base_plus));
}
inline int InverseSum(Set& x, const Set& z, const Set& y) {
  return y.any ? 0 : Intersect(x, Pairs(z, y, SubIntBase::base_minus));
}
inline int Product(Set& z, const Set& a, const Set& b) {
  return a.any || b.any ? 0 : Intersect(z, Pairs(a, b, SubIntBase::base_mult));
}
inline int InverseProduct(Set& x, const Set& z, const Set& y) {
  if (y.any || (y.Has(0) && z.Has(0))) {
    return 0;
  }
  const Set divisors = SetOf(Filter(y.values, [](VokLong v) { return v != 0; }));
  return Intersect(x, Pairs(divisors, z, [](VokLong b, VokLong a) { return SubIntBase::base_div(a, b); }));
}
inline VokLong RemainderOf(VokLong a, VokLong b) {
  return static_cast<VokLong>(std::int64_t{a} % b);
}
inline int Remainder(Set& z, const Set& a, const Set& b) {
  return a.any || b.any || b.Has(0) ? 0 : Intersect(z, Pairs(a, b, RemainderOf));
}
inline int InverseRemainder(Set& x, const Set& z, const Set& y) {
  const auto fits = [&](VokLong a) {
    return AnyOf(y.values, [&](VokLong b) { return Contains(z, RemainderOf(a, b)); });
  };
  return x.any || y.any || Contains(y, 0) ? 0 : Keep(x, fits);
}
inline int SecondInverseRemainder(Set& b, const Set& z, const Set& a) {
  const auto fits = [&](VokLong y) {
    return AnyOf(a.values, [&](VokLong x) { return y == 0 || Contains(z, RemainderOf(x, y)); });
  };
  return z.any || b.any ? 0 : Keep(b, fits);
}

// ---- Power
inline VokFenIntervalInteger Point(VokLong v) {
  return VokFenIntervalInteger(v, v);
}
inline int Power(Set& z, const Set& a, const Set& b) {
  Set powers = SetOf({});
  for (const VokLong x : a.values) {
    for (const VokLong y : b.values) {
      VokFenSingleInteger power;
      power.CalcPowerValue(VokFenSingleInteger(x), VokFenSingleInteger(y));
      if (power.IsUndefined() != 0 || (power.IsNil() == 0 && !Insert(powers, power.GetExactValue()))) {
        return 0;
      }
    }
  }
  return a.any || b.any ? 0 : Intersect(z, powers);
}
inline int InversePower(Set& x, const Set& z, const Set& y) {
  Set roots = SetOf({});
  for (const VokLong power : z.values) {
    for (const VokLong exponent : y.values) {
      const bool known = !x.any && !x.IsNil();
      VokFenIntervalInteger root(known   ? x.values.front()
                                 : x.any ? enumSets::kMin
                                         : enumSets::kMax,
                                 known   ? x.values.back()
                                 : x.any ? enumSets::kMax
                                         : enumSets::kMin);
      Point(power).CalcFirstInversePowerValue(root, VokFenSingleInteger(exponent));
      if (root.IsUnrestricted() ||
          (!root.IsEmptyInterval() && (!Insert(roots, root.fLower) || !Insert(roots, root.fUpper)))) {
        return 0;
      }
    }
  }
  return y.any ? 0 : Intersect(x, roots);
}
// Where no exponent fits, all stay.
inline int SecondInversePower(Set& b, const Set& z, const Set& a) {
  const Values kept = Filter(b.values, [&](VokLong exponent) {
    return AnyOf(z.values, [&](VokLong power) {
      return AnyOf(a.values, [&](VokLong base) {
        VokFenIntervalInteger left = Point(exponent);
        Point(power).CalcSecondInversePowerValue(Point(base), left);
        return !left.IsEmptyInterval();
      });
    });
  });
  return kept.empty() ? 0 : Intersect(b, SetOf(kept));
}

// ---- The frame of the generic entries
inline Set Enumerated(const Model& m) {
  return m.kind == 'e' ? m : m.kind == 's' ? SetOf(m.values, m.any ? 1 : 0) : SetOf({});
}
inline int EqualTo(Model& narrowed, const Model& given) {
  if (narrowed.kind != 'e') {
    return IntersectInverse(given, narrowed);
  }
  return given.kind == 'e'   ? Intersect(narrowed, given)
         : given.kind == 's' ? IntersectSingle(narrowed, given)
                             : IntersectInterval(narrowed, given);
}
inline int Sign(Model& s, const Set& a, const Set&) {
  const auto signOf = [](VokLong v) { return (v > 0) - (v < 0); };
  return a.any || s.IsNil() ? 0 : EqualTo(s, SetOf(Changed(a, signOf).values));
}
inline int InverseSign(Set& a, const Model& s, const Set&) {
  const auto may = [&](VokLong sign) {
    return s.any || (s.kind == 'i' && !s.IsNil() ? s.values[0] <= sign && sign <= s.values[1] : s.Has(sign));
  };
  const Set zero = SetOf({0});
  switch ((may(-1) ? 1 : 0) + (may(0) ? 2 : 0) + (may(1) ? 4 : 0)) {
    case 1:
      return Below(a, zero, zero);
    case 2:
      return Intersect(a, zero);
    case 3:
      return NotAbove(a, zero, zero);
    case 4:
      return Above(a, zero, zero);
    case 5:
      return a.any ? 0 : Keep(a, [](VokLong v) { return v != 0; });
    case 6:
      return NotBelow(a, zero, zero);
    default:
      return may(0) ? 0 : MakeNil(a);
  }
}

inline Typed TypedOf(const Operation& op) {
  static const std::map<std::string, Typed> routines = {
      {"x <= y", NotAbove},
      {"inv x <= y", NotBelow},
      {"x < y", Below},
      {"inv x < y", Above},
      {"x >= y", NotBelow},
      {"inv x >= y", NotAbove},
      {"x > y", Above},
      {"inv x > y", Below},
      {"next", Next},
      {"inv next", InverseNext},
      {"neg", Negative},
      {"inv neg", Negative},
      {"abs", Absolute},
      {"inv abs", InverseAbsolute},
      {"sign", InverseSign},
      {"inv sign", Sign},
      {"min", Minimum},
      {"inv min", NotBelow},
      {"max", Maximum},
      {"inv max", NotAbove},
      {"sum", Sum},
      {"inv sum", InverseSum},
      {"prod", Product},
      {"inv prod", InverseProduct},
      {"mod", Remainder},
      {"inv mod", InverseRemainder},
      {"inv2 mod", SecondInverseRemainder},
      {"power", Power},
      {"inv power", InversePower},
      {"inv2 power", SecondInversePower},
      {"x = y", [](Set& x, const Set& y, const Set&) { return EqualTo(x, y); }},
      {"inv x = y", [](Set& y, const Set& x, const Set&) { return EqualTo(y, x); }}};
  return routines.at(op.name);
}

// A single is narrowed as the set of its value; the successor and the absolute value differ at the ends.
inline int RunOnSingle(const Operation& op, Model& single, const Set& first, const Set& second) {
  if (op.name == "inv next" && single.any) {
    const bool one = first.values.size() == 1;
    return !one                                ? 0
           : first.values[0] == enumSets::kMin ? MakeNil(single)
                                               : (single = SingleOf(VokWrapAdd(first.values[0], -1)), 1);
  }
  if (op.name == "inv next") {
    return Contains(first, VokWrapAdd(single.values[0], 1)) ? 0 : MakeNil(single);
  }
  if (op.name == "inv abs") {
    const VokLong v = single.any ? 0 : single.values[0];
    const bool zero = first.values == Values{0};
    return single.any                                      ? (zero ? single = SingleOf(0), 1 : 0)
           : Contains(first, v < 0 ? VokWrapNegate(v) : v) ? 0
                                                           : MakeNil(single);
  }
  Set set = Enumerated(single);
  TypedOf(op)(set, first, second);
  return IntersectInverse(set, single);
}

// The generic entry; with `typed` the routine on three sets, without the frame.
inline Outcome Run(const Operation& op, const Case& c, bool typed) {
  Outcome outcome{0, c};
  Model& narrowed = outcome.after[op.narrowed];
  const Set first = Enumerated(c[op.narrowed == 0 ? 1 : 0]);
  const Set second = Enumerated(c[op.narrowed == 2 ? 1 : 2]);
  const bool ofThree = op.operands == 3;
  if (op.name.ends_with("x = y") || op.name.ends_with("sign")) {
    const Model& given = c[1 - op.narrowed];
    outcome.status = op.name == "sign" && narrowed.IsNil() ? 0 : TypedOf(op)(narrowed, given, given);
  } else if (typed) {
    outcome.status = TypedOf(op)(narrowed, first, second);
  } else if (narrowed.IsNil() || (narrowed.kind == 'i' && ofThree)) {
    outcome.status = 0;
  } else if (first.IsNil() || (ofThree && second.IsNil())) {
    outcome.status = MakeNil(narrowed);
  } else if (narrowed.kind == 'i' || (first.any && op.narrowed == 1 && (ofThree || narrowed.kind == 's'))) {
    outcome.status = 0;
  } else {
    outcome.status =
        narrowed.kind == 's' ? RunOnSingle(op, narrowed, first, second) : TypedOf(op)(narrowed, first, second);
  }
  return outcome;
}

}  // namespace narrowing::literal
