// Every narrowing of integers as one table: the relation that it narrows and which operand, for brute force beside it.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>
#include <vector>

#include "framework/VokTarnInteger.h"

namespace support {

using Values = std::vector<VokLong>;

// Operand 0 is *this*. A relation on two operands does not read the third.
struct Operation {
  std::string name;  // the relation's, behind "inv" when operand 1 is narrowed and "inv2" when operand 2 is
  bool (*holds)(VokLong, VokLong, VokLong);
  unsigned operands;
  unsigned narrowed;
  int (*run)(VokTarnInteger&, VokTarnInteger&, VokTarnInteger&);
  const char* call;  // of *this*, as it is written behind "Calc"
};

template <class Keep>
Values Filter(const Values& values, Keep keep) {
  Values kept;
  std::copy_if(values.begin(), values.end(), std::back_inserter(kept), keep);
  return kept;
}

// The values of the narrowed operand that have a partner in every other operand.
inline Values Supported(const Operation& op, const Values& x, const Values& y, const Values& z) {
  static const Values unused = {0};
  const Values& last = op.operands == 3 ? z : unused;
  const unsigned first = op.narrowed == 0 ? 1 : 0;
  const unsigned second = op.narrowed == 2 ? 1 : 2;
  const Values* const all[] = {&x, &y, &last};
  return Filter(*all[op.narrowed], [&](VokLong v) {
    std::array<VokLong, 3> t{};
    t[op.narrowed] = v;
    return std::any_of(all[first]->begin(), all[first]->end(), [&](VokLong a) {
      t[first] = a;
      return std::any_of(all[second]->begin(), all[second]->end(), [&](VokLong b) {
        t[second] = b;
        return op.holds(t[0], t[1], t[2]);
      });
    });
  });
}

inline bool IsRemainder(VokLong z, VokLong a, VokLong b) {
  return b != 0 && z == a % b;
}

inline bool IsPower(VokLong z, VokLong a, VokLong b) {
  if (b < 0 && std::abs(a) != 1) {
    return false;
  }
  std::int64_t power = 1;
  const VokLong times = std::abs(a) <= 1 && b != 0 ? 2 - std::abs(b % 2) : b;
  for (VokLong i = 0; i < times && std::abs(power) <= 2147483647; ++i) {
    power *= a;
  }
  return z == power;
}

// The table calls the operations of I: those on the base class go through the generic entries; a domain type's own
// overloads, on operands of that type, are called directly.
template <class I = VokTarnInteger>
const std::vector<Operation>& Operations() {
#define HOLDS(condition) [](VokLong x, VokLong y, [[maybe_unused]] VokLong z) { return condition; }
#define RUN(text)                                                        \
  {                                                                      \
    [](VokTarnInteger& r, VokTarnInteger& s, VokTarnInteger& t) -> int { \
      I& x = static_cast<I&>(r);                                         \
      I& y = static_cast<I&>(s);                                         \
      [[maybe_unused]] I& z = static_cast<I&>(t);                        \
      return x.Calc##text;                                               \
    },                                                                   \
        #text                                                            \
  }
  static const struct {
    const char* relation;
    bool (*holds)(VokLong, VokLong, VokLong);
    unsigned operands;
    struct {
      int (*run)(VokTarnInteger&, VokTarnInteger&, VokTarnInteger&);
      const char* call;
    } narrowing[3];  // of each operand
  } relations[] = {
      {"x = y", HOLDS(x == y), 2, {RUN(EqualValue(y)), RUN(InverseEqualValue(y))}},
      {"x <= y", HOLDS(x <= y), 2, {RUN(LessOrEqualValue(y)), RUN(InverseLessOrEqualValue(y))}},
      {"x < y", HOLDS(x < y), 2, {RUN(LessValue(y)), RUN(InverseLessValue(y))}},
      {"x >= y", HOLDS(x >= y), 2, {RUN(NotLessValue(y)), RUN(InverseNotLessValue(y))}},
      {"x > y", HOLDS(x > y), 2, {RUN(NotLessAndUnequalValue(y)), RUN(InverseNotLessAndUnequalValue(y))}},
      {"next", HOLDS(x == y + 1), 2, {RUN(NextValue(y)), RUN(InverseNextValue(y))}},
      {"neg", HOLDS(x == -y), 2, {RUN(NegativeValue(y)), RUN(InverseNegativeValue(y))}},
      {"abs", HOLDS(x == std::abs(y)), 2, {RUN(AbsoluteValue(y)), RUN(InverseAbsoluteValue(y))}},
      {"sign", HOLDS(y == (x > 0) - (x < 0)), 2, {RUN(InverseSignumValue(y)), RUN(SignumValue(y))}},
      {"min", HOLDS(x == std::min(y, z)), 3, {RUN(MinValue(y, z)), RUN(FirstInverseMinValue(y, z))}},
      {"max", HOLDS(x == std::max(y, z)), 3, {RUN(MaxValue(y, z)), RUN(FirstInverseMaxValue(y, z))}},
      {"sum", HOLDS(x == std::int64_t{y} + z), 3, {RUN(SumValue(y, z)), RUN(FirstInverseSumValue(y, z))}},
      {"prod", HOLDS(x == std::int64_t{y} * z), 3, {RUN(ProdValue(y, z)), RUN(FirstInverseProdValue(y, z))}},
      {"mod", IsRemainder, 3, {RUN(ModValue(y, z)), RUN(FirstInverseModValue(y, z)), RUN(SecondInverseModValue(y, z))}},
      {"power",
       IsPower,
       3,
       {RUN(PowerValue(y, z)), RUN(FirstInversePowerValue(y, z)), RUN(SecondInversePowerValue(y, z))}},
  };
#undef RUN
#undef HOLDS
  static const std::vector<Operation> operations = [] {
    std::vector<Operation> all;
    for (const auto& [relation, holds, operands, narrowing] : relations) {
      for (unsigned i = 0; i < 3 && narrowing[i].run != nullptr; ++i) {
        all.push_back({std::array{"", "inv ", "inv2 "}[i] + std::string(relation), holds, operands, i, narrowing[i].run,
                       narrowing[i].call});
      }
    }
    return all;
  }();
  return operations;
}

inline const Operation& FindOperation(const std::string& name) {
  return *std::find_if(Operations().begin(), Operations().end(), [&](const Operation& op) { return op.name == name; });
}

}  // namespace support
