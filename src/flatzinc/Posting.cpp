#include "flatzinc/Posting.h"

#include <algorithm>
#include <limits>
#include <map>

#include "flatzinc/Builder.h"
#include "flatzinc/sets.h"
#include "framework/VokTarnInteger.h"
#include "framework/VokTarnRelation.h"

namespace fzn {

using Kind = Argument::Kind;

// ---- Arguments

const Argument& Posting::GetArgument(unsigned argument) const {
  const std::span<const Argument> arguments = fBuilder.fModel.GetArguments(fConstraint);
  if (argument >= arguments.size()) {
    Refuse(argument, "one more argument");
  }
  return arguments[argument];
}

void Posting::Refuse(unsigned argument, const char* expected) {
  throw PostingError("argument " + std::to_string(argument + 1) + " should be " + expected);
}

std::string_view Posting::GetName() const {
  return fBuilder.fModel.GetName(fConstraint);
}

Term Posting::GetTerm(unsigned argument) const {
  const Argument& a = GetArgument(argument);
  if (a.fKind != Kind::Truth && a.fKind != Kind::Integer && a.fKind != Kind::Variable) {
    Refuse(argument, "an integer or a truth value");
  }
  return {a.fKind == Kind::Variable, a.fNumber};
}

std::span<const Term> Posting::GetTerms(unsigned argument) const {
  const Argument& a = GetArgument(argument);
  if (a.fKind != Kind::Array) {
    Refuse(argument, "an array of integers or truth values");
  }
  return fBuilder.fModel.GetTerms(a);
}

std::int64_t Posting::GetConstant(unsigned argument) const {
  const Term term = GetTerm(argument);
  if (term.fIsVariable && !IsFixed(term)) {
    Refuse(argument, "a constant");
  }
  return GetLower(term);
}

std::vector<std::int64_t> Posting::GetConstants(unsigned argument) const {
  std::vector<std::int64_t> numbers;
  for (const Term& term : GetTerms(argument)) {
    if (term.fIsVariable && !IsFixed(term)) {
      Refuse(argument, "an array of constants");
    }
    numbers.push_back(GetLower(term));
  }
  return numbers;
}

const Set& Posting::GetSet(unsigned argument) const {
  const Argument& a = GetArgument(argument);
  if (a.fKind != Kind::OneSet) {
    Refuse(argument, "a set of integers");
  }
  return fBuilder.fModel.fSets[static_cast<std::size_t>(a.fNumber)];
}

// ---- What is known

namespace {}  // namespace

std::int64_t Posting::GetLower(const Term& term) const {
  return term.fIsVariable ? fBuilder.fNetwork.GetLower(GetValue(term)) : term.fNumber;
}

std::int64_t Posting::GetUpper(const Term& term) const {
  return term.fIsVariable ? fBuilder.fNetwork.GetUpper(GetValue(term)) : term.fNumber;
}

bool Posting::IsPossible(const Term& term, std::int64_t value) const {
  return value >= GetLower(term) && value <= GetUpper(term) &&
         (!term.fIsVariable || fBuilder.fNetwork.IsPossible(GetValue(term), static_cast<VokLong>(value)));
}

std::int64_t Posting::CountListed(const Term& term) const {
  if (!term.fIsVariable) {
    return 0;
  }
  const VokTarnValueId id = GetValue(term);
  return fBuilder.fNetwork.GetType(id)->IsListed() ? fBuilder.fNetwork.GetCardinality(id) : 0;
}

bool Posting::AreSame(const Term& a, const Term& b) const {
  return a.fIsVariable && b.fIsVariable && GetValue(a) == GetValue(b);
}

// ---- Posting

VokTarnValueId Posting::GetValue(const Term& term) const {
  return fBuilder.GetValue(term);
}

std::vector<VokTarnValueId> Posting::GetValues(std::span<const Term> terms) const {
  std::vector<VokTarnValueId> values(terms.size());
  std::ranges::transform(terms, values.begin(), [this](const Term& term) { return GetValue(term); });
  return values;
}

VokTarnValueId Posting::AddValue(std::int64_t lower, std::int64_t upper) const {
  ToConstant(lower);
  ToConstant(upper);
  return fBuilder.AddValue(MakeRange(lower, upper), {});
}

VokTarnValueId Posting::AddListed() const {
  return fBuilder.fNetwork.AddValue(fBuilder.fListing);
}

void Posting::Post(std::string_view className, std::span<const VokTarnValueId> arguments,
                   std::span<const VokLong> constants) const {
  fBuilder.Add(className, arguments, constants);
}

void Posting::Restrict(const Term& term, const Set& set) const {
  if (term.fIsVariable) {
    fBuilder.Restrict(GetValue(term), set);
  } else if (!Contains(set, term.fNumber)) {
    Fail();
  }
}

void Posting::Restrict(const Term& term, std::int64_t lower, std::int64_t upper) const {
  Restrict(term, MakeRange(lower, upper));
}

void Posting::Fail() const {
  fBuilder.fNetwork.Fail();
}

// ---- Rows

const PostingRow* FindRow(std::string_view name, unsigned arguments) {
  static const std::map<std::pair<std::string_view, unsigned>, const PostingRow*> rows = [] {
    std::map<std::pair<std::string_view, unsigned>, const PostingRow*> all;
    for (const std::span<const PostingRow> table : {GetBuiltinRows(), GetGlobalRows()}) {
      for (const PostingRow& row : table) {
        all.emplace(std::pair(row.fName, row.fArguments), &row);
      }
    }
    return all;
  }();
  const auto found = rows.find({name, arguments});
  return found == rows.end() ? nullptr : found->second;
}

VokLong ToConstant(std::int64_t number) {
  if (number < std::numeric_limits<VokLong>::min() || number > std::numeric_limits<VokLong>::max()) {
    throw PostingError("the number " + std::to_string(number) + " does not fit");
  }
  return static_cast<VokLong>(number);
}

std::vector<VokLong> ToConstants(std::span<const std::int64_t> numbers) {
  std::vector<VokLong> constants(numbers.size());
  std::ranges::transform(numbers, constants.begin(), ToConstant);
  return constants;
}

void AppendWide(std::vector<VokLong>& constants, std::int64_t number) {
  const auto [low, high] = VokSplitWide(number);
  constants.push_back(low);
  constants.push_back(high);
}

}  // namespace fzn
