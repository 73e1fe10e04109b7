// Linear relations and clauses on their way into the network, in the simplest form that says the same.
#pragma once

#include <span>
#include <vector>

#include "flatzinc/Posting.h"
#include "framework/VokTarnRelation.h"

namespace fzn {

struct LinearTerm {
  std::int64_t fFactor;
  Term fTerm;
};

// How a relation is stated; the truth is not looked at where it is plain.
struct Statement {
  VokTarnMode fMode = VokTarnMode::Plain;
  Term fTruth = {false, 1};
};

// The sum of the terms is in this relation to the number.
void PostLinear(const Posting& posting, VokTarnRelation relation, std::span<const LinearTerm> terms,
                std::int64_t number, const Statement& statement = {});

// The term is in the set.
void PostMembership(const Posting& posting, const Term& term, const Set& set, const Statement& statement);

// A truth value that is to be 1, or 0.
struct Literal {
  Term fTerm;
  bool fAim;
};

// Some literal holds.
void PostClause(const Posting& posting, std::span<const Literal> literals);
// Some literal holds exactly when the result does.
void PostDisjunction(const Posting& posting, std::span<const Literal> literals, const Literal& result);

}  // namespace fzn
