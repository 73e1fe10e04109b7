#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "framework/VokTarnHistory.h"
#include "framework/VokTarnNetwork.h"

// Why an atom became true: atoms that were true before, and with the constraints of the network imply it.
//
// A constraint may have a rule of its own (VokTarnConstraint::Explain). Where it has none it is filtered by itself,
// from the domains that its arguments had then, less and less narrowed: what still leads to the atom is a reason,
// because filtering is sound. So a constraint of any module takes part without a line of its own.
//
// Strength   A reason by replay cannot be made shorter by leaving out one of its atoms, unless sMostReplays ended the
//            search for a shorter one; bounds in it are as weak as filtering allows. Where the filtering cannot be
//            repeated the reason is all choices so far; so it is for changes without a cause.
// Cost       By replay about 2 k log (n / k) filterings of one constraint, for k atoms of n that describe its
// arguments. Source     O. Ohrimenko, P. Stuckey, M. Codish, "Propagation via lazy clause generation", Constraints 14,
// 2009, for
//            reasons over atoms; U. Junker, "QuickXplain", AAAI 2004, for the way in which atoms are left out.
class VOKTARN_EXPORT VokTarnReasons {
 public:
  using Position = VokTarnHistory::Position;
  static constexpr unsigned sMostReplays = 100;

  struct Statistics {
    std::uint64_t fByRule = 0;
    std::uint64_t fByReplay = 0;
    std::uint64_t fReplays = 0;    // filterings
    std::uint64_t fByChoices = 0;  // neither a rule nor a replay has found one
  };

  // The network, which has a history, must outlive this.
  explicit VokTarnReasons(VokTarnNetwork& network) : fNetwork(network) {}
  VokTarnReasons(const VokTarnReasons&) = delete;
  VokTarnReasons& operator=(const VokTarnReasons&) = delete;

  // Appends atoms that were true before `position` and imply `atom`, which the change there has made true; which is not
  // a choice.
  void Explain(Position position, const VokTarnAtom& atom, std::vector<VokTarnAtom>& because);
  // Appends atoms that are true and cannot be so together: why the network has failed.
  void ExplainFailure(std::vector<VokTarnAtom>& because);
  // The same where it needs no replay; else false, and `because` stays as it is.
  bool ExplainQuickly(Position position, const VokTarnAtom& atom, std::vector<VokTarnAtom>& because);

  const Statistics& GetStatistics() const noexcept { return fStatistics; }
  // From now on each reason by a rule is replayed, too: std::logic_error when it is none. For tests.
  void SetVerified(bool isVerified) noexcept { fIsVerified = isVerified; }

 private:
  // What a replay is to show: an atom, or null for a contradiction.
  struct Goal {
    VokULong fConstraint;
    const VokTarnAtom* fAtom;
  };

  const VokTarnHistory& History() const noexcept { return *fNetwork.GetHistory(); }
  void ExplainByConstraint(VokULong constraint, Position position, const VokTarnAtom* atom,
                           std::vector<VokTarnAtom>& because);
  bool ExplainByRule(const VokTarnConstraint& constraint, Position position, const VokTarnAtom* atom,
                     std::vector<VokTarnAtom>& because);
  bool ExplainByOtherRule(const VokTarnConstraint& constraint, Position position, const VokTarnAtom& atom,
                          std::vector<VokTarnAtom>& because);
  bool ExplainBoundByRule(const VokTarnConstraint& constraint, Position position, const VokTarnAtom& atom,
                          std::vector<VokTarnAtom>& because);
  void AppendChoices(Position position, std::vector<VokTarnAtom>& because);
  bool Derive(Position position, const VokTarnAtom& made, const VokTarnAtom& atom, std::vector<VokTarnAtom>& because);
  bool DeriveBound(Position position, const VokTarnAtom& made, const VokTarnAtom& atom,
                   std::vector<VokTarnAtom>& because);
  bool AppendHoles(VokTarnValueId id, std::int64_t from, std::int64_t to, std::vector<VokTarnAtom>& because) const;

  void Describe(const VokTarnConstraint& constraint, Position position, std::vector<VokTarnAtom>& atoms) const;
  void DescribeHoles(VokTarnValueId id, Position position, const VokTarnSummary& summary,
                     std::vector<VokTarnAtom>& atoms) const;
  bool Replay(const Goal& goal, std::span<const VokTarnAtom> atoms);
  // Whether a reason is to be taken as it is.
  bool IsEnough() const { return fReplays >= sMostReplays || fNetwork.PollInterrupt(); }
  bool ReplayWithout(const Goal& goal, std::vector<VokTarnAtom>& atoms, std::size_t begin, std::size_t end);
  void LeaveOut(const Goal& goal, std::vector<VokTarnAtom>& atoms, std::size_t begin, std::size_t end);
  void Weaken(const Goal& goal, std::vector<VokTarnAtom>& atoms);
  void Verify(const Goal& goal, std::span<const VokTarnAtom> atoms);
  VokTarnNetwork& GetBench();

  VokTarnNetwork& fNetwork;
  std::unique_ptr<VokTarnNetwork> fBench;  // a value for each one of the network, and no constraints
  std::vector<VokTarnAtom> fAtoms;         // scratch
  std::vector<VokLong> fMembers;           // the same
  unsigned fReplays = 0;                   // of this explanation
  Statistics fStatistics;
  bool fIsVerified = false;
};
