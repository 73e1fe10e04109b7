// What rules for reasons share: atoms that are checked as they are noted, and the reasons of sums.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "framework/VokTarnPast.h"

// The atoms that a rule gives. What was true at the beginning is left out; what was not true at the time spoils the
// reason, for then the rule does not apply.
class Because {
 public:
  Because(const VokTarnPast& past, std::vector<VokTarnAtom>& atoms) noexcept : fPast(past), fAtoms(atoms) {}

  // Each returns whether it was true.
  bool AtLeast(unsigned i, std::int64_t v);
  bool AtMost(unsigned i, std::int64_t v);
  bool Is(unsigned i, std::int64_t v);
  bool IsNot(unsigned i, std::int64_t v);
  // What an atom says, of argument i.
  bool IsTrueOf(unsigned i, const VokTarnAtom& atom);

 private:
  const VokTarnPast& fPast;
  std::vector<VokTarnAtom>& fAtoms;
};

// Numbers that an argument could not be, gathered so that a bound stands for all that it excludes.
class Excluded {
 public:
  Excluded(const VokTarnPast& past, unsigned argument)
      : fArgument(argument), fLower(past.Lower(argument)), fUpper(past.Upper(argument)) {}

  // False when the argument could be v.
  bool Add(std::int64_t v, Because& reason) {
    if (v < fLower) {
      fBelow = std::max(fBelow, v);
    } else if (v > fUpper) {
      fAbove = std::min(fAbove, v);
    } else {
      return reason.IsNot(fArgument, v);
    }
    return true;
  }
  void Finish(Because& reason) const {
    if (fBelow != INT64_MIN) {
      reason.AtLeast(fArgument, fBelow + 1);
    }
    if (fAbove != INT64_MAX) {
      reason.AtMost(fArgument, fAbove - 1);
    }
  }

 private:
  unsigned fArgument;
  std::int64_t fLower;
  std::int64_t fUpper;
  std::int64_t fBelow = INT64_MIN;
  std::int64_t fAbove = INT64_MAX;
};

// The sum of some arguments, each times a coefficient: why it was at least so great.
//
// Rule    Of the lower bounds of the terms so much is given back as the sum is greater than need be: whole terms first,
//         what has changed last before others, then a part of each: earlier changes let the search go back further.
// Source  O. Ohrimenko, P. Stuckey, M. Codish, "Propagation via lazy clause generation", Constraints 14, 2009.
class LeastOfSum {
 public:
  __extension__ using Wide = __int128;

  explicit LeastOfSum(const VokTarnPast& past) noexcept : fPast(past) {}

  void Add(unsigned argument, Wide coefficient);
  // The least that the sum could be at the time.
  Wide Get() const noexcept { return fLeast; }
  // Appends atoms that make the sum at least so great. False when it was not.
  bool Explain(Wide atLeast, std::vector<VokTarnAtom>& because);

 private:
  struct Term {
    unsigned fArgument;
    Wide fCoefficient;
    Wide fGain;                        // what the term's least value has gained since the beginning
    VokTarnHistory::Position fChange;  // that has made it so
  };

  const VokTarnPast& fPast;
  std::vector<Term> fTerms;  // those that have gained
  Wide fLeast = 0;
};
