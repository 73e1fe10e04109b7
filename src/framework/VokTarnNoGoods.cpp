#include "framework/VokTarnNoGoods.h"

namespace {

// Atoms of all clauses together. Beyond that all are forgotten, and the search learns anew.
constexpr std::size_t kMostAtoms = std::size_t{1} << 20;
// Longer clauses narrow too seldom for their cost.
constexpr std::size_t kLongest = 30;

}  // namespace

void VokTarnNoGoods::NoteRefuted(unsigned depth, const VokTarnAtom& choice) {
  while (!fRefuted.empty() && fRefuted.back().fDepth > depth) {
    fRefuted.pop_back();
  }
  fRefuted.push_back({depth, choice});
}

void VokTarnNoGoods::Learn(std::span<const VokTarnAtom> path) {
  VokTarnClauses& clauses = fNetwork.GetClauses();
  if (clauses.CountAtoms() > kMostAtoms) {
    clauses.Clear();
  }
  std::vector<VokTarnAtom> atoms;
  for (const Refuted& refuted : fRefuted) {
    // What was refuted at the root stays so without a clause.
    if (refuted.fDepth == 0 || refuted.fDepth >= kLongest || fNetwork.IsFailed()) {
      continue;
    }
    // The last choices come first: they are made the latest.
    atoms.assign(1, refuted.fChoice.Negate());
    for (std::size_t i = refuted.fDepth; i-- > 0;) {
      atoms.push_back(path[i].Negate());
    }
    clauses.Add(atoms);
  }
  fRefuted.clear();
}
