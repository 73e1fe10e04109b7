#pragma once

#include <span>
#include <vector>

#include "framework/VokTarnAtom.h"
#include "framework/VokTarnNetwork.h"

// What a search learns when it begins again at its root: of choices that cannot all be made it makes clauses, without
// which it would look at the same part of the search space again.
//
// Cost      Clauses of up to 30 atoms, at most 12 MB of them and about as much for the rest; beyond that all are
//           forgotten.
// Source    C. Lecoutre, L. Sais, S. Tabary, V. Vidal, "Recording and minimizing nogoods from restarts", JSAT 1, 2007:
//           one no-good for each choice that was refuted, of it and the choices before it that stood.
class VOKTARN_EXPORT VokTarnNoGoods {
 public:
  // The network must outlive this, and loses its clauses with it.
  explicit VokTarnNoGoods(VokTarnNetwork& network) : fNetwork(network) {}
  VokTarnNoGoods(const VokTarnNoGoods&) = delete;
  VokTarnNoGoods& operator=(const VokTarnNoGoods&) = delete;
  ~VokTarnNoGoods() { fNetwork.GetClauses().Clear(); }

  // `choice` was refuted while `depth` choices stood; those that were refuted below it are no longer of use.
  void NoteRefuted(unsigned depth, const VokTarnAtom& choice);
  // Takes what was refuted after the choices of `path`, the last ones that stood, into the clauses. The network is to
  // be back at the root; it fails when there is no further solution.
  void Learn(std::span<const VokTarnAtom> path);
  // Forgets what was refuted: a part of it was not searched to its end.
  void Drop() noexcept { fRefuted.clear(); }

 private:
  struct Refuted {
    unsigned fDepth;
    VokTarnAtom fChoice;
  };

  VokTarnNetwork& fNetwork;
  std::vector<Refuted> fRefuted;
};
