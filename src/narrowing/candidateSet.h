// Candidate sets: the values that an operation can give, collected pair by pair.
//
// A candidate set starts Nil and takes its values through Insert, which decides about the limit: a set that
// holds sMAX_CARD values turns Any at the next insertion, even of a value that it holds. So a set of exactly
// sMAX_CARD distinct values is usable only when the last pair is the first to give its value, and the order of
// the loops is part of the result.
//
// Internal to the module.
#pragma once

#include "domain/VokFenEnumInteger.h"

namespace VokFenNarrowing {

inline VokFenEnumInteger NoCandidates() {
  VokFenEnumInteger candidates;
  candidates.SetNilValue();
  return candidates;
}

// Every combine(o, i) of a member o of `outer` (outer loop) with a member i of `inner`. Ends as soon as the set is
// Any, which no later insertion changes.
template <class Combine>
VokFenEnumInteger CollectPairs(const VokFenEnumInteger& outer, const VokFenEnumInteger& inner, Combine combine) {
  VokFenEnumInteger candidates = NoCandidates();
  for (unsigned i = 0; i < outer.GetCount(); ++i) {
    for (unsigned j = 0; j < inner.GetCount(); ++j) {
      if (candidates.Insert(combine(outer.GetValue(i), inner.GetValue(j))) == 0) {
        return candidates;
      }
    }
  }
  return candidates;
}

}  // namespace VokFenNarrowing
