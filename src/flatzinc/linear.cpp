#include "flatzinc/linear.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>

#include "base/division.h"
#include "flatzinc/bounds.h"
#include "flatzinc/sets.h"

namespace fzn {
namespace {

__extension__ using Int128 = __int128;

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

std::int64_t Narrow(Int128 v) {
  if (v > kMost || v < -kMost) {
    throw PostingError("a number of the sum has more than 64 bits");
  }
  return static_cast<std::int64_t>(v);
}

// Constants times coefficients have up to 127 bits: what is left of them is to leave room for the variables.
void RequireRoom(Int128 v) {
  constexpr Int128 kRoom = Int128{1} << 120;
  if (v > kRoom || v < -kRoom) {
    throw PostingError("the constants of the sum have more than 120 bits");
  }
}

// A linear relation in its simplest form: no constants, no repetitions, no common divisor.
class Linear {
 public:
  Linear(const Posting& posting, VokTarnRelation relation, std::span<const LinearTerm> terms, std::int64_t number)
      : fPosting(posting), fRelation(relation), fNumber(number) {
    Collect(terms);
    Divide();
  }

  // Whether the bounds decide it.
  std::optional<bool> Decide() const;
  void Negate();
  void Post(const Statement& statement) const;

 private:
  struct Item {
    VokTarnValueId fValue;
    Int128 fFactor;
    Term fTerm;
  };

  void Collect(std::span<const LinearTerm> terms);
  void Divide();
  Int128 GetLeast() const;
  Int128 GetGreatest() const;
  bool IsUnit(std::size_t i) const { return fItems[i].fFactor == 1 || fItems[i].fFactor == -1; }
  bool IsTruth(const Item& item) const {
    return fPosting.GetLower(item.fTerm) == 0 && fPosting.GetUpper(item.fTerm) == 1;
  }
  void PostSingle(const Statement& statement) const;
  bool PostPair(const Statement& statement) const;
  bool PostAsClause() const;
  bool PostChain(const Statement& statement) const;
  void PostSum(const Statement& statement) const;

