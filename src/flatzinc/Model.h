#pragma once

#include <bit>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/range.h"
#include "framework/VokTarnSumPlan.h"

namespace fzn {

// A set of integers: ranges that ascend, with gaps between them.
using Range = VokTarnRange;
using Set = std::vector<Range>;

// What stands in the place of an integer or a truth value: a constant, or a variable by its place in the model. Truth
// values are 0 and 1.
struct Term {
  bool fIsVariable;
  std::int64_t fNumber;
};

// An argument of a constraint or of an annotation.
struct Argument {
  enum class Kind : std::uint8_t {
    Truth,     // a literal: fNumber is 0 or 1
    Integer,   // a literal: fNumber
    Variable,  // fNumber is its place
    Array,     // of terms: fCount from place fNumber of the model's terms
    OneSet,    // fNumber is its place among the model's sets
    Sets,      // an array of sets: fCount from place fNumber
    Text,      // a string or a name without a declaration, in annotations: its place among the model's texts
    Call,      // an annotation with arguments: its place among the model's calls
    List,      // of arguments, in annotations: fCount from place fNumber of the model's arguments
    Float      // a literal, in annotations: GetFloat
  };

  Kind fKind;
  bool fIsTruth;         // of a variable, of the members of an array: truth values, not integers
  std::uint32_t fCount;  // of the kinds with several members
  std::int64_t fNumber;

  double GetFloat() const { return std::bit_cast<double>(fNumber); }
};

struct Variable {
  std::string fName;
  bool fIsTruth;
  bool fIsBounded;  // an integer without a domain is not
  bool fIsDefined;  // is_defined_var: a constraint determines it
  bool fIsIntroduced;
  std::uint32_t fLine;
  Set fDomain;  // of a bounded variable, `= constant` taken into account; empty: no value
};

// A name with arguments: `int_search(x, first_fail, ..)`. Arguments in brackets are an Array when all of them are terms
// of one kind, Sets when all are sets, else a List; `[]` is an Array.
struct Call {
  std::uint32_t fName;   // among the model's texts
  std::uint32_t fFirst;  // argument
  std::uint32_t fCount;
};

struct Constraint {
  std::uint32_t fName;  // among the model's texts; each text is there once
  std::uint32_t fLine;
  std::uint32_t fFirst;  // argument
  std::uint32_t fCount;
  VokTarnConsistency fConsistency;  // that its annotations ask for
};

// What is printed of a solution.
struct Output {
  std::string fName;
  std::string fIndexSets;  // of an array, as in "array2d(1..2, 1..3, ": "1..2, 1..3"
  unsigned fDimensions;    // 0: a single value
  Argument fValue;
};

struct Solve {
  enum class Goal : std::uint8_t { Satisfy, Minimize, Maximize };
  Goal fGoal = Goal::Satisfy;
  Term fObjective{false, 0};
  std::uint32_t fLine = 0;
  std::vector<Argument> fAnnotations;  // of kinds Call and Text
};

// A problem as its text states it. Names of arrays and constants have been replaced by what they stand for; every
// declared array is stored once, whoever refers to it.
struct Model {
  std::vector<Variable> fVariables;
  std::vector<Constraint> fConstraints;
  std::vector<Argument> fArguments;
  std::vector<Term> fTerms;
  std::vector<Set> fSets;
  std::vector<std::string> fTexts;
  std::vector<Call> fCalls;
  std::vector<Output> fOutputs;
  Solve fSolve;

  std::span<const Argument> GetArguments(const Constraint& c) const { return Slice(c.fFirst, c.fCount); }
  std::span<const Argument> GetArguments(const Call& c) const { return Slice(c.fFirst, c.fCount); }
  std::span<const Term> GetTerms(const Argument& array) const { return {fTerms.data() + array.fNumber, array.fCount}; }
  std::string_view GetName(const Constraint& c) const { return fTexts[c.fName]; }
  std::string_view GetName(const Call& c) const { return fTexts[c.fName]; }

 private:
  std::span<const Argument> Slice(std::uint32_t first, std::uint32_t count) const {
    return {fArguments.data() + first, count};
  }
};

}  // namespace fzn
