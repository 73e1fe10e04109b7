#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "flatzinc/Model.h"
#include "framework/VokTarnNetwork.h"

namespace fzn {

class Builder;

// Why a constraint cannot be posted; the builder adds file and line.
class PostingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A constraint of the problem on its way into the network: what a row of the table that translates it has at hand.
//
// Arguments that are not of the kind asked for throw PostingError. Variables have been unified and have their domains;
// what is known of them is read from the network, so that a variable with one value is as good as a constant.
class Posting {
 public:
  Posting(Builder& builder, const Constraint& constraint) : fBuilder(builder), fConstraint(constraint) {}

  // ---- Arguments, from 0
  std::string_view GetName() const;
  VokTarnConsistency GetConsistency() const noexcept { return fConstraint.fConsistency; }
  unsigned Size() const noexcept { return fConstraint.fCount; }
  Term GetTerm(unsigned argument) const;                    // an integer or a truth value
  std::span<const Term> GetTerms(unsigned argument) const;  // an array of them
  std::int64_t GetConstant(unsigned argument) const;        // single-valued
  std::vector<std::int64_t> GetConstants(unsigned argument) const;
  const Set& GetSet(unsigned argument) const;

  // ---- What is known
  std::int64_t GetLower(const Term& term) const;
  std::int64_t GetUpper(const Term& term) const;
  bool IsFixed(const Term& term) const { return GetLower(term) == GetUpper(term); }
  bool IsPossible(const Term& term, std::int64_t value) const;
  // The number of the variable's values when its type lists them, else 0.
  std::int64_t CountListed(const Term& term) const;
  // Whether both are one variable.
  bool AreSame(const Term& a, const Term& b) const;

  // ---- Posting
  // The value of the network that stands for the term; one for each constant that is asked for.
  VokTarnValueId GetValue(const Term& term) const;
  std::vector<VokTarnValueId> GetValues(std::span<const Term> terms) const;
  // A new value with this domain. Both ends fit the network's integers, or PostingError.
  VokTarnValueId AddValue(std::int64_t lower, std::int64_t upper) const;
  // A new value of the type that lists its values, of which nothing is known yet.
  VokTarnValueId AddListed() const;
  // Adds a constraint of the class that a module publishes under this name. PostingError when none does or when it does
  // not take the arguments.
  void Post(std::string_view className, std::span<const VokTarnValueId> arguments,
            std::span<const VokLong> constants = {}) const;
  // The term takes values of this set only. At once, without a constraint, where its type can tell so.
  void Restrict(const Term& term, const Set& set) const;
  void Restrict(const Term& term, std::int64_t lower, std::int64_t upper) const;
  void Fix(const Term& term, std::int64_t value) const { Restrict(term, value, value); }
  // The constraint does not hold, whatever its arguments.
  void Fail() const;

  Builder& GetBuilder() const noexcept { return fBuilder; }

 private:
  const Argument& GetArgument(unsigned argument) const;
  [[noreturn]] static void Refuse(unsigned argument, const char* expected);

  Builder& fBuilder;
  const Constraint& fConstraint;
};

// A row of the table that translates constraints: by name and number of arguments.
struct PostingRow {
  std::string_view fName;
  unsigned fArguments;
  void (*fPost)(const Posting& posting);
};

// The standard builtins; the global constraints of the product's own library.
std::span<const PostingRow> GetBuiltinRows();
std::span<const PostingRow> GetGlobalRows();
// The row for a constraint in either table; null when there is none.
const PostingRow* FindRow(std::string_view name, unsigned arguments);

// A number among the constants of a constraint class: itself where it fits; PostingError else.
VokLong ToConstant(std::int64_t number);
std::vector<VokLong> ToConstants(std::span<const std::int64_t> numbers);
// A number of 64 bits takes two constants, the lower half first.
void AppendWide(std::vector<VokLong>& constants, std::int64_t number);

}  // namespace fzn
