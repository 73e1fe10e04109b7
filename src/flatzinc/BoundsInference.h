// The inference behind bounds.h: one rule for each kind of constraint.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "flatzinc/Model.h"
#include "flatzinc/bounds.h"

namespace fzn {

__extension__ using Int128 = __int128;

inline constexpr std::int64_t kUnbounded = std::numeric_limits<std::int64_t>::max();
// Stands for no bound, and for every bound beyond it: a sum of two bounds and a product of two numbers of 64 bits have
// fewer bits than there are, and are cut off here.
inline constexpr Int128 kInfinite = Int128{1} << 125;

// Bounds, each possibly infinite.
struct Hull {
  Int128 fLower;
  Int128 fUpper;

  bool IsFinite() const { return fLower > -kInfinite && fUpper < kInfinite; }
};
inline constexpr Hull kEverything = {-kInfinite, kInfinite};

inline Int128 Cut(Int128 v) {
  return std::clamp(v, -kInfinite, kInfinite);
}

// An end of a sum, part by part. Parts without an end are counted; when the others together have none that can be told,
// nothing follows from them.
class SumEnd {
 public:
  void Add(Int128 part) {
    if (IsInfinite(part)) {
      ++fOpen;
    } else if (!fIsLost) {
      fSum += part;
      fIsLost = IsInfinite(fSum);
    }
  }
  // The sum without one of its parts; nothing when it has no end.
  std::optional<Int128> GetWithout(Int128 part) const {
    const unsigned own = IsInfinite(part) ? 1 : 0;
    if (fIsLost || fOpen != own) {
      return std::nullopt;
    }
    return own != 0 ? fSum : fSum - part;
  }

 private:
  static bool IsInfinite(Int128 v) { return v <= -kInfinite || v >= kInfinite; }

  Int128 fSum = 0;
  std::size_t fOpen = 0;
  bool fIsLost = false;
};

// Narrows the domains of a model, as InferBounds says.
class BoundsInference {
 public:
  BoundsInference(const Model& model, const std::function<std::size_t(std::size_t)>& find, std::vector<Set>& domains)
      : fModel(model), fFind(find), fDomains(domains) {}

  void Run();

 private:
  using Rule = void (BoundsInference::*)(const Constraint&);

  static const std::unordered_map<std::string_view, Rule>& GetArithmeticRules();
  static const std::unordered_map<std::string_view, Rule>& GetGlobalRules();
  bool IsOpen(const Term& term) const { return term.fIsVariable && !Fits(fDomains[Find(term)]); }
  Rule FindRule(const Constraint& c) const;
  bool Concerns(const Constraint& c) const;
  std::size_t Find(const Term& term) const { return fFind(static_cast<std::size_t>(term.fNumber)); }
  Hull GetHull(const Term& term) const;
  Hull Unite(std::span<const Term> terms) const;
  void Narrow(const Term& term, const Hull& hull);
  void NarrowAll(std::span<const Term> terms, const Hull& hull);
  // Places of `terms`, counted from the constant in argument `first`.
  Hull GetPlaces(const Constraint& c, std::span<const Term> terms, unsigned first) const;

  // Arguments; a constraint with other kinds than its rule expects is left to its row of the posting table.
  Term GetTerm(const Constraint& c, unsigned i) const;
  std::span<const Term> GetTerms(const Constraint& c, unsigned i) const;

  void InferTerms(const std::vector<std::pair<Int128, Term>>& terms, bool isEquation);
  void InferLinear(const Constraint& c, bool isEquation);
  void InferEquation(const Constraint& c) { InferLinear(c, true); }
  void InferInequality(const Constraint& c) { InferLinear(c, false); }
  void InferSum(const Constraint& c);
  void InferProduct(const Constraint& c);
  void InferQuotient(const Constraint& c);
  void InferPower(const Constraint& c);
  void InferMagnitude(const Constraint& c);
  void InferOrder(const Constraint& c);
  void InferExtremum(const Constraint& c);
  void InferExtremumOfArray(const Constraint& c);
  void InferElement(const Constraint& c);
  void InferMembership(const Constraint& c);
  void InferEquality(const Constraint& c);
  void InferCount(const Constraint& c);
  void InferCountFirst(const Constraint& c);
  void InferCardinality(const Constraint& c);
  void InferLoad(const Constraint& c);
  void InferBins(const Constraint& c);
  void InferTable(const Constraint& c);
  void InferRegular(const Constraint& c);
  void InferMember(const Constraint& c);
  void InferInverse(const Constraint& c);
  void InferCircuit(const Constraint& c);
  void InferSort(const Constraint& c);
  void InferAllEqual(const Constraint& c);
  void InferOrdered(std::span<const Term> x, bool isUp);
  void InferIncreasing(const Constraint& c) { InferOrdered(GetTerms(c, 0), true); }
  void InferDecreasing(const Constraint& c) { InferOrdered(GetTerms(c, 0), false); }
  void InferDistribute(const Constraint& c);
  void InferPlace(const Constraint& c);

  const Model& fModel;
  const std::function<std::size_t(std::size_t)>& fFind;
  std::vector<Set>& fDomains;
  bool fHasChanged = false;
};

}  // namespace fzn
