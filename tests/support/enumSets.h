// Enumerated sets for tests: building them, showing them, and the sets that small tests run through.
#pragma once

#include <initializer_list>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "domain/VokFenEnumInteger.h"

namespace enumSets {

// The limit is set by the module's entry point; tests that only link the library set it here.
inline const VokULong kLimit = InitEnumIntegers();

inline constexpr VokLong kNil = -2147483647 - 1;
inline constexpr VokLong kAny = 2147483647;
inline constexpr VokLong kMin = -2147483645;
inline constexpr VokLong kMax = 2147483645;

inline SubIntBase Element(VokLong v) {
  SubIntBase element;
  element = v;
  return element;
}

inline VokFenEnumInteger Nil() {
  return VokFenEnumInteger(VokFenSingleInteger(kNil), 0);
}
inline VokFenEnumInteger Any() {
  return VokFenEnumInteger();
}

// A set with the flag 0: emptied, it is Nil.
template <class Range>
VokFenEnumInteger SetFrom(const Range& members) {
  VokFenEnumInteger set = Nil();
  for (const VokLong v : members) {
    set.SimpleInsert(v);
  }
  return set;
}
inline VokFenEnumInteger SetOf(std::initializer_list<VokLong> members) {
  return SetFrom(members);
}

// The same with the flag 1: emptied, it is Any.
template <class Range>
VokFenEnumInteger FlaggedSetFrom(const Range& members) {
  VokFenEnumInteger set(Element(*members.begin()), 0);
  for (const VokLong v : members) {
    set.SimpleInsert(v);
  }
  return set;
}

inline VokFenEnumInteger RangeSet(VokLong first, unsigned count) {
  VokFenEnumInteger set = Nil();
  for (unsigned i = 0; i < count; ++i) {
    set.SimpleInsert(first + static_cast<VokLong>(i));
  }
  return set;
}

// "Nil", "Any", or the members in the order in which they are held, such as "1 3 7".
inline std::string Show(const VokFenEnumInteger& set) {
  if (set.GetCount() == 0) {
    return set.IsNil() != 0 ? "Nil" : set.IsUndefined() != 0 ? "Any" : "empty, strange flag";
  }
  std::ostringstream text;
  for (unsigned i = 0; i < set.GetCount(); ++i) {
    text << (i > 0 ? " " : "") << set.GetValue(i);
  }
  return text.str();
}

// A set as mathematics sees it: these values, or every integer.
struct Model {
  bool every = false;
  std::set<VokLong> values = {};
};

inline Model ModelOf(const VokFenEnumInteger& set) {
  Model model{set.IsUndefined() != 0};
  for (unsigned i = 0; i < set.GetCount(); ++i) {
    model.values.insert(set.GetValue(i));
  }
  return model;
}

inline std::string Show(const Model& model) {
  return model.every ? "Any" : Show(SetFrom(model.values));
}

// Nil, Any and every other subset of lowest..highest, each with both flags.
inline std::vector<VokFenEnumInteger> AllSets(VokLong lowest, VokLong highest) {
  std::vector<VokFenEnumInteger> sets{Nil(), Any()};
  const int width = highest - lowest + 1;
  for (unsigned mask = 1; mask < 1U << width; ++mask) {
    std::set<VokLong> members;
    for (int i = 0; i < width; ++i) {
      if ((mask >> i & 1U) != 0) {
        members.insert(lowest + i);
      }
    }
    sets.push_back(SetFrom(members));
    sets.push_back(FlaggedSetFrom(members));
  }
  return sets;
}

}  // namespace enumSets
