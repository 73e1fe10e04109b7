// Integer operands of every kind, for tests: made from short texts, compared and printed by value.
//
//   "1 3 7"  an enumerated set, also as "1 3 5..9"; "Any", "Nil"; "' 1 3" a set that turns Any when it is emptied
//   "s 4"    a single integer; "s Any", "s Nil"
//   "i 0 5"  an interval; "i Any", "i Nil"
//
// MIN, MAX, LOWEST and HIGHEST stand for the ends of the integer range and of the 32-bit numbers.
#pragma once

#include <algorithm>
#include <ostream>
#include <variant>

#include "support/enumSets.h"
#include "support/operations.h"

namespace support {

struct Model {
  char kind = 'e';  // e, s or i
  bool any = false;
  int emptyMeansAny = 0;  // of an enumerated set: its flag, which a record can make any number
  Values values;          // of an interval its two bounds; none when Nil or Any

  bool IsNil() const { return !any && values.empty() && emptyMeansAny == 0; }
  bool Has(VokLong v) const { return std::find(values.begin(), values.end(), v) != values.end(); }
  bool operator==(const Model&) const = default;
};

inline std::ostream& operator<<(std::ostream& os, const Model& m) {
  os << (m.kind == 'e'   ? ""
         : m.kind == 's' ? "s "
                         : "i ")
     << (m.emptyMeansAny != 0 && !m.values.empty() ? "' " : "")
     << (m.any       ? "Any "
         : m.IsNil() ? "Nil "
                     : "");
  for (std::size_t i = 0; i < m.values.size(); ++i) {
    std::size_t last = i;
    while (m.kind == 'e' && last + 1 < m.values.size() && m.values[last + 1] == VokWrapAdd(m.values[last], 1)) {
      ++last;
    }
    os << m.values[i] << (last > i ? ".." + std::to_string(m.values[last]) : "") << ' ';
    i = last;
  }
  return os;
}

inline VokLong ParseNumber(const std::string& word) {
  return word == "MIN"       ? enumSets::kMin
         : word == "MAX"     ? enumSets::kMax
         : word == "LOWEST"  ? enumSets::kNil
         : word == "HIGHEST" ? enumSets::kAny
                             : static_cast<VokLong>(std::stol(word));
}

inline Model Parse(const std::string& text) {
  Model m;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    if (word == "s" || word == "i") {
      m.kind = word[0];
    } else if (word == "'" || word == "Any") {
      m.emptyMeansAny = m.kind == 'e' ? 1 : 0;
      m.any = word == "Any";
    } else if (word != "Nil") {
      const std::size_t dots = word.find("..");
      VokLong v = ParseNumber(word.substr(0, dots));
      m.values.push_back(v);
      while (dots != std::string::npos && v < ParseNumber(word.substr(dots + 2))) {
        m.values.push_back(++v);
      }
    }
  }
  return m;
}

class Operand {
 public:
  explicit Operand(const Model& m) : fValue(Make(m)) {}
  explicit Operand(const VokFenEnumInteger& set) : fValue(set) {}

  VokTarnInteger& Get() {
    return std::visit([](auto& value) -> VokTarnInteger& { return value; }, fValue);
  }
  VokFenEnumInteger& Set() { return std::get<VokFenEnumInteger>(fValue); }

  Model Read() {
    Model m;
    m.any = Get().IsUndefined() != 0;
    const bool known = !m.any && Get().IsNil() == 0;
    if (const auto* single = std::get_if<VokFenSingleInteger>(&fValue)) {
      m.kind = 's';
      m.values = known ? Values{single->GetExactValue()} : Values{};
    } else if (const auto* interval = std::get_if<VokFenIntervalInteger>(&fValue)) {
      m.kind = 'i';
      m.values = known ? Values{interval->GetLowerBound(), interval->GetUpperBound()} : Values{};
    } else {
      for (unsigned i = 0; i < Set().GetCount(); ++i) {
        m.values.push_back(Set().GetValue(i));
      }
      VokFenEnumInteger emptied(Set());
      if (emptied.GetCount() > 0) {
        // Only an intersection with an interval and the removal of members leave the flag to decide.
        emptied.Intersect(VokFenIntervalInteger(enumSets::kMax, enumSets::kMax));
      }
      while (emptied.GetCount() > 0 && emptied.RemoveExactValue(emptied.GetValue(0)) != 0) {
      }
      m.emptyMeansAny = emptied.IsUndefined();
    }
    return m;
  }

 private:
  using Value = std::variant<VokFenEnumInteger, VokFenSingleInteger, VokFenIntervalInteger>;

  static Value Make(const Model& m) {
    if (m.kind == 's') {
      return VokFenSingleInteger(m.any ? enumSets::kAny : m.IsNil() ? enumSets::kNil : m.values[0]);
    }
    if (m.kind == 'i') {
      return m.any       ? VokFenIntervalInteger()
             : m.IsNil() ? VokFenIntervalInteger(1, 0)
                         : VokFenIntervalInteger(m.values[0], m.values[1]);
    }
    return m.any                  ? enumSets::Any()
           : m.emptyMeansAny != 0 ? enumSets::FlaggedSetFrom(m.values)
                                  : enumSets::SetFrom(m.values);
  }

  Value fValue;
};

}  // namespace support