  const Posting& fPosting;
  VokTarnRelation fRelation;
  Int128 fNumber;
  std::vector<Item> fItems;
  bool fIsImpossible = false;  // an equation without a solution
};

void Linear::Collect(std::span<const LinearTerm> terms) {
  for (const auto& [factor, term] : terms) {
    if (fPosting.IsFixed(term)) {
      fNumber -= Int128{factor} * fPosting.GetLower(term);
      RequireRoom(fNumber);
    } else {
      fItems.push_back({fPosting.GetValue(term), factor, term});
    }
  }
  std::ranges::stable_sort(fItems, {}, &Item::fValue);
  std::size_t count = 0;
  for (const Item& item : fItems) {
    if (count != 0 && fItems[count - 1].fValue == item.fValue) {
      fItems[count - 1].fFactor += item.fFactor;
    } else {
      fItems[count++] = item;
    }
  }
  fItems.resize(count);
  std::erase_if(fItems, [](const Item& item) { return item.fFactor == 0; });
}

void Linear::Divide() {
  Int128 divisor = 0;
  for (const Item& item : fItems) {
    Int128 rest = item.fFactor < 0 ? -item.fFactor : item.fFactor;
    while (rest != 0) {
      const Int128 next = divisor % rest;
      divisor = rest;
      rest = next;
    }
  }
  if (divisor <= 1) {
    return;
  }
  for (Item& item : fItems) {
    item.fFactor /= divisor;
  }
  fIsImpossible = fRelation != VokTarnRelation::AtMost && fNumber % divisor != 0;
  fNumber = DivideDown(fNumber, divisor);
}

Int128 Linear::GetLeast() const {
  Int128 sum = 0;
  for (const Item& item : fItems) {
    sum += item.fFactor * (item.fFactor > 0 ? fPosting.GetLower(item.fTerm) : fPosting.GetUpper(item.fTerm));
  }
  return sum;
}

Int128 Linear::GetGreatest() const {
  Int128 sum = 0;
  for (const Item& item : fItems) {
    sum += item.fFactor * (item.fFactor > 0 ? fPosting.GetUpper(item.fTerm) : fPosting.GetLower(item.fTerm));
  }
  return sum;
}

std::optional<bool> Linear::Decide() const {
  const Int128 least = GetLeast();
  const Int128 greatest = GetGreatest();
  if (fRelation == VokTarnRelation::AtMost) {
    return greatest <= fNumber ? std::optional(true) : least > fNumber ? std::optional(false) : std::nullopt;
  }
  const bool isEqual = fRelation == VokTarnRelation::Equal;
  if (fIsImpossible || least > fNumber || greatest < fNumber) {
    return !isEqual;
  }
  return fItems.empty() ? std::optional(isEqual) : std::nullopt;
}

void Linear::Negate() {
  switch (fRelation) {
    case VokTarnRelation::Equal:
      fRelation = VokTarnRelation::Different;
      break;
    case VokTarnRelation::Different:
      fRelation = VokTarnRelation::Equal;
      break;
    case VokTarnRelation::AtMost:
      for (Item& item : fItems) {
        item.fFactor = -item.fFactor;
      }
      fNumber = -fNumber - 1;
      break;
  }
}

void Linear::Post(const Statement& statement) const {
  const bool isPlain = statement.fMode == VokTarnMode::Plain;
  if (fItems.size() == 1) {
    PostSingle(statement);
  } else if (!(fItems.size() == 2 && PostPair(statement)) && !(isPlain && PostAsClause()) && !PostChain(statement)) {
    PostSum(statement);
  }
}

void Linear::PostSingle(const Statement& statement) const {
  const Item& item = fItems[0];
  const std::int64_t lower = fPosting.GetLower(item.fTerm);
  const std::int64_t upper = fPosting.GetUpper(item.fTerm);
  Set set;
  // The factor of a single term is 1 or -1.
  const std::int64_t v = Narrow(item.fFactor > 0 ? fNumber : -fNumber);
  if (fRelation == VokTarnRelation::Equal) {
    set = MakeRange(v, v);
  } else if (fRelation == VokTarnRelation::AtMost) {
    set = item.fFactor > 0 ? MakeRange(lower, v) : MakeRange(v, upper);
  } else {
    set = MakeRange(lower, v - 1);
    if (v < upper) {
      set.push_back({v + 1, upper});
    }
  }
  PostMembership(fPosting, item.fTerm, set, statement);
}

// As x <relation> s y + d, where that has the form.
bool Linear::PostPair(const Statement& statement) const {
  if (!IsUnit(0) || !IsUnit(1)) {
    return false;
  }
  const bool isAtMost = fRelation == VokTarnRelation::AtMost;
  // x is to stand with the factor 1 in an inequality.
  const std::size_t x = isAtMost && fItems[0].fFactor < 0 ? 1 : 0;
  if (isAtMost && fItems[x].fFactor < 0) {
    return false;
  }
  const Int128 offset = fItems[x].fFactor * fNumber;
  if (offset > kGreatest || offset < kLeast) {
    return false;
  }
  const bool isReified = statement.fMode == VokTarnMode::Reified;
  if (isReified && !isAtMost && IsTruth(fItems[0]) && IsTruth(fItems[1]) && fItems[0].fFactor == -fItems[1].fFactor &&
      offset == 0) {
    const VokTarnValueId ids[] = {fItems[0].fValue, fItems[1].fValue, fPosting.GetValue(statement.fTruth)};
    fPosting.Post("VokTarnParityConstraint", ids, {{fRelation == VokTarnRelation::Equal ? 1 : 0}});
    return true;
  }
  if (statement.fMode == VokTarnMode::Plain && isAtMost && IsTruth(fItems[0]) && IsTruth(fItems[1])) {
    return false;  // a clause
  }
  std::vector<VokTarnValueId> ids = {fItems[x].fValue, fItems[1 - x].fValue};
  if (statement.fMode != VokTarnMode::Plain) {
    ids.push_back(fPosting.GetValue(statement.fTruth));
  }
  const VokLong constants[] = {static_cast<VokLong>(fRelation), static_cast<VokLong>(statement.fMode),
                               fItems[0].fFactor == fItems[1].fFactor ? -1 : 1, static_cast<VokLong>(offset)};
  fPosting.Post("VokTarnOffsetRelationConstraint", ids, constants);
  return true;
}

// Over truth values, an inequality that only the greatest of all sums breaks.
bool Linear::PostAsClause() const {
  if (fRelation != VokTarnRelation::AtMost ||
      !std::ranges::all_of(fItems, [this](const Item& item) { return IsTruth(item); })) {
    return false;
  }
  Int128 smallest = kMost;
  for (const Item& item : fItems) {
    smallest = std::min(smallest, item.fFactor < 0 ? -item.fFactor : item.fFactor);
  }
  if (GetGreatest() - smallest > fNumber) {
    return false;
  }
  std::vector<Literal> literals;
  for (const Item& item : fItems) {
    literals.push_back({item.fTerm, item.fFactor < 0});
  }
  PostClause(fPosting, literals);
  return true;
}

// The sum value by value, as a chain of additions, where that is worth its cost and all terms are listed. True when
// nothing is left for bounds.
bool Linear::PostChain(const Statement& statement) const {
  constexpr std::int64_t kMostAdded = 1 << 20;  // pairs of values of two terms
  if (statement.fMode != VokTarnMode::Plain || fRelation != VokTarnRelation::Equal || fItems.size() < 3) {
    return false;
  }
  std::vector<VokTarnSumTerm> terms;
  std::vector<const Item*> order;  // those to be added, then those to be subtracted
  std::int64_t pairs = 1;
  for (const bool isAdded : {true, false}) {
    for (std::size_t i = 0; i < fItems.size(); ++i) {
      const Item& item = fItems[i];
      const std::int64_t size = fPosting.CountListed(item.fTerm);
      if (!IsUnit(i) || size == 0) {
        return false;
      }
      if ((item.fFactor > 0) == isAdded) {
        const std::int64_t width = fPosting.GetUpper(item.fTerm) - fPosting.GetLower(item.fTerm);
        terms.push_back({static_cast<double>(size), static_cast<double>(width)});
        order.push_back(&item);
        pairs = order.size() <= 2 ? pairs * size : pairs;
      }
    }
  }
  // The sum is one number; where that is 0 the last term to be subtracted is the sum of the others.
  const bool hasResult = fNumber == 0 && order.back()->fFactor < 0;
  const VokTarnSumTerm known = {1, 0};
  const VokTarnSumPlan plan = VokTarnPlanSum(std::span(terms).first(terms.size() - (hasResult ? 1 : 0)),
                                             hasResult ? terms.back() : known, fPosting.GetConsistency());
  if (plan == VokTarnSumPlan::Bounds || pairs > kMostAdded || order.front()->fFactor < 0 || fNumber > kGreatest ||
      fNumber < kLeast) {
    return false;
  }
  const VokTarnValueId result =
      hasResult ? order.back()->fValue : fPosting.GetValue({false, static_cast<std::int64_t>(fNumber)});
  const std::size_t count = order.size() - (hasResult ? 1 : 0);
  VokTarnValueId sum = order.front()->fValue;
  for (std::size_t k = 1; k < count; ++k) {
    const VokTarnValueId next = k + 1 == count ? result : fPosting.AddListed();
    const VokTarnValueId added[] = {sum, order[k]->fValue, next};
    const VokTarnValueId subtracted[] = {next, order[k]->fValue, sum};
    fPosting.Post("VokTarnAdditionConstraint", order[k]->fFactor > 0 ? added : subtracted);
    sum = next;
  }
  return plan == VokTarnSumPlan::Chain;
}

void Linear::PostSum(const Statement& statement) const {
  std::vector<VokTarnValueId> ids;
  std::vector<VokLong> constants = {static_cast<VokLong>(fRelation), static_cast<VokLong>(statement.fMode)};
  AppendWide(constants, Narrow(fNumber));
  for (const Item& item : fItems) {
    ids.push_back(item.fValue);
    AppendWide(constants, Narrow(item.fFactor));
  }
  if (statement.fMode != VokTarnMode::Plain) {
    ids.push_back(fPosting.GetValue(statement.fTruth));
  }
  fPosting.Post("VokTarnLinearRelationConstraint", ids, constants);
}

// What is left to be posted of a relation with a truth that is known: nothing, the relation or its negation.
enum class Rest { Nothing, Plain, Negated, Whole };

Rest Simplify(const Posting& posting, const Statement& statement) {
  if (statement.fMode == VokTarnMode::Plain) {
    return Rest::Whole;
  }
  if (!posting.IsFixed(statement.fTruth)) {
    return Rest::Whole;
  }
  if (posting.GetLower(statement.fTruth) != 0) {
    return Rest::Plain;
  }
  return statement.fMode == VokTarnMode::HalfReified ? Rest::Nothing : Rest::Negated;
}

void Conclude(const Posting& posting, bool holds, const Statement& statement) {
  if (statement.fMode == VokTarnMode::Plain) {
    if (!holds) {
      posting.Fail();
    }
  } else if (!holds || statement.fMode == VokTarnMode::Reified) {
    posting.Fix(statement.fTruth, holds ? 1 : 0);
  }
}

}  // namespace

void PostLinear(const Posting& posting, VokTarnRelation relation, std::span<const LinearTerm> terms,
                std::int64_t number, const Statement& statement) {
  const Rest rest = Simplify(posting, statement);
  if (rest == Rest::Nothing) {
    return;
  }
  Linear linear(posting, relation, terms, number);
  if (const std::optional<bool> holds = linear.Decide()) {
    Conclude(posting, *holds, statement);
    return;
  }
  if (rest == Rest::Negated) {
    linear.Negate();
  }
  linear.Post(rest == Rest::Whole ? statement : Statement{});
}

void PostMembership(const Posting& posting, const Term& term, const Set& set, const Statement& statement) {
  const Rest rest = Simplify(posting, statement);
  if (rest == Rest::Nothing) {
    return;
  }
  const std::int64_t lower = posting.GetLower(term);
  const std::int64_t upper = posting.GetUpper(term);
  const Set inside = Intersect(set, MakeRange(lower, upper));
  if (rest == Rest::Plain || statement.fMode == VokTarnMode::Plain) {
    posting.Restrict(term, inside);
    return;
  }
  if (rest == Rest::Negated) {
    Set outside;
    std::int64_t next = lower;
    for (const Range& range : inside) {
      if (next < range.fLower) {
        outside.push_back({next, range.fLower - 1});
      }
      next = range.fUpper < upper ? range.fUpper + 1 : upper;
    }
    if (inside.empty() || inside.back().fUpper < upper) {
      outside.push_back({next, upper});
    }
    posting.Restrict(term, outside);
    return;
  }
  if (inside.empty() || (inside.front().fLower == lower && inside.front().fUpper == upper)) {
    Conclude(posting, !inside.empty(), statement);
    return;
  }
  std::vector<VokLong> constants = {static_cast<VokLong>(statement.fMode)};
  for (const Range& range : inside) {
    constants.push_back(static_cast<VokLong>(range.fLower));
    constants.push_back(static_cast<VokLong>(range.fUpper));
  }
  posting.Post("VokTarnMembershipConstraint", {{posting.GetValue(term), posting.GetValue(statement.fTruth)}},
               constants);
}

// ---- Literals

namespace {

struct Literals {
  std::vector<VokTarnValueId> fValues[2];  // by aim, ascending
  std::vector<Literal> fOpen;
  bool fHolds = false;  // whatever the open ones are
};

// Without those that do not hold, and without repetitions.
Literals Reduce(const Posting& posting, std::span<const Literal> literals) {
  Literals result;
  for (const Literal& literal : literals) {
    if (posting.IsFixed(literal.fTerm)) {
      result.fHolds = result.fHolds || (posting.GetLower(literal.fTerm) != 0) == literal.fAim;
      continue;
    }
    result.fValues[literal.fAim ? 1 : 0].push_back(posting.GetValue(literal.fTerm));
    result.fOpen.push_back(literal);
  }
  for (std::vector<VokTarnValueId>& values : result.fValues) {
    std::ranges::sort(values);
    values.erase(std::unique(values.begin(), values.end()), values.end());
  }
  std::vector<VokTarnValueId> both;
  std::ranges::set_intersection(result.fValues[0], result.fValues[1], std::back_inserter(both));
  result.fHolds = result.fHolds || !both.empty();
  return result;
}

}  // namespace

void PostClause(const Posting& posting, std::span<const Literal> literals) {
  const Literals reduced = Reduce(posting, literals);
  if (reduced.fHolds) {
    return;
  }
  std::vector<VokTarnValueId> ids = reduced.fValues[1];
  ids.insert(ids.end(), reduced.fValues[0].begin(), reduced.fValues[0].end());
  if (ids.empty()) {
    posting.Fail();
  } else if (ids.size() == 1) {
    posting.Fix(reduced.fOpen[0].fTerm, reduced.fOpen[0].fAim ? 1 : 0);
  } else {
    posting.Post("VokTarnClauseConstraint", ids, {{static_cast<VokLong>(reduced.fValues[1].size())}});
  }
}

void PostDisjunction(const Posting& posting, std::span<const Literal> literals, const Literal& result) {
  const Literals reduced = Reduce(posting, literals);
  const auto fix = [&](const Literal& literal, bool holds) {
    posting.Fix(literal.fTerm, literal.fAim == holds ? 1 : 0);
  };
  if (reduced.fHolds || reduced.fOpen.empty()) {
    fix(result, reduced.fHolds);
    return;
  }
  if (posting.IsFixed(result.fTerm)) {
    if ((posting.GetLower(result.fTerm) != 0) == result.fAim) {
      PostClause(posting, literals);
    } else {
      for (const Literal& literal : reduced.fOpen) {
        fix(literal, false);
      }
    }
    return;
  }
  std::vector<VokTarnValueId> ids = reduced.fValues[1];
  ids.insert(ids.end(), reduced.fValues[0].begin(), reduced.fValues[0].end());
  if (ids.size() == 1) {
    const bool areEqual = reduced.fOpen[0].fAim == result.fAim;
    PostLinear(posting, VokTarnRelation::Equal, {{{1, reduced.fOpen[0].fTerm}, {areEqual ? -1 : 1, result.fTerm}}},
               areEqual ? 0 : 1);
    return;
  }
  ids.push_back(posting.GetValue(result.fTerm));
  posting.Post("VokTarnDisjunctionConstraint", ids,
               {{static_cast<VokLong>(reduced.fValues[1].size()), result.fAim ? 1 : 0}});
}

}  // namespace fzn
